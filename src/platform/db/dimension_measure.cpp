#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "platform/db/dimension.hpp"
#include "platform/db/ocs.hpp"
#include "platform/ge/angle.hpp"
#include "platform/ge/platform_tolerances.hpp"

// The values the dimensions show, from their defining points: lengths in drawing units, taken
// in the plane of the dimension's normal; angles in radians.

namespace {
// The part of a displacement that lies in the dimension's plane.
AcGeVector3d inPlane(const AcGeVector3d& v, const AcGeVector3d& normal) {
    return v - normal * v.dotProduct(normal);
}

double angleInPlane(const AcGeVector3d& v, const AcGeVector3d& normal) {
    return tavrik::ocs::angleInPlane(v, normal);
}

// Where the two lines of an angular dimension cross, in the dimension's plane; empty when they
// are parallel.
std::optional<AcGePoint3d> vertexOf(const AcDb2LineAngularDimension& dim) {
    const AcGeVector3d n = dim.normal();
    AcGeVector3d d1 = inPlane(dim.xLine1End() - dim.xLine1Start(), n);
    AcGeVector3d d2 = inPlane(dim.xLine2End() - dim.xLine2Start(), n);
    double denom = d1.crossProduct(d2).dotProduct(n);
    if (std::fabs(denom) <= tavrik::platform_tol::kZeroLength) return std::nullopt;
    double s = inPlane(dim.xLine2Start() - dim.xLine1Start(), n).crossProduct(d2).dotProduct(n) /
               denom;
    return dim.xLine1Start() + d1 * s;
}
}  // namespace

Acad::ErrorStatus AcDbDimension::measurement(double&) const { return Acad::eNotImplementedYet; }

Acad::ErrorStatus AcDbRotatedDimension::measurement(double& value) const {
    AcGeVector3d along = tavrik::ocs::directionInPlane(m_rotation, normal());
    value = std::fabs((m_xLine2 - m_xLine1).dotProduct(along));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbAlignedDimension::measurement(double& value) const {
    value = inPlane(m_xLine2 - m_xLine1, normal()).length();
    return Acad::eOk;
}

// The distance along the dimension's x or y direction, shown without sign.
Acad::ErrorStatus AcDbOrdinateDimension::measurement(double& value) const {
    AcGeVector3d axis = tavrik::ocs::directionInPlane(m_useXAxis ? 0.0 : 0.5 * M_PI, normal());
    value = std::fabs((m_definingPoint - m_origin).dotProduct(axis));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDiametricDimension::measurement(double& value) const {
    value = m_chord.distanceTo(m_farChord);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbRadialDimension::measurement(double& value) const {
    value = m_center.distanceTo(m_chord);
    return Acad::eOk;
}

// The angle of the sector between the two lines that holds the arc point.
Acad::ErrorStatus AcDb2LineAngularDimension::measurement(double& value) const {
    std::optional<AcGePoint3d> vertex = vertexOf(*this);
    if (!vertex) return Acad::eDegenerateGeometry;
    const AcGeVector3d n = normal();
    const double a1 = angleInPlane(m_l1e - m_l1s, n);
    const double a2 = angleInPlane(m_l2e - m_l2s, n);
    // The four rays from the vertex, counter-clockwise from the arc point's direction.
    const double at = angleInPlane(m_arc - *vertex, n);
    std::array<double, 4> rays{};
    std::size_t k = 0;
    for (double a : {a1, a1 + M_PI, a2, a2 + M_PI}) rays[k++] = tavrik::ge::wrapTwoPi(a - at);
    std::sort(rays.begin(), rays.end());
    // The sector holding the arc point runs from the last ray (behind it) to the first.
    value = rays.front() + tavrik::ge::kTwoPi - rays.back();
    return Acad::eOk;
}
