#include "platform/db/curve_params.hpp"
#include "platform/db/line.hpp"

// A line's parameter is the distance from its start point: 0 to its length.

namespace {
double lengthOf(const AcDbLine& line) { return line.startPoint().distanceTo(line.endPoint()); }

AcGeVector3d unitDirection(const AcDbLine& line) {
    return (line.endPoint() - line.startPoint()).normal();
}

// The parameter of the foot of the perpendicular from a point, on the unbounded line.
double projectedParam(const AcDbLine& line, const AcGePoint3d& point) {
    return (point - line.startPoint()).dotProduct(unitDirection(line));
}

AcGePoint3d pointAt(const AcDbLine& line, double param) {
    return line.startPoint() + unitDirection(line) * param;
}

double clampedParam(const AcDbLine& line, const AcGePoint3d& point) {
    return std::clamp(projectedParam(line, point), 0.0, lengthOf(line));
}
}  // namespace

Acad::ErrorStatus AcDbLine::getStartParam(double& param) const {
    param = 0.0;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getEndParam(double& param) const {
    param = lengthOf(*this);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getStartPoint(AcGePoint3d& point) const {
    point = m_start;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getEndPoint(AcGePoint3d& point) const {
    point = m_end;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getPointAtParam(double param, AcGePoint3d& point) const {
    std::optional<double> t = tavrik::curve_params::onRange(param, 0.0, lengthOf(*this));
    if (!t) return Acad::eInvalidInput;
    point = *t == lengthOf(*this) ? m_end : pointAt(*this, *t);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getParamAtPoint(const AcGePoint3d& point, double& param) const {
    double t = clampedParam(*this, point);
    if (!tavrik::curve_params::sameLocation(pointAt(*this, t), point))
        return Acad::ePointNotOnEntity;
    param = t;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getDistAtParam(double param, double& dist) const {
    std::optional<double> t = tavrik::curve_params::onRange(param, 0.0, lengthOf(*this));
    if (!t) return Acad::eInvalidInput;
    dist = *t;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getFirstDeriv(double param, AcGeVector3d& deriv) const {
    if (!tavrik::curve_params::onRange(param, 0.0, lengthOf(*this))) return Acad::eInvalidInput;
    deriv = unitDirection(*this);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& closest,
                                              bool extend) const {
    closest = pointAt(*this, extend ? projectedParam(*this, given) : clampedParam(*this, given));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const {
    AcGeVector3d side = (m_end - m_start).crossProduct(m_extrusion.normal());
    if (side.length() <= tavrik::platform_tol::kZeroLength) return Acad::eDegenerateGeometry;
    AcGeVector3d shift = side.normal() * distance;
    auto* line = new AcDbLine(m_start + shift, m_end + shift);
    line->setPropertiesFrom(this);
    line->setNormal(m_extrusion.normal());
    line->setThickness(m_extrusion.thickness());
    curves.append(line);
    return Acad::eOk;
}
