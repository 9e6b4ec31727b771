#pragma once
// Objects of kinds the database does not model, written back as the DWG they were read from
// stored them.
#include <vector>

#include "platform/dwg/classes.hpp"
#include "platform/dwg/write_context.hpp"

namespace dwg {

// Adds each kept object (WriteContext::kept) with its stored bytes, framed again, where they
// still say what the written file needs: AC1018 data with texts in the code page written, the
// object's own handle, and a type the written classes give its kind. Entities wait for their block (WriteContext::keptEntities): the
// records the writer reads leave them out of their blocks.
void WriteKeptObjects(const std::vector<ClassRecord>& classes, WriteContext& c);

// Adds the kept entities of a block to it and to its list of entities, each before the first
// entity of a higher handle (a list mostly runs in the order of the handles).
void AddKeptEntities(std::uint64_t block, std::vector<std::uint64_t>& entities, WriteContext& c);

}  // namespace dwg
