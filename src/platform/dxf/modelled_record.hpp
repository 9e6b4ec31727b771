#pragma once
// Whether an object needs its record as read: the writer lays the database's values over that
// record and gives back what the database does not model. When the record is exactly the one
// the writer makes from the database alone, it adds nothing, and a reader need not keep it.
#include <span>

#include "platform/db/object.hpp"
#include "platform/dxf/model.hpp"
#include "platform/dxf/tagger.hpp"

namespace dxf {

// Drops the object's record as read when the writer makes the same record from the database's
// values alone, for the kinds of entity whose model does not look at the record; true when
// dropped, the record then moved into `dropped` (whose storage may serve again). The model is
// scratch storage kept between calls. `made` may give the record's tags as a decoder made them,
// in the same order: values made from numbers are then compared as numbers, not as texts.
bool DropModelledRecord(AcDbObject& object, Model& model, AcDbRawTags& dropped,
                        std::span<const Tag> made = {});

}  // namespace dxf
