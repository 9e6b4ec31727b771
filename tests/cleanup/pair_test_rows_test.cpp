// The rows of the duplicate pair test beyond two lines (arcs as 2003, polylines as 2004, circles
// as 2002), and the arc rule of the spline removal, on records of real entities.
#include <gtest/gtest.h>

#include <cmath>

#include "cleanup/repeating_lines.hpp"
#include "cleanup_fixture.hpp"
#include "platform/db/arc.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/line.hpp"

namespace {

constexpr double kQuarter = 1.5707963267948966;

class PairTestRows : public CleanupTest {
protected:
    // The record of an entity with the type code the row wants.
    tCurve Record(AcDbObjectId id, int typeCode) {
        tCurve record(id);
        record.typeCode = typeCode;
        return record;
    }
    tCurve Line(double x0, double y0, double x1, double y1) { return Record(AddLine(x0, y0, x1, y1), 2001); }
    tCurve Polyline(std::initializer_list<double> xy) { return Record(AddPolyline(xy, false), 2004); }
    tCurve Arc(double x, double y, double radius, double start, double end) {
        return Record(AddToDrawing(new AcDbArc(AcGePoint3d(x, y, 0), radius, start, end)), 2003);
    }
    tCurve Circle(double x, double y, double radius) {
        return Record(AddToDrawing(new AcDbCircle(AcGePoint3d(x, y, 0), AcGeVector3d::kZAxis, radius)), 2002);
    }
    // A spline's record as the removal sees it: its stretch points and their plane box.
    static tCurve SplineRecord(std::initializer_list<AcGePoint3d> points) {
        tCurve record;
        record.typeCode = 2005;
        for (const AcGePoint3d& p : points) record.points.append(p);
        record.boxMin = record.boxMax = record.points[0];
        for (const AcGePoint3d& p : record.points) {
            record.boxMin.x = std::min(record.boxMin.x, p.x);
            record.boxMin.y = std::min(record.boxMin.y, p.y);
            record.boxMax.x = std::max(record.boxMax.x, p.x);
            record.boxMax.y = std::max(record.boxMax.y, p.y);
        }
        return record;
    }
};

TEST_F(PairTestRows, line_whose_ends_and_mid_lie_on_a_later_polyline_dies) {
    tCurve polyline = Polyline({0, 0, 10, 0, 10, 10});
    EXPECT_EQ(CurvePairTest(Line(2, 0, 8, 0), polyline, 0.01), PairVerdict::firstDies);
    EXPECT_EQ(CurvePairTest(Line(2, 0.005, 8, 0.005), polyline, 0.01), PairVerdict::firstDies);
    // The closest point must lie strictly within the tolerance on each axis.
    EXPECT_EQ(CurvePairTest(Line(2, 0.01, 8, 0.01), polyline, 0.01), PairVerdict::none);
    EXPECT_EQ(CurvePairTest(Line(2, 0, 12, 0), polyline, 0.01), PairVerdict::none);
}

TEST_F(PairTestRows, line_on_an_earlier_polyline_dies) {
    tCurve polyline = Polyline({0, 0, 10, 0, 10, 10});
    EXPECT_EQ(CurvePairTest(polyline, Line(10, 2, 10, 8), 0.01), PairVerdict::secondDies);
    EXPECT_EQ(CurvePairTest(polyline, Line(5, 2, 5, 8), 0.01), PairVerdict::none);
}

TEST_F(PairTestRows, arc_on_a_polyline_dies_whichever_comes_first) {
    // A half circle of radius 5 round (5, 0), above the chord: bulge -1 from (0,0) to (10,0).
    auto* shape = new AcDbPolyline;
    shape->addVertexAt(0, AcGePoint2d(0, 0), -1.0, 0, 0);
    shape->addVertexAt(1, AcGePoint2d(10, 0), 0, 0, 0);
    tCurve polyline = Record(AddToDrawing(shape), 2004);
    tCurve arc = Arc(5, 0, 5, kQuarter * 0.5, kQuarter * 1.5);
    ASSERT_NEAR(arc.midPoint.y, 5.0, 1e-9);
    EXPECT_EQ(CurvePairTest(polyline, arc, 0.01), PairVerdict::secondDies);
    EXPECT_EQ(CurvePairTest(arc, polyline, 0.01), PairVerdict::firstDies);
    tCurve below = Arc(5, 0, 5, kQuarter * 2.5, kQuarter * 3.5);
    EXPECT_EQ(CurvePairTest(polyline, below, 0.01), PairVerdict::none);
    EXPECT_EQ(CurvePairTest(below, polyline, 0.01), PairVerdict::none);
}

TEST_F(PairTestRows, of_two_polylines_the_one_whose_vertices_lie_on_the_other_dies) {
    tCurve long_ = Polyline({0, 0, 10, 0, 10, 10});
    tCurve short_ = Polyline({2, 0, 8, 0});
    EXPECT_EQ(CurvePairTest(long_, short_, 0.01), PairVerdict::secondDies);
    EXPECT_EQ(CurvePairTest(short_, long_, 0.01), PairVerdict::firstDies);
    EXPECT_EQ(CurvePairTest(long_, Polyline({0, 0, 10, 0, 10, 10}), 0.01), PairVerdict::secondDies);
    EXPECT_EQ(CurvePairTest(long_, Polyline({2, 0, 8, 3}), 0.01), PairVerdict::none);
    EXPECT_EQ(CurvesCoincide(long_, short_, 0.01), 1);
    EXPECT_EQ(CurvesCoincide(short_, long_, 0.01), 2);
}

TEST_F(PairTestRows, polylines_whose_vertex_boxes_do_not_meet_are_not_compared) {
    tCurve lower = Polyline({0, 0, 10, 0});
    // Within the tolerance of the lower polyline, but its box lies above the lower one's.
    EXPECT_EQ(CurvePairTest(lower, Polyline({2, 0.005, 8, 0.005}), 0.01), PairVerdict::none);
    // A box that touches counts.
    EXPECT_EQ(CurvePairTest(lower, Polyline({10, 0, 10, 0.005}), 0.01), PairVerdict::secondDies);
    EXPECT_EQ(CurvePairTest(Polyline({-5, 0, -1, 0}), Polyline({-3, 0, -2, 0}), 0.01), PairVerdict::secondDies);
}

TEST_F(PairTestRows, of_two_arcs_on_one_circle_the_one_on_the_other_dies) {
    tCurve wide = Arc(0, 0, 5, 0, 2 * kQuarter);
    tCurve narrow = Arc(0, 0, 5, kQuarter * 0.5, kQuarter);
    EXPECT_EQ(CurvePairTest(wide, narrow, 0.01), PairVerdict::secondDies);
    EXPECT_EQ(CurvePairTest(narrow, wide, 0.01), PairVerdict::firstDies);
    EXPECT_EQ(CurvePairTest(wide, Arc(0, 0, 5, 0, 2 * kQuarter), 0.01), PairVerdict::secondDies);
    EXPECT_EQ(CurvePairTest(wide, Arc(0, 0, 5, kQuarter, 3 * kQuarter), 0.01), PairVerdict::none);
}

TEST_F(PairTestRows, arcs_need_radii_strictly_within_the_tolerance_and_centres_within_it) {
    struct Row {
        double x, radius;
        PairVerdict verdict;
    };
    tCurve wide = Arc(0, 0, 5, 0, 2 * kQuarter);
    for (Row row : {Row{0, 5.25, PairVerdict::secondDies}, Row{0, 5.5, PairVerdict::none},
                    Row{0.5, 5, PairVerdict::secondDies}, Row{0.75, 5, PairVerdict::none}}) {
        tCurve narrow = Arc(row.x, 0, row.radius, kQuarter * 0.5, kQuarter);
        EXPECT_EQ(CurvePairTest(wide, narrow, 0.5), row.verdict) << row.x << " " << row.radius;
    }
}

TEST_F(PairTestRows, arcs_whose_radii_differ_by_exactly_the_tolerance_stay_though_one_lies_on_the_other) {
    // The narrow arc runs within the band of the wide one's circle about the angle 180.
    struct Row {
        double radius;
        PairVerdict verdict;
    };
    tCurve wide = Arc(0, 0, 5, kQuarter, 3 * kQuarter);
    for (Row row : {Row{5.4999, PairVerdict::secondDies}, Row{5.5, PairVerdict::none}}) {
        tCurve narrow = Arc(0.25, 0, row.radius, 2 * kQuarter - 0.15, 2 * kQuarter + 0.15);
        EXPECT_EQ(CurvePairTest(wide, narrow, 0.5), row.verdict) << row.radius;
    }
}

TEST_F(PairTestRows, circles_with_centres_and_radii_within_the_tolerance_bounds_included) {
    struct Row {
        double x, radius;
        PairVerdict verdict;
    };
    tCurve circle = Circle(0, 0, 5);
    for (Row row : {Row{0, 5, PairVerdict::secondDies}, Row{0, 5.5, PairVerdict::secondDies},
                    Row{0, 4.5, PairVerdict::secondDies}, Row{0, 5.75, PairVerdict::none},
                    Row{0.5, 5, PairVerdict::secondDies}, Row{0.75, 5, PairVerdict::none}}) {
        EXPECT_EQ(CurvePairTest(circle, Circle(row.x, 0, row.radius), 0.5), row.verdict) << row.x << " " << row.radius;
    }
}

TEST_F(PairTestRows, arc_near_a_circle_dies_whichever_comes_first) {
    tCurve circle = Circle(0, 0, 5);
    tCurve arc = Arc(0.25, 0, 5.25, 0, kQuarter);
    EXPECT_EQ(CurvePairTest(circle, arc, 0.5), PairVerdict::secondDies);
    EXPECT_EQ(CurvePairTest(arc, circle, 0.5), PairVerdict::firstDies);
    tCurve far = Arc(3, 0, 5, 0, kQuarter);
    EXPECT_EQ(CurvePairTest(circle, far, 0.5), PairVerdict::none);
    EXPECT_EQ(CurvePairTest(far, circle, 0.5), PairVerdict::none);
}

TEST_F(PairTestRows, lines_meet_no_arc_circle_or_spline_row) {
    tCurve line = Line(0, 0, 10, 0);
    tCurve circle = Circle(5, 0, 5);
    tCurve arc = Arc(5, 0, 5, 2 * kQuarter, 4 * kQuarter);
    tCurve spline = SplineRecord({AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0)});
    for (const tCurve* other : {&circle, &arc, &spline}) {
        EXPECT_EQ(CurvePairTest(line, *other, 0.5), PairVerdict::none) << other->typeCode;
        EXPECT_EQ(CurvePairTest(*other, line, 0.5), PairVerdict::none) << other->typeCode;
    }
    // A line's record has its centre at the origin and radius 0: a small circle or arc there is
    // near it, and still no row compares them.
    tCurve dot = Circle(0, 0, 0.25);
    tCurve bend = Arc(0, 0, 0.25, 0, kQuarter);
    for (const tCurve* other : {&dot, &bend}) {
        EXPECT_EQ(CurvePairTest(line, *other, 0.5), PairVerdict::none) << other->typeCode;
        EXPECT_EQ(CurvePairTest(*other, line, 0.5), PairVerdict::none) << other->typeCode;
    }
}

