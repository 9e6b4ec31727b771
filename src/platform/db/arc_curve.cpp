#include "platform/db/arc.hpp"
#include "platform/db/curve_params.hpp"
#include "platform/db/ocs.hpp"
#include "platform/ge/angle.hpp"

// An arc's parameter is its angle in radians: from the start angle to the end angle, the end
// taken a turn further when it is not above the start. The length is r times the angle swept.

namespace {
double endParamOf(const AcDbArc& arc) { return arc.startAngle() + arc.totalAngle(); }

AcGePoint3d pointAt(const AcDbArc& arc, double angle) {
    return arc.center() + tavrik::ocs::directionInPlane(angle, arc.normal()) * arc.radius();
}

std::optional<double> paramOnArc(const AcDbArc& arc, double param) {
    return tavrik::curve_params::onRange(param, arc.startAngle(), endParamOf(arc));
}

// The parameter of the point's direction from the centre, when the arc covers it.
std::optional<double> sweptParam(const AcDbArc& arc, const AcGePoint3d& point) {
    double angle = tavrik::ocs::angleInPlane(point - arc.center(), arc.normal());
    double travelled = tavrik::ge::wrapTwoPi(angle - arc.startAngle());
    if (travelled > arc.totalAngle()) return std::nullopt;
    return arc.startAngle() + travelled;
}

AcGePoint3d nearerEnd(const AcDbArc& arc, const AcGePoint3d& given) {
    AcGePoint3d start = pointAt(arc, arc.startAngle());
    AcGePoint3d end = pointAt(arc, endParamOf(arc));
    return end.distanceTo(given) < start.distanceTo(given) ? end : start;
}
}  // namespace

Acad::ErrorStatus AcDbArc::getStartParam(double& param) const {
    param = m_startAngle;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getEndParam(double& param) const {
    param = endParamOf(*this);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getStartPoint(AcGePoint3d& point) const {
    point = pointAt(*this, m_startAngle);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getEndPoint(AcGePoint3d& point) const {
    point = pointAt(*this, endParamOf(*this));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getPointAtParam(double param, AcGePoint3d& point) const {
    std::optional<double> t = paramOnArc(*this, param);
    if (!t) return Acad::eInvalidInput;
    point = pointAt(*this, *t);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getParamAtPoint(const AcGePoint3d& point, double& param) const {
    std::optional<double> t = sweptParam(*this, point);
    if (!t || !tavrik::curve_params::sameLocation(pointAt(*this, *t), point))
        return Acad::ePointNotOnEntity;
    param = *t;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getDistAtParam(double param, double& dist) const {
    std::optional<double> t = paramOnArc(*this, param);
    if (!t) return Acad::eInvalidInput;
    dist = m_radius * (*t - m_startAngle);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getFirstDeriv(double param, AcGeVector3d& deriv) const {
    std::optional<double> t = paramOnArc(*this, param);
    if (!t) return Acad::eInvalidInput;
    deriv = tavrik::ocs::directionInPlane(*t + 0.5 * M_PI, m_extrusion.normal()) * m_radius;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& closest,
                                             bool extend) const {
    if (extend) {
        closest = pointAt(*this, tavrik::ocs::angleInPlane(given - m_center, m_extrusion.normal()));
        return Acad::eOk;
    }
    std::optional<double> t = sweptParam(*this, given);
    closest = t ? pointAt(*this, *t) : nearerEnd(*this, given);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const {
    const double radius = m_radius + distance;
    if (radius <= tavrik::platform_tol::kZeroLength) return Acad::eInvalidOffset;
    auto* arc = new AcDbArc(m_center, m_extrusion.normal(), radius, m_startAngle, m_endAngle);
    arc->setPropertiesFrom(this);
    arc->setThickness(m_extrusion.thickness());
    curves.append(arc);
    return Acad::eOk;
}
