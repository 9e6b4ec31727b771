#pragma once
// Little-endian values at byte offsets of the file container's fixed layouts (file headers, page
// headers, maps). The caller has checked that the bytes are there.
#include <cstdint>
#include <span>

namespace dwg {

inline std::uint16_t RawShort(std::span<const std::uint8_t> bytes, std::size_t at) {
    return static_cast<std::uint16_t>(bytes[at] | (bytes[at + 1] << 8));
}

inline std::uint32_t RawLong(std::span<const std::uint8_t> bytes, std::size_t at) {
    return static_cast<std::uint32_t>(bytes[at]) | (static_cast<std::uint32_t>(bytes[at + 1]) << 8) |
           (static_cast<std::uint32_t>(bytes[at + 2]) << 16) |
           (static_cast<std::uint32_t>(bytes[at + 3]) << 24);
}

inline std::uint64_t RawLongLong(std::span<const std::uint8_t> bytes, std::size_t at) {
    return RawLong(bytes, at) | (static_cast<std::uint64_t>(RawLong(bytes, at + 4)) << 32);
}

// True when [offset, offset + size) lies within `total` bytes, without overflow.
inline bool Fits(std::uint64_t offset, std::uint64_t size, std::uint64_t total) {
    return offset <= total && size <= total - offset;
}

}  // namespace dwg
