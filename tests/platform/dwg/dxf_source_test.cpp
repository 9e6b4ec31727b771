// The DWG writer's view of a drawing's DXF tags: records split at each 0 tag, sections and
// tables grouped, header variables by name, a record's subclasses by marker.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/dwg/dxf_source.hpp"

using dwg::SourceTag;

namespace {

std::vector<SourceTag> DrawingTags() {
    return {{999, "before any record"},
            {0, "SECTION"}, {2, "HEADER"},
            {9, "$LTSCALE"}, {40, "2.5"},
            {9, "$DIMSTYLE"}, {2, "ISO-25"},
            {0, "ENDSEC"},
            {0, "SECTION"}, {2, "TABLES"},
            {0, "TABLE"}, {2, "LAYER"}, {5, "2"},
            {0, "LAYER"}, {5, "10"}, {2, "0"},
            {0, "ENDTAB"},
            {0, "ENDSEC"},
            {0, "SECTION"}, {2, "ENTITIES"},
            {0, "LINE"}, {5, "20"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbLine"}, {10, "1"}, {9, "$NOT"},
            {0, "ENDSEC"},
            {0, "EOF"}};
}

TEST(DwgSource, groups_sections_tables_and_header_variables) {
    const std::vector<SourceTag> tags = DrawingTags();
    dwg::SourceDrawing source;
    std::string error;
    ASSERT_TRUE(dwg::ReadSource(tags, source, error)) << error;
    ASSERT_EQ(source.header.size(), 2u);
    EXPECT_EQ(source.variable("$LTSCALE")->real(40), 2.5);
    // A variable keeps its 2 tag: only the section's own name is not a variable's.
    EXPECT_EQ(source.variable("$DIMSTYLE")->text(2), "ISO-25");
    EXPECT_EQ(source.variable("$NOT"), nullptr);
    ASSERT_EQ(source.tables.size(), 1u);
    EXPECT_EQ(source.tables[0].name, "LAYER");
    EXPECT_EQ(source.tables[0].handle, 2u);
    ASSERT_EQ(source.tables[0].records.size(), 1u);
    EXPECT_EQ(source.tables[0].records[0].handle(5), 0x10u);
    ASSERT_EQ(source.entities.size(), 1u);
    EXPECT_EQ(source.entities[0].type, "LINE");
    EXPECT_EQ(source.entities[0].tags.size(), 6u);
}

TEST(DwgSource, drawing_without_tables_is_refused) {
    const std::vector<SourceTag> tags = {{0, "SECTION"}, {2, "ENTITIES"}, {0, "ENDSEC"}, {0, "EOF"}};
    dwg::SourceDrawing source;
    std::string error;
    EXPECT_FALSE(dwg::ReadSource(tags, source, error));
    EXPECT_EQ(error, "the drawing has no tables");
}

TEST(DwgSource, subclass_runs_from_its_marker_to_the_next) {
    const std::vector<SourceTag> tags = {{5, "20"}, {100, "AcDbEntity"}, {8, "0"}, {62, "1"},
                                         {100, "AcDbLine"}, {10, "1"}};
    const dwg::SourceRecord line{"LINE", tags};
    const dwg::SourceRecord entity = line.subclass("AcDbEntity");
    ASSERT_EQ(entity.tags.size(), 2u);
    EXPECT_EQ(entity.text(8), "0");
    EXPECT_EQ(entity.integer(62), 1);
    EXPECT_EQ(line.subclass("AcDbLine").tags.size(), 1u);
}

TEST(DwgSource, subclass_that_the_record_lacks_is_empty) {
    const std::vector<SourceTag> tags = {{5, "20"}, {100, "AcDbEntity"}, {8, "0"}};
    const dwg::SourceRecord line{"LINE", tags};
    EXPECT_TRUE(line.subclass("AcDbLine").tags.empty());
    EXPECT_TRUE(line.subclass("").tags.empty());
}

}  // namespace

// A handle's text: hexadecimal digits of either case up to the first other character; none
// (0) for no digits or for more than 64 bits.
TEST(DwgSource, handle_text_reads_its_leading_hexadecimal_digits) {
    EXPECT_EQ(dwg::ParseHandle("1F"), 0x1Fu);
    EXPECT_EQ(dwg::ParseHandle("a9b"), 0xA9Bu);
    EXPECT_EQ(dwg::ParseHandle("09afAF"), 0x09AFAFu);
    EXPECT_EQ(dwg::ParseHandle("2G5"), 2u);
    EXPECT_EQ(dwg::ParseHandle("2:"), 2u);
    EXPECT_EQ(dwg::ParseHandle("2@"), 2u);
    EXPECT_EQ(dwg::ParseHandle("2`"), 2u);
    EXPECT_EQ(dwg::ParseHandle(""), 0u);
    EXPECT_EQ(dwg::ParseHandle("-5"), 0u);
    EXPECT_EQ(dwg::ParseHandle("FFFFFFFFFFFFFFFF"), 0xFFFFFFFFFFFFFFFFu);
    EXPECT_EQ(dwg::ParseHandle("0000FFFFFFFFFFFFFFFF"), 0xFFFFFFFFFFFFFFFFu);
    EXPECT_EQ(dwg::ParseHandle("10000000000000000"), 0u);
}
