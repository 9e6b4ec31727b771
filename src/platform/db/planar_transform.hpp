#pragma once
#include <optional>

#include "platform/db/ocs.hpp"

// Moving an entity that lives in the plane of its normal (object coordinates) by a world
// transformation that scales all directions alike.
namespace tavrik::ocs {

struct PlanarTransform {
    AcGeMatrix3d objectMap;  // old object coordinates to new object coordinates
    AcGeVector3d normal;     // the new normal
    double scale = 1.0;
    bool mirrored = false;   // a reflection: counter-clockwise turns become clockwise
};

inline std::optional<PlanarTransform> planarTransform(const AcGeMatrix3d& xform,
                                                      const AcGeVector3d& normal) {
    PlanarTransform out;
    if (!uniformScale(xform, out.scale)) return std::nullopt;
    out.normal = xform.apply(normal).normal();
    out.mirrored = xform.det() < 0;
    out.objectMap = AcGeMatrix3d::worldToPlane(out.normal) * xform *
                    AcGeMatrix3d::planeToWorld(normal);
    return out;
}

}  // namespace tavrik::ocs
