#pragma once
#include "platform/db/entity.hpp"

class AcDbPoint : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(AcDbPoint)
    AcDbPoint() = default;
    explicit AcDbPoint(const AcGePoint3d& position) : m_position(position) {}

    AcGePoint3d position() const { return m_position; }
    Acad::ErrorStatus setPosition(const AcGePoint3d& p) { m_position = p; return Acad::eOk; }
    AcGeVector3d normal() const { return m_normal; }
    Acad::ErrorStatus setNormal(const AcGeVector3d& n) { m_normal = n; return Acad::eOk; }
    double thickness() const { return m_thickness; }
    Acad::ErrorStatus setThickness(double t) { m_thickness = t; return Acad::eOk; }
    // Angle of the x axis used when the point is drawn as a symbol.
    double ecsRotation() const { return m_rotation; }
    Acad::ErrorStatus setEcsRotation(double a) { m_rotation = a; return Acad::eOk; }

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus transformBy(const AcGeMatrix3d& xform) override;
    Acad::ErrorStatus getStretchPoints(AcGePoint3dArray& points) const override;

private:
    AcGePoint3d m_position;
    AcGeVector3d m_normal = AcGeVector3d::kZAxis;
    double m_thickness = 0.0;
    double m_rotation = 0.0;
};
