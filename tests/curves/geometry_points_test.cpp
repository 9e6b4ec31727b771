// The point and circle functions of the geometry kit, over the boundaries their thresholds make:
// just inside, on, and just outside each one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <iterator>
#include <limits>

#include "curves/geometry.hpp"
#include "geometry_matchers.hpp"

namespace {

using P = AcGePoint3d;

struct PointPairCase {
    const char* name;
    P a;
    P b;
    double tolerance;
    bool expected;
};

TEST(SamePoint, each_axis_strictly_inside_the_tolerance) {
    const PointPairCase cases[] = {
        {"x just inside", P(0.4999, 0, 0), P(0, 0, 0), 0.5, true},
        {"x on", P(0.5, 0, 0), P(0, 0, 0), 0.5, false},
        {"x just outside", P(0.5001, 0, 0), P(0, 0, 0), 0.5, false},
        {"x below just inside", P(-0.4999, 0, 0), P(0, 0, 0), 0.5, true},
        {"x below on", P(-0.5, 0, 0), P(0, 0, 0), 0.5, false},
        {"y just inside", P(0, 0.4999, 0), P(0, 0, 0), 0.5, true},
        {"y on", P(0, 0.5, 0), P(0, 0, 0), 0.5, false},
        {"y below on", P(0, -0.5, 0), P(0, 0, 0), 0.5, false},
        {"z just inside", P(0, 0, 0.4999), P(0, 0, 0), 0.5, true},
        {"z on", P(0, 0, 0.5), P(0, 0, 0), 0.5, false},
        {"z below on", P(0, 0, -0.5), P(0, 0, 0), 0.5, false},
        {"every axis just inside, though the distance is above t", P(0.49, 0.49, 0.49), P(0, 0, 0), 0.5, true},
    };
    for (const auto& c : cases) EXPECT_EQ(SamePoint(c.a, c.b, c.tolerance), c.expected) << c.name;
}

TEST(SamePoint, equal_points_with_tolerance_0_are_not_the_same) {
    EXPECT_FALSE(SamePoint(P(1, 2, 3), P(1, 2, 3), 0.0));
}

TEST(PointDistance, is_the_3d_distance) {
    EXPECT_DOUBLE_EQ(PointDistance(P(1, 1, 1), P(2, 3, 3)), 3.0);
    EXPECT_DOUBLE_EQ(PointDistance(P(0, 0, 0), P(0, 0, -4)), 4.0);
}

struct SegmentCase {
    const char* name;
    P p;
    P a;
    P b;
    bool expected;
};

TEST(PointOnSegment, distance_from_the_line_is_strict_and_the_range_inclusive) {
    const P a(0, 0, 0), b(10, 0, 0), up(0, 10, 0);
    const SegmentCase cases[] = {
        {"above the line just inside", P(5, 0.4999, 0), a, b, true},
        {"above the line on", P(5, 0.5, 0), a, b, false},
        {"above the line just outside", P(5, 0.5001, 0), a, b, false},
        {"below the line on", P(5, -0.5, 0), a, b, false},
        {"t beyond the end passes the range", P(10.5, 0, 0), a, b, true},
        {"just past t beyond the end", P(10.5001, 0, 0), a, b, false},
        {"t before the start passes the range", P(-0.5, 0, 0), a, b, true},
        {"just past t before the start", P(-0.5001, 0, 0), a, b, false},
        {"t above a vertical segment passes the range", P(0, 10.5, 0), a, up, true},
        {"just past t above a vertical segment", P(0, 10.5001, 0), a, up, false},
        {"t below a vertical segment passes the range", P(0, -0.5, 0), a, up, true},
        {"just past t below a vertical segment", P(0, -0.5001, 0), a, up, false},
        {"t before the start, ends in reverse", P(-0.5, 0, 0), b, a, true},
        {"t beyond the end, ends in reverse", P(10.5, 0, 0), b, a, true},
        {"t below a vertical segment, ends in reverse", P(0, -0.5, 0), up, a, true},
        {"t above a vertical segment, ends in reverse", P(0, 10.5, 0), up, a, true},
        {"ends given in reverse", P(5, 0.25, 0), b, a, true},
        {"z is not read", P(5, 0.25, 100), a, b, true},
        {"diagonal segment, on the line", P(2, 2, 0), P(0, 0, 0), P(4, 4, 0), true},
    };
    for (const auto& c : cases) EXPECT_EQ(PointOnSegment(c.p, c.a, c.b, 0.5), c.expected) << c.name;
}

TEST(PointOnSegment, point_exactly_t_beyond_a_horizontal_segment_is_decided_by_the_line_distance) {
    EXPECT_TRUE(PointOnSegment(P(10.5, 0.3, 0), P(0, 0, 0), P(10, 0, 0), 0.5));
    EXPECT_FALSE(PointOnSegment(P(10.5, 0.5, 0), P(0, 0, 0), P(10, 0, 0), 0.5));
}

TEST(PointOnSegment, zero_length_segment_holds_no_point) {
    EXPECT_FALSE(PointOnSegment(P(1, 1, 0), P(1, 1, 0), P(1, 1, 0), 0.5));
    EXPECT_FALSE(PointOnSegment(P(1.1, 1, 0), P(1, 1, 0), P(1, 1, 0), 0.5));
}

TEST(TurnNotLeft, clockwise_and_straight_turns_hold_left_turns_do_not) {
    // From (0,0) over (1,0) the cross product is the y of the third point.
    struct Case {
        const char* name;
        double y;
        bool expected;
    };
    const Case cases[] = {
        {"left turn", 1.0, false},
        {"smallest left turn", 1e-12, false},
        {"no turn", 0.0, true},
        {"smallest clockwise turn", -1e-12, true},
        {"clockwise turn", -1.0, true},
    };
    for (const auto& c : cases) EXPECT_EQ(TurnNotLeft(P(0, 0, 0), P(1, 0, 0), P(2, c.y, 0)), c.expected) << c.name;
    // The cross product takes both axes of both legs.
    EXPECT_FALSE(TurnNotLeft(P(3, 2, 0), P(3, 4, 0), P(1, 6, 0)));
    EXPECT_TRUE(TurnNotLeft(P(3, 2, 0), P(3, 4, 0), P(5, 6, 0)));
}

// The circle of centre (0, 0) and radius 5 through three points whose bisectors cross exactly.
const P kTop(0, 5, 0), kUpperRight(4, 3, 0), kLowerRight(4, -3, 0);

TEST(CircleFromThreePoints, finds_centre_and_radius_at_z_0) {
    AcGePoint3d center(9, 9, 9);
    double radius = 0.0;
    ASSERT_TRUE(CircleFromThreePoints(P(0, 5, 7), P(4, 3, 7), P(4, -3, 7), center, radius));
    EXPECT_EQ(center, P(0, 0, 0));
    EXPECT_EQ(radius, 5.0);
}

TEST(CircleFromThreePoints, first_chord_y_difference_of_0_001_is_enough) {
    struct Case {
        const char* name;
        double y2;
        bool expected;
    };
    const Case cases[] = {
        {"just above 0.001", 0.0011, true},
        {"on 0.001", 0.001, true},
        {"just below 0.001", 0.000999, false},
    };
    for (const auto& c : cases) {
        AcGePoint3d center;
        double radius = 0.0;
        EXPECT_EQ(CircleFromThreePoints(P(0, 0, 0), P(10, c.y2, 0), P(5, 5, 0), center, radius),
                  c.expected)
            << c.name;
    }
}

TEST(CircleFromThreePoints, slopes_closer_than_0_01_refuse) {
    // k2 is 0 (the third point straight above the first), so the slope difference is k1 = -x2.
    struct Case {
        const char* name;
        double x2;
        bool expected;
    };
    const Case cases[] = {
        {"difference just inside the refusal", -0.0099, false},
        {"difference on 0.01", -0.01, true},
        {"difference just outside", -0.0101, true},
    };
    for (const auto& c : cases) {
        AcGePoint3d center;
        double radius = 0.0;
        EXPECT_EQ(CircleFromThreePoints(P(0, 0, 0), P(c.x2, 1, 0), P(0, 5, 0), center, radius),
                  c.expected)
            << c.name;
    }
}

TEST(CircleFromThreePoints, nearly_level_first_chord_fails_though_the_circle_exists_and_order_matters) {
    AcGePoint3d center;
    double radius = 0.0;
    EXPECT_FALSE(CircleFromThreePoints(P(0, 0, 0), P(10, 0.0005, 0), P(5, 5, 0), center, radius));
    ASSERT_TRUE(CircleFromThreePoints(P(5, 5, 0), P(0, 0, 0), P(10, 0.0005, 0), center, radius));
    EXPECT_NEAR(PointDistance(center, P(0, 0, 0)), radius, 1e-4);
    EXPECT_NEAR(PointDistance(center, P(5, 5, 0)), radius, 1e-4);
    EXPECT_NEAR(PointDistance(center, P(10, 0.0005, 0)), radius, 1e-4);
}

TEST(CircleFromThreePoints, refusal_leaves_the_out_values) {
    AcGePoint3d center(1, 2, 3);
    double radius = 42.0;
    EXPECT_FALSE(CircleFromThreePoints(P(0, 0, 0), P(1, 1, 0), P(2, 2, 0), center, radius));
    EXPECT_EQ(center, P(1, 2, 3));
    EXPECT_EQ(radius, 42.0);
}

TEST(CircleFromThreePoints, radius_near_1000_carries_single_precision) {
    const double trueRadius = 1000.00002;
    const double s = std::sqrt(0.5);
    AcGePoint3d center;
    double radius = 0.0;
    ASSERT_TRUE(CircleFromThreePoints(P(0, trueRadius, 0), P(trueRadius * s, trueRadius * s, 0),
                                      P(trueRadius, 0, 0), center, radius));
    EXPECT_EQ(radius, static_cast<double>(static_cast<float>(radius)));
    EXPECT_GT(std::fabs(radius - trueRadius), 1e-6);
    EXPECT_LT(std::fabs(radius - trueRadius), 1e-4);
    EXPECT_THAT(center, IsNearPoint(P(0, 0, 0), 1e-6));
}

TEST(CircleFromThreePoints, level_third_point_gives_an_undefined_centre_and_passes) {
    AcGePoint3d center;
    double radius = 0.0;
    ASSERT_TRUE(CircleFromThreePoints(P(0, 0, 0), P(1, 1, 0), P(2, 0, 0), center, radius));
    EXPECT_FALSE(std::isfinite(center.x));
}

TEST(CircleFromThreePoints, circle_away_from_the_origin_has_its_centre_there_in_both_forms) {
    const AcGeVector3d off(7, -3, 0);
    AcGePoint3d center;
    double radius = 0.0;
    ASSERT_TRUE(CircleFromThreePoints(kTop + off, kUpperRight + off, kLowerRight + off, center, radius));
    EXPECT_THAT(center, IsNearPoint(P(7, -3, 0), 1e-12));
    EXPECT_EQ(radius, 5.0);
    ASSERT_TRUE(CircleFromThreePointsFine(kTop + off, kUpperRight + off, kLowerRight + off, center, radius));
    EXPECT_THAT(center, IsNearPoint(P(7, -3, 0), 1e-12));
    EXPECT_EQ(radius, 5.0);
}

TEST(CircleFromThreePointsFine, finds_the_exact_circle) {
    AcGePoint3d center(9, 9, 9);
    double radius = 0.0;
    ASSERT_TRUE(CircleFromThreePointsFine(kTop, kUpperRight, kLowerRight, center, radius));
    EXPECT_EQ(center, P(0, 0, 0));
    EXPECT_EQ(radius, 5.0);
}

TEST(CircleFromThreePointsFine, first_chord_below_5e_7_takes_slope_0_and_a_wrong_centre) {
    // The true circle through (0,0), (10,0) and (3,5) has its centre at (5, 0.4).
    struct Case {
        const char* name;
        double y2;
        bool rightCentre;
    };
    const Case cases[] = {
        {"just above 5e-7", 5.1e-7, true},
        {"on 5e-7", 5e-7, true},
        {"just below 5e-7", 4.9e-7, false},
    };
    for (const auto& c : cases) {
        AcGePoint3d center;
        double radius = 0.0;
        ASSERT_TRUE(CircleFromThreePointsFine(P(0, 0, 0), P(10, c.y2, 0), P(3, 5, 0), center, radius))
            << c.name;
        EXPECT_EQ(center.distanceTo(P(5, 0.4, 0)) < 1e-4, c.rightCentre) << c.name;
    }
    // The same figure away from the origin: the test takes the difference of the y values.
    for (const auto& c : cases) {
        AcGePoint3d center;
        double radius = 0.0;
        ASSERT_TRUE(CircleFromThreePointsFine(P(2, 3, 0), P(12, 3 + c.y2, 0), P(5, 8, 0), center, radius))
            << c.name;
        EXPECT_EQ(center.distanceTo(P(7, 3.4, 0)) < 1e-4, c.rightCentre) << c.name << " away from the origin";
    }
}

TEST(CircleFromThreePointsFine, second_chord_has_its_own_slope_test) {
    // The true centre of (0,0), (3,5) and (10, y3) lies near (5, 0.4).
    struct Case {
        const char* name;
        double y3;
        bool rightCentre;
    };
    const Case cases[] = {
        {"just above 5e-7", 5.1e-7, true},
        {"on 5e-7", 5e-7, true},
        {"just below 5e-7", 4.9e-7, false},
    };
    for (const auto& c : cases) {
        AcGePoint3d center;
        double radius = 0.0;
        ASSERT_TRUE(CircleFromThreePointsFine(P(0, 0, 0), P(3, 5, 0), P(10, c.y3, 0), center, radius))
            << c.name;
        EXPECT_EQ(center.distanceTo(P(5, 0.4, 0)) < 1e-4, c.rightCentre) << c.name;
    }
    // The same figure away from the origin: the slope test takes the difference of the y values.
    for (const auto& c : cases) {
        AcGePoint3d center;
        double radius = 0.0;
        ASSERT_TRUE(CircleFromThreePointsFine(P(2, 3, 0), P(5, 8, 0), P(12, 3 + c.y3, 0), center, radius))
            << c.name;
        EXPECT_EQ(center.distanceTo(P(7, 3.4, 0)) < 1e-4, c.rightCentre) << c.name << " away from the origin";
    }
    // The coarse form tests the first chord only, so it finds the true centre here.
    AcGePoint3d center;
    double radius = 0.0;
    ASSERT_TRUE(CircleFromThreePoints(P(0, 0, 0), P(3, 5, 0), P(10, 4.9e-7, 0), center, radius));
    EXPECT_THAT(center, IsNearPoint(P(5, 0.4, 0), 1e-4));
}

TEST(CircleFromThreePointsFine, circle_away_from_the_origin_with_no_level_chord_has_its_centre_there) {
    const P c(20, 30, 0);
    auto on = [&](double degrees) {
        double a = degrees * M_PI / 180.0;
        return P(c.x + 10 * std::cos(a), c.y + 10 * std::sin(a), 0);
    };
    AcGePoint3d center;
    double radius = 0.0;
    ASSERT_TRUE(CircleFromThreePointsFine(on(10), on(100), on(200), center, radius));
    EXPECT_THAT(center, IsNearPoint(c, 1e-3));
    EXPECT_NEAR(radius, 10.0, 1e-3);
}

TEST(CircleFromThreePointsFine, slope_difference_is_tested_in_single_precision_against_5e_7) {
    // k2 is 0 and k1 = -x2. 5e-7 itself rounds to a float just below 5e-7, so it is refused.
    struct Case {
        const char* name;
        double slope;
        bool expected;
    };
    const Case cases[] = {
        {"just above, rounding up", 5.0000003e-7, true},
        {"on, rounding below", 5e-7, false},
        {"just below", 4.9e-7, false},
        {"negative just above", -5.0000003e-7, true},
    };
    for (const auto& c : cases) {
        AcGePoint3d center;
        double radius = 0.0;
        EXPECT_EQ(CircleFromThreePointsFine(P(0, 0, 0), P(-c.slope, 1, 0), P(0, 5, 0), center, radius),
                  c.expected)
            << c.name;
    }
}

TEST(CircleFromThreePointsFine, radius_carries_single_precision) {
    const double trueRadius = 1000.00002;
    AcGePoint3d center;
    double radius = 0.0;
    ASSERT_TRUE(CircleFromThreePointsFine(P(0, trueRadius, 0), P(trueRadius * 0.6, trueRadius * 0.8, 0),
                                          P(trueRadius, 0, 0), center, radius));
    EXPECT_EQ(radius, static_cast<double>(static_cast<float>(radius)));
    EXPECT_GT(std::fabs(radius - trueRadius), 1e-6);
}

TEST(SamplesFitCircle, every_point_within_t_of_the_circle_inclusive) {
    struct Case {
        const char* name;
        P fourth;
        bool expected;
    };
    const Case cases[] = {
        {"just inside", P(5.4999, 0, 0), true},
        {"on", P(5.5, 0, 0), true},
        {"just outside", P(5.5001, 0, 0), false},
        {"inside the circle, on", P(4.5, 0, 0), true},
        {"inside the circle, just outside", P(4.4999, 0, 0), false},
    };
    for (const auto& c : cases) {
        AcGePoint3dArray points{kTop, kUpperRight, kLowerRight, c.fourth};
        EXPECT_EQ(SamplesFitCircle(points, 0.5), c.expected) << c.name;
    }
}

TEST(SamplesFitCircle, circle_is_taken_through_0_n_over_3_and_2n_over_3) {
    // The points at 0 and 1 coincide, so a circle through the first three would fail.
    AcGePoint3dArray points{kTop, kTop, kUpperRight, P(-5, 0, 0), kLowerRight, P(3, -4, 0)};
    EXPECT_TRUE(SamplesFitCircle(points, 1e-9));
    // Eight points: 0, 2 and 5, not 2 x (8/3) = 4, which repeats the point at 2.
    AcGePoint3dArray eight{kTop, P(-3, 4, 0), kUpperRight, P(-5, 0, 0), kUpperRight, kLowerRight,
                           P(3, -4, 0), P(0, -5, 0)};
    EXPECT_TRUE(SamplesFitCircle(eight, 1e-9));
}

TEST(SamplesFitCircle, fewer_than_3_points_never_fit) {
    EXPECT_FALSE(SamplesFitCircle(AcGePoint3dArray{kTop, kUpperRight}, 1.0));
    EXPECT_FALSE(SamplesFitCircle(AcGePoint3dArray{}, 1.0));
}

TEST(SamplesFitCircle, points_whose_circle_is_refused_never_fit) {
    // The first two points lie less than 0.001 apart in y: no circle, though all lie on one.
    AcGePoint3dArray points{P(0, 0, 0), P(10, 0.0005, 0), P(5, 5, 0)};
    EXPECT_FALSE(SamplesFitCircle(points, 100.0));
}

TEST(SamplesFitCircle, points_off_z_0_fail_by_their_z) {
    AcGePoint3dArray level{P(0, 5, 3), P(4, 3, 3), P(4, -3, 3)};
    EXPECT_FALSE(SamplesFitCircle(level, 0.5));
    EXPECT_TRUE(SamplesFitCircle(level, 1.0));  // sqrt(34) - 5 = 0.83
}

TEST(SamplesFitCircle, undefined_distance_passes) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    AcGePoint3dArray points{kTop, kUpperRight, kLowerRight, P(nan, 0, 0)};
    EXPECT_TRUE(SamplesFitCircle(points, 0.5));
}

