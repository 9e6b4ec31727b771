#pragma once
#include <vector>

#include "platform/ge/point2d.hpp"

// A polyline segment in its plane: straight from start to end, or a circular arc when the bulge
// is non-zero. The bulge is tan(sweep / 4); positive turns counter-clockwise. Positions along a
// segment are fractions in [0, 1] of its chord or of its swept angle, so they are proportional
// to the length travelled.
namespace tavrik::ge {

struct BulgeSegment {
    AcGePoint2d start;
    AcGePoint2d end;
    double bulge = 0.0;
};

struct BulgeArc {
    AcGePoint2d center;
    double radius = 0.0;
    double startAngle = 0.0;
    double sweep = 0.0;  // signed: negative runs clockwise
};

struct SegmentHit {
    double fraction = 0.0;
    AcGePoint2d point;
    double distance = 0.0;
};

bool isArc(const BulgeSegment& segment);
// The circle of an arc segment (meaningless for a straight one).
BulgeArc arcOf(const BulgeSegment& segment);
double bulgeFromSweep(double sweep);
double sweepFromBulge(double bulge);
double segmentLength(const BulgeSegment& segment);
AcGePoint2d pointAt(const BulgeSegment& segment, double fraction);
// The direction of travel at a fraction (not normalised).
AcGeVector2d tangentAt(const BulgeSegment& segment, double fraction);
SegmentHit closestPoint(const BulgeSegment& segment, const AcGePoint2d& query);
// Twice the signed area between the segment and the origin (shoelace term plus the arc's
// circular segment); summed over a closed loop it gives twice the loop's signed area.
double signedAreaTerm(const BulgeSegment& segment);

// A chain of bulge segments: each vertex carries the bulge of the segment that leaves it; a
// closed path runs on from its last vertex back to the first.
struct BulgeVertex {
    AcGePoint2d point;
    double bulge = 0.0;
};

struct BulgePath {
    std::vector<BulgeVertex> vertices;
    bool closed = false;
};

std::vector<BulgeSegment> segmentsOf(const BulgePath& path);
// Positive when a closed path runs counter-clockwise.
double signedArea(const BulgePath& path);

}  // namespace tavrik::ge
