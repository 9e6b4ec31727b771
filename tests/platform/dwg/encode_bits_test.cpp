#include "platform/dwg/encode_bits.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "platform/dwg/bit_reader.hpp"

using dwg::BitReader;
using dwg::BitWriter;
using dwg::Version;

namespace {

BitReader ReaderOf(const BitWriter& w, int codePage = 1252) {
    return BitReader(std::span<const std::uint8_t>(w.buffer()), w.version(), codePage);
}

// Each value is written after one odd bit, so every coding is checked off byte boundaries too.
struct ShortCase {
    int value;
    std::size_t bits;  // the shortest coding's width
};
class DwgBitWriterShort : public testing::TestWithParam<ShortCase> {};

TEST_P(DwgBitWriterShort, bit_short_takes_the_shortest_coding) {
    BitWriter w;
    w.B(true);
    w.BS(GetParam().value);
    EXPECT_EQ(w.bitPosition(), 1 + GetParam().bits);
    BitReader r = ReaderOf(w);
    EXPECT_TRUE(r.B());
    EXPECT_EQ(r.BS(), static_cast<std::int16_t>(GetParam().value));
    EXPECT_FALSE(r.failed());
}
INSTANTIATE_TEST_SUITE_P(Widths, DwgBitWriterShort,
                         testing::Values(ShortCase{0, 2}, ShortCase{1, 10}, ShortCase{255, 10},
                                         ShortCase{256, 2}, ShortCase{257, 18},
                                         ShortCase{-1, 18}, ShortCase{32767, 18}));

struct LongCase {
    std::int32_t value;
    std::size_t bits;
};
class DwgBitWriterLong : public testing::TestWithParam<LongCase> {};

TEST_P(DwgBitWriterLong, bit_long_takes_the_shortest_coding) {
    BitWriter w;
    w.B(false);
    w.BL(GetParam().value);
    EXPECT_EQ(w.bitPosition(), 1 + GetParam().bits);
    BitReader r = ReaderOf(w);
    r.B();
    EXPECT_EQ(r.BL(), GetParam().value);
    EXPECT_FALSE(r.failed());
}
INSTANTIATE_TEST_SUITE_P(Widths, DwgBitWriterLong,
                         testing::Values(LongCase{0, 2}, LongCase{1, 10}, LongCase{255, 10},
                                         LongCase{256, 34}, LongCase{-1, 34},
                                         LongCase{std::numeric_limits<std::int32_t>::min(), 34}));

struct DoubleCase {
    double value;
    std::size_t bits;
};
class DwgBitWriterDouble : public testing::TestWithParam<DoubleCase> {};

TEST_P(DwgBitWriterDouble, bit_double_codes_zero_and_one_in_two_bits) {
    BitWriter w;
    w.B(true);
    w.BD(GetParam().value);
    EXPECT_EQ(w.bitPosition(), 1 + GetParam().bits);
    BitReader r = ReaderOf(w);
    r.B();
    const double back = r.BD();
    EXPECT_EQ(back, GetParam().value);
    EXPECT_EQ(std::signbit(back), std::signbit(GetParam().value));
}
INSTANTIATE_TEST_SUITE_P(Values, DwgBitWriterDouble,
                         testing::Values(DoubleCase{0.0, 2}, DoubleCase{1.0, 2},
                                         DoubleCase{-0.0, 66}, DoubleCase{-1.0, 66},
                                         DoubleCase{0.1, 66}, DoubleCase{1e300, 66}));

TEST(DwgBitWriter, raw_values_round_trip_at_odd_offsets) {
    BitWriter w;
    w.bits(0b101, 3);
    w.RC(0xA5);
    w.RS(0x1234);
    w.RL(0x89ABCDEF);
    w.RD(-2.5);
    w.RD2({1.5, -7});
    w.RD3({3, 4, 5});
    BitReader r = ReaderOf(w);
    EXPECT_EQ(r.bits(3), 0b101u);
    EXPECT_EQ(r.RC(), 0xA5);
    EXPECT_EQ(r.RS(), 0x1234);
    EXPECT_EQ(r.RL(), 0x89ABCDEFu);
    EXPECT_EQ(r.RD(), -2.5);
    const auto p = r.RD2();
    EXPECT_EQ(p.x, 1.5);
    EXPECT_EQ(p.y, -7);
    const auto q = r.RD3();
    EXPECT_EQ(q.z, 5);
    EXPECT_EQ(r.bitPosition(), w.bitPosition());
}

TEST(DwgBitWriter, bits_go_most_significant_first) {
    BitWriter w;
    w.B(true);
    w.B(false);
    w.bits(0b100, 3);
    w.bits(0b000110, 6);
    ASSERT_EQ(w.buffer().size(), 2u);
    EXPECT_EQ(w.buffer()[0], 0b1010'0000);
    EXPECT_EQ(w.buffer()[1], 0b1100'0000);
}

TEST(DwgBitWriter, bit_long_long_stores_only_its_nonzero_bytes) {
    for (std::uint64_t value : {std::uint64_t{0}, std::uint64_t{0x12}, std::uint64_t{0x1234},
                                std::uint64_t{0x01020304050607}}) {
        BitWriter w;
        w.B(true);
        w.BLL(value);
        unsigned count = 0;
        for (std::uint64_t v = value; v; v >>= 8) ++count;
        EXPECT_EQ(w.bitPosition(), 1 + 3 + 8 * count) << value;
        BitReader r = ReaderOf(w);
        r.B();
        EXPECT_EQ(r.BLL(), value);
    }
}

struct DefaultCase {
    double value;
    double defaultValue;
    unsigned code;
};
class DwgBitWriterDefault : public testing::TestWithParam<DefaultCase> {};

// The code says how many low bytes differ from the default: 0 none, 1 four, 2 six, 3 all.
TEST_P(DwgBitWriterDefault, default_double_writes_only_the_bytes_that_differ) {
    const auto c = GetParam();
    BitWriter w;
    w.DD(c.value, c.defaultValue);
    const std::size_t widths[] = {2, 2 + 32, 2 + 48, 2 + 64};
    EXPECT_EQ(w.bitPosition(), widths[c.code]);
    BitReader r = ReaderOf(w);
    EXPECT_EQ(r.BB(), c.code);
    BitReader again = ReaderOf(w);
    EXPECT_EQ(again.DD(c.defaultValue), c.value);
}
double WithLowBits(double base, std::uint64_t mask, std::uint64_t bits) {
    std::uint64_t raw;
    std::memcpy(&raw, &base, 8);
    raw = (raw & ~mask) | (bits & mask);
    double out;
    std::memcpy(&out, &raw, 8);
    return out;
}
INSTANTIATE_TEST_SUITE_P(
    Codes, DwgBitWriterDefault,
    testing::Values(DefaultCase{12.5, 12.5, 0},
                    DefaultCase{WithLowBits(12.5, 0xFFFFFFFF, 0x1234), 12.5, 1},
                    DefaultCase{WithLowBits(12.5, 0xFFFFFFFFFFFF, 0x123456789ABC), 12.5, 2},
                    DefaultCase{WithLowBits(12.5, 0xFFFFFFFF0000, 0x100000000), 12.5, 2},
                    DefaultCase{-12.5, 12.5, 3}, DefaultCase{1e-300, 12.5, 3}));

TEST(DwgBitWriter, default_points_round_trip) {
    BitWriter w;
    w.DD2({1, 2.25}, {1, 2});
    BitReader r = ReaderOf(w);
    const auto p = r.DD2({1, 2});
    EXPECT_EQ(p.x, 1);
    EXPECT_EQ(p.y, 2.25);
}

TEST(DwgBitWriter, thickness_and_extrusion_take_one_bit_for_their_usual_values) {
    BitWriter w;
    w.BT(0.0);
    w.BE({0, 0, 1});
    EXPECT_EQ(w.bitPosition(), 2u);
    w.BT(2.5);
    w.BT(-0.0);
    w.BE({0, 1, 0});
    w.BE({-0.0, 0, 1});
    BitReader r = ReaderOf(w);
    EXPECT_EQ(r.BT(), 0.0);
    EXPECT_EQ(r.BE().z, 1.0);
    EXPECT_EQ(r.BT(), 2.5);
    EXPECT_TRUE(std::signbit(r.BT()));
    const auto e = r.BE();
    EXPECT_EQ(e.y, 1.0);
    EXPECT_EQ(e.z, 0.0);
    const auto negativeZero = r.BE();
    EXPECT_TRUE(std::signbit(negativeZero.x));
    EXPECT_EQ(r.bitPosition(), w.bitPosition());
}

TEST(DwgBitWriter, thickness_and_extrusion_are_plain_doubles_in_r14) {
    BitWriter w(Version::kR14);
    w.BT(0.0);
    w.BE({0, 0, 1});
    EXPECT_EQ(w.bitPosition(), 2u + 2 + 2 + 2);
    BitReader r = ReaderOf(w);
    EXPECT_EQ(r.BT(), 0.0);
    EXPECT_EQ(r.BE().z, 1.0);
}

TEST(DwgBitWriter, modular_values_round_trip_across_their_byte_limits) {
    const std::int64_t signedValues[] = {0, 1, 63, 64, -1, -63, -64, 8191, 8192, -1000000,
                                         std::int64_t{1} << 40};
    const std::uint64_t unsignedValues[] = {0, 127, 128, 16383, 16384, std::uint64_t{1} << 50};
    const std::uint32_t shortValues[] = {0, 0x7FFF, 0x8000, 0x3FFFFFFF, 0x40000000};
    BitWriter w;
    for (auto v : signedValues) w.MC(v);
    for (auto v : unsignedValues) w.UMC(v);
    for (auto v : shortValues) w.MS(v);
    BitReader r = ReaderOf(w);
    for (auto v : signedValues) EXPECT_EQ(r.MC(), v);
    for (auto v : unsignedValues) EXPECT_EQ(r.UMC(), v);
    for (auto v : shortValues) EXPECT_EQ(r.MS(), v);
    EXPECT_FALSE(r.failed());
}

TEST(DwgBitWriter, modular_char_sizes) {
    BitWriter small;
    small.MC(63);
    EXPECT_EQ(small.buffer().size(), 1u);
    BitWriter sign;
    sign.MC(64);  // the last byte has six value bits
    EXPECT_EQ(sign.buffer().size(), 2u);
    BitWriter plain;
    plain.UMC(127);
    EXPECT_EQ(plain.buffer().size(), 1u);
    BitWriter word;
    word.MS(0x8000);
    EXPECT_EQ(word.buffer().size(), 4u);
}

TEST(DwgBitWriter, object_type_by_version) {
    const std::int32_t types[] = {1, 0x4D, 255, 256, 0x1F0, 0x1F3, 0x2EF, 0x2F0, 500, 1000};
    for (Version version : {Version::kR2004, Version::kR2010}) {
        BitWriter w(version);
        for (auto t : types) w.OT(t);
        BitReader r = ReaderOf(w);
        for (auto t : types) EXPECT_EQ(r.OT(), t) << static_cast<int>(version);
    }
    BitWriter low(Version::kR2010);
    low.OT(0x1F3);
    EXPECT_EQ(low.bitPosition(), 10u);
    BitWriter high(Version::kR2010);
    high.OT(0x2F0);
    EXPECT_EQ(high.bitPosition(), 18u);
}

TEST(DwgBitWriter, handle_reference_stores_only_significant_bytes) {
    BitWriter w;
    w.H(5, 0);
    w.H(3, 0x1F);
    w.H(2, 0x123456);
    EXPECT_EQ(w.bitPosition(), 8u + 16 + 32);
    EXPECT_EQ(w.buffer()[0], 0x50);
    EXPECT_EQ(w.buffer()[1], 0x31);
    BitReader r = ReaderOf(w);
    EXPECT_EQ(r.H(), (dwg::HandleRef{5, 0}));
    EXPECT_EQ(r.H(), (dwg::HandleRef{3, 0x1F}));
    EXPECT_EQ(r.H(), (dwg::HandleRef{2, 0x123456}));
}

TEST(DwgBitWriter, code_page_text_counts_its_terminator_and_reads_back_as_utf8) {
    BitWriter w(Version::kR2004, 936);
    w.B(true);
    w.TV("中文 layer");
    w.TV("");
    BitReader first = ReaderOf(w, 936);
    first.B();
    EXPECT_EQ(first.BS(), 4 + 6 + 1);  // two GBK characters, the ASCII, the zero
    BitReader r = ReaderOf(w, 936);
    r.B();
    EXPECT_EQ(r.TV(), "中文 layer");
    EXPECT_EQ(r.TV(), "");
    EXPECT_EQ(r.bitPosition(), w.bitPosition());
}

TEST(DwgBitWriter, unicode_text_with_surrogates_round_trips) {
    BitWriter w(Version::kR2007);
    w.T("a中😀");
    BitReader count = ReaderOf(w);
    EXPECT_EQ(count.BS(), 4);  // a, 中, and the pair of surrogates
    BitReader r = ReaderOf(w);
    EXPECT_EQ(r.T(), "a中😀");
}

TEST(DwgBitWriter, malformed_utf8_becomes_the_replacement_character) {
    BitWriter w(Version::kR2007);
    w.TU(std::string("a\xFF" "b\xE4\xB8", 5));
    BitReader r = ReaderOf(w);
    EXPECT_EQ(r.TU(), "a\xEF\xBF\xBD" "b\xEF\xBF\xBD\xEF\xBF\xBD");
}

// From 2004 a colour is stored as index 0 and a value that says it: by layer, by block, an
// index; the reader gives the index back from the value.
TEST(DwgBitWriter, index_colour_is_stored_in_its_value_from_2004) {
    const std::pair<std::int16_t, std::uint32_t> cases[] = {
        {256, 0xC0000000u}, {0, 0xC1000000u}, {7, 0xC3000007u}, {1, 0xC3000001u}};
    for (const auto& [index, value] : cases) {
        dwg::Color color;
        color.index = index;
        BitWriter w(Version::kR2004);
        w.CMC(color);
        BitReader raw = ReaderOf(w);
        EXPECT_EQ(raw.BS(), 0) << index;
        EXPECT_EQ(static_cast<std::uint32_t>(raw.BL()), value) << index;
        BitReader r = ReaderOf(w);
        const auto back = r.CMC();
        EXPECT_EQ(back.index, index);
        EXPECT_EQ(back.rgb, value);
    }
}

TEST(DwgBitWriter, colours_round_trip_by_version) {
    dwg::Color named;
    named.index = 5;
    named.rgb = 0xC2112233;
    named.flags = 3;
    named.name = "Blue";
    named.bookName = "Book";
    BitWriter w(Version::kR2004);
    w.CMC(named);
    BitReader r = ReaderOf(w);
    const auto back = r.CMC();
    EXPECT_EQ(back.index, 0);  // a true colour: the stored index is 0
    EXPECT_EQ(back.rgb, 0xC2112233u);
    EXPECT_EQ(back.name, "Blue");
    EXPECT_EQ(back.bookName, "Book");

    BitWriter old(Version::kR2000);
    old.CMC(named);
    EXPECT_EQ(old.bitPosition(), 10u);  // only the index
}

TEST(DwgBitWriter, entity_colour_flags_say_what_follows) {
    dwg::Color c;
    c.index = 256;
    c.rgb = 0xC2FF0000;
    c.hasTransparency = true;
    c.transparency = 0x020000FF;
    c.hasBookHandle = true;
    BitWriter w(Version::kR2004);
    w.ENC(c);
    dwg::Color plain;
    plain.index = 7;
    w.ENC(plain);
    BitReader r = ReaderOf(w);
    const auto back = r.ENC();
    EXPECT_EQ(back.index, 256);
    EXPECT_EQ(back.rgb, 0u);  // a book colour's values are in its colour object
    EXPECT_TRUE(back.hasTransparency);
    EXPECT_EQ(back.transparency, 0x020000FFu);
    EXPECT_TRUE(back.hasBookHandle);
    const auto second = r.ENC();
    EXPECT_EQ(second.index, 7);
    EXPECT_EQ(second.rgb, 0u);
    EXPECT_FALSE(second.hasTransparency);
    EXPECT_FALSE(second.hasBookHandle);
    EXPECT_EQ(r.bitPosition(), w.bitPosition());
}

TEST(DwgBitWriter, three_bit_values) {
    BitWriter w(Version::kR2007);
    for (unsigned v : {0u, 2u, 6u, 7u}) w.B3(v);
    EXPECT_EQ(w.bitPosition(), 1u + 2 + 3 + 3);
    BitReader r = ReaderOf(w);
    for (unsigned v : {0u, 2u, 6u, 7u}) EXPECT_EQ(r.B3(), v);
}

TEST(DwgBitWriter, bytes_at_aligned_and_unaligned_positions) {
    BitWriter w;
    w.bytes("ab");
    w.B(true);
    w.bytes(std::string("\x00\xFF", 2));
    BitReader r = ReaderOf(w);
    EXPECT_EQ(r.bytes(2), "ab");
    r.B();
    EXPECT_EQ(r.bytes(2), std::string("\x00\xFF", 2));
}

TEST(DwgBitWriter, align_pads_with_zero_bits) {
    BitWriter w;
    w.B(true);
    w.alignToByte();
    EXPECT_EQ(w.bitPosition(), 8u);
    w.RC(0xFF);
    w.alignToByte();
    EXPECT_EQ(w.bitPosition(), 16u);
    EXPECT_EQ(w.buffer(), (std::vector<std::uint8_t>{0x80, 0xFF}));
}

TEST(DwgBitWriter, patch_overwrites_bits_already_written) {
    BitWriter w;
    w.RL(0xFFFFFFFF);
    w.B(true);
    w.patchBits(4, 0b0101, 4);
    w.patchBits(32, 0, 1);
    EXPECT_EQ(w.buffer()[0], 0xF5);
    EXPECT_EQ(w.buffer()[4], 0x00);
    EXPECT_EQ(w.bitPosition(), 33u);
}

TEST(DwgBitWriter, cleared_writer_writes_from_its_first_bit_again) {
    BitWriter w;
    w.RL(0xFFFFFFFF);
    w.B(true);
    w.clear();
    EXPECT_EQ(w.bitPosition(), 0u);
    EXPECT_TRUE(w.buffer().empty());
    w.MS(0x8001);
    EXPECT_EQ(w.buffer(), (std::vector<std::uint8_t>{0x01, 0x80, 0x01, 0x00}));
}

// Values of any width at any offset, past the first room the buffer had and with the buffer
// read between them, leave the bits that writing them one at a time leaves.
TEST(DwgBitWriter, values_of_any_width_equal_their_bits_one_by_one) {
    BitWriter whole, single;
    std::uint64_t state = 0x9E3779B97F4A7C15u;
    for (int i = 0; i < 600; ++i) {
        state = state * 6364136223846793005u + 1442695040888963407u;
        const unsigned count = static_cast<unsigned>(state >> 58);  // 0 to 63
        const std::uint64_t value = state * 0xD1B54A32D192ED03u;
        whole.bits(value, count == 63 ? 64 : count);
        for (unsigned k = count == 63 ? 64 : count; k-- > 0;) single.B(((value >> k) & 1) != 0);
        if (i % 97 == 0) {
            EXPECT_EQ(whole.buffer().size(), (whole.bitPosition() + 7) / 8);
        }
    }
    EXPECT_EQ(whole.bitPosition(), single.bitPosition());
    EXPECT_EQ(whole.buffer(), single.buffer());
}

// Raw bytes on a byte boundary and the values after them go where they belong.
TEST(DwgBitWriter, raw_bytes_then_values_follow_each_other) {
    BitWriter w;
    w.RC(0xAB);
    w.bytes(std::string(100, '\x5A'));
    w.B(true);
    w.RS(0x1234);
    const std::vector<std::uint8_t>& b = w.buffer();
    ASSERT_EQ(b.size(), 1u + 100 + 3);
    EXPECT_EQ(b[0], 0xAB);
    EXPECT_EQ(b[100], 0x5A);
    EXPECT_EQ(b[101], 0x80 | (0x34 >> 1));
    EXPECT_EQ(b[102], static_cast<std::uint8_t>((0x34 << 7) | (0x12 >> 1)));
    EXPECT_EQ(b[103], static_cast<std::uint8_t>(0x12 << 7));
}

// The bytes written so far, seen without cutting the buffer, are those buffer() gives.
TEST(DwgBitWriter, written_bytes_are_the_buffer_so_far) {
    BitWriter w;
    w.RC(0x12);
    w.bits(0b101, 3);
    const std::span<const std::uint8_t> seen = w.written();
    const std::vector<std::uint8_t> copy(seen.begin(), seen.end());
    EXPECT_EQ(copy, (std::vector<std::uint8_t>{0x12, 0b1010'0000}));
    EXPECT_EQ(copy, w.buffer());
}

// A patch at the very end of what the buffer holds (after reading it) changes only its bits.
TEST(DwgBitWriter, patch_at_the_end_of_a_read_buffer_changes_only_its_bits) {
    BitWriter w;
    w.bits(0, 13);
    EXPECT_EQ(w.buffer().size(), 2u);
    w.patchBits(9, 0b1011, 4);
    EXPECT_EQ(w.buffer(), (std::vector<std::uint8_t>{0x00, 0b0101'1000}));
    w.B(true);
    EXPECT_EQ(w.buffer(), (std::vector<std::uint8_t>{0x00, 0b0101'1100}));
}

// A value patched in over bits already written leaves the bytes as writing it there would have:
// at every offset within a byte, for values that fit in one byte, cross into the next, or span
// several (an object's 32-bit size), over set and over clear bits.
TEST(DwgBitWriter, patch_at_any_offset_equals_writing_the_bits_there) {
    const std::pair<std::uint64_t, unsigned> values[] = {
        {0b1, 1}, {0b101, 3}, {0xA5, 8}, {0x2C3, 10}, {0x12345678, 32}, {0, 32}};
    for (unsigned offset = 0; offset < 8; ++offset) {
        for (const auto& [value, count] : values) {
            for (const bool under : {false, true}) {
                BitWriter expected;
                expected.bits(under ? 0x7F : 0x00, offset);
                expected.bits(value, count);
                expected.bits(under ? 0x3FF : 0, 10);
                BitWriter patched;
                patched.bits(under ? 0x7F : 0x00, offset);
                patched.bits(under ? ~std::uint64_t{0} : 0, count);
                patched.bits(under ? 0x3FF : 0, 10);
                patched.patchBits(offset, value, count);
                EXPECT_EQ(patched.buffer(), expected.buffer())
                    << "offset " << offset << " value " << value << " bits " << count << " over " << under;
            }
        }
    }
}

}  // namespace

namespace {

TEST(DwgBitWriter, object_type_zero_from_2010_takes_one_byte) {
    BitWriter w(Version::kR2010);
    w.OT(0);
    EXPECT_EQ(w.bitPosition(), 10u);
    EXPECT_EQ(ReaderOf(w).OT(), 0);
}

TEST(DwgBitWriter, entity_colour_before_2004_is_a_plain_index) {
    dwg::Color c;
    c.index = 5;
    c.rgb = 0xC2FF0000;  // not stored before 2004
    BitWriter w(Version::kR2000);
    w.ENC(c);
    EXPECT_EQ(w.bitPosition(), 10u);
    BitReader r = ReaderOf(w);
    const auto back = r.ENC();
    EXPECT_EQ(back.index, 5);
    EXPECT_EQ(back.rgb, 0u);
}

}  // namespace
