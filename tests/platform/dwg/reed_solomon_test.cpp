// The Reed-Solomon blocks of 2007 pages: interleaved data comes back in order, and any changed
// byte, data or parity, fails its block's check.
#include "platform/dwg/reed_solomon.hpp"

#include <gtest/gtest.h>

#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/reed_solomon_coder.hpp"

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes Counting(std::size_t size) {
    Bytes out(size);
    for (std::size_t i = 0; i < size; ++i) out[i] = static_cast<std::uint8_t>(i * 13 + 1);
    return out;
}

TEST(DwgReedSolomon, interleaved_blocks_give_their_data_in_order) {
    for (const auto& code : {dwg::kSystemPageCode, dwg::kDataPageCode}) {
        const Bytes data = Counting(code.dataSize * 3);
        const Bytes raw = dwg_test::EncodeInterleaved(data, 3, code);
        Bytes out;
        EXPECT_EQ(dwg::DecodeInterleaved(raw, 3, code, out), 3u);
        EXPECT_EQ(out, data);
    }
}

TEST(DwgReedSolomon, byte_i_of_block_j_sits_at_j_plus_i_times_the_count) {
    const Bytes data = Counting(251 * 2);
    const Bytes raw = dwg_test::EncodeInterleaved(data, 2, dwg::kDataPageCode);
    EXPECT_EQ(raw[0], data[0]);
    EXPECT_EQ(raw[1], data[251]);
    EXPECT_EQ(raw[2], data[1]);
    EXPECT_EQ(raw[2 * 250 + 1], data[251 + 250]);
}

TEST(DwgReedSolomon, a_changed_byte_fails_the_check_of_its_block) {
    const auto code = dwg::kSystemPageCode;
    const Bytes raw = dwg_test::EncodeInterleaved(Counting(239 * 4), 4, code);
    for (std::size_t at : {std::size_t{0}, std::size_t{5}, std::size_t{4 * 238 + 2},
                           std::size_t{4 * 239 + 3}, std::size_t{4 * 254 + 1}}) {
        Bytes changed = raw;
        changed[at] ^= 0x40;
        Bytes out;
        EXPECT_EQ(dwg::DecodeInterleaved(changed, 4, code, out), at % 4) << at;
        EXPECT_EQ(out.size(), 239 * (at % 4));  // the blocks before it
    }
}

TEST(DwgReedSolomon, each_kind_of_page_has_its_own_field) {
    Bytes data = Counting(251);
    const Bytes raw = dwg_test::EncodeInterleaved(data, 1, dwg::kDataPageCode);
    Bytes out;
    EXPECT_EQ(dwg::DecodeInterleaved(raw, 1, dwg::kDataPageCode, out), 1u);
    const dwg::ReedSolomonCode otherField{dwg::kSystemPageCode.polynomial, 251};
    EXPECT_EQ(dwg::DecodeInterleaved(raw, 1, otherField, out), 0u);
}

TEST(DwgReedSolomon, every_root_counts) {
    // A block that vanishes at 2^1 .. 2^3 only (parity for three roots, the fourth ignored)
    // fails the four-root check of data pages.
    const dwg::ReedSolomonCode threeRoots{dwg::kDataPageCode.polynomial, 252};
    Bytes data = Counting(251);
    std::array<std::uint8_t, 255> block{};
    std::copy(data.begin(), data.end(), block.begin());
    dwg_test::SetParity(block, threeRoots);
    Bytes out;
    EXPECT_EQ(dwg::DecodeInterleaved(Bytes(block.begin(), block.end()), 1, dwg::kDataPageCode, out), 0u);
    EXPECT_EQ(dwg::DecodeInterleaved(Bytes(block.begin(), block.end()), 1, threeRoots, out), 1u);
}

TEST(DwgReedSolomon, the_2007_file_header_blocks_check) {
    const Bytes file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2007.dwg"));
    Bytes out;
    EXPECT_EQ(dwg::DecodeInterleaved(std::span(file).subspan(0x80), 3, dwg::kSystemPageCode, out), 3u);
    EXPECT_EQ(out.size(), 3u * 239);
}

}  // namespace
