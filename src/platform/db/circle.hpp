#pragma once
#include "platform/db/curve.hpp"
#include "platform/db/extrusion.hpp"

// A full circle in the plane of its normal.
class AcDbCircle : public AcDbCurve {
public:
    ACRX_DECLARE_MEMBERS(AcDbCircle)
    AcDbCircle() = default;
    AcDbCircle(const AcGePoint3d& center, const AcGeVector3d& normal, double radius)
        : m_center(center), m_radius(radius) {
        m_extrusion.setNormal(normal.normal());
    }

    AcGePoint3d center() const { return m_center; }
    Acad::ErrorStatus setCenter(const AcGePoint3d& p) { m_center = p; return Acad::eOk; }
    double radius() const { return m_radius; }
    Acad::ErrorStatus setRadius(double r);
    AcGeVector3d normal() const { return m_extrusion.normal(); }
    Acad::ErrorStatus setNormal(const AcGeVector3d& n);
    double thickness() const { return m_extrusion.thickness(); }
    Acad::ErrorStatus setThickness(double t) { m_extrusion.setThickness(t); return Acad::eOk; }
    double diameter() const { return 2.0 * m_radius; }
    double circumference() const;

    // Curve operations, with the parameter as the class comment defines it.
    Acad::ErrorStatus getStartParam(double& param) const override;
    Acad::ErrorStatus getEndParam(double& param) const override;
    Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const override;
    Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const override;
    Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& point) const override;
    Acad::ErrorStatus getParamAtPoint(const AcGePoint3d& point, double& param) const override;
    Acad::ErrorStatus getDistAtParam(double param, double& dist) const override;
    Acad::ErrorStatus getFirstDeriv(double param, AcGeVector3d& deriv) const override;
    Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& closest,
                                        bool extend = false) const override;
    // A positive distance grows the radius; a result of no radius fails with eInvalidOffset.
    Acad::ErrorStatus getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const override;

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus transformBy(const AcGeMatrix3d& xform) override;
    Acad::ErrorStatus getStretchPoints(AcGePoint3dArray& points) const override;

private:
    AcGePoint3d m_center;
    double m_radius = 0.0;
    AcDbExtrusion m_extrusion;  // thickness and normal
};
