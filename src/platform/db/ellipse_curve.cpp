#include <cmath>

#include "platform/db/curve_params.hpp"
#include "platform/db/ellipse.hpp"
#include "platform/db/planar_transform.hpp"
#include "platform/ge/angle.hpp"
#include "platform/ge/parametric_curve.hpp"

// An ellipse's parameter is the eccentric angle t of point(t) = centre + major cos t +
// minor sin t, from the start parameter to the end parameter (taken a turn further when it is
// not above the start). startAngle()/endAngle() are the polar angles of the same end points.
// Lengths come from adaptive quadrature of the speed, quarter turn by quarter turn.

namespace {
namespace ge = tavrik::ge;

double endParamOf(const AcDbEllipse& ellipse) {
    double end = ellipse.endParam();
    return end > ellipse.startParam() ? end : end + ge::kTwoPi;
}

bool isDegenerate(const AcDbEllipse& ellipse) {
    return ellipse.majorAxis().length() <= tavrik::platform_tol::kZeroLength ||
           ellipse.radiusRatio() <= 0.0;
}

ge::EllipticArc arcOf(const AcDbEllipse& ellipse) {
    return {ellipse.center(), ellipse.majorAxis(), ellipse.minorAxis(), ellipse.startParam(),
            endParamOf(ellipse)};
}

// Smooth pieces between the quarter turns, where the speed changes fastest.
ge::ParametricCurve parametricOf(const AcDbEllipse& ellipse) {
    ge::EllipticArc arc = arcOf(ellipse);
    std::vector<double> breaks{arc.start};
    const double quarter = 0.5 * M_PI;
    for (double t = (std::floor(arc.start / quarter) + 1) * quarter; t < arc.end; t += quarter)
        breaks.push_back(t);
    breaks.push_back(arc.end);
    return {[arc](double t) { return ge::CurveSample{ge::pointAt(arc, t), ge::derivativeAt(arc, t)}; },
            breaks};
}

std::optional<double> paramOnEllipse(const AcDbEllipse& ellipse, double param) {
    return tavrik::curve_params::onRange(param, ellipse.startParam(), endParamOf(ellipse));
}
}  // namespace

Acad::ErrorStatus AcDbEllipse::getStartParam(double& param) const {
    if (isDegenerate(*this)) return Acad::eDegenerateGeometry;
    param = m_startParam;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getEndParam(double& param) const {
    if (isDegenerate(*this)) return Acad::eDegenerateGeometry;
    param = endParamOf(*this);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getStartPoint(AcGePoint3d& point) const {
    if (isDegenerate(*this)) return Acad::eDegenerateGeometry;
    point = ge::pointAt(arcOf(*this), m_startParam);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getEndPoint(AcGePoint3d& point) const {
    if (isDegenerate(*this)) return Acad::eDegenerateGeometry;
    point = ge::pointAt(arcOf(*this), endParamOf(*this));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getPointAtParam(double param, AcGePoint3d& point) const {
    if (isDegenerate(*this)) return Acad::eDegenerateGeometry;
    std::optional<double> t = paramOnEllipse(*this, param);
    if (!t) return Acad::eInvalidInput;
    point = ge::pointAt(arcOf(*this), *t);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getFirstDeriv(double param, AcGeVector3d& deriv) const {
    if (isDegenerate(*this)) return Acad::eDegenerateGeometry;
    std::optional<double> t = paramOnEllipse(*this, param);
    if (!t) return Acad::eInvalidInput;
    deriv = ge::derivativeAt(arcOf(*this), *t);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getParamAtPoint(const AcGePoint3d& point, double& param) const {
    if (isDegenerate(*this)) return Acad::eDegenerateGeometry;
    ge::ParamPoint nearest = ge::closestPoint(parametricOf(*this), point);
    if (!tavrik::curve_params::sameLocation(nearest.point, point)) return Acad::ePointNotOnEntity;
    param = nearest.param;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getDistAtParam(double param, double& dist) const {
    if (isDegenerate(*this)) return Acad::eDegenerateGeometry;
    std::optional<double> t = paramOnEllipse(*this, param);
    if (!t) return Acad::eInvalidInput;
    dist = ge::arcLength(parametricOf(*this), m_startParam, *t);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& closest,
                                                 bool) const {
    if (isDegenerate(*this)) return Acad::eDegenerateGeometry;
    closest = ge::closestPoint(parametricOf(*this), given).point;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getOffsetCurves(double, AcDbVoidPtrArray&) const {
    return Acad::eNotImplementedYet;
}

Acad::ErrorStatus AcDbEllipse::getGeomExtents(AcDbExtents& extents) const {
    if (isDegenerate(*this)) return Acad::eInvalidExtents;
    ge::Box3d box = ge::boundingBox(arcOf(*this));
    extents = AcDbExtents(box.min, box.max);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::transformBy(const AcGeMatrix3d& xform) {
    std::optional<tavrik::ocs::PlanarTransform> move =
        tavrik::ocs::planarTransform(xform, m_normal);
    if (!move) return Acad::eCannotScaleNonUniformly;
    m_center.transformBy(xform);
    m_majorAxis = xform.apply(m_majorAxis);
    m_normal = move->normal;
    // A reflection turns the minor axis (normal x major) round: t becomes -t.
    if (move->mirrored) {
        double start = -endParamOf(*this);
        m_endParam = -m_startParam;
        m_startParam = start;
    }
    return Acad::eOk;
}

// The centre and the ends of the axes; an elliptical arc has its end points instead.
Acad::ErrorStatus AcDbEllipse::getStretchPoints(AcGePoint3dArray& points) const {
    points.append(m_center);
    ge::EllipticArc arc = arcOf(*this);
    if (!isFull()) {
        points.append(ge::pointAt(arc, arc.start));
        points.append(ge::pointAt(arc, arc.end));
        return Acad::eOk;
    }
    for (double t : {0.0, 0.5 * M_PI, M_PI, 1.5 * M_PI}) points.append(ge::pointAt(arc, t));
    return Acad::eOk;
}

// The host of this API level does not break an ellipse into simpler entities.
Acad::ErrorStatus AcDbEllipse::explode(AcDbVoidPtrArray&) const { return Acad::eNotApplicable; }
