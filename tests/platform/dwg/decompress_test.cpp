// The 2004 compression read back: literal runs of every length coding, each copy opcode with
// its length and distance, the literals that follow copies, and malformed data.
#include "platform/dwg/decompress.hpp"

#include <gtest/gtest.h>

#include <string>

#include "platform/dwg/r2004_pages.hpp"

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
    if (!dwg::Decompress2004(in, limit, out, error)) return "error at " + std::to_string(error.offset) + ": " + error.reason;
    return std::string(out.begin(), out.end());
}

TEST(DwgDecompress2004, literal_runs_of_every_length_coding_come_back) {
    for (std::size_t length : {4u, 5u, 18u, 19u, 0x12u + 0xFFu, 0x12u + 0xFFu + 1, 1000u, 0x7400u}) {
        Bytes data(length);
        for (std::size_t i = 0; i < length; ++i) data[i] = static_cast<std::uint8_t>(i * 7 + 3);
        Bytes out;
        dwg::DecompressError error;
        ASSERT_TRUE(dwg::Decompress2004(dwg::CompressLiteral(data), length, out, error))
            << length << ": " << error.reason;
        EXPECT_EQ(out, data) << length;
    }
}

TEST(DwgDecompress2004, an_empty_stream_is_the_end_code_alone) {
    EXPECT_EQ(Inflate(Of({0x11})), "");
}

// "abcd" as the first literal run (opcode 1: four bytes), then the copy under test.
Bytes Abcd(const Bytes& rest) { return Join(Join(Of({0x01}), Text("abcd")), rest); }

TEST(DwgDecompress2004, short_copies_take_length_and_distance_from_two_bytes) {
    // 0x40-0xFF: length (op >> 4) - 1, distance from the second byte and bits 2-3, plus one.
    EXPECT_EQ(Inflate(Abcd(Of({0x50, 0x00, 0x11}))), "abcddddd");
    EXPECT_EQ(Inflate(Abcd(Of({0x54, 0x00, 0x11}))), "abcdcdcd");
    EXPECT_EQ(Inflate(Abcd(Of({0x4C, 0x00, 0x11}))), "abcdabc");   // distance 4
    EXPECT_EQ(Inflate(Abcd(Of({0xF0, 0x00, 0x11}))), "abcd" + std::string(14, 'd'));
}

TEST(DwgDecompress2004, far_short_copy_distance_comes_from_the_second_byte) {
    Bytes data(0x400);
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<std::uint8_t>(i);
    Bytes in = dwg::CompressLiteral(data);
    in.resize(in.size() - 3);  // drop the end code
    in = Join(in, Of({0x40 | 0x04, 0xFF, 0x11}));  // three bytes from 0x3FD + 1 back
    Bytes out;
    dwg::DecompressError error;
    ASSERT_TRUE(dwg::Decompress2004(in, 0x1000, out, error)) << error.reason;
    ASSERT_EQ(out.size(), 0x403u);
    EXPECT_EQ(out[0x400], data[0x400 - 0x3FE]);
    EXPECT_EQ(out[0x402], data[0x402 - 0x3FE]);
}

TEST(DwgDecompress2004, medium_copies_give_the_length_in_the_opcode) {
    // 0x21-0x3F: length op - 0x1E; distance (first >> 2 | second << 6) + 1.
    EXPECT_EQ(Inflate(Abcd(Of({0x22, 0x0C, 0x00, 0x11}))), "abcdabcd");
    EXPECT_EQ(Inflate(Abcd(Of({0x3F, 0x00, 0x00, 0x11}))), "abcd" + std::string(0x21, 'd'));
    // 0x20: a long count plus 0x21.
    EXPECT_EQ(Inflate(Abcd(Of({0x20, 0x01, 0x00, 0x00, 0x11}))), "abcd" + std::string(0x22, 'd'));
    EXPECT_EQ(Inflate(Abcd(Of({0x20, 0x00, 0x02, 0x00, 0x00, 0x11}))),
              "abcd" + std::string(0xFF + 2 + 0x21, 'd'));
}

TEST(DwgDecompress2004, the_second_distance_byte_counts_in_steps_of_64) {
    Bytes data(200);
    for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<std::uint8_t>(i);
    Bytes in = dwg::CompressLiteral(data);
    in.resize(in.size() - 3);
    in = Join(in, Of({0x21, 0x04 << 2, 0x02, 0x11}));  // distance 4 + 2 * 64, plus one
    Bytes out;
    dwg::DecompressError error;
    ASSERT_TRUE(dwg::Decompress2004(in, 0x1000, out, error)) << error.reason;
    ASSERT_EQ(out.size(), 203u);
    EXPECT_EQ(out[200], data[200 - 133]);
    EXPECT_EQ(out[202], data[202 - 133]);
}

// A first literal run of `size` bytes with distinct values, without the end code.
Bytes FarPrefix(std::size_t size, Bytes& data) {
    data.resize(size);
    for (std::size_t i = 0; i < size; ++i) data[i] = static_cast<std::uint8_t>(i % 251);
    Bytes in = dwg::CompressLiteral(data);
    in.resize(in.size() - 3);
    return in;
}

