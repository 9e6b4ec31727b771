#include "platform/dwg/object_map.hpp"

#include <array>

#include "platform/dwg/bit_reader.hpp"

namespace dwg {
namespace {

// The CRC's tables for eight bytes at a time: table k gives what a byte contributes when k
// more bytes follow it in the block.
using CrcTables = std::array<std::array<std::uint16_t, 256>, 8>;

constexpr CrcTables MakeCrcTables() {
    CrcTables tables{};
    for (unsigned i = 0; i < 256; ++i) {
        unsigned crc = i;
        for (int k = 0; k < 8; ++k) crc = (crc & 1) ? (crc >> 1) ^ 0xA001 : crc >> 1;
        tables[0][i] = static_cast<std::uint16_t>(crc);
    }
    for (std::size_t k = 1; k < tables.size(); ++k) {
        for (unsigned i = 0; i < 256; ++i) {
            const unsigned prev = tables[k - 1][i];
            tables[k][i] = static_cast<std::uint16_t>((prev >> 8) ^ tables[0][prev & 0xFF]);
        }
    }
    return tables;
}

constexpr auto kCrcTables = MakeCrcTables();

}  // namespace

std::uint16_t Crc16(std::uint16_t seed, std::span<const std::uint8_t> bytes) {
    const auto& t = kCrcTables;
    unsigned crc = seed;
    std::size_t i = 0;
    // Every object's data goes through here: eight bytes per step, one table look-up each.
    for (; bytes.size() - i >= 8; i += 8) {
        const std::uint8_t* b = bytes.data() + i;
        crc = t[7][(crc ^ b[0]) & 0xFF] ^ t[6][((crc >> 8) ^ b[1]) & 0xFF] ^ t[5][b[2]] ^
              t[4][b[3]] ^ t[3][b[4]] ^ t[2][b[5]] ^ t[1][b[6]] ^ t[0][b[7]];
    }
    for (; i < bytes.size(); ++i) crc = (crc >> 8) ^ t[0][(crc ^ bytes[i]) & 0xFF];
    return static_cast<std::uint16_t>(crc);
}

bool ParseObjectMap(std::span<const std::uint8_t> section, std::vector<ObjectLocation>& out,
                    MapError& error) {
    std::size_t at = 0;
    for (;;) {
        if (section.size() - at < 2) {
            error = {at, "object map ends before its last page"};
            return false;
        }
        // The page size is stored high byte first and counts itself, not the CRC.
        const std::size_t size = (std::size_t{section[at]} << 8) | section[at + 1];
        if (size == 2) return true;  // the empty page closes the map
        if (size < 2 || size + 2 > section.size() - at) {
            error = {at, "object map page of size " + std::to_string(size) + " does not fit"};
            return false;
        }
        const auto page = section.subspan(at, size);
        const std::uint16_t stored =
            static_cast<std::uint16_t>((section[at + size] << 8) | section[at + size + 1]);
        if (kCrcRefuses && Crc16(0xC0C1, page) != stored) {
            error = {at, "object map page CRC mismatch"};
            return false;
        }
        // Each page counts its differences from zero again.
        BitReader r(page.subspan(2), Version::kR2000);
        std::uint64_t handle = 0;
        std::int64_t offset = 0;
        while (r.bytePosition() < page.size() - 2) {
            handle += r.UMC();
            offset += r.MC();
            if (r.failed()) {
                error = {at + 2 + r.bytePosition(), "object map entry runs past its page"};
                return false;
            }
            out.push_back({handle, offset});
        }
        at += size + 2;
    }
}

}  // namespace dwg
