#pragma once
// Decoders of the non-graphical objects the database models: dictionaries.
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/dwg/common.hpp"

namespace dwg {

struct DictionaryRecord {
    ObjectCommon common;
    std::int16_t cloning = 1;      // DXF 281
    std::uint8_t hardOwner = 0;    // DXF 280
    std::vector<std::pair<std::string, std::uint64_t>> entries;  // name (UTF-8), handle
    std::uint64_t defaultEntry = 0;  // ACDBDICTIONARYWDFLT: the entry given by default
    bool withDefault = false;
};

bool ReadDictionary(ObjectStreams& o, DictionaryRecord& out);
// A dictionary with a default entry (ACDBDICTIONARYWDFLT).
bool ReadDictionaryWithDefault(ObjectStreams& o, DictionaryRecord& out);

}  // namespace dwg
