// Polylines of one layer replaced by an offset copy whose distance their colour selects, made
// to the side where the copy does not come out longer.
#include <gtest/gtest.h>

#include "cleanup_fixture.hpp"
#include "platform/db/arc.hpp"
#include "platform/db/extents.hpp"

namespace {

constexpr const wchar_t* kRedBy1 = L"[{\"Color\":\"255 0 0\",\"VarOffset\":1}]";

class LineDeviation : public CleanupTest {
protected:
    void Run(const std::wstring& json, const std::wstring& layer = L"DEV", const std::wstring& open = L"1") {
        WriteIni(L"[LineDeviation]\r\nBolOpen=" + open + L"\r\nStrLayer=" + layer + L"\r\nStrJson=" + json + L"\r\n");
        Cleanup().FunLineDeviation();
    }
    // A counter-clockwise square of side 10 at the origin, of the given colour.
    AcDbObjectId Square(int color, const std::wstring& layer = L"DEV") {
        AcDbObjectId id = AddPolyline({0, 0, 10, 0, 10, 10, 0, 10}, true, layer);
        if (color != 256) Color(id, color);
        return id;
    }
    // The boxes of the polylines in the drawing, in drawing order.
    std::vector<AcDbExtents> PolylineBoxes() {
        std::vector<AcDbExtents> boxes;
        for (const AcDbObjectId& id : LiveIds())
            Inspect(id, [&](AcDbEntity* e) {
                AcDbExtents box;
                if (AcDbPolyline::cast(e) && e->getGeomExtents(box) == Acad::eOk) boxes.push_back(box);
            });
        return boxes;
    }
};

TEST_F(LineDeviation, switch_off_or_missing_section_changes_nothing) {
    AcDbObjectId square = Square(1);
    Run(kRedBy1, L"DEV", L"0");
    EXPECT_FALSE(IsGone(square));
    WriteIni(L"[public]\r\n");
    Cleanup().FunLineDeviation();
    EXPECT_FALSE(IsGone(square));
    EXPECT_EQ(PolylineBoxes().size(), 1u);
}

TEST_F(LineDeviation, empty_or_unknown_json_gives_no_rules) {
    AcDbObjectId square = Square(1);
    Run(L"");
    Run(L"Color=255 0 0");
    EXPECT_FALSE(IsGone(square));
    EXPECT_EQ(PolylineBoxes().size(), 1u);
}

TEST_F(LineDeviation, polyline_of_a_colour_no_rule_names_stays) {
    AcDbObjectId square = Square(5);
    Run(kRedBy1);
    EXPECT_FALSE(IsGone(square));
}

TEST_F(LineDeviation, lines_arcs_and_polylines_of_other_layers_stay) {
    AcDbObjectId line = AddLine(0, 0, 10, 0, L"DEV");
    Color(line, 1);
    AcDbObjectId arc = AddToDrawing(new AcDbArc(AcGePoint3d(0, 0, 0), 5, 0, 1), L"DEV");
    Color(arc, 1);
    AcDbObjectId other = Square(1, L"dev");  // the layer name is compared exactly
    Run(kRedBy1);
    EXPECT_FALSE(IsGone(line));
    EXPECT_FALSE(IsGone(arc));
    EXPECT_FALSE(IsGone(other));
    EXPECT_EQ(LiveIds().length(), 3);
}

TEST_F(LineDeviation, bylayer_polyline_is_matched_by_its_layers_colour) {
    AcDbObjectId square = Square(256);
    LayerState(L"DEV", 1, false);
    Run(kRedBy1);
    EXPECT_TRUE(IsGone(square));
    EXPECT_EQ(PolylineBoxes().size(), 1u);
}

TEST_F(LineDeviation, closed_rectangle_grown_by_the_offset_is_offset_to_the_inside) {
    AcDbObjectId square = Square(1);
    Run(kRedBy1);
    EXPECT_TRUE(IsGone(square));
    std::vector<AcDbExtents> boxes = PolylineBoxes();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_NEAR(boxes[0].minPoint().x, 1.0, 1e-9);
    EXPECT_NEAR(boxes[0].maxPoint().x, 9.0, 1e-9);
    EXPECT_NEAR(boxes[0].maxPoint().y, 9.0, 1e-9);
}

TEST_F(LineDeviation, offset_that_shrinks_is_kept_and_the_new_polyline_is_not_treated_again) {
    Square(1);
    Run(L"[{\"Color\":\"255 0 0\",\"VarOffset\":-2.5}]");
    std::vector<AcDbExtents> boxes = PolylineBoxes();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_NEAR(boxes[0].minPoint().x, 2.5, 1e-9);
    EXPECT_NEAR(boxes[0].maxPoint().x, 7.5, 1e-9);
}

TEST_F(LineDeviation, two_rules_for_one_colour_only_the_first_applies) {
    Square(1);
    Run(L"[{\"Color\":\"255 0 0\",\"VarOffset\":2},{\"Color\":\"255 0 0\",\"VarOffset\":0.5}]");
    std::vector<AcDbExtents> boxes = PolylineBoxes();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_NEAR(boxes[0].minPoint().x, 2.0, 1e-9);
}

TEST_F(LineDeviation, offset_zero_gives_a_copy_of_equal_length_and_the_source_goes) {
    AcDbObjectId square = Square(1);
    Run(L"[{\"Color\":\"255 0 0\"}]");
    EXPECT_TRUE(IsGone(square));
    std::vector<AcDbExtents> boxes = PolylineBoxes();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_NEAR(boxes[0].minPoint().x, 0.0, 1e-9);
    EXPECT_NEAR(boxes[0].maxPoint().x, 10.0, 1e-9);
}

TEST_F(LineDeviation, replaced_polyline_is_erased_and_closed) {
    AcDbObjectId square = Square(1);
    Run(L"[{\"Color\":\"255 0 0\"}]");
    EXPECT_TRUE(IsErased(square));
}

TEST_F(LineDeviation, polyline_on_a_locked_layer_reads_no_layer_and_stays) {
    AcDbObjectId square = Square(1);
    LayerState(L"DEV", 7, true);
    Run(kRedBy1);
    EXPECT_FALSE(IsGone(square));
    EXPECT_EQ(PolylineBoxes().size(), 1u);
}

TEST_F(LineDeviation, repeated_member_reads_the_first_value_of_its_name) {
    // The reader finds a name at its first place, so both values of a repeated member are the
    // first one: the blue rule with offset 1 is made, and the red polyline is no rule's colour.
    AcDbObjectId red = Square(1);
    AcDbObjectId blue = AddPolyline({20, 0, 30, 0, 30, 10, 20, 10}, true, L"DEV");
    Color(blue, 5);
    Run(L"[{\"Color\":\"0 0 255\",\"VarOffset\":1,\"Color\":\"255 0 0\",\"VarOffset\":0.5}]");
    EXPECT_FALSE(IsGone(red));
    EXPECT_TRUE(IsGone(blue));
    std::vector<AcDbExtents> boxes = PolylineBoxes();
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_NEAR(boxes[1].minPoint().x, 21.0, 1e-9);
}

TEST_F(LineDeviation, object_without_colour_names_index_0) {
    AcDbObjectId red = Square(1);
    Run(L"[{\"VarOffset\":1}]");
    EXPECT_FALSE(IsGone(red));
}

TEST_F(LineDeviation, offset_of_equal_length_is_kept_on_its_first_side) {
    // A straight open polyline offsets into a parallel copy of the same length: not longer, so
    // the first side stays (right of the direction of travel for a positive distance).
    AcDbObjectId straight = AddPolyline({0, 0, 10, 0}, false, L"DEV");
    Color(straight, 1);
    Run(kRedBy1);
    EXPECT_TRUE(IsGone(straight));
    std::vector<AcDbExtents> boxes = PolylineBoxes();
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_NEAR(boxes[0].minPoint().y, -1.0, 1e-9);
}

}  // namespace
