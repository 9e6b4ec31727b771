#include "platform/db/path_curve.hpp"
#include "platform/db/planar_transform.hpp"
#include "platform/db/polyline_bulges.hpp"
#include "platform/db/polyline_classic.hpp"

namespace pc = tavrik::path_curve;

namespace {
// The frame vertices of a spline-fit polyline steer the curve but are not on it.
bool isDrawn(const AcDb2dVertex& v) { return v.vertexType != AcDb::k2dSplineCtlVertex; }
bool isDrawn(const AcDb3dPolylineVertex& v) { return v.vertexType != AcDb::k3dControlVertex; }

template <typename Vertex>
std::vector<const Vertex*> drawnVertices(const std::vector<Vertex>& vertices) {
    std::vector<const Vertex*> drawn;
    for (const Vertex& v : vertices)
        if (isDrawn(v)) drawn.push_back(&v);
    return drawn;
}

pc::MaybePath pathOf(const AcDb2dPolyline& polyline) {
    tavrik::ge::BulgePath path = tavrik::polyline_bulges::bulgePathOf(polyline);
    if (path.vertices.empty()) return std::nullopt;
    return tavrik::ge::pathInPlane(path, polyline.normal(), polyline.elevation());
}

pc::MaybePath pathOf(const AcDb3dPolyline& polyline) {
    std::vector<AcGePoint3d> points;
    for (const AcDb3dPolylineVertex* v : drawnVertices(polyline.vertices()))
        points.push_back(v->position);
    if (points.empty()) return std::nullopt;
    return tavrik::ge::pathThrough(points, polyline.isClosed());
}
}  // namespace

tavrik::ge::BulgePath tavrik::polyline_bulges::bulgePathOf(const AcDb2dPolyline& polyline) {
    ge::BulgePath path{{}, polyline.isClosed()};
    for (const AcDb2dVertex* v : drawnVertices(polyline.vertices()))
        path.vertices.push_back({{v->position.x, v->position.y}, v->bulge});
    return path;
}

// ---- AcDb2dPolyline ----

Acad::ErrorStatus AcDb2dPolyline::getStartParam(double& param) const {
    return pc::startParam(pathOf(*this), param);
}
Acad::ErrorStatus AcDb2dPolyline::getEndParam(double& param) const {
    return pc::endParam(pathOf(*this), param);
}
Acad::ErrorStatus AcDb2dPolyline::getStartPoint(AcGePoint3d& point) const {
    return pc::startPoint(pathOf(*this), point);
}
Acad::ErrorStatus AcDb2dPolyline::getEndPoint(AcGePoint3d& point) const {
    return pc::endPoint(pathOf(*this), point);
}
Acad::ErrorStatus AcDb2dPolyline::getPointAtParam(double param, AcGePoint3d& point) const {
    return pc::pointAtParam(pathOf(*this), param, point);
}
Acad::ErrorStatus AcDb2dPolyline::getParamAtPoint(const AcGePoint3d& point,
                                                  double& param) const {
    return pc::paramAtPoint(pathOf(*this), point, param);
}
Acad::ErrorStatus AcDb2dPolyline::getDistAtParam(double param, double& dist) const {
    return pc::distAtParam(pathOf(*this), param, dist);
}
Acad::ErrorStatus AcDb2dPolyline::getFirstDeriv(double param, AcGeVector3d& deriv) const {
    return pc::firstDeriv(pathOf(*this), param, deriv);
}
Acad::ErrorStatus AcDb2dPolyline::getClosestPointTo(const AcGePoint3d& given,
                                                    AcGePoint3d& closest, bool) const {
    return pc::closestPointTo(pathOf(*this), given, closest);
}
Acad::ErrorStatus AcDb2dPolyline::getGeomExtents(AcDbExtents& extents) const {
    return pc::geomExtents(pathOf(*this), extents);
}
Acad::ErrorStatus AcDb2dPolyline::explode(AcDbVoidPtrArray& entitySet) const {
    return pc::explode(pathOf(*this), m_normal, *this, entitySet);
}

Acad::ErrorStatus AcDb2dPolyline::getStretchPoints(AcGePoint3dArray& points) const {
    for (const AcDb2dVertex& v : m_vertices) points.append(vertexPosition(v));
    return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::transformBy(const AcGeMatrix3d& xform) {
    std::optional<tavrik::ocs::PlanarTransform> move =
        tavrik::ocs::planarTransform(xform, m_normal);
    if (!move) return Acad::eCannotScaleNonUniformly;
    for (AcDb2dVertex& v : m_vertices) {
        AcGePoint3d p = move->objectMap.apply(AcGePoint3d(v.position.x, v.position.y, m_elevation));
        v.position = p;
        v.bulge = move->mirrored ? -v.bulge : v.bulge;
        v.startWidth *= move->scale;
        v.endWidth *= move->scale;
    }
    m_elevation = move->objectMap.apply(AcGePoint3d(0.0, 0.0, m_elevation)).z;
    m_thickness *= move->scale;
    m_startWidth *= move->scale;
    m_endWidth *= move->scale;
    m_normal = move->normal;
    return Acad::eOk;
}

// ---- AcDb3dPolyline ----

Acad::ErrorStatus AcDb3dPolyline::getStartParam(double& param) const {
    return pc::startParam(pathOf(*this), param);
}
Acad::ErrorStatus AcDb3dPolyline::getEndParam(double& param) const {
    return pc::endParam(pathOf(*this), param);
}
Acad::ErrorStatus AcDb3dPolyline::getStartPoint(AcGePoint3d& point) const {
    return pc::startPoint(pathOf(*this), point);
}
Acad::ErrorStatus AcDb3dPolyline::getEndPoint(AcGePoint3d& point) const {
    return pc::endPoint(pathOf(*this), point);
}
Acad::ErrorStatus AcDb3dPolyline::getPointAtParam(double param, AcGePoint3d& point) const {
    return pc::pointAtParam(pathOf(*this), param, point);
}
Acad::ErrorStatus AcDb3dPolyline::getParamAtPoint(const AcGePoint3d& point,
                                                  double& param) const {
    return pc::paramAtPoint(pathOf(*this), point, param);
}
Acad::ErrorStatus AcDb3dPolyline::getDistAtParam(double param, double& dist) const {
    return pc::distAtParam(pathOf(*this), param, dist);
}
Acad::ErrorStatus AcDb3dPolyline::getFirstDeriv(double param, AcGeVector3d& deriv) const {
    return pc::firstDeriv(pathOf(*this), param, deriv);
}
Acad::ErrorStatus AcDb3dPolyline::getClosestPointTo(const AcGePoint3d& given,
                                                    AcGePoint3d& closest, bool) const {
    return pc::closestPointTo(pathOf(*this), given, closest);
}
Acad::ErrorStatus AcDb3dPolyline::getGeomExtents(AcDbExtents& extents) const {
    return pc::geomExtents(pathOf(*this), extents);
}
Acad::ErrorStatus AcDb3dPolyline::explode(AcDbVoidPtrArray& entitySet) const {
    return pc::explode(pathOf(*this), AcGeVector3d::kZAxis, *this, entitySet);
}

Acad::ErrorStatus AcDb3dPolyline::getStretchPoints(AcGePoint3dArray& points) const {
    for (const AcDb3dPolylineVertex& v : m_vertices) points.append(v.position);
    return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::transformBy(const AcGeMatrix3d& xform) {
    // Straight segments through world points stay so under any affine map.
    for (AcDb3dPolylineVertex& v : m_vertices) v.position.transformBy(xform);
    return Acad::eOk;
}
