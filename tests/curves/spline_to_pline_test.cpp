// FunSplineToPline: splines and partial ellipses become polylines of arcs and straight pieces.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <memory>
#include <random>
#include <string>

#include "curves/spline_to_pline.hpp"
#include "curves_fixture.hpp"
#include "geometry_matchers.hpp"
#include "platform/db/ellipse.hpp"
#include "platform/db/polyline.hpp"
#include "random_drawings.hpp"
#include "spline_builders.hpp"

namespace {

using P = AcGePoint3d;

class SplineToPline : public CurvesTest {
protected:
    void SetUp() override {
        CurvesTest::SetUp();
        WriteSections(L"[SplineToPline]\nBolOpen=1\nTolerance=0.02\nEqualDivision=10\n");
    }
    void Run() { Cleanup().FunSplineToPline(); }
    static AcDbSpline* Wave(double z = 0.0) {
        return ClampedSpline({P(0, 0, z), P(3, 4, z), P(7, -3, z), P(9, 5, z), P(12, 1, z)});
    }
    struct Vertex {
        AcGePoint2d point;
        double bulge;
    };
    struct Shape {
        std::vector<Vertex> vertices;
        bool closed = false;
        double elevation = 0.0;
    };
    Shape OnlyPolyline() {
        Shape shape;
        AcDbObjectIdArray polylines = IdsOfType(2004);
        EXPECT_EQ(polylines.length(), 1);
        if (polylines.isEmpty()) return shape;
        InspectAs<AcDbPolyline>(polylines[0], [&](AcDbPolyline* pl) {
            for (unsigned int i = 0; i < pl->numVerts(); ++i) {
                Vertex v;
                pl->getPointAt(i, v.point);
                pl->getBulgeAt(i, v.bulge);
                shape.vertices.push_back(v);
            }
            shape.closed = pl->isClosed();
            shape.elevation = pl->elevation();
        });
        return shape;
    }
    void EraseAll() {
        for (const AcDbObjectId& id : ModelSpaceIds(Drawing())) {
            AcDbEntity* e = nullptr;
            acdbOpenAcDbEntity(e, id, AcDb::kForWrite);
            e->erase();
            e->close();
        }
    }
    static int ArcCount(const Shape& shape) {
        int arcs = 0;
        for (const Vertex& v : shape.vertices) arcs += v.bulge != 0.0;
        return arcs;
    }
};

TEST_F(SplineToPline, free_form_spline_becomes_a_polyline_of_arcs_from_its_start_to_its_end) {
    AcDbObjectId spline = AddToDrawing(Wave());
    Run();
    EXPECT_TRUE(IsGone(spline));
    Shape shape = OnlyPolyline();
    ASSERT_GE(shape.vertices.size(), 3u);
    EXPECT_EQ(shape.vertices.front().point, AcGePoint2d(0, 0));
    EXPECT_EQ(shape.vertices.back().point, AcGePoint2d(12, 1));
    EXPECT_EQ(shape.vertices.back().bulge, 0.0);
    EXPECT_GT(ArcCount(shape), 0);
    EXPECT_FALSE(shape.closed);
    EXPECT_EQ(LogText(), L"样条曲线转多段线开始\n样条曲线转多段线结束\n");
}

TEST_F(SplineToPline, span_whose_ends_and_middle_lie_in_a_line_is_taken_straight_without_its_samples) {
    // A symmetric wave: start, parametric middle and end lie on y = 0, so the circle through them
    // fails and the whole wave becomes one straight piece.
    AddToDrawing(ClampedSpline({P(0, 0, 0), P(3, 4, 0), P(6, -4, 0), P(9, 4, 0), P(12, 0, 0)}));
    Run();
    Shape shape = OnlyPolyline();
    ASSERT_EQ(shape.vertices.size(), 2u);
    EXPECT_EQ(shape.vertices[0].bulge, 0.0);
    EXPECT_EQ(shape.vertices[1].point, AcGePoint2d(12, 0));
}

TEST_F(SplineToPline, division_layer_filter_and_colours_change_nothing) {
    const wchar_t* settings[] = {
        L"[SplineToPline]\nTolerance=0.02\nEqualDivision=10\n",
        L"[SplineToPline]\nTolerance=0.02\nEqualDivision=1000\nStrFilterLayer=OTHER\nColorInspect=255 0 0;0 255 0;\n",
    };
    std::vector<Shape> shapes;
    for (const wchar_t* text : settings) {
        EraseAll();
        WriteSections(text);
        AddToDrawing(Wave());
        Run();
        shapes.push_back(OnlyPolyline());
    }
    ASSERT_EQ(shapes[0].vertices.size(), shapes[1].vertices.size());
    for (size_t i = 0; i < shapes[0].vertices.size(); ++i) {
        EXPECT_EQ(shapes[0].vertices[i].point, shapes[1].vertices[i].point);
        EXPECT_EQ(shapes[0].vertices[i].bulge, shapes[1].vertices[i].bulge);
    }
    EXPECT_EQ(CleanupGlobals->splineToPline->EqualDivision, 1000);
    EXPECT_EQ(CleanupGlobals->splineToPline->colors.length(), 2);
    // Read into the record all the same.
    EXPECT_EQ(CleanupGlobals->splineToPline->StrFilterLayer, L"OTHER");
    EXPECT_EQ(CleanupGlobals->splineToPline->dottedLinetype, L"DASHED");
    EXPECT_EQ(CleanupGlobals->splineToPline->solidLinetype, L"Continuous");
}

TEST_F(SplineToPline, switch_off_in_the_file_runs_all_the_same) {
    WriteSections(L"[SplineToPline]\nBolOpen=0\nTolerance=0.02\n");
    AcDbObjectId spline = AddToDrawing(Wave());
    Run();
    EXPECT_TRUE(IsGone(spline));
    EXPECT_EQ(CountOfType(2004), 1);
    EXPECT_TRUE(CleanupGlobals->splineToPline->BolOpen);
}

TEST_F(SplineToPline, spline_whose_half_returns_to_its_start_as_well_gives_no_polyline) {
    // Twice round a circle: the whole and its first half both end where they start; the first
    // is halved, the second ends the walk with the start vertex alone.
    AcDbObjectId twice = AddToDrawing(ArcSpline(P(0, 0, 0), 5.0, 0.0, 720.0));
    Run();
    EXPECT_FALSE(IsGone(twice));
    EXPECT_EQ(CountOfType(2004), 0);
}

TEST_F(SplineToPline, circle_whose_ends_lie_0_00001_or_more_apart_is_one_arc_span_refused_as_a_dot) {
    // A circle from 45 degrees round to just short of its start. Ends closer than 0.00001: the
    // first span is halved, and the two halves give a closed polyline. Ends farther apart: the
    // whole circle is one arc span, whose two vertices stand closer than 0.02, so no polyline
    // comes about and the spline stays.
    struct Row {
        const char* name;
        double gap;
        bool polyline;
    };
    const Row rows[] = {{"ends just inside 0.00001", 0.9e-5, true}, {"ends just outside 0.00001", 1.1e-5, false}};
    for (const Row& row : rows) {
        EraseAll();
        double shortBy = row.gap / 5.0 * 180.0 / M_PI;
        AcDbObjectId id = AddToDrawing(ArcSpline(P(0, 0, 0), 5.0, 45.0, 360.0 - shortBy));
        Run();
        EXPECT_EQ(IsGone(id), row.polyline) << row.name;
        ASSERT_EQ(CountOfType(2004), row.polyline ? 1 : 0) << row.name;
        if (row.polyline) {
            Shape shape = OnlyPolyline();
            EXPECT_TRUE(shape.closed) << row.name;
            EXPECT_EQ(shape.vertices.size(), 2u) << row.name;
        }
    }
}

TEST_F(SplineToPline, complete_ellipse_stays_and_a_quarter_ellipse_becomes_a_polyline) {
    AcDbObjectId full = AddToDrawing(new AcDbEllipse(P(0, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(6, 0, 0), 0.5));
    AcDbObjectId quarter = AddToDrawing(
        new AcDbEllipse(P(20, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(6, 0, 0), 0.5, 0.0, M_PI / 2));
    Run();
    EXPECT_FALSE(IsGone(full));
    EXPECT_TRUE(IsGone(quarter));
    Shape shape = OnlyPolyline();
    ASSERT_GE(shape.vertices.size(), 2u);
    EXPECT_THAT(P(shape.vertices.front().point.x, shape.vertices.front().point.y, 0), IsNearPoint(P(26, 0, 0), 1e-9));
    EXPECT_THAT(P(shape.vertices.back().point.x, shape.vertices.back().point.y, 0), IsNearPoint(P(20, 3, 0), 1e-9));
}

TEST_F(SplineToPline, ellipse_is_complete_only_strictly_within_the_tolerance_in_degrees_of_0_or_360) {
    struct Row {
        const char* name;
        double endAngle;  // the ellipse runs from 0: a span of 90 or 270 degrees exactly
        double tolerance;
        bool stays;
    };
    const double above90 = 90.0001;
    const Row rows[] = {
        {"90 degrees, t 90: not below t", 1.5707963267948966, 90.0, false},
        {"90 degrees, t just above 90", 1.5707963267948966, above90, true},
        {"270 degrees, t 90: not above 360 - t", 4.71238898038469, 90.0, false},
        {"270 degrees, t just above 90", 4.71238898038469, above90, true},
    };
    for (const Row& row : rows) {
        EraseAll();
        wchar_t text[80];
        std::swprintf(text, 80, L"[SplineToPline]\nTolerance=%.17g\n", row.tolerance);
        WriteSections(text);
        auto* ellipse = new AcDbEllipse(P(0, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(4, 0, 0), 1.0, 0.0, row.endAngle);
        ASSERT_EQ(std::fabs(ellipse->startAngle() * 57.29577951308232 - ellipse->endAngle() * 57.29577951308232),
                  row.endAngle == 1.5707963267948966 ? 90.0 : 270.0)
            << row.name;
        AcDbObjectId id = AddToDrawing(ellipse);
        Run();
        EXPECT_EQ(!IsGone(id), row.stays) << row.name;
    }
}

TEST_F(SplineToPline, tolerance_0_segments_a_complete_ellipse_into_short_straight_pieces) {
    WriteSections(L"[SplineToPline]\nTolerance=0\n");
    AcDbObjectId full = AddToDrawing(new AcDbEllipse(P(0, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(1, 0, 0), 0.5));
    Run();
    EXPECT_TRUE(IsGone(full));
    Shape shape = OnlyPolyline();
    EXPECT_EQ(ArcCount(shape), 0);
    EXPECT_GT(shape.vertices.size(), 50u);
    EXPECT_TRUE(shape.closed);
}

TEST_F(SplineToPline, full_ellipse_whose_turn_rounds_off_360_is_complete_only_strictly_within_the_tolerance) {
    // Full ellipses whose angles in degrees differ by a rounding above 360 and by one below,
    // with tolerances that put 360 -/+ t on that difference or one representable step beyond it.
    auto turn = [](double start) {
        AcDbEllipse e(P(0, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(0.3, 0, 0), 0.5, start, start + 2 * M_PI);
        return std::fabs(e.startAngle() * 57.29577951308232 - e.endAngle() * 57.29577951308232);
    };
    double above = 0.0, below = 0.0;
    for (int k = 1; k < 628 && (above == 0.0 || below == 0.0); ++k) {
        double v = turn(0.01 * k);
        if (v > 360.0 && above == 0.0) above = 0.01 * k;
        if (v < 360.0 && below == 0.0) below = 0.01 * k;
    }
    ASSERT_NE(above, 0.0);
    ASSERT_NE(below, 0.0);
    const double overshoot = turn(above) - 360.0, undershoot = 360.0 - turn(below);
    struct Row {
        const char* name;
        double start;
        double tolerance;
        bool stays;
    };
    const Row rows[] = {
        {"above 360, tolerance 0", above, 0.0, false},
        {"below 360, tolerance 0", below, 0.0, false},
        {"above 360 on the upper bound", above, overshoot, false},
        {"above 360 one step inside the upper bound", above, 2 * overshoot, true},
        {"below 360 on the lower bound", below, undershoot, false},
        {"below 360 one step inside the lower bound", below, 2 * undershoot, true},
    };
    for (const Row& row : rows) {
        EraseAll();
        wchar_t text[80];
        std::swprintf(text, 80, L"[SplineToPline]\nTolerance=%.17g\n", row.tolerance);
        WriteSections(text);
        AcDbObjectId id = AddToDrawing(
            new AcDbEllipse(P(0, 0, 0), AcGeVector3d(0, 0, 1), AcGeVector3d(0.3, 0, 0), 0.5, row.start, row.start + 2 * M_PI));
        Run();
        EXPECT_EQ(!IsGone(id), row.stays) << row.name;
    }
}

TEST_F(SplineToPline, spline_whose_ends_meet_gives_a_closed_polyline) {
    AddToDrawing(ArcSpline(P(0, 0, 0), 5.0, 0.0, 360.0));
    Run();
    Shape shape = OnlyPolyline();
    EXPECT_TRUE(shape.closed);
    ASSERT_GE(shape.vertices.size(), 2u);
    EXPECT_EQ(shape.vertices.front().point, AcGePoint2d(5, 0));
    // The last vertex (back at the start) is removed; its predecessor's bulge closes the curve.
    EXPECT_GT(shape.vertices.back().bulge, 0.0);
    for (const Vertex& v : shape.vertices) EXPECT_NEAR(std::hypot(v.point.x, v.point.y), 5.0, 1e-9);
}

TEST_F(SplineToPline, spline_shorter_than_0_02_gives_no_polyline_and_stays) {
    AcDbObjectId dot = AddToDrawing(ClampedSpline({P(1, 1, 0), P(1.005, 1.005, 0), P(1.01, 1, 0), P(1.015, 1, 0)}));
    Run();
    EXPECT_FALSE(IsGone(dot));
    EXPECT_EQ(CountOfType(2004), 0);
}

TEST_F(SplineToPline, spline_at_z_7_gives_straight_pieces_at_elevation_0) {
    AcDbObjectId spline = AddToDrawing(ArcSpline(P(0, 0, 7), 5.0, 0.0, 90.0));
    Run();
    EXPECT_TRUE(IsGone(spline));
    Shape shape = OnlyPolyline();
    EXPECT_EQ(ArcCount(shape), 0);
    EXPECT_EQ(shape.elevation, 0.0);
    EXPECT_GT(shape.vertices.size(), 3u);
}

TEST_F(SplineToPline, polyline_takes_layer_linetype_colour_and_scale_of_the_source_bylayer_included) {
    AcDbObjectId spline = AddToDrawing(Wave(), L"CURVES");
    SetLook(spline, L"DASHED", 256, 1.5);
    AcDbObjectId red = AddToDrawing(ArcSpline(P(50, 0, 0), 5.0, 0.0, 45.0), L"CURVES");
    SetLook(red, L"Continuous", 1, 0.5);
    Run();
    AcDbObjectIdArray polylines = IdsOfType(2004);
    ASSERT_EQ(polylines.length(), 2);
    Look first = LookOfId(polylines[0]);
    EXPECT_EQ(first.layer, L"CURVES");
    EXPECT_EQ(first.linetype, L"DASHED");
    EXPECT_EQ(first.color, 256);
    EXPECT_EQ(first.scale, 1.5);
    Look second = LookOfId(polylines[1]);
    EXPECT_EQ(second.linetype, L"Continuous");
    EXPECT_EQ(second.color, 1);
    EXPECT_EQ(second.scale, 0.5);
}

TEST_F(SplineToPline, exact_arc_spline_becomes_one_arc_span_with_its_bulge) {
    AddToDrawing(ArcSpline(P(0, 0, 0), 5.0, 0.0, 90.0));
    Run();
    Shape shape = OnlyPolyline();
    ASSERT_EQ(shape.vertices.size(), 2u);
    EXPECT_NEAR(shape.vertices[0].bulge, std::tan(M_PI / 8), 1e-6);
}

TEST_F(SplineToPline, polyline_of_two_vertices_closer_than_0_02_is_refused_and_nearby_ones_close) {
    EXPECT_TRUE(MakePolylineEntity(AcGePoint3dArray{P(0, 0, 0), P(0.0199, 0, 0)}, AcGeDoubleArray{0.0, 0.0}).isNull());
    EXPECT_FALSE(MakePolylineEntity(AcGePoint3dArray{P(0, 0, 0), P(0.02, 0, 0)}, AcGeDoubleArray{0.0, 0.0}).isNull());
    EXPECT_TRUE(MakePolylineEntity(AcGePoint3dArray{P(0, 0, 0)}, AcGeDoubleArray{}).isNull());
    AcDbObjectId triangle = MakePolylineEntity(AcGePoint3dArray{P(0, 0, 0), P(5, 0, 0), P(0, 5, 0), P(0.0199, 0, 0)},
                                               AcGeDoubleArray{0.1, 0.2, 0.3, 0.0});
    InspectAs<AcDbPolyline>(triangle, [](AcDbPolyline* pl) {
        EXPECT_EQ(pl->numVerts(), 3u);
        EXPECT_TRUE(pl->isClosed());
        double bulge = 0;
        pl->getBulgeAt(2, bulge);
        EXPECT_EQ(bulge, 0.3);
    });
}

// The thrifty walk against the plain one on random splines (some off z 0, where no span bends)
// and partial ellipses: the same polylines, vertex by vertex and to the last bit.
class SegmentWalks : public SplineToPline {
protected:
    void TearDown() override {
        SegmentWalkReads = SegmentReads::Thrifty;
        SplineToPline::TearDown();
    }
    static std::string Bits(double v) {
        char text[40];
        std::snprintf(text, sizeof text, "%a", v);
        return text;
    }
    std::vector<std::string> SegmentRandomDrawing(SegmentReads reads, unsigned seed) {
        EraseAll();
        std::mt19937 rng(seed);
        for (int i = 0; i < 40; ++i) {
            double x = (i % 8) * 30.0, y = (i / 8) * 30.0;
            double size = random_drawings::Uniform(rng, 0.05, 25.0);
            AcDbSpline* spline = random_drawings::RandomSpline(rng, x, y, size);
            if (i % 10 == 3) {  // lifted off z 0: no span bends there
                AcGeMatrix3d lift;
                lift.setToTranslation(AcGeVector3d(0, 0, 7));
                spline->transformBy(lift);
            }
            AddToDrawing(spline);
            double start = random_drawings::Uniform(rng, 0.0, 3.0);
            AddToDrawing(new AcDbEllipse(P(x, y + 300, 0), AcGeVector3d(0, 0, 1),
                                         AcGeVector3d(random_drawings::Uniform(rng, 0.5, 9.0), 0, 0),
                                         random_drawings::Uniform(rng, 0.2, 1.0), start,
                                         start + random_drawings::Uniform(rng, 0.3, 5.5)));
        }
        SegmentWalkReads = reads;
        Run();
        std::vector<std::string> polylines;
        for (const AcDbObjectId& id : IdsOfType(2004)) {
            InspectAs<AcDbPolyline>(id, [&](AcDbPolyline* pl) {
                std::string text = pl->isClosed() ? "closed" : "open";
                for (unsigned int v = 0; v < pl->numVerts(); ++v) {
                    AcGePoint2d point;
                    double bulge = 0.0;
                    pl->getPointAt(v, point);
                    pl->getBulgeAt(v, bulge);
                    text += " " + Bits(point.x) + "," + Bits(point.y) + "," + Bits(bulge);
                }
                polylines.push_back(text);
            });
        }
        return polylines;
    }
};

TEST_F(SegmentWalks, thrifty_walk_gives_the_polylines_of_the_plain_walk_on_random_curves) {
    size_t vertices = 0;
    for (unsigned seed = 1; seed <= 6; ++seed) {
        std::vector<std::string> plain = SegmentRandomDrawing(SegmentReads::Plain, seed);
        std::vector<std::string> thrifty = SegmentRandomDrawing(SegmentReads::Thrifty, seed);
        ASSERT_EQ(plain.size(), thrifty.size()) << "seed " << seed;
        for (size_t i = 0; i < plain.size(); ++i) {
            ASSERT_EQ(plain[i], thrifty[i]) << "seed " << seed << ", polyline " << i;
            vertices += static_cast<size_t>(std::count(plain[i].begin(), plain[i].end(), ' '));
        }
        EXPECT_GE(plain.size(), 70u) << "seed " << seed;  // nearly every curve became a polyline
    }
    EXPECT_GT(vertices, 2000u);  // long walks with many halvings, not a few straight pieces
}

// The polylines of the random drawings above, every bit of every vertex and bulge folded into
// one FNV-1a value per seed, as the walk gave them before the evaluation of spline points was
// made cheaper: the speed work changed no polyline.
TEST_F(SegmentWalks, polylines_of_random_curves_are_those_the_walk_gave_before_its_speed_work) {
    const std::uint64_t recorded[] = {0x40dde80352e0d647ull, 0x01175e256e84a0e0ull, 0x8fd221d405805b28ull};
    for (unsigned seed = 1; seed <= 3; ++seed) {
        std::uint64_t hash = 0xcbf29ce484222325ull;
        for (const std::string& polyline : SegmentRandomDrawing(SegmentReads::Thrifty, seed))
            for (char c : polyline + ";") hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3ull;
        EXPECT_EQ(hash, recorded[seed - 1]) << "seed " << seed;
    }
}

}  // namespace
