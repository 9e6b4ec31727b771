#pragma once
#include "platform/db/curve.hpp"
#include "platform/db/extrusion.hpp"

class AcDbLine : public AcDbCurve {
public:
    ACRX_DECLARE_MEMBERS(AcDbLine)
    AcDbLine() = default;
    AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end) : m_start(start), m_end(end) {}

    AcGePoint3d startPoint() const { return m_start; }
    Acad::ErrorStatus setStartPoint(const AcGePoint3d& p) { m_start = p; return Acad::eOk; }
    AcGePoint3d endPoint() const { return m_end; }
    Acad::ErrorStatus setEndPoint(const AcGePoint3d& p) { m_end = p; return Acad::eOk; }
    double thickness() const { return m_extrusion.thickness(); }
    Acad::ErrorStatus setThickness(double t) { m_extrusion.setThickness(t); return Acad::eOk; }
    AcGeVector3d normal() const { return m_extrusion.normal(); }
    Acad::ErrorStatus setNormal(const AcGeVector3d& n) { m_extrusion.setNormal(n); return Acad::eOk; }

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
    // A positive distance moves the line to the right of its direction (direction x normal);
    // extend takes the closest point on the unbounded line.
    Acad::ErrorStatus getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const override;

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus transformBy(const AcGeMatrix3d& xform) override;
    Acad::ErrorStatus getStretchPoints(AcGePoint3dArray& points) const override;

private:
    AcGePoint3d m_start;
    AcGePoint3d m_end;
    AcDbExtrusion m_extrusion;  // thickness and normal
};
