// Multi-line texts drawn with their format codes applied, seen through the rows that hold ink
// (the picture's ink projected onto its height) and the colours of the ink.
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "platform/render/picture.hpp"

namespace {

using namespace rendertest;

// A multi-line text of height 20 at (10,90), attached at its top left, in the frame; extra
// tags go before its contents.
Rendered RenderMText(const std::string& name, const std::string& contents, const std::string& color = "7",
                     const std::string& extra = "") {
    std::string entity =
        "0\nMTEXT\n8\n0\n62\n" + color + "\n10\n10\n20\n90\n40\n20\n71\n1\n" + extra + "1\n" + contents + "\n";
    return Render(name, Dxf("", kFrame + entity), Light());
}

// The runs of picture rows that hold ink, top to bottom, as [first, last] rows; the frame's
// corner points stand outside the columns looked at.
std::vector<std::pair<int, int>> InkBands(const Picture& picture) {
    std::vector<std::pair<int, int>> bands;
    bool previous = false;
    for (int y = 0; y < picture.height(); ++y) {
        bool ink = false;
        for (int x = Column(5); x < Column(95) && !ink; ++x) ink = !IsBackgroundLight(picture.at(x, y));
        if (ink && !previous) bands.emplace_back(y, y);
        if (ink) bands.back().second = y;
        previous = ink;
    }
    return bands;
}

int Span(const std::pair<int, int>& band) { return band.second - band.first + 1; }

TEST(RenderMText, height_code_draws_its_run_at_that_height) {
    Rendered plain = RenderMText("mtext_plain", "I");
    Rendered tall = RenderMText("mtext_tall", "{\\H2x;I}");
    ASSERT_EQ(plain.status, 0) << plain.error;
    ASSERT_EQ(tall.status, 0) << tall.error;
    auto plainBands = InkBands(Picture(plain.png)), tallBands = InkBands(Picture(tall.png));
    ASSERT_EQ(plainBands.size(), 1u);
    ASSERT_EQ(tallBands.size(), 1u);
    // 20 units of capital are 38 pixels; twice that, 77.
    EXPECT_NEAR(Span(plainBands[0]), 38, 3);
    EXPECT_NEAR(Span(tallBands[0]), 77, 4);
}

TEST(RenderMText, paragraph_code_starts_a_line_five_thirds_of_a_height_lower) {
    Rendered r = RenderMText("mtext_paragraphs", "I\\PI");
    ASSERT_EQ(r.status, 0) << r.error;
    auto bands = InkBands(Picture(r.png));
    ASSERT_EQ(bands.size(), 2u);
    EXPECT_NEAR(bands[1].second - bands[0].second, 20 * 5.0 / 3.0 * 1.92, 2);
}

TEST(RenderMText, line_spacing_factor_scales_the_pitch_and_zero_counts_as_one) {
    const std::pair<const char*, double> cases[] = {{"0", 1.0}, {"1.5", 1.5}};
    for (const auto& [factor, pitch] : cases) {
        Rendered r = RenderMText(std::string("mtext_spacing_") + factor, "I\\PI", "7", std::string("44\n") + factor + "\n");
        ASSERT_EQ(r.status, 0) << r.error;
        auto bands = InkBands(Picture(r.png));
        ASSERT_EQ(bands.size(), 2u) << factor;
        EXPECT_NEAR(bands[1].second - bands[0].second, pitch * 20 * 5.0 / 3.0 * 1.92, 2) << factor;
    }
}

TEST(RenderMText, entity_after_a_multiline_text_stands_in_its_own_place) {
    std::string text = "0\nMTEXT\n8\n0\n10\n60\n20\n60\n40\n10\n50\n30\n71\n1\n1\nI\n";
    std::string line = "0\nLINE\n8\n0\n10\n10\n20\n10\n11\n90\n21\n10\n";
    Rendered r = Render("mtext_then_line", Dxf("", kFrame + text + line), Light());
    ASSERT_EQ(r.status, 0) << r.error;
    Picture picture(r.png);
    for (double x : {20.0, 50.0, 80.0}) EXPECT_FALSE(IsBackgroundLight(Ink(picture, Column(x), 10))) << x;
}

struct StackCase {
    const char* name;
    const char* contents;
    size_t bands;
};

TEST(RenderMText, stacks_put_one_part_over_the_other_and_a_fraction_a_bar_between) {
    const StackCase cases[] = {
        {"tolerance", "\\SI^I;", 2},
        {"fraction", "\\SI/I;", 3},
        {"plain", "I", 1},
    };
    for (const StackCase& c : cases) {
        Rendered r = RenderMText(std::string("mtext_stack_") + c.name, c.contents);
        ASSERT_EQ(r.status, 0) << r.error;
        auto bands = InkBands(Picture(r.png));
        ASSERT_EQ(bands.size(), c.bands) << c.name;
        if (c.bands > 1) {
            // Each part is 0.7 of the height.
            EXPECT_NEAR(Span(bands.front()), 0.7 * 38, 3) << c.name;
            EXPECT_NEAR(Span(bands.back()), 0.7 * 38, 3) << c.name;
        }
    }
}

bool HasInk(const Picture& picture, int x0, int x1, bool (*is)(Pixel)) {
    for (int y = 0; y < picture.height(); ++y)
        for (int x = x0; x < x1; ++x)
            if (is(picture.at(x, y))) return true;
    return false;
}

bool IsRed(Pixel p) { return p.r > 200 && p.g < 80 && p.b < 80; }
bool IsBlue(Pixel p) { return p.b > 200 && p.r < 80 && p.g < 80; }

TEST(RenderMText, colour_code_paints_its_group_and_the_text_colour_returns_after_it) {
    Rendered r = RenderMText("mtext_colour", "{\\C1;MM}MM", "5");
    ASSERT_EQ(r.status, 0) << r.error;
    Picture picture(r.png);
    // Two M's of height 20 are about 50 units wide: red on the left, blue after.
    EXPECT_TRUE(HasInk(picture, Column(10), Column(30), IsRed));
    EXPECT_FALSE(HasInk(picture, Column(10), Column(30), IsBlue));
    EXPECT_TRUE(HasInk(picture, Column(70), Column(90), IsBlue));
    EXPECT_FALSE(HasInk(picture, Column(70), Column(90), IsRed));
}

TEST(RenderMText, view_of_the_drawing_holds_a_text_as_its_format_codes_draw_it) {
    fs::path dxf = TempDir() / "mtext_extents.dxf";
    std::ofstream(dxf) << Dxf("", "0\nMTEXT\n8\n0\n10\n0\n20\n0\n40\n2\n71\n7\n1\n{\\H3x;MMMM}\n");
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfFile(db, dxf.string()), Acad::eOk);
    std::optional<render::Window> window = render::ModelExtents(db);
    ASSERT_TRUE(window.has_value());
    // Capitals of height 6 standing on the attachment point at the bottom left; four M's are
    // wider than three heights.
    EXPECT_NEAR(window->y0, 0.0, 6 * 0.4);
    EXPECT_GE(window->y1, 6.0);
    EXPECT_LE(window->y1, 6.0 * 1.3);
    EXPECT_NEAR(window->x0, 0.0, 1e-9);
    EXPECT_GT(window->x1, 18.0);
}

