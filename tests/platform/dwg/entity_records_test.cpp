// The DWG writer's entities from their DXF records: the values a record gives and those it
// leaves at their defaults, read back from the encoded object by the reader.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/dwg/blocks.hpp"
#include "platform/dwg/curves.hpp"
#include "platform/dwg/dxf_source.hpp"
#include "platform/dwg/entities.hpp"
#include "platform/dwg/object_stream.hpp"
#include "platform/dwg/texts.hpp"
#include "platform/dwg/write_context.hpp"

using dwg::SourceTag;

namespace {

// A drawing of the least the writer needs (layer 0, the model space), two text styles
// (STANDARD 11, NOTES 12) and the entity records given, whose first handle is 30; their objects
// as encoded.
dwg::EncodedDrawing Encoded(const std::vector<SourceTag>& entities) {
    std::vector<SourceTag> tags = {
        {0, "SECTION"}, {2, "TABLES"},
        {0, "TABLE"}, {2, "LAYER"}, {5, "2"},
        {0, "LAYER"}, {5, "10"}, {2, "0"},
        {0, "ENDTAB"},
        {0, "TABLE"}, {2, "STYLE"}, {5, "3"},
        {0, "STYLE"}, {5, "11"}, {2, "STANDARD"},
        {0, "STYLE"}, {5, "12"}, {2, "NOTES"},
        {0, "ENDTAB"},
        {0, "TABLE"}, {2, "BLOCK_RECORD"}, {5, "1"},
        {0, "BLOCK_RECORD"}, {5, "1F"}, {2, "*MODEL_SPACE"},
        {0, "ENDTAB"},
        {0, "ENDSEC"},
        {0, "SECTION"}, {2, "ENTITIES"}};
    tags.insert(tags.end(), entities.begin(), entities.end());
    tags.insert(tags.end(), {{0, "ENDSEC"}, {0, "EOF"}});
    dwg::SourceDrawing source;
    std::string error;
    EXPECT_TRUE(dwg::ReadSource(tags, source, error)) << error;
    dwg::EncodedDrawing encoded;
    dwg::EncodeSource(source, 1252, encoded);
    return encoded;
}

// The object of a handle opened for its reader; false when there is none.
bool Opened(const dwg::EncodedDrawing& encoded, std::uint64_t handle, dwg::ObjectStreams& o) {
    const auto found = encoded.context.objects.find(handle);
    if (found == encoded.context.objects.end()) return false;
    dwg::MapError error;
    return dwg::OpenObject(found->second, 0, dwg::Version::kR2004, 1252, o, error);
}

dwg::LineRecord LineBack(const std::vector<SourceTag>& line) {
    const dwg::EncodedDrawing encoded = Encoded(line);
    dwg::ObjectStreams o;
    dwg::LineRecord back;
    EXPECT_TRUE(Opened(encoded, 0x30, o) && dwg::ReadLine(o, back));
    return back;
}

dwg::MTextRecord MTextBack(const std::vector<SourceTag>& body) {
    std::vector<SourceTag> tags = {{0, "MTEXT"}, {5, "30"}, {100, "AcDbEntity"}, {8, "0"},
                                   {100, "AcDbMText"}, {10, "1"}, {20, "2"}, {40, "2.5"}, {1, "x"}};
    tags.insert(tags.end(), body.begin(), body.end());
    const dwg::EncodedDrawing encoded = Encoded(tags);
    dwg::ObjectStreams o;
    dwg::MTextRecord back;
    EXPECT_TRUE(Opened(encoded, 0x30, o) && dwg::ReadMText(o, back));
    return back;
}

TEST(DwgEntityRecords, line_keeps_its_thickness) {
    const dwg::LineRecord back = LineBack({{0, "LINE"}, {5, "30"}, {100, "AcDbEntity"}, {8, "0"},
                                           {100, "AcDbLine"}, {39, "2.5"}, {10, "1"}, {20, "2"},
                                           {11, "3"}, {21, "4"}});
    EXPECT_EQ(back.thickness, 2.5);
    EXPECT_EQ(back.start.x, 1.0);
    EXPECT_EQ(back.start.y, 2.0);
    EXPECT_EQ(back.end.x, 3.0);
    EXPECT_EQ(back.end.y, 4.0);
}

TEST(DwgEntityRecords, reactors_and_extension_dictionary_of_an_entity_are_kept) {
    const dwg::LineRecord back = LineBack(
        {{0, "LINE"}, {5, "30"}, {102, "{ACAD_REACTORS"}, {330, "B0"}, {102, "}"},
         {102, "{ACAD_XDICTIONARY"}, {360, "A0"}, {102, "}"}, {100, "AcDbEntity"}, {8, "0"},
         {100, "AcDbLine"}, {10, "0"}, {20, "0"}, {11, "1"}, {21, "1"}});
    EXPECT_EQ(back.common.reactors, std::vector<std::uint64_t>{0xB0});
    EXPECT_EQ(back.common.extensionDictionary, 0xA0u);
}

TEST(DwgEntityRecords, true_colour_is_kept_beside_the_index) {
    const dwg::LineRecord back = LineBack({{0, "LINE"}, {5, "30"}, {100, "AcDbEntity"}, {8, "0"},
                                           {62, "5"}, {420, "16711680"}, {100, "AcDbLine"},
                                           {10, "0"}, {20, "0"}, {11, "1"}, {21, "1"}});
    EXPECT_EQ(back.common.color.rgb, 0xC2FF0000u);
}

TEST(DwgEntityRecords, transparency_given_is_written_and_none_is_not) {
    const std::vector<SourceTag> head = {{0, "LINE"}, {5, "30"}, {100, "AcDbEntity"}, {8, "0"}};
    const std::vector<SourceTag> tail = {{100, "AcDbLine"}, {10, "0"}, {20, "0"}, {11, "1"}, {21, "1"}};
    std::vector<SourceTag> with = head;
    with.push_back({440, "33554661"});
    with.insert(with.end(), tail.begin(), tail.end());
    const dwg::LineRecord seen = LineBack(with);
    EXPECT_TRUE(seen.common.color.hasTransparency);
    EXPECT_EQ(seen.common.color.transparency, 33554661u);
    std::vector<SourceTag> without = head;
    without.insert(without.end(), tail.begin(), tail.end());
    EXPECT_FALSE(LineBack(without).common.color.hasTransparency);
}

TEST(DwgEntityRecords, mtext_without_direction_or_angle_runs_along_x) {
    const dwg::MTextRecord back = MTextBack({});
    EXPECT_EQ(back.direction.x, 1.0);
    EXPECT_EQ(back.direction.y, 0.0);
    EXPECT_EQ(back.direction.z, 0.0);
}

TEST(DwgEntityRecords, mtext_direction_given_wins_over_its_angle) {
    const dwg::MTextRecord back = MTextBack({{11, "0"}, {21, "1"}, {31, "0"}, {50, "180"}});
    EXPECT_EQ(back.direction.x, 0.0);
    EXPECT_EQ(back.direction.y, 1.0);
}

TEST(DwgEntityRecords, mtext_angle_alone_gives_the_direction) {
    const dwg::MTextRecord back = MTextBack({{50, "90"}});
    EXPECT_NEAR(back.direction.x, 0.0, 1e-12);
    EXPECT_NEAR(back.direction.y, 1.0, 1e-12);
}

TEST(DwgEntityRecords, mtext_keeps_its_extents_and_line_spacing) {
    const dwg::MTextRecord back = MTextBack({{42, "12.5"}, {43, "3.25"}, {44, "1.5"}});
    EXPECT_EQ(back.extentsWidth, 12.5);
    EXPECT_EQ(back.extentsHeight, 3.25);
    EXPECT_EQ(back.lineSpacingFactor, 1.5);
}

TEST(DwgEntityRecords, mtext_without_line_spacing_factor_has_one) {
    EXPECT_EQ(MTextBack({}).lineSpacingFactor, 1.0);
}

TEST(DwgEntityRecords, lwpolyline_keeps_points_widths_and_bulges_by_vertex) {
    const dwg::EncodedDrawing encoded = Encoded(
        {{0, "LWPOLYLINE"}, {5, "30"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbPolyline"},
         {90, "2"}, {70, "0"}, {39, "1.5"},
         {10, "1"}, {20, "2"}, {40, "0.5"}, {41, "0.75"}, {42, "0.25"},
         {10, "3"}, {20, "4"}, {40, "0"}, {41, "0"}, {42, "0"}});
    dwg::ObjectStreams o;
    dwg::LwPolylineRecord back;
    ASSERT_TRUE(Opened(encoded, 0x30, o) && dwg::ReadLwPolyline(o, back));
    ASSERT_EQ(back.points.size(), 2u);
    EXPECT_EQ(back.points[0].x, 1.0);
    EXPECT_EQ(back.points[0].y, 2.0);
    EXPECT_EQ(back.points[1].x, 3.0);
    EXPECT_EQ(back.points[1].y, 4.0);
    ASSERT_EQ(back.widths.size(), 2u);
    EXPECT_EQ(back.widths[0].x, 0.5);
    EXPECT_EQ(back.widths[0].y, 0.75);
    ASSERT_EQ(back.bulges.size(), 2u);
    EXPECT_EQ(back.bulges[0], 0.25);
    EXPECT_EQ(back.bulges[1], 0.0);
    EXPECT_EQ(back.thickness, 1.5);
}

TEST(DwgEntityRecords, text_keeps_its_alignment_point_and_oblique_angle) {
    const dwg::EncodedDrawing encoded = Encoded(
        {{0, "TEXT"}, {5, "30"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbText"},
         {10, "1"}, {20, "2"}, {30, "0"}, {40, "2.5"}, {1, "x"}, {51, "15"}, {72, "1"},
         {11, "5"}, {21, "6"}, {31, "0"}, {100, "AcDbText"}});
    dwg::ObjectStreams o;
    dwg::TextRecord back;
    ASSERT_TRUE(Opened(encoded, 0x30, o) && dwg::ReadText(o, back));
    EXPECT_EQ(back.alignment.x, 5.0);
    EXPECT_EQ(back.alignment.y, 6.0);
    EXPECT_NEAR(back.oblique, 15 * M_PI / 180, 1e-12);
    EXPECT_EQ(back.horizontal, 1);
}

TEST(DwgEntityRecords, text_without_width_factor_has_one) {
    const dwg::EncodedDrawing encoded = Encoded(
        {{0, "TEXT"}, {5, "30"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbText"},
         {10, "1"}, {20, "2"}, {30, "0"}, {40, "2.5"}, {1, "x"}, {100, "AcDbText"}});
    dwg::ObjectStreams o;
    dwg::TextRecord back;
    ASSERT_TRUE(Opened(encoded, 0x30, o) && dwg::ReadText(o, back));
    EXPECT_EQ(back.widthFactor, 1.0);
}

// A text names its style, or has the standard one when it names none.
TEST(DwgEntityRecords, texts_refer_to_the_style_they_name_or_the_standard_one) {
    const dwg::EncodedDrawing encoded = Encoded(
        {{0, "TEXT"}, {5, "30"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbText"},
         {10, "1"}, {20, "2"}, {40, "2.5"}, {1, "x"}, {100, "AcDbText"},
         {0, "TEXT"}, {5, "31"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbText"},
         {10, "1"}, {20, "2"}, {40, "2.5"}, {1, "x"}, {7, "NOTES"}, {100, "AcDbText"},
         {0, "MTEXT"}, {5, "32"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbMText"},
         {10, "1"}, {20, "2"}, {40, "2.5"}, {1, "x"},
         {0, "MTEXT"}, {5, "33"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbMText"},
         {10, "1"}, {20, "2"}, {40, "2.5"}, {1, "x"}, {7, "NOTES"}});
    const std::pair<std::uint64_t, std::uint64_t> texts[] = {{0x30, 0x11}, {0x31, 0x12}};
    for (const auto& [handle, style] : texts) {
        dwg::ObjectStreams o;
        dwg::TextRecord back;
        ASSERT_TRUE(Opened(encoded, handle, o) && dwg::ReadText(o, back));
        EXPECT_EQ(back.style, style) << handle;
    }
    const std::pair<std::uint64_t, std::uint64_t> mtexts[] = {{0x32, 0x11}, {0x33, 0x12}};
    for (const auto& [handle, style] : mtexts) {
        dwg::ObjectStreams o;
        dwg::MTextRecord back;
        ASSERT_TRUE(Opened(encoded, handle, o) && dwg::ReadMText(o, back));
        EXPECT_EQ(back.style, style) << handle;
    }
}

TEST(DwgEntityRecords, polyline_keeps_its_flags_curve_type_widths_and_thickness) {
    const dwg::EncodedDrawing encoded = Encoded(
        {{0, "POLYLINE"}, {5, "30"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDb2dPolyline"},
         {66, "1"}, {10, "0"}, {20, "0"}, {30, "0"}, {39, "2"}, {70, "5"}, {40, "0.5"},
         {41, "0.75"}, {75, "6"},
         {0, "VERTEX"}, {5, "31"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbVertex"},
         {100, "AcDb2dVertex"}, {10, "1"}, {20, "2"}, {30, "0"},
         {0, "SEQEND"}, {5, "32"}, {100, "AcDbEntity"}, {8, "0"}});
    dwg::ObjectStreams o;
    dwg::PolylineRecord back;
    ASSERT_TRUE(Opened(encoded, 0x30, o) && dwg::ReadPolyline(o, back));
    EXPECT_EQ(back.flags, 5);
    EXPECT_EQ(back.curveType, 6);
    EXPECT_EQ(back.startWidth, 0.5);
    EXPECT_EQ(back.endWidth, 0.75);
    EXPECT_EQ(back.thickness, 2.0);
}

TEST(DwgEntityRecords, solid_keeps_its_four_corners_elevation_and_thickness) {
    const dwg::EncodedDrawing encoded = Encoded(
        {{0, "SOLID"}, {5, "30"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbTrace"},
         {10, "1"}, {20, "2"}, {30, "7"}, {11, "3"}, {21, "4"}, {31, "7"},
         {12, "5"}, {22, "6"}, {32, "7"}, {13, "8"}, {23, "9"}, {33, "7"}, {39, "0.5"}});
    dwg::ObjectStreams o;
    dwg::SolidRecord back;
    ASSERT_TRUE(Opened(encoded, 0x30, o) && dwg::ReadSolid(o, back));
    const double corners[4][2] = {{1, 2}, {3, 4}, {5, 6}, {8, 9}};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(back.corners[i].x, corners[i][0]) << i;
        EXPECT_EQ(back.corners[i].y, corners[i][1]) << i;
    }
    EXPECT_EQ(back.elevation, 7.0);
    EXPECT_EQ(back.thickness, 0.5);
}

TEST(DwgEntityRecords, insert_without_columns_or_rows_is_a_single_insert) {
    const dwg::EncodedDrawing encoded = Encoded(
        {{0, "INSERT"}, {5, "30"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbBlockReference"},
         {2, "*MODEL_SPACE"}, {10, "1"}, {20, "2"}});
    dwg::ObjectStreams o;
    ASSERT_TRUE(Opened(encoded, 0x30, o));
    EXPECT_EQ(o.type, dwg::kInsert);
}

TEST(DwgEntityRecords, insert_with_columns_and_rows_is_a_minsert_with_its_spacing) {
    const dwg::EncodedDrawing encoded = Encoded(
        {{0, "INSERT"}, {5, "30"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbBlockReference"},
         {2, "*MODEL_SPACE"}, {10, "1"}, {20, "2"}, {70, "3"}, {71, "2"}, {44, "10"}, {45, "20"}});
    dwg::ObjectStreams o;
    dwg::InsertRecord back;
    ASSERT_TRUE(Opened(encoded, 0x30, o));
    ASSERT_EQ(o.type, dwg::kMinsert);
    ASSERT_TRUE(dwg::ReadInsert(o, back, true));
    EXPECT_EQ(back.columns, 3);
    EXPECT_EQ(back.rows, 2);
    EXPECT_EQ(back.columnSpacing, 10.0);
    EXPECT_EQ(back.rowSpacing, 20.0);
}

TEST(DwgEntityRecords, vertex_keeps_its_widths_bulge_and_tangent) {
    const dwg::EncodedDrawing encoded = Encoded(
        {{0, "POLYLINE"}, {5, "30"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDb2dPolyline"},
         {66, "1"}, {10, "0"}, {20, "0"}, {30, "0"}, {70, "2"},
         {0, "VERTEX"}, {5, "31"}, {100, "AcDbEntity"}, {8, "0"}, {100, "AcDbVertex"},
         {100, "AcDb2dVertex"}, {10, "1"}, {20, "2"}, {30, "0"}, {40, "0.5"}, {41, "0.75"},
         {42, "0.25"}, {70, "2"}, {50, "90"},
         {0, "SEQEND"}, {5, "32"}, {100, "AcDbEntity"}, {8, "0"}});
    dwg::ObjectStreams o;
    dwg::VertexRecord back;
    ASSERT_TRUE(Opened(encoded, 0x31, o) && dwg::ReadVertex(o, back));
    EXPECT_EQ(back.startWidth, 0.5);
    EXPECT_EQ(back.endWidth, 0.75);
    EXPECT_EQ(back.bulge, 0.25);
    EXPECT_NEAR(back.tangent, M_PI / 2, 1e-12);
}

}  // namespace
