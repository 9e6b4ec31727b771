// A dimension style's dimension line, extension line and text colours (DIMCLRD, DIMCLRE,
// DIMCLRT) keep their true colours: read from DWG, written to DWG and read again. Their DXF
// record gives the indexes alone (176-178), a true colour's the index nearest it, as AutoCAD's
// DXF does.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "corpus_files.hpp"
#include "object_bits.hpp"
#include "platform/db/database.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/dwg/header.hpp"
#include "platform/dwg/read.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/ed/utilities.hpp"

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

// The sample's colours, each with the index of the palette colour nearest it.
void ExpectSampleColors(const StyleColors& colors) {
    EXPECT_EQ(colors.line, TrueColor(84, 0x2C881B));
    EXPECT_EQ(colors.extension, TrueColor(193, 0x803DC2));
    EXPECT_EQ(colors.text, TrueColor(151, 0x50B3FF));
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
    // From 2004 on a colour stored as a true colour has no index of its own: it reads back
    // with the nearest.
    EXPECT_EQ(colors.line, TrueColor(dwg::NearestColorIndex(0x123456), 0x123456));
    EXPECT_EQ(colors.extension, red);
    EXPECT_EQ(colors.text, TrueColor(151, 0x50B3FF));
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

// The DXF record of the style gives the colours' nearest indexes: a DXF cannot hold a
// dimension style's true colours.
TEST(DimensionStyleColors, dxf_gives_the_nearest_indexes_of_true_colours) {
    AcDbDatabase db(false, true);
    ReadColorSample(db);
    std::string text;
    ASSERT_EQ(dxf::WriteDxfText(db, {}, text), Acad::eOk);
    const std::size_t style = text.find("105\n244\n");
    ASSERT_NE(style, std::string::npos);
    const std::size_t end = text.find("\n  0\n", style);
    const std::string record = text.substr(style, end - style);
    for (const char* code : {"176\n84\n", "177\n193\n", "178\n151\n"})
        EXPECT_NE(record.find(code), std::string::npos) << code << record;
}

int Distance(std::uint32_t rgb, int index) {
    const DWORD palette = acedGetRGB(index);
    const int red = static_cast<int>(rgb >> 16) - static_cast<int>(palette & 0xFF);
    const int green = static_cast<int>((rgb >> 8) & 0xFF) - static_cast<int>((palette >> 8) & 0xFF);
    const int blue = static_cast<int>(rgb & 0xFF) - static_cast<int>(palette >> 16);
    return red * red + green * green + blue * blue;
}

TEST(DimensionStyleColors, palette_colour_is_its_own_nearest_index_the_first_of_its_twins) {
    EXPECT_EQ(dwg::NearestColorIndex(0xFF0000), 1);  // 10 is red too
    EXPECT_EQ(dwg::NearestColorIndex(0xFFFFFF), 7);  // and 255
    for (int index = 1; index <= 255; ++index) {
        const DWORD p = acedGetRGB(index);
        const std::uint32_t rgb = (p & 0xFF) << 16 | (p & 0xFF00) | (p >> 16 & 0xFF);
        const int nearest = dwg::NearestColorIndex(rgb);
        EXPECT_LE(nearest, index);
        EXPECT_EQ(Distance(rgb, nearest), 0) << index;
    }
}

TEST(DimensionStyleColors, nearest_index_is_no_farther_than_any_other) {
    for (std::uint32_t rgb : {0x2C881Bu, 0x803DC2u, 0x50B3FFu, 0x123456u, 0x010101u, 0xFEFEFEu, 0x7F7F80u}) {
        const int nearest = dwg::NearestColorIndex(rgb);
        ASSERT_GE(nearest, 1);
        ASSERT_LE(nearest, 255);
        for (int index = 1; index <= 255; ++index) {
            EXPECT_LE(Distance(rgb, nearest), Distance(rgb, index)) << std::hex << rgb << std::dec << " " << index;
            if (index < nearest) {
                EXPECT_LT(Distance(rgb, nearest), Distance(rgb, index)) << "a lower index as near";
            }
        }
    }
}

}  // namespace
