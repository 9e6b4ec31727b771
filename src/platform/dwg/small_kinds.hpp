#pragma once
// Decoders of the small kinds: 3D faces, rays and construction lines among the entities;
// dictionary variables, annotation scales, groups, multiline styles and place holders among the
// objects.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dwg/common.hpp"

namespace dwg {

struct FaceRecord {
    EntityCommon common;
    Point3 corners[4];
    std::int16_t invisibleEdges = 0;  // DXF 70
};

// RAY and XLINE.
struct RayRecord {
    EntityCommon common;
    Point3 point, direction;
};

struct DictionaryVariableRecord {
    ObjectCommon common;
    std::uint8_t schema = 0;
    std::string value;  // UTF-8
};

struct ScaleRecord {
    ObjectCommon common;
    std::int16_t flags = 0;
    std::string name;
    double paperUnits = 1, drawingUnits = 1;
    bool unitScale = false;
};

struct GroupRecord {
    ObjectCommon common;
    std::string description;
    std::int16_t unnamed = 0, selectable = 1;
    std::vector<std::uint64_t> entities;
};

// One line of a multiline style. Its linetype is an index before 2018 (kLinetypeIndexByLayer by
// layer), a reference to the linetype from 2018 on.
inline constexpr std::int16_t kLinetypeIndexByLayer = 0x7FFF;
struct MLineStyleLine {
    double offset = 0;
    Color color;
    std::int16_t linetypeIndex = 0;
    std::uint64_t linetype = 0;  // 2018 on
};

struct MLineStyleRecord {
    ObjectCommon common;
    std::string name, description;
    std::int16_t flags = 0;
    Color fill;
    double startAngle = 0, endAngle = 0;  // radians
    std::vector<MLineStyleLine> lines;
};

// ACDBPLACEHOLDER: nothing beyond the common data.
struct PlaceHolderRecord {
    ObjectCommon common;
};

bool ReadFace(ObjectStreams& o, FaceRecord& out);
bool ReadRay(ObjectStreams& o, RayRecord& out);
bool ReadDictionaryVariable(ObjectStreams& o, DictionaryVariableRecord& out);
bool ReadScale(ObjectStreams& o, ScaleRecord& out);
bool ReadGroup(ObjectStreams& o, GroupRecord& out);
bool ReadMLineStyle(ObjectStreams& o, MLineStyleRecord& out);
// Whether the style's DXF record says all it holds: colours by index alone (no true colour nor
// names), each line's linetype by layer or, from 2018, by reference. The others are kept whole:
// what another linetype index stands for is not known here.
bool MLineStyleInDxfTerms(const MLineStyleRecord& style);
// Whether two names are the same but for the case of their ASCII letters (linetype names).
bool SameAsciiNoCase(std::string_view a, std::string_view b);
bool ReadPlaceHolder(ObjectStreams& o, PlaceHolderRecord& out);

}  // namespace dwg
