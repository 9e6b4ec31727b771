#pragma once
// Reed-Solomon parity for test blocks: the parity bytes that make a block of 255 bytes vanish at
// the code's roots 2^1 .. 2^parity, found by solving their linear system over GF(256). With it
// the tests build 2007 pages whose checks pass around data they choose.
#include <array>
#include <cstdint>
#include <vector>

#include "platform/dwg/reed_solomon.hpp"

namespace dwg_test {

class Gf256 {
public:
    explicit Gf256(std::uint16_t polynomial) {
        unsigned x = 1;
        for (unsigned i = 0; i < 255; ++i) {
            power_[i] = static_cast<std::uint8_t>(x);
            log_[x] = i;
            x <<= 1;
            if (x & 0x100) x ^= polynomial;
        }
    }
    std::uint8_t pow(unsigned e) const { return power_[e % 255]; }
    std::uint8_t mul(std::uint8_t a, std::uint8_t b) const {
        return a == 0 || b == 0 ? 0 : power_[(log_[a] + log_[b]) % 255];
    }
    std::uint8_t inv(std::uint8_t a) const { return power_[(255 - log_[a]) % 255]; }

private:
    std::array<std::uint8_t, 255> power_{};
    std::array<unsigned, 256> log_{};
};

// Sets block[dataSize .. 254] so that the block checks.
inline void SetParity(std::array<std::uint8_t, 255>& block, const dwg::ReedSolomonCode& code) {
    const Gf256 f(code.polynomial);
    const std::size_t n = 255 - code.dataSize;
    // Row i: sum over parity m of p_m 2^((i+1)(k+m)) = data syndrome at 2^(i+1).
    std::vector<std::vector<std::uint8_t>> a(n, std::vector<std::uint8_t>(n + 1, 0));
    for (std::size_t i = 0; i < n; ++i) {
        std::uint8_t s = 0;
        for (std::size_t j = 0; j < code.dataSize; ++j)
            s ^= f.mul(block[j], f.pow(static_cast<unsigned>((i + 1) * j)));
        for (std::size_t m = 0; m < n; ++m)
            a[i][m] = f.pow(static_cast<unsigned>((i + 1) * (code.dataSize + m)));
        a[i][n] = s;
    }
    for (std::size_t c = 0; c < n; ++c) {
        std::size_t pivot = c;
        while (a[pivot][c] == 0) ++pivot;
        std::swap(a[c], a[pivot]);
        const std::uint8_t scale = f.inv(a[c][c]);
        for (auto& v : a[c]) v = f.mul(v, scale);
        for (std::size_t r = 0; r < n; ++r) {
            if (r == c || a[r][c] == 0) continue;
            const std::uint8_t factor = a[r][c];
            for (std::size_t k = c; k <= n; ++k) a[r][k] ^= f.mul(factor, a[c][k]);
        }
    }
    for (std::size_t m = 0; m < n; ++m) block[code.dataSize + m] = a[m][n];
}

// The data (padded with zeros to whole blocks) coded and interleaved into `blockCount` blocks.
inline std::vector<std::uint8_t> EncodeInterleaved(const std::vector<std::uint8_t>& data,
                                                   std::size_t blockCount,
                                                   const dwg::ReedSolomonCode& code) {
    std::vector<std::uint8_t> raw(255 * blockCount, 0);
    for (std::size_t j = 0; j < blockCount; ++j) {
        std::array<std::uint8_t, 255> block{};
        for (std::size_t i = 0; i < code.dataSize; ++i) {
            const std::size_t at = j * code.dataSize + i;
            block[i] = at < data.size() ? data[at] : 0;
        }
        SetParity(block, code);
        for (std::size_t i = 0; i < 255; ++i) raw[j + i * blockCount] = block[i];
    }
    return raw;
}

}  // namespace dwg_test
