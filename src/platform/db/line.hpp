#pragma once
#include "platform/db/curve.hpp"

class AcDbLine : public AcDbCurve {
public:
    ACRX_DECLARE_MEMBERS(AcDbLine)
    AcDbLine() = default;
    AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end) : m_start(start), m_end(end) {}

    AcGePoint3d startPoint() const { return m_start; }
    Acad::ErrorStatus setStartPoint(const AcGePoint3d& p) { m_start = p; return Acad::eOk; }
    AcGePoint3d endPoint() const { return m_end; }
    Acad::ErrorStatus setEndPoint(const AcGePoint3d& p) { m_end = p; return Acad::eOk; }
    double thickness() const { return m_thickness; }
    Acad::ErrorStatus setThickness(double t) { m_thickness = t; return Acad::eOk; }
    AcGeVector3d normal() const { return m_normal; }
    Acad::ErrorStatus setNormal(const AcGeVector3d& n) { m_normal = n; return Acad::eOk; }

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus transformBy(const AcGeMatrix3d& xform) override;
    Acad::ErrorStatus getStretchPoints(AcGePoint3dArray& points) const override;

private:
    AcGePoint3d m_start;
    AcGePoint3d m_end;
    double m_thickness = 0.0;
    AcGeVector3d m_normal = AcGeVector3d::kZAxis;
};
