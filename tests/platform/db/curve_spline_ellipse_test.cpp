#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "geometry_matchers.hpp"
#include "platform/db/ellipse.hpp"
#include "platform/db/spline.hpp"

namespace {
constexpr double kPi = std::numbers::pi;

// The quarter of a circle of radius 2 about (1, 1), as a rational quadratic over [0, 1].
AcDbSpline quarterCircle() {
    AcDbSpline s;
    s.setNurbsData(2, true, false, false, {{3, 1, 0}, {3, 3, 0}, {1, 3, 0}},
                   {0, 0, 0, 1, 1, 1}, {1, std::sqrt(0.5), 1});
    return s;
}

AcDbSpline cubic() {
    AcDbSpline s;
    s.setNurbsData(3, false, false, false,
                   {{0, 0, 0}, {1, 2, 0}, {3, 2, 0}, {4, 0, 0}, {6, -1, 0}},
                   {0, 0, 0, 0, 0.5, 1, 1, 1, 1}, {});
    return s;
}
}  // namespace

TEST(SplineCurve, rational_quarter_circle_lies_on_its_circle) {
    AcDbSpline s = quarterCircle();
    double sp = -1, ep = -1;
    ASSERT_EQ(s.getStartParam(sp), Acad::eOk);
    ASSERT_EQ(s.getEndParam(ep), Acad::eOk);
    EXPECT_EQ(sp, 0.0);
    EXPECT_EQ(ep, 1.0);
    for (int i = 0; i <= 50; ++i) {
        AcGePoint3d p;
        ASSERT_EQ(s.getPointAtParam(i / 50.0, p), Acad::eOk);
        EXPECT_NEAR(p.distanceTo({1, 1, 0}), 2.0, 1e-9);
    }
    AcGePoint3d mid;
    s.getPointAtParam(0.5, mid);
    EXPECT_THAT(mid, IsNearPoint(AcGePoint3d(1 + std::sqrt(2.0), 1 + std::sqrt(2.0), 0), 1e-12));
    double length = -1;
    ASSERT_EQ(s.getDistAtParam(ep, length), Acad::eOk);
    EXPECT_NEAR(length, kPi, 1e-9 * kPi);
}

TEST(SplineCurve, ends_closest_point_and_parameter_round_trip) {
    AcDbSpline s = cubic();
    AcGePoint3d start, end;
    ASSERT_EQ(s.getStartPoint(start), Acad::eOk);
    ASSERT_EQ(s.getEndPoint(end), Acad::eOk);
    EXPECT_THAT(start, IsNearPoint(AcGePoint3d(0, 0, 0), 1e-15));
    EXPECT_THAT(end, IsNearPoint(AcGePoint3d(6, -1, 0), 1e-15));
    for (double t : {0.1, 0.5, 0.77}) {
        AcGePoint3d p, closest;
        ASSERT_EQ(s.getPointAtParam(t, p), Acad::eOk);
        double back = -1;
        ASSERT_EQ(s.getParamAtPoint(p, back), Acad::eOk);
        EXPECT_NEAR(back, t, 1e-9);
        AcGeVector3d tangent;
        s.getFirstDeriv(t, tangent);
        AcGeVector3d side = AcGeVector3d(-tangent.y, tangent.x, 0).normal() * 0.01;
        ASSERT_EQ(s.getClosestPointTo(p + side, closest), Acad::eOk);
        EXPECT_THAT(closest, IsNearPoint(p, 1e-9));
    }
    AcGePoint3d untouched(5, 5, 5);
    EXPECT_EQ(s.getPointAtParam(1.5, untouched), Acad::eInvalidInput);
    EXPECT_EQ(untouched, AcGePoint3d(5, 5, 5));
}

TEST(SplineCurve, stretch_points_are_the_control_points) {
    AcDbSpline s = cubic();
    AcGePoint3dArray points;
    ASSERT_EQ(s.getStretchPoints(points), Acad::eOk);
    EXPECT_EQ(points.items(), s.controlPoints());
}

TEST(SplineCurve, offset_and_explode_are_not_offered) {
    AcDbSpline s = cubic();
    AcDbVoidPtrArray out;
    EXPECT_EQ(s.getOffsetCurves(1.0, out), Acad::eNotImplementedYet);
    EXPECT_EQ(s.explode(out), Acad::eNotApplicable);
    EXPECT_TRUE(out.isEmpty());
}

TEST(SplineCurve, without_a_definition_every_query_fails) {
    AcDbSpline s;
    double param = 3;
    EXPECT_EQ(s.getEndParam(param), Acad::eDegenerateGeometry);
    EXPECT_EQ(param, 3);
}

TEST(SplineCurve, periodic_spline_wraps_parameters) {
    AcDbSpline s;
    // A uniform closed quadratic over four distinct control points, the first two repeated.
    s.setNurbsData(2, false, true, true,
                   {{1, 0, 0}, {0, 1, 0}, {-1, 0, 0}, {0, -1, 0}, {1, 0, 0}, {0, 1, 0}},
                   {0, 1, 2, 3, 4, 5, 6, 7, 8}, {});
    AcGePoint3d inside, wrapped;
    ASSERT_EQ(s.getPointAtParam(2.5, inside), Acad::eOk);
    ASSERT_EQ(s.getPointAtParam(6.5, wrapped), Acad::eOk);
    EXPECT_THAT(wrapped, IsNearPoint(inside, 1e-12));
}

