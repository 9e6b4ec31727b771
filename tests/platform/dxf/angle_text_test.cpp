// Angles as degree texts that read back to their radians bit for bit.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <bit>
#include <limits>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "platform/dxf/angle_text.hpp"
#include "platform/dxf/model.hpp"
#include "platform/dxf/tagger.hpp"

namespace {

std::string AngleText(double radians) {
    std::string out;
    dxf::FormatAngle(radians, out);
    return out;
}

// The plain conversion: the shortest text of the degrees, read back and divided.
double PlainRoundTrip(double radians) {
    std::string text;
    dxf::FormatDouble(radians * dxf::kDegrees, text);
    double degrees = 0;
    dxf::ParseDouble(text, degrees);
    return degrees / dxf::kDegrees;
}

TEST(AngleText, angle_the_plain_conversion_loses_keeps_its_last_bit) {
    // No double of degrees divides back to this angle: the plain conversion moves it by a bit.
    const double radians = 0x1.1f8f03f04dd1p+0;
    ASSERT_NE(PlainRoundTrip(radians), radians);
    const std::string text = AngleText(radians);
    EXPECT_EQ(dxf::Radians(text), radians);
    // Any reader takes the text for the same angle in degrees.
    double degrees = 0;
    ASSERT_TRUE(dxf::ParseDouble(text, degrees));
    EXPECT_NEAR(degrees, radians * 180 / std::numbers::pi, 1e-12);
}

TEST(AngleText, every_angle_of_a_sweep_reads_back_to_its_radians) {
    int lost = 0;
    for (int i = -20000; i <= 20000; ++i) {
        const double radians = i * 0.000314159 + 1e-7 * (i % 7);
        lost += PlainRoundTrip(radians) != radians ? 1 : 0;
        ASSERT_EQ(dxf::Radians(AngleText(radians)), radians) << i;
    }
    EXPECT_GT(lost, 100);  // the sweep meets the angles that need the longer text
}

// Any finite angle, however large or small (the plain entities of a DWG take their radians as
// they are on that account).
TEST(AngleText, every_finite_angle_reads_back_to_its_radians) {
    std::mt19937_64 bits(2024);
    std::vector<double> angles = {std::numeric_limits<double>::max(), std::numeric_limits<double>::lowest(),
                                  std::numeric_limits<double>::min(), std::numeric_limits<double>::denorm_min(),
                                  -std::numeric_limits<double>::denorm_min(), 1e300, -3e-310};
    while (angles.size() < 100000) {
        const double radians = std::bit_cast<double>(bits());
        if (std::isfinite(radians)) angles.push_back(radians);
    }
    for (double radians : angles) ASSERT_EQ(dxf::Radians(AngleText(radians)), radians) << AngleText(radians);
}

TEST(AngleText, angle_the_plain_conversion_keeps_gets_the_short_text) {
    EXPECT_EQ(AngleText(0), "0.0");
    EXPECT_EQ(AngleText(std::numbers::pi / 2), "90.0");
    EXPECT_EQ(AngleText(-std::numbers::pi), "-180.0");
    const double radians = 0.5;
    ASSERT_EQ(PlainRoundTrip(radians), radians);
    EXPECT_LE(AngleText(radians).size(), 18u);
}

TEST(AngleText, text_of_another_writer_reads_as_its_degrees) {
    EXPECT_EQ(dxf::Radians("90"), 90 / dxf::kDegrees);
    EXPECT_EQ(dxf::Radians("45.5"), 45.5 / dxf::kDegrees);
    // More digits than a double holds: read precisely, to the double nearest the angle.
    EXPECT_EQ(dxf::Radians("90.000000000000000000000"), std::numbers::pi / 2);
    EXPECT_EQ(dxf::Radians("1.80000000000000000000e+02"), std::numbers::pi);
}

// Seventeen digits are a double's: such a text is divided as every reader divides it, though
// the precise conversion would give the next double.
TEST(AngleText, text_of_seventeen_digits_reads_by_the_plain_division) {
    EXPECT_EQ(dxf::Radians("1.0185185183685175"), 0x1.23400d4b0ed1bp-6);
    EXPECT_EQ(dxf::Radians("1.0185185183685175000"), 0x1.23400d4b0ed1cp-6);
}

TEST(AngleText, text_that_is_no_number_reads_as_no_angle) {
    EXPECT_EQ(dxf::Radians(""), 0.0);
    EXPECT_EQ(dxf::Radians("east"), 0.0);
    EXPECT_EQ(dxf::Radians(std::string(80, '1')), 0.0);
}

}  // namespace
