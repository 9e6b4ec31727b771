#pragma once
// Decoders of the symbol table records: the part every record shares (name, xref flags) and
// the layer.
#include <cstdint>
#include <string>

#include "platform/dwg/common.hpp"

namespace dwg {

struct TableEntry {
    ObjectCommon common;
    std::string name;  // UTF-8
    bool referenced = false;      // the 64 flag: the record is used by an entity or block
    std::int16_t xrefIndex = 0;   // 1-based index of the xref it comes from, 0 for none
    bool xrefDependent = false;
    std::uint64_t xrefBlock = 0;  // the block of the xref, 0 for none
};

struct LayerRecord {
    TableEntry entry;
    std::int16_t flags = 0;  // DXF 70: 1 frozen, 4 frozen in new viewports, 8 locked
    bool off = false;
    bool plotted = true;
    int lineweight = -3;     // hundredths of a millimetre, or -1/-2/-3
    Color color;
    std::uint64_t plotStyle = 0, material = 0, linetype = 0, visualStyle = 0;
};

bool ReadLayer(ObjectStreams& o, LayerRecord& out);

// The values every table record starts with; its handles come with ReadTableEntryHandles.
void ReadTableEntry(ObjectStreams& o, TableEntry& out);
void ReadTableEntryHandles(ObjectStreams& o, TableEntry& out);

}  // namespace dwg
