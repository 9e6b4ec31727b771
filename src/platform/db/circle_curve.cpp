#include "platform/db/circle.hpp"
#include "platform/db/curve_params.hpp"
#include "platform/db/ocs.hpp"
#include "platform/ge/angle.hpp"

// A circle's parameter is the angle in the plane of its normal, from its x direction: 0 to 2pi,
// the length along it r times that.

namespace {
AcGePoint3d pointAt(const AcDbCircle& circle, double angle) {
    return circle.center() + tavrik::ocs::directionInPlane(angle, circle.normal()) * circle.radius();
}

// The angle of the point's projection into the circle's plane, in [0, 2pi).
double angleOf(const AcDbCircle& circle, const AcGePoint3d& point) {
    return tavrik::ocs::angleInPlane(point - circle.center(), circle.normal());
}

std::optional<double> paramOnCircle(double param) {
    return tavrik::curve_params::onRange(param, 0.0, tavrik::ge::kTwoPi);
}
}  // namespace

Acad::ErrorStatus AcDbCircle::getStartParam(double& param) const {
    param = 0.0;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getEndParam(double& param) const {
    param = tavrik::ge::kTwoPi;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getStartPoint(AcGePoint3d& point) const {
    point = pointAt(*this, 0.0);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getEndPoint(AcGePoint3d& point) const {
    point = pointAt(*this, 0.0);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getPointAtParam(double param, AcGePoint3d& point) const {
    std::optional<double> t = paramOnCircle(param);
    if (!t) return Acad::eInvalidInput;
    point = pointAt(*this, *t);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getParamAtPoint(const AcGePoint3d& point, double& param) const {
    double angle = angleOf(*this, point);
    if (!tavrik::curve_params::sameLocation(pointAt(*this, angle), point))
        return Acad::ePointNotOnEntity;
    param = angle;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getDistAtParam(double param, double& dist) const {
    std::optional<double> t = paramOnCircle(param);
    if (!t) return Acad::eInvalidInput;
    dist = m_radius * *t;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getFirstDeriv(double param, AcGeVector3d& deriv) const {
    std::optional<double> t = paramOnCircle(param);
    if (!t) return Acad::eInvalidInput;
    deriv = tavrik::ocs::directionInPlane(*t + 0.5 * M_PI, m_extrusion.normal()) * m_radius;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& closest,
                                                bool) const {
    closest = pointAt(*this, angleOf(*this, given));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const {
    const double radius = m_radius + distance;
    if (radius <= tavrik::platform_tol::kZeroLength) return Acad::eInvalidOffset;
    auto* circle = new AcDbCircle(m_center, m_extrusion.normal(), radius);
    circle->setPropertiesFrom(this);
    circle->setThickness(m_extrusion.thickness());
    curves.append(circle);
    return Acad::eOk;
}