TEST(SplineCurve, extents_are_tight) {
    AcDbSpline s = quarterCircle();
    AcDbExtents box;
    ASSERT_EQ(s.getGeomExtents(box), Acad::eOk);
    EXPECT_THAT(box.minPoint(), IsNearPoint(AcGePoint3d(1, 1, 0), 1e-12));
    EXPECT_THAT(box.maxPoint(), IsNearPoint(AcGePoint3d(3, 3, 0), 1e-12));
}

TEST(EllipseCurve, partial_ellipse_parameters_are_eccentric_angles) {
    // Major 4 along x, minor 2: the point at eccentric angle t is (4 cos t, 2 sin t).
    AcDbEllipse e({0, 0, 0}, AcGeVector3d::kZAxis, {4, 0, 0}, 0.5, kPi / 4, kPi);
    double sp = -1, ep = -1;
    ASSERT_EQ(e.getStartParam(sp), Acad::eOk);
    ASSERT_EQ(e.getEndParam(ep), Acad::eOk);
    EXPECT_NEAR(sp, kPi / 4, 1e-15);
    EXPECT_NEAR(ep, kPi, 1e-15);
    AcGePoint3d start;
    ASSERT_EQ(e.getStartPoint(start), Acad::eOk);
    EXPECT_THAT(start, IsNearPoint(AcGePoint3d(4 * std::sqrt(0.5), 2 * std::sqrt(0.5), 0), 1e-12));
    // The host's start angle is the polar angle of that point: atan(ratio tan t).
    EXPECT_NEAR(e.startAngle(), std::atan2(2 * std::sqrt(0.5), 4 * std::sqrt(0.5)), 1e-12);
    EXPECT_NEAR(e.endAngle(), kPi, 1e-12);
    AcGePoint3d mid;
    ASSERT_EQ(e.getPointAtParam(0.5 * (sp + ep), mid), Acad::eOk);
    EXPECT_THAT(mid, IsNearPoint(AcGePoint3d(4 * std::cos(5 * kPi / 8), 2 * std::sin(5 * kPi / 8), 0),
                                 1e-12));
    double back = -1;
    ASSERT_EQ(e.getParamAtPoint(mid, back), Acad::eOk);
    EXPECT_NEAR(back, 5 * kPi / 8, 1e-9);
}

TEST(EllipseCurve, full_length_matches_the_reference_to_relative_1e9) {
    AcDbEllipse e({0, 0, 0}, AcGeVector3d::kZAxis, {4, 0, 0}, 0.5);
    double ep = -1, length = -1;
    ASSERT_EQ(e.getEndParam(ep), Acad::eOk);
    ASSERT_EQ(e.getDistAtParam(ep, length), Acad::eOk);
    const double reference = 19.376896441095352;  // 16 E(m = 0.75)
    EXPECT_NEAR(length / reference, 1.0, 1e-9);
}

TEST(EllipseCurve, closest_point_and_extents) {
    AcDbEllipse e({1, 1, 0}, AcGeVector3d::kZAxis, {0, 3, 0}, 0.5);
    AcGePoint3d p;
    ASSERT_EQ(e.getClosestPointTo({1, 10, 0}, p), Acad::eOk);
    EXPECT_THAT(p, IsNearPoint(AcGePoint3d(1, 4, 0), 1e-9));
    AcDbExtents box;
    ASSERT_EQ(e.getGeomExtents(box), Acad::eOk);
    EXPECT_THAT(box.minPoint(), IsNearPoint(AcGePoint3d(-0.5, -2, 0), 1e-12));
    EXPECT_THAT(box.maxPoint(), IsNearPoint(AcGePoint3d(2.5, 4, 0), 1e-12));
}

TEST(EllipseCurve, mirror_keeps_the_points_of_an_elliptical_arc) {
    AcDbEllipse e({0, 0, 0}, AcGeVector3d::kZAxis, {4, 0, 0}, 0.5, 0.0, kPi / 2);
    AcGeMatrix3d mirror;
    mirror.entry[1][1] = -1;  // y -> -y
    ASSERT_EQ(e.transformBy(mirror), Acad::eOk);
    AcGePoint3d s, end;
    e.getStartPoint(s);
    e.getEndPoint(end);
    // Mirrored, the arc from (4, 0) to (0, 2) runs from (0, -2) to (4, 0).
    EXPECT_THAT(s, IsNearPoint(AcGePoint3d(0, -2, 0), 1e-12));
    EXPECT_THAT(end, IsNearPoint(AcGePoint3d(4, 0, 0), 1e-12));
}

// A file's normal of unit length is kept to its last bit; another is made unit length.
TEST(EllipseCurve, unit_normal_is_kept_as_given) {
    AcDbEllipse e;
    const AcGeVector3d nearlyUp(0, 0, 0x1.fffffffffffffp-1);
    ASSERT_EQ(e.set({1, 2, 0}, nearlyUp, {3, 0, 0}, 0.5, 0, 2 * kPi), Acad::eOk);
    EXPECT_EQ(e.normal().z, nearlyUp.z);
    ASSERT_EQ(e.set({1, 2, 0}, {0, 0, 2}, {3, 0, 0}, 0.5, 0, 2 * kPi), Acad::eOk);
    EXPECT_EQ(e.normal().z, 1.0);
}
