// FunLineAndArcMerged: collinear pieces become one line, arcs of one circle one arc or circle,
// flat arcs lines.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "curves/line_arc_merge.hpp"
#include "curves_fixture.hpp"
#include "geometry_matchers.hpp"
#include "platform/db/arc.hpp"
#include "platform/db/circle.hpp"

namespace {

using P = AcGePoint3d;
constexpr double kPi = 3.14159265358979323846;

class LineAndArcMerged : public CurvesTest {
protected:
    void SetUp() override {
        CurvesTest::SetUp();
        WriteSections(L"[LineAndArcMerged]\nBolOpen=1\nTolerance=0.05\n");
    }
    AcDbObjectId AddLine(P s, P e, const std::wstring& layer = L"0") {
        return AddToDrawing(new AcDbLine(s, e), layer);
    }
    // An arc of the circle about `center` in degrees.
    AcDbObjectId AddArc(P center, double radius, double startDegrees, double endDegrees,
                        const std::wstring& layer = L"0") {
        return AddToDrawing(new AcDbArc(center, radius, startDegrees * kPi / 180, endDegrees * kPi / 180),
                            layer);
    }
    void Run() { Cleanup().FunLineAndArcMerged(); }
    std::vector<std::pair<P, P>> Lines() { return ModelSpaceLines(Drawing()); }
    // Start, end and the point at the half parameter of the only arc.
    void OnlyArcEnds(P& s, P& m, P& e) {
        AcDbObjectIdArray arcs = IdsOfType(2003);
        ASSERT_EQ(arcs.length(), 1);
        InspectAs<AcDbArc>(arcs[0], [&](AcDbArc* arc) {
            double sp = 0, ep = 0;
            arc->getStartParam(sp);
            arc->getEndParam(ep);
            arc->getStartPoint(s);
            arc->getEndPoint(e);
            arc->getPointAtParam((sp + ep) / 2, m);
        });
    }
};

TEST_F(LineAndArcMerged, two_collinear_touching_lines_become_one_line) {
    AcDbObjectId a = AddLine(P(0, 0, 0), P(5, 0, 0));
    AcDbObjectId b = AddLine(P(5, 0, 0), P(10, 0, 0));
    Run();
    EXPECT_TRUE(IsGone(a));
    EXPECT_TRUE(IsGone(b));
    auto lines = Lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].first, P(0, 0, 0));
    EXPECT_EQ(lines[0].second, P(10, 0, 0));
}

TEST_F(LineAndArcMerged, collinear_lines_merge_over_a_gap_below_0_02_and_stay_apart_above) {
    struct Case {
        const char* name;
        double gap;
        size_t lines;
    };
    // On 0.02 the lines still merge: the end lies exactly t beyond the other segment, which the
    // inclusive range test lets pass, and on its line.
    const Case cases[] = {
        {"gap just below 0.02", 0.0199, 1}, {"gap on 0.02", 0.02, 1}, {"gap just above 0.02", 0.0201, 2}};
    for (const auto& c : cases) {
        AcDbObjectIdArray before = ModelSpaceIds(Drawing());
        for (const AcDbObjectId& id : before) {
            AcDbEntity* e = nullptr;
            acdbOpenAcDbEntity(e, id, AcDb::kForWrite);
            e->erase();
            e->close();
        }
        AddLine(P(0, 0, 0), P(5, 0, 0));
        AddLine(P(5 + c.gap, 0, 0), P(10, 0, 0));
        Run();
        EXPECT_EQ(Lines().size(), c.lines) << c.name;
    }
}

TEST_F(LineAndArcMerged, falling_pieces_give_the_falling_diagonal_of_their_box) {
    AddLine(P(0, 10, 0), P(5, 5, 0));
    AddLine(P(5, 5, 0), P(10, 0, 0));
    Run();
    auto lines = Lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].first, P(10, 0, 0));
    EXPECT_EQ(lines[0].second, P(0, 10, 0));
}

TEST_F(LineAndArcMerged, vertical_lines_on_one_run_merge) {
    AddLine(P(3, 0, 0), P(3, 4, 0));
    AddLine(P(3, 4, 0), P(3, 9, 0));
    AddLine(P(3, 12, 0), P(3, 9, 0));
    Run();
    auto lines = Lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].first, P(3, 0, 0));
    EXPECT_EQ(lines[0].second, P(3, 12, 0));
}

