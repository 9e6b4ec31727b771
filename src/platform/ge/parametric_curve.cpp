#include "platform/ge/parametric_curve.hpp"

#include <algorithm>
#include <cmath>

#include "platform/ge/platform_tolerances.hpp"
#include "platform/ge/quadrature.hpp"

namespace tavrik::ge {
namespace {

// The derivative of half the squared distance: negative while the curve approaches the query.
double approach(const ParametricCurve& curve, const AcGePoint3d& query, double t) {
    CurveSample s = curve.evaluate(t);
    return (s.point - query).dotProduct(s.derivative);
}

std::vector<double> samplesOf(const ParametricCurve& curve) {
    std::vector<double> params;
    for (std::size_t i = 0; i + 1 < curve.breaks.size(); ++i) {
        const double a = curve.breaks[i];
        const double b = curve.breaks[i + 1];
        for (int k = 0; k < platform_tol::kSearchSamplesPerSpan; ++k)
            params.push_back(a + (b - a) * k / platform_tol::kSearchSamplesPerSpan);
    }
    params.push_back(curve.breaks.back());
    return params;
}

// Bisection on the sign change of approach() inside [lo, hi], where it goes from - to +.
double bisectMinimum(const ParametricCurve& curve, const AcGePoint3d& query, double lo,
                     double hi) {
    while (hi - lo > platform_tol::kParamSearch * std::max(1.0, std::fabs(hi))) {
        double mid = 0.5 * (lo + hi);
        if (mid <= lo || mid >= hi) break;
        (approach(curve, query, mid) < 0 ? lo : hi) = mid;
    }
    return 0.5 * (lo + hi);
}

ParamPoint nearer(const ParametricCurve& curve, const AcGePoint3d& query, const ParamPoint& a,
                  double t) {
    AcGePoint3d p = curve.evaluate(t).point;
    return p.distanceTo(query) < a.point.distanceTo(query) ? ParamPoint{t, p} : a;
}

// Where coordinate i of the derivative changes sign inside [lo, hi] (it does at the ends).
double bisectTurn(const ParametricCurve& curve, int i, double lo, double hi) {
    const bool risingAtLo = curve.evaluate(lo).derivative[i] > 0;
    while (hi - lo > platform_tol::kParamSearch * std::max(1.0, std::fabs(hi))) {
        double mid = 0.5 * (lo + hi);
        if (mid <= lo || mid >= hi) break;
        ((curve.evaluate(mid).derivative[i] > 0) == risingAtLo ? lo : hi) = mid;
    }
    return 0.5 * (lo + hi);
}

}  // namespace

ParamPoint closestPoint(const ParametricCurve& curve, const AcGePoint3d& query) {
    std::vector<double> params = samplesOf(curve);
    std::size_t best = 0;
    double bestDistance = curve.evaluate(params[0]).point.distanceTo(query);
    for (std::size_t i = 1; i < params.size(); ++i) {
        double d = curve.evaluate(params[i]).point.distanceTo(query);
        if (d < bestDistance) best = i, bestDistance = d;
    }
    ParamPoint result{params[best], curve.evaluate(params[best]).point};
    // The true minimum lies in a neighbouring sample interval where the approach turns.
    if (best > 0 && approach(curve, query, params[best - 1]) < 0 &&
        approach(curve, query, params[best]) >= 0)
        result = nearer(curve, query, result,
                        bisectMinimum(curve, query, params[best - 1], params[best]));
    if (best + 1 < params.size() && approach(curve, query, params[best]) < 0 &&
        approach(curve, query, params[best + 1]) >= 0)
        result = nearer(curve, query, result,
                        bisectMinimum(curve, query, params[best], params[best + 1]));
    return result;
}

double arcLength(const ParametricCurve& curve, double from, double to) {
    auto speed = [&curve](double t) { return curve.evaluate(t).derivative.length(); };
    double total = 0.0;
    for (std::size_t i = 0; i + 1 < curve.breaks.size(); ++i) {
        double a = std::max(from, curve.breaks[i]);
        double b = std::min(to, curve.breaks[i + 1]);
        if (b > a) total += integrate(speed, a, b, platform_tol::kQuadratureRelative);
    }
    return total;
}

Box3d boundingBox(const ParametricCurve& curve) {
    std::vector<double> params = samplesOf(curve);
    AcGePoint3d first = curve.evaluate(params.front()).point;
    Box3d box{first, first};
    auto add = [&box](const AcGePoint3d& p) {
        for (int i = 0; i < 3; ++i) {
            box.min[i] = std::min(box.min[i], p[i]);
            box.max[i] = std::max(box.max[i], p[i]);
        }
    };
    for (std::size_t k = 0; k < params.size(); ++k) {
        add(curve.evaluate(params[k]).point);
        if (k == 0) continue;
        AcGeVector3d before = curve.evaluate(params[k - 1]).derivative;
        AcGeVector3d after = curve.evaluate(params[k]).derivative;
        for (int i = 0; i < 3; ++i)
            if ((before[i] > 0) != (after[i] > 0))
                add(curve.evaluate(bisectTurn(curve, i, params[k - 1], params[k])).point);
    }
    return box;
}

}  // namespace tavrik::ge
