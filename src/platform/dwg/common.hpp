#pragma once
// What every object and every entity of the object data starts with: the extended data, the
// owner, reactors and extension dictionary, and for entities the layer, linetype, colour and
// the other properties shared by all kinds. Handles are absolute, as the file numbers objects.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dwg/object_stream.hpp"

namespace dwg {

// Extended data of one application, kept as its bytes so that it can be written back.
struct ExtendedData {
    std::uint64_t application = 0;  // handle of the application's REGAPP record
    std::string bytes;
};

// Bytes as the upper-case hexadecimal digits a DXF binary value (310, 1004) is written in.
std::string HexDigits(std::string_view bytes);

// A colour's name as DXF gives it (430): the colour book's name and the colour's, joined by
// "$", or the colour's name alone; and the colour named by such a text.
std::string ColorNameText(const Color& color);
void SetColorName(Color& color, std::string_view text);

struct ObjectCommon {
    std::uint64_t handle = 0;
    std::vector<ExtendedData> extended;
    std::uint64_t owner = 0;
    std::vector<std::uint64_t> reactors;
    std::uint64_t extensionDictionary = 0;  // 0: none
    bool hasBinaryData = false;             // 2013 on: data-store data follows elsewhere
};

struct EntityCommon : ObjectCommon {
    std::string preview;          // the entity's graphic, as stored
    std::uint8_t mode = 0;        // 0: owner given by handle, 1: paper space, 2: model space
    Color color;
    double linetypeScale = 1.0;
    std::uint8_t linetypeFlags = 0;   // 0 by layer, 1 by block, 2 continuous, 3 by handle
    std::uint8_t plotStyleFlags = 0;  // 3: by handle
    std::uint8_t materialFlags = 0;
    std::uint8_t shadowFlags = 0;
    bool hasFullVisualStyle = false, hasFaceVisualStyle = false, hasEdgeVisualStyle = false;
    std::int16_t invisible = 0;
    std::uint8_t lineweight = 0;  // the stored index of the lineweight
    bool noLinks = true;
    std::uint64_t layer = 0, linetype = 0, plotStyle = 0, material = 0, colorBook = 0;
    std::uint64_t previous = 0, next = 0;
    std::uint64_t fullVisualStyle = 0, faceVisualStyle = 0, edgeVisualStyle = 0;
};

// The handle a reference read from the handle stream stands for.
std::uint64_t ReadHandle(ObjectStreams& o);

// Read right after OpenObject: the values then the handles common to all objects or entities.
// The stream of values stays at the first value of the kind.
void ReadObjectCommon(ObjectStreams& o, ObjectCommon& out);
void ReadEntityCommon(ObjectStreams& o, EntityCommon& out);

// A lineweight in hundredths of a millimetre (or -1 by layer, -2 by block, -3 default) from
// its stored index.
int LineweightFromIndex(std::uint8_t index);

}  // namespace dwg