TEST_F(LineAndArcMerged, vertical_run_with_some_width_turns_to_fall_by_the_infinite_slope) {
    // The last member read is vertical: its slope is infinite, never near the box's, so the
    // box's diagonal is turned.
    AddLine(P(3, 0, 0), P(3, 4, 0));
    AddLine(P(3.0005, 4, 0), P(3.0005, 9, 0));
    AddLine(P(3, 12, 0), P(3, 9, 0));
    Run();
    auto lines = Lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].first, P(3.0005, 0, 0));
    EXPECT_EQ(lines[0].second, P(3, 12, 0));
}

TEST_F(LineAndArcMerged, merged_line_spans_the_z_of_its_members_box) {
    AddLine(P(0, 0, 1), P(5, 0, 0));
    AddLine(P(5, 0, 0), P(10, 0, 3));
    Run();
    auto lines = Lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].first, P(0, 0, 0));
    EXPECT_EQ(lines[0].second, P(10, 0, 3));
}

TEST_F(LineAndArcMerged, dashed_and_solid_pieces_give_a_solid_line_other_linetypes_the_dashed_one) {
    AcDbObjectId dashed = AddLine(P(0, 0, 0), P(5, 0, 0), L"PART");
    AcDbObjectId solid = AddLine(P(5, 0, 0), P(10, 0, 0), L"PART");
    SetLook(dashed, L"DASHED", 3, 2.0);
    SetLook(solid, L"Continuous", 4, 2.0);
    AcDbObjectId other1 = AddLine(P(0, 5, 0), P(5, 5, 0), L"EDGE");
    AcDbObjectId other2 = AddLine(P(5, 5, 0), P(10, 5, 0), L"EDGE");
    SetLook(other1, L"ByLayer", 1, 2.0);
    SetLook(other2, L"ByBlock", 2, 2.0);
    Run();
    AcDbObjectIdArray lines = IdsOfType(2001);
    ASSERT_EQ(lines.length(), 2);
    Look first = LookOfId(lines[0]);
    EXPECT_EQ(first.linetype, L"Continuous");
    EXPECT_EQ(first.layer, L"PART");
    EXPECT_EQ(first.color, 4);  // the last member read gives the colour
    EXPECT_EQ(first.scale, 1.0);
    Look second = LookOfId(lines[1]);
    EXPECT_EQ(second.linetype, L"DASHED");
    EXPECT_EQ(second.layer, L"EDGE");
    EXPECT_EQ(second.color, 2);
    EXPECT_EQ(second.scale, 0.0);
}

TEST_F(LineAndArcMerged, four_quarter_arcs_give_a_circle) {
    for (int q = 0; q < 4; ++q) AddArc(P(2, 3, 0), 5.0, 90.0 * q, 90.0 * (q + 1));
    Run();
    EXPECT_EQ(CountOfType(2003), 0);
    AcDbObjectIdArray circles = IdsOfType(2002);
    ASSERT_EQ(circles.length(), 1);
    InspectAs<AcDbCircle>(circles[0], [](AcDbCircle* circle) {
        EXPECT_THAT(circle->center(), IsNearPoint(P(2, 3, 0), 1e-9));
        EXPECT_NEAR(circle->radius(), 5.0, 1e-9);
    });
}

TEST_F(LineAndArcMerged, three_quarter_arcs_give_one_arc_across_them) {
    for (int q = 0; q < 3; ++q) AddArc(P(0, 0, 0), 5.0, 90.0 * q, 90.0 * (q + 1));
    Run();
    EXPECT_EQ(CountOfType(2002), 0);
    P s, m, e;
    OnlyArcEnds(s, m, e);
    EXPECT_THAT(s, IsNearPoint(P(5, 0, 0), 1e-9));
    EXPECT_THAT(m, IsNearPoint(P(-5 * std::sqrt(0.5), 5 * std::sqrt(0.5), 0), 1e-9));
    EXPECT_THAT(e, IsNearPoint(P(0, -5, 0), 1e-9));
}

