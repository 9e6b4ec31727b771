#pragma once
// Splines for the curve tests: clamped cubic splines through control points, and rational
// quadratic splines that are exact circular arcs.
#include <cmath>
#include <vector>

#include "platform/db/spline.hpp"
#include "platform/ge/point3d.hpp"

// A clamped uniform cubic spline (degree lowered for fewer than 4 points).
inline AcDbSpline* ClampedSpline(const std::vector<AcGePoint3d>& controlPoints) {
    int count = static_cast<int>(controlPoints.size());
    int degree = count >= 4 ? 3 : count - 1;
    std::vector<double> knots(static_cast<size_t>(degree + 1), 0.0);
    for (int i = 1; i < count - degree; ++i) knots.push_back(i);
    for (int i = 0; i <= degree; ++i) knots.push_back(count - degree);
    auto* spline = new AcDbSpline;
    spline->setNurbsData(degree, false, false, false, controlPoints, knots, {});
    return spline;
}

// The exact arc about `center` from `startDegrees` over `sweepDegrees` (negative: clockwise),
// in the plane z = center.z, as rational quadratic segments of at most 90 degrees.
inline AcDbSpline* ArcSpline(const AcGePoint3d& center, double radius, double startDegrees,
                             double sweepDegrees) {
    int segments = static_cast<int>(std::ceil(std::fabs(sweepDegrees) / 90.0 - 1e-9));
    if (segments < 1) segments = 1;
    double step = sweepDegrees / segments * M_PI / 180.0;
    double a = startDegrees * M_PI / 180.0;
    auto at = [&](double angle, double r) {
        return AcGePoint3d(center.x + r * std::cos(angle), center.y + r * std::sin(angle), center.z);
    };
    std::vector<AcGePoint3d> points{at(a, radius)};
    std::vector<double> weights{1.0};
    std::vector<double> knots{0, 0, 0};
    for (int s = 0; s < segments; ++s) {
        double half = step * 0.5;
        points.push_back(at(a + half, radius / std::cos(half)));
        weights.push_back(std::cos(half));
        a += step;
        points.push_back(at(a, radius));
        weights.push_back(1.0);
        knots.push_back(s + 1);
        knots.push_back(s + 1);
    }
    knots.push_back(segments);
    auto* spline = new AcDbSpline;
    spline->setNurbsData(2, true, false, false, points, knots, weights);
    return spline;
}
