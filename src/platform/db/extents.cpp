#include "platform/db/extents.hpp"

#include <algorithm>

#include "platform/db/block_table_record.hpp"

AcDbExtents::AcDbExtents() : m_min(1e20, 1e20, 1e20), m_max(-1e20, -1e20, -1e20) {}

Acad::ErrorStatus AcDbExtents::set(const AcGePoint3d& min, const AcGePoint3d& max) {
    if (min.x > max.x || min.y > max.y || min.z > max.z) return Acad::eInvalidExtents;
    m_min = min;
    m_max = max;
    return Acad::eOk;
}

void AcDbExtents::addPoint(const AcGePoint3d& p) {
    for (int i = 0; i < 3; ++i) {
        m_min[i] = std::min(m_min[i], p[i]);
        m_max[i] = std::max(m_max[i], p[i]);
    }
}

void AcDbExtents::addExt(const AcDbExtents& other) {
    if (other.isEmpty()) return;
    addPoint(other.m_min);
    addPoint(other.m_max);
}

Acad::ErrorStatus AcDbExtents::addBlockExt(AcDbBlockTableRecord* block) {
    if (block == nullptr) return Acad::eNullObjectPointer;
    for (const AcDbObjectId& id : block->entityIds()) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) continue;
        AcDbExtents box;
        if (entity->getGeomExtents(box) == Acad::eOk) addExt(box);
        entity->close();
    }
    return Acad::eOk;
}

void AcDbExtents::expandBy(const AcGeVector3d& v) {
    addPoint(m_min + v);
    addPoint(m_max + v);
}

void AcDbExtents::transformBy(const AcGeMatrix3d& m) {
    if (isEmpty()) return;
    AcDbExtents moved;
    for (int corner = 0; corner < 8; ++corner) {
        AcGePoint3d p((corner & 1) ? m_max.x : m_min.x, (corner & 2) ? m_max.y : m_min.y,
                      (corner & 4) ? m_max.z : m_min.z);
        moved.addPoint(m.apply(p));
    }
    *this = moved;
}