TEST(PointsWithinRadius, inclusive_band_around_the_radius) {
    struct Case {
        const char* name;
        P point;
        bool expected;
    };
    const Case cases[] = {
        {"just inside", P(5.4999, 0, 0), true},
        {"on", P(5.5, 0, 0), true},
        {"just outside", P(5.5001, 0, 0), false},
        {"3D distance", P(5, 0, 3), false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(PointsWithinRadius(P(0, 0, 0), 5.0, AcGePoint3dArray{kTop, c.point}, 0.5), c.expected)
            << c.name;
    EXPECT_FALSE(PointsWithinRadius(P(0, 0, 0), 5.0, AcGePoint3dArray{}, 0.5));
}

TEST(PolarAngle, quadrants_and_vertical_directions_in_degrees_and_radians) {
    struct Case {
        const char* name;
        P to;
        double degrees;
    };
    const Case cases[] = {
        {"first quadrant", P(1, 1, 0), 45.0},
        {"positive x axis", P(1, 0, 0), 0.0},
        {"second quadrant", P(-1, 1, 0), 135.0},
        {"negative x axis", P(-1, 0, 0), 180.0},
        {"third quadrant", P(-1, -1, 0), 225.0},
        {"fourth quadrant", P(1, -1, 0), 315.0},
        {"up", P(0, 1, 0), 90.0},
        {"down", P(0, -1, 0), 270.0},
    };
    for (const auto& c : cases) {
        EXPECT_NEAR(PolarAngle(P(0, 0, 0), c.to, true), c.degrees, 1e-12) << c.name;
        EXPECT_NEAR(PolarAngle(P(0, 0, 0), c.to, false), c.degrees * 0.017453292519943295, 1e-12) << c.name;
    }
    EXPECT_EQ(PolarAngle(P(0, 0, 0), P(0, 1, 0), false), 1.5707963267948966);
    EXPECT_EQ(PolarAngle(P(0, 0, 0), P(0, -1, 0), false), 4.71238898038469);
}

TEST(PolarAngle, only_an_exactly_vertical_direction_takes_the_fixed_angles) {
    struct Case {
        const char* name;
        P to;
        double degrees;
        double within;
    };
    const Case cases[] = {
        {"up, just above level", P(0, 1e-12, 0), 90.0, 0.0},
        {"level on the start", P(0, 0, 0), 90.0, 0.0},
        {"down, just below level", P(0, -1e-12, 0), 270.0, 0.0},
        {"just right of vertical, up", P(1e-12, 1, 0), 90.0, 1e-9},
        {"just left of vertical, up", P(-1e-12, 1, 0), 90.0, 1e-9},
        {"just right of vertical, down", P(1e-12, -1, 0), 270.0, 1e-9},
        {"just left of vertical, down", P(-1e-12, -1, 0), 270.0, 1e-9},
    };
    for (const auto& c : cases) {
        if (c.within == 0.0) {
            EXPECT_EQ(PolarAngle(P(0, 0, 0), c.to, true), c.degrees) << c.name;
        } else {
            double angle = PolarAngle(P(0, 0, 0), c.to, true);
            EXPECT_NEAR(angle, c.degrees, c.within) << c.name;
            EXPECT_NE(angle, c.degrees) << c.name << ": from the arctangent, not the fixed value";
        }
    }
}

TEST(PolarAngle, positive_x_axis_is_0_and_just_below_it_is_nearly_360) {
    struct Case {
        const char* name;
        double dy;
        double degrees;
    };
    const Case cases[] = {
        {"just above", 1e-9, 0.0},
        {"on", 0.0, 0.0},
        {"just below", -1e-9, 360.0},
    };
    for (const auto& c : cases) EXPECT_NEAR(PolarAngle(P(1, 1, 0), P(2, 1 + c.dy, 0), true), c.degrees, 1e-6) << c.name;
    // The negative x axis is 180 from either side.
    EXPECT_NEAR(PolarAngle(P(0, 0, 0), P(-1, 1e-9, 0), true), 180.0, 1e-6);
    EXPECT_EQ(PolarAngle(P(0, 0, 0), P(-1, 0, 0), true), 180.0);
    EXPECT_NEAR(PolarAngle(P(0, 0, 0), P(-1, -1e-9, 0), true), 180.0, 1e-6);
}

TEST(PolarAngle, coincident_points_give_90) {
    EXPECT_EQ(PolarAngle(P(3, 4, 0), P(3, 4, 0), true), 90.0);
}

TEST(PolarAngle, degrees_come_from_the_arctangent_factor) {
    EXPECT_EQ(PolarAngle(P(0, 0, 0), P(2, 1, 0), true), std::atan(0.5) * 57.29577951308232);
    EXPECT_EQ(PolarAngle(P(0, 0, 0), P(2, -1, 0), true), 360.0 + std::atan(-0.5) * 57.29577951308232);
}

TEST(RotateAboutPoint, turns_counter_clockwise_in_degrees_and_lands_at_z_0) {
    EXPECT_THAT(RotateAboutPoint(P(2, 1, 5), P(1, 1, 0), 90.0), IsNearPoint(P(1, 2, 0), 1e-12));
    EXPECT_EQ(RotateAboutPoint(P(2, 1, 5), P(1, 1, 0), 90.0).z, 0.0);
    EXPECT_THAT(RotateAboutPoint(P(3, 0, 0), P(0, 0, 0), -90.0), IsNearPoint(P(0, -3, 0), 1e-12));
}

TEST(BoundingCorners, each_axis_by_itself) {
    AcGePoint3d low, high;
    BoundingCorners(AcGePoint3dArray{P(1, 5, -2), P(3, -1, 4), P(-2, 2, 0)}, low, high);
    EXPECT_EQ(low, P(-2, -1, -2));
    EXPECT_EQ(high, P(3, 5, 4));
}

// The arc from the top of the circle of radius 5 clockwise over (4, 3) down to (4, -3).
struct ArcCase {
    const char* name;
    P point;
    double tolerance;
    bool expected;
};

void ExpectArcCases(bool (*onArc)(const P&, const P&, const P&, const P&, double),
                    const ArcCase* cases, size_t count) {
    for (size_t i = 0; i < count; ++i)
        EXPECT_EQ(onArc(cases[i].point, kTop, kUpperRight, kLowerRight, cases[i].tolerance),
                  cases[i].expected)
            << cases[i].name;
}

TEST(PointOnArc, band_around_the_circle_is_strict_and_on_the_side_of_the_mid_point) {
    const ArcCase cases[] = {
        {"just inside the band", P(5.4999, 0, 0), 0.5, true},
        {"on the band", P(5.5, 0, 0), 0.5, false},
        {"just outside the band", P(5.5001, 0, 0), 0.5, false},
        {"on the circle across the chord", P(-5, 0, 0), 0.5, false},
        {"on the circle on the mid point's side", P(5, 0, 0), 0.1, true},
    };
    ExpectArcCases(PointOnArc, cases, std::size(cases));
}

TEST(PointOnArc, ends_count_by_strict_3d_distance) {
    // (-3, 4) lies on the circle but across the chord: only the end test can take it.
    const double d = PointDistance(P(-3, 4, 0), kTop);
    const ArcCase cases[] = {
        {"just inside", P(-3, 4, 0), std::nextafter(d, 10.0), true},
        {"on", P(-3, 4, 0), d, false},
        {"just outside", P(-3, 4, 0), std::nextafter(d, 0.0), false},
        {"near the end point", P(3.9, -3, 0), 0.2, true},
        // (-4, -3) lies on the circle across the chord, 8 from the end and farther from the start.
        {"just inside the end's distance", P(-4, -3, 0), std::nextafter(8.0, 10.0), true},
        {"on the end's distance", P(-4, -3, 0), 8.0, false},
    };
    ExpectArcCases(PointOnArc, cases, std::size(cases));
    // Per axis near the start but farther than t in distance: no end, and off the circle.
    EXPECT_FALSE(PointOnArc(P(-0.49, 5.49, 0), kTop, kUpperRight, kLowerRight, 0.5));
}

TEST(PointOnArc, three_points_in_a_line_make_no_arc) {
    EXPECT_FALSE(PointOnArc(P(1, 1, 0), P(0, 0, 0), P(1, 1, 0), P(2, 2, 0), 0.5));
}

TEST(PointOnArcCoarse, ends_count_per_axis_strictly) {
    const ArcCase cases[] = {
        {"per axis just inside, farther than t", P(-0.4999, 5.4999, 0), 0.5, true},
        {"per axis on", P(-0.5, 5.5, 0), 0.5, false},
        {"band just inside", P(5.4999, 0, 0), 0.5, true},
        {"band on", P(5.5, 0, 0), 0.5, false},
        {"across the chord", P(-5, 0, 0), 0.5, false},
    };
    ExpectArcCases(PointOnArcCoarse, cases, std::size(cases));
}

TEST(PointOnArcCoarse, nearly_level_first_chord_makes_no_arc_where_the_fine_form_finds_one) {
    const P start(-4, 3, 0), mid(4, 3.0005, 0), end(0, -5, 0);
    EXPECT_TRUE(PointOnArc(P(5, 0, 0), start, mid, end, 0.01));
    EXPECT_FALSE(PointOnArcCoarse(P(5, 0, 0), start, mid, end, 0.01));
}

TEST(HeightOverChord, distance_from_the_chord_line) {
    EXPECT_NEAR(HeightOverChord(P(5, 3, 0), P(0, 0, 0), P(10, 0, 0)), 3.0, 1e-12);
    EXPECT_NEAR(HeightOverChord(P(12, -2, 0), P(0, 0, 0), P(10, 0, 0)), 2.0, 1e-12);
}

TEST(ChordBulge, half_circle_is_1_signed_by_the_turn) {
    EXPECT_NEAR(ChordBulge(P(5, 0, 0), P(0, 5, 0), P(-5, 0, 0)), 1.0, 1e-12);
    EXPECT_NEAR(ChordBulge(P(-5, 0, 0), P(0, 5, 0), P(5, 0, 0)), -1.0, 1e-12);
}

TEST(ChordBulge, true_midpoint_gives_the_tangent_of_a_quarter_angle_and_another_point_does_not) {
    const double s = std::sqrt(0.5) * 5;
    EXPECT_NEAR(ChordBulge(P(5, 0, 0), P(s, s, 0), P(0, 5, 0)), std::tan(M_PI / 8), 1e-12);
    const double off = ChordBulge(P(5, 0, 0), P(4, 3, 0), P(0, 5, 0));
    EXPECT_GT(std::fabs(off - std::tan(M_PI / 8)), 0.01);
    EXPECT_GT(off, 0.0);
}

TEST(ChordBulge, sign_turns_on_a_strictly_positive_cross_product) {
    // Over the chord from (0,0) to (10,0) a mid point at height y gives the cross product -10 y.
    struct Case {
        const char* name;
        double y;
        bool positive;
    };
    const Case cases[] = {
        {"cross product just above 0", -1e-3, true},
        {"cross product on 0", 0.0, false},
        {"cross product just below 0", 1e-3, false},
    };
    for (const auto& c : cases) {
        double bulge = ChordBulge(P(0, 0, 0), P(5, c.y, 0), P(10, 0, 0));
        EXPECT_EQ(!std::signbit(bulge), c.positive) << c.name;
        EXPECT_NEAR(std::fabs(bulge), std::fabs(c.y) / 5.0, 1e-7) << c.name;
    }
}

TEST(ChordBulge, straight_run_is_a_negative_zero) {
    double bulge = ChordBulge(P(0, 0, 0), P(5, 0, 0), P(10, 0, 0));
    EXPECT_EQ(bulge, 0.0);
    EXPECT_TRUE(std::signbit(bulge));
}

TEST(DropNearDuplicates, keeps_the_first_and_compares_later_points_with_it) {
    AcGePoint3dArray points{P(0, 0, 0), P(0.015, 0, 0), P(0.03, 0, 0)};
    DropNearDuplicates(points);
    EXPECT_EQ(points, (AcGePoint3dArray{P(0, 0, 0), P(0.03, 0, 0)}));
}

TEST(DropNearDuplicates, each_axis_within_0_02_inclusive) {
    struct Case {
        const char* name;
        P second;
        bool removed;
    };
    const Case cases[] = {
        {"x just inside", P(0.0199, 0, 0), true},
        {"x on", P(0.02, 0, 0), true},
        {"x just outside", P(0.0201, 0, 0), false},
        {"x below on", P(-0.02, 0, 0), true},
        {"y on", P(0, 0.02, 0), true},
        {"y just outside", P(0, 0.0201, 0), false},
        {"y below just outside", P(0, -0.0201, 0), false},
        {"z on", P(0, 0, 0.02), true},
        {"z just outside", P(0, 0, 0.0201), false},
        {"z below just outside", P(0, 0, -0.0201), false},
    };
    for (const auto& c : cases) {
        AcGePoint3dArray points{P(0, 0, 0), c.second};
        DropNearDuplicates(points);
        EXPECT_EQ(points.length(), c.removed ? 1 : 2) << c.name;
    }
}

TEST(DropNearDuplicates, removal_keeps_the_index_so_runs_of_duplicates_go) {
    AcGePoint3dArray points{P(0, 0, 0), P(0.01, 0, 0), P(0.011, 0, 0), P(1, 0, 0), P(1.01, 0, 0)};
    DropNearDuplicates(points);
    EXPECT_EQ(points, (AcGePoint3dArray{P(0, 0, 0), P(1, 0, 0)}));
}

TEST(SortAscending, bubble_sort_of_doubles) {
    AcGeDoubleArray values{3.0, -1.0, 2.0, 2.0, 10.0, 0.5};
    SortAscending(values);
    EXPECT_EQ(values, (AcGeDoubleArray{-1.0, 0.5, 2.0, 2.0, 3.0, 10.0}));
    AcGeDoubleArray one{7.0};
    SortAscending(one);
    EXPECT_EQ(one, AcGeDoubleArray{7.0});
    AcGeDoubleArray reversed{4.0, 3.0, 2.0, 1.0};
    SortAscending(reversed);
    EXPECT_EQ(reversed, (AcGeDoubleArray{1.0, 2.0, 3.0, 4.0}));
}

TEST(SortAscending, equal_neighbours_keep_their_order) {
    // 0 and -0 compare equal but can be told apart: only a strictly smaller right one moves.
    AcGeDoubleArray zeros{0.0, -0.0, 1.0, -0.0, 0.0};
    SortAscending(zeros);
    ASSERT_EQ(zeros.length(), 5);
    EXPECT_FALSE(std::signbit(zeros[0]));
    EXPECT_TRUE(std::signbit(zeros[1]));
    EXPECT_TRUE(std::signbit(zeros[2]));
    EXPECT_FALSE(std::signbit(zeros[3]));
    EXPECT_EQ(zeros[4], 1.0);
}

}  // namespace