TEST_F(LineAndArcMerged, merged_arc_takes_layer_and_colour_of_its_first_piece_and_scale_0_when_solid) {
    AcDbObjectId first = AddArc(P(0, 0, 0), 5.0, 0.0, 90.0, L"ARCS1");
    AcDbObjectId second = AddArc(P(0, 0, 0), 5.0, 90.0, 180.0, L"ARCS2");
    SetLook(first, L"DASHED", 5, 3.0);
    SetLook(second, L"Continuous", 6, 3.0);
    Run();
    AcDbObjectIdArray arcs = IdsOfType(2003);
    ASSERT_EQ(arcs.length(), 1);
    Look look = LookOfId(arcs[0]);
    EXPECT_EQ(look.layer, L"ARCS1");
    EXPECT_EQ(look.color, 5);
    EXPECT_EQ(look.linetype, L"Continuous");
    EXPECT_EQ(look.scale, 0.0);
}

TEST_F(LineAndArcMerged, overlapping_arcs_merge_and_a_result_longer_than_its_pieces_is_refused) {
    AddArc(P(0, 0, 0), 5.0, 0.0, 100.0);
    AddArc(P(0, 0, 0), 5.0, 80.0, 180.0);
    Run();
    P s, m, e;
    OnlyArcEnds(s, m, e);
    EXPECT_THAT(s, IsNearPoint(P(5, 0, 0), 1e-9));
    EXPECT_THAT(e, IsNearPoint(P(-5, 0, 0), 1e-9));
}

TEST_F(LineAndArcMerged, arcs_of_one_circle_that_do_not_touch_stay) {
    AcDbObjectId a = AddArc(P(0, 0, 0), 5.0, 0.0, 60.0);
    AcDbObjectId b = AddArc(P(0, 0, 0), 5.0, 120.0, 180.0);
    Run();
    EXPECT_FALSE(IsGone(a));
    EXPECT_FALSE(IsGone(b));
    EXPECT_EQ(EntityCount(), 2);
}

TEST_F(LineAndArcMerged, arcs_join_only_with_radius_and_centre_strictly_within_tolerance) {
    struct Case {
        const char* name;
        double radius;
        P center;
        int arcs;
    };
    const Case cases[] = {
        {"radius just inside", 5.049, P(0, 0, 0), 1},
        {"radius just outside", 5.051, P(0, 0, 0), 2},
        {"centre just inside", 5.0, P(0.049, 0, 0), 1},
        {"centre just outside", 5.0, P(0.051, 0, 0), 2},
    };
    for (const auto& c : cases) {
        for (const AcDbObjectId& id : ModelSpaceIds(Drawing())) {
            AcDbEntity* e = nullptr;
            acdbOpenAcDbEntity(e, id, AcDb::kForWrite);
            e->erase();
            e->close();
        }
        AddArc(P(0, 0, 0), 5.0, 0.0, 90.0);
        AddArc(c.center, c.radius, 90.0, 180.0);
        Run();
        EXPECT_EQ(CountOfType(2003), c.arcs) << c.name;
    }
}

TEST_F(LineAndArcMerged, end_angle_within_tolerance_of_an_earlier_one_leaves_the_sweep) {
    // The second arc ends 0.03 degrees after the first (Tolerance 0.05): its end angle is thinned
    // out of the list, so the merged arc ends where the first one does.
    AddArc(P(0, 0, 0), 10.0, 0.0, 200.0);
    AddArc(P(0, 0, 0), 10.0, 100.0, 200.03);
    Run();
    P s, m, e;
    OnlyArcEnds(s, m, e);
    EXPECT_THAT(s, IsNearPoint(P(10, 0, 0), 1e-6));
    EXPECT_THAT(e, IsNearPoint(P(10 * std::cos(200 * kPi / 180), 10 * std::sin(200 * kPi / 180), 0), 1e-6));
}

TEST_F(LineAndArcMerged, flat_arc_becomes_a_line_alone_and_with_tolerance_0) {
    WriteSections(L"[LineAndArcMerged]\nTolerance=0\n");
    // Radius 1000 over 1 degree: the sagitta is 0.038, too high; over 0.5 degree it is 0.0095.
    AcDbObjectId flat = AddArc(P(0, 0, 0), 1000.0, 90.0, 90.5, L"FLAT");
    SetLook(flat, L"DASHED", 7, 4.0);
    AcDbObjectId bent = AddArc(P(0, 0, 0), 1000.0, 200.0, 201.0);
    Run();
    EXPECT_TRUE(IsGone(flat));
    EXPECT_FALSE(IsGone(bent));
    AcDbObjectIdArray lines = IdsOfType(2001);
    ASSERT_EQ(lines.length(), 1);
    Look look = LookOfId(lines[0]);
    EXPECT_EQ(look.layer, L"FLAT");
    EXPECT_EQ(look.linetype, L"DASHED");
    EXPECT_EQ(look.color, 7);
    EXPECT_EQ(look.scale, 4.0);
    auto ends = Lines();
    EXPECT_THAT(ends[0].first, IsNearPoint(P(0, 1000, 0), 1e-9));
}

