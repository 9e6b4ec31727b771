// Recolouring by position: lines and arcs on a rule's layer form chains, and entities inside a
// chain's box take the rule's colours.
#include <gtest/gtest.h>

#include <random>

#include "cleanup/modify_color.hpp"
#include "cleanup_fixture.hpp"
#include "platform/db/spline.hpp"
#include "platform/db/arc.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/extents.hpp"
#include "platform/db/text.hpp"

namespace {

constexpr const wchar_t* kRedSolidGreenDotted =
    L"{\"StrLayer\":\"CHAIN\",\"ColorSolid\":\"255 0 0\",\"ColorDotted\":\"0 255 0\",\"ColorExclude\":[]}";

class ModifyColor : public CleanupTest {
protected:
    void Run(const std::wstring& rules) {
        WriteIni(L"[public]\r\nStrSolidLineType=Continuous\r\n[ModifyColor]\r\nBolOpen=0\r\nStrJson=" + rules + L"\r\n");
        Cleanup().FunModifyColor();
    }
    // A closed square of four lines on the chain layer.
    void Square(double x0, double y0, double x1, double y1, const std::wstring& layer = L"CHAIN") {
        AddLine(x0, y0, x1, y0, layer);
        AddLine(x1, y0, x1, y1, layer);
        AddLine(x1, y1, x0, y1, layer);
        AddLine(x0, y1, x0, y0, layer);
    }
    AcDbObjectId Circle(double x, double y, double r, int color) {
        AcDbObjectId id = AddToDrawing(new AcDbCircle(AcGePoint3d(x, y, 0), AcGeVector3d::kZAxis, r), L"PART");
        Color(id, color);
        return id;
    }
};

TEST_F(ModifyColor, entity_inside_a_chain_takes_the_dotted_or_solid_colour) {
    Square(0, 0, 10, 10);
    AcDbObjectId dotted = Circle(5, 5, 1, 5);
    AcDbObjectId solid = Circle(3, 3, 1, 5);
    LinetypeName(solid, L"Continuous");
    AcDbObjectId outside = Circle(30, 30, 1, 5);
    Run(kRedSolidGreenDotted);
    EXPECT_EQ(ColorOf(dotted), 3);
    EXPECT_EQ(ColorOf(solid), 1);
    EXPECT_EQ(ColorOf(outside), 5);
}

TEST_F(ModifyColor, chain_curves_themselves_keep_their_colour) {
    AcDbObjectId side = AddLine(0, 0, 10, 0, L"CHAIN");
    Color(side, 5);
    AddLine(10, 0, 10, 10, L"CHAIN");
    Run(kRedSolidGreenDotted);
    EXPECT_EQ(ColorOf(side), 5);
}

TEST_F(ModifyColor, rule_without_colour_exclude_gives_no_rule_at_all) {
    Square(0, 0, 10, 10);
    AcDbObjectId inside = Circle(5, 5, 1, 5);
    Run(L"{\"StrLayer\":\"CHAIN\",\"ColorSolid\":\"255 0 0\",\"ColorDotted\":\"0 255 0\"}");
    EXPECT_EQ(ColorOf(inside), 5);
}

TEST_F(ModifyColor, second_rule_without_colour_solid_uses_the_first_rules_value) {
    Square(0, 0, 10, 10, L"A");
    Square(100, 0, 110, 10, L"B");
    AcDbObjectId solid = Circle(105, 5, 1, 5);
    LinetypeName(solid, L"Continuous");
    Run(L"[{\"StrLayer\":\"A\",\"ColorSolid\":\"255 255 0\",\"ColorDotted\":\"0 255 0\",\"ColorExclude\":[]},"
        L"{\"StrLayer\":\"B\",\"ColorDotted\":\"0 0 255\",\"ColorExclude\":[]}]");
    EXPECT_EQ(ColorOf(solid), 2);
}

TEST_F(ModifyColor, excluded_colour_stays_and_is_settled_by_the_first_rule) {
    Square(0, 0, 10, 10, L"A");
    Square(0, 0, 10, 10, L"B");
    AcDbObjectId kept = Circle(5, 5, 1, 5);
    AcDbObjectId other = Circle(4, 4, 1, 6);
    Run(L"[{\"StrLayer\":\"A\",\"ColorSolid\":\"255 0 0\",\"ColorDotted\":\"0 255 0\",\"ColorExclude\":[\"0 0 255\",\"0 255 255\"]},"
        L"{\"StrLayer\":\"B\",\"ColorSolid\":\"255 0 0\",\"ColorDotted\":\"255 255 0\",\"ColorExclude\":[]}]");
    EXPECT_EQ(ColorOf(kept), 5);
    EXPECT_EQ(ColorOf(other), 3);
}

TEST_F(ModifyColor, exclude_list_skips_the_byte_behind_each_closing_quote) {
    AcArray<int> colors;
    ParseExcludeColors("\"0 255 0\",\"0 0 255\"", colors);
    ASSERT_EQ(colors.length(), 2);
    EXPECT_EQ(colors[0], 3);
    EXPECT_EQ(colors[1], 5);
    // Without a separator the next opening quote is the byte passed over.
    ParseExcludeColors("\"0 255 0\"\"0 0 255\"", colors);
    EXPECT_EQ(colors.length(), 1);
}

TEST_F(ModifyColor, circle_inside_on_two_sides_and_outside_on_a_third_is_not_touched) {
    Square(0, 0, 10, 10);
    AcDbObjectId across = Circle(9.5, 5, 1, 5);
    Run(kRedSolidGreenDotted);
    EXPECT_EQ(ColorOf(across), 5);
}

TEST_F(ModifyColor, small_entity_inside_the_box_of_an_open_chain_is_coloured) {
    AddLine(0, 0, 10, 0, L"CHAIN");
    AddLine(10, 0, 10, 10, L"CHAIN");
    AcDbObjectId offOutline = Circle(2, 8, 0.5, 5);
    Run(kRedSolidGreenDotted);
    EXPECT_EQ(ColorOf(offOutline), 3);
}

TEST_F(ModifyColor, box_edge_and_up_to_0_02_beyond_count_as_inside) {
    Square(0, 0, 10, 10);
    struct Row {
        double beyond;
        int expected;
    };
    const Row rows[] = {{0.0, 3}, {0.019, 3}, {0.021, 5}};
    std::vector<AcDbObjectId> ids;
    for (const Row& row : rows) {
        ids.push_back(AddLine(2, 5, 10 + row.beyond, 5, L"PART"));
        Color(ids.back(), 5);
    }
    Run(kRedSolidGreenDotted);
    for (size_t i = 0; i < ids.size(); ++i) EXPECT_EQ(ColorOf(ids[i]), rows[i].expected) << rows[i].beyond;
}

TEST_F(ModifyColor, pieces_less_than_0_02_apart_join_and_0_02_apart_stay_separate) {
    struct Row {
        double gap;
        int expected;
    };
    for (const Row& row : {Row{0.0199, 3}, Row{0.02, 5}}) {
        AddLine(-10, 0, 0, 0, L"CHAIN");
        AddLine(row.gap, 0, 10, 10, L"CHAIN");
        // Inside the box of the joined chain only.
        AcDbObjectId target = Circle(-5, 7, 1, 5);
        Run(kRedSolidGreenDotted);
        EXPECT_EQ(ColorOf(target), row.expected) << row.gap;
        for (const AcDbObjectId& id : LiveIds()) Change(id, [](AcDbEntity* e) { e->erase(); });
    }
}

TEST_F(ModifyColor, rule_whose_layer_has_no_lines_or_arcs_changes_nothing) {
    AddToDrawing(new AcDbCircle(AcGePoint3d(5, 5, 0), AcGeVector3d::kZAxis, 20), L"CHAIN");
    AcDbObjectId inside = Circle(5, 5, 1, 5);
    Run(kRedSolidGreenDotted);
    EXPECT_EQ(ColorOf(inside), 5);
    EXPECT_TRUE(CleanupGlobals->modifyColor->rules[0].groups.isEmpty());
}

TEST_F(ModifyColor, arc_joins_a_chain_and_a_circle_on_the_chain_layer_is_a_target) {
    AddLine(0, 0, 10, 0, L"CHAIN");
    AddToDrawing(new AcDbArc(AcGePoint3d(5, 0, 0), 5, 0, 3.141592653589793), L"CHAIN");
    AcDbObjectId ring = AddToDrawing(new AcDbCircle(AcGePoint3d(5, 2, 0), AcGeVector3d::kZAxis, 1), L"CHAIN");
    Color(ring, 5);
    Run(kRedSolidGreenDotted);
    EXPECT_EQ(ColorOf(ring), 3);
    EXPECT_EQ(CleanupGlobals->modifyColor->rules[0].groups.length(), 1);
}

TEST_F(ModifyColor, text_inside_takes_no_part) {
    Square(0, 0, 10, 10);
    auto* text = new AcDbText(AcGePoint3d(5, 5, 0), L"A", AcDbObjectId::kNull, 1.0, 0.0);
    AcDbObjectId id = AddToDrawing(text, L"PART");
    Color(id, 5);
    Run(kRedSolidGreenDotted);
    EXPECT_EQ(ColorOf(id), 5);
}

TEST_F(ModifyColor, start_and_end_lines_go_to_an_existing_log) {
    WriteText(L"D:\\CZ\\config\\CAD\\Log.log", L"");
    Run(L"");
    EXPECT_EQ(ReadText(L"D:\\CZ\\config\\CAD\\Log.log"), L"修改颜色开始\n修改颜色结束\n");
}

// The plain walk of the recolouring: for each chain in order, every record left in drawing
// order; the grid must settle the same records with the same colours.
TEST_F(ModifyColor, grid_recolours_as_the_plain_walk_on_random_drawings) {
    std::mt19937 random(74);
    for (int drawing = 0; drawing < 8; ++drawing) {
        std::uniform_real_distribution<double> place(0.0, 100.0), size(0.5, 15.0);
        std::vector<AcDbObjectId> targets;
        for (int k = 0; k < 150; ++k) {
            double x = place(random), y = place(random);
            AddLine(x, y, x + size(random), y, L"CHAIN");
            AddLine(x, y, x, y + size(random), L"CHAIN");
            targets.push_back(Circle(place(random), place(random), size(random) * 0.2, 1 + static_cast<int>(random() % 6)));
        }
        Run(L"{\"StrLayer\":\"CHAIN\",\"ColorSolid\":\"255 0 0\",\"ColorDotted\":\"255 255 255\",\"ColorExclude\":[\"0 0 255\"]}");
        const ColorRule& rule = CleanupGlobals->modifyColor->rules[0];
        std::vector<bool> settled(targets.size(), false);
        std::vector<int> expected(targets.size(), -1);
        for (const AcDbObjectIdArray& group : rule.groups) {
            AcDbExtents box;
            for (const AcDbObjectId& id : group)
                Inspect(id, [&](AcDbEntity* e) {
                    AcDbExtents one;
                    e->getGeomExtents(one);
                    box.addExt(one);
                });
            for (size_t t = 0; t < targets.size(); ++t) {
                AcDbExtents own;
                Inspect(targets[t], [&](AcDbEntity* e) { e->getGeomExtents(own); });
                if (settled[t] || !PointInBox(own.minPoint(), box.minPoint(), box.maxPoint(), 0.02) ||
                    !PointInBox(own.maxPoint(), box.minPoint(), box.maxPoint(), 0.02))
                    continue;
                settled[t] = true;
                expected[t] = 7;
            }
        }
        int changed = 0;
        for (size_t t = 0; t < targets.size(); ++t) {
            int color = ColorOf(targets[t]);
            if (expected[t] == 7 && color != 5) {
                EXPECT_EQ(color, 7) << "drawing " << drawing << " target " << t;
                ++changed;
            } else if (expected[t] == -1) {
                EXPECT_NE(color, 7) << "drawing " << drawing << " target " << t;
            }
        }
        EXPECT_GT(changed, 0);
        for (const AcDbObjectId& id : LiveIds()) Change(id, [](AcDbEntity* e) { e->erase(); });
    }
}

TEST_F(ModifyColor, spline_and_polyline_inside_are_targets) {
    Square(0, 0, 10, 10);
    auto* spline = new AcDbSpline;
    spline->setNurbsData(3, false, false, false,
                         {AcGePoint3d(2, 2, 0), AcGePoint3d(3, 4, 0), AcGePoint3d(5, 4, 0), AcGePoint3d(6, 2, 0)},
                         {0, 0, 0, 0, 1, 1, 1, 1}, {});
    AcDbObjectId curve = AddToDrawing(spline, L"PART");
    Color(curve, 5);
    AcDbObjectId polyline = AddPolyline({2, 6, 4, 6, 4, 8}, false, L"PART");
    Color(polyline, 5);
    Run(kRedSolidGreenDotted);
    EXPECT_EQ(ColorOf(curve), 3);
    EXPECT_EQ(ColorOf(polyline), 3);
}

}  // namespace
