#include "platform/dwg/classes.hpp"

#include <gtest/gtest.h>

#include "platform/dwg/bit_writer.hpp"
#include "platform/dwg/corpus_files.hpp"

namespace {

const std::vector<std::uint8_t> kSentinel = {0x8D, 0xA1, 0xC4, 0xB8, 0xC4, 0xA9, 0xF8, 0xC5,
                                             0xC0, 0xDC, 0xF4, 0x5F, 0xE7, 0xCF, 0xB6, 0x8A};

std::vector<std::uint8_t> Section(const dwg_test::BitWriter& data) {
    std::vector<std::uint8_t> out = kSentinel;
    const auto size = static_cast<std::uint32_t>(data.bytes.size());
    for (int i = 0; i < 4; ++i) out.push_back(static_cast<std::uint8_t>(size >> (8 * i)));
    out.insert(out.end(), data.bytes.begin(), data.bytes.end());
    const auto crc = dwg::Crc16(0xC0C1, std::span(out).subspan(16));
    out.push_back(static_cast<std::uint8_t>(crc));
    out.push_back(static_cast<std::uint8_t>(crc >> 8));
    out.insert(out.end(), 16, 0);  // the end sentinel is not read
    return out;
}

void WriteClass(dwg_test::BitWriter& w, int number, const std::string& dxfName, bool entity) {
    w.BS(number);
    w.BS(0x481);
    w.TV("ObjectDBX Classes");
    w.TV("AcDb" + dxfName);
    w.TV(dxfName);
    w.B(false);
    w.BS(entity ? 0x1F2 : 0x1F3);
}

TEST(DwgClasses, records_of_a_2000_section) {
    dwg_test::BitWriter w;
    WriteClass(w, 500, "ACDBDICTIONARYWDFLT", false);
    WriteClass(w, 501, "LWPOLYLINE", true);
    std::vector<dwg::ClassRecord> classes;
    dwg::MapError error;
    ASSERT_TRUE(dwg::ParseClasses(Section(w), dwg::Version::kR2000, 0, 1252, classes, error))
        << error.reason;
    ASSERT_EQ(classes.size(), 2u);
    EXPECT_EQ(classes[1].number, 501);
    EXPECT_EQ(classes[1].dxfName, "LWPOLYLINE");
    EXPECT_EQ(classes[1].cppName, "AcDbLWPOLYLINE");
    EXPECT_EQ(classes[1].proxyFlags, 0x481);
    EXPECT_TRUE(classes[1].isEntity);
    EXPECT_FALSE(classes[0].isEntity);
    EXPECT_EQ(dwg::TypeName(501, classes), "LWPOLYLINE");
    EXPECT_EQ(dwg::TypeName(19, classes), "LINE");
    EXPECT_EQ(dwg::TypeName(13, classes), "VERTEX");
    EXPECT_EQ(dwg::TypeName(14, classes), "VERTEX");
    EXPECT_EQ(dwg::TypeName(502, classes), "");
}

TEST(DwgClasses, crc_mismatch_is_reported) {
    dwg_test::BitWriter w;
    WriteClass(w, 500, "XRECORD", false);
    auto section = Section(w);
    section[25] ^= 0x10;
    std::vector<dwg::ClassRecord> classes;
    dwg::MapError error;
    EXPECT_FALSE(dwg::ParseClasses(section, dwg::Version::kR2000, 0, 1252, classes, error));
    EXPECT_EQ(error.reason, "classes section CRC mismatch");
}

TEST(DwgClasses, section_without_sentinel_is_refused) {
    std::vector<std::uint8_t> section(40, 0);
    std::vector<dwg::ClassRecord> classes;
    dwg::MapError error;
    EXPECT_FALSE(dwg::ParseClasses(section, dwg::Version::kR2000, 0, 1252, classes, error));
    EXPECT_EQ(error.offset, 0u);
}

TEST(DwgClasses, size_past_the_section_is_refused) {
    dwg_test::BitWriter w;
    WriteClass(w, 500, "XRECORD", false);
    auto section = Section(w);
    section[17] = 0x7F;
    std::vector<dwg::ClassRecord> classes;
    dwg::MapError error;
    EXPECT_FALSE(dwg::ParseClasses(section, dwg::Version::kR2000, 0, 1252, classes, error));
    EXPECT_EQ(error.offset, 16u);
}

TEST(DwgClasses, section_cut_after_its_size_is_refused) {
    std::vector<std::uint8_t> section = kSentinel;
    section.insert(section.end(), {0, 0, 0, 0, 0});  // a size of 0 and no room for the CRC
    std::vector<dwg::ClassRecord> classes;
    dwg::MapError error;
    EXPECT_FALSE(dwg::ParseClasses(section, dwg::Version::kR2000, 0, 1252, classes, error));
    EXPECT_EQ(error.offset, 16u);
}

TEST(DwgClasses, corpus_2000_and_r14_drawings_name_their_classes) {
    for (const auto& [name, version] : {std::pair{"example_2000.dwg", dwg::Version::kR2000},
                                        std::pair{"example_r14.dwg", dwg::Version::kR14}}) {
        SCOPED_TRACE(name);
        const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath(name));
        std::vector<dwg::ClassRecord> classes;
        dwg::MapError error;
        ASSERT_TRUE(dwg::ParseClasses(dwg_test::FileSection(file, dwg::kClassesSection), version, 0, 1252, classes,
                                      error))
            << error.reason;
        ASSERT_GT(classes.size(), 5u);
        EXPECT_EQ(classes.front().number, 500);
        for (std::size_t i = 0; i < classes.size(); ++i) {
            EXPECT_EQ(classes[i].number, 500 + static_cast<int>(i));
            EXPECT_FALSE(classes[i].dxfName.empty());
        }
    }
}

}  // namespace

// The fixed types are named from 1 to 499, the gaps and others by the drawing's classes alone.
TEST(DwgClasses, type_is_named_by_the_fixed_names_then_by_the_classes) {
    dwg::ClassRecord mine;
    mine.number = 500;
    mine.dxfName = "ACDBDICTIONARYWDFLT";
    const std::vector<dwg::ClassRecord> classes = {mine};
    EXPECT_EQ(dwg::TypeName(1, classes), "TEXT");
    EXPECT_EQ(dwg::TypeName(73, classes), "MLINESTYLE");
    EXPECT_EQ(dwg::TypeName(82, classes), "LAYOUT");
    EXPECT_EQ(dwg::TypeName(498, classes), "ACAD_PROXY_ENTITY");
    EXPECT_EQ(dwg::TypeName(499, classes), "ACAD_PROXY_OBJECT");
    EXPECT_EQ(dwg::TypeName(500, classes), "ACDBDICTIONARYWDFLT");
    for (int none : {-1, 0, 9, 75, 497, 501}) EXPECT_EQ(dwg::TypeName(none, classes), "") << none;
}
