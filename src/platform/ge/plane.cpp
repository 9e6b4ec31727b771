#include "platform/ge/plane.hpp"

#include <cmath>

const AcGePlane AcGePlane::kXYPlane{AcGePoint3d::kOrigin, AcGeVector3d::kXAxis,
                                    AcGeVector3d::kYAxis};
const AcGePlane AcGePlane::kYZPlane{AcGePoint3d::kOrigin, AcGeVector3d::kYAxis,
                                    AcGeVector3d::kZAxis};
const AcGePlane AcGePlane::kZXPlane{AcGePoint3d::kOrigin, AcGeVector3d::kZAxis,
                                    AcGeVector3d::kXAxis};

AcGePlane::AcGePlane() : AcGePlane(AcGePoint3d::kOrigin, AcGeVector3d::kZAxis) {}

AcGePlane::AcGePlane(const AcGePoint3d& origin, const AcGeVector3d& normal)
    : m_origin(origin), m_normal(normal.normal()) {
    m_uAxis = m_normal.perpVector();
    m_vAxis = m_normal.crossProduct(m_uAxis).normal();
}

AcGePlane::AcGePlane(const AcGePoint3d& origin, const AcGeVector3d& uAxis,
                     const AcGeVector3d& vAxis)
    : m_origin(origin), m_uAxis(uAxis), m_vAxis(vAxis),
      m_normal(uAxis.crossProduct(vAxis).normal()) {}

void AcGePlane::getCoordSystem(AcGePoint3d& origin, AcGeVector3d& axis1,
                               AcGeVector3d& axis2) const {
    origin = m_origin;
    axis1 = m_uAxis;
    axis2 = m_vAxis;
}

double AcGePlane::signedDistanceTo(const AcGePoint3d& p) const {
    return (p - m_origin).dotProduct(m_normal);
}

double AcGePlane::distanceTo(const AcGePoint3d& p) const { return std::fabs(signedDistanceTo(p)); }

AcGePoint3d AcGePlane::closestPointTo(const AcGePoint3d& p) const {
    return p - m_normal * signedDistanceTo(p);
}

bool AcGePlane::isOn(const AcGePoint3d& p, const AcGeTol& tol) const {
    return distanceTo(p) <= tol.equalPoint();
}

AcGePoint2d AcGePlane::paramOf(const AcGePoint3d& p) const {
    // Solve p - origin = u * uAxis + v * vAxis in the least-squares sense (axes may be skew).
    AcGeVector3d d = p - m_origin;
    double uu = m_uAxis.dotProduct(m_uAxis), uv = m_uAxis.dotProduct(m_vAxis);
    double vv = m_vAxis.dotProduct(m_vAxis);
    double du = d.dotProduct(m_uAxis), dv = d.dotProduct(m_vAxis);
    double det = uu * vv - uv * uv;
    if (det == 0.0) return {};
    return {(du * vv - dv * uv) / det, (dv * uu - du * uv) / det};
}

AcGePoint3d AcGePlane::evalPoint(const AcGePoint2d& param) const {
    return m_origin + m_uAxis * param.x + m_vAxis * param.y;
}
