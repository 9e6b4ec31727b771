#pragma once
// The classes section: the object types a drawing numbers for itself (500 and up), with the
// names the DXF CLASSES section gives them.
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/dwg/bit_reader.hpp"
#include "platform/dwg/object_map.hpp"

namespace dwg {

// The object type of a drawing's first class.
inline constexpr std::int32_t kFirstClass = 500;

struct ClassRecord {
    std::int16_t number = 0;      // the object type the drawing uses for it
    std::int16_t proxyFlags = 0;  // DXF 90
    std::string application;      // DXF 3
    std::string cppName;          // DXF 2
    std::string dxfName;          // DXF 1
    bool wasZombie = false;       // DXF 280
    bool isEntity = false;        // DXF 281: the item class id is 0x1F2
    std::int32_t instanceCount = 0;  // 2004 on
};

// Reads the section as stored: start sentinel, size, class data, CRC, end sentinel.
bool ParseClasses(std::span<const std::uint8_t> section, Version version, int maintenance,
                  int codePage, std::vector<ClassRecord>& out, MapError& error);

// The DXF name of an object type: the fixed names below 500, the drawing's classes above.
std::string TypeName(std::int32_t type, const std::vector<ClassRecord>& classes);

}  // namespace dwg
