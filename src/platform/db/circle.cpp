#include "platform/db/circle.hpp"

#include <algorithm>
#include <cmath>

#include "platform/db/ocs.hpp"

ACRX_DEFINE_MEMBERS(AcDbCircle, AcDbCurve, L"CIRCLE")

Acad::ErrorStatus AcDbCircle::setRadius(double r) {
    if (r <= 0.0) return Acad::eInvalidInput;
    m_radius = r;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::setNormal(const AcGeVector3d& n) {
    if (n.isZeroLength()) return Acad::eInvalidInput;
    // A normal of unit length is kept as given (a file's own may differ from ours in its last bit).
    m_extrusion.setNormal(n.isUnitLength() ? n : n.normal());
    return Acad::eOk;
}

double AcDbCircle::circumference() const { return 2.0 * M_PI * m_radius; }

Acad::ErrorStatus AcDbCircle::getGeomExtents(AcDbExtents& extents) const {
    // Per axis, a circle reaches r * sqrt(1 - n_i^2) either side of its centre.
    extents = AcDbExtents();
    const AcGeVector3d normal = m_extrusion.normal();
    AcGeVector3d reach;
    for (int i = 0; i < 3; ++i) reach[i] = m_radius * std::sqrt(std::max(0.0, 1.0 - normal[i] * normal[i]));
    extents.addPoint(m_center - reach);
    extents.addPoint(m_center + reach);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::transformBy(const AcGeMatrix3d& xform) {
    double scale = 1.0;
    if (!tavrik::ocs::uniformScale(xform, scale)) return Acad::eCannotScaleNonUniformly;
    m_center.transformBy(xform);
    m_extrusion.setNormal(xform.apply(m_extrusion.normal()).normal());
    m_radius *= scale;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getStretchPoints(AcGePoint3dArray& points) const {
    points.append(m_center);
    return Acad::eOk;
}
