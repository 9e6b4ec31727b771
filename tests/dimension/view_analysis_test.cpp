// A view of a sheet: its rectangle and datum marker, the circles inside, the branch between
// ordinates and outline, merging, and the choice of x and y ordinates.
#include "dimension_fixture.hpp"

namespace {

class ViewAnalysis : public DimensionTest {
protected:
    std::vector<circle> Collect() {
        AcDbObjectIdArray lines;
        CollectViewFrame(L"FRONT", lines, &Drawing());
        std::vector<circle> circles;
        AcDbExtents box;
        CollectViewCircles(lines, circles, box, &Drawing());
        return circles;
    }
};

TEST_F(ViewAnalysis, view_without_frame_lines_logs_only_its_first_two_lines_and_creates_nothing) {
    AddCircle(150, 150);
    State().viewKind = 2;
    size_t before = ModelSpaceIds(Drawing()).length();
    DimensionView(L"TOP");
    EXPECT_EQ(CgLog(), L"附视图 准备标注取视图外框\n");
    EXPECT_EQ(ModelSpaceIds(Drawing()).length(), before);
}

TEST_F(ViewAnalysis, circles_are_counted_before_merging) {
    Module().cadStandardIni.sundry.CIRCOUNT = 10;
    AddViewFrame(L"FRONT", 100, 100, 410, 310);
    for (int i = 0; i < 5; ++i) {
        AddCircle(150 + 20 * i, 150);
        AddCircle(150 + 20 * i, 150);
    }
    DimensionView(L"FRONT");
    EXPECT_NE(CgLog().find(L"\n圆总数量：10有圆,外形标注\n"), std::wstring::npos);
    EXPECT_EQ(Ordinates().size(), 4u);  // the corners only
}

struct BranchCase {
    double xmax, ymax;
    int circles, circount;
    bool ordinates;
};

class ViewBranch : public ViewAnalysis, public testing::WithParamInterface<BranchCase> {};

TEST_P(ViewBranch, box_size_and_raw_count_decide_between_ordinates_and_outline) {
    const BranchCase& c = GetParam();
    SundryKeys& sundry = Module().cadStandardIni.sundry;
    sundry.XMAX = c.xmax;
    sundry.YMAX = c.ymax;
    sundry.CIRCOUNT = c.circount;
    AddViewFrame(L"FRONT", 100, 100, 410, 310);  // view box 300 x 200
    for (int i = 0; i < c.circles; ++i) AddCircle(150 + 10 * i, 150);
    DimensionView(L"FRONT");
    EXPECT_EQ(CgLog().find(L"坐标注,取x标注圆") != std::wstring::npos, c.ordinates);
    EXPECT_EQ(CgLog().find(L"有圆,外形标注") != std::wstring::npos, !c.ordinates);
    EXPECT_EQ(State().ordinateMode, c.ordinates);
}

INSTANTIATE_TEST_SUITE_P(Thresholds, ViewBranch,
                         testing::Values(BranchCase{300.0, 300.0, 2, 3, true},    // width on XMAX
                                         BranchCase{299.999, 300.0, 2, 3, false},  // just over
                                         BranchCase{400.0, 200.0, 2, 3, true},     // height on YMAX
                                         BranchCase{400.0, 199.999, 2, 3, false},
                                         BranchCase{400.0, 300.0, 3, 3, false},    // n on CIRCOUNT
                                         BranchCase{400.0, 300.0, 2, 3, true}));   // one below

TEST_F(ViewAnalysis, view_without_circles_takes_the_outline_branch_without_circles) {
    AddViewFrame(L"FRONT", 100, 100, 410, 310);
    DimensionView(L"FRONT");
    EXPECT_NE(CgLog().find(L"\n圆总数量：0无圆,开始外形标注\n无圆 主视图\n"), std::wstring::npos);
    EXPECT_EQ(RotatedDimensions().size(), 2u);
    EXPECT_FALSE(State().ordinateMode);
}

TEST_F(ViewAnalysis, plain_circle_on_a_red_ones_centre_yields_one_red_record_in_the_plain_place) {
    AddViewFrame(L"FRONT", 100, 100, 410, 310);
    AddCircle(200, 200, 1);
    AddCircle(150, 150);
    AddCircle(200, 200);
    std::vector<circle> circles = Collect();
    ASSERT_EQ(circles.size(), 3u);
    EXPECT_EQ(circles[1].color, 1);  // the plain circle took the red class
    MergeCircles(circles, 0.001);
    ASSERT_EQ(circles.size(), 2u);
    EXPECT_EQ(circles[0].center, AcGePoint3d(150, 150, 0));
    EXPECT_EQ(circles[1].center, AcGePoint3d(200, 200, 0));
    EXPECT_EQ(circles[1].color, 1);
}

TEST_F(ViewAnalysis, two_red_circles_on_one_centre_yield_the_first_only) {
    circle first = Record(200, 200, 1), second = Record(200, 200.0005, 1);
    first.textPos.x = 1.0;
    second.textPos.x = 2.0;
    std::vector<circle> circles = {first, second};
    MergeCircles(circles, 0.001);
    ASSERT_EQ(circles.size(), 1u);
    EXPECT_EQ(circles[0].textPos.x, 1.0);
}

TEST_F(ViewAnalysis, merge_keeps_the_first_record_whole_without_the_dropped_ones_colour) {
    std::vector<circle> circles = {Record(10, 10), Record(10.001, 10, 1), Record(10.0011, 10, 1)};
    MergeCircles(circles, 0.001);
    ASSERT_EQ(circles.size(), 2u);
    EXPECT_EQ(circles[0].color, 256);
    EXPECT_EQ(circles[1].center.x, 10.0011);
}

TEST_F(ViewAnalysis, column_whose_lowest_circle_lies_on_mid_y_sends_its_top_circle_up_twice) {
    State().midY = 205.0;
    std::vector<circle> top, bottom;
    SelectXCircles({Record(150, 250), Record(150, 205)}, top, bottom, AcDbExtents());
    ASSERT_EQ(top.size(), 2u);
    EXPECT_EQ(top[0].center.y, 250.0);
    EXPECT_EQ(top[1].center.y, 250.0);
    ASSERT_EQ(bottom.size(), 1u);
    EXPECT_EQ(bottom[0].center.y, 205.0);
}

TEST_F(ViewAnalysis, column_of_one_circle_on_mid_y_goes_to_top) {
    State().midY = 205.0;
    std::vector<circle> top, bottom;
    SelectXCircles({Record(150, 205), Record(170, 204.999)}, top, bottom, AcDbExtents());
    ASSERT_EQ(top.size(), 1u);
    EXPECT_EQ(top[0].center.x, 150.0);
    ASSERT_EQ(bottom.size(), 1u);
    EXPECT_EQ(bottom[0].center.x, 170.0);
}

TEST_F(ViewAnalysis, column_gets_one_ordinate_per_side_at_its_ends_only) {
    State().midY = 100.0;
    std::vector<circle> top, bottom;
    SelectXCircles({Record(10, 150), Record(10.0009, 120), Record(10, 180), Record(30, 20),
                    Record(30, 60), Record(50, 40), Record(50, 160)},
                   top, bottom, AcDbExtents());
    ASSERT_EQ(top.size(), 2u);
    EXPECT_EQ(top[0].center, AcGePoint3d(10, 180, 0));
    EXPECT_EQ(top[1].center, AcGePoint3d(50, 160, 0));
    ASSERT_EQ(bottom.size(), 2u);
    EXPECT_EQ(bottom[0].center, AcGePoint3d(30, 20, 0));
    EXPECT_EQ(bottom[1].center, AcGePoint3d(50, 40, 0));
}

TEST_F(ViewAnalysis, rows_get_y_ordinates_at_their_ends_on_the_left_and_right) {
    State().midX = 100.0;
    std::vector<circle> left, right;
    SelectYCircles({Record(150, 10), Record(120, 10), Record(20, 30), Record(60, 30),
                    Record(40, 50), Record(160, 50), Record(100, 70)},
                   left, right, AcDbExtents());
    ASSERT_EQ(right.size(), 3u);
    EXPECT_EQ(right[0].center, AcGePoint3d(150, 10, 0));
    EXPECT_EQ(right[1].center, AcGePoint3d(160, 50, 0));
    EXPECT_EQ(right[2].center, AcGePoint3d(100, 70, 0));  // a single on midX goes right
    ASSERT_EQ(left.size(), 2u);
    EXPECT_EQ(left[0].center, AcGePoint3d(20, 30, 0));
    EXPECT_EQ(left[1].center, AcGePoint3d(40, 50, 0));
}

TEST_F(ViewAnalysis, bubble_sort_exchanges_equal_neighbours) {
    circle a = Record(1, 1), b = Record(1, 2), c = Record(0, 3);
    std::vector<circle> circles = {a, b, c};
    SortCirclesByX(circles);
    // Pass 1: a,b equal -> b,a; a,c -> c,a: [b,c,a]. Pass 2: b,c -> c,b: [c,b,a].
    EXPECT_EQ(circles[0].center.y, 3.0);
    EXPECT_EQ(circles[1].center.y, 2.0);
    EXPECT_EQ(circles[2].center.y, 1.0);
    std::vector<circle> rows = {Record(0, 5), Record(0, 1), Record(0, 3)};
    SortCirclesByY(rows);
    EXPECT_EQ(rows[0].textPos.y, 1.0);
    EXPECT_EQ(rows[2].textPos.y, 5.0);
}

TEST_F(ViewAnalysis, datum_marker_on_the_frame_box_edge_stays_and_is_no_datum) {
    AcDbObjectId onEdge = AddCircle(0, 300, 256, L"FRONT");
    State().haveDatum = true;
    AcDbObjectIdArray lines;
    CollectViewFrame(L"FRONT", lines, &Drawing());
    EXPECT_FALSE(State().haveDatum);
    EXPECT_FALSE(onEdge.isErased());
}

TEST_F(ViewAnalysis, marker_circle_on_the_view_layer_is_erased_and_becomes_the_datum) {
    AddViewFrame(L"FRONT", 100, 100, 410, 310);
    AddCircle(150, 150);
    AcDbObjectId first = AddCircle(250, 200, 256, L"front");
    AcDbObjectId last = AddCircle(255, 205, 256, L"FRONT");
    std::vector<circle> circles = Collect();
    EXPECT_TRUE(first.isErased());
    EXPECT_TRUE(last.isErased());
    EXPECT_TRUE(State().haveDatum);
    EXPECT_EQ(State().datumPoint, AcGePoint3d(255, 205, 0));
    EXPECT_EQ(State().datum.center, AcGePoint3d(255, 205, 0));
    ASSERT_EQ(circles.size(), 1u);  // the markers never reach the circles
}

TEST_F(ViewAnalysis, datum_point_keeps_its_value_when_a_later_view_has_no_marker) {
    State().datumPoint = AcGePoint3d(1, 2, 0);
    State().haveDatum = true;
    AddViewFrame(L"LEFT", 100, 100, 410, 310);
    AcDbObjectIdArray lines;
    CollectViewFrame(L"LEFT", lines, &Drawing());
    EXPECT_EQ(lines.length(), 4);
    EXPECT_FALSE(State().haveDatum);
    EXPECT_EQ(State().datumPoint, AcGePoint3d(1, 2, 0));
}

TEST_F(ViewAnalysis, erased_entities_are_passed_over_and_the_walks_succeed) {
    // One erased circle where the walks start and one where they step.
    AcDbObjectId first = AddCircle(150, 150);
    AddViewFrame(L"FRONT", 100, 100, 410, 310);
    AcDbObjectId middle = AddCircle(250, 250);
    AddCircle(200, 200);
    for (AcDbObjectId gone : {first, middle}) {
        AcDbEntity* e = nullptr;
        acdbOpenAcDbEntity(e, gone, AcDb::kForWrite);
        e->erase();
        e->close();
    }
    AcDbObjectIdArray lines;
    EXPECT_EQ(CollectViewFrame(L"FRONT", lines, &Drawing()), 0);
    EXPECT_EQ(lines.length(), 4);
    std::vector<circle> circles;
    AcDbExtents box;
    EXPECT_EQ(CollectViewCircles(lines, circles, box, &Drawing()), 0);
    ASSERT_EQ(circles.size(), 1u);
    EXPECT_EQ(circles[0].center, AcGePoint3d(200, 200, 0));
}

TEST_F(ViewAnalysis, frame_lines_must_lie_wholly_in_the_frame_box) {
    Add(Drawing(), new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(840, 594, 0)), L"FRONT");
    Add(Drawing(), new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(840.001, 594, 0)), L"FRONT");
    AcDbObjectIdArray lines;
    CollectViewFrame(L"FRONT", lines, &Drawing());
    EXPECT_EQ(lines.length(), 1);
}

