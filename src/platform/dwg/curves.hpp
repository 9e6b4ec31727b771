#pragma once
// Decoders of the curve entities: ellipses, light-weight polylines, the classic polylines with
// their vertices, and solids.
#include <cstdint>
#include <vector>

#include "platform/dwg/blocks.hpp"

namespace dwg {

struct EllipseRecord {
    EntityCommon common;
    Point3 center, majorAxis, normal{0, 0, 1};
    double ratio = 1, startParam = 0, endParam = 0;
};

struct LwPolylineRecord {
    EntityCommon common;
    std::int16_t flags = 0;  // 512 closed, 256 linetype generation
    double constantWidth = 0, elevation = 0, thickness = 0;
    Point3 normal{0, 0, 1};
    std::vector<Point2> points;
    std::vector<double> bulges;
    std::vector<std::int32_t> vertexIds;
    std::vector<Point2> widths;  // start and end width per vertex
    bool closed() const { return (flags & 512) != 0; }
};

// POLYLINE: 2D (15), 3D (16) or polyface mesh (29); flags as DXF 70 gives them for 2D.
struct PolylineRecord {
    EntityCommon common;
    std::int32_t kind = 0;  // the object type
    std::int16_t flags = 0, curveType = 0;
    double startWidth = 0, endWidth = 0, thickness = 0, elevation = 0;
    Point3 normal{0, 0, 1};
    std::int16_t vertexCount = 0, faceCount = 0;  // polyface mesh
    OwnedList vertices;
};

struct VertexRecord {
    EntityCommon common;
    std::int32_t kind = 0;
    std::uint8_t flags = 0;
    Point3 position;
    double startWidth = 0, endWidth = 0, bulge = 0, tangent = 0;
    std::int32_t id = 0;
    std::int16_t faceIndex[4] = {0, 0, 0, 0};  // polyface face record
};

struct SolidRecord {
    EntityCommon common;
    double thickness = 0, elevation = 0;
    Point2 corners[4];
    Point3 normal{0, 0, 1};
};

bool ReadEllipse(ObjectStreams& o, EllipseRecord& out);
bool ReadLwPolyline(ObjectStreams& o, LwPolylineRecord& out);
bool ReadPolyline(ObjectStreams& o, PolylineRecord& out);
bool ReadVertex(ObjectStreams& o, VertexRecord& out);
bool ReadSolid(ObjectStreams& o, SolidRecord& out);  // SOLID and TRACE

}  // namespace dwg
