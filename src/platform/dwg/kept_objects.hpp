#pragma once
// Objects of kinds the database does not model, written back as the DWG they were read from
// stored them.
#include <vector>

#include "platform/dwg/classes.hpp"
#include "platform/dwg/write_context.hpp"

namespace dwg {

// Adds each kept object (WriteContext::kept) with its stored bytes, framed again, where they
// still say what the written file needs: the object's own handle, and a type the written
// classes give its kind. Entities stay out: a block lists its entities, and the records the
// writer reads leave kept ones out of their blocks.
void WriteKeptObjects(const std::vector<ClassRecord>& classes, WriteContext& c);

}  // namespace dwg
