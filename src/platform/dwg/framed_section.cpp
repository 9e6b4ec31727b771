#include "platform/dwg/framed_section.hpp"

#include <cstring>

namespace dwg {

bool SizeHasHighWord(Version version, int maintenance) {
    return version >= Version::kR2018 || (version >= Version::kR2010 && maintenance > 3);
}

bool ReadFramedSection(std::span<const std::uint8_t> section, std::span<const std::uint8_t, 16> sentinel,
                       Version version, int maintenance, const std::string& what, FramedData& out,
                       MapError& error) {
    if (section.size() < 16 + 4 || std::memcmp(section.data(), sentinel.data(), 16) != 0) {
        error = {0, what + " does not start with its sentinel"};
        return false;
    }
    std::uint32_t size;
    std::memcpy(&size, section.data() + 16, 4);
    const std::size_t start = SizeHasHighWord(version, maintenance) ? 24 : 20;
    if (section.size() < start + 2 || size > section.size() - start - 2) {
        error = {16, what + " size " + std::to_string(size) + " runs past the section"};
        return false;
    }
    const std::uint16_t stored =
        static_cast<std::uint16_t>(section[start + size] | (section[start + size + 1] << 8));
    if (kCrcRefuses && Crc16(0xC0C1, section.subspan(16, start - 16 + size)) != stored) {
        error = {start + size, what + " CRC mismatch"};
        return false;
    }
    out = {section.subspan(start, size), start};
    return true;
}

}  // namespace dwg
