#include <cmath>

#include "platform/db/curve_params.hpp"
#include "platform/db/spline.hpp"
#include "platform/ge/nurbs.hpp"

// A spline's parameter runs over its knot range [knot[degree], knot[numControlPoints]]; a
// periodic spline takes parameters outside it modulo the period. Lengths come from adaptive
// quadrature of the speed, knot span by knot span.

namespace {
namespace ge = tavrik::ge;

// The spline's own definition, read in place.
std::optional<ge::NurbsView> nurbsOf(const AcDbSpline& spline) {
    ge::NurbsView curve{spline.degree(), spline.knots(), spline.controlPoints(), spline.weights()};
    if (!ge::isWellFormed(curve)) return std::nullopt;
    return curve;
}

std::optional<double> paramOnSpline(const AcDbSpline& spline, ge::NurbsView curve,
                                    double param) {
    const double start = ge::startParam(curve);
    const double end = ge::endParam(curve);
    if (spline.isPeriodic() && (param < start || param > end)) {
        double period = end - start;
        param = start + std::fmod(std::fmod(param - start, period) + period, period);
    }
    return tavrik::curve_params::onRange(param, start, end);
}

}  // namespace

Acad::ErrorStatus AcDbSpline::getStartParam(double& param) const {
    std::optional<ge::NurbsView> curve = nurbsOf(*this);
    if (!curve) return Acad::eDegenerateGeometry;
    param = ge::startParam(*curve);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getEndParam(double& param) const {
    std::optional<ge::NurbsView> curve = nurbsOf(*this);
    if (!curve) return Acad::eDegenerateGeometry;
    param = ge::endParam(*curve);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getStartPoint(AcGePoint3d& point) const {
    std::optional<ge::NurbsView> curve = nurbsOf(*this);
    if (!curve) return Acad::eDegenerateGeometry;
    point = ge::evaluate(*curve, ge::startParam(*curve)).point;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getEndPoint(AcGePoint3d& point) const {
    std::optional<ge::NurbsView> curve = nurbsOf(*this);
    if (!curve) return Acad::eDegenerateGeometry;
    point = ge::evaluate(*curve, ge::endParam(*curve)).point;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getPointAtParam(double param, AcGePoint3d& point) const {
    std::optional<ge::NurbsView> curve = nurbsOf(*this);
    if (!curve) return Acad::eDegenerateGeometry;
    std::optional<double> t = paramOnSpline(*this, *curve, param);
    if (!t) return Acad::eInvalidInput;
    point = ge::pointAt(*curve, *t);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getFirstDeriv(double param, AcGeVector3d& deriv) const {
    std::optional<ge::NurbsView> curve = nurbsOf(*this);
    if (!curve) return Acad::eDegenerateGeometry;
    std::optional<double> t = paramOnSpline(*this, *curve, param);
    if (!t) return Acad::eInvalidInput;
    deriv = ge::evaluate(*curve, *t).derivative;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getParamAtPoint(const AcGePoint3d& point, double& param) const {
    std::optional<ge::NurbsView> curve = nurbsOf(*this);
    if (!curve) return Acad::eDegenerateGeometry;
    ge::ParamPoint nearest = ge::closestPoint(ge::asParametricCurve(*curve), point);
    if (!tavrik::curve_params::sameLocation(nearest.point, point)) return Acad::ePointNotOnEntity;
    param = nearest.param;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getDistAtParam(double param, double& dist) const {
    std::optional<ge::NurbsView> curve = nurbsOf(*this);
    if (!curve) return Acad::eDegenerateGeometry;
    std::optional<double> t = paramOnSpline(*this, *curve, param);
    if (!t) return Acad::eInvalidInput;
    dist = ge::arcLength(ge::asParametricCurve(*curve), ge::startParam(*curve), *t);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& closest,
                                                bool) const {
    std::optional<ge::NurbsView> curve = nurbsOf(*this);
    if (!curve) return Acad::eDegenerateGeometry;
    closest = ge::closestPoint(ge::asParametricCurve(*curve), given).point;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getOffsetCurves(double, AcDbVoidPtrArray&) const {
    return Acad::eNotImplementedYet;
}

Acad::ErrorStatus AcDbSpline::getGeomExtents(AcDbExtents& extents) const {
    std::optional<ge::NurbsView> curve = nurbsOf(*this);
    if (!curve) return Acad::eInvalidExtents;
    ge::Box3d box = ge::boundingBox(ge::asParametricCurve(*curve));
    extents = AcDbExtents(box.min, box.max);
    return Acad::eOk;
}

// Splines are affine-invariant: moving the defining points moves the curve.
Acad::ErrorStatus AcDbSpline::transformBy(const AcGeMatrix3d& xform) {
    for (AcGePoint3d& p : m_controlPoints) p.transformBy(xform);
    if (hasFitData()) {
        for (AcGePoint3d& p : fitPoints()) p.transformBy(xform);
    }
    setStartFitTangent(startFitTangent().transformBy(xform));
    setEndFitTangent(endFitTangent().transformBy(xform));
    const AcGeVector3d n = normal();
    if (!n.isZeroLength()) setNormal(xform.apply(n).normal());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getStretchPoints(AcGePoint3dArray& points) const {
    for (const AcGePoint3d& p : m_controlPoints) points.append(p);
    return Acad::eOk;
}

// The host of this API level does not break a spline into simpler entities.
Acad::ErrorStatus AcDbSpline::explode(AcDbVoidPtrArray&) const { return Acad::eNotApplicable; }
