#pragma once
// The walk over the model space that the standardisation steps share: each entity is opened in
// the given mode, handed to the visitor and closed (an entity the visitor erased is closed too).
#include <functional>

#include "platform/db/database.hpp"
#include "platform/db/entity.hpp"

enum FailedOpen { kEndAtFailedOpen, kSkipFailedOpen };

// 0, 16 when an entity does not open and `onFailure` ends the walk, or the status of
// OpenModelSpaceIterator.
int WalkModelSpace(AcDbDatabase* db, AcDb::OpenMode mode, FailedOpen onFailure,
                   const std::function<void(AcDbEntity*)>& visit);
