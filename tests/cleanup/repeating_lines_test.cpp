// Lines that lie on other lines go, passing a solid linetype to the line that stays; splines
// along a line go by the exported removal.
#include <gtest/gtest.h>

#include <random>

#include "cleanup/repeating_lines.hpp"
#include "cleanup_fixture.hpp"
#include "curves/spline_builders.hpp"
#include <cmath>
#include "platform/db/circle.hpp"
#include "curves/geometry.hpp"
#include "platform/db/arc.hpp"
#include "platform/db/spline.hpp"

namespace {

class RepeatingLines : public CleanupTest {
protected:
    void Run(const std::wstring& section) {
        WriteIni(L"[public]\r\nStrSolidLineType=Continuous\r\n" + section);
        Cleanup().FunDeleteRepeatingLine();
    }
    void RunOn(double tolerance) {
        Run(L"[DeleteRepeatingLine]\r\nBolOpen=1\r\nTolerance=" + std::to_wstring(tolerance) + L"\r\n");
    }
    void RunDownSpline(int mode, double tolerance) {
        std::wstring t = std::to_wstring(tolerance);
        WriteIni(L"[public]\r\nStrSolidLineType=Continuous\r\n[DeleteArcDownCurve]\r\nBolOpen=1\r\nTolerance=" + t +
                 L"\r\n[DeleteLineDownCurve]\r\nTolerance=" + t + L"\r\n");
        Cleanup().FunDeleteLineAndArcDownSpline(mode);
    }
    AcDbObjectId Spline(std::initializer_list<double> xy) {
        std::vector<AcGePoint3d> points;
        std::vector<double> v(xy);
        for (size_t i = 0; i + 1 < v.size(); i += 2) points.push_back(AcGePoint3d(v[i], v[i + 1], 0));
        // A clamped cubic through four control points.
        auto* spline = new AcDbSpline;
        spline->setNurbsData(3, false, false, false, points, {0, 0, 0, 0, 1, 1, 1, 1}, {});
        return AddToDrawing(spline, L"0");
    }
};

TEST_F(RepeatingLines, missing_section_or_switch_leaves_duplicates) {
    AddLine(0, 0, 10, 0);
    AcDbObjectId copy = AddLine(0, 0, 10, 0);
    Run(L"");
    EXPECT_FALSE(IsGone(copy));
    Run(L"[DeleteRepeatingLine]\r\nTolerance=0.01\r\n");
    EXPECT_FALSE(IsGone(copy));
}

TEST_F(RepeatingLines, missing_tolerance_deletes_not_even_exact_copies) {
    AddLine(0, 0, 10, 0);
    AcDbObjectId copy = AddLine(0, 0, 10, 0);
    Run(L"[DeleteRepeatingLine]\r\nBolOpen=1\r\n");
    EXPECT_FALSE(IsGone(copy));
}

TEST_F(RepeatingLines, of_two_equal_lines_the_later_goes) {
    AcDbObjectId first = AddLine(0, 0, 10, 0);
    AcDbObjectId second = AddLine(0, 0, 10, 0);
    RunOn(0.01);
    EXPECT_FALSE(IsGone(first));
    EXPECT_TRUE(IsGone(second));
}

TEST_F(RepeatingLines, solid_later_copy_passes_its_linetype_and_scale_0_to_the_dashed_earlier) {
    AcDbObjectId dashed = AddLine(0, 0, 10, 0);
    LinetypeName(dashed, L"HIDDEN");
    AcDbObjectId solid = AddLine(0, 0, 10, 0);
    LinetypeName(solid, L"Continuous");
    RunOn(0.01);
    EXPECT_TRUE(IsGone(solid));
    EXPECT_EQ(LinetypeOf(dashed), L"Continuous");
    EXPECT_EQ(LinetypeScaleOf(dashed), 0.0);
}

TEST_F(RepeatingLines, dashed_line_dying_leaves_the_survivor_as_it_is) {
    AcDbObjectId solid = AddLine(0, 0, 10, 0);
    AcDbObjectId dashed = AddLine(0, 0, 10, 0);
    LinetypeName(dashed, L"HIDDEN");
    RunOn(0.01);
    EXPECT_TRUE(IsGone(dashed));
    EXPECT_EQ(LinetypeScaleOf(solid), 1.0);
}

TEST_F(RepeatingLines, shorter_nested_line_goes_whichever_came_first) {
    AcDbObjectId shortFirst = AddLine(2, 0, 5, 0);
    AcDbObjectId longLine = AddLine(0, 0, 10, 0);
    AcDbObjectId shortLast = AddLine(3, 0, 7, 0);
    RunOn(0.01);
    EXPECT_TRUE(IsGone(shortFirst));
    EXPECT_TRUE(IsGone(shortLast));
    EXPECT_FALSE(IsGone(longLine));
}

TEST_F(RepeatingLines, lines_that_overlap_in_part_both_stay) {
    AcDbObjectId a = AddLine(0, 0, 10, 0);
    AcDbObjectId b = AddLine(5, 0, 15, 0);
    RunOn(0.01);
    EXPECT_FALSE(IsGone(a));
    EXPECT_FALSE(IsGone(b));
}

TEST_F(RepeatingLines, reversed_line_counts_as_equal) {
    AddLine(0, 0, 10, 5);
    AcDbObjectId reversed = AddLine(10, 5, 0, 0);
    RunOn(0.01);
    EXPECT_TRUE(IsGone(reversed));
}

TEST_F(RepeatingLines, zero_length_line_holds_nothing_but_goes_when_it_lies_on_a_line) {
    AcDbObjectId dot = AddLine(5, 0, 5, 0);
    AcDbObjectId longLine = AddLine(0, 0, 10, 0);
    AcDbObjectId apart = AddLine(50, 50, 50, 50);
    AcDbObjectId twin = AddLine(50, 50, 50, 50);
    RunOn(0.01);
    EXPECT_TRUE(IsGone(dot));
    EXPECT_FALSE(IsGone(longLine));
    EXPECT_FALSE(IsGone(apart));
    EXPECT_FALSE(IsGone(twin));
}

TEST_F(RepeatingLines, three_equal_lines_leave_the_first) {
    AcDbObjectId first = AddLine(0, 0, 10, 0);
    AcDbObjectId second = AddLine(0, 0, 10, 0);
    AcDbObjectId third = AddLine(0, 0, 10, 0);
    RunOn(0.01);
    EXPECT_FALSE(IsGone(first));
    EXPECT_TRUE(IsGone(second));
    EXPECT_TRUE(IsGone(third));
}

TEST_F(RepeatingLines, line_under_an_arc_or_a_polyline_is_not_compared) {
    AcDbObjectId line = AddLine(0, 0, 10, 0);
    AcDbObjectId polyline = AddPolyline({0, 0, 10, 0}, false);
    AcDbObjectId arc = AddToDrawing(new AcDbArc(AcGePoint3d(5, 0, 0), 5, 0, 3.14));
    RunOn(0.01);
    EXPECT_FALSE(IsGone(line));
    EXPECT_FALSE(IsGone(polyline));
    EXPECT_FALSE(IsGone(arc));
}

// Only lines enter the duplicate list: the rows of the pair test for arcs (2003), circles and
// polylines (their records carry 2002) and splines (2004) never meet, so copies of them stay.
TEST_F(RepeatingLines, equal_arcs_circles_and_polylines_and_ones_on_top_of_each_other_all_stay) {
    std::vector<AcDbObjectId> ids;
    for (int copy = 0; copy < 2; ++copy) {
        ids.push_back(AddToDrawing(new AcDbArc(AcGePoint3d(5, 0, 0), 5, 0, 3.14)));
        ids.push_back(AddToDrawing(new AcDbCircle(AcGePoint3d(30, 0, 0), AcGeVector3d::kZAxis, 4)));
        ids.push_back(AddPolyline({50, 0, 60, 0, 60, 10}, false));
        ids.push_back(AddToDrawing(ArcSpline(AcGePoint3d(5, 0, 0), 5, 0, 90)));
    }
    // A smaller arc on the first arc, a polyline along the arc's chord, a line in the circle.
    ids.push_back(AddToDrawing(new AcDbArc(AcGePoint3d(5, 0, 0), 5, 0.5, 1.5)));
    ids.push_back(AddPolyline({0, 0, 10, 0}, false));
    for (const AcDbObjectId& id : ids) LinetypeName(id, L"Continuous");
    AcDbObjectId line = AddLine(26, 0, 34, 0);
    RunOn(0.01);
    for (size_t i = 0; i < ids.size(); ++i) EXPECT_FALSE(IsGone(ids[i])) << i;
    EXPECT_FALSE(IsGone(line));
    EXPECT_EQ(LiveIds().length(), static_cast<int>(ids.size()) + 1);
}

// The arc pass pairs the arcs with a list of splines that nothing fills: an arc-shaped spline on
// an arc and a circle-shaped one on a circle stay in every mode, and the solid linetype of the
// spline passes to nothing.
TEST_F(RepeatingLines, arc_pass_leaves_splines_on_arcs_and_circles_in_every_mode) {
    for (int mode : {0, 2}) {
        for (const AcDbObjectId& id : LiveIds()) Change(id, [](AcDbEntity* e) { e->erase(); });
        AcDbObjectId arc = AddToDrawing(new AcDbArc(AcGePoint3d(0, 0, 0), 5, 0, 1.5707963267948966));
        AcDbObjectId arcSpline = AddToDrawing(ArcSpline(AcGePoint3d(0, 0, 0), 5, 0, 90));
        AcDbObjectId circle = AddToDrawing(new AcDbCircle(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, 3));
        AcDbObjectId circleSpline = AddToDrawing(ArcSpline(AcGePoint3d(0, 0, 0), 3, 0, 360));
        LinetypeName(arcSpline, L"Continuous");
        LinetypeName(circleSpline, L"Continuous");
        RunDownSpline(mode, 0.01);
        EXPECT_FALSE(IsGone(arcSpline)) << mode;
        EXPECT_FALSE(IsGone(circleSpline)) << mode;
        EXPECT_NE(LinetypeOf(arc), L"Continuous") << mode;
        EXPECT_NE(LinetypeOf(circle), L"Continuous") << mode;
    }
}

TEST_F(RepeatingLines, tolerance_bound_of_the_segment_test_is_strict) {
    struct Row {
        double offset;
        bool goes;
    };
    for (Row row : {Row{0.009, true}, Row{0.011, false}}) {
        AddLine(0, 0, 10, 0);
        AcDbObjectId near = AddLine(2, row.offset, 5, row.offset);
        RunOn(0.01);
        EXPECT_EQ(IsGone(near), row.goes) << row.offset;
        for (const AcDbObjectId& id : LiveIds()) Change(id, [](AcDbEntity* e) { e->erase(); });
    }
}

TEST_F(RepeatingLines, spline_removal_in_mode_2_changes_nothing) {
    AddLine(0, 0, 10, 0);
    AcDbObjectId spline = Spline({0, 0, 3, 0, 6, 0, 10, 0});
    RunDownSpline(2, 0.01);
    EXPECT_FALSE(IsGone(spline));
}

TEST_F(RepeatingLines, straight_spline_away_from_the_origin_stays_in_mode_1) {
    AddLine(100, 0, 110, 0);
    AcDbObjectId spline = Spline({100, 0, 103, 0, 106, 0, 110, 0});
    RunDownSpline(1, 0.01);
    EXPECT_FALSE(IsGone(spline));
}

TEST_F(RepeatingLines, straight_spline_from_the_origin_along_a_line_goes_and_the_line_stays) {
    AcDbObjectId line = AddLine(0, 0, 10, 0);
    AcDbObjectId spline = Spline({0, 0, 3, 0, 6, 0, 10, 0});
    LinetypeName(spline, L"Continuous");
    RunDownSpline(1, 0.01);
    EXPECT_TRUE(IsGone(spline));
    EXPECT_FALSE(IsGone(line));
    EXPECT_EQ(LinetypeOf(line), L"Continuous");
    EXPECT_EQ(LinetypeScaleOf(line), 0.0);
}

TEST(ClassifySplineRecord, classes_by_points) {
    tCurve record;
    EXPECT_EQ(ClassifySpline(record, 0.01, 0.01), -1);
    record.points.append(AcGePoint3d(0, 0, 0));
    record.points.append(AcGePoint3d(5, 0.005, 0));
    record.points.append(AcGePoint3d(10, 0, 0));
    EXPECT_EQ(ClassifySpline(record, 0.01, 0.01), 1);
    record.points[1] = AcGePoint3d(5, 0.02, 0);
    EXPECT_EQ(ClassifySpline(record, 0.01, 0.01), -1);  // the first chord is level: the fine circle fails
}

// The plain walk over every pair, as the removal is defined; the grid must give the same removals.
std::vector<LineDeath> PlainDeaths(const std::vector<tCurve>& lines, double t) {
    std::vector<size_t> list;
    for (size_t i = 0; i < lines.size(); ++i) list.push_back(i);
    std::vector<LineDeath> deaths;
    auto on = [&](const tCurve& x, const tCurve& y) {
        return PointOnSegment(x.startPoint, y.startPoint, y.endPoint, t) &&
               PointOnSegment(x.endPoint, y.startPoint, y.endPoint, t);
    };
    for (size_t i = 0; list.size() > 0 && i < list.size() - 1; ++i) {
        for (size_t j = i + 1; j < list.size();) {
            const tCurve& a = lines[list[i]];
            const tCurve& b = lines[list[j]];
            if (on(b, a)) {
                deaths.push_back({list[j], list[i]});
                list.erase(list.begin() + static_cast<long>(j));
            } else if (on(a, b)) {
                deaths.push_back({list[i], list[j]});
                list.erase(list.begin() + static_cast<long>(i));
                j = i + 1;
            } else {
                ++j;
            }
        }
    }
    return deaths;
}

TEST(RepeatingLineIndex, grid_walk_removes_the_same_lines_in_the_same_order_as_the_plain_walk) {
    std::mt19937 random(15);
    for (int drawing = 0; drawing < 60; ++drawing) {
        std::uniform_int_distribution<int> coordinate(0, drawing % 3 == 0 ? 4 : 40);
        std::uniform_int_distribution<int> count(1, 300);
        std::vector<tCurve> lines(static_cast<size_t>(count(random)));
        for (tCurve& line : lines) {
            line.typeCode = 2001;
            // Coordinates on a half grid, so that lines repeat, nest and touch often.
            line.startPoint = AcGePoint3d(coordinate(random) * 0.5, coordinate(random) * 0.5, 0);
            line.endPoint = random() % 4 == 0 ? AcGePoint3d(line.startPoint.x + 1, line.startPoint.y, 0)
                                              : AcGePoint3d(coordinate(random) * 0.5, coordinate(random) * 0.5, 0);
        }
        double t = drawing % 2 == 0 ? 0.01 : 0.6;
        std::vector<LineDeath> expected = PlainDeaths(lines, t);
        std::vector<LineDeath> found = RepeatingLineDeaths(lines, t);
        ASSERT_EQ(found.size(), expected.size()) << "drawing " << drawing;
        for (size_t k = 0; k < found.size(); ++k) {
            EXPECT_EQ(found[k].dying, expected[k].dying) << "drawing " << drawing << " removal " << k;
            EXPECT_EQ(found[k].survivor, expected[k].survivor) << "drawing " << drawing << " removal " << k;
        }
    }
}

TEST_F(RepeatingLines, spline_whose_box_ends_the_tolerance_before_the_origin_is_found) {
    AcDbObjectId line = AddLine(-10, 0, 0, 0);
    AcDbObjectId spline = Spline({-10, 0, -7, 0, -3, 0, -0.5, 0});
    RunDownSpline(1, 0.5);
    EXPECT_TRUE(IsGone(spline));
    EXPECT_FALSE(IsGone(line));
}

TEST_F(RepeatingLines, classes_of_sloped_two_point_and_circular_records) {
    tCurve record;
    record.points.append(AcGePoint3d(0, 0, 0));
    record.points.append(AcGePoint3d(3, 7, 0));
    EXPECT_EQ(ClassifySpline(record, 0.01, 0.01), 1);  // two points always make a line
    record.points[1] = AcGePoint3d(5, 5.005, 0);
    record.points.append(AcGePoint3d(10, 10, 0));
    EXPECT_EQ(ClassifySpline(record, 0.01, 0.01), 1);
    record.points[1] = AcGePoint3d(5, 5.5, 0);
    EXPECT_NE(ClassifySpline(record, 0.01, 0.01), 1);
    // A closed record on a circle of radius 5: its points at 0.1, 0.5 and 0.9 come from the
    // entity behind the id.
    tCurve ring;
    ring.id = AddToDrawing(new AcDbCircle(AcGePoint3d(20, 20, 0), AcGeVector3d::kZAxis, 5));
    ring.startPoint = ring.endPoint = AcGePoint3d(25, 20, 0);
    for (int k = 0; k < 8; ++k)
        ring.points.append(AcGePoint3d(20 + 5 * std::cos(k * 0.785398163397448), 20 + 5 * std::sin(k * 0.785398163397448), 0));
    EXPECT_EQ(ClassifySpline(ring, 0.01, 0.01), 3);
    ring.points[3] = AcGePoint3d(20, 26, 0);  // one point off the circle
    EXPECT_NE(ClassifySpline(ring, 0.01, 0.01), 3);
}

TEST_F(RepeatingLines, second_straight_spline_at_the_origin_goes_and_the_first_off_the_line_stays) {
    AcDbObjectId line = AddLine(0, 0, 10, 0);
    AcDbObjectId upright = Spline({0, 0, 0, 3, 0, 6, 0, 10});
    AcDbObjectId along = Spline({0, 0, 3, 0, 6, 0, 10, 0});
    RunDownSpline(1, 0.01);
    EXPECT_FALSE(IsGone(upright));
    EXPECT_TRUE(IsGone(along));
    EXPECT_FALSE(IsGone(line));
}

TEST(ClassifySplineRecord, off_radius_closed_record_and_level_first_chord_give_minus_1) {
    tCurve ring;  // no entity behind the id: the three points all stand at the origin
    for (int k = 0; k < 8; ++k) ring.points.append(AcGePoint3d(std::cos(k * 0.78), std::sin(k * 0.78), 0));
    EXPECT_EQ(ClassifySpline(ring, 0.01, 0.01), -1);
    tCurve bent;
    bent.startPoint = AcGePoint3d(0, 0, 0);
    bent.midPoint = AcGePoint3d(5, 1e-8, 0);
    bent.endPoint = AcGePoint3d(10, 0, 0);
    bent.points.append(AcGePoint3d(0, 0, 0));
    bent.points.append(AcGePoint3d(5, 3, 0));
    bent.points.append(AcGePoint3d(10, 0, 0));
    EXPECT_EQ(ClassifySpline(bent, 0.01, 0.01), -1);
}

TEST_F(RepeatingLines, removed_line_and_spline_are_erased_and_closed) {
    AddLine(0, 0, 10, 0);
    AcDbObjectId copy = AddLine(0, 0, 10, 0);
    RunOn(0.01);
    EXPECT_TRUE(IsErased(copy));
    AcDbObjectId spline = Spline({0, 0, 3, 0, 6, 0, 10, 0});
    RunDownSpline(1, 0.01);
    EXPECT_TRUE(IsErased(spline));
}

}  // namespace