struct WrapCase {
    const char* name;
    const char* contents;
    const char* width;  // the text's width; 0 does not wrap
    size_t lines;
};

TEST(RenderMText, text_wider_than_its_width_breaks_at_spaces_and_between_ideographs) {
    const WrapCase cases[] = {
        {"words", "IIII IIII", "41\n80\n", 2},
        {"unwrapped", "IIII IIII", "41\n0\n", 1},
        {"wide_enough", "IIII IIII", "41\n85\n", 1},
        {"ideographs", "\\U+4E2D\\U+4E2D\\U+4E2D\\U+4E2D", "41\n60\n", 2},
        {"long_word", "IIIIIIIII", "41\n20\n", 1},
    };
    for (const WrapCase& c : cases) {
        Rendered r = RenderMText(std::string("mtext_wrap_") + c.name, c.contents, "7", c.width);
        ASSERT_EQ(r.status, 0) << r.error;
        EXPECT_EQ(InkBands(Picture(r.png)).size(), c.lines) << c.name;
    }
}

TEST(RenderMText, piece_wider_than_the_width_stands_on_the_first_line) {
    Rendered r = RenderMText("mtext_wrap_first", "IIIIIIIII", "7", "41\n20\n");
    ASSERT_EQ(r.status, 0) << r.error;
    auto bands = InkBands(Picture(r.png));
    ASSERT_EQ(bands.size(), 1u);
    // The capitals' tops at the attachment point, y 90.
    EXPECT_NEAR(bands[0].first, Row(90), 3);
}

// Ink in the drawing's rectangle [x0, x1] x [y0, y1].
bool InkIn(const Picture& picture, double x0, double x1, double y0, double y1) {
    for (int y = Row(y1); y <= Row(y0); ++y)
        for (int x = Column(x0); x <= Column(x1); ++x)
            if (!IsBackgroundLight(picture.at(x, y))) return true;
    return false;
}

TEST(RenderMText, diagonal_stack_puts_the_upper_part_left_and_raised_and_the_lower_right_and_lowered) {
    // The line's middle is at y 80; parts are 14 high, an I about 6 wide; the lower part starts
    // a part's height after the upper one.
    Rendered r = RenderMText("mtext_diagonal", "\\SI#I;");
    ASSERT_EQ(r.status, 0) << r.error;
    Picture picture(r.png);
    EXPECT_TRUE(InkIn(picture, 10, 16, 82, 92));
    EXPECT_FALSE(InkIn(picture, 10, 16, 64, 76));
    EXPECT_TRUE(InkIn(picture, 29, 37, 66, 76));
    EXPECT_FALSE(InkIn(picture, 29, 37, 82, 92));
}

struct RuleCase {
    const char* name;
    const char* contents;
    size_t bands;
    int thinBand;  // which band is the rule: 0 the top, 1 the bottom, -1 none apart
};

TEST(RenderMText, under_and_over_lines_stand_apart_below_and_above_and_strike_through_crosses) {
    const RuleCase cases[] = {
        {"underline", "{\\LI}", 2, 1},
        {"overline", "{\\OI}", 2, 0},
        {"strike", "{\\KI}", 1, -1},
    };
    for (const RuleCase& c : cases) {
        Rendered r = RenderMText(std::string("mtext_rule_") + c.name, c.contents);
        ASSERT_EQ(r.status, 0) << r.error;
        auto bands = InkBands(Picture(r.png));
        ASSERT_EQ(bands.size(), c.bands) << c.name;
        if (c.thinBand >= 0) {
            EXPECT_LE(Span(bands[c.thinBand]), 4) << c.name;
        }
    }
}

}  // namespace
