#pragma once
// What a reader needs of every drawing from 2000 on, added to a drawing that lacks it before it
// is written.
#include "platform/db/database.hpp"

namespace dxf {

// The object an id stands for, whether open or not; nullptr for a null or dangling id.
inline AcDbObject* ObjectOf(AcDbObjectId id) {
    return id.isNull() || !id.stub() ? nullptr : id.stub()->object.get();
}

// Adds, where missing: every symbol table with its standard records (layer 0, the three
// linetypes, Standard text and dimension styles, the ACAD application, the *Active viewport,
// model and paper space), the group and layout dictionaries with a layout for each space, and
// the anonymous block of each dimension made in memory, drawn. Added objects are left closed.
void AddRequiredObjects(AcDbDatabase& db);

}  // namespace dxf
