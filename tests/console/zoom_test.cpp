// wzoom and zoomall typed at the command line; the view is read back through VIEWCTR and
// VIEWSIZE.
#include <cstdio>

#include "console_fixture.hpp"
#include "platform/db/extents.hpp"

namespace {

using Zoom = ConsoleTest;

std::string Number(double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%.4f", value);
    return text;
}

TEST_F(Zoom, zoomall_in_an_empty_drawing_hands_on_the_empty_extents_as_they_are) {
    ConsoleRun run = Run("(zoomall)\nVIEWSIZE\nVIEWCTR\n", false, false);
    ASSERT_EQ(run.status, 0) << run.output;
    AcDbExtents empty;  // min above max: sorted, they span the whole plane
    double height = std::abs(empty.maxPoint().y - empty.minPoint().y);
    EXPECT_NE(run.output.find("VIEWSIZE = " + Number(height) + " (read only)"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("VIEWCTR = 0.0000,0.0000,0.0000"), std::string::npos) << run.output;
}

TEST_F(Zoom, zoomall_takes_the_extents_of_the_model_space) {
    AddSheet(10, 20, 200, 100);
    ConsoleRun run = Run("(wzoom '(0 0 0) '(1 1 0))\n(zoomall)\nVIEWSIZE\nVIEWCTR\n", true, false);
    ASSERT_EQ(run.status, 0) << run.output;
    EXPECT_NE(run.output.find("VIEWSIZE = 100.0000"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("VIEWCTR = 110.0000,70.0000,0.0000"), std::string::npos) << run.output;
}

TEST_F(Zoom, wzoom_takes_the_window_of_two_points_in_any_order_and_returns_t) {
    ConsoleRun run = Run("(wzoom '(100 0 0) '(0 50 0))\nVIEWSIZE\nVIEWCTR\n", false, false);
    ASSERT_EQ(run.status, 0) << run.output;
    EXPECT_NE(run.output.find("T\n"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("VIEWSIZE = 50.0000"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("VIEWCTR = 50.0000,25.0000,0.0000"), std::string::npos) << run.output;
}

TEST_F(Zoom, wzoom_without_arguments_says_it_needs_two_points_and_bad_arguments_give_nil_silently) {
    ConsoleRun run = Run("(wzoom)\n(wzoom '(0 0) '(1 1 0))\n(wzoom '(0 0 0) '(1 1 0) 3)\n(wzoom \"a\" '(1 1 0))\n"
                         "(zoomall 1)\nVIEWSIZE\n",
                         false, false);
    ASSERT_EQ(run.status, 0) << run.output;
    size_t first = run.output.find("参数类型错误,需要两个点参数!");
    EXPECT_NE(first, std::string::npos) << run.output;
    EXPECT_EQ(run.output.find("参数类型错误", first + 1), std::string::npos) << run.output;  // only once
    size_t nils = 0;
    for (size_t at = run.output.find("nil"); at != std::string::npos; at = run.output.find("nil", at + 1)) ++nils;
    EXPECT_EQ(nils, 5u) << run.output;
    EXPECT_NE(run.output.find("VIEWSIZE = 297.0000"), std::string::npos) << run.output;  // the view did not change
}

TEST_F(Zoom, malformed_lisp_line_is_named_and_the_host_goes_on) {
    ConsoleRun run = Run("(wzoom '(0 0 0)\n(wzoom (list 0 0 0) '(1 1 0))\n(nosuch)\nVIEWSIZE\n", false, false);
    EXPECT_EQ(run.status, 1) << run.output;
    EXPECT_NE(run.output.find("not closed"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("a call inside a call"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("unknown function \"nosuch\""), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("VIEWSIZE = "), std::string::npos) << run.output;
}

}  // namespace
