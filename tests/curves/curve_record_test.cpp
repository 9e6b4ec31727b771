// The type codes of entities and the curve record filled from an id.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>

#include "batch_fixture.hpp"
#include "curves/curve_record.hpp"
#include "geometry_matchers.hpp"
#include "platform/db/arc.hpp"
#include "platform/db/block_reference.hpp"
#include "platform/db/carried.hpp"
#include "platform/db/dimension.hpp"
#include "platform/db/ellipse.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/db/polyline.hpp"
#include "platform/db/polyline_classic.hpp"
#include "platform/db/spline.hpp"

namespace {

using testing::ElementsAre;

struct TypeCase {
    const char* className;
    std::function<AcDbEntity*()> make;
    int kind;
    int type;
};

// Every row of the two numberings, and classes that are not in them (also derived ones).
const TypeCase kTypeCases[] = {
    {"AcDbLine", [] { return new AcDbLine; }, 1, 2001},
    {"AcDbCircle", [] { return new AcDbCircle; }, 2, 2002},
    {"AcDbArc", [] { return new AcDbArc; }, 3, 2003},
    {"AcDbPolyline", [] { return new AcDbPolyline; }, 4, 2004},
    {"AcDbEllipse", [] { return new AcDbEllipse; }, 16, 2016},
    {"AcDbSpline", [] { return new AcDbSpline; }, 5, 2005},
    {"AcDbMText", [] { return new AcDbMText; }, 6, 2006},
    {"AcDbRotatedDimension", [] { return new AcDbRotatedDimension; }, 7, 2007},
    {"AcDbAlignedDimension", [] { return new AcDbAlignedDimension; }, 8, 2008},
    {"AcDbDiametricDimension", [] { return new AcDbDiametricDimension; }, 9, 2009},
    {"AcDbRadialDimension", [] { return new AcDbRadialDimension; }, 10, 2010},
    {"AcDbOrdinateDimension", [] { return new AcDbOrdinateDimension; }, 11, 2011},
    {"AcDb2LineAngularDimension", [] { return new AcDb2LineAngularDimension; }, 12, 2012},
    {"AcDbBlockReference", [] { return new AcDbBlockReference; }, 13, 2013},
    {"AcDbLeader", [] { return new AcDbLeader; }, 14, 2014},
    {"AcDbText", [] { return new AcDbText; }, 15, 2015},
    {"AcDbMLeader", [] { return new AcDbMLeader; }, 17, 2017},
    {"AcDbRegion", [] { return new AcDbRegion; }, 0, 2018},
    {"AcDb3dSolid", [] { return new AcDb3dSolid; }, 0, 2019},
    {"AcDbSubDMesh", [] { return new AcDbSubDMesh; }, 0, 2020},
    {"AcDbFcf", [] { return new AcDbFcf; }, 0, 2021},
    {"AcDb2dPolyline", [] { return new AcDb2dPolyline; }, 0, 2022},
    {"AcDb3dPolyline", [] { return new AcDb3dPolyline; }, 0, 2023},
    {"AcDbPoint", [] { return new AcDbPoint; }, 18, 2024},
    {"AcDbHatch", [] { return new AcDbHatch; }, 0, 2000},
    {"AcDbMInsertBlock (derived from a block reference)", [] { return new AcDbMInsertBlock; }, 0, 2000},
    {"AcDbAttributeDefinition (derived from a text)", [] { return new AcDbAttributeDefinition; }, 0, 2000},
};

TEST(EntityCodes, every_class_has_its_small_and_2000_series_code_by_exact_name) {
    for (const TypeCase& c : kTypeCases) {
        std::unique_ptr<AcDbEntity> entity(c.make());
        EXPECT_EQ(EntityKindOf(entity.get()), c.kind) << c.className;
        EXPECT_EQ(EntityTypeOf(entity.get()), c.type) << c.className;
    }
}

TEST(EntityCodes, region_has_2018_and_no_small_code) {
    AcDbRegion region;
    EXPECT_EQ(EntityTypeOf(&region), 2018);
    EXPECT_EQ(EntityKindOf(&region), 0);
}

TEST(EntityCodes, block_reference_has_13_and_2013) {
    AcDbBlockReference reference;
    EXPECT_EQ(EntityKindOf(&reference), 13);
    EXPECT_EQ(EntityTypeOf(&reference), 2013);
}

TEST(EntityCodes, unknown_open_entity_gives_0_and_2000) {
    AcDbXline xline;
    EXPECT_EQ(EntityKindOf(&xline), 0);
    EXPECT_EQ(EntityTypeOf(&xline), 2000);
}

class CurveRecord : public BatchTest {
protected:
    AcDbDatabase& Drawing() { return *hostDrawing_; }
    AcDbObjectId AddToDrawing(AcDbEntity* entity) { return Add(Drawing(), entity); }
    // An id whose entity no longer opens: erased.
    AcDbObjectId ErasedLine() {
        AcDbObjectId id = AddToDrawing(new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)));
        AcDbEntity* entity = nullptr;
        acdbOpenAcDbEntity(entity, id, AcDb::kForWrite);
        entity->erase();
        entity->close();
        return id;
    }
    static AcDbSpline* SplineThrough(const std::vector<AcGePoint3d>& controlPoints) {
        auto* spline = new AcDbSpline;
        std::vector<double> knots = {0, 0, 0, 0};
        for (size_t i = 4; i < controlPoints.size(); ++i) knots.push_back(static_cast<double>(i - 3));
        for (int i = 0; i < 4; ++i) knots.push_back(static_cast<double>(controlPoints.size() - 3));
        spline->setNurbsData(3, false, false, false, controlPoints, knots, {});
        return spline;
    }
};

