#include "platform/db/polyline.hpp"

ACRX_DEFINE_MEMBERS(AcDbPolyline, AcDbCurve, L"LWPOLYLINE")

AcDbPolyline::Vertex AcDbPolyline::vertexAt(unsigned int index) const {
    const Widths widths = m_widths.at(index);
    return {m_points[index], m_bulges.at(index), widths.start, widths.end};
}

void AcDbPolyline::setVertexAt(unsigned int index, const Vertex& vertex) {
    m_points[index] = vertex.point;
    putBulge(index, vertex.bulge);
    putWidths(index, {vertex.startWidth, vertex.endWidth});
}

void AcDbPolyline::appendVertex(const Vertex& vertex) {
    const std::size_t count = m_points.size();
    m_points.push_back(vertex.point);
    m_bulges.append(vertex.bulge, count, m_points.capacity());
    m_widths.append({vertex.startWidth, vertex.endWidth}, count, m_points.capacity());
}

void AcDbPolyline::reserveVertices(unsigned int count) {
    m_points.reserve(count);
    m_bulges.reserve(count);
    m_widths.reserve(count);
}

Acad::ErrorStatus AcDbPolyline::addVertexAt(unsigned int index, const AcGePoint2d& point,
                                            double bulge, double startWidth, double endWidth) {
    if (index > numVerts()) return Acad::eInvalidIndex;
    m_points.insert(m_points.begin() + index, point);
    m_bulges.insertNone(index);
    m_widths.insertNone(index);
    putBulge(index, bulge);
    // A negative width means "none given": the segment takes width 0.
    putWidths(index, {startWidth < 0 ? 0.0 : startWidth, endWidth < 0 ? 0.0 : endWidth});
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::removeVertexAt(unsigned int index) {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    m_points.erase(m_points.begin() + index);
    m_bulges.erase(index);
    m_widths.erase(index);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint2d& point) const {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    point = m_points[index];
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint3d& point) const {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    const AcGePoint2d& p = m_points[index];
    point = AcGeMatrix3d::planeToWorld(normal()).apply(AcGePoint3d(p.x, p.y, m_elevation));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setPointAt(unsigned int index, const AcGePoint2d& point) {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    m_points[index] = point;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getBulgeAt(unsigned int index, double& bulge) const {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    bulge = m_bulges.at(index);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setBulgeAt(unsigned int index, double bulge) {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    putBulge(index, bulge);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getWidthsAt(unsigned int index, double& startWidth,
                                            double& endWidth) const {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    const Widths widths = m_widths.at(index);
    startWidth = widths.start;
    endWidth = widths.end;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setWidthsAt(unsigned int index, double startWidth,
                                            double endWidth) {
    if (index >= numVerts()) return Acad::eInvalidIndex;
    putWidths(index, {startWidth, endWidth});
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getConstantWidth(double& width) const {
    if (m_points.empty()) return Acad::eInvalidIndex;
    const double w = m_widths.at(0).start;
    for (const Widths& widths : m_widths.held())
        if (widths.start != w || widths.end != w) return Acad::eNotApplicable;
    width = w;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setConstantWidth(double width) {
    for (unsigned int i = 0; i < numVerts(); ++i) setWidthsAt(i, width, width);
    return Acad::eOk;
}

bool AcDbPolyline::hasBulges() const {
    for (double bulge : m_bulges.held())
        if (bulge != 0.0) return true;
    return false;
}

bool AcDbPolyline::hasWidth() const {
    for (const Widths& widths : m_widths.held())
        if (widths.start != 0.0 || widths.end != 0.0) return true;
    return false;
}
