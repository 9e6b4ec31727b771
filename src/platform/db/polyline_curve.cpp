#include "platform/db/path_curve.hpp"
#include "platform/db/planar_transform.hpp"
#include "platform/db/polyline.hpp"
#include "platform/db/polyline_bulges.hpp"

namespace pc = tavrik::path_curve;

tavrik::ge::BulgePath tavrik::polyline_bulges::bulgePathOf(const AcDbPolyline& polyline) {
    ge::BulgePath path{{}, polyline.isClosed()};
    path.vertices.reserve(polyline.numVerts());
    for (unsigned int i = 0; i < polyline.numVerts(); ++i) {
        const AcDbPolyline::Vertex v = polyline.vertexAt(i);
        path.vertices.push_back({v.point, v.bulge});
    }
    return path;
}

namespace {
pc::MaybePath pathOf(const AcDbPolyline& polyline) {
    if (polyline.numVerts() == 0) return std::nullopt;
    return tavrik::ge::pathInPlane(tavrik::polyline_bulges::bulgePathOf(polyline),
                                   polyline.normal(), polyline.elevation());
}
}  // namespace

Acad::ErrorStatus AcDbPolyline::getStartParam(double& param) const {
    return pc::startParam(pathOf(*this), param);
}
Acad::ErrorStatus AcDbPolyline::getEndParam(double& param) const {
    return pc::endParam(pathOf(*this), param);
}
Acad::ErrorStatus AcDbPolyline::getStartPoint(AcGePoint3d& point) const {
    return pc::startPoint(pathOf(*this), point);
}
Acad::ErrorStatus AcDbPolyline::getEndPoint(AcGePoint3d& point) const {
    return pc::endPoint(pathOf(*this), point);
}
Acad::ErrorStatus AcDbPolyline::getPointAtParam(double param, AcGePoint3d& point) const {
    return pc::pointAtParam(pathOf(*this), param, point);
}
Acad::ErrorStatus AcDbPolyline::getParamAtPoint(const AcGePoint3d& point, double& param) const {
    return pc::paramAtPoint(pathOf(*this), point, param);
}
Acad::ErrorStatus AcDbPolyline::getDistAtParam(double param, double& dist) const {
    return pc::distAtParam(pathOf(*this), param, dist);
}
Acad::ErrorStatus AcDbPolyline::getFirstDeriv(double param, AcGeVector3d& deriv) const {
    return pc::firstDeriv(pathOf(*this), param, deriv);
}
Acad::ErrorStatus AcDbPolyline::getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& closest,
                                                  bool) const {
    return pc::closestPointTo(pathOf(*this), given, closest);
}
Acad::ErrorStatus AcDbPolyline::getGeomExtents(AcDbExtents& extents) const {
    return pc::geomExtents(pathOf(*this), extents);
}
Acad::ErrorStatus AcDbPolyline::explode(AcDbVoidPtrArray& entitySet) const {
    return pc::explode(pathOf(*this), normal(), *this, entitySet);
}

Acad::ErrorStatus AcDbPolyline::getStretchPoints(AcGePoint3dArray& points) const {
    for (unsigned int i = 0; i < numVerts(); ++i) {
        AcGePoint3d p;
        getPointAt(i, p);
        points.append(p);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::transformBy(const AcGeMatrix3d& xform) {
    std::optional<tavrik::ocs::PlanarTransform> move =
        tavrik::ocs::planarTransform(xform, normal());
    if (!move) return Acad::eCannotScaleNonUniformly;
    for (unsigned int i = 0; i < numVerts(); ++i) {
        AcGePoint2d& point = m_points[i];
        AcGePoint3d p = move->objectMap.apply(AcGePoint3d(point.x, point.y, m_elevation));
        point = {p.x, p.y};
        const double bulge = m_bulges.at(i);
        putBulge(i, move->mirrored ? -bulge : bulge);
        const Widths widths = m_widths.at(i);
        putWidths(i, {widths.start * move->scale, widths.end * move->scale});
    }
    m_elevation = move->objectMap.apply(AcGePoint3d(0.0, 0.0, m_elevation)).z;
    m_extrusion.setThickness(thickness() * move->scale);
    m_extrusion.setNormal(move->normal);
    return Acad::eOk;
}
