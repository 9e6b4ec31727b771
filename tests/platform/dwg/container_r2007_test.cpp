// The page container of AC1021 on example_2007.dwg: its sections, and each kind of damage named
// with its offset. Pages are rewritten with good Reed-Solomon parity (stored, uncompressed, as
// the format allows) to reach the checks behind the parity.
#include <gtest/gtest.h>

#include <cstring>

#include "platform/dwg/container.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/decompress.hpp"
#include "platform/dwg/reed_solomon.hpp"
#include "platform/dwg/reed_solomon_coder.hpp"

namespace {

using Bytes = std::vector<std::uint8_t>;

// Where example_2007.dwg keeps things (from its page map).
constexpr std::size_t kPageMapAt = 0x480;        // page 25, four blocks
constexpr std::size_t kSectionMapAt = 445248;    // page 21, 4864 bytes
constexpr std::size_t kHeaderPageAt = 444480;    // page 20: AcDb:Header, three blocks, 768 bytes

std::uint64_t Get64(const Bytes& b, std::size_t at) {
    std::uint64_t v;
    std::memcpy(&v, b.data() + at, 8);
    return v;
}

void Set64(Bytes& b, std::size_t at, std::uint64_t v) { std::memcpy(b.data() + at, &v, 8); }

// example_2007.dwg with its file header values and section map decoded, to change and write
// back stored.
struct Example2007 {
    Bytes file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2007.dwg"));
    Bytes header;      // the 0x110 bytes of values
    Bytes sectionMap;  // decompressed

    Example2007() {
        Bytes coded;
        dwg::DecodeInterleaved(std::span(file).subspan(0x80), 3, dwg::kSystemPageCode, coded);
        dwg::DecompressError error;
        dwg::Decompress2007(std::span(coded).subspan(32, 165), 0x110, header, error);
        const std::uint64_t compressed = value(22), size = value(25), correction = value(27);
        const std::size_t blocks = static_cast<std::size_t>(((compressed + 7) / 8 * 8 * correction + 238) / 239);
        coded.clear();
        dwg::DecodeInterleaved(std::span(file).subspan(kSectionMapAt), blocks, dwg::kSystemPageCode, coded);
        dwg::Decompress2007(std::span(coded).first(compressed), size, sectionMap, error);
    }
    std::uint64_t value(std::size_t index) const { return Get64(header, 8 * index); }

