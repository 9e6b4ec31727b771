#include "platform/dwg/object_map.hpp"

#include <gtest/gtest.h>

#include <map>
#include <vector>

#include "platform/dwg/bit_writer.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/object_stream.hpp"

using dwg::ObjectLocation;
using dwg_test::BitWriter;

namespace {

// One page of the map: big-endian size, the pairs, big-endian CRC.
void AppendPage(std::vector<std::uint8_t>& out, const BitWriter& pairs) {
    std::vector<std::uint8_t> page;
    const std::size_t size = pairs.bytes.size() + 2;
    page.push_back(static_cast<std::uint8_t>(size >> 8));
    page.push_back(static_cast<std::uint8_t>(size));
    page.insert(page.end(), pairs.bytes.begin(), pairs.bytes.end());
    const auto crc = dwg::Crc16(0xC0C1, page);
    out.insert(out.end(), page.begin(), page.end());
    out.push_back(static_cast<std::uint8_t>(crc >> 8));
    out.push_back(static_cast<std::uint8_t>(crc));
}

void AppendEnd(std::vector<std::uint8_t>& out) {
    out.insert(out.end(), {0x00, 0x02, 0x00, 0x00});
}

TEST(DwgCrc, known_value_of_the_format_polynomial) {
    const std::vector<std::uint8_t> bytes{'1', '2', '3', '4', '5', '6', '7', '8', '9'};
    EXPECT_EQ(dwg::Crc16(0, bytes), 0xBB3D);  // the check value of this polynomial
}

// The polynomial applied one bit at a time, as the format defines the CRC.
std::uint16_t BitwiseCrc(std::uint16_t seed, const std::vector<std::uint8_t>& bytes) {
    unsigned crc = seed;
    for (std::uint8_t b : bytes) {
        crc ^= b;
        for (int k = 0; k < 8; ++k) crc = (crc & 1) ? (crc >> 1) ^ 0xA001 : crc >> 1;
    }
    return static_cast<std::uint16_t>(crc);
}

TEST(DwgCrc, blocks_of_eight_and_the_rest_give_the_bitwise_value_for_every_length) {
    std::vector<std::uint8_t> bytes;
    for (unsigned length = 0; length <= 33; ++length) {
        EXPECT_EQ(dwg::Crc16(0xC0C1, bytes), BitwiseCrc(0xC0C1, bytes)) << length;
        EXPECT_EQ(dwg::Crc16(0x1234, bytes), BitwiseCrc(0x1234, bytes)) << length;
        bytes.push_back(static_cast<std::uint8_t>(length * 37 + 11));
    }
}

TEST(DwgObjectMap, pairs_are_differences_and_each_page_starts_from_zero) {
    BitWriter first;
    first.UMC(1);
    first.MC(0x100);
    first.UMC(4);
    first.MC(-0x20);
    BitWriter second;
    second.UMC(0x200);
    second.MC(0x1000);
    std::vector<std::uint8_t> map;
    AppendPage(map, first);
    AppendPage(map, second);
    AppendEnd(map);
    std::vector<ObjectLocation> out;
    dwg::MapError error;
    ASSERT_TRUE(dwg::ParseObjectMap(map, out, error)) << error.reason;
    ASSERT_EQ(out.size(), 3u);
    EXPECT_EQ(out[0].handle, 1u);
    EXPECT_EQ(out[0].offset, 0x100);
    EXPECT_EQ(out[1].handle, 5u);
    EXPECT_EQ(out[1].offset, 0xE0);
    EXPECT_EQ(out[2].handle, 0x200u);
    EXPECT_EQ(out[2].offset, 0x1000);
}

TEST(DwgObjectMap, page_crc_mismatch_names_the_page_offset) {
    BitWriter first;
    first.UMC(1);
    first.MC(1);
    std::vector<std::uint8_t> map;
    AppendPage(map, first);
    AppendPage(map, first);
    map[map.size() - 3] ^= 0x01;  // a data byte of the second page
    AppendEnd(map);
    std::vector<ObjectLocation> out;
    dwg::MapError error;
    EXPECT_FALSE(dwg::ParseObjectMap(map, out, error));
    EXPECT_EQ(error.offset, 6u);
    EXPECT_EQ(error.reason, "object map page CRC mismatch");
}

TEST(DwgObjectMap, map_without_closing_page_fails) {
    BitWriter first;
    first.UMC(1);
    first.MC(1);
    std::vector<std::uint8_t> map;
    AppendPage(map, first);
    std::vector<ObjectLocation> out;
    dwg::MapError error;
    EXPECT_FALSE(dwg::ParseObjectMap(map, out, error));
    EXPECT_EQ(error.offset, map.size());
}

TEST(DwgObjectMap, page_larger_than_the_section_fails) {
    std::vector<std::uint8_t> map{0x00, 0x40, 0x81, 0x01};  // 64 bytes announced, 4 there
    std::vector<ObjectLocation> out;
    dwg::MapError error;
    EXPECT_FALSE(dwg::ParseObjectMap(map, out, error));
    EXPECT_EQ(error.offset, 0u);
}

TEST(DwgObjectMap, pair_cut_by_its_page_end_fails) {
    BitWriter pairs;
    pairs.UMC(1);
    pairs.RC(0x81);  // an offset whose continuation lies past the page
    std::vector<std::uint8_t> map;
    AppendPage(map, pairs);
    AppendEnd(map);
    std::vector<ObjectLocation> out;
    dwg::MapError error;
    EXPECT_FALSE(dwg::ParseObjectMap(map, out, error));
    EXPECT_EQ(error.reason, "object map entry runs past its page");
}

// Every object the map of a real 2000 drawing names frames with a good CRC and carries the
// handle the map gives it.
TEST(DwgObjectMap, every_object_of_a_2000_drawing_frames_with_its_own_handle) {
    for (const char* name : {"example_2000.dwg", "entities-2d.dwg", "color_sample_AC1015.dwg"}) {
        SCOPED_TRACE(name);
        const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath(name));
        ASSERT_FALSE(file.empty());
        std::vector<ObjectLocation> map;
        dwg::MapError error;
        ASSERT_TRUE(dwg::ParseObjectMap(dwg_test::FileSection(file, dwg::kHandlesSection), map, error))
            << error.reason << " at " << error.offset;
        ASSERT_GT(map.size(), 50u);
        std::map<int, int> types;
        for (const auto& loc : map) {
            dwg::ObjectStreams o;
            ASSERT_TRUE(dwg::OpenObject(file, loc.offset, dwg::Version::kR2000, 1252, o, error))
                << error.reason << " at " << error.offset;
            EXPECT_EQ(o.handle, loc.handle);
            EXPECT_LE(o.dataEnd, o.size * 8);
            ++types[o.type];
        }
        EXPECT_GT(types[0x30], 0);  // the block control object
        EXPECT_GT(types[0x33], 0);  // layers
    }
}

}  // namespace
