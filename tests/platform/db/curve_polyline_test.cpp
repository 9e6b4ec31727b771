#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "geometry_matchers.hpp"
#include "platform/db/arc.hpp"
#include "platform/db/line.hpp"
#include "platform/db/polyline.hpp"
#include "platform/db/polyline_classic.hpp"
#include "platform/ge/plane.hpp"

namespace {
constexpr double kPi = std::numbers::pi;

AcDbPolyline polylineOf(std::initializer_list<AcDbPolyline::Vertex> vertices, bool closed) {
    AcDbPolyline pl;
    for (const AcDbPolyline::Vertex& v : vertices)
        pl.addVertexAt(pl.numVerts(), v.point, v.bulge, 0.0, 0.0);
    pl.setClosed(closed);
    return pl;
}

// Along x, a half circle out to x = 12 (counter-clockwise), back along y = 4.
AcDbPolyline hairpin(bool closed) {
    return polylineOf({{{0, 0}, 0}, {{10, 0}, 1}, {{10, 4}, 0}, {{0, 4}, 0}}, closed);
}

AcDbPolyline rectangle(double w, double h) {
    return polylineOf({{{0, 0}, 0}, {{w, 0}, 0}, {{w, h}, 0}, {{0, h}, 0}}, true);
}

std::vector<AcGePoint2d> verticesOf(const AcDbPolyline& pl) {
    std::vector<AcGePoint2d> points;
    for (unsigned int k = 0; k < pl.numVerts(); ++k) points.push_back(pl.vertexAt(k).point);
    return points;
}

std::unique_ptr<AcDbEntity> singleOffset(const AcDbCurve& curve, double distance) {
    AcDbVoidPtrArray curves;
    EXPECT_EQ(curve.getOffsetCurves(distance, curves), Acad::eOk);
    auto owned = takeEntities(curves);
    EXPECT_EQ(owned.size(), 1u);
    return owned.empty() ? nullptr : std::move(owned[0]);
}
}  // namespace

TEST(PolylineCurve, open_polyline_runs_over_vertex_indices) {
    AcDbPolyline pl = hairpin(false);
    double sp = -1, ep = -1;
    ASSERT_EQ(pl.getStartParam(sp), Acad::eOk);
    ASSERT_EQ(pl.getEndParam(ep), Acad::eOk);
    EXPECT_EQ(sp, 0.0);
    EXPECT_EQ(ep, 3.0);
    AcGePoint3d p;
    ASSERT_EQ(pl.getPointAtParam(0.5, p), Acad::eOk);
    EXPECT_THAT(p, IsNearPoint(AcGePoint3d(5, 0, 0), 1e-12));
    // Inside an arc segment the fraction is of the swept angle.
    ASSERT_EQ(pl.getPointAtParam(1.5, p), Acad::eOk);
    EXPECT_THAT(p, IsNearPoint(AcGePoint3d(12, 2, 0), 1e-12));
    ASSERT_EQ(pl.getPointAtParam(ep, p), Acad::eOk);
    EXPECT_THAT(p, IsNearPoint(AcGePoint3d(0, 4, 0), 1e-12));
    double d = -1;
    ASSERT_EQ(pl.getDistAtParam(1.5, d), Acad::eOk);
    EXPECT_NEAR(d, 10 + kPi, 1e-12);
    ASSERT_EQ(pl.getDistAtParam(ep, d), Acad::eOk);
    EXPECT_NEAR(d, 20 + 2 * kPi, 1e-12);
    EXPECT_EQ(pl.getPointAtParam(3.5, p), Acad::eInvalidInput);
}

TEST(PolylineCurve, closed_polyline_ends_at_its_start_one_segment_later) {
    AcDbPolyline pl = hairpin(true);
    double ep = -1, d = -1;
    ASSERT_EQ(pl.getEndParam(ep), Acad::eOk);
    EXPECT_EQ(ep, 4.0);
    AcGePoint3d end;
    ASSERT_EQ(pl.getEndPoint(end), Acad::eOk);
    EXPECT_THAT(end, IsNearPoint(AcGePoint3d(0, 0, 0), 1e-12));
    ASSERT_EQ(pl.getDistAtParam(ep, d), Acad::eOk);
    EXPECT_NEAR(d, 24 + 2 * kPi, 1e-12);
}

