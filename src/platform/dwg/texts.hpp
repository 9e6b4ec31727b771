#pragma once
// Decoders of the text entities beside TEXT: paragraph text (MTEXT) and the attributes and
// attribute definitions of blocks.
#include <cstdint>
#include <string>

#include "platform/dwg/entities.hpp"

namespace dwg {

struct MTextRecord {
    EntityCommon common;
    Point3 insertion, normal{0, 0, 1}, direction{1, 0, 0};
    double width = 0, rectHeight = 0, height = 0;
    std::int16_t attachment = 1, flow = 1;
    double extentsHeight = 0, extentsWidth = 0;
    std::string contents;  // UTF-8, with the format codes as stored
    std::int16_t lineSpacingStyle = 1;
    double lineSpacingFactor = 1;
    std::int32_t backgroundFlags = 0;
    double backgroundScale = 1.5;
    Color backgroundColor;
    std::uint32_t backgroundTransparency = 0;
    std::uint64_t style = 0;
};

// ATTRIB and ATTDEF: the values of a TEXT, then the attribute's own.
struct AttributeRecord {
    TextRecord text;
    std::uint8_t version = 0;  // 2010 on
    std::uint8_t kind = 1;     // 2018 on: 1 single line, 2 multi-line attribute, 4 definition
    std::string tag, prompt;   // UTF-8; the prompt for definitions only
    std::int16_t fieldLength = 0;
    std::uint8_t flags = 0;    // DXF 70: 1 invisible, 2 constant, 4 verify, 8 preset
    bool lockPosition = false;
};

bool ReadMText(ObjectStreams& o, MTextRecord& out);
bool ReadAttribute(ObjectStreams& o, AttributeRecord& out, bool definition);

}  // namespace dwg