TEST_F(PairTestRows, point_on_curve_wants_a_curve_that_opens) {
    AcDbObjectId line = AddLine(0, 0, 10, 0);
    EXPECT_TRUE(PointOnCurve(AcGePoint3d(5, 0.009, 0), line, 0.01));
    EXPECT_FALSE(PointOnCurve(AcGePoint3d(5, 0.01, 0), line, 0.01));
    // The closest point of the segment itself, not of its line extended.
    EXPECT_FALSE(PointOnCurve(AcGePoint3d(10.5, 0, 0), line, 0.01));
    AcDbObjectId text = AddToDrawing(new AcDbText(AcGePoint3d(5, 0, 0), L"T"));
    EXPECT_FALSE(PointOnCurve(AcGePoint3d(5, 0, 0), text, 0.01));
    Change(line, [](AcDbEntity* e) { e->erase(); });
    EXPECT_FALSE(PointOnCurve(AcGePoint3d(5, 0, 0), line, 0.01));
}

TEST_F(PairTestRows, spline_along_a_circle_with_a_box_corner_at_the_origin_is_on_it) {
    tCurve circle = Circle(3, 3, 3);
    tCurve on = SplineRecord({AcGePoint3d(0, 3, 0), AcGePoint3d(3, 0, 0), AcGePoint3d(6, 3, 0), AcGePoint3d(3, 6, 0)});
    EXPECT_TRUE(SplineOnArc(circle, on, 0.01));
    tCurve off = SplineRecord({AcGePoint3d(0, 3, 0), AcGePoint3d(3, 0, 0), AcGePoint3d(6.02, 3, 0), AcGePoint3d(3, 6, 0)});
    EXPECT_FALSE(SplineOnArc(circle, off, 0.01));
    // The circle's record has no box: a spline on a circle away from the origin is not found.
    tCurve away = Circle(103, 103, 3);
    tCurve onAway = SplineRecord({AcGePoint3d(100, 103, 0), AcGePoint3d(103, 100, 0), AcGePoint3d(106, 103, 0)});
    EXPECT_FALSE(SplineOnArc(away, onAway, 0.01));
}

