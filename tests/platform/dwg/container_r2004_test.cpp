// The page container of AC1018 and later, on example_2004.dwg: its sections, and each kind of
// damage named with its file offset.
#include <gtest/gtest.h>

#include <cstring>

#include "platform/dwg/container.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/r2004_pages.hpp"

namespace {

using Bytes = std::vector<std::uint8_t>;

// Where example_2004.dwg keeps things (from its page map and section map).
constexpr std::size_t kPageMapAt = 187296 + 0x100;
constexpr std::size_t kSectionMapAt = 186912;
constexpr std::size_t kHeaderPageAt = 186144;  // page 24: AcDb:Header, 721 bytes compressed
constexpr std::uint32_t kHeaderCompressed = 721;

Bytes Example2004() { return dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2004.dwg")); }

dwg::MapError ContainerError(const Bytes& file) {
    dwg::DwgContainer container;
    dwg::MapError error;
    EXPECT_FALSE(dwg::ReadDwgContainer(file, container, error));
    return error;
}

TEST(DwgContainer2004, example_2004_gives_every_section_of_its_section_map) {
    const Bytes file = Example2004();
    dwg::DwgContainer container;
    dwg::MapError error;
    ASSERT_TRUE(dwg::ReadDwgContainer(file, container, error)) << error.reason << " at " << error.offset;
    EXPECT_EQ(container.version, dwg::Version::kR2004);
    EXPECT_EQ(container.maintenance, 104);
    EXPECT_EQ(container.dwgCodePage, 30);
    std::vector<std::pair<std::string, std::size_t>> sections;
    for (const auto& s : container.sections) sections.emplace_back(s.name, s.data.size());
    const std::vector<std::pair<std::string, std::size_t>> expected = {
        {"AcDb:AppInfoHistory", 1296}, {"AcDb:AppInfo", 698},     {"AcDb:Preview", 31439},
        {"AcDb:SummaryInfo", 64},      {"AcDb:RevHistory", 16},   {"AcDb:AcDbObjects", 364646},
        {"AcDb:ObjFreeSpace", 53},     {"AcDb:Template", 4},      {"AcDb:Handles", 2167},
        {"AcDb:Classes", 2645},        {"AcDb:AuxHeader", 123},   {"AcDb:Header", 636}};
    EXPECT_EQ(sections, expected);
    // Stored (uncompressed) and compressed sections both open with what they hold.
    EXPECT_EQ(dwg::FindSection(container, "AcDb:Preview")[0], 0x1F);  // the preview sentinel
    EXPECT_EQ(dwg::FindSection(container, "AcDb:Header")[0], 0xCF);   // the header sentinel
    const auto template_ = dwg::FindSection(container, "AcDb:Template");
    EXPECT_EQ(Bytes(template_.begin(), template_.end()), (Bytes{0, 0, 1, 0}));
    const dwg::DwgSections decoded = dwg::SectionsOf(container, file);
    EXPECT_EQ(decoded.objects.data(), dwg::FindSection(container, "AcDb:AcDbObjects").data());
    EXPECT_EQ(decoded.objectMap.size(), 2167u);
    EXPECT_EQ(decoded.maintenance, 104);
}

TEST(DwgContainer2004, a_container_moved_keeps_its_sections) {
    const Bytes file = Example2004();
    dwg::DwgContainer first;
    dwg::MapError error;
    ASSERT_TRUE(dwg::ReadDwgContainer(file, first, error));
    const auto* header = dwg::FindSection(first, "AcDb:Header").data();
    const dwg::DwgContainer moved = std::move(first);
    EXPECT_EQ(dwg::FindSection(moved, "AcDb:Header").data(), header);
    EXPECT_EQ(dwg::FindSection(moved, "AcDb:Header")[0], 0xCF);
}

TEST(DwgContainer2004, a_file_cut_before_the_end_of_its_header_block_is_truncated) {
    for (std::size_t size : {std::size_t{0x20}, std::size_t{0x80 + 0x6B}}) {
        Bytes file = Example2004();
        file.resize(size);
        const auto error = ContainerError(file);
        EXPECT_EQ(error.offset, size);
        EXPECT_EQ(error.reason, "the file header is truncated");
    }
}

TEST(DwgContainer2004, a_file_cut_inside_its_pages_names_the_page) {
    Bytes file = Example2004();
    file.resize(kPageMapAt + 30);
    auto error = ContainerError(file);
    EXPECT_EQ(error.offset, kPageMapAt);
    EXPECT_EQ(error.reason, "the page map page runs past the end of the file");
    file.resize(kPageMapAt + 10);
    error = ContainerError(file);
    EXPECT_EQ(error.reason, "the page map page lies past the end of the file");
}

TEST(DwgContainer2004, the_header_block_must_decrypt_to_its_signature) {
    Bytes file = Example2004();
    file[0x80 + 3] ^= 0x20;
    const auto error = ContainerError(file);
    EXPECT_EQ(error.offset, 0x80u);
    EXPECT_EQ(error.reason, "the file header block does not decrypt to its signature");
}

TEST(DwgContainer2004, a_changed_header_block_value_fails_its_crc) {
    Bytes file = Example2004();
    file[0x80 + 0x3C] ^= 0x01;  // the gap amount: read by no one, covered by the CRC
    const auto error = ContainerError(file);
    EXPECT_EQ(error.offset, 0x80u + 0x68);
    EXPECT_EQ(error.reason, "file header CRC-32 mismatch");
}

// Changes a value of the decrypted header block and sets its CRC, as a writer would.
void SetHeaderValue(Bytes& file, std::size_t at, std::uint32_t value) {
    const auto magic = dwg::MagicSequence(0x6C);
    std::vector<std::uint8_t> plain(file.begin() + 0x80, file.begin() + 0x80 + 0x6C);
    for (std::size_t i = 0; i < plain.size(); ++i) plain[i] ^= magic[i];
    std::memcpy(plain.data() + at, &value, 4);
    std::memset(plain.data() + 0x68, 0, 4);
    const std::uint32_t crc = dwg::Crc32(plain);
    std::memcpy(plain.data() + 0x68, &crc, 4);
    for (std::size_t i = 0; i < plain.size(); ++i) file[0x80 + i] = plain[i] ^ magic[i];
}

TEST(DwgContainer2004, a_section_map_missing_from_the_page_map_is_refused) {
    Bytes file = Example2004();
    SetHeaderValue(file, 0x5C, 999);
    const auto error = ContainerError(file);
    EXPECT_EQ(error.offset, 0x80u);
    EXPECT_EQ(error.reason, "the section map page is not in the page map");
}

TEST(DwgContainer2004, a_page_map_address_on_a_data_page_is_refused_by_its_type) {
    Bytes file = Example2004();
    SetHeaderValue(file, 0x54, kHeaderPageAt - 0x100);
    const auto error = ContainerError(file);
    EXPECT_EQ(error.offset, kHeaderPageAt);
    EXPECT_EQ(error.reason.rfind("the page map page has type 0x", 0), 0u) << error.reason;
}

TEST(DwgContainer2004, system_page_checksums_are_checked) {
    for (std::size_t page : {kPageMapAt, kSectionMapAt}) {
        Bytes file = Example2004();
        file[page + 20 + 5] ^= 0x01;
        const auto error = ContainerError(file);
        EXPECT_EQ(error.offset, page);
        EXPECT_EQ(error.reason, page == kPageMapAt
                                    ? "the page map page checksum does not match"
                                    : "the section map page checksum does not match");
    }
}

TEST(DwgContainer2004, a_data_page_checksum_names_the_page_and_its_section) {
    Bytes file = Example2004();
    file[kHeaderPageAt + 32 + 100] ^= 0x01;
    const auto error = ContainerError(file);
    EXPECT_EQ(error.offset, kHeaderPageAt);
    EXPECT_EQ(error.reason, "AcDb:Header page data checksum does not match");
}

TEST(DwgContainer2004, a_data_page_header_checksum_is_checked) {
    Bytes file = Example2004();
    file[kHeaderPageAt + 23] ^= 0x01;  // the start offset's high half
    const auto error = ContainerError(file);
    EXPECT_EQ(error.offset, kHeaderPageAt);
    EXPECT_EQ(error.reason, "AcDb:Header page header checksum does not match");
}

TEST(DwgContainer2004, a_data_page_of_another_section_is_refused) {
    Bytes file = Example2004();
    file[kHeaderPageAt + 4] ^= 0x02;  // section 1 becomes 3 (encrypted header: flip in place)
    const auto error = ContainerError(file);
    EXPECT_EQ(error.offset, kHeaderPageAt);
    EXPECT_EQ(error.reason, "the page at this offset is no data page of AcDb:Header");
}

// Replaces the compressed data of the AcDb:Header page, with checksums a writer would give it.
void SetHeaderPageData(Bytes& file, const Bytes& compressed) {
    ASSERT_LE(compressed.size(), kHeaderCompressed);
    const auto header = dwg::EncryptDataPageHeader(1, static_cast<std::uint32_t>(compressed.size()),
                                                   768, 0, compressed, kHeaderPageAt);
    std::copy(header.begin(), header.end(), file.begin() + kHeaderPageAt);
    std::copy(compressed.begin(), compressed.end(), file.begin() + kHeaderPageAt + 32);
}

TEST(DwgContainer2004, bad_compressed_data_with_good_checksums_gives_its_offset) {
    Bytes file = Example2004();
    SetHeaderPageData(file, {0x22, 0x00, 0x00, 0x11});
    const auto error = ContainerError(file);
    EXPECT_EQ(error.offset, kHeaderPageAt + 32 + 3);
    EXPECT_EQ(error.reason,
              "bad compressed data in AcDb:Header: a copy reaches before the start of the data");
}

TEST(DwgContainer2004, a_section_shorter_than_its_size_is_refused) {
    Bytes file = Example2004();
    Bytes data(100, 0);
    SetHeaderPageData(file, dwg::CompressLiteral(data));
    const auto error = ContainerError(file);
    EXPECT_EQ(error.offset, 0x80u);
    EXPECT_EQ(error.reason, "AcDb:Header holds 100 bytes, not 636");
}

}  // namespace
