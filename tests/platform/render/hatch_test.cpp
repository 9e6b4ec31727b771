// Hatch boundaries drawn along their edges: a spline edge follows the curve, not its control
// polygon, and the fit data of later versions does not disturb the loops after it.
#include <gtest/gtest.h>

#include <vector>

#include "platform/render/picture.hpp"

namespace {

using namespace rendertest;

// A red solid hatch of two loops: a straight base from (10,20) to (90,20) closed by a
// quadratic spline through the control point (50,100), whose top is at (50,60); and the square
// (70,70)-(80,80). fitData is written after the spline's control points, sources (the count
// of source objects and their handles) at the end of the first loop.
// knots are the spline's knot tags; weights, when given, make it rational with these weights.
std::string SplineHatch(const std::string& fitData, const std::string& sources,
                        const std::vector<double>& knots = {0, 0, 0, 1, 1, 1},
                        const std::vector<double>& weights = {}) {
    std::string spline = "72\n4\n94\n2\n73\n" + std::string(weights.empty() ? "0" : "1") + "\n74\n0\n95\n" +
                         std::to_string(knots.size()) + "\n96\n3\n";
    for (double k : knots) spline += "40\n" + std::to_string(k) + "\n";
    const char* controls[] = {"10\n90\n20\n20\n", "10\n50\n20\n100\n", "10\n10\n20\n20\n"};
    for (size_t i = 0; i < 3; ++i) {
        spline += controls[i];
        if (!weights.empty()) spline += "42\n" + std::to_string(weights[i]) + "\n";
    }
    return "0\nHATCH\n8\n0\n62\n1\n10\n0\n20\n0\n30\n0\n2\nSOLID\n70\n1\n71\n0\n91\n2\n"
           "92\n1\n93\n2\n72\n1\n10\n10\n20\n20\n11\n90\n21\n20\n" +
           spline + fitData + sources +
           "92\n2\n72\n0\n73\n1\n93\n4\n10\n70\n20\n70\n10\n80\n20\n70\n10\n80\n20\n80\n10\n70\n20\n80\n97\n0\n"
           "75\n0\n76\n1\n98\n0\n";
}

bool IsRed(Pixel p) { return p.r > 200 && p.g < 60 && p.b < 60; }

struct FitDataCase {
    const char* name;
    std::string fitData;
    std::string sources;
};

TEST(RenderHatch, spline_edge_is_filled_up_to_the_curve_not_its_control_polygon) {
    const FitDataCase cases[] = {
        {"no_fit_data", "", "97\n0\n"},
        {"no_fit_data_one_source", "", "97\n1\n330\n1F\n"},
        {"no_fit_points", "97\n0\n", "97\n0\n"},
        {"fit_points_and_tangents", "97\n2\n11\n90\n21\n20\n11\n10\n21\n20\n12\n-1\n22\n2\n13\n-1\n23\n-2\n",
         "97\n1\n330\n1F\n"},
    };
    for (const FitDataCase& c : cases) {
        Rendered r = Render(std::string("spline_hatch_") + c.name, Dxf("", kFrame + SplineHatch(c.fitData, c.sources)), Light());
        ASSERT_EQ(r.status, 0) << r.error;
        Picture picture(r.png);
        EXPECT_TRUE(IsRed(picture.at(Column(50), Row(40)))) << c.name;
        EXPECT_TRUE(IsRed(picture.at(Column(50), Row(58)))) << c.name;
        // Under the control polygon (which reaches y 100 here) but above the curve.
        EXPECT_TRUE(IsBackgroundLight(picture.at(Column(50), Row(62)))) << c.name;
        EXPECT_TRUE(IsBackgroundLight(picture.at(Column(50), Row(80)))) << c.name;
        // Near the ends the curve rises along its end tangents, steeper than halfway.
        EXPECT_TRUE(IsRed(picture.at(Column(20), Row(25)))) << c.name;
        EXPECT_TRUE(IsBackgroundLight(picture.at(Column(20), Row(40)))) << c.name;
        // The loop after the spline's edge.
        EXPECT_TRUE(IsRed(picture.at(Column(75), Row(75)))) << c.name;
    }
}

TEST(RenderHatch, spline_edge_over_another_knot_range_is_the_same_curve) {
    Rendered r = Render("spline_hatch_knots", Dxf("", kFrame + SplineHatch("", "97\n0\n", {2, 2, 2, 3, 3, 3})), Light());
    ASSERT_EQ(r.status, 0) << r.error;
    Picture picture(r.png);
    EXPECT_TRUE(IsRed(picture.at(Column(50), Row(58))));
    EXPECT_TRUE(IsBackgroundLight(picture.at(Column(50), Row(62))));
}

TEST(RenderHatch, rational_spline_edge_is_pulled_toward_its_heavier_control_point) {
    // Weight 3 on the middle control point raises the top from y 60 to y 80.
    Rendered r = Render("spline_hatch_rational", Dxf("", kFrame + SplineHatch("", "97\n0\n", {0, 0, 0, 1, 1, 1}, {1, 3, 1})),
                        Light());
    ASSERT_EQ(r.status, 0) << r.error;
    Picture picture(r.png);
    EXPECT_TRUE(IsRed(picture.at(Column(50), Row(77))));
    EXPECT_TRUE(IsBackgroundLight(picture.at(Column(50), Row(83))));
}

TEST(RenderHatch, malformed_spline_edge_is_filled_along_its_control_polygon) {
    // Five knots for three control points of degree 2: no spline.
    Rendered r = Render("spline_hatch_malformed", Dxf("", kFrame + SplineHatch("", "97\n0\n", {0, 0, 0, 1, 1})), Light());
    ASSERT_EQ(r.status, 0) << r.error;
    Picture picture(r.png);
    EXPECT_TRUE(IsRed(picture.at(Column(50), Row(80))));
    EXPECT_TRUE(IsBackgroundLight(picture.at(Column(30), Row(80))));
}

}  // namespace
