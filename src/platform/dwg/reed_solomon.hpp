#pragma once
// The Reed-Solomon coding of 2007 pages: blocks of 255 bytes, data then parity, interleaved so
// that byte i of block j is at j + i * blockCount. Each block's parity is checked: a block
// whose syndromes are not all zero was changed after it was written.
#include <cstdint>
#include <span>
#include <vector>

namespace dwg {

struct ReedSolomonCode {
    std::uint16_t polynomial;  // of the Galois field GF(256)
    std::size_t dataSize;      // data bytes per block; the other 255 - dataSize are parity
};

// The file header and the page and section maps; the data pages.
inline constexpr ReedSolomonCode kSystemPageCode{0x169, 239};
inline constexpr ReedSolomonCode kDataPageCode{0x11D, 251};

// Appends the data bytes of `blockCount` interleaved blocks of `raw` (which holds at least
// 255 * blockCount bytes) to `out`. Returns the number of the first block whose parity does not
// check, or blockCount when all do.
std::size_t DecodeInterleaved(std::span<const std::uint8_t> raw, std::size_t blockCount,
                              const ReedSolomonCode& code, std::vector<std::uint8_t>& out);

}  // namespace dwg
