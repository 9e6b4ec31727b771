#pragma once
#include "platform/ge/matrix3d.hpp"

// Object coordinate systems: planar entities keep angles in the plane of their normal, with the
// x direction given by the drawing format's arbitrary-axis rule.
namespace tavrik::ocs {
// The polar angle of a world direction inside the plane of a normal.
double angleInPlane(const AcGeVector3d& direction, const AcGeVector3d& normal);
// The world direction of a polar angle in the plane of a normal.
AcGeVector3d directionInPlane(double angle, const AcGeVector3d& normal);
// The scale of a transformation that must scale all directions alike; false when it does not.
bool uniformScale(const AcGeMatrix3d& xform, double& scale);
}  // namespace tavrik::ocs
