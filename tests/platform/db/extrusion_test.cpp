// The thickness and normal of lines, circles, arcs, points, light-weight polylines and texts: the
// defaults read back without being held, any other value (a -0.0 too) is kept as given, and
// copies carry their own.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "platform/db/arc.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/extrusion.hpp"
#include "platform/db/line.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/db/polyline.hpp"
#include "platform/db/text.hpp"

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

TEST(Extrusion, polylines_and_texts_keep_thickness_and_normal_through_a_copy) {
    AcDbPolyline polyline;
    polyline.addVertexAt(0, AcGePoint2d(0, 0));
    polyline.addVertexAt(1, AcGePoint2d(1, 0));
    polyline.setThickness(-0.0);
    polyline.setNormal(AcGeVector3d(0, 0, -2));  // kept as the unit normal
    AcDbText text(AcGePoint3d(1, 2, 0), L"A", AcDbObjectId(), 2.5, 0.0);
    text.setThickness(1.25);
    text.setNormal(AcGeVector3d(0, -0.0, 1));
    EXPECT_TRUE(std::signbit(text.normal().y));
    AcDbAttribute attribute;
    attribute.setThickness(3.0);
    const AcGeMatrix3d same;
    AcDbEntity* copies[3] = {};
    ASSERT_EQ(polyline.getTransformedCopy(same, copies[0]), Acad::eOk);
    ASSERT_EQ(text.getTransformedCopy(same, copies[1]), Acad::eOk);
    ASSERT_EQ(attribute.getTransformedCopy(same, copies[2]), Acad::eOk);
    EXPECT_TRUE(SameBits(AcDbPolyline::cast(copies[0])->thickness(), -0.0));
    EXPECT_EQ(AcDbPolyline::cast(copies[0])->normal(), AcGeVector3d(0, 0, -1));
    EXPECT_EQ(AcDbText::cast(copies[1])->thickness(), 1.25);
    EXPECT_EQ(AcDbText::cast(copies[1])->normal(), AcGeVector3d::kZAxis);
    EXPECT_EQ(AcDbAttribute::cast(copies[2])->thickness(), 3.0);
    for (AcDbEntity* copy : copies) delete copy;
}

TEST(Extrusion, a_polyline_scaled_scales_its_thickness_and_a_text_turned_over_turns_its_normal) {
    AcDbPolyline polyline;
    polyline.addVertexAt(0, AcGePoint2d(0, 0));
    polyline.addVertexAt(1, AcGePoint2d(1, 0));
    polyline.setThickness(2.0);
    ASSERT_EQ(polyline.transformBy(AcGeMatrix3d::scaling(3.0)), Acad::eOk);
    EXPECT_DOUBLE_EQ(polyline.thickness(), 6.0);
    EXPECT_EQ(polyline.normal(), AcGeVector3d::kZAxis);
    AcDbText text(AcGePoint3d(1, 2, 0), L"A", AcDbObjectId(), 2.5, 0.0);
    ASSERT_EQ(text.transformBy(AcGeMatrix3d::rotation(std::numbers::pi, AcGeVector3d::kXAxis)), Acad::eOk);
    EXPECT_NEAR(text.normal().z, -1.0, 1e-12);
    EXPECT_EQ(text.thickness(), 0.0);
}

}  // namespace