TEST(PolylineCurve, closest_point_and_parameter_on_an_arc_segment) {
    AcDbPolyline pl = hairpin(false);
    AcGePoint3d p;
    ASSERT_EQ(pl.getClosestPointTo({15, 2, 3}, p), Acad::eOk);
    EXPECT_THAT(p, IsNearPoint(AcGePoint3d(12, 2, 0), 1e-12));
    double param = -1;
    ASSERT_EQ(pl.getParamAtPoint({12, 2, 0}, param), Acad::eOk);
    EXPECT_NEAR(param, 1.5, 1e-12);
    EXPECT_EQ(pl.getParamAtPoint({12, 2, 1}, param), Acad::ePointNotOnEntity);
}

TEST(PolylineCurve, elevation_and_normal_place_the_points) {
    AcDbPolyline pl = rectangle(2, 1);
    pl.setElevation(5);
    AcGePoint3d p;
    ASSERT_EQ(pl.getPointAtParam(1.0, p), Acad::eOk);
    EXPECT_THAT(p, IsNearPoint(AcGePoint3d(2, 0, 5), 1e-12));
    pl.setNormal(-AcGeVector3d::kZAxis);
    ASSERT_EQ(pl.getPointAtParam(1.0, p), Acad::eOk);
    EXPECT_THAT(p, IsNearPoint(AcGePoint3d(-2, 0, -5), 1e-12));
}

TEST(PolylineCurve, empty_polyline_has_no_parameters) {
    AcDbPolyline pl;
    double param = 9;
    EXPECT_EQ(pl.getEndParam(param), Acad::eDegenerateGeometry);
    EXPECT_EQ(param, 9);
}

TEST(PolylineCurve, explode_gives_lines_and_arcs_with_the_direction_kept) {
    AcDbPolyline pl = polylineOf({{{0, 0}, 0}, {{10, 0}, -1}, {{10, 4}, 0}}, false);
    pl.setLayerName(L"PLATE");
    AcDbVoidPtrArray pieces;
    ASSERT_EQ(pl.explode(pieces), Acad::eOk);
    auto owned = takeEntities(pieces);
    ASSERT_EQ(owned.size(), 2u);
    ASSERT_NE(AcDbLine::cast(owned[0].get()), nullptr);
    auto* arc = AcDbArc::cast(owned[1].get());
    ASSERT_NE(arc, nullptr);
    // A clockwise segment comes out as the counter-clockwise arc from its end to its start.
    AcGePoint3d s, e, m;
    arc->getStartPoint(s);
    arc->getEndPoint(e);
    arc->getPointAtParam(arc->startAngle() + 0.5 * arc->totalAngle(), m);
    EXPECT_THAT(s, IsNearPoint(AcGePoint3d(10, 4, 0), 1e-12));
    EXPECT_THAT(e, IsNearPoint(AcGePoint3d(10, 0, 0), 1e-12));
    EXPECT_THAT(m, IsNearPoint(AcGePoint3d(8, 2, 0), 1e-12));
    EXPECT_EQ(arc->layer(), L"PLATE");
}

struct RectangleOffsetCase {
    const char* name;
    bool clockwise;
    double distance;
    std::vector<AcGePoint2d> expected;
};

class RectangleOffset : public testing::TestWithParam<RectangleOffsetCase> {};

TEST_P(RectangleOffset, is_a_rectangle_on_the_stated_side) {
    const RectangleOffsetCase& c = GetParam();
    AcDbPolyline pl =
        c.clockwise ? polylineOf({{{0, 0}, 0}, {{0, 4}, 0}, {{10, 4}, 0}, {{10, 0}, 0}}, true)
                    : rectangle(10, 4);
    auto out = singleOffset(pl, c.distance);
    auto* result = AcDbPolyline::cast(out.get());
    ASSERT_NE(result, nullptr);
    EXPECT_TRUE(result->isClosed());
    std::vector<AcGePoint2d> got = verticesOf(*result);
    ASSERT_EQ(got.size(), c.expected.size());
    for (std::size_t i = 0; i < got.size(); ++i)
        EXPECT_THAT(got[i], IsNearPoint(c.expected[i], 1e-12)) << i;
}

