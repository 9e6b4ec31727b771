#pragma once
// The two compressions of DWG pages: the 2004 one (AC1018 and 2010 on) and the 2007 one, both
// LZ77 style (literal runs and copies of earlier output). Malformed data gives the offset in the
// compressed bytes and the reason; the output never grows past the size the caller allows.
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace dwg {

struct DecompressError {
    std::size_t offset = 0;  // in the compressed bytes
    std::string reason;
};

// Decompresses 2004 data up to its end code. False when the data ends before the end code, a
// copy reaches before the start of the output, or the output would exceed `limit` bytes.
bool Decompress2004(std::span<const std::uint8_t> in, std::size_t limit,
                    std::vector<std::uint8_t>& out, DecompressError& error);

// Decompresses 2007 data until the input is used up. False when an instruction runs past the
// input, a copy reaches before the start of the output, or the output would exceed `limit`.
bool Decompress2007(std::span<const std::uint8_t> in, std::size_t limit,
                    std::vector<std::uint8_t>& out, DecompressError& error);

}  // namespace dwg
