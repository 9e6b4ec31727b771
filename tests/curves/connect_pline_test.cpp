// Lines, arcs and open polylines of the listed colours whose ends meet become one polyline.
#include <gtest/gtest.h>

#include <random>

#include "cleanup/cleanup_fixture.hpp"
#include "curves/connect_pline.hpp"
#include "curves/end_clusters.hpp"
#include "curves/geometry.hpp"
#include "platform/db/arc.hpp"

namespace {

class ConnectPline : public CleanupTest {
protected:
    void Run(const std::wstring& colors, const std::wstring& tolerance = L"0.05", const std::wstring& open = L"1") {
        WriteIni(L"[public]\r\nStrSolidLineType=Continuous\r\nStrDottedLineType=HIDDEN\r\n[ConnectPline]\r\nBolOpen=" +
                 open + L"\r\nTolerance=" + tolerance + L"\r\nColorInspect=" + colors + L"\r\n");
        Cleanup().FunConnectPline();
    }
    AcDbObjectId Red(AcDbObjectId id) {
        Color(id, 1);
        return id;
    }
    std::vector<AcDbObjectId> Polylines() {
        std::vector<AcDbObjectId> found;
        for (const AcDbObjectId& id : LiveIds())
            if (EntityTypeOfId(id) == 2004) found.push_back(id);
        return found;
    }
    struct Shape {
        std::vector<AcGePoint2d> vertices;
        std::vector<double> bulges;
        bool closed = false;
        double elevation = 0.0;
    };
    Shape ShapeOf(AcDbObjectId id) {
        Shape shape;
        Inspect(id, [&](AcDbEntity* e) {
            auto* polyline = AcDbPolyline::cast(e);
            for (unsigned i = 0; i < polyline->numVerts(); ++i) {
                AcGePoint2d p;
                double bulge = 0.0;
                polyline->getPointAt(i, p);
                polyline->getBulgeAt(i, bulge);
                shape.vertices.push_back(p);
                shape.bulges.push_back(bulge);
            }
            shape.closed = polyline->isClosed();
            shape.elevation = polyline->elevation();
        });
        return shape;
    }
};

TEST_F(ConnectPline, empty_colour_list_does_nothing_but_the_log_line) {
    WriteText(L"D:\\CZ\\config\\CAD\\Log.log", L"");
    AcDbObjectId a = Red(AddLine(0, 0, 10, 0));
    AcDbObjectId b = Red(AddLine(10, 0, 10, 10));
    Run(L"");
    EXPECT_FALSE(IsGone(a));
    EXPECT_FALSE(IsGone(b));
    EXPECT_TRUE(Polylines().empty());
    EXPECT_EQ(ReadText(L"D:\\CZ\\config\\CAD\\Log.log"), L"串线开始\n");
}

TEST_F(ConnectPline, two_lines_end_to_start_give_a_polyline_of_three_vertices) {
    AcDbObjectId a = Red(AddLine(0, 0, 10, 0, L"PART"));
    AcDbObjectId b = Red(AddLine(10.03, 0, 10, 10, L"PART"));
    Run(L"255 0 0;");
    EXPECT_TRUE(IsGone(a));
    EXPECT_TRUE(IsGone(b));
    std::vector<AcDbObjectId> made = Polylines();
    ASSERT_EQ(made.size(), 1u);
    Shape shape = ShapeOf(made[0]);
    ASSERT_EQ(shape.vertices.size(), 3u);
    EXPECT_EQ(shape.vertices[0], AcGePoint2d(0, 0));
    EXPECT_EQ(shape.vertices[1], AcGePoint2d(10, 0));
    EXPECT_EQ(shape.vertices[2], AcGePoint2d(10, 10));
    EXPECT_FALSE(shape.closed);
    EXPECT_EQ(ColorOf(made[0]), 1);
    // The dashed name is not in the drawing's linetype table, so the polyline keeps its own.
    EXPECT_EQ(LinetypeOf(made[0]), L"ByLayer");
    Inspect(made[0], [](AcDbEntity* e) { EXPECT_EQ(e->layer(), L"PART"); });
}

TEST_F(ConnectPline, lone_line_of_a_listed_colour_stays_a_line) {
    AcDbObjectId lone = Red(AddLine(0, 0, 10, 0));
    Run(L"255 0 0;");
    EXPECT_FALSE(IsGone(lone));
    EXPECT_TRUE(Polylines().empty());
}

TEST_F(ConnectPline, four_lines_of_a_rectangle_give_a_closed_polyline_of_five_vertices) {
    Red(AddLine(0, 0, 10, 0));
    Red(AddLine(10, 0, 10, 5));
    Red(AddLine(10, 5, 0, 5));
    AcDbObjectId last = Red(AddLine(0, 5, 0, 0));
    LinetypeName(last, L"Continuous");
    Run(L"255 0 0;");
    std::vector<AcDbObjectId> made = Polylines();
    ASSERT_EQ(made.size(), 1u);
    Shape shape = ShapeOf(made[0]);
    ASSERT_EQ(shape.vertices.size(), 5u);
    EXPECT_TRUE(shape.closed);
    EXPECT_EQ(shape.vertices[4], shape.vertices[0]);
    EXPECT_EQ(LinetypeOf(made[0]), L"Continuous");
    EXPECT_EQ(LiveIds().length(), 1);
}

TEST_F(ConnectPline, arc_that_joins_backward_enters_with_the_negated_bulge) {
    Red(AddLine(-10, 0, 0, 0));
    // A counter-clockwise half circle from (10,0) to (0,0): its end meets the tail.
    Red(AddToDrawing(new AcDbArc(AcGePoint3d(5, 0, 0), 5, 0, 3.141592653589793)));
    Run(L"255 0 0;");
    std::vector<AcDbObjectId> made = Polylines();
    ASSERT_EQ(made.size(), 1u);
    Shape shape = ShapeOf(made[0]);
    ASSERT_EQ(shape.vertices.size(), 3u);
    EXPECT_NEAR(shape.bulges[1], -1.0, 1e-12);
    EXPECT_NEAR(shape.vertices[2].x, 10.0, 1e-9);
}

TEST_F(ConnectPline, of_three_lines_at_one_point_the_first_two_join_and_the_third_stays) {
    AcDbObjectId a = Red(AddLine(0, 0, 10, 0));
    AcDbObjectId b = Red(AddLine(10, 0, 20, 0));
    AcDbObjectId c = Red(AddLine(10, 0, 10, 10));
    Run(L"255 0 0;");
    EXPECT_TRUE(IsGone(a));
    EXPECT_TRUE(IsGone(b));
    EXPECT_FALSE(IsGone(c));
    ASSERT_EQ(Polylines().size(), 1u);
    EXPECT_EQ(ShapeOf(Polylines()[0]).vertices.back(), AcGePoint2d(20, 0));
}

TEST_F(ConnectPline, closed_polyline_of_a_listed_colour_stays) {
    AcDbObjectId closed = Red(AddPolyline({0, 0, 10, 0, 10, 10, 0, 0.01}, false));
    AcDbObjectId touching = Red(AddLine(0, 0, -10, 0));
    Run(L"255 0 0;");
    EXPECT_FALSE(IsGone(closed));
    EXPECT_FALSE(IsGone(touching));
}

TEST_F(ConnectPline, open_polyline_in_a_chain_is_taken_apart_and_replaced) {
    AcDbObjectId line = Red(AddLine(20, 0, 10, 0));
    AcDbObjectId polyline = Red(AddPolyline({0, 10, 0, 0, 10, 0}, false));
    Run(L"255 0 0;");
    EXPECT_TRUE(IsGone(line));
    EXPECT_TRUE(IsGone(polyline));
    std::vector<AcDbObjectId> made = Polylines();
    ASSERT_EQ(made.size(), 1u);
    Shape shape = ShapeOf(made[0]);
    // The chain starts at the line and runs against the polyline's own order.
    ASSERT_EQ(shape.vertices.size(), 4u);
    EXPECT_EQ(shape.vertices[0], AcGePoint2d(20, 0));
    EXPECT_EQ(shape.vertices[3], AcGePoint2d(0, 10));
    EXPECT_EQ(LiveIds().length(), 1);
}

TEST_F(ConnectPline, switch_off_in_the_section_runs_all_the_same) {
    Red(AddLine(0, 0, 10, 0));
    Red(AddLine(10, 0, 10, 10));
    Run(L"255 0 0;", L"0.05", L"0");
    EXPECT_EQ(Polylines().size(), 1u);
    // The settings keep the switch forced on.
    EXPECT_TRUE(CleanupGlobals->connectPline->BolOpen);
}

TEST_F(ConnectPline, tolerance_0_joins_nothing) {
    AcDbObjectId a = Red(AddLine(0, 0, 10, 0));
    AcDbObjectId b = Red(AddLine(10, 0, 10, 10));
    Run(L"255 0 0;", L"0");
    EXPECT_FALSE(IsGone(a));
    EXPECT_FALSE(IsGone(b));
    EXPECT_TRUE(Polylines().empty());
}

TEST_F(ConnectPline, pieces_at_z_10_give_a_polyline_at_elevation_0) {
    Red(AddToDrawing(new AcDbLine(AcGePoint3d(0, 0, 10), AcGePoint3d(10, 0, 10))));
    Red(AddToDrawing(new AcDbLine(AcGePoint3d(10, 0, 10), AcGePoint3d(10, 10, 10))));
    Run(L"255 0 0;");
    ASSERT_EQ(Polylines().size(), 1u);
    EXPECT_EQ(ShapeOf(Polylines()[0]).elevation, 0.0);
}

TEST_F(ConnectPline, unlisted_colour_and_a_colour_listed_twice) {
    AcDbObjectId blueA = AddLine(0, 0, 10, 0);
    Color(blueA, 5);
    AcDbObjectId blueB = AddLine(10, 0, 10, 10);
    Color(blueB, 5);
    Red(AddLine(0, 20, 10, 20));
    Red(AddLine(10, 20, 10, 30));
    Run(L"255 0 0;255 0 0;");
    EXPECT_FALSE(IsGone(blueA));
    EXPECT_FALSE(IsGone(blueB));
    EXPECT_EQ(Polylines().size(), 1u);
}

TEST_F(ConnectPline, ends_meet_strictly_below_the_tolerance) {
    struct Row {
        double gap;
        size_t polylines;
    };
    for (Row row : {Row{0.049, 1u}, Row{0.05, 0u}}) {
        Red(AddLine(-10, 0, 0, 0));
        Red(AddLine(row.gap, 0, 10, 0));
        Run(L"255 0 0;");
        EXPECT_EQ(Polylines().size(), row.polylines) << row.gap;
        for (const AcDbObjectId& id : LiveIds()) Change(id, [](AcDbEntity* e) { e->erase(); });
    }
}

TEST_F(ConnectPline, erased_piece_does_not_open_and_does_not_join_the_chain) {
    AcDbObjectId first = AddLine(0, 0, 10, 0);
    AcDbObjectId erased = AddLine(10, 0, 20, 0);
    Change(erased, [](AcDbEntity* e) { e->erase(); });
    AcDbObjectIdArray used;
    AcDbObjectId polyline = JoinChain(AcDbObjectIdArray{first, erased}, AcDbObjectId(), used, 0.05);
    ASSERT_FALSE(polyline.isNull());
    EXPECT_EQ(ShapeOf(polyline).vertices.size(), 2u);
    EXPECT_EQ(used, AcDbObjectIdArray{first});
}

// The plain walk of the clusters: each member against every curve left, in list order.
std::vector<std::vector<size_t>> PlainClusters(const std::vector<CurveEnds>& curves, double t) {
    std::vector<size_t> left;
    for (size_t i = 0; i < curves.size(); ++i) left.push_back(i);
    std::vector<std::vector<size_t>> clusters;
    while (!left.empty()) {
        std::vector<size_t> cluster{left.front()};
        left.erase(left.begin());
        for (size_t k = 0; k < cluster.size(); ++k) {
            const CurveEnds& c = curves[cluster[k]];
            for (size_t w = 0; w < left.size();) {
                const CurveEnds& o = curves[left[w]];
                if (SamePoint(c.start, o.start, t) || SamePoint(c.start, o.end, t) || SamePoint(c.end, o.start, t) ||
                    SamePoint(c.end, o.end, t)) {
                    cluster.push_back(left[w]);
                    left.erase(left.begin() + static_cast<long>(w));
                } else {
                    ++w;
                }
            }
        }
        clusters.push_back(cluster);
    }
    return clusters;
}

TEST(EndClusters, grid_walk_gives_the_clusters_of_the_plain_walk_in_the_same_order) {
    std::mt19937 random(8);
    for (int drawing = 0; drawing < 60; ++drawing) {
        std::uniform_int_distribution<int> coordinate(-30, 30);
        std::uniform_real_distribution<double> jitter(-0.06, 0.06);
        std::vector<CurveEnds> curves(static_cast<size_t>(1 + random() % 400));
        for (CurveEnds& c : curves) {
            c.start = AcGePoint3d(coordinate(random) + jitter(random), coordinate(random) + jitter(random), 0);
            c.end = AcGePoint3d(coordinate(random) + jitter(random), coordinate(random) + jitter(random),
                                random() % 5 == 0 ? jitter(random) : 0.0);
        }
        double t = drawing % 3 == 0 ? 0.05 : (drawing % 3 == 1 ? 0.02 : 1.5);
        EXPECT_EQ(ClusterByTouchingEnds(curves, t), PlainClusters(curves, t)) << "drawing " << drawing;
    }
}

TEST(EndClusters, tolerance_not_above_0_gives_one_cluster_per_curve) {
    std::vector<CurveEnds> curves(3);
    for (double t : {0.0, -1.0}) EXPECT_EQ(ClusterByTouchingEnds(curves, t).size(), 3u);
}

TEST_F(ConnectPline, polyline_of_a_fork_that_no_piece_joined_stays_and_used_pieces_are_erased) {
    AcDbObjectId first = Red(AddLine(0, 0, 10, 0));
    AcDbObjectId second = Red(AddLine(10, 0, 20, 0));
    AcDbObjectId branch = Red(AddPolyline({10, 0, 10, 10, 15, 10}, false));
    Run(L"255 0 0;");
    EXPECT_TRUE(IsErased(first));
    EXPECT_TRUE(IsErased(second));
    EXPECT_FALSE(IsGone(branch));
    // The branch's pieces were made for the chain and are gone again.
    EXPECT_EQ(LiveIds().length(), 2);
}

TEST_F(ConnectPline, polyline_with_ends_exactly_the_tolerance_apart_is_open_and_joins) {
    AcDbObjectId open = Red(AddPolyline({0, 0, 10, 0, 10, 10, 0, 0.5}, false));
    AcDbObjectId touching = Red(AddLine(0, 0, -10, 0));
    Run(L"255 0 0;", L"0.5");
    EXPECT_TRUE(IsGone(open));
    EXPECT_TRUE(IsGone(touching));
    EXPECT_EQ(Polylines().size(), 1u);
}

TEST_F(ConnectPline, erased_curve_gives_no_ends_and_joins_no_cluster) {
    AcDbObjectId first = AddLine(0, 0, 10, 0);
    AcDbObjectId erased = AddLine(10, 0, 20, 0);
    Change(erased, [](AcDbEntity* e) { e->erase(); });
    AcArray<AcDbObjectIdArray> clusters = ClusterCurvesByEnds(AcDbObjectIdArray{first, erased}, 0.05);
    ASSERT_EQ(clusters.length(), 1);
    EXPECT_EQ(clusters[0], AcDbObjectIdArray{first});
}

TEST_F(ConnectPline, entity_that_is_no_curve_is_passed_over_and_left_closed) {
    AcDbObjectId line = AddLine(0, 0, 10, 0);
    AcDbObjectId text = AddToDrawing(new AcDbText(AcGePoint3d(10, 0, 0), L"T"));
    AcDbObjectIdArray used;
    AcDbObjectId polyline = JoinChain(AcDbObjectIdArray{line, text}, AcDbObjectId(), used, 0.05);
    ASSERT_FALSE(polyline.isNull());
    EXPECT_EQ(used, AcDbObjectIdArray{line});
    AcDbEntity* entity = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(entity, text, AcDb::kForWrite), Acad::eOk);
    entity->close();
}

TEST_F(ConnectPline, erased_start_piece_does_not_open_and_gives_no_polyline) {
    AcDbObjectId start = AddLine(100, 0, 110, 0);
    AcDbObjectId next = AddLine(110, 0, 120, 0);
    Change(start, [](AcDbEntity* e) { e->erase(); });
    AcDbObjectIdArray used;
    EXPECT_TRUE(JoinChain(AcDbObjectIdArray{start, next}, start, used, 0.05).isNull());
    EXPECT_FALSE(IsGone(next));
}

}  // namespace
