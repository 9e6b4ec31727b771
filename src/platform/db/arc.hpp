#pragma once
#include "platform/db/curve.hpp"
#include "platform/db/extrusion.hpp"

// A circular arc, counter-clockwise about its normal from the start angle to the end angle.
// Angles are in radians, measured in the plane of the normal from its arbitrary-axis x
// direction (the world x axis when the normal is +Z).
class AcDbArc : public AcDbCurve {
public:
    ACRX_DECLARE_MEMBERS(AcDbArc)
    AcDbArc() = default;
    AcDbArc(const AcGePoint3d& center, double radius, double startAngle, double endAngle)
        : m_center(center), m_radius(radius), m_startAngle(startAngle), m_endAngle(endAngle) {}
    AcDbArc(const AcGePoint3d& center, const AcGeVector3d& normal, double radius,
            double startAngle, double endAngle)
        : m_center(center), m_radius(radius), m_startAngle(startAngle), m_endAngle(endAngle) {
        m_extrusion.setNormal(normal.normal());
    }

    AcGePoint3d center() const { return m_center; }
    Acad::ErrorStatus setCenter(const AcGePoint3d& p) { m_center = p; return Acad::eOk; }
    double radius() const { return m_radius; }
    Acad::ErrorStatus setRadius(double r);
    double startAngle() const { return m_startAngle; }
    Acad::ErrorStatus setStartAngle(double a) { m_startAngle = a; return Acad::eOk; }
    double endAngle() const { return m_endAngle; }
    Acad::ErrorStatus setEndAngle(double a) { m_endAngle = a; return Acad::eOk; }
    AcGeVector3d normal() const { return m_extrusion.normal(); }
    Acad::ErrorStatus setNormal(const AcGeVector3d& n);
    double thickness() const { return m_extrusion.thickness(); }
    Acad::ErrorStatus setThickness(double t) { m_extrusion.setThickness(t); return Acad::eOk; }
    // Sweep from start to end angle, in (0, 2pi].
    double totalAngle() const;

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
    // extend takes the closest point on the whole circle.
    Acad::ErrorStatus getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const override;

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus transformBy(const AcGeMatrix3d& xform) override;
    Acad::ErrorStatus getStretchPoints(AcGePoint3dArray& points) const override;

private:
    AcGePoint3d m_center;
    double m_radius = 0.0;
    double m_startAngle = 0.0;
    double m_endAngle = 0.0;
    AcDbExtrusion m_extrusion;  // thickness and normal
};