TEST_F(LineAndArcMerged, tolerance_0_clusters_no_arcs) {
    WriteSections(L"[LineAndArcMerged]\nTolerance=0\n");
    AddArc(P(0, 0, 0), 5.0, 0.0, 90.0);
    AddArc(P(0, 0, 0), 5.0, 90.0, 180.0);
    Run();
    EXPECT_EQ(CountOfType(2003), 2);
}

TEST_F(LineAndArcMerged, one_line_and_one_arc_change_nothing_and_log_both_lines) {
    AcDbObjectId line = AddLine(P(0, 0, 0), P(5, 0, 0));
    AcDbObjectId arc = AddArc(P(0, 0, 0), 5.0, 0.0, 90.0);
    Run();
    EXPECT_FALSE(IsGone(line));
    EXPECT_FALSE(IsGone(arc));
    EXPECT_EQ(LogText(), L"合并直线和圆弧开始\n合并直线和圆弧结束\n");
}

TEST_F(LineAndArcMerged, drawing_without_lines_or_arcs_logs_only_the_start) {
    AddToDrawing(new AcDbCircle(P(0, 0, 0), AcGeVector3d(0, 0, 1), 2.0));
    Run();
    EXPECT_EQ(LogText(), L"合并直线和圆弧开始\n");
}

TEST_F(LineAndArcMerged, zero_length_line_sorts_among_vertical_lines) {
    AddLine(P(0, 0, 0), P(0, 10, 0));
    AcDbObjectId dot = AddLine(P(0, 5, 0), P(0, 5, 0));
    AcDbObjectId apart = AddLine(P(7, 5, 0), P(7, 5, 0));
    Run();
    EXPECT_TRUE(IsGone(dot));
    EXPECT_FALSE(IsGone(apart));
    auto lines = Lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].first, P(7, 5, 0));
    EXPECT_EQ(lines[1].first, P(0, 0, 0));
    EXPECT_EQ(lines[1].second, P(0, 10, 0));
}

TEST_F(LineAndArcMerged, switch_off_in_the_file_merges_all_the_same) {
    WriteSections(L"[LineAndArcMerged]\nBolOpen=0\nTolerance=0.05\n");
    AddLine(P(0, 0, 0), P(5, 0, 0));
    AddLine(P(5, 0, 0), P(10, 0, 0));
    Run();
    EXPECT_EQ(Lines().size(), 1u);
    EXPECT_TRUE(CleanupGlobals->lineAndArcMerged->BolOpen);
}

TEST_F(LineAndArcMerged, parallel_lines_of_one_slope_merge_only_where_they_touch) {
    AddLine(P(0, 0, 0), P(5, 0, 0));
    AddLine(P(5, 0, 0), P(10, 0, 0));
    AddLine(P(0, 1, 0), P(5, 1, 0));
    AddLine(P(5.5, 1, 0), P(10, 1, 0));
    Run();
    EXPECT_EQ(Lines().size(), 3u);
}

TEST_F(LineAndArcMerged, cluster_members_follow_the_walk_order) {
    AcDbObjectId a = AddLine(P(0, 0, 0), P(1, 0, 0));
    AcDbObjectId far = AddLine(P(3, 0, 0), P(4, 0, 0));
    AcDbObjectId b = AddLine(P(2, 0, 0), P(3, 0, 0));
    AcDbObjectId c = AddLine(P(1, 0, 0), P(2, 0, 0));
    auto clusters = ClusterTouchingLines(AcDbObjectIdArray{a, far, b, c}, 0.02);
    ASSERT_EQ(clusters.size(), 1u);
    EXPECT_EQ(clusters[0], (AcDbObjectIdArray{a, c, b, far}));
    AcDbObjectId alone = AddLine(P(0, 5, 0), P(1, 5, 0));
    clusters = ClusterTouchingLines(AcDbObjectIdArray{alone, a}, 0.02);
    EXPECT_EQ(clusters.size(), 2u);
}

}  // namespace

