#pragma once
// The clean-up log (Log.log): written only when the file already exists, so deleting it turns
// the log off; and the snapshot of model-space ids that every clean-up walks.
#include <string>

#include "platform/db/database.hpp"
#include "platform/db/entity.hpp"

// True when the path opens for reading.
bool LogFileExists(const std::wstring& path);
// Appends the text in the ANSI code page (cut to the helper's 2,048-byte buffer); the file is
// made when missing. 0, or -1 when it does not open.
int LogAppend(const std::wstring& path, const std::wstring& text);
// Appends to the clean-up log at LogPath when that file exists.
void AppendCleanupLog(const std::wstring& text);

// The ids of the model space of `db` in drawing order, erased entities left out. The model
// space is opened for write, so a model space open elsewhere gives an empty list. Erasing
// entities later leaves their ids in the snapshot.
AcDbObjectIdArray GetModelSpaceIds(AcDbDatabase* db);
// Appends a new entity to the model space of `db` and closes it; its id, or the null id (and the
// entity deleted) when the model space does not open.
AcDbObjectId AppendToCleanupModelSpace(AcDbDatabase* db, AcDbEntity* entity);