TEST_F(CurveRecord, id_that_does_not_open_gives_minus_1_and_0) {
    AcDbObjectId erased = ErasedLine();
    EXPECT_EQ(EntityKindOfId(erased), -1);
    EXPECT_EQ(EntityTypeOfId(erased), 0);
    EXPECT_EQ(EntityKindOfId(AcDbObjectId()), -1);
    EXPECT_EQ(EntityTypeOfId(AcDbObjectId()), 0);
}

TEST_F(CurveRecord, codes_by_id_are_those_of_the_open_entity) {
    AcDbObjectId arc = AddToDrawing(new AcDbArc(AcGePoint3d(0, 0, 0), 2.0, 0.0, 1.0));
    EXPECT_EQ(EntityKindOfId(arc), 3);
    EXPECT_EQ(EntityTypeOfId(arc), 2003);
    // The forms by id close what they open: the arc opens for write afterwards.
    AcDbEntity* entity = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(entity, arc, AcDb::kForWrite), Acad::eOk);
    entity->close();
}

TEST_F(CurveRecord, record_of_id_that_does_not_open_stays_empty) {
    tCurve record(ErasedLine());
    EXPECT_EQ(record.typeCode, 0);
    EXPECT_TRUE(record.id.isNull());
}

TEST_F(CurveRecord, default_record_is_empty_at_origin) {
    tCurve record;
    EXPECT_EQ(record.typeCode, 0);
    EXPECT_TRUE(record.id.isNull());
    EXPECT_EQ(record.startPoint, AcGePoint3d(0, 0, 0));
    EXPECT_EQ(record.boxMax, AcGePoint3d(0, 0, 0));
    EXPECT_TRUE(record.linetype.empty());
    EXPECT_TRUE(record.points.isEmpty());
}

TEST_F(CurveRecord, line_record_has_ends_middle_and_own_linetype) {
    auto* line = new AcDbLine(AcGePoint3d(1, 2, 0), AcGePoint3d(5, 6, 0));
    AcDbObjectId id = AddToDrawing(line);
    AcDbEntity* entity = nullptr;
    acdbOpenAcDbEntity(entity, id, AcDb::kForWrite);
    entity->setLinetypeName(L"HIDDEN");
    entity->setLinetypeScale(2.5);
    entity->close();
    tCurve record(id);
    EXPECT_EQ(record.typeCode, 2001);
    EXPECT_EQ(record.id, id);
    EXPECT_THAT(record.startPoint, IsNearPoint(AcGePoint3d(1, 2, 0), 1e-12));
    EXPECT_THAT(record.midPoint, IsNearPoint(AcGePoint3d(3, 4, 0), 1e-12));
    EXPECT_THAT(record.endPoint, IsNearPoint(AcGePoint3d(5, 6, 0), 1e-12));
    EXPECT_EQ(record.linetype, L"HIDDEN");
    EXPECT_DOUBLE_EQ(record.linetypeScale, 2.5);
    EXPECT_TRUE(record.points.isEmpty());
}

TEST_F(CurveRecord, line_record_keeps_bylayer_as_stored) {
    tCurve record(AddToDrawing(new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0))));
    EXPECT_EQ(record.linetype, L"ByLayer");
}

TEST_F(CurveRecord, circle_record_has_centre_and_radius_only) {
    AcDbObjectId id = AddToDrawing(new AcDbCircle(AcGePoint3d(3, 4, 0), AcGeVector3d::kZAxis, 7.0));
    tCurve record(id);
    EXPECT_EQ(record.typeCode, 2002);
    EXPECT_EQ(record.id, id);
    EXPECT_EQ(record.center, AcGePoint3d(3, 4, 0));
    EXPECT_DOUBLE_EQ(record.radius, 7.0);
    EXPECT_EQ(record.startPoint, AcGePoint3d(0, 0, 0));
    EXPECT_EQ(record.endPoint, AcGePoint3d(0, 0, 0));
}

TEST_F(CurveRecord, arc_record_has_circle_code_2002_while_its_type_is_2003) {
    AcDbObjectId id = AddToDrawing(new AcDbArc(AcGePoint3d(0, 0, 0), 10.0, 0.0, 3.14159265358979323846 / 2));
    tCurve record(id);
    EXPECT_EQ(record.typeCode, 2002);
    EXPECT_EQ(EntityTypeOfId(id), 2003);
    EXPECT_DOUBLE_EQ(record.radius, 10.0);
    EXPECT_THAT(record.startPoint, IsNearPoint(AcGePoint3d(10, 0, 0), 1e-9));
    EXPECT_THAT(record.midPoint, IsNearPoint(AcGePoint3d(10 / std::sqrt(2.0), 10 / std::sqrt(2.0), 0), 1e-9));
    EXPECT_THAT(record.endPoint, IsNearPoint(AcGePoint3d(0, 10, 0), 1e-9));
}

