#include "platform/dwg/bit_reader.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "platform/dwg/bit_writer.hpp"

using dwg::BitReader;
using dwg::Version;
using dwg_test::BitWriter;

namespace {

BitReader ReaderOf(const BitWriter& w, Version version = Version::kR2000, int codePage = 1252) {
    return BitReader(std::span<const std::uint8_t>(w.bytes), version, codePage);
}

TEST(DwgBitReader, bits_are_read_most_significant_first_across_bytes) {
    const std::vector<std::uint8_t> data{0b1010'0000, 0b1100'0000};
    BitReader r(data, Version::kR2000);
    EXPECT_TRUE(r.B());
    EXPECT_FALSE(r.B());
    EXPECT_EQ(r.bits(3), 0b100u);
    EXPECT_EQ(r.bits(6), 0b000'110u);  // three bits of the first byte, three of the second
    EXPECT_EQ(r.bitPosition(), 11u);
}

// Wide reads past one 8-byte load, from an odd bit, with more bytes following.
TEST(DwgBitReader, sixty_bits_from_bit_five_span_nine_bytes) {
    const std::vector<std::uint8_t> data{0x07, 0xFF, 0x00, 0xFF, 0x00, 0xFF, 0x00, 0xFF, 0x80, 0xAA, 0x55};
    BitReader r(data, Version::kR2000);
    EXPECT_EQ(r.bits(5), 0u);
    EXPECT_EQ(r.bits(60), 0xFFE01FE01FE01FFu);
    EXPECT_EQ(r.bitPosition(), 65u);
    EXPECT_EQ(r.bits(7), 0u);
    EXPECT_FALSE(r.failed());
}

TEST(DwgBitReader, raw_values_are_little_endian_at_any_bit_offset) {
    BitWriter w;
    w.B(true);
    w.RS(0x1234);
    w.RL(0x89ABCDEF);
    w.RD(-2.5);
    BitReader r = ReaderOf(w);
    EXPECT_TRUE(r.B());
    EXPECT_EQ(r.RS(), 0x1234);
    EXPECT_EQ(r.RL(), 0x89ABCDEFu);
    EXPECT_EQ(r.RD(), -2.5);
    EXPECT_FALSE(r.failed());
}

struct BitShortCase {
    unsigned code;
    int payload;  // an RC or RS after the code, or none (-1)
    int expected;
};

class DwgBitShort : public ::testing::TestWithParam<BitShortCase> {};

TEST_P(DwgBitShort, code_selects_width_or_constant) {
    const auto& c = GetParam();
    BitWriter w;
    w.BB(c.code);
    if (c.code == 0) w.RS(static_cast<unsigned>(c.payload));
    if (c.code == 1) w.RC(static_cast<unsigned>(c.payload));
    w.bits(0b101, 3);
    BitReader r = ReaderOf(w);
    EXPECT_EQ(r.BS(), c.expected);
    EXPECT_EQ(r.bits(3), 0b101u);  // nothing more was consumed than the code says
}

INSTANTIATE_TEST_SUITE_P(Codes, DwgBitShort,
                         ::testing::Values(BitShortCase{0, 0xFFFE, -2}, BitShortCase{1, 200, 200},
                                           BitShortCase{2, -1, 0}, BitShortCase{3, -1, 256}));

TEST(DwgBitReader, bit_long_codes) {
    BitWriter w;
    w.BB(0);
    w.RL(0x01020304);
    w.BB(1);
    w.RC(0xFE);
    w.BB(2);
    BitReader r = ReaderOf(w);
    EXPECT_EQ(r.BL(), 0x01020304);
    EXPECT_EQ(r.BL(), 0xFE);
    EXPECT_EQ(r.BL(), 0);
    EXPECT_FALSE(r.failed());
}

TEST(DwgBitReader, bit_long_unused_code_fails_the_stream) {
    BitWriter w;
    w.BB(3);
    w.RL(0);
    BitReader r = ReaderOf(w);
    r.BL();
    EXPECT_TRUE(r.failed());
}

TEST(DwgBitReader, bit_double_codes) {
    BitWriter w;
    w.BB(0);
    w.RD(3.25);
    w.BB(1);
    w.BB(2);
    w.BB(3);
    BitReader r = ReaderOf(w);
    EXPECT_EQ(r.BD(), 3.25);
    EXPECT_EQ(r.BD(), 1.0);
    EXPECT_EQ(r.BD(), 0.0);
    EXPECT_FALSE(r.failed());
    r.BD();
    EXPECT_TRUE(r.failed());
}

TEST(DwgBitReader, bit_long_long_counts_its_bytes) {
    BitWriter w;
    w.bits(3, 3);
    w.RC(0x01);
    w.RC(0x02);
    w.RC(0x03);
    w.bits(0, 3);
    w.RC(0xFF);  // not part of either value
    BitReader r = ReaderOf(w);
    EXPECT_EQ(r.BLL(), 0x030201u);
    EXPECT_EQ(r.BLL(), 0u);
    EXPECT_EQ(r.RC(), 0xFF);
}

double WithBytes(double base, std::initializer_list<std::pair<int, unsigned char>> patches) {
    unsigned char raw[8];
    std::memcpy(raw, &base, 8);
    for (auto [i, b] : patches) raw[i] = b;
    double d;
    std::memcpy(&d, raw, 8);
    return d;
}

TEST(DwgBitReader, default_double_keeps_default_or_patches_its_low_bytes) {
    const double base = 1234.5678;
    BitWriter w;
    w.BB(0);
    w.BB(1);
    for (unsigned b : {0x11, 0x22, 0x33, 0x44}) w.RC(b);
    w.BB(2);
    for (unsigned b : {0x55, 0x66, 0x11, 0x22, 0x33, 0x44}) w.RC(b);
    w.BB(3);
    w.RD(-7.0);
    BitReader r = ReaderOf(w);
    EXPECT_EQ(r.DD(base), base);
    EXPECT_EQ(r.DD(base), WithBytes(base, {{0, 0x11}, {1, 0x22}, {2, 0x33}, {3, 0x44}}));
    EXPECT_EQ(r.DD(base), WithBytes(base, {{4, 0x55}, {5, 0x66}, {0, 0x11}, {1, 0x22},
                                           {2, 0x33}, {3, 0x44}}));
    EXPECT_EQ(r.DD(base), -7.0);
    EXPECT_FALSE(r.failed());
}

TEST(DwgBitReader, thickness_and_extrusion_short_forms_from_2000) {
    BitWriter w;
    w.B(true);   // thickness 0
    w.B(false);
    w.BD(2.0);
    w.B(true);   // extrusion (0,0,1)
    w.B(false);
    w.BD3(1, 0, 0);
    BitReader r = ReaderOf(w, Version::kR2000);
    EXPECT_EQ(r.BT(), 0.0);
    EXPECT_EQ(r.BT(), 2.0);
    const auto z = r.BE();
    EXPECT_EQ(z.z, 1.0);
    const auto x = r.BE();
    EXPECT_EQ(x.x, 1.0);
    EXPECT_EQ(x.z, 0.0);
    EXPECT_FALSE(r.failed());
}

TEST(DwgBitReader, thickness_and_extrusion_are_plain_doubles_in_r14) {
    BitWriter w;
    w.BD(2.0);
    w.BD3(0, 1, 0);
    BitReader r = ReaderOf(w, Version::kR14);
    EXPECT_EQ(r.BT(), 2.0);
    EXPECT_EQ(r.BE().y, 1.0);
    EXPECT_EQ(r.bitPosition(), w.bit);
}

TEST(DwgBitReader, modular_char_with_sign_in_last_byte) {
    BitWriter w;
    w.RC(0x82);  // two bytes: 2 + (0x24 << 7)
    w.RC(0x24);
    w.RC(0x45);  // one byte, negative 5
    w.MC(-1000000);
    BitReader r = ReaderOf(w);
    EXPECT_EQ(r.MC(), 2 + (0x24 << 7));
    EXPECT_EQ(r.MC(), -5);
    EXPECT_EQ(r.MC(), -1000000);
}

TEST(DwgBitReader, unsigned_modular_char_uses_all_seven_bits_of_last_byte) {
    BitWriter w;
    w.RC(0x7F);
    w.UMC(300);
    BitReader r = ReaderOf(w);
    EXPECT_EQ(r.UMC(), 0x7Fu);
    EXPECT_EQ(r.UMC(), 300u);
}

TEST(DwgBitReader, modular_short_takes_fifteen_bits_a_word) {
    BitWriter w;
    w.RS(0x8001);
    w.RS(0x0002);
    w.MS(1234);
    BitReader r = ReaderOf(w);
    EXPECT_EQ(r.MS(), 1u + (2u << 15));
    EXPECT_EQ(r.MS(), 1234u);
}

TEST(DwgBitReader, modular_value_without_end_fails) {
    BitWriter w;
    for (int i = 0; i < 12; ++i) w.RC(0xFF);
    BitReader r = ReaderOf(w);
    r.MC();
    EXPECT_TRUE(r.failed());
}

TEST(DwgBitReader, object_type_before_2010_is_a_bit_short) {
    BitWriter w;
    w.BS(0x1F3);
    BitReader r = ReaderOf(w, Version::kR2004);
    EXPECT_EQ(r.OT(), 0x1F3);
}

TEST(DwgBitReader, object_type_from_2010_has_its_own_codes) {
    BitWriter w;
    w.BB(0);
    w.RC(0x13);
    w.BB(1);
    w.RC(0x03);
    w.BB(2);
    w.RS(0x0234);
    BitReader r = ReaderOf(w, Version::kR2010);
    EXPECT_EQ(r.OT(), 0x13);
    EXPECT_EQ(r.OT(), 0x1F3);
    EXPECT_EQ(r.OT(), 0x234);
}

TEST(DwgBitReader, handle_reference_is_code_counter_and_big_endian_bytes) {
    BitWriter w;
    w.H(5, 0x1A2B);
    w.H(4, 0);
    BitReader r = ReaderOf(w);
    const auto a = r.H();
    EXPECT_EQ(a.code, 5);
    EXPECT_EQ(a.value, 0x1A2Bu);
    const auto b = r.H();
    EXPECT_EQ(b.code, 4);
    EXPECT_EQ(b.value, 0u);
    EXPECT_EQ(r.bitPosition(), 8u * 4);
}

struct RelativeCase {
    std::uint8_t code;
    std::uint64_t value;
    std::uint64_t expected;
};

class DwgHandleAbsolute : public ::testing::TestWithParam<RelativeCase> {};

TEST_P(DwgHandleAbsolute, relative_codes_count_from_the_owner) {
    const auto& c = GetParam();
    EXPECT_EQ(BitReader::Absolute({c.code, c.value}, 0x100), c.expected);
}

INSTANTIATE_TEST_SUITE_P(Codes, DwgHandleAbsolute,
                         ::testing::Values(RelativeCase{2, 0x33, 0x33}, RelativeCase{3, 0x33, 0x33},
                                           RelativeCase{4, 0x33, 0x33}, RelativeCase{5, 0x33, 0x33},
                                           RelativeCase{6, 0, 0x101}, RelativeCase{8, 0, 0xFF},
                                           RelativeCase{0xA, 0x10, 0x110},
                                           RelativeCase{0xC, 0x10, 0xF0}));

TEST(DwgBitReader, text_in_file_code_page_becomes_utf8) {
    BitWriter w;
    w.TV(std::string("\xD6\xD0\xCE\xC4", 4));  // 中文 in GBK
    w.TV(std::string("AB\0", 3));              // a counted terminator is dropped
    BitReader r = ReaderOf(w, Version::kR2000, 936);
    EXPECT_EQ(r.TV(), "\xE4\xB8\xAD\xE6\x96\x87");
    EXPECT_EQ(r.TV(), "AB");
    EXPECT_FALSE(r.failed());
}

TEST(DwgBitReader, unicode_text_from_2007_with_surrogates) {
    BitWriter w;
    w.TU(u"\u4E2D\U0001F600x");
    w.TU(std::u16string(u"ab\0", 3));
    w.RC(0x5A);
    BitReader r = ReaderOf(w, Version::kR2007);
    EXPECT_EQ(r.T(), "\xE4\xB8\xAD\xF0\x9F\x98\x80x");
    EXPECT_EQ(r.T(), "ab");
    EXPECT_EQ(r.RC(), 0x5A);  // the terminator's unit was consumed
}

TEST(DwgBitReader, text_longer_than_the_data_fails_without_reading_beyond) {
    BitWriter w;
    w.BS(200);
    w.RC('a');
    BitReader r = ReaderOf(w);
    EXPECT_EQ(r.TV(), "");
    EXPECT_TRUE(r.failed());
}

TEST(DwgBitReader, reading_past_end_gives_zero_and_fails) {
    const std::vector<std::uint8_t> data{0xFF};
    BitReader r(data, Version::kR2000);
    EXPECT_EQ(r.RS(), 0xFF);  // the first byte is read, the second is missing
    EXPECT_TRUE(r.failed());
    EXPECT_EQ(r.RC(), 0);
}

TEST(DwgBitReader, bit_end_limits_the_stream) {
    const std::vector<std::uint8_t> data{0xFF, 0xFF};
    BitReader r(data, Version::kR2000);
    r.setBitEnd(4);
    EXPECT_EQ(r.bits(4), 0xFu);
    EXPECT_FALSE(r.failed());
    r.B();
    EXPECT_TRUE(r.failed());
}

TEST(DwgBitReader, colour_before_2004_is_an_index) {
    BitWriter w;
    w.BS(7);
    w.BS(256);
    BitReader r = ReaderOf(w, Version::kR2000);
    EXPECT_EQ(r.CMC().index, 7);
    EXPECT_EQ(r.ENC().index, 256);
    EXPECT_EQ(r.bitPosition(), w.bit);
}

TEST(DwgBitReader, colour_from_2004_has_true_colour_and_names) {
    BitWriter w;
    w.BS(1);
    w.BL(static_cast<std::int32_t>(0xC2FF0000));
    w.RC(3);
    w.TV("Red");
    w.TV("Book");
    BitReader r = ReaderOf(w, Version::kR2004);
    const auto c = r.CMC();
    EXPECT_EQ(c.index, 1);
    EXPECT_EQ(c.rgb, 0xC2FF0000u);
    EXPECT_EQ(c.name, "Red");
    EXPECT_EQ(c.bookName, "Book");
    EXPECT_FALSE(r.failed());
}

TEST(DwgBitReader, entity_colour_flags_say_what_follows) {
    BitWriter w;
    w.BS(0x8000 | 0x2000 | 5);
    w.BL(0x00112233);
    w.BL(0x020000FF);
    w.BS(0x4000 | 3);
    BitReader r = ReaderOf(w, Version::kR2004);
    const auto a = r.ENC();
    EXPECT_EQ(a.index, 5);
    EXPECT_EQ(a.rgb, 0x00112233u);
    EXPECT_TRUE(a.hasTransparency);
    EXPECT_EQ(a.transparency, 0x020000FFu);
    const auto b = r.ENC();
    EXPECT_EQ(b.index, 3);
    EXPECT_TRUE(b.hasBookHandle);
    EXPECT_FALSE(b.hasTransparency);
    EXPECT_EQ(r.bitPosition(), w.bit);
}

// A colour of a colour book is its reference alone: no true colour follows the short.
TEST(DwgBitReader, entity_colour_of_a_colour_book_stores_no_true_colour) {
    BitWriter w;
    w.BS(0x8000 | 0x4000 | 42);
    w.BS(7);
    BitReader r = ReaderOf(w, Version::kR2004);
    const auto c = r.ENC();
    EXPECT_EQ(c.index, 42);
    EXPECT_TRUE(c.hasBookHandle);
    EXPECT_EQ(c.rgb, 0u);
    EXPECT_EQ(r.BS(), 7);
    EXPECT_FALSE(r.failed());
}

TEST(DwgBitReader, entity_true_colour_without_book_is_stored) {
    BitWriter w;
    w.BS(0x8000 | 42);
    w.BL(static_cast<std::int32_t>(0xC2102030));
    BitReader r = ReaderOf(w, Version::kR2004);
    const auto c = r.ENC();
    EXPECT_FALSE(c.hasBookHandle);
    EXPECT_EQ(c.rgb, 0xC2102030u);
    EXPECT_EQ(r.bitPosition(), w.bit);
}

// From 2007 the colour's names are texts of the string stream, not of the values.
TEST(DwgBitReader, colour_names_come_from_the_text_stream) {
    BitWriter values;
    values.BS(0);
    values.BL(static_cast<std::int32_t>(0xC2FF0000));
    values.RC(3);
    values.BS(9);
    BitWriter strings;
    strings.TU(u"Red");
    strings.TU(u"Book");
    BitReader r = ReaderOf(values, Version::kR2007);
    BitReader text = ReaderOf(strings, Version::kR2007);
    const auto c = r.CMC(text);
    EXPECT_EQ(c.name, "Red");
    EXPECT_EQ(c.bookName, "Book");
    EXPECT_EQ(r.BS(), 9);
    EXPECT_EQ(text.bitPosition(), strings.bit);
    EXPECT_FALSE(r.failed() || text.failed());
}

TEST(DwgBitReader, three_bit_value_stops_at_first_zero) {
    BitWriter w;
    w.bits(0b0, 1);
    w.bits(0b10, 2);
    w.bits(0b111, 3);
    BitReader r = ReaderOf(w, Version::kR2007);
    EXPECT_EQ(r.B3(), 0);
    EXPECT_EQ(r.B3(), 2);
    EXPECT_EQ(r.B3(), 7);
    EXPECT_EQ(r.bitPosition(), 6u);
}

TEST(DwgBitReader, bytes_copy_at_unaligned_position) {
    BitWriter w;
    w.B(false);
    w.RC('x');
    w.RC('y');
    BitReader r = ReaderOf(w);
    r.B();
    EXPECT_EQ(r.bytes(2), "xy");
}

}  // namespace
