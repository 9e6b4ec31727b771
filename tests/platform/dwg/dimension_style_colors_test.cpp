// A dimension style's dimension line, extension line and text colours (DIMCLRD, DIMCLRE,
// DIMCLRT) keep their true colours: read from DWG, written to DWG and read again. Their DXF
// record gives the indexes alone (176-178), as AutoCAD's DXF does.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "corpus_files.hpp"
#include "object_bits.hpp"
#include "platform/db/database.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/dwg/read.hpp"
#include "platform/dxf/dxf.hpp"

namespace {

constexpr std::uint64_t kCustomStyle = 0x244;  // color_sample_AC1018's custom_dim_style

struct StyleColors {
    AcCmColor line, extension, text;
};

// The colours of the dimension style of a handle; eOk or why not.
Acad::ErrorStatus ColorsOf(AcDbDatabase& db, std::uint64_t handle, StyleColors& out) {
    AcDbObjectId id;
    Acad::ErrorStatus es = db.getAcDbObjectId(id, false, AcDbHandle(handle));
    if (es != Acad::eOk) return es;
    AcDbObject* object = nullptr;
    es = acdbOpenAcDbObject(object, id, AcDb::kForRead);
    if (es != Acad::eOk) return es;
    const auto* style = AcDbDimStyleTableRecord::cast(object);
    if (style != nullptr) out = {style->dimclrd(), style->dimclre(), style->dimclrt()};
    object->close();
    return style != nullptr ? Acad::eOk : Acad::eWrongObjectType;
}

AcCmColor TrueColor(std::uint16_t index, std::uint32_t rgb) {
    AcCmColor c;
    c.setColorIndex(index);
    c.setTrueColor(rgb);
    return c;
}

void ReadColorSample(AcDbDatabase& db) {
    const auto file = dwg_test::ReadFileBytes(dwg_test::CorpusPath("color_sample_AC1018.dwg"));
    ASSERT_EQ(dwg::ReadDwgBytes(db, file, "color_sample_AC1018.dwg"), Acad::eOk);
}

void ExpectSampleColors(const StyleColors& colors) {
    EXPECT_EQ(colors.line, TrueColor(0, 0x2C881B));
    EXPECT_EQ(colors.extension, TrueColor(0, 0x803DC2));
    EXPECT_EQ(colors.text, TrueColor(0, 0x50B3FF));
}

TEST(DimensionStyleColors, true_colours_are_read_from_dwg) {
    AcDbDatabase db(false, true);
    ReadColorSample(db);
    StyleColors colors;
    ASSERT_EQ(ColorsOf(db, kCustomStyle, colors), Acad::eOk);
    ExpectSampleColors(colors);
}

TEST(DimensionStyleColors, true_colours_survive_a_dwg_write_and_read) {
    AcDbDatabase db(false, true);
    ReadColorSample(db);
    AcDbDatabase again(false, true);
    ASSERT_EQ(dwg::ReadDwgBytes(again, dwg_test::OwnEncoding(db, 1252), "again.dwg"), Acad::eOk);
    StyleColors colors;
    ASSERT_EQ(ColorsOf(again, kCustomStyle, colors), Acad::eOk);
    ExpectSampleColors(colors);
}

// A true colour given through the style's API reaches the DWG; a colour given by index stays
// one.
TEST(DimensionStyleColors, true_colour_set_on_a_style_reaches_the_dwg) {
    AcDbDatabase db(false, true);
    ReadColorSample(db);
    AcDbObjectId id;
    ASSERT_EQ(db.getAcDbObjectId(id, false, AcDbHandle(kCustomStyle)), Acad::eOk);
    AcDbObject* object = nullptr;
    ASSERT_EQ(acdbOpenAcDbObject(object, id, AcDb::kForWrite), Acad::eOk);
    auto* style = AcDbDimStyleTableRecord::cast(object);
    ASSERT_NE(style, nullptr);
    AcCmColor red;
    red.setColorIndex(1);
    style->setDimclrd(TrueColor(3, 0x123456));
    style->setDimclre(red);
    object->close();
    AcDbDatabase again(false, true);
    ASSERT_EQ(dwg::ReadDwgBytes(again, dwg_test::OwnEncoding(db, 1252), "again.dwg"), Acad::eOk);
    StyleColors colors;
    ASSERT_EQ(ColorsOf(again, kCustomStyle, colors), Acad::eOk);
    // From 2004 on a colour stored as a true colour has no index of its own.
    EXPECT_EQ(colors.line, TrueColor(0, 0x123456));
    EXPECT_EQ(colors.extension, red);
    EXPECT_EQ(colors.text, TrueColor(0, 0x50B3FF));
}

// The style's variable given another index (as a DXF record or a command sets it) is a colour
// by index: the true colour set with the old index no longer holds.
TEST(DimensionStyleColors, true_colour_holds_while_the_variable_keeps_its_index) {
    AcDbDimStyleTableRecord style;
    style.setDimclrt(TrueColor(5, 0xABCDEF));
    EXPECT_EQ(style.dimclrt(), TrueColor(5, 0xABCDEF));
    EXPECT_EQ(style.dimVars().at(178).integer, 5);
    style.dimVars()[178].integer = 2;
    AcCmColor yellow;
    yellow.setColorIndex(2);
    EXPECT_EQ(style.dimclrt(), yellow);
    EXPECT_FALSE(style.dimclrd().hasTrueColor());
    EXPECT_EQ(style.dimclrd().colorIndex(), 0);  // BYBLOCK when the style does not say
}

// The DXF record of the style gives the colours' indexes, as before: a DXF cannot hold a
// dimension style's true colours.
TEST(DimensionStyleColors, dxf_gives_the_indexes_of_true_colours) {
    AcDbDatabase db(false, true);
    ReadColorSample(db);
    std::string text;
    ASSERT_EQ(dxf::WriteDxfText(db, {}, text), Acad::eOk);
    const std::size_t style = text.find("105\n244\n");
    ASSERT_NE(style, std::string::npos);
    const std::size_t end = text.find("\n  0\n", style);
    const std::string record = text.substr(style, end - style);
    for (const char* code : {"176\n0\n", "177\n0\n", "178\n0\n"})
        EXPECT_NE(record.find(code), std::string::npos) << code << record;
}

}  // namespace
