#include "platform/db/polyline.hpp"
#include "platform/db/polyline_bulges.hpp"
#include "platform/db/polyline_classic.hpp"
#include "platform/ge/bulge_offset.hpp"

// Offsets of the planar polylines: one new polyline of the same kind, in the same plane, with
// the source's properties. Widths are not carried over.

Acad::ErrorStatus AcDbPolyline::getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const {
    std::optional<tavrik::ge::BulgePath> path =
        tavrik::ge::offsetPath(tavrik::polyline_bulges::bulgePathOf(*this), distance);
    if (!path) return Acad::eInvalidOffset;
    auto* result = new AcDbPolyline(static_cast<unsigned int>(path->vertices.size()));
    result->setPropertiesFrom(this);
    result->setNormal(normal());
    result->setElevation(m_elevation);
    result->setThickness(thickness());
    result->setPlinegen(m_plinegen);
    result->setClosed(path->closed);
    for (const tavrik::ge::BulgeVertex& v : path->vertices)
        result->addVertexAt(result->numVerts(), v.point, v.bulge, 0.0, 0.0);
    curves.append(result);
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::getOffsetCurves(double distance,
                                                  AcDbVoidPtrArray& curves) const {
    std::optional<tavrik::ge::BulgePath> path =
        tavrik::ge::offsetPath(tavrik::polyline_bulges::bulgePathOf(*this), distance);
    if (!path) return Acad::eInvalidOffset;
    auto* result = new AcDb2dPolyline;
    result->setPropertiesFrom(this);
    result->setNormal(normal());
    result->setElevation(m_elevation);
    result->setThickness(thickness());
    result->setClosed(path->closed);
    result->setPolylineFlags(path->closed ? 1 : 0);
    for (const tavrik::ge::BulgeVertex& v : path->vertices) {
        AcDb2dVertex vertex;
        vertex.position = AcGePoint3d(v.point.x, v.point.y, m_elevation);
        vertex.bulge = v.bulge;
        result->vertices().push_back(vertex);
    }
    curves.append(result);
    return Acad::eOk;
}
