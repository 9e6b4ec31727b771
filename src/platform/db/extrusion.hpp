#pragma once
// The thickness and normal of a planar entity (line, circle, arc, point, light-weight polyline,
// text). Nearly every entity of a drawing has the default ones, no thickness and the world Z
// axis: those cost a null pointer, not 32 bytes, and only an entity that differs holds them. A
// value is the default only when it is that value bit for bit, so that a -0.0 read from a file
// is kept as read.
#include "platform/db/rare_part.hpp"
#include "platform/ge/vector3d.hpp"

class AcDbExtrusion {
public:
    double thickness() const { return m_values.get().thickness; }
    AcGeVector3d normal() const { return m_values.get().normal; }
    void setThickness(double thickness) { m_values.set(&Values::thickness, thickness); }
    void setNormal(const AcGeVector3d& normal) { m_values.set(&Values::normal, normal); }

private:
    struct Values {
        double thickness = 0.0;
        AcGeVector3d normal = AcGeVector3d::kZAxis;
    };
    AcDbRarePart<Values> m_values;
};
