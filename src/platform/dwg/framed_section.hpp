#pragma once
// The frame of the header and classes sections: a start sentinel, the size of the data (from
// 2018, and 2010 to 2013 after their third maintenance release, with a high word after it),
// the data, and a CRC over the size and the data.
#include <cstdint>
#include <span>
#include <string>

#include "platform/dwg/bit_reader.hpp"
#include "platform/dwg/object_map.hpp"

namespace dwg {

struct FramedData {
    std::span<const std::uint8_t> data;  // without the frame
    std::size_t start = 0;               // the data's byte offset in the section
};

// True when the version stores the high word of a framed section's size.
bool SizeHasHighWord(Version version, int maintenance);

// Checks the frame of a section whose data opens after `sentinel`. False with the offset and a
// reason starting with `what` ("header section") when the sentinel, the size or the CRC is wrong.
bool ReadFramedSection(std::span<const std::uint8_t> section, std::span<const std::uint8_t, 16> sentinel,
                       Version version, int maintenance, const std::string& what, FramedData& out,
                       MapError& error);

}  // namespace dwg
