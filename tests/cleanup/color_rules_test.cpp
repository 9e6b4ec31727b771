// The colour table of section ModifyColor: old colour to new colour, read from a run of braces.
#include <gtest/gtest.h>

#include "cleanup_fixture.hpp"

namespace {

class ChangeColor : public CleanupTest {
protected:
    AcDbObjectId Line(int color, const std::wstring& layer = L"0") {
        AcDbObjectId id = AddToDrawing(new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)), layer);
        if (color != 256) {
            AcDbEntity* entity = nullptr;
            acdbOpenAcDbEntity(entity, id, AcDb::kForWrite);
            entity->setColorIndex(static_cast<std::uint16_t>(color));
            entity->close();
        }
        return id;
    }
    int ColorOf(AcDbObjectId id) {
        int color = -1;
        Inspect(id, [&](AcDbEntity* e) { color = e->colorIndex(); });
        return color;
    }
    void Run(const std::wstring& rules) {
        WriteIni(L"[ModifyColor]\r\nBolOpen=0\r\nStrChangeColor=" + rules + L"\r\n");
        Cleanup().FunChangeColor();
    }
    void LayerColorAndLock(const std::wstring& name, int color, bool locked) {
        AcDbLayerTable* layers = nullptr;
        Drawing().getSymbolTable(layers, AcDb::kForRead);
        AcDbLayerTableRecord* layer = nullptr;
        layers->getAt(name, layer, AcDb::kForWrite);
        AcCmColor cmColor;
        cmColor.setColorIndex(static_cast<std::uint16_t>(color));
        layer->setColor(cmColor);
        layer->setIsLocked(locked);
        layer->close();
        layers->close();
    }
};

TEST_F(ChangeColor, rule_changes_old_colour_to_new_even_with_the_switch_off) {
    AcDbObjectId red = Line(1);
    AcDbObjectId blue = Line(5);
    Run(L"[{\"ColorOld\":\"255 0 0\",\"ColorNew\":\"0 255 0\"}]");
    EXPECT_EQ(ColorOf(red), 3);
    EXPECT_EQ(ColorOf(blue), 5);
}

TEST_F(ChangeColor, empty_text_or_text_without_braces_changes_nothing) {
    AcDbObjectId red = Line(1);
    Run(L"");
    EXPECT_EQ(ColorOf(red), 1);
    Run(L"\"ColorOld\":\"255 0 0\",\"ColorNew\":\"0 255 0\"");
    EXPECT_EQ(ColorOf(red), 1);
}

TEST_F(ChangeColor, brackets_and_commas_outside_braces_are_optional) {
    AcDbObjectId red = Line(1);
    AcDbObjectId blue = Line(5);
    Run(L"x{\"ColorOld\":\"255 0 0\",\"ColorNew\":\"0 255 0\"} {\"ColorOld\":\"0 0 255\",\"ColorNew\":\"255 255 0\"}");
    EXPECT_EQ(ColorOf(red), 3);
    EXPECT_EQ(ColorOf(blue), 2);
}

TEST_F(ChangeColor, rule_with_empty_new_colour_is_dropped) {
    AcDbObjectId red = Line(1);
    Run(L"[{\"ColorOld\":\"255 0 0\",\"ColorNew\":\"\"},{\"ColorOld\":\"255 0 0\",\"ColorNew\":\"0 0 255\"}]");
    EXPECT_EQ(ColorOf(red), 5);
}

TEST_F(ChangeColor, rule_without_old_colour_is_dropped) {
    AcDbObjectId black = Line(250);
    Run(L"[{\"ColorNew\":\"0 0 255\"}]");
    EXPECT_EQ(ColorOf(black), 250);
}

TEST_F(ChangeColor, text_abc_reads_as_black_and_maps_to_its_nearest_index) {
    AcDbObjectId red = Line(1);
    Run(L"[{\"ColorOld\":\"255 0 0\",\"ColorNew\":\"abc\"}]");
    EXPECT_EQ(ColorOf(red), NearestColorIndex(0));
}

TEST_F(ChangeColor, two_rules_with_the_same_old_colour_first_wins) {
    AcDbObjectId red = Line(1);
    Run(L"[{\"ColorOld\":\"255 0 0\",\"ColorNew\":\"0 255 0\"},{\"ColorOld\":\"255 0 0\",\"ColorNew\":\"0 0 255\"}]");
    EXPECT_EQ(ColorOf(red), 3);
}

TEST_F(ChangeColor, result_of_one_rule_is_not_fed_to_a_later_rule) {
    AcDbObjectId red = Line(1);
    Run(L"[{\"ColorOld\":\"255 0 0\",\"ColorNew\":\"0 255 0\"},{\"ColorOld\":\"0 255 0\",\"ColorNew\":\"0 0 255\"}]");
    EXPECT_EQ(ColorOf(red), 3);
}

TEST_F(ChangeColor, bylayer_entity_matches_on_its_layers_colour_and_carries_the_new_index) {
    AcDbObjectId line = Line(256, L"RED");
    LayerColorAndLock(L"RED", 1, false);
    Run(L"[{\"ColorOld\":\"255 0 0\",\"ColorNew\":\"0 255 0\"}]");
    EXPECT_EQ(ColorOf(line), 3);
}

TEST_F(ChangeColor, entity_on_a_locked_layer_keeps_its_colour_and_the_walk_goes_on) {
    AcDbObjectId locked = Line(1, L"LOCKED");
    AcDbObjectId free = Line(1);
    LayerColorAndLock(L"LOCKED", 7, true);
    Run(L"[{\"ColorOld\":\"255 0 0\",\"ColorNew\":\"0 255 0\"}]");
    EXPECT_EQ(ColorOf(locked), 1);
    EXPECT_EQ(ColorOf(free), 3);
}

TEST_F(ChangeColor, closing_brace_without_an_opening_one_reads_no_rule) {
    AcDbObjectId red = Line(1);
    // The characters before any "{" are not gathered: the "}" closes an empty item.
    Run(L"\"ColorOld\":\"255 0 0\",\"ColorNew\":\"0 255 0\"}");
    EXPECT_EQ(ColorOf(red), 1);
}

}  // namespace
