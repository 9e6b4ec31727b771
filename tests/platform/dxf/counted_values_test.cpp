// A spline's knots and points and a polyline's vertices are held in the room their counts give,
// without the spare room of growing one value at a time; a count beyond what the record holds
// reserves no more than the record can hold.
#include <gtest/gtest.h>

#include <string>

#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/polyline.hpp"
#include "platform/db/spline.hpp"
#include "platform/dxf/dxf.hpp"

namespace {

AcDbEntity* FirstEntity(AcDbDatabase& db) {
    for (const AcDbStub& stub : db.stubs())
        if (auto* e = stub.object ? AcDbEntity::cast(stub.object.get()) : nullptr) return e;
    return nullptr;
}

std::string Drawing(const std::string& entity) {
    return "0\nSECTION\n2\nENTITIES\n" + entity + "0\nENDSEC\n0\nEOF\n";
}

TEST(CountedValues, spline_holds_its_knots_and_points_in_the_room_its_counts_give) {
    std::string spline = "0\nSPLINE\n5\n30\n100\nAcDbEntity\n8\n0\n100\nAcDbSpline\n70\n8\n71\n1\n72\n5\n73\n3\n74\n3\n";
    for (const char* k : {"0", "0", "1", "2", "2"}) spline += "40\n" + std::string(k) + "\n";
    for (int i = 0; i < 3; ++i) spline += "10\n" + std::to_string(i) + "\n20\n1\n30\n0\n";
    for (int i = 0; i < 3; ++i) spline += "11\n" + std::to_string(i) + "\n21\n2\n31\n0\n";
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, Drawing(spline), "spline.dxf"), Acad::eOk);
    const auto* s = AcDbSpline::cast(FirstEntity(db));
    ASSERT_NE(s, nullptr);
    EXPECT_EQ(s->knots().size(), 5u);
    EXPECT_EQ(s->knots().capacity(), 5u);
    EXPECT_EQ(s->controlPoints().capacity(), 3u);
    EXPECT_EQ(s->fitPoints().size(), 3u);
    EXPECT_EQ(s->fitPoints().capacity(), 3u);
}

TEST(CountedValues, polyline_holds_its_vertices_in_the_room_its_count_gives) {
    std::string polyline = "0\nLWPOLYLINE\n5\n30\n100\nAcDbEntity\n8\n0\n100\nAcDbPolyline\n90\n5\n70\n0\n";
    for (int i = 0; i < 5; ++i) polyline += "10\n" + std::to_string(i) + "\n20\n" + std::to_string(i * i) + "\n";
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, Drawing(polyline), "polyline.dxf"), Acad::eOk);
    const auto* p = AcDbPolyline::cast(FirstEntity(db));
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->numVerts(), 5u);
    EXPECT_EQ(p->vertexRoom(), 5u);
}

TEST(CountedValues, a_count_beyond_the_record_reserves_no_more_than_the_record_holds) {
    const std::string polyline =
        "0\nLWPOLYLINE\n5\n30\n100\nAcDbEntity\n8\n0\n100\nAcDbPolyline\n90\n2000000000\n70\n0\n"
        "10\n1\n20\n2\n";
    AcDbDatabase db(false, true);
    ASSERT_EQ(dxf::ReadDxfBytes(db, Drawing(polyline), "polyline.dxf"), Acad::eOk);
    const auto* p = AcDbPolyline::cast(FirstEntity(db));
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->numVerts(), 1u);
    EXPECT_LT(p->vertexRoom(), 100u);
}

}  // namespace
