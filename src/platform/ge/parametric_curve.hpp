#pragma once
#include <functional>
#include <vector>

#include "platform/ge/elliptic_arc.hpp"

// A curve known only through its evaluator: closest points and arc lengths for the curves
// without closed forms (splines, ellipses).
namespace tavrik::ge {

struct CurveSample {
    AcGePoint3d point;
    AcGeVector3d derivative;
};

struct ParametricCurve {
    std::function<CurveSample(double)> evaluate;
    // Increasing parameters from the start to the end of the curve; between two of them the
    // curve is smooth (knots of a spline, quarter turns of an ellipse).
    std::vector<double> breaks;
};

struct ParamPoint {
    double param = 0.0;
    AcGePoint3d point;
};

// The point of the curve nearest to the query, ends included.
ParamPoint closestPoint(const ParametricCurve& curve, const AcGePoint3d& query);
// The length of the curve between two parameters, from <= to, both within the breaks.
double arcLength(const ParametricCurve& curve, double from, double to);
// The tight axis-aligned box: the ends and every point where a coordinate turns.
Box3d boundingBox(const ParametricCurve& curve);

}  // namespace tavrik::ge
