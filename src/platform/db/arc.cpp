#include "platform/db/arc.hpp"

#include <algorithm>
#include <cmath>

#include "platform/db/ocs.hpp"
#include "platform/ge/angle.hpp"

ACRX_DEFINE_MEMBERS(AcDbArc, AcDbCurve, L"ARC")

namespace {
using tavrik::ge::kTwoPi;
using tavrik::ge::wrapTwoPi;

// Whether the counter-clockwise sweep from start to end passes the angle.
bool sweepContains(double start, double end, double angle) {
    double sweep = wrapTwoPi(end - start);
    if (sweep == 0.0) sweep = kTwoPi;
    return wrapTwoPi(angle - start) <= sweep;
}
}  // namespace

Acad::ErrorStatus AcDbArc::setRadius(double r) {
    if (r <= 0.0) return Acad::eInvalidInput;
    m_radius = r;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::setNormal(const AcGeVector3d& n) {
    if (n.isZeroLength()) return Acad::eInvalidInput;
    // A normal of unit length is kept as given (a file's own may differ from ours in its last bit).
    m_extrusion.setNormal(n.isUnitLength() ? n : n.normal());
    return Acad::eOk;
}

double AcDbArc::totalAngle() const {
    double sweep = wrapTwoPi(m_endAngle - m_startAngle);
    return sweep == 0.0 ? kTwoPi : sweep;
}

Acad::ErrorStatus AcDbArc::getGeomExtents(AcDbExtents& extents) const {
    // The ends, plus each axis extreme of the full circle that the sweep passes.
    extents = AcDbExtents();
    const AcGeVector3d normal = m_extrusion.normal();
    auto pointAt = [&](double angle) { return m_center + tavrik::ocs::directionInPlane(angle, normal) * m_radius; };
    extents.addPoint(pointAt(m_startAngle));
    extents.addPoint(pointAt(m_endAngle));
    AcGeVector3d u = tavrik::ocs::directionInPlane(0.0, normal);
    AcGeVector3d v = tavrik::ocs::directionInPlane(M_PI / 2, normal);
    for (int i = 0; i < 3; ++i) {
        if (u[i] == 0.0 && v[i] == 0.0) continue;
        double extreme = std::atan2(v[i], u[i]);
        for (double angle : {extreme, extreme + M_PI})
            if (sweepContains(m_startAngle, m_endAngle, angle)) extents.addPoint(pointAt(angle));
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::transformBy(const AcGeMatrix3d& xform) {
    double scale = 1.0;
    if (!tavrik::ocs::uniformScale(xform, scale)) return Acad::eCannotScaleNonUniformly;
    const AcGeVector3d normal = xform.apply(m_extrusion.normal()).normal();
    AcGeVector3d startDir = xform.apply(tavrik::ocs::directionInPlane(m_startAngle, m_extrusion.normal()));
    AcGeVector3d endDir = xform.apply(tavrik::ocs::directionInPlane(m_endAngle, m_extrusion.normal()));
    m_center.transformBy(xform);
    m_extrusion.setNormal(normal);
    m_radius *= scale;
    // A reflection turns the sweep clockwise about the new normal: the ends change places.
    if (xform.det() < 0) std::swap(startDir, endDir);
    m_startAngle = tavrik::ocs::angleInPlane(startDir, normal);
    m_endAngle = tavrik::ocs::angleInPlane(endDir, normal);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getStretchPoints(AcGePoint3dArray& points) const {
    const AcGeVector3d normal = m_extrusion.normal();
    points.append(m_center + tavrik::ocs::directionInPlane(m_startAngle, normal) * m_radius);
    points.append(m_center + tavrik::ocs::directionInPlane(m_endAngle, normal) * m_radius);
    return Acad::eOk;
}
