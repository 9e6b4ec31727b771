// The band a polyline segment with widths covers: one outline point on each side of every
// centre point, the width running from the start width to the end width.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "geometry_matchers.hpp"
#include "platform/render/canvas.hpp"

namespace {

using tavrik::render::BandOutline;
using testing::ElementsAre;

TEST(RenderBands, straight_band_tapers_from_start_width_to_end_width_on_both_sides) {
    std::vector<AcGePoint3d> outline = BandOutline({{0, 0, 0}, {5, 0, 0}, {10, 0, 0}}, 4.0, 0.0);
    // Left edge forward (half widths 2, 1, 0), then the right edge back.
    EXPECT_THAT(outline, ElementsAre(IsNearPoint(AcGePoint3d(0, 2, 0), 1e-12), IsNearPoint(AcGePoint3d(5, 1, 0), 1e-12),
                                     IsNearPoint(AcGePoint3d(10, 0, 0), 1e-12), IsNearPoint(AcGePoint3d(10, 0, 0), 1e-12),
                                     IsNearPoint(AcGePoint3d(5, -1, 0), 1e-12), IsNearPoint(AcGePoint3d(0, -2, 0), 1e-12)));
}

TEST(RenderBands, band_runs_across_the_direction_from_the_point_before_to_the_point_after) {
    // A right angle: the corner point takes the diagonal direction of its two neighbours.
    std::vector<AcGePoint3d> outline = BandOutline({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}}, 2.0, 2.0);
    double d = std::sqrt(0.5);
    EXPECT_THAT(outline, ElementsAre(IsNearPoint(AcGePoint3d(0, 1, 0), 1e-12), IsNearPoint(AcGePoint3d(10 - d, d, 0), 1e-12),
                                     IsNearPoint(AcGePoint3d(9, 10, 0), 1e-12), IsNearPoint(AcGePoint3d(11, 10, 0), 1e-12),
                                     IsNearPoint(AcGePoint3d(10 + d, -d, 0), 1e-12), IsNearPoint(AcGePoint3d(0, -1, 0), 1e-12)));
}

TEST(RenderBands, band_of_no_point_one_point_or_one_place_is_empty) {
    EXPECT_TRUE(BandOutline({}, 1.0, 1.0).empty());
    EXPECT_TRUE(BandOutline({{1, 1, 0}}, 1.0, 1.0).empty());
    EXPECT_TRUE(BandOutline({{1, 1, 0}, {1, 1, 0}}, 1.0, 1.0).empty());
    // Closer than 1e-12 is one place; 1e-11 apart already has a direction.
    EXPECT_TRUE(BandOutline({{1, 1, 0}, {1 + 5e-13, 1, 0}}, 1.0, 1.0).empty());
    EXPECT_EQ(BandOutline({{1, 1, 0}, {1 + 1e-11, 1, 0}}, 1.0, 1.0).size(), 4u);
}

TEST(RenderBands, point_whose_neighbours_coincide_is_left_out) {
    // The first point and its repeat have no direction between them; the repeat still has one.
    std::vector<AcGePoint3d> outline = BandOutline({{0, 0, 0}, {0, 0, 0}, {10, 0, 0}}, 2.0, 2.0);
    EXPECT_THAT(outline, ElementsAre(IsNearPoint(AcGePoint3d(0, 1, 0), 1e-12), IsNearPoint(AcGePoint3d(10, 1, 0), 1e-12),
                                     IsNearPoint(AcGePoint3d(10, -1, 0), 1e-12), IsNearPoint(AcGePoint3d(0, -1, 0), 1e-12)));
}

}  // namespace
