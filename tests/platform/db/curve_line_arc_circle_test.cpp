#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "geometry_matchers.hpp"
#include "platform/db/arc.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/line.hpp"

namespace {
constexpr double kPi = std::numbers::pi;

struct ParamCase {
    const char* name;
    std::function<AcDbCurve*()> make;
    double startParam;
    double endParam;
    AcGePoint3d start, middle, end;
    double length;
};

std::vector<ParamCase> paramCases() {
    return {
        {"line_runs_over_its_length", [] { return new AcDbLine({1, 1, 0}, {4, 5, 0}); }, 0.0,
         5.0, {1, 1, 0}, {2.5, 3, 0}, {4, 5, 0}, 5.0},
        {"circle_runs_over_a_turn",
         [] { return new AcDbCircle({1, 2, 0}, AcGeVector3d::kZAxis, 2.0); }, 0.0, 2 * kPi,
         {3, 2, 0}, {-1, 2, 0}, {3, 2, 0}, 4 * kPi},
        {"arc_runs_over_its_angles",
         [] { return new AcDbArc({0, 0, 0}, 2.0, 0.5 * kPi, kPi); }, 0.5 * kPi, kPi, {0, 2, 0},
         {-std::sqrt(2.0), std::sqrt(2.0), 0}, {-2, 0, 0}, kPi},
        {"arc_across_zero_ends_a_turn_later",
         [] { return new AcDbArc({0, 0, 0}, 1.0, 1.5 * kPi, 0.5 * kPi); }, 1.5 * kPi, 2.5 * kPi,
         {0, -1, 0}, {1, 0, 0}, {0, 1, 0}, kPi},
    };
}

class CurveParams : public testing::TestWithParam<ParamCase> {};
}  // namespace

TEST_P(CurveParams, range_points_and_length) {
    const ParamCase& c = GetParam();
    std::unique_ptr<AcDbCurve> curve(c.make());
    double sp = -1, ep = -1, length = -1;
    ASSERT_EQ(curve->getStartParam(sp), Acad::eOk);
    ASSERT_EQ(curve->getEndParam(ep), Acad::eOk);
    EXPECT_NEAR(sp, c.startParam, 1e-12);
    EXPECT_NEAR(ep, c.endParam, 1e-12);
    AcGePoint3d p;
    ASSERT_EQ(curve->getPointAtParam(sp, p), Acad::eOk);
    EXPECT_THAT(p, IsNearPoint(c.start, 1e-12));
    ASSERT_EQ(curve->getPointAtParam(0.5 * (sp + ep), p), Acad::eOk);
    EXPECT_THAT(p, IsNearPoint(c.middle, 1e-12));
    ASSERT_EQ(curve->getPointAtParam(ep, p), Acad::eOk);
    EXPECT_THAT(p, IsNearPoint(c.end, 1e-12));
    ASSERT_EQ(curve->getEndPoint(p), Acad::eOk);
    EXPECT_THAT(p, IsNearPoint(c.end, 1e-12));
    ASSERT_EQ(curve->getDistAtParam(ep, length), Acad::eOk);
    EXPECT_NEAR(length, c.length, 1e-12);
    double param = -1;
    ASSERT_EQ(curve->getParamAtPoint(c.middle, param), Acad::eOk);
    EXPECT_NEAR(param, 0.5 * (sp + ep), 1e-12);
}

TEST_P(CurveParams, parameter_outside_the_range_fails_and_leaves_the_point) {
    const ParamCase& c = GetParam();
    std::unique_ptr<AcDbCurve> curve(c.make());
    AcGePoint3d p(7, 7, 7);
    EXPECT_EQ(curve->getPointAtParam(c.endParam + 0.1, p), Acad::eInvalidInput);
    EXPECT_EQ(p, AcGePoint3d(7, 7, 7));
    double param = 42;
    EXPECT_EQ(curve->getParamAtPoint({100, 100, 0}, param), Acad::ePointNotOnEntity);
    EXPECT_EQ(param, 42);
}

