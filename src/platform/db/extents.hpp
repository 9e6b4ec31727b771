#pragma once
#include "platform/db/status.hpp"
#include "platform/ge/matrix3d.hpp"
#include "platform/ge/point3d.hpp"

class AcDbBlockTableRecord;

// An axis-aligned box in world coordinates. A new box is empty (min above max) until a point
// is added.
class AcDbExtents {
public:
    AcDbExtents();
    AcDbExtents(const AcGePoint3d& min, const AcGePoint3d& max) : m_min(min), m_max(max) {}

    const AcGePoint3d& minPoint() const { return m_min; }
    const AcGePoint3d& maxPoint() const { return m_max; }
    Acad::ErrorStatus set(const AcGePoint3d& min, const AcGePoint3d& max);
    bool isEmpty() const { return m_min.x > m_max.x; }

    void addPoint(const AcGePoint3d& p);
    void addExt(const AcDbExtents& other);
    // Adds the extents of every entity of the block (erased ones excepted).
    Acad::ErrorStatus addBlockExt(AcDbBlockTableRecord* block);
    void expandBy(const AcGeVector3d& v);
    // The box of this box's eight corners after the transformation.
    void transformBy(const AcGeMatrix3d& m);

private:
    AcGePoint3d m_min;
    AcGePoint3d m_max;
};
