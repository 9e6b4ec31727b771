#include "platform/ge/nurbs.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tavrik::ge {
namespace {

std::size_t numPoints(NurbsView c) { return c.controlPoints.size(); }
std::size_t degreeOf(NurbsView c) { return static_cast<std::size_t>(c.degree); }

// Working room for the basis functions of one evaluation: on the stack for the degrees that
// drawings use, on the heap beyond, so that evaluating a point allocates nothing.
class Scratch {
public:
    explicit Scratch(std::size_t count) {
        if (count > stack_.size()) heap_.resize(count);
    }
    double* data() { return heap_.empty() ? stack_.data() : heap_.data(); }

private:
    std::array<double, 64> stack_;
    std::vector<double> heap_;
};

// The index s of the knot span [knots[s], knots[s+1]) holding t, within [degree, n - 1]; the
// end of the range belongs to the last non-empty span.
std::size_t findSpan(NurbsView c, double t) {
    const std::size_t p = degreeOf(c);
    std::size_t s = numPoints(c) - 1;
    while (s > p && (c.knots[s] > t || c.knots[s] == c.knots[s + 1])) --s;
    return s;
}

// The degree-d basis functions N[s-d .. s] at t (the non-zero ones of span s) into n[0 .. d];
// left and right are working room of d + 1 values. Step j writes left[j], right[j] and n[j]
// before anything reads them, so nothing needs clearing first.
void basisFunctions(std::span<const double> u, std::size_t s, double t, std::size_t d, double* n,
                    double* left, double* right) {
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
}

// N[s-p .. s] of degree p into value[0 .. p] and, unless derivative is null, their derivatives
// into derivative[0 .. p], from the degree p-1 functions; scratch holds 3p values.
void basisWithDerivative(NurbsView c, std::size_t s, double t, double* value, double* derivative,
                         double* scratch) {
    const std::size_t p = degreeOf(c);
    std::span<const double> u = c.knots;
    double* lower = scratch;  // N[s-p+1 .. s]
    basisFunctions(u, s, t, p - 1, lower, scratch + p, scratch + 2 * p);
    // N[i] of degree p - 1 is lower[k - 1] for i = s - p + k, and 0 outside k = 1 .. p.
    const double dp = static_cast<double>(p);
    for (std::size_t k = 0; k <= p; ++k) {
        const std::size_t i = s - p + k;
        const double a = u[i + p] - u[i];
        const double b = u[i + p + 1] - u[i + 1];
        const double fa = a > 0 ? (k == 0 ? 0.0 : lower[k - 1]) / a : 0.0;
        const double fb = b > 0 ? (k == p ? 0.0 : lower[k]) / b : 0.0;
        value[k] = (t - u[i]) * fa + (u[i + p + 1] - t) * fb;
        if (derivative) derivative[k] = dp * (fa - fb);
    }
}

}  // namespace

bool isWellFormed(NurbsView c) {
    if (c.degree < 1 || numPoints(c) <= degreeOf(c)) return false;
    if (c.knots.size() != numPoints(c) + degreeOf(c) + 1) return false;
    if (!std::is_sorted(c.knots.begin(), c.knots.end())) return false;
    if (!c.weights.empty() &&
        (c.weights.size() != numPoints(c) ||
         std::any_of(c.weights.begin(), c.weights.end(), [](double w) { return w <= 0.0; })))
        return false;
    return endParam(c) > startParam(c);
}

namespace {

// The point at t and, when asked, the first derivative; the point is computed the same way
// either way.
CurveSample sample(NurbsView c, double t, bool withDerivative) {
    t = std::clamp(t, startParam(c), endParam(c));
    const std::size_t p = degreeOf(c);
    const std::size_t s = findSpan(c, t);
    Scratch scratch(5 * p + 2);
    double* value = scratch.data();
    double* derivative = value + p + 1;
    basisWithDerivative(c, s, t, value, withDerivative ? derivative : nullptr, derivative + p + 1);
    // Homogeneous sums: A = sum N w P, W = sum N w, and their derivatives.
    AcGeVector3d a, da;
    double w = 0.0, dw = 0.0;
    for (std::size_t k = 0; k <= p; ++k) {
        const std::size_t i = s - p + k;
        const double wi = c.weights.empty() ? 1.0 : c.weights[i];
        const AcGeVector3d pi = c.controlPoints[i].asVector();
        a += pi * (value[k] * wi);
        w += value[k] * wi;
        if (withDerivative) {
            da += pi * (derivative[k] * wi);
            dw += derivative[k] * wi;
        }
    }
    AcGeVector3d point = a / w;
    AcGeVector3d slope = withDerivative ? (da - point * dw) / w : AcGeVector3d();
    return {AcGePoint3d::kOrigin + point, slope};
}

}  // namespace

CurveSample evaluate(NurbsView c, double t) { return sample(c, t, true); }

AcGePoint3d pointAt(NurbsView c, double t) { return sample(c, t, false).point; }

std::vector<double> spanBreaks(NurbsView c) {
    std::vector<double> breaks;
    for (std::size_t i = degreeOf(c); i <= numPoints(c); ++i)
        if (breaks.empty() || c.knots[i] > breaks.back()) breaks.push_back(c.knots[i]);
    return breaks;
}

ParametricCurve asParametricCurve(NurbsView view) {
    NurbsCurve curve{view.degree, {view.knots.begin(), view.knots.end()},
                     {view.controlPoints.begin(), view.controlPoints.end()},
                     {view.weights.begin(), view.weights.end()}};
    return {[curve](double t) { return evaluate(curve, t); }, spanBreaks(curve)};
}

}  // namespace tavrik::ge
