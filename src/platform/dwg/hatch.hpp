#pragma once
// HATCH: the boundary paths (edges or polylines), the pattern and its lines, the seed points
// and, from 2004 on, the gradient.
#include <cstdint>
#include <string>
#include <vector>

#include "platform/dwg/common.hpp"

namespace dwg {

struct HatchEdge {
    std::uint8_t type = 1;  // 1 line, 2 circular arc, 3 elliptic arc, 4 spline
    Point2 start, end;      // line; centre and major axis end for the arcs (end unused by 2)
    double radius = 0, startAngle = 0, endAngle = 0;  // radius, or the ellipse's axis ratio
    bool counterClockwise = true;
    // spline
    std::int32_t degree = 3;
    bool rational = false, periodic = false;
    std::vector<double> knots, weights;
    std::vector<Point2> controlPoints, fitPoints;
    Point2 startTangent, endTangent;
};

struct HatchPath {
    std::int32_t flags = 0;  // 2: a polyline
    std::vector<HatchEdge> edges;
    bool hasBulges = false, closed = false;
    std::vector<Point2> vertices;
    std::vector<double> bulges;
    std::vector<std::uint64_t> sources;  // the boundary objects
};

struct PatternLine {
    double angle = 0;
    Point2 base, offset;
    std::vector<double> dashes;
};

struct HatchRecord {
    EntityCommon common;
    bool gradient = false;
    std::int32_t gradientReserved = 0, singleColor = 0;
    double gradientAngle = 0, gradientShift = 0, gradientTint = 0;
    std::vector<std::pair<double, std::uint32_t>> gradientColors;  // value, rgb
    std::string gradientName;
    double elevation = 0;
    Point3 normal{0, 0, 1};
    std::string name;
    bool solid = false, associative = false;
    std::vector<HatchPath> paths;
    std::int16_t style = 0, patternType = 1;
    double angle = 0, scale = 1;
    bool doubled = false;
    std::vector<PatternLine> lines;
    double pixelSize = 0;
    bool hasPixelSize = false;
    std::vector<Point2> seeds;
};

bool ReadHatch(ObjectStreams& o, HatchRecord& out);

}  // namespace dwg
