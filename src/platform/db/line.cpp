#include "platform/db/line.hpp"

ACRX_DEFINE_MEMBERS(AcDbLine, AcDbCurve, L"LINE")

Acad::ErrorStatus AcDbLine::getGeomExtents(AcDbExtents& extents) const {
    extents = AcDbExtents();
    extents.addPoint(m_start);
    extents.addPoint(m_end);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::transformBy(const AcGeMatrix3d& xform) {
    m_start.transformBy(xform);
    m_end.transformBy(xform);
    m_extrusion.setNormal(xform.apply(m_extrusion.normal()).normal());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getStretchPoints(AcGePoint3dArray& points) const {
    points.append(m_start);
    points.append(m_end);
    return Acad::eOk;
}
