#pragma once
// Extended data: the bytes the object data holds for each application, as the DXF groups from
// 1001 on that a record ends with, and back. The bytes of an item are its group code less
// 1000, then its value: a text (length, code page, characters), a brace, a layer or entity
// handle (eight bytes), a chunk of bytes, points and reals, a 16 or 32 bit integer.
#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/dwg/common.hpp"

namespace dwg {

// One DXF group: code and value as the DXF gives it.
using ExtendedGroup = std::pair<int, std::string>;

// The groups of the extended data, each application's introduced by its 1001 name. Items that
// do not decode end their application's data. Layers are named, handles in hexadecimal.
std::vector<ExtendedGroup> ExtendedGroupsOf(const std::vector<ExtendedData>& extended,
                                            const std::unordered_map<std::uint64_t, std::string>& applications,
                                            const std::unordered_map<std::uint64_t, std::string>& layers,
                                            int codePage);

// The extended data of DXF groups from the first 1001 on. An application or layer without a
// handle, and groups the format cannot hold, leave their application's data out; dwgCodePage
// is the number texts are marked with, codePage the one they are written in.
std::vector<ExtendedData> ExtendedDataOfGroups(const std::vector<ExtendedGroup>& groups,
                                               const std::unordered_map<std::string, std::uint64_t>& applications,
                                               const std::unordered_map<std::string, std::uint64_t>& layers,
                                               int dwgCodePage, int codePage);

}  // namespace dwg
