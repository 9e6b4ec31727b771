#include "platform/db/point_entity.hpp"

ACRX_DEFINE_MEMBERS(AcDbPoint, AcDbEntity, L"POINT")

Acad::ErrorStatus AcDbPoint::getGeomExtents(AcDbExtents& extents) const {
    extents = AcDbExtents();
    extents.addPoint(m_position);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPoint::transformBy(const AcGeMatrix3d& xform) {
    m_position.transformBy(xform);
    m_extrusion.setNormal(xform.apply(m_extrusion.normal()).normal());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPoint::getStretchPoints(AcGePoint3dArray& points) const {
    points.append(m_position);
    return Acad::eOk;
}
