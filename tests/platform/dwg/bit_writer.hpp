#pragma once
// Builds DWG bit streams for the tests: each value in the format's coding, most significant bit
// first, so a decoder can be driven by bytes whose content the test states.
#include <cstdint>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

namespace dwg_test {

struct BitWriter {
    std::vector<std::uint8_t> bytes;
    std::size_t bit = 0;

    void bits(std::uint64_t value, unsigned count) {
        for (unsigned i = count; i-- > 0;) {
            if (bit / 8 >= bytes.size()) bytes.push_back(0);
            if ((value >> i) & 1) bytes[bit / 8] |= static_cast<std::uint8_t>(0x80 >> (bit % 8));
            ++bit;
        }
    }
    void B(bool v) { bits(v ? 1 : 0, 1); }
    void BB(unsigned v) { bits(v, 2); }
    void RC(unsigned v) { bits(v & 0xFF, 8); }
    void RS(unsigned v) { RC(v); RC(v >> 8); }
    void RL(std::uint32_t v) { RS(v & 0xFFFF); RS(v >> 16); }
    void RD(double d) {
        std::uint64_t raw;
        std::memcpy(&raw, &d, 8);
        for (int i = 0; i < 8; ++i) RC(static_cast<unsigned>(raw >> (8 * i)));
    }
    // The shortest coding, as writers use it.
    void BS(int v) {
        const auto u = static_cast<std::uint16_t>(v);
        if (u == 0) BB(2);
        else if (u == 256) BB(3);
        else if (u < 256) { BB(1); RC(u); }
        else { BB(0); RS(u); }
    }
    void BL(std::int32_t v) {
        const auto u = static_cast<std::uint32_t>(v);
        if (u == 0) BB(2);
        else if (u < 256) { BB(1); RC(u); }
        else { BB(0); RL(u); }
    }
    void BD(double d) {
        if (d == 1.0) BB(1);
        else if (d == 0.0 && !std::signbit(d)) BB(2);
        else { BB(0); RD(d); }
    }
    void BD3(double x, double y, double z) { BD(x); BD(y); BD(z); }
    void RD2(double x, double y) { RD(x); RD(y); }
    // Full coding of a default double: always the whole value.
    void DDFull(double d) { BB(3); RD(d); }
    void DDDefault() { BB(0); }
    void H(unsigned code, std::uint64_t value) {
        unsigned count = 0;
        for (std::uint64_t v = value; v; v >>= 8) ++count;
        bits(code, 4);
        bits(count, 4);
        for (unsigned i = count; i-- > 0;) RC(static_cast<unsigned>(value >> (8 * i)));
    }
    void TV(const std::string& text) {
        BS(static_cast<int>(text.size()));
        for (unsigned char c : text) RC(c);
    }
    void TU(const std::u16string& text) {
        BS(static_cast<int>(text.size()));
        for (char16_t c : text) RS(c);
    }
    void MC(std::int64_t v) {
        const bool negative = v < 0;
        std::uint64_t u = negative ? static_cast<std::uint64_t>(-v) : static_cast<std::uint64_t>(v);
        while (u >= 0x40) {
            RC(0x80 | (u & 0x7F));
            u >>= 7;
        }
        RC(static_cast<unsigned>(u | (negative ? 0x40 : 0)));
    }
    void UMC(std::uint64_t u) {
        while (u >= 0x80) {
            RC(0x80 | (u & 0x7F));
            u >>= 7;
        }
        RC(static_cast<unsigned>(u));
    }
    void MS(std::uint32_t u) {
        while (u >= 0x8000) {
            RS(0x8000 | (u & 0x7FFF));
            u >>= 15;
        }
        RS(u);
    }
};

}  // namespace dwg_test
