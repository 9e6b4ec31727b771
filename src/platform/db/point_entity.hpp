#pragma once
#include "platform/db/entity.hpp"
#include "platform/db/extrusion.hpp"

class AcDbPoint : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(AcDbPoint)
    AcDbPoint() = default;
    explicit AcDbPoint(const AcGePoint3d& position) : m_position(position) {}

    AcGePoint3d position() const { return m_position; }
    Acad::ErrorStatus setPosition(const AcGePoint3d& p) { m_position = p; return Acad::eOk; }
    AcGeVector3d normal() const { return m_extrusion.normal(); }
    Acad::ErrorStatus setNormal(const AcGeVector3d& n) { m_extrusion.setNormal(n); return Acad::eOk; }
    double thickness() const { return m_extrusion.thickness(); }
    Acad::ErrorStatus setThickness(double t) { m_extrusion.setThickness(t); return Acad::eOk; }
    // Angle of the x axis used when the point is drawn as a symbol.
    double ecsRotation() const { return m_rotation; }
    Acad::ErrorStatus setEcsRotation(double a) { m_rotation = a; return Acad::eOk; }

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus transformBy(const AcGeMatrix3d& xform) override;
    Acad::ErrorStatus getStretchPoints(AcGePoint3dArray& points) const override;

private:
    AcGePoint3d m_position;
    AcDbExtrusion m_extrusion;  // thickness and normal
    double m_rotation = 0.0;
};
