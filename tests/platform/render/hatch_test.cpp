// Hatch boundaries drawn along their edges: a spline edge follows the curve, not its control
// polygon, and the fit data of later versions does not disturb the loops after it.
#include <gtest/gtest.h>

#include "platform/render/picture.hpp"

namespace {

using namespace rendertest;

// A red solid hatch of two loops: a straight base from (10,20) to (90,20) closed by a
// quadratic spline through the control point (50,100), whose top is at (50,60); and the square
// (70,70)-(80,80). fitData is written after the spline's control points, sources (the count
// of source objects and their handles) at the end of the first loop.
std::string SplineHatch(const std::string& fitData, const std::string& sources) {
    return "0\nHATCH\n8\n0\n62\n1\n10\n0\n20\n0\n30\n0\n2\nSOLID\n70\n1\n71\n0\n91\n2\n"
           "92\n1\n93\n2\n72\n1\n10\n10\n20\n20\n11\n90\n21\n20\n"
           "72\n4\n94\n2\n73\n0\n74\n0\n95\n6\n96\n3\n40\n0\n40\n0\n40\n0\n40\n1\n40\n1\n40\n1\n"
           "10\n90\n20\n20\n10\n50\n20\n100\n10\n10\n20\n20\n" +
           fitData + sources +
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

}  // namespace
