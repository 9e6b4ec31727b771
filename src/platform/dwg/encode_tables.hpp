#pragma once
// Encoders of the symbol table records and dictionaries: the mirror of their decoders.
#include <cstdint>
#include <vector>

#include "platform/dwg/encode_object.hpp"
#include "platform/dwg/objects.hpp"
#include "platform/dwg/tables.hpp"

namespace dwg {

// The values every table record starts with, after the common object data.
void WriteTableEntry(ObjectWriter& o, const TableEntry& entry);
// The stored index of a lineweight in hundredths of a millimetre (or -1, -2, -3); a weight
// between two of the format's steps takes the lower one.
std::uint8_t LineweightIndex(int lineweight);

std::vector<std::uint8_t> EncodeLayer(const LayerRecord& layer, const EncodeOptions& options);
// type: kDictionary, or the drawing's class number of ACDBDICTIONARYWDFLT when the record has a
// default entry.
std::vector<std::uint8_t> EncodeDictionary(const DictionaryRecord& dictionary, std::int32_t type,
                                           const EncodeOptions& options);

}  // namespace dwg
