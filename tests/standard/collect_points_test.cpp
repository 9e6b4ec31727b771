// The points left at hole centres, gathered as exported.
#include <gtest/gtest.h>

#include "batch_fixture.hpp"
#include "platform/db/point_entity.hpp"
#include "standard/hole_substitution.hpp"

namespace {

class CollectPointsTest : public BatchTest {};

TEST_F(CollectPointsTest, points_in_drawing_order_with_layers) {
    AcDbDatabase& db = *hostDrawing_;
    Add(db, new AcDbPoint(AcGePoint3d(1, 2, 3)), L"H1");
    Add(db, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)), L"H1");
    Add(db, new AcDbPoint(AcGePoint3d(4, 5, 0)), L"H2");
    AcArray<tPt> points;
    EXPECT_EQ(CollectPoints(&db, points), 0);
    ASSERT_EQ(points.length(), 2);
    EXPECT_EQ(points[0].layer, L"H1");
    EXPECT_EQ(points[0].point, AcGePoint3d(1, 2, 3));
    EXPECT_EQ(points[1].layer, L"H2");
    EXPECT_EQ(points[1].point, AcGePoint3d(4, 5, 0));
}

TEST_F(CollectPointsTest, no_points_leave_the_array_empty) {
    Add(*hostDrawing_, new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0)));
    AcArray<tPt> points;
    EXPECT_EQ(CollectPoints(hostDrawing_.get(), points), 0);
    EXPECT_TRUE(points.isEmpty());
}

TEST_F(CollectPointsTest, entity_open_for_write_elsewhere_gives_16) {
    AcDbObjectId id = Add(*hostDrawing_, new AcDbPoint(AcGePoint3d(1, 1, 0)));
    AcDbEntity* open = nullptr;
    acdbOpenAcDbEntity(open, id, AcDb::kForWrite);
    AcArray<tPt> points;
    EXPECT_EQ(CollectPoints(hostDrawing_.get(), points), 16);
    open->close();
}

TEST_F(CollectPointsTest, empty_database_gives_the_iterator_status) {
    AcDbDatabase empty(false, true);
    AcArray<tPt> points;
    EXPECT_NE(CollectPoints(&empty, points), 0);
}

}  // namespace
