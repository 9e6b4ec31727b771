// RGB texts, the nearest palette index and the colour an entity shows.
#include <gtest/gtest.h>

#include "cleanup_fixture.hpp"
#include "platform/db/line.hpp"

namespace {

TEST(RgbText, three_numbers_pack_as_red_green_blue) {
    EXPECT_EQ(ParseRgbText(L"1 2 3"), 1 + 2 * 256 + 3 * 65536);
    EXPECT_EQ(PackNarrowRgb("1 2 3", 35), 1 + 2 * 256 + 3 * 65536);
}

TEST(RgbText, quoted_text_passes_over_quotes) {
    EXPECT_EQ(ParseRgbText(L"\"10 20 30\""), 10 + 20 * 256 + 30 * 65536);
}

TEST(RgbText, two_blanks_give_a_zero_number) {
    EXPECT_EQ(ParseRgbText(L"7  9"), 7 + 0 * 256 + 9 * 65536);
    EXPECT_EQ(PackNarrowRgb("7  9", 35), 7 + 0 * 256 + 9 * 65536);
}

TEST(RgbText, missing_numbers_count_as_zero_and_fourth_is_ignored) {
    EXPECT_EQ(ParseRgbText(L"5"), 5);
    EXPECT_EQ(ParseRgbText(L"1 2 3 4"), 1 + 2 * 256 + 3 * 65536);
    EXPECT_EQ(PackNarrowRgb("1 2 3 4", 35), 1 + 2 * 256 + 3 * 65536);
    EXPECT_EQ(ParseRgbText(L""), 0);
}

TEST(RgbText, numbers_are_cut_to_8_bits) {
    EXPECT_EQ(ParseRgbText(L"257 256 511"), 1 + 0 * 256 + 255 * 65536);
    EXPECT_EQ(PackNarrowRgb("257 256 511", 35), 1 + 0 * 256 + 255 * 65536);
}

TEST(RgbText, narrow_number_keeps_only_its_first_digits) {
    std::string longNumber = std::string(34, '0') + "12";  // 35 characters keep "...01"
    EXPECT_EQ(PackNarrowRgb(longNumber + " 0 0", 35), 1);
    EXPECT_EQ(PackNarrowRgb(longNumber + " 0 0", 127), 12);
}

// The narrow reader keeps 35 characters of a number, as its 36-byte buffer holds: 33 zeros and
// "255" read as 25, a dark red, not as the full red of index 1.
TEST(RgbText, text_to_index_reads_35_characters_of_a_number) {
    std::string number = std::string(33, '0') + "255";
    EXPECT_EQ(RgbTextToColorIndex(number + " 0 0"), NearestColorIndex(PackNarrowRgb("25 0 0", 35)));
    EXPECT_NE(RgbTextToColorIndex(number + " 0 0"), 1);
}

TEST(NearestColor, exact_palette_colour_maps_to_its_index) {
    EXPECT_EQ(NearestColorIndex(ParseRgbText(L"0 0 255")), 5);
    EXPECT_EQ(NearestColorIndex(ParseRgbText(L"130 130 130")), 253);
    EXPECT_EQ(RgbTextToColorIndex("255 127 127"), 11);
}

TEST(NearestColor, near_colour_maps_by_summed_byte_differences) {
    // (1, 2, 3): index 178 (0, 0, 38) differs by 38, 18 (38, 0, 0) by 42, 250 (51, 51, 51) by 144.
    EXPECT_EQ(NearestColorIndex(ParseRgbText(L"1 2 3")), 178);
    EXPECT_EQ(RgbTextToColorIndex("1 2 3"), 178);
}

TEST(NearestColor, tie_goes_to_lower_index) {
    // Red is both index 1 and index 10; index 18 and 94 tie for black.
    EXPECT_EQ(NearestColorIndex(ParseRgbText(L"255 0 0")), 1);
    EXPECT_EQ(NearestColorIndex(0), 18);
}

TEST(NearestColor, white_is_7_and_never_255) {
    EXPECT_EQ(NearestColorIndex(ParseRgbText(L"255 255 255")), 7);
    EXPECT_EQ(NearestColorIndex(ParseRgbText(L"250 250 250")), 7);
}

class EffectiveColor : public CleanupTest {
protected:
    void SetLayerColor(const std::wstring& name, int index) {
        AcDbLayerTable* layers = nullptr;
        Drawing().getSymbolTable(layers, AcDb::kForRead);
        AcDbLayerTableRecord* layer = nullptr;
        layers->getAt(name, layer, AcDb::kForWrite);
        AcCmColor color;
        color.setColorIndex(static_cast<std::uint16_t>(index));
        layer->setColor(color);
        layer->close();
        layers->close();
    }
};

TEST_F(EffectiveColor, own_colour_index_when_not_by_layer) {
    auto* line = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0));
    AcDbObjectId id = AddToDrawing(line, L"PART");
    AcDbEntity* entity = nullptr;
    acdbOpenAcDbEntity(entity, id, AcDb::kForWrite);
    entity->setColorIndex(3);
    entity->close();
    EXPECT_EQ(EffectiveColorIndex(id), 3);
}

TEST_F(EffectiveColor, by_layer_takes_the_layer_colour) {
    AcDbObjectId id = AddToDrawing(new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)), L"PART");
    SetLayerColor(L"PART", 6);
    EXPECT_EQ(EffectiveColorIndex(id), 6);
    // The entity and its layer are closed again.
    AcDbEntity* entity = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(entity, id, AcDb::kForWrite), Acad::eOk);
    entity->close();
    AcDbLayerTable* layers = nullptr;
    ASSERT_EQ(Drawing().getSymbolTable(layers, AcDb::kForRead), Acad::eOk);
    AcDbLayerTableRecord* layer = nullptr;
    EXPECT_EQ(layers->getAt(L"PART", layer, AcDb::kForWrite), Acad::eOk);
    if (layer) layer->close();
    layers->close();
}

TEST_F(EffectiveColor, layer_missing_or_entity_not_opening_gives_minus_1) {
    AcDbObjectId id = AddToDrawing(new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)), L"PART");
    AcDbEntity* entity = nullptr;
    acdbOpenAcDbEntity(entity, id, AcDb::kForWrite);
    entity->setLayerName(L"NO_SUCH_LAYER");
    entity->close();
    EXPECT_EQ(EffectiveColorIndex(id), -1);
    EXPECT_EQ(EffectiveColorIndex(AcDbObjectId()), -1);
}

}  // namespace
