#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "geometry_matchers.hpp"
#include "platform/ge/parametric_curve.hpp"

using namespace tavrik::ge;

namespace {
ParametricCurve unitCircle() {
    EllipticArc arc{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, 0.0, 2 * std::numbers::pi};
    return {[arc](double t) { return CurveSample{pointAt(arc, t), derivativeAt(arc, t)}; },
            {0.0, std::numbers::pi, 2 * std::numbers::pi}};
}
}  // namespace

TEST(ParametricCurve, closest_point_on_a_circle_is_radial) {
    ParamPoint p = closestPoint(unitCircle(), {3, 3, 1});
    EXPECT_NEAR(p.param, std::numbers::pi / 4, 1e-10);
    EXPECT_THAT(p.point, IsNearPoint(AcGePoint3d(std::sqrt(0.5), std::sqrt(0.5), 0), 1e-10));
}

TEST(ParametricCurve, arc_length_of_a_circle) {
    EXPECT_NEAR(arcLength(unitCircle(), 0.0, 2 * std::numbers::pi), 2 * std::numbers::pi, 1e-12);
    EXPECT_NEAR(arcLength(unitCircle(), 0.5, 2.0), 1.5, 1e-12);
}

TEST(ParametricCurve, box_reaches_the_turning_points) {
    Box3d box = boundingBox(unitCircle());
    EXPECT_THAT(box.min, IsNearPoint(AcGePoint3d(-1, -1, 0), 1e-12));
    EXPECT_THAT(box.max, IsNearPoint(AcGePoint3d(1, 1, 0), 1e-12));
}
