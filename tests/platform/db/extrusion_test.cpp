// The thickness and normal of lines, circles, arcs and points: the defaults read back without
// being held, any other value (a -0.0 too) is kept as given, and copies carry their own.
#include <gtest/gtest.h>

#include <cmath>

#include "platform/db/arc.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/extrusion.hpp"
#include "platform/db/line.hpp"
#include "platform/db/point_entity.hpp"

namespace {

bool SameBits(double a, double b) { return std::signbit(a) == std::signbit(b) && a == b; }

TEST(Extrusion, defaults_are_no_thickness_and_the_z_axis) {
    const AcDbExtrusion e;
    EXPECT_EQ(e.thickness(), 0.0);
    EXPECT_EQ(e.normal(), AcGeVector3d::kZAxis);
    EXPECT_EQ(AcDbLine().normal(), AcGeVector3d::kZAxis);
    EXPECT_EQ(AcDbPoint().thickness(), 0.0);
}

TEST(Extrusion, values_given_are_kept_down_to_the_sign_of_zero) {
    AcDbExtrusion e;
    e.setThickness(-0.0);
    EXPECT_TRUE(std::signbit(e.thickness()));
    AcDbExtrusion n;
    n.setNormal(AcGeVector3d(-0.0, 0, 1));
    EXPECT_TRUE(std::signbit(n.normal().x));
    EXPECT_EQ(n.thickness(), 0.0);
    // Back to the default once set: the default is what reads back.
    n.setNormal(AcGeVector3d::kZAxis);
    EXPECT_FALSE(std::signbit(n.normal().x));
}

TEST(Extrusion, thickness_and_normal_are_kept_apart_from_each_other) {
    AcDbExtrusion e;
    e.setThickness(2.5);
    EXPECT_EQ(e.normal(), AcGeVector3d::kZAxis);
    e.setNormal(AcGeVector3d(0, 1, 0));
    EXPECT_EQ(e.thickness(), 2.5);
    EXPECT_EQ(e.normal(), AcGeVector3d(0, 1, 0));
}

TEST(Extrusion, copies_hold_their_own_values) {
    AcDbExtrusion a;
    a.setThickness(3.0);
    AcDbExtrusion b = a;
    b.setThickness(4.0);
    EXPECT_EQ(a.thickness(), 3.0);
    EXPECT_EQ(b.thickness(), 4.0);
    AcDbExtrusion c;
    c = b;
    EXPECT_EQ(c.thickness(), 4.0);
    c = AcDbExtrusion();
    EXPECT_EQ(c.thickness(), 0.0);
    EXPECT_EQ(b.thickness(), 4.0);
}

TEST(Extrusion, planar_entities_keep_thickness_and_normal_through_a_copy) {
    AcDbLine line({0, 0, 0}, {1, 0, 0});
    line.setThickness(-0.0);
    line.setNormal(AcGeVector3d(0, 0, -1));
    AcDbCircle circle({0, 0, 0}, AcGeVector3d(0, 0, -1), 2.0);
    circle.setThickness(1.5);
    AcDbArc arc({0, 0, 0}, AcGeVector3d(1, 0, 0), 2.0, 0.0, 1.0);
    arc.setThickness(0.5);
    AcDbPoint point({1, 2, 3});
    point.setThickness(7.0);
    point.setNormal(AcGeVector3d(0, 1, 0));
    const AcGeMatrix3d same;
    AcDbEntity* copies[4] = {};
    ASSERT_EQ(line.getTransformedCopy(same, copies[0]), Acad::eOk);
    ASSERT_EQ(circle.getTransformedCopy(same, copies[1]), Acad::eOk);
    ASSERT_EQ(arc.getTransformedCopy(same, copies[2]), Acad::eOk);
    ASSERT_EQ(point.getTransformedCopy(same, copies[3]), Acad::eOk);
    EXPECT_TRUE(SameBits(AcDbLine::cast(copies[0])->thickness(), -0.0));
    EXPECT_EQ(AcDbLine::cast(copies[0])->normal(), AcGeVector3d(0, 0, -1));
    EXPECT_EQ(AcDbCircle::cast(copies[1])->thickness(), 1.5);
    EXPECT_EQ(AcDbCircle::cast(copies[1])->normal(), AcGeVector3d(0, 0, -1));
    EXPECT_EQ(AcDbArc::cast(copies[2])->thickness(), 0.5);
    EXPECT_EQ(AcDbArc::cast(copies[2])->normal(), AcGeVector3d(1, 0, 0));
    EXPECT_EQ(AcDbPoint::cast(copies[3])->thickness(), 7.0);
    EXPECT_EQ(AcDbPoint::cast(copies[3])->normal(), AcGeVector3d(0, 1, 0));
    for (AcDbEntity* copy : copies) delete copy;
}

}  // namespace
