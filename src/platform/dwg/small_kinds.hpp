#pragma once
// Decoders of the small kinds: 3D faces, rays and construction lines among the entities;
// dictionary variables, annotation scales, groups and place holders among the objects.
#include <cstdint>
#include <string>
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

// ACDBPLACEHOLDER: nothing beyond the common data.
struct PlaceHolderRecord {
    ObjectCommon common;
};

bool ReadFace(ObjectStreams& o, FaceRecord& out);
bool ReadRay(ObjectStreams& o, RayRecord& out);
bool ReadDictionaryVariable(ObjectStreams& o, DictionaryVariableRecord& out);
bool ReadScale(ObjectStreams& o, ScaleRecord& out);
bool ReadGroup(ObjectStreams& o, GroupRecord& out);
bool ReadPlaceHolder(ObjectStreams& o, PlaceHolderRecord& out);

}  // namespace dwg
