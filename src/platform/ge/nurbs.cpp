#include "platform/ge/nurbs.hpp"

#include <algorithm>
#include <cstddef>

namespace tavrik::ge {
namespace {

std::size_t numPoints(const NurbsCurve& c) { return c.controlPoints.size(); }
std::size_t degreeOf(const NurbsCurve& c) { return static_cast<std::size_t>(c.degree); }

// The index s of the knot span [knots[s], knots[s+1]) holding t, within [degree, n - 1]; the
// end of the range belongs to the last non-empty span.
std::size_t findSpan(const NurbsCurve& c, double t) {
    const std::size_t p = degreeOf(c);
    std::size_t s = numPoints(c) - 1;
    while (s > p && (c.knots[s] > t || c.knots[s] == c.knots[s + 1])) --s;
    return s;
}

// The degree-d basis functions N[s-d .. s] at t (the non-zero ones of span s).
std::vector<double> basisFunctions(const std::vector<double>& u, std::size_t s, double t,
                                   std::size_t d) {
    std::vector<double> n(d + 1, 0.0), left(d + 1, 0.0), right(d + 1, 0.0);
    n[0] = 1.0;
    for (std::size_t j = 1; j <= d; ++j) {
        left[j] = t - u[s + 1 - j];
        right[j] = u[s + j] - t;
        double saved = 0.0;
        for (std::size_t r = 0; r < j; ++r) {
            double denom = right[r + 1] + left[j - r];
            double temp = denom != 0.0 ? n[r] / denom : 0.0;
            n[r] = saved + right[r + 1] * temp;
            saved = left[j - r] * temp;
        }
        n[j] = saved;
    }
    return n;
}

struct BasisWithDerivative {
    std::vector<double> value;
    std::vector<double> derivative;
};

// N[s-p .. s] of degree p and their derivatives, from the degree p-1 functions.
BasisWithDerivative basisWithDerivative(const NurbsCurve& c, std::size_t s, double t) {
    const std::size_t p = degreeOf(c);
    const std::vector<double>& u = c.knots;
    std::vector<double> lower = basisFunctions(u, s, t, p - 1);  // N[s-p+1 .. s]
    auto low = [&](std::size_t i) { return (i + p < s + 1 || i > s) ? 0.0 : lower[i + p - 1 - s]; };
    BasisWithDerivative out{std::vector<double>(p + 1), std::vector<double>(p + 1)};
    const double dp = static_cast<double>(p);
    for (std::size_t k = 0; k <= p; ++k) {
        const std::size_t i = s - p + k;
        const double a = u[i + p] - u[i];
        const double b = u[i + p + 1] - u[i + 1];
        const double fa = a > 0 ? low(i) / a : 0.0;
        const double fb = b > 0 ? low(i + 1) / b : 0.0;
        out.value[k] = (t - u[i]) * fa + (u[i + p + 1] - t) * fb;
        out.derivative[k] = dp * (fa - fb);
    }
    return out;
}

}  // namespace

bool isWellFormed(const NurbsCurve& c) {
    if (c.degree < 1 || numPoints(c) <= degreeOf(c)) return false;
    if (c.knots.size() != numPoints(c) + degreeOf(c) + 1) return false;
    if (!std::is_sorted(c.knots.begin(), c.knots.end())) return false;
    if (!c.weights.empty() &&
        (c.weights.size() != numPoints(c) ||
         std::any_of(c.weights.begin(), c.weights.end(), [](double w) { return w <= 0.0; })))
        return false;
    return endParam(c) > startParam(c);
}

double startParam(const NurbsCurve& c) { return c.knots[degreeOf(c)]; }
double endParam(const NurbsCurve& c) { return c.knots[numPoints(c)]; }

CurveSample evaluate(const NurbsCurve& c, double t) {
    t = std::clamp(t, startParam(c), endParam(c));
    const std::size_t p = degreeOf(c);
    const std::size_t s = findSpan(c, t);
    BasisWithDerivative basis = basisWithDerivative(c, s, t);
    // Homogeneous sums: A = sum N w P, W = sum N w, and their derivatives.
    AcGeVector3d a, da;
    double w = 0.0, dw = 0.0;
    for (std::size_t k = 0; k <= p; ++k) {
        const std::size_t i = s - p + k;
        const double wi = c.weights.empty() ? 1.0 : c.weights[i];
        const AcGeVector3d pi = c.controlPoints[i].asVector();
        a += pi * (basis.value[k] * wi);
        da += pi * (basis.derivative[k] * wi);
        w += basis.value[k] * wi;
        dw += basis.derivative[k] * wi;
    }
    AcGeVector3d point = a / w;
    AcGeVector3d derivative = (da - point * dw) / w;
    return {AcGePoint3d::kOrigin + point, derivative};
}

std::vector<double> spanBreaks(const NurbsCurve& c) {
    std::vector<double> breaks;
    for (std::size_t i = degreeOf(c); i <= numPoints(c); ++i)
        if (breaks.empty() || c.knots[i] > breaks.back()) breaks.push_back(c.knots[i]);
    return breaks;
}

ParametricCurve asParametricCurve(const NurbsCurve& curve) {
    return {[curve](double t) { return evaluate(curve, t); }, spanBreaks(curve)};
}

}  // namespace tavrik::ge
