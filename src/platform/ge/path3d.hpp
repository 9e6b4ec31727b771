#pragma once
#include <optional>
#include <vector>

#include "platform/ge/bulge.hpp"
#include "platform/ge/elliptic_arc.hpp"
#include "platform/ge/parametric_curve.hpp"

// A chain of straight and circular segments in space, parameterised by segment index: the
// parameter i is the start of segment i, and i + f lies the fraction f along it (of its
// length, which for an arc is the fraction of its sweep). Polylines of every kind map onto it.
namespace tavrik::ge {

struct PathSegment3d {
    AcGePoint3d start;
    AcGePoint3d end;
    std::optional<EllipticArc> arc;  // a circular arc (u and v of the radius' length)
};

struct Path3d {
    AcGePoint3d first;  // the start, also for a path of one vertex and no segments
    std::vector<PathSegment3d> segments;
};

double segmentLength(const PathSegment3d& segment);
AcGePoint3d pointAt(const PathSegment3d& segment, double fraction);
// The derivative with respect to the fraction.
AcGeVector3d derivativeAt(const PathSegment3d& segment, double fraction);

// A bulge path lying in the plane of a normal at an elevation (object coordinates).
Path3d pathInPlane(const BulgePath& path, const AcGeVector3d& normal, double elevation);
// Straight segments through world points.
Path3d pathThrough(const std::vector<AcGePoint3d>& points, bool closed);

double endParam(const Path3d& path);
// The parameter must lie on [0, endParam].
AcGePoint3d pointAtParam(const Path3d& path, double param);
AcGeVector3d derivativeAtParam(const Path3d& path, double param);
double lengthAtParam(const Path3d& path, double param);
ParamPoint closestPoint(const Path3d& path, const AcGePoint3d& query);

}  // namespace tavrik::ge
