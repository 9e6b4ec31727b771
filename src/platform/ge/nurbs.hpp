#pragma once
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

// Degree at least 1, more control points than the degree, numControlPoints + degree + 1
// non-decreasing knots, positive weights if any, and a non-empty knot range.
bool isWellFormed(const NurbsCurve& curve);
// The parameter range [knots[degree], knots[numControlPoints]].
double startParam(const NurbsCurve& curve);
double endParam(const NurbsCurve& curve);
// Point and first derivative; t is clamped into the range.
CurveSample evaluate(const NurbsCurve& curve, double t);
// The distinct knots inside the range, ends included: the curve is smooth between them.
std::vector<double> spanBreaks(const NurbsCurve& curve);
ParametricCurve asParametricCurve(const NurbsCurve& curve);

}  // namespace tavrik::ge
