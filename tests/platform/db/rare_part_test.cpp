// Values that nearly every object has at their defaults cost no memory until one differs, and
// splines keep theirs that way: defaults read back, values set are kept to the sign of zero,
// copies hold their own.
#include "platform/db/rare_part.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "platform/db/spline.hpp"

namespace {

struct Part {
    double scale = 1.0;
    AcGeVector3d axis = AcGeVector3d::kZAxis;
    std::vector<int> list;
};

TEST(RarePart, defaults_read_back_without_being_held) {
    AcDbRarePart<Part> part;
    EXPECT_FALSE(part.held());
    EXPECT_EQ(part.get().scale, 1.0);
    EXPECT_EQ(part.get().axis, AcGeVector3d::kZAxis);
    part.set(&Part::scale, 1.0);
    part.set(&Part::axis, AcGeVector3d::kZAxis);
    EXPECT_FALSE(part.held());
}

TEST(RarePart, a_value_other_than_its_default_is_held_down_to_the_sign_of_zero) {
    AcDbRarePart<Part> part;
    part.set(&Part::axis, AcGeVector3d(-0.0, 0, 1));
    EXPECT_TRUE(part.held());
    EXPECT_TRUE(std::signbit(part.get().axis.x));
    EXPECT_EQ(part.get().scale, 1.0);
    // Once held, a default set is kept as set.
    part.set(&Part::axis, AcGeVector3d::kZAxis);
    EXPECT_FALSE(std::signbit(part.get().axis.x));
}

TEST(RarePart, an_edit_holds_the_part) {
    AcDbRarePart<Part> part;
    part.edit().list.push_back(3);
    EXPECT_TRUE(part.held());
    EXPECT_EQ(part.get().list, std::vector<int>{3});
}

TEST(RarePart, copies_hold_their_own_values) {
    AcDbRarePart<Part> a;
    a.set(&Part::scale, 2.0);
    AcDbRarePart<Part> b = a;
    b.set(&Part::scale, 3.0);
    EXPECT_EQ(a.get().scale, 2.0);
    EXPECT_EQ(b.get().scale, 3.0);
    AcDbRarePart<Part> c;
    c = b;
    EXPECT_EQ(c.get().scale, 3.0);
    c = AcDbRarePart<Part>();
    EXPECT_FALSE(c.held());
    EXPECT_EQ(c.get().scale, 1.0);
    const AcDbRarePart<Part> none;
    AcDbRarePart<Part> d = none;
    EXPECT_FALSE(d.held());
}

TEST(SplineValues, a_spline_of_control_points_reads_the_defaults) {
    AcDbSpline spline;
    spline.reserveFitPoints(0);
    EXPECT_FALSE(spline.hasFitData());
    EXPECT_EQ(spline.knotTolerance(), 1e-10);
    EXPECT_EQ(spline.controlPointTolerance(), 1e-10);
    EXPECT_EQ(spline.fitTolerance(), 0.0);
    EXPECT_EQ(spline.startFitTangent(), AcGeVector3d());
    EXPECT_EQ(spline.normal(), AcGeVector3d::kZAxis);
}

TEST(SplineValues, fit_data_tolerances_and_normal_are_kept_and_copied) {
    AcDbSpline spline;
    spline.reserveFitPoints(2);
    spline.fitPoints().push_back({1, 2, 0});
    spline.setFitTolerance(0.5);
    spline.setKnotTolerance(-0.0);
    spline.setControlPointTolerance(1e-6);
    spline.setStartFitTangent({1, 0, 0});
    spline.setEndFitTangent({0, 1, 0});
    spline.setNormal({0, 0, -1});
    const AcDbSpline copy = spline;
    spline.fitPoints().clear();
    spline.setFitTolerance(0.25);
    ASSERT_EQ(copy.numFitPoints(), 1);
    AcGePoint3d p;
    ASSERT_EQ(copy.getFitPointAt(0, p), Acad::eOk);
    EXPECT_EQ(p, AcGePoint3d(1, 2, 0));
    EXPECT_EQ(copy.fitTolerance(), 0.5);
    EXPECT_TRUE(std::signbit(copy.knotTolerance()));
    EXPECT_EQ(copy.controlPointTolerance(), 1e-6);
    EXPECT_EQ(copy.startFitTangent(), AcGeVector3d(1, 0, 0));
    EXPECT_EQ(copy.endFitTangent(), AcGeVector3d(0, 1, 0));
    EXPECT_EQ(copy.normal(), AcGeVector3d(0, 0, -1));
    EXPECT_FALSE(spline.hasFitData());
    EXPECT_EQ(spline.fitTolerance(), 0.25);
}

TEST(SplineValues, a_turned_spline_turns_its_normal_fit_points_and_tangents) {
    AcDbSpline spline;
    ASSERT_EQ(spline.setNurbsData(1, false, false, false, {{0, 0, 0}, {1, 0, 0}}, {0, 0, 1, 1}, {}),
              Acad::eOk);
    spline.fitPoints().push_back({1, 0, 0});
    spline.setStartFitTangent({1, 0, 0});
    const AcGeMatrix3d turn = AcGeMatrix3d::rotation(std::numbers::pi / 2, AcGeVector3d::kXAxis);
    ASSERT_EQ(spline.transformBy(turn), Acad::eOk);
    EXPECT_NEAR(spline.normal().y, -1.0, 1e-12);
    EXPECT_NEAR(spline.normal().z, 0.0, 1e-12);
    AcGePoint3d p;
    ASSERT_EQ(spline.getFitPointAt(0, p), Acad::eOk);
    EXPECT_NEAR(p.x, 1.0, 1e-12);
    EXPECT_NEAR(spline.startFitTangent().x, 1.0, 1e-12);
    AcDbSpline plain;
    ASSERT_EQ(plain.transformBy(AcGeMatrix3d::scaling(2.0)), Acad::eOk);
    EXPECT_EQ(plain.normal(), AcGeVector3d::kZAxis);
    EXPECT_EQ(plain.startFitTangent(), AcGeVector3d());
}

TEST(SplineValues, new_nurbs_data_drops_the_fit_points) {
    AcDbSpline spline;
    spline.fitPoints().push_back({1, 2, 0});
    ASSERT_EQ(spline.setNurbsData(1, false, false, false, {{0, 0, 0}, {1, 0, 0}}, {0, 0, 1, 1}, {}),
              Acad::eOk);
    EXPECT_FALSE(spline.hasFitData());
}

}  // namespace