INSTANTIATE_TEST_SUITE_P(Classes, CurveParams, testing::ValuesIn(paramCases()),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(LineCurve, closest_point_stays_on_the_segment_unless_extended) {
    AcDbLine line({0, 0, 0}, {10, 0, 0});
    AcGePoint3d p;
    ASSERT_EQ(line.getClosestPointTo({4, 3, 0}, p), Acad::eOk);
    EXPECT_THAT(p, IsNearPoint(AcGePoint3d(4, 0, 0), 1e-12));
    line.getClosestPointTo({-4, 3, 0}, p);
    EXPECT_THAT(p, IsNearPoint(AcGePoint3d(0, 0, 0), 1e-12));
    line.getClosestPointTo({-4, 3, 0}, p, true);
    EXPECT_THAT(p, IsNearPoint(AcGePoint3d(-4, 0, 0), 1e-12));
}

TEST(LineCurve, positive_offset_goes_to_the_right_of_the_direction) {
    AcDbLine line({0, 0, 0}, {10, 0, 0});
    line.setLayerName(L"EDGE");
    AcDbVoidPtrArray curves;
    ASSERT_EQ(line.getOffsetCurves(2.0, curves), Acad::eOk);
    auto owned = takeEntities(curves);
    ASSERT_EQ(owned.size(), 1u);
    auto* out = AcDbLine::cast(owned[0].get());
    ASSERT_NE(out, nullptr);
    EXPECT_THAT(out->startPoint(), IsNearPoint(AcGePoint3d(0, -2, 0), 1e-12));
    EXPECT_THAT(out->endPoint(), IsNearPoint(AcGePoint3d(10, -2, 0), 1e-12));
    EXPECT_EQ(out->layer(), L"EDGE");
}

TEST(ArcCurve, closest_point_beyond_the_sweep_is_the_nearer_end) {
    AcDbArc arc({0, 0, 0}, 1.0, 0.0, 0.5 * kPi);
    AcGePoint3d p;
    ASSERT_EQ(arc.getClosestPointTo({2, -1, 0}, p), Acad::eOk);
    EXPECT_THAT(p, IsNearPoint(AcGePoint3d(1, 0, 0), 1e-12));
    arc.getClosestPointTo({1, 1, 5}, p);
    EXPECT_THAT(p, IsNearPoint(AcGePoint3d(std::sqrt(0.5), std::sqrt(0.5), 0), 1e-12));
}

TEST(CircleCurve, closest_point_is_radial) {
    AcDbCircle circle({0, 0, 0}, AcGeVector3d::kZAxis, 2.0);
    AcGePoint3d p;
    ASSERT_EQ(circle.getClosestPointTo({0, -5, 1}, p), Acad::eOk);
    EXPECT_THAT(p, IsNearPoint(AcGePoint3d(0, -2, 0), 1e-12));
}

TEST(CircleCurve, offset_changes_the_radius_and_fails_past_the_centre) {
    AcDbCircle circle({0, 0, 0}, AcGeVector3d::kZAxis, 2.0);
    AcDbVoidPtrArray curves;
    ASSERT_EQ(circle.getOffsetCurves(1.0, curves), Acad::eOk);
    auto grown = takeEntities(curves);
    EXPECT_NEAR(AcDbCircle::cast(grown[0].get())->radius(), 3.0, 1e-12);
    ASSERT_EQ(circle.getOffsetCurves(-1.5, curves), Acad::eOk);
    auto shrunk = takeEntities(curves);
    EXPECT_NEAR(AcDbCircle::cast(shrunk[0].get())->radius(), 0.5, 1e-12);
    EXPECT_EQ(circle.getOffsetCurves(-2.5, curves), Acad::eInvalidOffset);
    EXPECT_TRUE(curves.isEmpty());
}

TEST(ArcCurve, offset_keeps_the_angles) {
    AcDbArc arc({0, 0, 0}, 2.0, 0.25 * kPi, kPi);
    AcDbVoidPtrArray curves;
    ASSERT_EQ(arc.getOffsetCurves(-0.5, curves), Acad::eOk);
    auto owned = takeEntities(curves);
    auto* out = AcDbArc::cast(owned[0].get());
    EXPECT_NEAR(out->radius(), 1.5, 1e-12);
    EXPECT_NEAR(out->startAngle(), 0.25 * kPi, 1e-15);
    EXPECT_NEAR(out->endAngle(), kPi, 1e-15);
    EXPECT_EQ(arc.getOffsetCurves(-2.0, curves), Acad::eInvalidOffset);
}

TEST(CircleCurve, tilted_circle_points_lie_in_its_plane) {
    AcGeVector3d normal = AcGeVector3d(1, 1, 1).normal();
    AcDbCircle circle({1, 2, 3}, normal, 2.0);
    for (double t : {0.0, 1.0, 2.5, 4.0}) {
        AcGePoint3d p;
        ASSERT_EQ(circle.getPointAtParam(t, p), Acad::eOk);
        EXPECT_NEAR(p.distanceTo({1, 2, 3}), 2.0, 1e-12);
        EXPECT_NEAR((p - AcGePoint3d(1, 2, 3)).dotProduct(normal), 0.0, 1e-12);
        double back = -1;
        ASSERT_EQ(circle.getParamAtPoint(p, back), Acad::eOk);
        EXPECT_NEAR(back, t, 1e-12);
    }
}

// A file's normal of unit length is kept to its last bit; another is made unit length.
TEST(ArcCurve, unit_normal_is_kept_as_given) {
    AcDbArc arc;
    AcDbCircle circle;
    const AcGeVector3d nearlyUp(0, 0, 0x1.fffffffffffffp-1);
    ASSERT_EQ(arc.setNormal(nearlyUp), Acad::eOk);
    ASSERT_EQ(circle.setNormal(nearlyUp), Acad::eOk);
    EXPECT_EQ(arc.normal().z, nearlyUp.z);
    EXPECT_EQ(circle.normal().z, nearlyUp.z);
    ASSERT_EQ(arc.setNormal({0, 0, 3}), Acad::eOk);
    ASSERT_EQ(circle.setNormal({0, 0, 3}), Acad::eOk);
    EXPECT_EQ(arc.normal().z, 1.0);
    EXPECT_EQ(circle.normal().z, 1.0);
}
