#pragma once
#include "platform/db/database.hpp"

// Width factor 1.0 on every single-line text of the model space (Txtwscl): 0, or 16 when an
// entity does not open for write, which ends the walk.
int SetTextWidthsToOne(AcDbDatabase* db);
