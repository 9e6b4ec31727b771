#pragma once
// The few operations on a drawing database that the standardisation, the sheet merge and the
// dimensioning lean on. Each takes the database it works on and answers a status: 0 for
// success, an error status passed through, or 16 for a failed walk or look-up.
#include <string>

#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/symbol_tables.hpp"

// A new iterator over the model space (at the beginning, erased entities skipped), owned by the
// caller. 16 when the block gives no iterator.
int OpenModelSpaceIterator(AcDbBlockTableRecordIterator*& iterator, AcDbDatabase* db);
// Appends `entity` to the model space of `db` (null: the working database) and leaves it open.
// 1 on success, 0 or the status of the block table on failure, with an alert.
int AppendToModelSpace(AcDbDatabase* db, AcDbEntity* entity, AcDbObjectId& id);
// Adds a thawed, visible, unlocked layer of colour 7 and linetype CONTINUOUS, unless it exists.
int AddLayer(const std::wstring& name, AcDbDatabase* db);
// A new layer record as the system makes layers: thawed, on, unlocked, colour 7, CONTINUOUS.
// With `log` the linetype look-up and its status go to Cg.log.
AcDbLayerTableRecord* NewStandardLayer(const std::wstring& name, AcDbDatabase* db, bool log);
// Makes a view of the model space's extents current and refreshes the extents of `db`.
int ZoomExtents(AcDbDatabase* db);
// Erases those of `ids` that nothing refers to.
int PurgeAndErase(AcDbObjectIdArray& ids, AcDbDatabase* db);
int PurgeLayers(AcDbDatabase* db);
int PurgeBlocks(AcDbDatabase* db);
int PurgeDimStyles(AcDbDatabase* db);
int PurgeLinetypes(AcDbDatabase* db);
