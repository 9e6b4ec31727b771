#include <gtest/gtest.h>

#include <numbers>

#include "platform/ge/ge.hpp"

namespace {

constexpr double kPi = std::numbers::pi;

TEST(Matrix3d, translation_moves_points_but_not_vectors) {
    AcGeMatrix3d m = AcGeMatrix3d::translation(AcGeVector3d(1, 2, 3));
    EXPECT_EQ(m * AcGePoint3d(1, 1, 1), AcGePoint3d(2, 3, 4));
    EXPECT_EQ(m * AcGeVector3d(1, 1, 1), AcGeVector3d(1, 1, 1));
}

TEST(Matrix3d, rotation_about_a_centre_keeps_the_centre) {
    AcGeMatrix3d m = AcGeMatrix3d::rotation(kPi / 2, AcGeVector3d::kZAxis, AcGePoint3d(1, 1, 0));
    EXPECT_TRUE((m * AcGePoint3d(1, 1, 0)).isEqualTo(AcGePoint3d(1, 1, 0)));
    EXPECT_TRUE((m * AcGePoint3d(2, 1, 0)).isEqualTo(AcGePoint3d(1, 2, 0), AcGeTol()));
}

TEST(Matrix3d, mirroring_in_the_xy_plane_negates_z) {
    AcGeMatrix3d m;
    m.setToMirroring(AcGePlane(AcGePoint3d::kOrigin, AcGeVector3d::kXAxis, AcGeVector3d::kYAxis));
    EXPECT_EQ(m * AcGePoint3d(1, 2, 3), AcGePoint3d(1, 2, -3));
    EXPECT_LT(m.det(), 0.0);
    EXPECT_TRUE((m * -AcGeVector3d::kZAxis).isEqualTo(AcGeVector3d::kZAxis));
}

TEST(Matrix3d, inverse_undoes_a_composition) {
    AcGeMatrix3d m = AcGeMatrix3d::translation(AcGeVector3d(5, -2, 1)) *
                     AcGeMatrix3d::rotation(0.7, AcGeVector3d(1, 2, 3)) *
                     AcGeMatrix3d::scaling(2.5, AcGePoint3d(1, 0, 0));
    AcGeMatrix3d identity = m * m.inverse();
    AcGeTol tol;
    tol.setEqualVector(1e-12);
    EXPECT_TRUE(identity.isEqualTo(AcGeMatrix3d::kIdentity, tol));
}

TEST(Matrix3d, uniform_scale_is_recognised_and_shear_is_not) {
    EXPECT_TRUE(AcGeMatrix3d::scaling(3.0).isUniScaledOrtho());
    EXPECT_NEAR(AcGeMatrix3d::scaling(3.0).scale(), 3.0, 1e-12);
    AcGeMatrix3d shear;
    shear(0, 1) = 0.5;
    EXPECT_FALSE(shear.isUniScaledOrtho());
}

TEST(Matrix3d, plane_to_world_of_minus_z_uses_the_arbitrary_axis) {
    // For a normal near the z axis the x direction is world y cross the normal.
    AcGeMatrix3d m = AcGeMatrix3d::planeToWorld(-AcGeVector3d::kZAxis);
    EXPECT_TRUE((m * AcGeVector3d::kXAxis).isEqualTo(AcGeVector3d(-1, 0, 0)));
    EXPECT_TRUE((m * AcGeVector3d::kYAxis).isEqualTo(AcGeVector3d(0, 1, 0)));
    EXPECT_TRUE((AcGeMatrix3d::worldToPlane(-AcGeVector3d::kZAxis) * m)
                    .isEqualTo(AcGeMatrix3d::kIdentity));
}

TEST(Vectors, equality_uses_the_global_tolerance) {
    AcGeVector3d a(0, 0, 1);
    EXPECT_TRUE(a.isEqualTo(AcGeVector3d(0, 0, 1 + 1e-11)));
    EXPECT_FALSE(a.isEqualTo(AcGeVector3d(0, 0, 1 + 1e-9)));
    AcGeTol loose;
    loose.setEqualVector(1e-6);
    EXPECT_TRUE(a.isEqualTo(AcGeVector3d(0, 0, 1 + 1e-9), loose));
}

TEST(Vectors, signed_angle_about_a_reference_runs_counter_clockwise) {
    AcGeVector3d x = AcGeVector3d::kXAxis;
    EXPECT_NEAR(x.angleTo(AcGeVector3d::kYAxis, AcGeVector3d::kZAxis), kPi / 2, 1e-12);
    EXPECT_NEAR(x.angleTo(-AcGeVector3d::kYAxis, AcGeVector3d::kZAxis), 3 * kPi / 2, 1e-12);
}

TEST(Planes, param_of_and_eval_point_are_inverse) {
    AcGePlane plane(AcGePoint3d(1, 2, 3), AcGeVector3d(1, 1, 0), AcGeVector3d(0, 0, 2));
    AcGePoint3d p = plane.evalPoint(AcGePoint2d(0.5, -1.5));
    AcGePoint2d uv = plane.paramOf(p);
    EXPECT_NEAR(uv.x, 0.5, 1e-12);
    EXPECT_NEAR(uv.y, -1.5, 1e-12);
    EXPECT_TRUE(plane.isOn(p));
}

TEST(Arrays, find_and_remove_by_value) {
    AcArray<int> a{3, 5, 7, 5};
    EXPECT_EQ(a.find(5), 1);
    int at = -1;
    EXPECT_TRUE(a.find(5, at, 2));
    EXPECT_EQ(at, 3);
    EXPECT_TRUE(a.remove(7));
    EXPECT_EQ(a.length(), 3);
    EXPECT_FALSE(a.contains(7));
}

}  // namespace
