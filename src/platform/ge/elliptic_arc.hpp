#pragma once
#include "platform/ge/point3d.hpp"

// A circular or elliptical arc in space: point(t) = center + u cos t + v sin t for t running
// from start to end. end < start runs the arc clockwise about u x v. For a circle u and v are
// perpendicular and of the radius' length; for an ellipse they are its semi-axes.
namespace tavrik::ge {

struct EllipticArc {
    AcGePoint3d center;
    AcGeVector3d u;
    AcGeVector3d v;
    double start = 0.0;
    double end = 0.0;
};

struct Box3d {
    AcGePoint3d min;
    AcGePoint3d max;
};

AcGePoint3d pointAt(const EllipticArc& arc, double t);
AcGeVector3d derivativeAt(const EllipticArc& arc, double t);
// Whether t lies on the arc's parameter interval, either direction.
bool coversParam(const EllipticArc& arc, double t);
// The tight axis-aligned box: the ends and each axis extreme the arc passes.
Box3d boundingBox(const EllipticArc& arc);

}  // namespace tavrik::ge
