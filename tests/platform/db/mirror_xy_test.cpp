// Mirroring in the XY plane, as the standardisation uses it on curves the exporter left with a
// normal of -Z: the normal comes to +Z, z changes its sign, and the curve keeps its look in plan.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tuple>

#include "geometry_matchers.hpp"
#include "platform/db/arc.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/polyline_classic.hpp"
#include "platform/ge/plane.hpp"

namespace {

constexpr double kTol = 1e-9;

AcGeMatrix3d MirrorXY() {
    AcGeMatrix3d m;
    m.setToMirroring(AcGePlane(AcGePoint3d::kOrigin, AcGeVector3d::kXAxis, AcGeVector3d::kYAxis));
    return m;
}

AcGePoint3d Plan(const AcGePoint3d& p) { return AcGePoint3d(p.x, p.y, -p.z); }

// The curve's points at nine even steps of its parameter.
std::vector<AcGePoint3d> Samples(const AcDbCurve& curve) {
    double s = 0.0, e = 0.0;
    curve.getStartParam(s);
    curve.getEndParam(e);
    std::vector<AcGePoint3d> points;
    for (int i = 0; i <= 8; ++i) {
        AcGePoint3d p;
        curve.getPointAtParam(s + (e - s) * i / 8.0, p);
        points.push_back(p);
    }
    return points;
}

// Every sample of `before`, with z negated, lies on `after` (and the reverse), so the plan view is
// the same whichever way the curve now runs.
void ExpectSamePlan(const AcDbCurve& before, const AcDbCurve& after) {
    for (const AcGePoint3d& p : Samples(before)) {
        AcGePoint3d closest;
        after.getClosestPointTo(Plan(p), closest);
        EXPECT_THAT(closest, IsNearPoint(Plan(p), 1e-7));
    }
    for (const AcGePoint3d& p : Samples(after)) {
        AcGePoint3d closest;
        before.getClosestPointTo(Plan(p), closest);
        EXPECT_THAT(closest, IsNearPoint(Plan(p), 1e-7));
    }
}

TEST(MirrorXY, circle_with_minus_z_normal_comes_to_plus_z) {
    AcDbCircle circle(AcGePoint3d(5, 6, 3), AcGeVector3d(0, 0, -1), 2.5);
    ASSERT_EQ(circle.transformBy(MirrorXY()), Acad::eOk);
    EXPECT_TRUE(circle.normal().isEqualTo(AcGeVector3d::kZAxis));
    EXPECT_THAT(circle.center(), IsNearPoint(AcGePoint3d(5, 6, -3), kTol));
    EXPECT_DOUBLE_EQ(circle.radius(), 2.5);
}

TEST(MirrorXY, arc_with_minus_z_normal_keeps_its_plan_and_swaps_its_ends) {
    AcDbArc before(AcGePoint3d(1, 2, 4), AcGeVector3d(0, 0, -1), 3.0, 0.3, 1.9);
    AcDbArc after(before);
    ASSERT_EQ(after.transformBy(MirrorXY()), Acad::eOk);
    EXPECT_TRUE(after.normal().isEqualTo(AcGeVector3d::kZAxis));
    EXPECT_THAT(after.center(), IsNearPoint(AcGePoint3d(1, 2, -4), kTol));
    EXPECT_DOUBLE_EQ(after.radius(), 3.0);
    // Under -Z, angle t points to (-cos t, sin t); seen from +Z the sweep is pi - 1.9 to pi - 0.3.
    EXPECT_NEAR(after.startAngle(), 3.14159265358979323846 - 1.9, kTol);
    EXPECT_NEAR(after.endAngle(), 3.14159265358979323846 - 0.3, kTol);
    AcGePoint3d beforeStart, beforeEnd, afterStart, afterEnd;
    before.getStartPoint(beforeStart);
    before.getEndPoint(beforeEnd);
    after.getStartPoint(afterStart);
    after.getEndPoint(afterEnd);
    EXPECT_THAT(afterStart, IsNearPoint(Plan(beforeEnd), kTol));
    EXPECT_THAT(afterEnd, IsNearPoint(Plan(beforeStart), kTol));
    ExpectSamePlan(before, after);
}

TEST(MirrorXY, polyline_2d_with_minus_z_normal_turns_bulges_and_keeps_its_plan) {
    AcDb2dPolyline before;
    before.setNormal(AcGeVector3d(0, 0, -1));
    before.setElevation(2.0);
    for (auto [x, y, bulge] : {std::tuple{0.0, 0.0, 0.5}, {10.0, 0.0, -0.25}, {10.0, 5.0, 0.0}}) {
        AcDb2dVertex vertex;
        vertex.position = AcGePoint3d(x, y, 2);
        vertex.bulge = bulge;
        before.vertices().push_back(vertex);
    }
    AcDb2dPolyline after(before);
    ASSERT_EQ(after.transformBy(MirrorXY()), Acad::eOk);
    EXPECT_TRUE(after.normal().isEqualTo(AcGeVector3d::kZAxis));
    ASSERT_EQ(after.vertices().size(), 3u);
    EXPECT_DOUBLE_EQ(after.vertices()[0].bulge, -0.5);
    EXPECT_DOUBLE_EQ(after.vertices()[1].bulge, 0.25);
    for (size_t i = 0; i < 3; ++i)
        EXPECT_THAT(after.vertexPosition(after.vertices()[i]),
                    IsNearPoint(Plan(before.vertexPosition(before.vertices()[i])), kTol));
    ExpectSamePlan(before, after);
}

TEST(MirrorXY, circle_with_plus_z_normal_goes_to_minus_z) {
    AcDbCircle circle(AcGePoint3d(5, 6, 0), AcGeVector3d::kZAxis, 1.0);
    ASSERT_EQ(circle.transformBy(MirrorXY()), Acad::eOk);
    EXPECT_TRUE(circle.normal().isEqualTo(AcGeVector3d(0, 0, -1)));
}

}  // namespace