TEST_F(CurveRecord, arc_middle_is_at_the_half_of_a_range_that_does_not_start_at_zero) {
    AcDbObjectId id = AddToDrawing(new AcDbArc(AcGePoint3d(1, 1, 0), 2.0, 0.5, 2.0));
    tCurve record(id);
    EXPECT_THAT(record.startPoint, IsNearPoint(AcGePoint3d(1 + 2 * std::cos(0.5), 1 + 2 * std::sin(0.5), 0), 1e-9));
    EXPECT_THAT(record.midPoint, IsNearPoint(AcGePoint3d(1 + 2 * std::cos(1.25), 1 + 2 * std::sin(1.25), 0), 1e-9));
    EXPECT_THAT(record.endPoint, IsNearPoint(AcGePoint3d(1 + 2 * std::cos(2.0), 1 + 2 * std::sin(2.0), 0), 1e-9));
    // The record closed the arc again.
    AcDbEntity* entity = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(entity, id, AcDb::kForWrite), Acad::eOk);
    entity->close();
}

TEST_F(CurveRecord, polyline_record_has_code_2002_and_all_vertices) {
    auto* polyline = new AcDbPolyline;
    polyline->addVertexAt(0, AcGePoint2d(0, 0));
    polyline->addVertexAt(1, AcGePoint2d(4, 0));
    polyline->addVertexAt(2, AcGePoint2d(4, 3));
    polyline->setElevation(2.0);
    tCurve record(AddToDrawing(polyline));
    EXPECT_EQ(record.typeCode, 2002);
    EXPECT_THAT(record.points.items(), ElementsAre(AcGePoint3d(0, 0, 2), AcGePoint3d(4, 0, 2), AcGePoint3d(4, 3, 2)));
    EXPECT_THAT(record.startPoint, IsNearPoint(AcGePoint3d(0, 0, 2), 1e-12));
    EXPECT_THAT(record.midPoint, IsNearPoint(AcGePoint3d(4, 0, 2), 1e-12));
    EXPECT_THAT(record.endPoint, IsNearPoint(AcGePoint3d(4, 3, 2), 1e-12));
}

TEST_F(CurveRecord, ellipse_record_has_code_0_and_null_id) {
    tCurve record(AddToDrawing(new AcDbEllipse(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis,
                                               AcGeVector3d(5, 0, 0), 0.5)));
    EXPECT_EQ(record.typeCode, 0);
    EXPECT_TRUE(record.id.isNull());
    EXPECT_TRUE(record.linetype.empty());
}

TEST_F(CurveRecord, record_of_other_class_is_empty) {
    tCurve record(AddToDrawing(new AcDbPoint(AcGePoint3d(1, 1, 0))));
    EXPECT_EQ(record.typeCode, 0);
    EXPECT_TRUE(record.id.isNull());
}

TEST_F(CurveRecord, spline_box_keeps_z_of_first_stretch_point) {
    AcDbObjectId id = AddToDrawing(SplineThrough(
        {AcGePoint3d(2, 1, 5), AcGePoint3d(-3, 4, 9), AcGePoint3d(6, -2, 9), AcGePoint3d(1, 8, 9)}));
    tCurve record(id);
    EXPECT_EQ(record.typeCode, 2005);
    EXPECT_EQ(record.points.length(), 4);
    EXPECT_EQ(record.boxMin, AcGePoint3d(-3, -2, 5));
    EXPECT_EQ(record.boxMax, AcGePoint3d(6, 8, 5));
    EXPECT_THAT(record.startPoint, IsNearPoint(AcGePoint3d(2, 1, 5), 1e-9));
    EXPECT_THAT(record.endPoint, IsNearPoint(AcGePoint3d(1, 8, 9), 1e-9));
}

TEST_F(CurveRecord, spline_box_with_first_point_at_the_maximum) {
    tCurve record(AddToDrawing(SplineThrough(
        {AcGePoint3d(9, 9, 0), AcGePoint3d(1, 2, 0), AcGePoint3d(3, 1, 0), AcGePoint3d(2, 3, 0)})));
    EXPECT_EQ(record.boxMin, AcGePoint3d(1, 1, 0));
    EXPECT_EQ(record.boxMax, AcGePoint3d(9, 9, 0));
}

TEST_F(CurveRecord, copies_are_deep) {
    auto* polyline = new AcDbPolyline;
    polyline->addVertexAt(0, AcGePoint2d(0, 0));
    polyline->addVertexAt(1, AcGePoint2d(1, 0));
    tCurve record(AddToDrawing(polyline));
    tCurve copy = record;
    copy.points.append(AcGePoint3d(5, 5, 5));
    EXPECT_EQ(record.points.length(), 2);
    EXPECT_EQ(copy.points.length(), 3);
}

}  // namespace
