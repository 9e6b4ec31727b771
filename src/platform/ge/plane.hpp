#pragma once
#include "platform/ge/point3d.hpp"
#include "platform/ge/vector3d.hpp"

// An unbounded plane through an origin, spanned by two axes.
class AcGePlane {
public:
    AcGePlane();
    AcGePlane(const AcGePoint3d& origin, const AcGeVector3d& normal);
    AcGePlane(const AcGePoint3d& origin, const AcGeVector3d& uAxis, const AcGeVector3d& vAxis);

    static const AcGePlane kXYPlane;
    static const AcGePlane kYZPlane;
    static const AcGePlane kZXPlane;

    AcGePoint3d pointOnPlane() const { return m_origin; }
    AcGeVector3d normal() const { return m_normal; }
    void getCoordSystem(AcGePoint3d& origin, AcGeVector3d& axis1, AcGeVector3d& axis2) const;
    // Signed distance from the plane along its normal.
    double signedDistanceTo(const AcGePoint3d& p) const;
    double distanceTo(const AcGePoint3d& p) const;
    AcGePoint3d closestPointTo(const AcGePoint3d& p) const;
    bool isOn(const AcGePoint3d& p, const AcGeTol& tol = AcGeContext::gTol) const;
    AcGePoint2d paramOf(const AcGePoint3d& p) const;
    AcGePoint3d evalPoint(const AcGePoint2d& param) const;

private:
    AcGePoint3d m_origin;
    AcGeVector3d m_uAxis;
    AcGeVector3d m_vAxis;
    AcGeVector3d m_normal;
};
