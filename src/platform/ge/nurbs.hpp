#pragma once
#include <cstddef>
#include <span>
#include <vector>

#include "platform/ge/parametric_curve.hpp"

// Non-uniform rational B-spline curves, evaluated by the Cox-de Boor recursion.
namespace tavrik::ge {

struct NurbsCurve {
    int degree = 3;
    std::vector<double> knots;
    std::vector<AcGePoint3d> controlPoints;
    std::vector<double> weights;  // empty: every weight is 1
};

// The definition of a curve that is stored elsewhere, so that a spline entity is evaluated in
// place rather than copied for every point.
struct NurbsView {
    int degree = 3;
    std::span<const double> knots;
    std::span<const AcGePoint3d> controlPoints;
    std::span<const double> weights;  // empty: every weight is 1

    NurbsView(int d, std::span<const double> k, std::span<const AcGePoint3d> p, std::span<const double> w)
        : degree(d), knots(k), controlPoints(p), weights(w) {}
    NurbsView(const NurbsCurve& c)  // NOLINT(google-explicit-constructor): every curve is a view
        : NurbsView(c.degree, c.knots, c.controlPoints, c.weights) {}
};

// Degree at least 1, more control points than the degree, numControlPoints + degree + 1
// non-decreasing knots, positive weights if any, and a non-empty knot range.
bool isWellFormed(NurbsView curve);
// The parameter range [knots[degree], knots[numControlPoints]]; inline, since every point of a
// spline asks for it several times.
inline double startParam(NurbsView curve) { return curve.knots[static_cast<std::size_t>(curve.degree)]; }
inline double endParam(NurbsView curve) { return curve.knots[curve.controlPoints.size()]; }
// Point and first derivative; t is clamped into the range.
CurveSample evaluate(NurbsView curve, double t);
// The point alone, as evaluate gives it, without the work of the derivative.
AcGePoint3d pointAt(NurbsView curve, double t);
// The distinct knots inside the range, ends included: the curve is smooth between them.
std::vector<double> spanBreaks(NurbsView curve);
// An evaluator that owns a copy of the definition.
ParametricCurve asParametricCurve(NurbsView curve);

}  // namespace tavrik::ge