    // The file header stored: a negative data size and the values as they are.
    void StoreHeader() {
        Bytes data(32, 0);
        const std::int32_t length = -static_cast<std::int32_t>(header.size());
        std::memcpy(data.data() + 24, &length, 4);
        data.insert(data.end(), header.begin(), header.end());
        const Bytes raw = dwg_test::EncodeInterleaved(data, 3, dwg::kSystemPageCode);
        std::copy(raw.begin(), raw.end(), file.begin() + 0x80);
    }
    // The section map stored at its page (correction 1), and the header saying so.
    void StoreSectionMap() {
        Set64(header, 8 * 22, sectionMap.size());
        Set64(header, 8 * 25, sectionMap.size());
        Set64(header, 8 * 27, 1);
        const std::size_t blocks = ((sectionMap.size() + 7) / 8 * 8 + 238) / 239;
        const Bytes raw = dwg_test::EncodeInterleaved(sectionMap, blocks, dwg::kSystemPageCode);
        ASSERT_LE(raw.size(), 4864u);
        std::copy(raw.begin(), raw.end(), file.begin() + kSectionMapAt);
        StoreHeader();
    }
    // The offset in the section map of the named section's entry.
    std::size_t entry(const std::string& name) const {
        for (std::size_t at = 0; at < sectionMap.size();) {
            const std::size_t nameBytes = Get64(sectionMap, at + 32);
            std::string text;
            for (std::size_t i = 0; i + 1 < nameBytes && sectionMap[at + 64 + i] != 0; i += 2)
                text += static_cast<char>(sectionMap[at + 64 + i]);
            if (text == name) return at;
            at += 64 + nameBytes + 56 * Get64(sectionMap, at + 56);
        }
        ADD_FAILURE() << name << " not in the section map";
        return 0;
    }
    // The offset of the first page record of the named section.
    std::size_t firstPage(const std::string& name) const {
        const std::size_t at = entry(name);
        return at + 64 + Get64(sectionMap, at + 32);
    }
    dwg::MapError error() const {
        dwg::DwgContainer container;
        dwg::MapError e;
        EXPECT_FALSE(dwg::ReadDwgContainer(file, container, e));
        return e;
    }
    bool reads(dwg::DwgContainer& container) const {
        dwg::MapError e;
        const bool ok = dwg::ReadDwgContainer(file, container, e);
        EXPECT_TRUE(ok) << e.reason << " at " << e.offset;
        return ok;
    }
};

TEST(DwgContainer2007, example_2007_gives_every_section_of_its_section_map) {
    const Example2007 example;
    dwg::DwgContainer container;
    ASSERT_TRUE(example.reads(container));
    EXPECT_EQ(container.version, dwg::Version::kR2007);
    EXPECT_EQ(container.maintenance, 50);
    EXPECT_EQ(container.dwgCodePage, 30);
    std::vector<std::pair<std::string, std::size_t>> sections;
    for (const auto& s : container.sections) sections.emplace_back(s.name, s.data.size());
    const std::vector<std::pair<std::string, std::size_t>> expected = {
        {"AcDb:AppInfoHistory", 1296}, {"AcDb:AppInfo", 698},     {"AcDb:Preview", 302255},
        {"AcDb:SummaryInfo", 78},      {"AcDb:RevHistory", 16},   {"AcDb:AcDbObjects", 417109},
        {"AcDb:ObjFreeSpace", 53},     {"AcDb:Template", 6},      {"AcDb:Handles", 1739},
        {"AcDb:Classes", 4538},        {"AcDb:AuxHeader", 123},   {"AcDb:Header", 852}};
    EXPECT_EQ(sections, expected);
    EXPECT_EQ(dwg::FindSection(container, "AcDb:Header")[0], 0xCF);
    EXPECT_EQ(dwg::FindSection(container, "AcDb:Preview")[0], 0x1F);
    const auto appInfo = dwg::FindSection(container, "AcDb:AppInfo");  // stored, not coded
    EXPECT_EQ(std::string(appInfo.begin() + 6, appInfo.begin() + 12), std::string("A\0p\0p\0", 6));
}

TEST(DwgContainer2007, a_file_cut_inside_its_header_blocks_is_truncated) {
    Example2007 example;
    example.file.resize(0x80 + 3 * 255 - 1);
    const auto error = example.error();
    EXPECT_EQ(error.offset, 0x80u + 3 * 255 - 1);
    EXPECT_EQ(error.reason, "the file header is truncated");
}

TEST(DwgContainer2007, a_changed_byte_fails_the_reed_solomon_check_of_its_block) {
    const struct {
        std::size_t at, offset;
        std::string reason;
    } cases[] = {
        {0x80, 0x80, "the file header fails its Reed-Solomon check (block 0)"},
        {0x80 + 3 * 200 + 2, 0x80, "the file header fails its Reed-Solomon check (block 2)"},
        {kPageMapAt + 5, kPageMapAt, "the page map page fails its Reed-Solomon check (block 1)"},
        {kSectionMapAt + 2, kSectionMapAt, "the section map page fails its Reed-Solomon check (block 2)"},
        {kHeaderPageAt + 4, kHeaderPageAt, "AcDb:Header page fails its Reed-Solomon check (block 1)"},
        {kHeaderPageAt + 3 * 254, kHeaderPageAt, "AcDb:Header page fails its Reed-Solomon check (block 0)"},
    };
    for (const auto& c : cases) {
        Example2007 example;
        example.file[c.at] ^= 0x08;
        const auto error = example.error();
        EXPECT_EQ(error.reason, c.reason);
        EXPECT_EQ(error.offset, c.offset) << c.reason;
    }
}

TEST(DwgContainer2007, stored_header_and_section_map_read_as_the_compressed_ones) {
    Example2007 example;
    example.StoreSectionMap();
    dwg::DwgContainer container;
    ASSERT_TRUE(example.reads(container));
    EXPECT_EQ(dwg::FindSection(container, "AcDb:AcDbObjects").size(), 417109u);
}

TEST(DwgContainer2007, a_stored_header_too_short_for_its_values_is_refused) {
    Example2007 example;
    example.header.resize(0x100);
    example.StoreHeader();
    const auto error = example.error();
    EXPECT_EQ(error.offset, 0x80u);
    EXPECT_EQ(error.reason, "the file header is truncated");
}

TEST(DwgContainer2007, a_header_data_size_beyond_its_blocks_is_refused) {
    Example2007 example;
    example.header.resize(3 * 239 - 32 + 1);
    example.StoreHeader();  // the blocks keep only what fits; the size says one more
    const auto error = example.error();
    EXPECT_EQ(error.offset, 0x80u);
    EXPECT_EQ(error.reason, "the file header's data size -686 does not fit its blocks");
}

TEST(DwgContainer2007, impossible_system_page_sizes_are_refused) {
    for (std::size_t index : {std::size_t{3}, std::size_t{10}, std::size_t{11}}) {
        Example2007 example;
        Set64(example.header, 8 * index, index == 3 ? 0 : 0xFFFFFFFFFFull);
        example.StoreHeader();
        const auto error = example.error();
        EXPECT_EQ(error.offset, 0x80u);
        EXPECT_EQ(error.reason, "the file header gives page map impossible sizes") << index;
    }
}

TEST(DwgContainer2007, a_page_map_past_the_end_of_the_file_is_refused) {
    Example2007 example;
    Set64(example.header, 8 * 7, example.file.size() - 0x480 - 100);
    example.StoreHeader();
    auto error = example.error();
    EXPECT_EQ(error.offset, example.file.size() - 100);
    EXPECT_EQ(error.reason, "the page map page runs past the end of the file");
    Set64(example.header, 8 * 7, example.file.size() + 1);
    example.StoreHeader();
    error = example.error();
    EXPECT_EQ(error.offset, 0x80u);
    EXPECT_EQ(error.reason, "the page map lies past the end of the file");
}

TEST(DwgContainer2007, a_section_map_missing_from_the_page_map_is_refused) {
    Example2007 example;
    Set64(example.header, 8 * 24, 999);
    example.StoreHeader();
    const auto error = example.error();
    EXPECT_EQ(error.offset, 0x80u);
    EXPECT_EQ(error.reason, "the section map page is not in the page map");
}

TEST(DwgContainer2007, section_map_values_are_checked) {
    const struct {
        std::size_t field;  // in the AcDb:Header entry; 99: its first page's id
        std::uint64_t value;
        std::string reason;
    } cases[] = {
        {0, 853, "AcDb:Header holds 852 bytes, not 853"},
        {16, 1, "AcDb:Header is encrypted (a password-protected drawing)"},
        {48, 3, "AcDb:Header has the unknown coding 3"},
        {99, 999, "AcDb:Header page 999 is not in the page map"},
    };
    for (const auto& c : cases) {
        Example2007 example;
        if (c.field == 99) {
            Set64(example.sectionMap, example.firstPage("AcDb:Header") + 16, c.value);
        } else {
            Set64(example.sectionMap, example.entry("AcDb:Header") + c.field, c.value);
        }
        example.StoreSectionMap();
        const auto error = example.error();
        EXPECT_EQ(error.reason, c.reason);
        EXPECT_EQ(error.offset, 0x80u) << c.reason;
    }
}

TEST(DwgContainer2007, a_section_map_cut_inside_an_entry_is_truncated) {
    Example2007 example;
    example.sectionMap.resize(example.entry("AcDb:Header") + 70);
    example.StoreSectionMap();
    const auto error = example.error();
    EXPECT_EQ(error.offset, kSectionMapAt);
    EXPECT_EQ(error.reason, "the section map data is truncated");
}

TEST(DwgContainer2007, pages_of_a_section_follow_each_other) {
    Example2007 example;
    Set64(example.sectionMap, example.firstPage("AcDb:Header"), 8);  // the page's offset
    example.StoreSectionMap();
    const auto error = example.error();
    EXPECT_EQ(error.offset, kHeaderPageAt);
    EXPECT_EQ(error.reason, "AcDb:Header page does not start where the data before it ends");
}

TEST(DwgContainer2007, a_page_larger_than_its_blocks_allow_is_refused) {
    Example2007 example;
    Set64(example.sectionMap, example.firstPage("AcDb:Header") + 32, 769);  // compressed size
    example.StoreSectionMap();
    auto error = example.error();
    EXPECT_EQ(error.offset, kHeaderPageAt);
    EXPECT_EQ(error.reason, "AcDb:Header page gives impossible sizes");
    Set64(example.sectionMap, example.firstPage("AcDb:Header") + 32, 760);  // four blocks
    example.StoreSectionMap();
    error = example.error();
    EXPECT_EQ(error.reason, "AcDb:Header page is smaller than its blocks");
}

TEST(DwgContainer2007, bad_compressed_data_behind_good_parity_names_its_page_and_byte) {
    Example2007 example;
    // Eight literal bytes, then a copy from 18 bytes back: before the start.
    Bytes data = {0x00, 'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h', 0x31, 0x08};
    data.resize(3 * 251, 0);
    const Bytes raw = dwg_test::EncodeInterleaved(data, 3, dwg::kDataPageCode);
    std::copy(raw.begin(), raw.end(), example.file.begin() + kHeaderPageAt);
    const auto error = example.error();
    EXPECT_EQ(error.offset, kHeaderPageAt);
    EXPECT_EQ(error.reason, "bad compressed data in AcDb:Header (byte 11 of its data): a copy "
                            "reaches before the start of the data");
}

TEST(DwgContainer2007, a_page_that_decompresses_short_is_refused) {
    Example2007 example;
    Bytes data = {0x00, 'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h'};
    Set64(example.sectionMap, example.firstPage("AcDb:Header") + 32, data.size());
    example.StoreSectionMap();
    data.resize(251, 0);
    const Bytes raw = dwg_test::EncodeInterleaved(data, 1, dwg::kDataPageCode);
    std::copy(raw.begin(), raw.end(), example.file.begin() + kHeaderPageAt);
    const auto error = example.error();
    EXPECT_EQ(error.offset, kHeaderPageAt);
    EXPECT_EQ(error.reason, "AcDb:Header decompresses to 8 bytes, not 852");
}

}  // namespace
