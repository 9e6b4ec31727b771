// Circles and arcs keep their centre in world coordinates in the database, and in the object
// coordinates of their normal in the file, as the host and the format have them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "geometry_matchers.hpp"
#include "platform/db/arc.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/database.hpp"
#include "support.hpp"

namespace {

// A DXF of one circle and one arc, both with the normal (0,0,-1), whose object x axis is the
// world's -x: centre (-325, 170) in the file is (325, 170) in the world.
std::string MirroredCurvesDxf() {
    return "0\nSECTION\n2\nENTITIES\n"
           "0\nCIRCLE\n8\n0\n10\n-325.0\n20\n170.0\n30\n0.0\n40\n8.75\n210\n0.0\n220\n0.0\n230\n-1.0\n"
           "0\nARC\n8\n0\n10\n-200.0\n20\n280.0\n30\n2.0\n40\n10.0\n210\n0.0\n220\n0.0\n230\n-1.0\n"
           "50\n0.0\n51\n90.0\n"
           "0\nENDSEC\n0\nEOF\n";
}

std::vector<AcDbEntity*> OpenModelSpace(AcDbDatabase& db) {
    AcDbBlockTable* blocks = nullptr;
    db.getSymbolTable(blocks, AcDb::kForRead);
    AcDbBlockTableRecord* model = nullptr;
    blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForRead);
    blocks->close();
    std::vector<AcDbEntity*> entities;
    for (const AcDbObjectId& id : model->entityIds()) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) == Acad::eOk) entities.push_back(entity);
    }
    model->close();
    return entities;
}

TEST(ObjectCoordinates, centre_of_minus_z_circle_and_arc_reads_in_world_coordinates) {
    auto dir = dxftest::TempDir("ocs_read");
    dxftest::WriteFile(dir / "in.dxf", MirroredCurvesDxf());
    AcDbDatabase db(false, true);
    ASSERT_EQ(db.readDwgFile((dir / "in.dxf").wstring().c_str()), Acad::eOk) << std::string(db.lastError().begin(), db.lastError().end());
    std::vector<AcDbEntity*> entities = OpenModelSpace(db);
    ASSERT_EQ(entities.size(), 2u);
    EXPECT_THAT(AcDbCircle::cast(entities[0])->center(), IsNearPoint(AcGePoint3d(325, 170, 0), 1e-12));
    auto* arc = AcDbArc::cast(entities[1]);
    EXPECT_THAT(arc->center(), IsNearPoint(AcGePoint3d(200, 280, -2), 1e-12));
    AcGePoint3d start;
    arc->getStartPoint(start);
    EXPECT_THAT(start, IsNearPoint(AcGePoint3d(190, 280, -2), 1e-9));  // object +x is world -x
    for (AcDbEntity* e : entities) e->close();
}

TEST(ObjectCoordinates, written_centre_is_in_object_coordinates_again) {
    auto dir = dxftest::TempDir("ocs_write");
    {
        AcDbDatabase db(true, false);
        AcDbBlockTable* blocks = nullptr;
        db.getSymbolTable(blocks, AcDb::kForRead);
        AcDbBlockTableRecord* model = nullptr;
        blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForWrite);
        blocks->close();
        auto* circle = new AcDbCircle(AcGePoint3d(325, 170, 0), AcGeVector3d(0, 0, -1), 8.75);
        model->appendAcDbEntity(circle);
        circle->close();
        model->close();
        ASSERT_EQ(db.saveAs((dir / "out.dxf").wstring().c_str()), Acad::eOk);
    }
    std::string text = dxftest::ReadFile(dir / "out.dxf");
    EXPECT_NE(text.find("\n 10\n-325"), std::string::npos);
    AcDbDatabase again(false, true);
    ASSERT_EQ(again.readDwgFile((dir / "out.dxf").wstring().c_str()), Acad::eOk);
    std::vector<AcDbEntity*> entities = OpenModelSpace(again);
    ASSERT_EQ(entities.size(), 1u);
    EXPECT_THAT(AcDbCircle::cast(entities[0])->center(), IsNearPoint(AcGePoint3d(325, 170, 0), 1e-12));
    entities[0]->close();
}

}  // namespace
