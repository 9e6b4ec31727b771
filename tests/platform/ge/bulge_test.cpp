#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "geometry_matchers.hpp"
#include "platform/ge/bulge.hpp"

using namespace tavrik::ge;

TEST(Bulge, half_circle_counter_clockwise_has_its_centre_on_the_chord) {
    BulgeArc arc = arcOf({{1, 0}, {-1, 0}, 1.0});
    EXPECT_THAT(arc.center, IsNearPoint(AcGePoint2d(0, 0), 1e-12));
    EXPECT_NEAR(arc.radius, 1.0, 1e-12);
    EXPECT_NEAR(arc.sweep, std::numbers::pi, 1e-12);
    EXPECT_THAT(pointAt({{1, 0}, {-1, 0}, 1.0}, 0.5), IsNearPoint(AcGePoint2d(0, 1), 1e-12));
}

TEST(Bulge, negative_bulge_runs_clockwise) {
    BulgeSegment s{{1, 0}, {-1, 0}, -1.0};
    EXPECT_THAT(pointAt(s, 0.5), IsNearPoint(AcGePoint2d(0, -1), 1e-12));
    EXPECT_NEAR(segmentLength(s), std::numbers::pi, 1e-12);
}

TEST(Bulge, quarter_arc_length_and_bulge_round_trip) {
    const double sweep = std::numbers::pi / 2;
    BulgeSegment s{{2, 0}, {0, 2}, bulgeFromSweep(sweep)};
    EXPECT_NEAR(segmentLength(s), 2.0 * sweep, 1e-12);
    EXPECT_NEAR(sweepFromBulge(s.bulge), sweep, 1e-12);
    EXPECT_THAT(arcOf(s).center, IsNearPoint(AcGePoint2d(0, 0), 1e-12));
}

TEST(Bulge, closest_point_off_the_arc_is_the_nearer_end) {
    BulgeSegment s{{1, 0}, {0, 1}, bulgeFromSweep(std::numbers::pi / 2)};
    SegmentHit hit = closestPoint(s, {0.2, -1});
    EXPECT_THAT(hit.point, IsNearPoint(AcGePoint2d(1, 0), 1e-12));
    EXPECT_EQ(hit.fraction, 0.0);
}

TEST(Bulge, closest_point_on_a_line_is_the_foot) {
    SegmentHit hit = closestPoint({{0, 0}, {10, 0}, 0.0}, {4, 3});
    EXPECT_NEAR(hit.fraction, 0.4, 1e-15);
    EXPECT_NEAR(hit.distance, 3.0, 1e-15);
}

TEST(Bulge, signed_area_of_a_counter_clockwise_circle) {
    BulgePath circle{{{{1, 0}, 1.0}, {{-1, 0}, 1.0}}, true};
    EXPECT_NEAR(signedArea(circle), std::numbers::pi, 1e-12);
    for (BulgeVertex& v : circle.vertices) v.bulge = -v.bulge;
    EXPECT_NEAR(signedArea(circle), -std::numbers::pi, 1e-12);
}
