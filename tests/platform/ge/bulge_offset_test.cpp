#include <gtest/gtest.h>

#include <numbers>

#include "geometry_matchers.hpp"
#include "platform/ge/bulge_offset.hpp"

using namespace tavrik::ge;

namespace {
BulgePath rectangle(double w, double h) {
    return {{{{0, 0}, 0}, {{w, 0}, 0}, {{w, h}, 0}, {{0, h}, 0}}, true};
}
}  // namespace

TEST(BulgeOffset, positive_distance_grows_a_counter_clockwise_rectangle) {
    std::optional<BulgePath> out = offsetPath(rectangle(10, 4), 1.0);
    ASSERT_TRUE(out);
    ASSERT_EQ(out->vertices.size(), 4u);
    EXPECT_THAT(out->vertices[0].point, IsNearPoint(AcGePoint2d(-1, -1), 1e-12));
    EXPECT_THAT(out->vertices[2].point, IsNearPoint(AcGePoint2d(11, 5), 1e-12));
    EXPECT_NEAR(signedArea(*out), 12.0 * 6.0, 1e-9);
}

TEST(BulgeOffset, inward_offset_past_half_the_width_fails) {
    EXPECT_FALSE(offsetPath(rectangle(10, 4), -2.5));
    EXPECT_TRUE(offsetPath(rectangle(10, 4), -1.9));
}

TEST(BulgeOffset, tangent_arc_joins_keep_their_bulges) {
    // A slot: two half circles of radius 1 joined by straight sides, counter-clockwise.
    BulgePath slot{{{{0, 0}, 0}, {{4, 0}, 1}, {{4, 2}, 0}, {{0, 2}, 1}}, true};
    std::optional<BulgePath> out = offsetPath(slot, 0.5);
    ASSERT_TRUE(out);
    ASSERT_EQ(out->vertices.size(), 4u);
    EXPECT_THAT(out->vertices[1].point, IsNearPoint(AcGePoint2d(4, -0.5), 1e-12));
    EXPECT_NEAR(out->vertices[1].bulge, 1.0, 1e-12);
    EXPECT_FALSE(offsetPath(slot, -1.0));
}

TEST(BulgeOffset, short_edge_that_the_offset_turns_backwards_is_dropped) {
    // A notch of width 0.4 at the top of a square is bridged by an inward offset of 0.5.
    BulgePath notched{{{{0, 0}, 0}, {{10, 0}, 0}, {{10, 10}, 0}, {{5.2, 10}, 0},
                       {{5.2, 10.2}, 0}, {{4.8, 10.2}, 0}, {{4.8, 10}, 0}, {{0, 10}, 0}},
                      true};
    std::optional<BulgePath> out = offsetPath(notched, -0.5);
    ASSERT_TRUE(out);
    EXPECT_NEAR(signedArea(*out), 9.0 * 9.0, 1e-9);
}
