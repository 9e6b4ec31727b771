#include "platform/dwg/reed_solomon.hpp"

#include <array>

namespace dwg {
namespace {

constexpr std::size_t kBlockSize = 255;

// Powers and logarithms of the field's generator 2, the powers twice over so that a product is
// one lookup of a sum of logarithms.
struct Field {
    std::array<std::uint8_t, 512> power{};
    std::array<std::uint16_t, 256> log{};

    explicit Field(std::uint16_t polynomial) {
        unsigned x = 1;
        for (unsigned i = 0; i < 255; ++i) {
            power[i] = static_cast<std::uint8_t>(x);
            log[x] = static_cast<std::uint16_t>(i);
            x <<= 1;
            if (x & 0x100) x ^= polynomial;
        }
        for (unsigned i = 255; i < power.size(); ++i) power[i] = power[i - 255];
    }
};

const Field& FieldOf(const ReedSolomonCode& code) {
    static const Field system(kSystemPageCode.polynomial);
    static const Field data(kDataPageCode.polynomial);
    return code.polynomial == kSystemPageCode.polynomial ? system : data;
}

// True when block(x) = sum of block[k] x^k vanishes at the code's roots 2^1 .. 2^parity.
bool ParityChecks(const std::array<std::uint8_t, kBlockSize>& block, const Field& field,
                  std::size_t parity) {
    for (std::size_t root = 1; root <= parity; ++root) {
        unsigned syndrome = 0;
        for (std::size_t k = kBlockSize; k-- > 0;) {
            syndrome = (syndrome == 0 ? 0 : field.power[field.log[syndrome] + root]) ^ block[k];
        }
        if (syndrome != 0) return false;
    }
    return true;
}

}  // namespace

std::size_t DecodeInterleaved(std::span<const std::uint8_t> raw, std::size_t blockCount,
                              const ReedSolomonCode& code, std::vector<std::uint8_t>& out) {
    const Field& field = FieldOf(code);
    std::array<std::uint8_t, kBlockSize> block{};
    for (std::size_t j = 0; j < blockCount; ++j) {
        for (std::size_t i = 0; i < kBlockSize; ++i) block[i] = raw[j + i * blockCount];
        if (!ParityChecks(block, field, kBlockSize - code.dataSize)) return j;
        out.insert(out.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(code.dataSize));
    }
    return blockCount;
}

}  // namespace dwg
