#pragma once
// Symbol table records: the table or record a record's type makes, and the fields the database
// models read from the record's tags.
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/db/database.hpp"

namespace dxf {

// A new, empty table of the named kind (nullptr for a name the database has no table for).
AcDbSymbolTable* NewTable(const std::string& name, AcDbDatabase::TableKind& kind);
// A new, empty record of the type (nullptr for a type no table holds).
AcDbSymbolTableRecord* NewRecord(std::string_view type);

// Reads the modelled fields of a table record. A layer's linetype is given by name and resolved
// once the linetype table is read: the pair goes onto `linetypes`. `idOf` turns a handle's text
// into the object it names.
void ReadRecordFields(AcDbSymbolTableRecord& r, const AcDbRawTags& tags,
                      std::vector<std::pair<AcDbLayerTableRecord*, std::wstring>>& linetypes,
                      std::function<AcDbObjectId(std::string_view)> idOf);

}  // namespace dxf
