// The renderer's behaviour, pixel by pixel on small drawings: colours through layer, block and
// true colour; hidden layers; linetypes; lineweights; the window; the formats; the arguments.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <utility>

#include "platform/render/picture.hpp"

namespace {

using namespace rendertest;

const std::string kLayers =
    "0\nTABLE\n2\nLTYPE\n70\n3\n0\nLTYPE\n2\nCONTINUOUS\n70\n0\n3\n\n72\n65\n73\n0\n40\n0\n"
    "0\nLTYPE\n2\nDASHED\n70\n0\n3\n\n72\n65\n73\n2\n40\n6\n49\n4\n49\n-2\n"
    "0\nLTYPE\n2\nDOTS\n70\n0\n3\n\n72\n65\n73\n2\n40\n4\n49\n0\n49\n-4\n0\nENDTAB\n"
    "0\nTABLE\n2\nLAYER\n70\n3\n0\nLAYER\n2\n0\n70\n0\n62\n7\n6\nCONTINUOUS\n"
    "0\nLAYER\n2\nRED\n70\n0\n62\n1\n6\nCONTINUOUS\n0\nLAYER\n2\nOFF\n70\n0\n62\n-3\n6\nCONTINUOUS\n"
    "0\nLAYER\n2\nFROZEN\n70\n1\n62\n3\n6\nCONTINUOUS\n0\nENDTAB\n";

std::string Line(const std::string& layer, double y, const std::string& extra = "") {
    return "0\nLINE\n8\n" + layer + "\n" + extra + "10\n10\n20\n" + std::to_string(y) + "\n11\n90\n21\n" +
           std::to_string(y) + "\n";
}

TEST(RenderColours, by_layer_entity_takes_its_layers_colour) {
    Rendered r = Render("bylayer", Dxf(kLayers, kFrame + Line("RED", 50, "370\n50\n")), Light());
    ASSERT_EQ(r.status, 0) << r.error;
    Pixel p = Ink(Picture(r.png), 100, 50);
    EXPECT_GT(p.r, 200);
    EXPECT_LT(p.g, 60);
    EXPECT_LT(p.b, 60);
}

TEST(RenderColours, index_seven_is_black_on_light_and_white_on_dark) {
    std::string text = Dxf(kLayers, kFrame + Line("0", 50, "62\n7\n370\n50\n"));
    Rendered light = Render("seven_light", text, Light());
    render::Options dark = Light();
    dark.background = render::Background::kDark;
    Rendered onDark = Render("seven_dark", text, dark);
    ASSERT_EQ(light.status, 0);
    ASSERT_EQ(onDark.status, 0);
    Pixel black = Ink(Picture(light.png), 100, 50);
    EXPECT_LT(black.r + black.g + black.b, 60);
    Picture darkPicture(onDark.png);
    int brightest = 0;
    for (int row = Row(50) - 1; row <= Row(50) + 1; ++row) {
        Pixel p = darkPicture.at(100, row);
        brightest = std::max(brightest, p.r + p.g + p.b);
    }
    EXPECT_GT(brightest, 3 * 230);
}

TEST(RenderColours, true_colour_wins_over_the_index) {
    Rendered r = Render("truecolour", Dxf(kLayers, kFrame + Line("0", 50, "62\n1\n420\n255\n370\n50\n")), Light());
    ASSERT_EQ(r.status, 0);
    Pixel p = Ink(Picture(r.png), 100, 50);
    EXPECT_GT(p.b, 200);
    EXPECT_LT(p.r, 60);
}

TEST(RenderColours, by_block_entity_in_nested_block_takes_the_outer_references_colour) {
    std::string blocks =
        "0\nBLOCK\n8\n0\n2\nINNER\n70\n0\n10\n0\n20\n0\n" + Line("0", 0, "62\n0\n370\n50\n") + "0\nENDBLK\n8\n0\n"
        "0\nBLOCK\n8\n0\n2\nOUTER\n70\n0\n10\n0\n20\n0\n0\nINSERT\n8\n0\n62\n0\n2\nINNER\n10\n0\n20\n0\n"
        "0\nENDBLK\n8\n0\n";
    std::string entities = kFrame + "0\nINSERT\n8\n0\n62\n3\n2\nOUTER\n10\n0\n20\n50\n";
    Rendered r = Render("byblock", Dxf(kLayers, entities, blocks), Light());
    ASSERT_EQ(r.status, 0) << r.error;
    Pixel p = Ink(Picture(r.png), 100, 50);
    EXPECT_GT(p.g, 200);
    EXPECT_LT(p.r, 60);
}

TEST(RenderLayers, off_and_frozen_layers_are_not_drawn) {
    Rendered r = Render("hidden", Dxf(kLayers, kFrame + Line("OFF", 30, "370\n50\n") + Line("FROZEN", 70, "370\n50\n")),
                        Light());
    ASSERT_EQ(r.status, 0);
    Picture picture(r.png);
    EXPECT_TRUE(IsBackgroundLight(Ink(picture, 100, 30)));
    EXPECT_TRUE(IsBackgroundLight(Ink(picture, 100, 70)));
}

int InkRuns(const Picture& picture, double y) {
    int runs = 0;
    bool inInk = false;
    for (int x = 0; x < picture.width(); ++x) {
        bool ink = !IsBackgroundLight(Ink(picture, x, y));
        if (ink && !inInk) ++runs;
        inInk = ink;
    }
    return runs;
}

TEST(RenderLinetypes, dashed_line_leaves_gaps_at_its_scale) {
    std::string entities = kFrame + Line("0", 30, "6\nDASHED\n") + Line("0", 70, "6\nDASHED\n48\n4\n");
    Rendered r = Render("dashed", Dxf(kLayers, entities), Light());
    ASSERT_EQ(r.status, 0);
    Picture picture(r.png);
    // 80 units of a 6-unit pattern: 14 dashes; at linetype scale 4, 4 dashes.
    EXPECT_EQ(InkRuns(picture, 30), 14);
    EXPECT_EQ(InkRuns(picture, 70), 4);
    EXPECT_EQ(InkRuns(picture, 50), 0);
}

TEST(RenderLinetypes, dotted_line_draws_a_dot_each_pattern) {
    Rendered r = Render("dots", Dxf(kLayers, kFrame + Line("0", 50, "6\nDOTS\n")), Light());
    ASSERT_EQ(r.status, 0);
    // 80 units of a 4-unit pattern of a dot and a gap: 20 dots, each a pixel taken from its gap.
    EXPECT_EQ(InkRuns(Picture(r.png), 50), 20);
}

int InkRows(const Picture& picture, int x) {
    int rows = 0;
    for (int y = 0; y < picture.height(); ++y) rows += !IsBackgroundLight(picture.at(x, y));
    return rows;
}

TEST(RenderLineweights, heavier_lineweight_draws_a_wider_stroke) {
    Rendered thin = Render("thin", Dxf(kLayers, Line("0", 50) + "0\nLINE\n8\n0\n10\n50\n20\n0\n11\n50\n21\n100\n"), Light());
    Rendered thick = Render("thick", Dxf(kLayers, Line("0", 50, "370\n200\n") + "0\nLINE\n8\n0\n10\n50\n20\n0\n11\n50\n21\n100\n"), Light());
    ASSERT_EQ(thin.status, 0);
    ASSERT_EQ(thick.status, 0);
    // 2 mm at 96 dpi is 7.6 pixels; the default 0.25 mm one pixel (two where it straddles).
    EXPECT_LE(InkRows(Picture(thin.png), 60), 2);
    EXPECT_GE(InkRows(Picture(thick.png), 60), 7);
}

TEST(RenderLineweights, by_block_lineweight_in_a_block_takes_the_references_weight) {
    std::string blocks = "0\nBLOCK\n8\n0\n2\nB\n70\n0\n10\n0\n20\n0\n" + Line("0", 0, "370\n-2\n") + "0\nENDBLK\n8\n0\n";
    std::string vertical = "0\nLINE\n8\n0\n10\n50\n20\n0\n11\n50\n21\n100\n";
    Rendered thin = Render("byblock_thin", Dxf(kLayers, vertical + "0\nINSERT\n8\n0\n2\nB\n10\n0\n20\n50\n", blocks),
                           Light());
    Rendered thick = Render("byblock_thick",
                            Dxf(kLayers, vertical + "0\nINSERT\n8\n0\n370\n200\n2\nB\n10\n0\n20\n50\n", blocks), Light());
    ASSERT_EQ(thin.status, 0) << thin.error;
    ASSERT_EQ(thick.status, 0) << thick.error;
    EXPECT_LE(InkRows(Picture(thin.png), 60), 2);
    EXPECT_GE(InkRows(Picture(thick.png), 60), 7);
}

// The columns of the leftmost and rightmost ink of the picture's rows above `below`.
std::pair<int, int> InkColumns(const Picture& picture, int below) {
    int left = picture.width(), right = -1;
    for (int y = 0; y < below; ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (!IsBackgroundLight(picture.at(x, y))) left = std::min(left, x), right = std::max(right, x);
    return {left, right};
}

TEST(RenderTexts, underline_and_overline_switches_are_not_written_out) {
    // A line along y 0 fixes the view; the text of height 10 stands at y 50, far above it.
    auto text = [](const std::string& value) {
        return "0\nLINE\n8\n0\n10\n0\n20\n0\n11\n100\n21\n0\n0\nTEXT\n8\n0\n10\n20\n20\n50\n40\n10\n1\n" + value + "\n";
    };
    Rendered plain = Render("text_plain", Dxf(kLayers, text("II")), Light());
    ASSERT_EQ(plain.status, 0) << plain.error;
    std::pair<int, int> expected = InkColumns(Picture(plain.png), 120);
    for (const char* value : {"%%uII", "%%oII", "I%%uI"}) {
        Rendered r = Render("text_switch", Dxf(kLayers, text(value)), Light());
        ASSERT_EQ(r.status, 0) << r.error;
        EXPECT_EQ(InkColumns(Picture(r.png), 120), expected) << value;
    }
}

TEST(RenderView, window_shows_only_its_part_of_the_drawing) {
    render::Options options = Light();
    options.window = render::Window{0, 0, 50, 100};
    Rendered r = Render("window", Dxf(kLayers, "0\nLINE\n8\n0\n62\n1\n370\n50\n10\n10\n20\n0\n11\n10\n21\n100\n"
                                               "0\nLINE\n8\n0\n62\n3\n370\n50\n10\n90\n20\n0\n11\n90\n21\n100\n"),
                        options);
    ASSERT_EQ(r.status, 0);
    Picture picture(r.png);
    bool red = false, green = false;
    for (int x = 0; x < picture.width(); ++x) {
        Pixel p = picture.at(x, 100);
        red = red || (p.r > 200 && p.g < 60);
        green = green || (p.g > 100 && p.r < 60);
    }
    EXPECT_TRUE(red);
    EXPECT_FALSE(green);
}

TEST(RenderView, empty_drawing_renders_the_background) {
    Rendered r = Render("empty", Dxf(kLayers, ""), Light());
    ASSERT_EQ(r.status, 0) << r.error;
    Picture picture(r.png);
    EXPECT_EQ(InkRows(picture, 100), 0);
}

std::string Head(const fs::path& path, size_t n) {
    std::ifstream in(path, std::ios::binary);
    std::string bytes(n, '\0');
    in.read(bytes.data(), static_cast<std::streamsize>(n));
    return bytes;
}

TEST(RenderFormats, target_extension_chooses_png_svg_or_pdf) {
    std::string text = Dxf(kLayers, kFrame + Line("0", 50));
    fs::path dir = TempDir();
    std::ofstream(dir / "formats.dxf") << text;
    std::string error;
    for (const char* ext : {".png", ".svg", ".PDF"}) {
        ASSERT_EQ(RenderFile(dir / "formats.dxf", dir / (std::string("formats") + ext), Light(), error), 0) << error;
    }
    EXPECT_EQ(Head(dir / "formats.png", 4), "\x89PNG");
    EXPECT_NE(Head(dir / "formats.svg", 64).find("<svg"), std::string::npos);
    EXPECT_EQ(Head(dir / "formats.PDF", 4), "%PDF");
    EXPECT_FALSE(fs::exists(dir / "formats.png.part"));
}

TEST(RenderFormats, unknown_extension_fails_naming_the_file_and_writes_nothing) {
    fs::path dir = TempDir();
    std::ofstream(dir / "x.dxf") << Dxf(kLayers, kFrame);
    std::string error;
    EXPECT_EQ(RenderFile(dir / "x.dxf", dir / "x.jpg", Light(), error), 16);
    EXPECT_NE(error.find("x.jpg"), std::string::npos);
    EXPECT_FALSE(fs::exists(dir / "x.jpg"));
}

struct SizeCase {
    const char* text;
    bool ok;
    int width, height;
};

TEST(RenderArguments, size_is_width_x_height_of_positive_numbers) {
    const SizeCase cases[] = {{"800x600", true, 800, 600}, {"800X600", true, 800, 600}, {"1x1", true, 1, 1},
                              {"0x600", false, 0, 0},      {"800x", false, 0, 0},       {"800x600x", false, 0, 0},
                              {"-5x5", false, 0, 0},       {"20001x5", false, 0, 0}};
    for (const SizeCase& c : cases) {
        int w = 0, h = 0;
        EXPECT_EQ(render::ParseSize(c.text, w, h), c.ok) << c.text;
        if (c.ok) {
            EXPECT_EQ(w, c.width) << c.text;
            EXPECT_EQ(h, c.height) << c.text;
        }
    }
}

TEST(RenderArguments, window_is_two_corners_in_any_order_enclosing_an_area) {
    render::Window w;
    ASSERT_TRUE(render::ParseWindow("10,20,0,-5", w));
    EXPECT_EQ(w.x0, 0);
    EXPECT_EQ(w.y0, -5);
    EXPECT_EQ(w.x1, 10);
    EXPECT_EQ(w.y1, 20);
    EXPECT_FALSE(render::ParseWindow("0,0,0,10", w));
    EXPECT_FALSE(render::ParseWindow("0,0,10", w));
    EXPECT_FALSE(render::ParseWindow("0,0,10,10,", w));
}

}  // namespace
