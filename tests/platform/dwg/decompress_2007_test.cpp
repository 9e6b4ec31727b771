// The 2007 compression read back: literal runs stored in reversed pieces, each kind of copy
// instruction, the literal counts after copies, and malformed data; and the real file header of
// example_2007.dwg.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/decompress.hpp"
#include "platform/dwg/reed_solomon.hpp"

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes Of(std::initializer_list<int> values) {
    Bytes out;
    for (int v : values) out.push_back(static_cast<std::uint8_t>(v));
    return out;
}

Bytes Text(const std::string& s) { return Bytes(s.begin(), s.end()); }

Bytes Join(Bytes a, const Bytes& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

std::string Inflate(const Bytes& in, std::size_t limit = 0x10000) {
    Bytes out;
    dwg::DecompressError error;
    if (!dwg::Decompress2007(in, limit, out, error))
        return "error at " + std::to_string(error.offset) + ": " + error.reason;
    return std::string(out.begin(), out.end());
}

// Opcode 0: a literal run of eight bytes, stored as they come (one piece of 8).
Bytes Eight(const Bytes& rest) { return Join(Join(Of({0x00}), Text("abcdefgh")), rest); }

TEST(DwgDecompress2007, an_eight_byte_literal_run_is_stored_as_it_comes) {
    EXPECT_EQ(Inflate(Eight({})), "abcdefgh");
    EXPECT_EQ(Inflate(Join(Of({0x01}), Text("abcdefghi"))), "iabcdefgh");  // pieces 1, 8
}

TEST(DwgDecompress2007, literal_pieces_come_last_first_with_short_pieces_reversed) {
    const struct {
        std::size_t length;
        std::string stored, output;
    } cases[] = {
        {10, "0123456789", "9123456780"},                   // 1, 8, 1
        {11, "0123456789A", "A912345678" "0"},              // 2 (reversed), 8, 1
        {12, "0123456789AB", "89AB01234567"},               // 4, 8
        {17, "0123456789ABCDEFG", "9ABCDEFG801234567"},     // 8, 1, 8
        {19, "0123456789ABCDEFGHI", "IHG89ABCDEF01234567"},  // 3 (reversed), 8, 8
        {26, "0123456789ABCDEFGHIJKLMNOP", "PHIJKLMNOG89ABCDEF01234567"},   // 1, 8, 1, 8, 8
        {31, "0123456789ABCDEFGHIJKLMNOPQRSTU", "UQRSTIJKLMNOPABCDEFGH23456789" "10"},
        {32, "0123456789ABCDEFGHIJKLMNOPQRSTUV", "OPQRSTUVGHIJKLMN89ABCDEF01234567"},
    };
    for (const auto& c : cases) {
        ASSERT_EQ(c.stored.size(), c.length);
        const Bytes in = Join(Of({static_cast<int>(c.length - 8)}), Text(c.stored));
        EXPECT_EQ(Inflate(in), c.output) << c.length;
    }
}

TEST(DwgDecompress2007, runs_longer_than_32_go_block_by_block) {
    // 0x0F and a byte: 0x17 + 0x12 = 41 bytes: a block of 32, then one of 9 (pieces 1, 8).
    std::string stored;
    for (int i = 0; i < 41; ++i) stored += static_cast<char>('!' + i);
    const std::string out = Inflate(Join(Of({0x0F, 0x12}), Text(stored)));
    ASSERT_EQ(out.size(), 41u);
    EXPECT_EQ(out.substr(0, 8), stored.substr(24, 8));
    EXPECT_EQ(out.substr(24, 8), stored.substr(0, 8));
    EXPECT_EQ(out[32], stored[40]);
    EXPECT_EQ(out.substr(33, 8), stored.substr(32, 8));
}

TEST(DwgDecompress2007, long_literal_lengths_add_a_byte_then_words) {
    // 0x17 + 0xFF + 0x0002 = 280 bytes.
    Bytes in = Join(Of({0x0F, 0xFF, 0x02, 0x00}), Bytes(280, 'z'));
    EXPECT_EQ(Inflate(in), std::string(280, 'z'));
    // A word of 0xFFFF asks for one more word.
    in = Join(Of({0x0F, 0xFF, 0xFF, 0xFF, 0x01, 0x00}), Bytes(0x17 + 0xFF + 0xFFFF + 1, 'y'));
    EXPECT_EQ(Inflate(in, 0x20000).size(), std::size_t{0x17 + 0xFF + 0xFFFF + 1});
}

TEST(DwgDecompress2007, an_opening_copy_of_nothing_gives_a_short_literal_count) {
    EXPECT_EQ(Inflate(Join(Of({0x20, 0x00, 0x00, 0x03}), Text("cba"))), "abc");
    // A count of 0: the next byte is a run length.
    EXPECT_EQ(Inflate(Join(Of({0x20, 0x00, 0x00, 0x00, 0x00}), Text("abcdefgh"))), "abcdefgh");
}

TEST(DwgDecompress2007, short_copies_take_length_from_the_opcode_and_distance_from_two_places) {
    // 0x31: 3 bytes; distance ((b & 0xF8) << 1) + (op & 0x0F) + 1.
    EXPECT_EQ(Inflate(Eight(Of({0x31, 0x00}))), "abcdefghghg");
    EXPECT_EQ(Inflate(Eight(Of({0x50, 0x00}))), "abcdefghhhhhh");
    EXPECT_EQ(Inflate(Eight(Of({0x27 + 0x10, 0x00}))), "abcdefghabc");  // distance 8
    // The byte's low three bits: literals after the copy (two, reversed as a piece of 2).
    EXPECT_EQ(Inflate(Eight(Join(Of({0x31, 0x02}), Text("yx")))), "abcdefghghgxy");
}

Bytes Counting(std::size_t size) {
    Bytes out(size);
    for (std::size_t i = 0; i < size; ++i) out[i] = static_cast<std::uint8_t>('0' + i % 64);
    return out;
}

// A run of 0x17 + 0xFF + `extra` counting bytes (stored in pieces), then the given code.
std::string AfterLongRun(std::size_t extra, const Bytes& code, std::string& run) {
    const std::size_t length = 0x17 + 0xFF + extra;
    const Bytes stored = Counting(length);
    const std::string plain = Inflate(Join(Of({0x0F, 0xFF, static_cast<int>(extra), 0}), stored));
    run = plain;
    return Inflate(Join(Join(Of({0x0F, 0xFF, static_cast<int>(extra), 0}), stored), code));
}

TEST(DwgDecompress2007, far_short_copies_use_the_high_bits_of_the_second_byte) {
    std::string run;
    // distance ((0x18 & 0xF8) << 1) + 2 + 1 = 51.
    const std::string out = AfterLongRun(10, Of({0x42, 0x18}), run);
    ASSERT_EQ(out.size(), run.size() + 4);
    EXPECT_EQ(out.substr(run.size()), run.substr(run.size() - 51, 4));
}

TEST(DwgDecompress2007, opcodes_0x10_give_lengths_from_3_and_13_bit_distances) {
    EXPECT_EQ(Inflate(Eight(Of({0x12, 0x03, 0x00}))), "abcdefghefghe");  // 5 bytes from 4 back
    std::string run;
    // distance ((0x08 & 0xF8) << 5) + 1 + 0x04 = 261.
    const std::string out = AfterLongRun(30, Of({0x10, 0x04, 0x08}), run);
    ASSERT_EQ(out.size(), run.size() + 3);
    EXPECT_EQ(out.substr(run.size()), run.substr(run.size() - 261, 3));
}

TEST(DwgDecompress2007, opcode_0x2_copies_with_16_bit_distances) {
    // Bit 3 clear: length (op & 7) + (b & 0xF8), distance from two bytes.
    EXPECT_EQ(Inflate(Eight(Of({0x22, 0x04, 0x00, 0x08}))), "abcdefgh" "efghefghef");
    // Bit 3 set: the distance plus one, length (op & 7) + (b1 << 3) + ((b2 & 0xF8) << 8) + 0x100.
    const std::string out = Inflate(Eight(Of({0x2A, 0x03, 0x00, 0x01, 0x00})));
    ASSERT_EQ(out.size(), 8u + 2 + 8 + 0x100);
    EXPECT_EQ(out.substr(8, 8), "efghefgh");
    std::string run;
    const std::string far = AfterLongRun(0, Of({0x22, 0x10, 0x01, 0x08}), run);  // 0x110 back
    ASSERT_EQ(far.size(), run.size() + 10);
    EXPECT_EQ(far.substr(run.size()), run.substr(run.size() - 0x110, 10));
}

TEST(DwgDecompress2007, after_a_copy_without_literals_comes_a_copy_or_a_run) {
    // 0x31 0x00, then 0x12: a second copy (five bytes from one back).
    EXPECT_EQ(Inflate(Eight(Of({0x31, 0x00, 0x12, 0x00, 0x00}))), "abcdefghghgggggg");
    // Or 0x00: a run of eight.
    EXPECT_EQ(Inflate(Eight(Join(Of({0x31, 0x00, 0x00}), Text("ABCDEFGH")))), "abcdefghghgABCDEFGH");
    // 0xF0-0xFF: the long copies of 0x13 bytes and more (bit 7 of the last byte adds 0x10).
    EXPECT_EQ(Inflate(Eight(Of({0x31, 0x00, 0xF0, 0x00, 0x00}))),
              "abcdefghghg" + std::string(0x13, 'g'));
    EXPECT_EQ(Inflate(Eight(Of({0x31, 0x00, 0xF1, 0x01, 0x80}))).size(), 11u + 0x14 + 0x10);
}

TEST(DwgDecompress2007, long_copy_distances_use_bits_3_to_6_of_the_last_byte) {
    std::string run;
    // After 0x31 0x00 (3 bytes), 0xF0: distance ((0x08 & 0x78) << 5) + 1 + 0x02 = 259.
    const std::string out = AfterLongRun(20, Of({0x31, 0x00, 0xF0, 0x02, 0x08}), run);
    ASSERT_EQ(out.size(), run.size() + 3 + 0x13);
    const std::string before = out.substr(0, run.size() + 3);
    EXPECT_EQ(out.substr(run.size() + 3), before.substr(before.size() - 259, 0x13));
}

TEST(DwgDecompress2007, malformed_data_gives_its_offset_and_reason) {
    EXPECT_EQ(Inflate(Of({0x00, 'a'})), "error at 2: the data ends inside a literal run");
    EXPECT_EQ(Inflate(Eight(Of({0x12, 0x03}))), "error at 11: the data ends inside an instruction");
    EXPECT_EQ(Inflate(Eight(Of({0x31, 0x08}))),
              "error at 11: a copy reaches before the start of the data");
    EXPECT_EQ(Inflate(Eight(Of({0x50, 0x00})), 12),
              "error at 11: the data decompresses past its size of 12");
    EXPECT_EQ(Inflate(Eight(Join(Of({0x31, 0x02}), Text("y")))),
              "error at 12: the data ends inside a literal run");
    EXPECT_EQ(Inflate({}), "error at 0: the data ends inside an instruction");
}

TEST(DwgDecompress2007, the_file_header_of_example_2007_decompresses_to_its_values) {
    const Bytes file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2007.dwg"));
    Bytes coded;
    ASSERT_EQ(dwg::DecodeInterleaved(std::span(file).subspan(0x80), 3, dwg::kSystemPageCode, coded), 3u);
    std::int32_t length;
    std::memcpy(&length, coded.data() + 24, 4);
    ASSERT_EQ(length, 165);
    Bytes header;
    dwg::DecompressError error;
    ASSERT_TRUE(dwg::Decompress2007(std::span(coded).subspan(32, 165), 0x110, header, error))
        << error.reason;
    ASSERT_EQ(header.size(), 0x110u);
    const auto value = [&](std::size_t i) {
        std::uint64_t v;
        std::memcpy(&v, header.data() + 8 * i, 8);
        return v;
    };
    EXPECT_EQ(value(0), 0x70u);         // the size of the header's values
    EXPECT_EQ(value(1), file.size());   // the file size
    EXPECT_EQ(value(14), 0x20u);
    EXPECT_EQ(value(15), 0x40u);
    EXPECT_EQ(value(17), 0xF800u);
    EXPECT_EQ(value(29), 0x60100u);     // the stream version
}

}  // namespace
