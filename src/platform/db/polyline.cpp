#include "platform/db/polyline.hpp"

ACRX_DEFINE_MEMBERS(AcDbPolyline, AcDbCurve, L"LWPOLYLINE")

Acad::ErrorStatus AcDbPolyline::addVertexAt(unsigned int index, const AcGePoint2d& point,
                                            double bulge, double startWidth, double endWidth) {
    if (index > numVerts()) return Acad::eInvalidIndex;
    // A negative width means "none given": the segment takes width 0.
    Vertex v{point, bulge, startWidth < 0 ? 0.0 : startWidth, endWidth < 0 ? 0.0 : endWidth};
    m_vertices.insert(m_vertices.begin() + index, v);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::removeVertexAt(unsigned int index) {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    m_vertices.erase(m_vertices.begin() + index);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint2d& point) const {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    point = m_vertices[index].point;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint3d& point) const {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    const AcGePoint2d& p = m_vertices[index].point;
    point = AcGeMatrix3d::planeToWorld(m_normal).apply(AcGePoint3d(p.x, p.y, m_elevation));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setPointAt(unsigned int index, const AcGePoint2d& point) {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    m_vertices[index].point = point;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getBulgeAt(unsigned int index, double& bulge) const {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    bulge = m_vertices[index].bulge;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setBulgeAt(unsigned int index, double bulge) {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    m_vertices[index].bulge = bulge;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getWidthsAt(unsigned int index, double& startWidth,
                                            double& endWidth) const {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    startWidth = m_vertices[index].startWidth;
    endWidth = m_vertices[index].endWidth;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setWidthsAt(unsigned int index, double startWidth,
                                            double endWidth) {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    m_vertices[index].startWidth = startWidth;
    m_vertices[index].endWidth = endWidth;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getConstantWidth(double& width) const {
    if (m_vertices.empty()) return Acad::eInvalidIndex;
    double w = m_vertices.front().startWidth;
    for (const Vertex& v : m_vertices)
        if (v.startWidth != w || v.endWidth != w) return Acad::eNotApplicable;
    width = w;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setConstantWidth(double width) {
    for (Vertex& v : m_vertices) v.startWidth = v.endWidth = width;
    return Acad::eOk;
}

bool AcDbPolyline::hasBulges() const {
    for (const Vertex& v : m_vertices)
        if (v.bulge != 0.0) return true;
    return false;
}

bool AcDbPolyline::hasWidth() const {
    for (const Vertex& v : m_vertices)
        if (v.startWidth != 0.0 || v.endWidth != 0.0) return true;
    return false;
}