namespace {

TEST_F(LineAndArcMerged, two_pieces_below_the_centre_give_one_arc_across_them) {
    AddArc(P(100, 50, 0), 8.0, 200.0, 270.0);
    AddArc(P(100, 50, 0), 8.0, 270.0, 340.0);
    Run();
    P s, m, e;
    OnlyArcEnds(s, m, e);
    auto at = [](double degrees) {
        return P(100 + 8 * std::cos(degrees * kPi / 180), 50 + 8 * std::sin(degrees * kPi / 180), 0);
    };
    EXPECT_THAT(s, IsNearPoint(at(200), 1e-9));
    EXPECT_THAT(m, IsNearPoint(at(270), 1e-9));
    EXPECT_THAT(e, IsNearPoint(at(340), 1e-9));
}

}  // namespace

namespace {

TEST_F(LineAndArcMerged, arc_longer_than_its_pieces_by_more_than_5_percent_is_refused) {
    // With a tolerance of 2 the pieces 0-90 and 100-180 join across their gap, and the probe of
    // the gap lies within 2 of an end: the merged arc runs 0 to 180, 180 / 170 of the pieces.
    WriteSections(L"[LineAndArcMerged]\nTolerance=2\n");
    AcDbObjectId a = AddArc(P(0, 0, 0), 5.0, 0.0, 90.0);
    AcDbObjectId b = AddArc(P(0, 0, 0), 5.0, 100.0, 180.0);
    Run();
    EXPECT_FALSE(IsGone(a));
    EXPECT_FALSE(IsGone(b));
    EXPECT_EQ(CountOfType(2003), 2);
}

TEST_F(LineAndArcMerged, arc_longer_than_its_pieces_by_less_than_5_percent_stands) {
    WriteSections(L"[LineAndArcMerged]\nTolerance=2\n");
    AddArc(P(0, 0, 0), 5.0, 0.0, 90.0);
    AddArc(P(0, 0, 0), 5.0, 95.0, 180.0);
    Run();
    P s, m, e;
    OnlyArcEnds(s, m, e);
    EXPECT_THAT(s, IsNearPoint(P(5, 0, 0), 1e-9));
    EXPECT_THAT(e, IsNearPoint(P(-5, 0, 0), 1e-9));
}

TEST_F(LineAndArcMerged, dashed_arc_pieces_give_a_dashed_arc_with_its_scale_kept) {
    AcDbObjectId first = AddArc(P(0, 0, 0), 5.0, 0.0, 90.0);
    AcDbObjectId second = AddArc(P(0, 0, 0), 5.0, 90.0, 180.0);
    SetLook(first, L"DASHED", 5, 3.0);
    SetLook(second, L"DASHED", 6, 3.0);
    Run();
    AcDbObjectIdArray arcs = IdsOfType(2003);
    ASSERT_EQ(arcs.length(), 1);
    Look look = LookOfId(arcs[0]);
    EXPECT_EQ(look.linetype, L"DASHED");
    EXPECT_EQ(look.scale, 1.0);
}

TEST_F(LineAndArcMerged, box_slope_off_the_last_piece_by_0_0005_or_more_turns_the_line) {
    struct Case {
        const char* name;
        P start;
        P end;
        bool turned;
    };
    // The first piece runs (0,0)-(10,10); the second, of slope 1.0004, is the last one read.
    const Case cases[] = {
        {"box slope 0.00059 off", P(5, 5.01, 0), P(15, 15.0149, 0), true},
        {"box slope 0.00013 off", P(5, 5, 0), P(15, 15.004, 0), false},
    };
    for (const auto& c : cases) {
        for (const AcDbObjectId& id : ModelSpaceIds(Drawing())) {
            AcDbEntity* e = nullptr;
            acdbOpenAcDbEntity(e, id, AcDb::kForWrite);
            e->erase();
            e->close();
        }
        AddLine(P(0, 0, 0), P(10, 10, 0));
        AddLine(c.start, c.end);
        Run();
        auto lines = Lines();
        ASSERT_EQ(lines.size(), 1u) << c.name;
        EXPECT_EQ(lines[0].first, c.turned ? P(c.end.x, 0, 0) : P(0, 0, 0)) << c.name;
        EXPECT_EQ(lines[0].second, c.turned ? P(0, c.end.y, 0) : c.end) << c.name;
    }
}

}  // namespace