TEST_F(PairTestRows, spline_on_an_arcs_circle_must_also_lie_on_the_arc) {
    tCurve arc = Arc(0, 0, 5, 0, kQuarter);
    double d = 5 / std::sqrt(2.0);
    tCurve onArc = SplineRecord({AcGePoint3d(5, 0, 0), AcGePoint3d(d, d, 0), AcGePoint3d(0, 5, 0)});
    tCurve otherQuarter = SplineRecord({AcGePoint3d(-5, 0, 0), AcGePoint3d(-d, -d, 0), AcGePoint3d(0, -5, 0)});
    EXPECT_TRUE(SplineOnArc(arc, onArc, 0.01));
    EXPECT_FALSE(SplineOnArc(arc, otherQuarter, 0.01));
    EXPECT_TRUE(SplineOnArc(Circle(0, 0, 5), otherQuarter, 0.01));
}

TEST_F(PairTestRows, spline_along_a_line_from_the_origin_is_on_it) {
    tCurve line = Line(0, 0, 10, 0);
    EXPECT_TRUE(SplineOnLine(line, SplineRecord({AcGePoint3d(0, 0, 0), AcGePoint3d(4, 0.005, 0), AcGePoint3d(9, 0, 0)}), 0.01));
    EXPECT_FALSE(SplineOnLine(line, SplineRecord({AcGePoint3d(0, 0, 0), AcGePoint3d(4, 0.02, 0), AcGePoint3d(9, 0, 0)}), 0.01));
    EXPECT_FALSE(SplineOnLine(Line(100, 0, 110, 0), SplineRecord({AcGePoint3d(100, 0, 0), AcGePoint3d(110, 0, 0)}), 0.01));
}

}  // namespace
