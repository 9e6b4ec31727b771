#pragma once
#include "platform/db/curve.hpp"

// An ellipse or elliptical arc: centre, major axis (vector from the centre to the end of the
// major axis), ratio of minor to major, and start and end parameters. The parameter is the
// eccentric angle: point(t) = centre + major*cos t + minor*sin t, with the minor axis
// normal x major * ratio. startAngle/endAngle are the host's angles of the end points as seen
// from the centre, measured from the major axis.
class AcDbEllipse : public AcDbCurve {
public:
    ACRX_DECLARE_MEMBERS(AcDbEllipse)
    AcDbEllipse() = default;
    AcDbEllipse(const AcGePoint3d& center, const AcGeVector3d& unitNormal,
                const AcGeVector3d& majorAxis, double radiusRatio, double startParam = 0.0,
                double endParam = 6.283185307179586)
        : m_center(center), m_normal(unitNormal), m_majorAxis(majorAxis), m_ratio(radiusRatio),
          m_startParam(startParam), m_endParam(endParam) {}

    AcGePoint3d center() const { return m_center; }
    Acad::ErrorStatus setCenter(const AcGePoint3d& p) { m_center = p; return Acad::eOk; }
    AcGeVector3d normal() const { return m_normal; }
    AcGeVector3d majorAxis() const { return m_majorAxis; }
    AcGeVector3d minorAxis() const;
    double radiusRatio() const { return m_ratio; }
    Acad::ErrorStatus setRadiusRatio(double r) { m_ratio = r; return Acad::eOk; }
    Acad::ErrorStatus set(const AcGePoint3d& center, const AcGeVector3d& unitNormal,
                          const AcGeVector3d& majorAxis, double radiusRatio,
                          double startParam = 0.0, double endParam = 6.283185307179586);
    // The stored parameters (eccentric angles).
    double startParam() const { return m_startParam; }
    double endParam() const { return m_endParam; }
    void setStartParam(double t) { m_startParam = t; }
    void setEndParam(double t) { m_endParam = t; }
    // The host's start and end angles: the polar angles of the end points from the centre,
    // relative to the major axis.
    double startAngle() const;
    double endAngle() const;
    Acad::ErrorStatus setStartAngle(double angle);
    Acad::ErrorStatus setEndAngle(double angle);
    bool isFull() const;

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
    // Not offered: eNotImplementedYet (the host answers with an approximating spline).
    Acad::ErrorStatus getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const override;
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus transformBy(const AcGeMatrix3d& xform) override;
    Acad::ErrorStatus getStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus explode(AcDbVoidPtrArray& entitySet) const override;

private:
    AcGePoint3d m_center;
    AcGeVector3d m_normal = AcGeVector3d::kZAxis;
    AcGeVector3d m_majorAxis = AcGeVector3d::kXAxis;
    double m_ratio = 1.0;
    double m_startParam = 0.0;
    double m_endParam = 6.283185307179586;
};