INSTANTIATE_TEST_SUITE_P(
    Sides, RectangleOffset,
    testing::Values(
        RectangleOffsetCase{"closed_rectangle_outward", false, 1.0,
                            {{-1, -1}, {11, -1}, {11, 5}, {-1, 5}}},
        RectangleOffsetCase{"closed_rectangle_inward", false, -1.0,
                            {{1, 1}, {9, 1}, {9, 3}, {1, 3}}},
        RectangleOffsetCase{"clockwise_rectangle_positive_goes_inward", true, 1.0,
                            {{1, 1}, {1, 3}, {9, 3}, {9, 1}}}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(PolylineOffset, rectangle_inward_past_its_half_height_fails) {
    AcDbPolyline pl = rectangle(10, 4);
    AcDbVoidPtrArray curves;
    EXPECT_EQ(pl.getOffsetCurves(-2.5, curves), Acad::eInvalidOffset);
    EXPECT_TRUE(curves.isEmpty());
}

TEST(PolylineOffset, arc_segment_stays_a_bulge_with_a_new_radius) {
    AcDbPolyline pl = hairpin(false);
    pl.setLayerName(L"CUT");
    auto out = singleOffset(pl, 1.0);
    auto* result = AcDbPolyline::cast(out.get());
    ASSERT_NE(result, nullptr);
    EXPECT_FALSE(result->isClosed());
    EXPECT_EQ(verticesOf(*result),
              (std::vector<AcGePoint2d>{{0, -1}, {10, -1}, {10, 5}, {0, 5}}));
    double bulge = 0;
    result->getBulgeAt(1, bulge);
    EXPECT_NEAR(bulge, 1.0, 1e-12);
    AcGePoint3d tip;
    result->getPointAtParam(1.5, tip);
    EXPECT_THAT(tip, IsNearPoint(AcGePoint3d(13, 2, 0), 1e-12));
    EXPECT_EQ(result->layer(), L"CUT");
}

TEST(PolylineCurve, mirror_turns_bulges_round) {
    AcDbPolyline pl = hairpin(false);
    ASSERT_EQ(pl.transformBy(AcGeMatrix3d::mirroring(AcGePlane::kYZPlane)), Acad::eOk);
    AcGePoint3d tip;
    pl.getPointAtParam(1.5, tip);
    EXPECT_THAT(tip, IsNearPoint(AcGePoint3d(-12, 2, 0), 1e-12));
    double bulge = 0;
    pl.getBulgeAt(1, bulge);
    EXPECT_NEAR(bulge, -1.0, 1e-12);
}

TEST(PolylineCurve, extents_reach_the_arc_and_stretch_points_are_the_vertices) {
    AcDbPolyline pl = hairpin(false);
    AcDbExtents box;
    ASSERT_EQ(pl.getGeomExtents(box), Acad::eOk);
    EXPECT_THAT(box.maxPoint(), IsNearPoint(AcGePoint3d(12, 4, 0), 1e-12));
    AcGePoint3dArray points;
    ASSERT_EQ(pl.getStretchPoints(points), Acad::eOk);
    EXPECT_EQ(points.length(), 4);
    EXPECT_THAT(points[2], IsNearPoint(AcGePoint3d(10, 4, 0), 1e-12));
}

TEST(ClassicPolylineCurve, two_d_polyline_runs_over_its_vertices) {
    AcDb2dPolyline pl;
    for (AcGePoint2d p : {AcGePoint2d(0, 0), AcGePoint2d(3, 0), AcGePoint2d(3, 4)}) {
        AcDb2dVertex v;
        v.position = AcGePoint3d(p.x, p.y, 0);
        pl.vertices().push_back(v);
    }
    double ep = -1, d = -1;
    ASSERT_EQ(pl.getEndParam(ep), Acad::eOk);
    EXPECT_EQ(ep, 2.0);
    ASSERT_EQ(pl.getDistAtParam(1.5, d), Acad::eOk);
    EXPECT_NEAR(d, 5.0, 1e-12);
    auto out = singleOffset(pl, 1.0);
    auto* offset = AcDb2dPolyline::cast(out.get());
    ASSERT_NE(offset, nullptr);
    EXPECT_THAT(offset->vertices()[1].position, IsNearPoint(AcGePoint3d(4, -1, 0), 1e-12));
}

TEST(ClassicPolylineCurve, three_d_polyline_skips_its_frame_vertices) {
    AcDb3dPolyline pl;
    for (AcGePoint3d p : {AcGePoint3d(0, 0, 0), AcGePoint3d(0, 0, 3), AcGePoint3d(4, 0, 3)}) {
        AcDb3dPolylineVertex v;
        v.position = p;
        pl.vertices().push_back(v);
    }
    AcDb3dPolylineVertex frame;
    frame.position = AcGePoint3d(9, 9, 9);
    frame.vertexType = AcDb::k3dControlVertex;
    pl.vertices().insert(pl.vertices().begin() + 1, frame);
    double ep = -1, d = -1;
    ASSERT_EQ(pl.getEndParam(ep), Acad::eOk);
    EXPECT_EQ(ep, 2.0);
    ASSERT_EQ(pl.getDistAtParam(ep, d), Acad::eOk);
    EXPECT_NEAR(d, 7.0, 1e-12);
    AcDbVoidPtrArray pieces;
    ASSERT_EQ(pl.explode(pieces), Acad::eOk);
    EXPECT_EQ(takeEntities(pieces).size(), 2u);
}
