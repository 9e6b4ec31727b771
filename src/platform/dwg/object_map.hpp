#pragma once
// The object map (the AcDb:Handles section): where each object of the drawing starts in the
// object data, as pages of handle and offset differences, each page checked by its CRC.
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace dwg {

struct ObjectLocation {
    std::uint64_t handle = 0;
    std::int64_t offset = 0;  // byte offset of the object in the object data
};

struct MapError {
    std::size_t offset = 0;  // byte offset in the section where the fault lies
    std::string reason;
};

// The format's 16-bit CRC (the reflected 0xA001 polynomial) from a seed.
std::uint16_t Crc16(std::uint16_t seed, std::span<const std::uint8_t> bytes);

// Whether a CRC that does not match refuses the data. Fuzzing builds (clang's libFuzzer
// convention) let mutated bytes past the CRCs of the header, classes, object map and objects, so
// that the decoders behind them meet the mutations; every other build checks them.
#ifdef FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION
inline constexpr bool kCrcRefuses = false;
#else
inline constexpr bool kCrcRefuses = true;
#endif

// Reads the pages of the map in file order. False with the error's offset and reason on a page
// that runs past the section or whose CRC does not match.
bool ParseObjectMap(std::span<const std::uint8_t> section, std::vector<ObjectLocation>& out,
                    MapError& error);

}  // namespace dwg
