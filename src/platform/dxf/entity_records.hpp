#pragma once
// Entity records: the object a record's type makes, and the fields the database models read
// from the record's tags.
#include <string>
#include <string_view>

#include "platform/db/database.hpp"
#include "platform/db/polyline_classic.hpp"

namespace dxf {

// A new, empty entity of the record's type (an INSERT with rows or columns is an MINSERT, a
// POLYLINE is told by its flags); types the database does not model are carried whole.
AcDbEntity* NewEntity(std::string_view type, const AcDbRawTags& tags);

// Reads the modelled fields of the entity from the tags it keeps. Returns the name of the block
// that an insert or a dimension refers to (empty for other entities), which the caller resolves
// once every block is known.
std::wstring ReadEntityFields(AcDbEntity& e, AcDbDatabase& db);

void ReadVertexFields(AcDb2dVertex& v, const AcDbRawTags& tags);
void ReadVertexFields(AcDb3dPolylineVertex& v, const AcDbRawTags& tags);

}  // namespace dxf
