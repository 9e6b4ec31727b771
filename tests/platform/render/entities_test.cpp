// Entities drawn as a CAD program shows them, pixel by pixel: polylines with widths, points,
// arcs to their end, multiple inserts, attribute definitions outside blocks.
#include <gtest/gtest.h>

#include <cmath>

#include "platform/render/picture.hpp"

namespace {

using namespace rendertest;

// Ink anywhere in the 3 x 3 pixels around drawing point (x, y): thin lines fall between
// pixel centres.
bool InkNear(const Picture& picture, double x, double y) {
    for (int dx = -1; dx <= 1; ++dx)
        if (!IsBackgroundLight(Ink(picture, Column(x) + dx, y))) return true;
    return false;
}

Picture Drawn(const std::string& name, const std::string& entities, const std::string& blocks = "") {
    Rendered r = Render(name, Dxf("", kFrame + entities, blocks), Light());
    EXPECT_EQ(r.status, 0) << r.error;
    return Picture(r.png);
}

TEST(RenderPolylines, wide_segment_tapers_from_its_start_width_and_a_segment_without_width_is_a_line) {
    Picture picture = Drawn("taper", "0\nLWPOLYLINE\n8\n0\n90\n3\n70\n0\n10\n10\n20\n50\n40\n20\n41\n0\n"
                                     "10\n90\n20\n50\n10\n90\n20\n80\n");
    // Half the width at x 20 is 8.75, at x 80 1.25.
    EXPECT_TRUE(InkNear(picture, 20, 57));
    EXPECT_TRUE(InkNear(picture, 20, 43));
    EXPECT_FALSE(InkNear(picture, 20, 61));
    EXPECT_FALSE(InkNear(picture, 80, 55));
    EXPECT_TRUE(InkNear(picture, 80, 50));
    EXPECT_TRUE(InkNear(picture, 90, 65));
}

TEST(RenderPolylines, arc_segment_without_width_in_a_wide_polyline_is_its_arc_not_a_closed_loop) {
    Picture picture = Drawn("wide_arc", "0\nLWPOLYLINE\n8\n0\n90\n3\n70\n0\n10\n10\n20\n50\n40\n4\n41\n4\n"
                                        "10\n50\n20\n50\n42\n1\n10\n90\n20\n50\n");
    // The half circle about (70, 50) of radius 20 goes through (70, 30); its chord stays empty.
    EXPECT_TRUE(InkNear(picture, 70, 30));
    EXPECT_FALSE(InkNear(picture, 70, 70));
    EXPECT_FALSE(InkNear(picture, 70, 50));
    EXPECT_FALSE(InkNear(picture, 60, 50));
}

TEST(RenderPoints, point_is_a_dot_of_a_few_pixels) {
    Picture picture = Drawn("point", "0\nPOINT\n8\n0\n10\n50\n20\n50\n");
    int ink = 0;
    for (int y = Row(50) - 6; y <= Row(50) + 6; ++y)
        for (int x = Column(50) - 6; x <= Column(50) + 6; ++x) ink += !IsBackgroundLight(picture.at(x, y));
    EXPECT_GE(ink, 4);
    EXPECT_LE(ink, 16);
}

TEST(RenderCurves, arc_is_drawn_up_to_its_end_angle) {
    Picture picture = Drawn("arc_end", "0\nARC\n8\n0\n10\n50\n20\n10\n40\n40\n50\n0\n51\n90\n");
    // Just before the end, at 89 degrees.
    EXPECT_FALSE(IsBackgroundLight(Ink(picture, Column(50.7), 50)));
    EXPECT_TRUE(IsBackgroundLight(Ink(picture, Column(48), 50)));
}

// A point of the circle of centre (50, 50) and radius 40 at the given angle in degrees.
bool InkOnCircleAt(const Picture& picture, double degrees) {
    return InkNear(picture, 50.0 + 40.0 * std::cos(degrees * M_PI / 180), 50.0 + 40.0 * std::sin(degrees * M_PI / 180));
}

TEST(RenderCurves, arc_far_from_angle_zero_is_drawn_along_its_whole_sweep_and_no_further) {
    // From 170 to 190 degrees: its parameters run from 2.97 to 3.32, not from 0.
    Picture picture = Drawn("arc_from_170", "0\nARC\n8\n0\n10\n50\n20\n50\n40\n40\n50\n170\n51\n190\n");
    for (double degrees : {172.0, 180.0, 188.0}) EXPECT_TRUE(InkOnCircleAt(picture, degrees)) << degrees;
    for (double degrees : {160.0, 200.0}) EXPECT_FALSE(InkOnCircleAt(picture, degrees)) << degrees;
}

TEST(RenderBlocks, multiple_insert_draws_the_block_once_per_cell) {
    std::string block = "0\nBLOCK\n8\n0\n2\nB\n70\n0\n10\n0\n20\n0\n0\nLINE\n8\n0\n10\n0\n20\n0\n11\n0\n21\n10\n"
                        "0\nENDBLK\n8\n0\n";
    Picture picture = Drawn("minsert", "0\nINSERT\n8\n0\n2\nB\n10\n20\n20\n50\n70\n3\n71\n1\n44\n30\n45\n30\n", block);
    for (double x : {20.0, 50.0, 80.0}) EXPECT_TRUE(InkNear(picture, x, 55)) << x;
    EXPECT_FALSE(InkNear(picture, 35, 55));
    // One row: nothing a row spacing above.
    EXPECT_FALSE(InkNear(picture, 50, 85));
}

TEST(RenderBlocks, attribute_definition_outside_a_block_shows_its_tag) {
    Picture picture = Drawn("attdef", "0\nATTDEF\n8\n0\n10\n20\n20\n45\n40\n10\n1\n\n3\nprompt\n2\nTAG\n70\n0\n");
    int ink = 0;
    for (double x = 20; x < 40; x += 1) ink += InkNear(picture, x, 50);
    EXPECT_GT(ink, 5);
}

}  // namespace
