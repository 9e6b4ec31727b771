// The file container: every corpus drawing opens, its object map resolves and every object it
// lists frames with a good CRC; damage gives the file offset and the reason.
#include "platform/dwg/container.hpp"

#include <gtest/gtest.h>

#include "platform/db/database.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/object_map.hpp"
#include "platform/dwg/object_stream.hpp"
#include "platform/dwg/read.hpp"
#include "platform/win/codepage.hpp"

namespace {

using Bytes = std::vector<std::uint8_t>;

struct CorpusCase {
    const char* name;
    dwg::Version version;
};

std::string CaseName(const testing::TestParamInfo<CorpusCase>& info) {
    std::string name = info.param.name;
    for (char& c : name) {
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    }
    return name;
}

class CorpusContainer : public testing::TestWithParam<CorpusCase> {};

// The container's sections carry the drawing: the header variables and classes decode, and
// every object of the map frames in the object data with its CRC.
TEST_P(CorpusContainer, opens_and_every_object_of_the_map_frames) {
    const Bytes file = dwg_test::ReadFileBytes(dwg_test::CorpusPath(GetParam().name));
    ASSERT_FALSE(file.empty());
    dwg::DwgContainer container;
    dwg::MapError error;
    ASSERT_TRUE(dwg::ReadDwgContainer(file, container, error))
        << error.reason << " at " << error.offset;
    EXPECT_EQ(container.version, GetParam().version);
    const dwg::DwgSections sections = dwg::SectionsOf(container, file);
    // The header variables and classes open with their sentinels (decoding them is the
    // decoders' test).
    ASSERT_GT(sections.header.size(), 16u);
    EXPECT_EQ(sections.header[0], 0xCF);
    ASSERT_GT(sections.classes.size(), 16u);
    EXPECT_EQ(sections.classes[0], 0x8D);
    std::vector<dwg::ObjectLocation> map;
    ASSERT_TRUE(dwg::ParseObjectMap(sections.objectMap, map, error))
        << error.reason << " at " << error.offset;
    ASSERT_GT(map.size(), 20u);
    for (const dwg::ObjectLocation& location : map) {
        dwg::ObjectStreams object;
        ASSERT_TRUE(dwg::OpenObject(sections.objects, location.offset, sections.version,
                                    sections.codePage, object, error))
            << std::hex << "handle " << location.handle << ": " << error.reason;
        EXPECT_EQ(object.handle, location.handle);
    }
}

// The bytes an object takes in the object data (what the read gives back once the object is
// decoded for the last time) end with its CRC: a byte more or fewer and the CRC of what comes
// before would not be the two bytes at the end.
TEST_P(CorpusContainer, every_object_takes_the_bytes_up_to_its_crc) {
    const Bytes file = dwg_test::ReadFileBytes(dwg_test::CorpusPath(GetParam().name));
    dwg::DwgContainer container;
    dwg::MapError error;
    ASSERT_TRUE(dwg::ReadDwgContainer(file, container, error)) << error.reason;
    const dwg::DwgSections sections = dwg::SectionsOf(container, file);
    std::vector<dwg::ObjectLocation> map;
    ASSERT_TRUE(dwg::ParseObjectMap(sections.objectMap, map, error)) << error.reason;
    for (const dwg::ObjectLocation& location : map) {
        const auto offset = static_cast<std::size_t>(location.offset);
        const std::size_t extent = dwg::StoredExtent(sections.objects, offset, sections.version);
        ASSERT_GE(extent, 4u) << std::hex << "handle " << location.handle;
        ASSERT_LE(offset + extent, sections.objects.size());
        const auto crc = static_cast<std::uint16_t>(sections.objects[offset + extent - 2] |
                                                    sections.objects[offset + extent - 1] << 8);
        EXPECT_EQ(dwg::Crc16(0xC0C1, sections.objects.subspan(offset, extent - 2)), crc)
            << std::hex << "handle " << location.handle;
    }
}

const CorpusCase kCorpus[] = {
    {"example_r14.dwg", dwg::Version::kR14},
    {"Leader.dwg", dwg::Version::kR14},
    {"example_2000.dwg", dwg::Version::kR2000},
    {"color_sample_AC1015.dwg", dwg::Version::kR2000},
    {"entities-2d.dwg", dwg::Version::kR2000},
    {"example_2004.dwg", dwg::Version::kR2004},
    {"color_sample_AC1018.dwg", dwg::Version::kR2004},
    {"HatchG.dwg", dwg::Version::kR2004},
    {"example_2007.dwg", dwg::Version::kR2007},
    {"ATMOS-DC22S.dwg", dwg::Version::kR2007},
    {"oda_conversion.dwg", dwg::Version::kR2007},
    {"example_2010.dwg", dwg::Version::kR2010},
    {"gh209_1.dwg", dwg::Version::kR2010},
    {"sample_MLeader_AC1024.dwg", dwg::Version::kR2010},
    {"example_2013.dwg", dwg::Version::kR2013},
    {"dim_linear_tutorial.dwg", dwg::Version::kR2013},
    {"gh109_1.dwg", dwg::Version::kR2013},
    {"gh44-error.dwg", dwg::Version::kR2013},
    {"t1.dwg", dwg::Version::kR2013},
    {"example_2018.dwg", dwg::Version::kR2018},
    {"dynblock_r2018.dwg", dwg::Version::kR2018},
    {"large_radial.dwg", dwg::Version::kR2018},
    {"sample_AC1032.dwg", dwg::Version::kR2018},
    {"sample_MLeader_AC1032.dwg", dwg::Version::kR2018},
};

INSTANTIATE_TEST_SUITE_P(Corpus, CorpusContainer, testing::ValuesIn(kCorpus), CaseName);

Bytes Example2000() { return dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_2000.dwg")); }

dwg::MapError ContainerError(const Bytes& file) {
    dwg::DwgContainer container;
    dwg::MapError error;
    EXPECT_FALSE(dwg::ReadDwgContainer(file, container, error));
    return error;
}

TEST(DwgContainer, r2000_sections_are_ranges_of_the_file_named_as_from_2004_on) {
    const Bytes file = Example2000();
    dwg::DwgContainer container;
    dwg::MapError error;
    ASSERT_TRUE(dwg::ReadDwgContainer(file, container, error)) << error.reason;
    EXPECT_EQ(container.maintenance, 0x0F);
    EXPECT_EQ(container.dwgCodePage, 30);
    std::vector<std::string> names;
    for (const auto& section : container.sections) names.push_back(section.name);
    EXPECT_EQ(names, (std::vector<std::string>{"AcDb:Header", "AcDb:Classes", "AcDb:Handles",
                                               "AcDb:Template", "AcDb:AuxHeader",
                                               "AcDb:Preview"}));
    // Locator 0: offset 24603, 578 bytes; the preview at 220 holds 24347 bytes of images.
    const auto header = dwg::FindSection(container, "AcDb:Header");
    EXPECT_EQ(header.data(), file.data() + 24603);
    EXPECT_EQ(header.size(), 578u);
    const auto preview = dwg::FindSection(container, "AcDb:Preview");
    EXPECT_EQ(preview.data(), file.data() + 220);
    EXPECT_EQ(preview.size(), 16u + 4 + 24347 + 16);
    EXPECT_TRUE(dwg::FindSection(container, "AcDb:SummaryInfo").empty());
    const dwg::DwgSections sections = dwg::SectionsOf(container, file);
    EXPECT_EQ(sections.objects.data(), file.data());  // map offsets count from the file's start
    EXPECT_EQ(sections.objects.size(), file.size());
    EXPECT_EQ(sections.codePage, 1252);
    EXPECT_EQ(sections.maintenance, 0x0F);
}

TEST(DwgContainer, an_unknown_version_is_refused_at_offset_0) {
    Bytes file = Example2000();
    file[5] = '9';  // AC1019
    const auto error = ContainerError(file);
    EXPECT_EQ(error.offset, 0u);
    EXPECT_EQ(error.reason, "not a DWG version this reader knows");
}

TEST(DwgContainer, a_file_cut_inside_its_header_is_truncated_at_its_end) {
    for (std::size_t size : {std::size_t{6}, std::size_t{0x18}, std::size_t{0x19 + 9 * 6 + 10}}) {
        Bytes file = Example2000();
        file.resize(size);
        const auto error = ContainerError(file);
        EXPECT_EQ(error.offset, size);
        EXPECT_EQ(error.reason, "the file header is truncated");
    }
}

TEST(DwgContainer, a_changed_file_header_byte_fails_its_crc) {
    Bytes file = Example2000();
    file[0x19 + 1] ^= 0x01;  // the header section's offset
    const auto error = ContainerError(file);
    EXPECT_EQ(error.offset, 0x19u + 9 * 6);
    EXPECT_EQ(error.reason, "file header CRC mismatch");
}

TEST(DwgContainer, the_crc_mask_follows_the_locator_count) {
    Bytes file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("example_r14.dwg"));
    dwg::DwgContainer container;
    dwg::MapError error;
    EXPECT_TRUE(dwg::ReadDwgContainer(file, container, error)) << error.reason;  // 5 locators
    file[0x15] = 6;  // the R14 CRC no longer matches the mask of six
    EXPECT_EQ(ContainerError(file).reason, "file header CRC mismatch");
}

TEST(DwgContainer, a_locator_count_without_a_crc_mask_is_refused) {
    for (std::uint8_t count : {2, 7}) {
        Bytes file = Example2000();
        file[0x15] = count;
        const auto error = ContainerError(file);
        EXPECT_EQ(error.offset, 0x15u);
        EXPECT_EQ(error.reason,
                  "the file header lists " + std::to_string(count) + " section locators");
    }
}

TEST(DwgContainer, a_broken_file_header_sentinel_is_refused) {
    Bytes file = Example2000();
    const std::size_t sentinel = 0x19 + 9 * 6 + 2;
    file[sentinel + 15] ^= 0xFF;
    const auto error = ContainerError(file);
    EXPECT_EQ(error.offset, sentinel);
    EXPECT_EQ(error.reason, "the file header does not end with its sentinel");
}

// The file header's CRC for its six locators, as a writer of the changed header would set it.
void FixHeaderCrc(Bytes& file) {
    const std::size_t crcAt = 0x19 + 9 * 6;
    const std::uint16_t crc = dwg::Crc16(0, std::span(file).first(crcAt)) ^ 0x8461;
    file[crcAt] = static_cast<std::uint8_t>(crc);
    file[crcAt + 1] = static_cast<std::uint8_t>(crc >> 8);
}

void SetLocator(Bytes& file, std::size_t index, std::uint32_t seek, std::uint32_t size) {
    std::uint8_t* record = file.data() + 0x19 + 9 * index;
    std::memcpy(record + 1, &seek, 4);
    std::memcpy(record + 5, &size, 4);
    FixHeaderCrc(file);
}

TEST(DwgContainer, a_section_past_the_end_of_the_file_names_its_locator) {
    Bytes file = Example2000();
    SetLocator(file, 2, static_cast<std::uint32_t>(file.size() - 100), 101);
    auto error = ContainerError(file);
    EXPECT_EQ(error.offset, 0x19u + 9 * 2);
    EXPECT_EQ(error.reason, "AcDb:Handles runs past the end of the file");
    SetLocator(file, 2, static_cast<std::uint32_t>(file.size() - 100), 100);  // just fits
    dwg::DwgContainer container;
    EXPECT_TRUE(dwg::ReadDwgContainer(file, container, error)) << error.reason;
    SetLocator(file, 2, 0xFFFFFFF0u, 0x20);  // would wrap around in 32 bits
    EXPECT_EQ(ContainerError(file).reason, "AcDb:Handles runs past the end of the file");
}

TEST(DwgContainer, header_and_classes_sentinels_are_checked_at_both_ends) {
    const struct {
        std::size_t changed, offset;
        std::string reason;
    } cases[] = {
        {24603, 24603, "AcDb:Header does not start with its sentinel"},
        {24603 + 578 - 16, 24603 + 578 - 16, "AcDb:Header does not end with its sentinel"},
        {25181 + 15, 25181, "AcDb:Classes does not start with its sentinel"},
        {25181 + 2490 - 1, 25181 + 2490 - 16, "AcDb:Classes does not end with its sentinel"},
    };
    for (const auto& c : cases) {
        Bytes file = Example2000();
        file[c.changed] ^= 0x10;
        const auto error = ContainerError(file);
        EXPECT_EQ(error.reason, c.reason);
        EXPECT_EQ(error.offset, c.offset) << c.reason;
    }
}

TEST(DwgContainer, a_section_too_short_for_its_sentinels_is_refused) {
    Bytes file = Example2000();
    SetLocator(file, 0, 24603, 31);
    const auto error = ContainerError(file);
    EXPECT_EQ(error.offset, 24603u);
    EXPECT_EQ(error.reason, "AcDb:Header does not start with its sentinel");
}

TEST(DwgContainer, a_file_without_an_object_map_is_refused) {
    Bytes file = Example2000();
    SetLocator(file, 2, 0, 0);
    const auto error = ContainerError(file);
    EXPECT_EQ(error.reason, "the file has no AcDb:Handles section");
    EXPECT_EQ(error.offset, 0x19u);
}

TEST(DwgContainer, an_unknown_locator_number_is_refused) {
    Bytes file = Example2000();
    file[0x19 + 9 * 3] = 6;
    SetLocator(file, 3, 0, 0);
    const auto error = ContainerError(file);
    EXPECT_EQ(error.offset, 0x19u + 9 * 3);
    EXPECT_EQ(error.reason, "unknown section locator 6");
}

TEST(DwgContainer, a_damaged_preview_is_left_out_and_the_drawing_still_opens) {
    Bytes file = Example2000();
    file[220 + 16 + 4 + 24347 + 3] ^= 0x01;  // the closing sentinel
    dwg::DwgContainer container;
    dwg::MapError error;
    ASSERT_TRUE(dwg::ReadDwgContainer(file, container, error)) << error.reason;
    EXPECT_TRUE(dwg::FindSection(container, "AcDb:Preview").empty());
    Bytes noPreview = Example2000();
    noPreview[0x0D] = 0;  // no image at all
    FixHeaderCrc(noPreview);
    ASSERT_TRUE(dwg::ReadDwgContainer(noPreview, container, error)) << error.reason;
    EXPECT_EQ(container.sections.size(), 5u);
}

TEST(DwgContainer, a_whole_r2000_file_reads_into_a_database_through_the_container) {
    const Bytes file = Example2000();
    AcDbDatabase db(false, true);
    ASSERT_EQ(dwg::ReadDwgBytes(db, file, "example_2000.dwg"), Acad::eOk)
        << Utf8FromWide(db.lastError());
    EXPECT_EQ(db.originalFileVersion(), AcDb::kDHL_1015);
    EXPECT_FALSE(db.stubs().empty());
}

TEST(DwgContainer, a_damaged_container_leaves_the_database_empty_and_names_offset_and_reason) {
    Bytes file = Example2000();
    file[0x19 + 1] ^= 0x01;
    AcDbDatabase db(false, true);
    EXPECT_EQ(dwg::ReadDwgBytes(db, file, "bad.dwg"), Acad::eDwgNeedsRecovery);
    EXPECT_EQ(Utf8FromWide(db.lastError()), "bad.dwg: offset 79: file header CRC mismatch");
    EXPECT_TRUE(db.stubs().empty());
}

}  // namespace
