#pragma once
// The merge of a part's finished drawings into one, and the loading of a small drawing as a
// block whose entities a caller places.
#include <string>
#include <vector>

#include "platform/db/database.hpp"
#include "platform/ge/point3d.hpp"

// Reads each file into a scratch database and inserts it into one new database with the identity
// transformation, purges, gives barcode texts their style and saves in the 2004 format at
// `target`. When no file appears there, saves at "d:\Mytool\temp\Dorvault.dwg", tells the user,
// and sets `target` to that path. 0, or 53 for an empty list. The last two arguments have no
// effect.
int MergeDrawings(const std::vector<std::wstring>& files, std::wstring& target, int ignored1,
                  int ignored2);
// Removes every "*", "?", "<", ">", "|" and blank.
void RemoveBadNameCharacters(std::wstring& text);
// Loads `file` into `db` as the block named by its file title (once per drawing), and explodes a
// reference at `position` with the uniform `scale` into `entities`, which belong to no database.
// 0; 76 when the file cannot be read; 16 when no block exists afterwards.
int InsertDrawingEntities(AcDbDatabase* db, const std::wstring& file, AcDbVoidPtrArray& entities,
                          const AcGePoint3d& position, double scale);
