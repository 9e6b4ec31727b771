#include <gtest/gtest.h>

#include <cmath>

#include "platform/ed/ads.hpp"
#include "platform/ed/utilities.hpp"

namespace {

struct DistanceCase {
    const wchar_t* text;
    int mode;
    int status;
    double value;
};

class DistanceToFloat : public ::testing::TestWithParam<DistanceCase> {};

TEST_P(DistanceToFloat, ReadsTheTextInTheUnitMode) {
    const DistanceCase& c = GetParam();
    double value = -12345.0;
    EXPECT_EQ(acdbDisToF(c.text, c.mode, &value), c.status);
    if (c.status == RTNORM) {
        EXPECT_DOUBLE_EQ(value, c.value);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Modes, DistanceToFloat,
    ::testing::Values(DistanceCase{L"12.5", 2, RTNORM, 12.5}, DistanceCase{L"-3", 2, RTNORM, -3.0},
                      DistanceCase{L" 0.05 ", 2, RTNORM, 0.05}, DistanceCase{L".5", 2, RTNORM, 0.5},
                      DistanceCase{L"1e3", 2, RTNORM, 1000.0}, DistanceCase{L"1.5E+01", 1, RTNORM, 15.0},
                      DistanceCase{L"abc", 2, RTERROR, 0}, DistanceCase{L"", 2, RTERROR, 0},
                      DistanceCase{L"12x", 2, RTERROR, 0}, DistanceCase{L"M6", 2, RTERROR, 0},
                      DistanceCase{L"1 1/2", 5, RTNORM, 1.5}, DistanceCase{L"3/4", 5, RTNORM, 0.75},
                      DistanceCase{L"2'6\"", 4, RTNORM, 30.0}, DistanceCase{L"1'-1 1/2\"", 4, RTNORM, 13.5},
                      DistanceCase{L"2'", 3, RTNORM, 24.0}, DistanceCase{L"7", 9, RTERROR, 0}));

struct PaletteCase {
    int index;
    int red, green, blue;
};

class ColorPalette : public ::testing::TestWithParam<PaletteCase> {};

TEST_P(ColorPalette, GivesTheHostsRgbPackedRedFirst) {
    const PaletteCase& c = GetParam();
    EXPECT_EQ(acedGetRGB(c.index), static_cast<DWORD>(c.red + c.green * 256 + c.blue * 65536));
}

INSTANTIATE_TEST_SUITE_P(Indices, ColorPalette,
                         ::testing::Values(PaletteCase{1, 255, 0, 0}, PaletteCase{2, 255, 255, 0},
                                           PaletteCase{3, 0, 255, 0}, PaletteCase{5, 0, 0, 255},
                                           PaletteCase{7, 255, 255, 255}, PaletteCase{8, 128, 128, 128},
                                           PaletteCase{9, 192, 192, 192}, PaletteCase{10, 255, 0, 0},
                                           PaletteCase{11, 255, 127, 127}, PaletteCase{250, 51, 51, 51},
                                           PaletteCase{251, 80, 80, 80}, PaletteCase{254, 190, 190, 190},
                                           PaletteCase{255, 255, 255, 255}));

TEST(ColorPaletteShape, EachHueHasFiveFullAndFiveHalfSaturatedShadesDarkeningInTurn) {
    for (int hue = 10; hue < 250; hue += 10) {
        auto brightest = [](DWORD c) { return std::max({c & 0xFF, (c >> 8) & 0xFF, (c >> 16) & 0xFF}); };
        for (int shade = 0; shade < 4; ++shade)
            EXPECT_GT(brightest(acedGetRGB(hue + 2 * shade)), brightest(acedGetRGB(hue + 2 * shade + 2))) << hue;
    }
}

}  // namespace