TEST_F(ViewAnalysis, outline_points_take_the_previous_views_centre) {
    State().midX = 11.0;
    State().midY = 22.0;
    AddViewFrame(L"FRONT", 100, 100, 410, 310);
    DimensionView(L"FRONT");
    std::vector<AcDbObjectId> dims = RotatedDimensions();
    ASSERT_EQ(dims.size(), 2u);
    AcDbRotatedDimension* height = nullptr;
    acdbOpenObject(height, dims[0], AcDb::kForRead);
    EXPECT_EQ(height->dimLinePoint(), AcGePoint3d(95, 22, 0));
    height->close();
    AcDbRotatedDimension* width = nullptr;
    acdbOpenObject(width, dims[1], AcDb::kForRead);
    EXPECT_EQ(width->dimLinePoint(), AcGePoint3d(11, 315, 0));
    width->close();
    EXPECT_EQ(State().midX, 255.0);
    EXPECT_EQ(State().midY, 205.0);
}

TEST_F(ViewAnalysis, offset_beyond_half_the_rectangle_inverts_the_view_box_unchecked) {
    Module().cadStandardIni.sundry.OFFSET = 200.0;
    AddViewFrame(L"FRONT", 100, 100, 410, 310);
    DimensionView(L"FRONT");
    EXPECT_EQ(State().x0, 300.0);
    EXPECT_EQ(State().x1, 210.0);
    EXPECT_EQ(State().boxWidth, 90.0);
    EXPECT_EQ(State().boxHeight, 190.0);
}

}  // namespace
