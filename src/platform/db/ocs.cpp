#include "platform/db/ocs.hpp"

#include <cmath>

namespace tavrik::ocs {

double angleInPlane(const AcGeVector3d& direction, const AcGeVector3d& normal) {
    AcGeVector3d local = AcGeMatrix3d::worldToPlane(normal).apply(direction);
    double angle = std::atan2(local.y, local.x);
    return angle < 0 ? angle + 2.0 * M_PI : angle;
}

AcGeVector3d directionInPlane(double angle, const AcGeVector3d& normal) {
    return AcGeMatrix3d::planeToWorld(normal).apply(
        AcGeVector3d(std::cos(angle), std::sin(angle), 0.0));
}

bool uniformScale(const AcGeMatrix3d& xform, double& scale) {
    if (!xform.isUniScaledOrtho()) return false;
    scale = AcGeVector3d(xform(0, 0), xform(1, 0), xform(2, 0)).length();
    return scale > 0.0;
}

}  // namespace tavrik::ocs
