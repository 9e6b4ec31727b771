#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "geometry_matchers.hpp"
#include "platform/ge/nurbs.hpp"

using namespace tavrik::ge;

namespace {
// The quarter of the unit circle from (1, 0) to (0, 1) as a rational quadratic.
NurbsCurve quarterCircle() {
    return {2, {0, 0, 0, 1, 1, 1}, {{1, 0, 0}, {1, 1, 0}, {0, 1, 0}},
            {1, std::sqrt(0.5), 1}};
}
}  // namespace

TEST(Nurbs, rational_quarter_circle_lies_on_the_circle) {
    NurbsCurve c = quarterCircle();
    ASSERT_TRUE(isWellFormed(c));
    for (int i = 0; i <= 100; ++i) {
        AcGePoint3d p = evaluate(c, i / 100.0).point;
        EXPECT_NEAR(p.asVector().length(), 1.0, 1e-12);
    }
}

TEST(Nurbs, derivative_matches_a_difference_quotient) {
    NurbsCurve c{3, {0, 0, 0, 0, 1, 2, 2, 2, 2}, {{0, 0, 0}, {1, 2, 0}, {3, -1, 1}, {4, 0, 0}, {6, 2, 0}},
                 {}};
    const double h = 1e-6;
    for (double t : {0.1, 0.7, 1.3, 1.9}) {
        AcGeVector3d quotient = (evaluate(c, t + h).point - evaluate(c, t - h).point) / (2 * h);
        EXPECT_NEAR((evaluate(c, t).derivative - quotient).length(), 0.0, 1e-6);
    }
}

TEST(Nurbs, clamped_curve_starts_and_ends_on_its_end_control_points) {
    NurbsCurve c{2, {0, 0, 0, 0.5, 1, 1, 1}, {{0, 0, 0}, {1, 1, 0}, {2, 0, 0}, {3, 1, 0}}, {}};
    EXPECT_THAT(evaluate(c, 0).point, IsNearPoint(AcGePoint3d(0, 0, 0), 1e-15));
    EXPECT_THAT(evaluate(c, 1).point, IsNearPoint(AcGePoint3d(3, 1, 0), 1e-15));
}

TEST(Nurbs, range_and_breaks_follow_the_knots) {
    NurbsCurve c{2, {0, 0, 0, 0.5, 0.5, 2, 2, 2}, {{0, 0, 0}, {1, 1, 0}, {2, 0, 0}, {3, 1, 0}, {4, 0, 0}},
                 {}};
    EXPECT_EQ(startParam(c), 0.0);
    EXPECT_EQ(endParam(c), 2.0);
    EXPECT_EQ(spanBreaks(c), (std::vector<double>{0.0, 0.5, 2.0}));
}

TEST(Nurbs, malformed_definitions_are_refused) {
    NurbsCurve c = quarterCircle();
    c.knots.pop_back();
    EXPECT_FALSE(isWellFormed(c));
    c = quarterCircle();
    c.weights[1] = 0.0;
    EXPECT_FALSE(isWellFormed(c));
}

TEST(Nurbs, point_alone_is_the_point_of_the_full_evaluation_to_the_last_bit) {
    NurbsCurve rational = quarterCircle();
    NurbsCurve cubic{3, {0, 0, 0, 0, 1, 2, 2, 2, 2}, {{0, 0, 0}, {1, 2, 0}, {3, -1, 1}, {4, 0, 0}, {6, 2, 0}}, {}};
    for (const NurbsCurve& c : {rational, cubic}) {
        for (int i = -2; i <= 202; ++i) {
            double t = startParam(c) + (endParam(c) - startParam(c)) * i / 200.0;
            AcGePoint3d full = evaluate(c, t).point, alone = pointAt(c, t);
            EXPECT_EQ(alone.x, full.x) << t;
            EXPECT_EQ(alone.y, full.y) << t;
            EXPECT_EQ(alone.z, full.z) << t;
        }
    }
}
