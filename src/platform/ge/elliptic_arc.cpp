#include "platform/ge/elliptic_arc.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "platform/ge/angle.hpp"

namespace tavrik::ge {

AcGePoint3d pointAt(const EllipticArc& arc, double t) {
    return arc.center + arc.u * std::cos(t) + arc.v * std::sin(t);
}

AcGeVector3d derivativeAt(const EllipticArc& arc, double t) {
    return arc.v * std::cos(t) - arc.u * std::sin(t);
}

bool coversParam(const EllipticArc& arc, double t) {
    double lo = std::min(arc.start, arc.end);
    double span = std::fabs(arc.end - arc.start);
    return span >= kTwoPi || wrapTwoPi(t - lo) <= span;
}

Box3d boundingBox(const EllipticArc& arc) {
    AcGePoint3d first = pointAt(arc, arc.start);
    Box3d box{first, first};
    auto add = [&box](const AcGePoint3d& p) {
        for (int i = 0; i < 3; ++i) {
            box.min[i] = std::min(box.min[i], p[i]);
            box.max[i] = std::max(box.max[i], p[i]);
        }
    };
    add(pointAt(arc, arc.end));
    // Coordinate i is c_i + u_i cos t + v_i sin t: extreme where tan t = v_i / u_i.
    for (int i = 0; i < 3; ++i) {
        if (arc.u[i] == 0.0 && arc.v[i] == 0.0) continue;
        double extreme = std::atan2(arc.v[i], arc.u[i]);
        for (double t : {extreme, extreme + std::numbers::pi})
            if (coversParam(arc, t)) add(pointAt(arc, t));
    }
    return box;
}

}  // namespace tavrik::ge