TEST(DwgDecompress2004, far_copies_start_their_distance_at_0x4000) {
    Bytes data;
    Bytes in = Join(FarPrefix(0x4005, data), Of({0x12, 0x04, 0x00, 0x11}));  // 4 from 0x4001 back
    Bytes out;
    dwg::DecompressError error;
    ASSERT_TRUE(dwg::Decompress2004(in, 0x10000, out, error)) << error.reason;
    ASSERT_EQ(out.size(), 0x4009u);
    EXPECT_EQ(out[0x4005], data[0x4005 - 0x4001]);
    EXPECT_EQ(out[0x4008], data[0x4008 - 0x4001]);
    // 0x10: a long count plus 9 bytes.
    in = Join(FarPrefix(0x4005, data), Of({0x10, 0x01, 0x00, 0x00, 0x11}));
    ASSERT_TRUE(dwg::Decompress2004(in, 0x10000, out, error)) << error.reason;
    ASSERT_EQ(out.size(), 0x4005u + 10);
    EXPECT_EQ(out[0x4005], data[5]);
    EXPECT_EQ(out[0x4005 + 9], data[14]);
    // 0x17: length 7 + 2.
    in = Join(FarPrefix(0x4005, data), Of({0x17, 0x00, 0x00, 0x11}));
    ASSERT_TRUE(dwg::Decompress2004(in, 0x10000, out, error)) << error.reason;
    EXPECT_EQ(out.size(), 0x4005u + 9);
}

TEST(DwgDecompress2004, opcode_bit_3_adds_0x4000_to_a_far_distance) {
    Bytes data;
    Bytes in = Join(FarPrefix(0x8003, data), Of({0x1A, 0x00, 0x00, 0x11}));  // length 4, 0x8000
    Bytes out;
    dwg::DecompressError error;
    ASSERT_TRUE(dwg::Decompress2004(in, 0x10000, out, error)) << error.reason;
    ASSERT_EQ(out.size(), 0x8007u);
    EXPECT_EQ(out[0x8003], data[3]);
    EXPECT_EQ(out[0x8006], data[6]);
}

TEST(DwgDecompress2004, literals_follow_a_copy_by_its_low_bits_or_a_run_opcode) {
    EXPECT_EQ(Inflate(Abcd(Join(Of({0x53, 0x00}), Join(Text("xyz"), Of({0x11}))))), "abcdddddxyz");
    EXPECT_EQ(Inflate(Abcd(Join(Of({0x22, 0x0D, 0x00}), Join(Text("x"), Of({0x11}))))),
              "abcdabcdx");
    // Literal count 0, then a run opcode: 2 stands for five bytes.
    EXPECT_EQ(Inflate(Abcd(Join(Of({0x50, 0x00, 0x02}), Join(Text("vwxyz"), Of({0x11}))))),
              "abcdddddvwxyz");
    // A run of 0 is 18 bytes and more, by a long count.
    EXPECT_EQ(Inflate(Abcd(Join(Of({0x50, 0x00, 0x00, 0x01}), Join(Text(std::string(19, 'q')), Of({0x11}))))),
              "abcddddd" + std::string(19, 'q'));
}

TEST(DwgDecompress2004, a_stream_without_its_end_code_is_refused_at_its_end) {
    EXPECT_EQ(Inflate(Abcd(Of({0x50, 0x00}))), "error at 7: the data ends before its end code");
    EXPECT_EQ(Inflate(Abcd(Of({}))), "error at 5: the data ends before its end code");
    EXPECT_EQ(Inflate(Abcd(Of({0x50}))), "error at 6: the data ends inside an instruction");
    EXPECT_EQ(Inflate(Abcd(Of({0x53, 0x00, 'x'}))), "error at 8: the data ends inside a literal run");
    EXPECT_EQ(Inflate(Of({0x01, 'a', 'b'})), "error at 3: the data ends inside a literal run");
    EXPECT_EQ(Inflate(Of({})), "error at 0: the data ends before its end code");
}

TEST(DwgDecompress2004, a_copy_before_the_start_is_refused) {
    EXPECT_EQ(Inflate(Abcd(Of({0x4C, 0x00, 0x11}))), "abcdabc");
    EXPECT_EQ(Inflate(Abcd(Of({0x40, 0x01, 0x11}))),
              "error at 7: a copy reaches before the start of the data");
    EXPECT_EQ(Inflate(Of({0x22, 0x00, 0x00, 0x11})),
              "error at 3: a copy reaches before the start of the data");
}

TEST(DwgDecompress2004, a_run_opcode_where_a_copy_belongs_is_refused) {
    EXPECT_EQ(Inflate(Abcd(Of({0x53, 0x00, 'x', 'y', 'z', 0x05}))),
              "error at 10: an opcode that is no copy");
}

TEST(DwgDecompress2004, output_stops_at_the_limit) {
    EXPECT_EQ(Inflate(Abcd(Of({0x50, 0x00, 0x11})), 8), "abcddddd");
    EXPECT_EQ(Inflate(Abcd(Of({0x50, 0x00, 0x11})), 7),
              "error at 7: the data decompresses past its size of 7");
    EXPECT_EQ(Inflate(Abcd(Of({0x11})), 3), "error at 1: the data decompresses past its size of 3");
}

}  // namespace
