#pragma once
// Decoders of dimensions (every kind: linear, aligned, angular by two lines and by three
// points, radius, diameter, ordinate) and splines.
#include <cstdint>
#include <string>
#include <vector>

#include "platform/dwg/common.hpp"

namespace dwg {

// The points keep the numbers of their DXF group codes: point[0] is DXF 10, point[3] DXF 13...
struct DimensionRecord {
    EntityCommon common;
    std::int32_t kind = 0;   // the object type, 20 to 26
    std::uint8_t version = 0;
    Point3 normal{0, 0, 1};
    Point2 textMidpoint;     // DXF 11, in the dimension's plane
    double elevation = 0;
    std::uint8_t flags = 0;  // bit 0 clear: the text was placed by the user
    std::string text;        // UTF-8; empty: the measurement
    double textRotation = 0, horizontalDirection = 0;
    Point3 insertScale{1, 1, 1};
    double insertRotation = 0;
    std::int16_t attachment = 5, lineSpacingStyle = 1;
    double lineSpacingFactor = 1, measurement = 0;
    bool flipArrow1 = false, flipArrow2 = false;
    Point2 clonePoint;       // DXF 12
    Point3 points[7];        // DXF 10, -, -, 13, 14, 15, 16
    double obliqueAngle = 0, rotation = 0, leaderLength = 0;
    bool ordinateX = false;
    std::uint64_t style = 0, block = 0;
    // The DXF type number (70 & 7): 0 linear, 1 aligned, 2 angular, 3 diameter, 4 radius,
    // 5 angular by three points, 6 ordinate.
    int dxfType() const;
};

struct SplineRecord {
    EntityCommon common;
    std::int32_t scenario = 1;  // 1 by control points, 2 by fit points
    std::int32_t degree = 3;
    bool rational = false, closed = false, periodic = false, weighted = false;
    double knotTolerance = 0, controlTolerance = 0, fitTolerance = 0;
    Point3 startTangent, endTangent;
    std::vector<double> knots, weights;
    std::vector<Point3> controlPoints, fitPoints;
};

bool ReadDimension(ObjectStreams& o, DimensionRecord& out);
bool ReadSpline(ObjectStreams& o, SplineRecord& out);

}  // namespace dwg
