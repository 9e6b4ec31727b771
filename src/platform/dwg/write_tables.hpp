#pragma once
// The parts of the DWG writer that turn table, block and object records into objects.
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "platform/dwg/header.hpp"
#include "platform/dwg/write_context.hpp"

namespace dwg {

// The handles of the layers, linetypes, styles, blocks and dimension styles by name.
void IndexNames(const SourceDrawing& source, WriteContext& c);
// The colour objects of colour books that the written file holds, by the names the drawing's
// dictionaries give them ("book$colour"), for the entities that name them (430).
void IndexBookColors(const SourceDrawing& source, WriteContext& c);
// The places of the erased entries the database's tables keep from a DWG read.
void NoteErasedEntries(const AcDbDatabase& db, WriteContext& c);
// The colours of the drawing's dimension styles that are true colours, which their DXF records
// cannot give.
void NoteDimensionStyleColors(const AcDbDatabase& db, WriteContext& c);
// Every table's records and control object; the control objects' handles go to handles. A
// control object lists null entries at the places c.erasedEntries gives for it.
void WriteTables(const SourceDrawing& source, WriteContext& c, HeaderHandles& handles);
// The INSERTs of each block record and the entities kept whole that draw it (ACAD_TABLE), by
// the record's handle, in the order of their handles.
using BlockInserts = std::unordered_map<std::uint64_t, std::vector<std::uint64_t>>;
BlockInserts InsertsOf(const SourceDrawing& source, const WriteContext& c);
// Every block record with its BLOCK, entities and ENDBLK. The model and paper space entities
// must be written first (their handles are in c.owned).
void WriteBlocks(const SourceDrawing& source, WriteContext& c, const BlockInserts& inserts);
// The objects other than dictionaries, which are collected to be written last (an entry whose
// object was not written is left out of its dictionary).
void WriteObjects(const SourceDrawing& source, WriteContext& c,
                  std::vector<const SourceRecord*>& dictionaries);
void WriteDictionaries(const std::vector<const SourceRecord*>& dictionaries, WriteContext& c,
                       std::int32_t dictionaryWithDefault);

}  // namespace dwg
