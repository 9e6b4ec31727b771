#pragma once
// Writes the header variables section of 2000 and 2004 files: the mirror of ParseHeader. The
// settings the database does not keep are written with the values a new drawing has.
#include <cstdint>
#include <vector>

#include "platform/dwg/encode_bits.hpp"
#include "platform/dwg/header.hpp"

namespace dwg {

// The section as stored: start sentinel, size, the variables, CRC, end sentinel.
std::vector<std::uint8_t> EncodeHeaderSection(const HeaderVariables& header, Version version,
                                              int codePage);

// The dimension variables as the header and the dimension style records store them (2000 and
// 2004): values and texts in d, the style and arrow handles in h (the same writer in the header).
void WriteDimensionVariables(BitWriter& d, BitWriter& h, const DimensionVariables& m);

// A section framed by its sentinels: start sentinel, RL size, the data, CRC-16 over size and
// data, end sentinel.
std::vector<std::uint8_t> FrameSection(const std::uint8_t (&start)[16],
                                       const std::uint8_t (&end)[16],
                                       const std::vector<std::uint8_t>& data);

}  // namespace dwg
