#include <gtest/gtest.h>

#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/line.hpp"

namespace {

// A fresh default drawing with one line in model space; the line is closed.
struct DrawingWithLine {
    AcDbDatabase db;
    AcDbObjectId lineId;
    DrawingWithLine() {
        AcDbBlockTable* blocks = nullptr;
        EXPECT_EQ(db.getSymbolTable(blocks, AcDb::kForRead), Acad::eOk);
        AcDbBlockTableRecord* model = nullptr;
        EXPECT_EQ(blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForWrite), Acad::eOk);
        blocks->close();
        auto* line = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0));
        EXPECT_EQ(model->appendAcDbEntity(lineId, line), Acad::eOk);
        line->close();
        model->close();
    }
};

TEST(OpenProtocol, several_readers_may_hold_an_object) {
    DrawingWithLine d;
    AcDbEntity* a = nullptr;
    AcDbEntity* b = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(a, d.lineId, AcDb::kForRead), Acad::eOk);
    ASSERT_EQ(acdbOpenAcDbEntity(b, d.lineId, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(a, b);
    EXPECT_EQ(a->numReaders(), 2);
    a->close();
    b->close();
}

TEST(OpenProtocol, open_for_write_fails_while_a_reader_holds_the_object) {
    DrawingWithLine d;
    AcDbEntity* reader = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(reader, d.lineId, AcDb::kForRead), Acad::eOk);
    AcDbEntity* writer = nullptr;
    EXPECT_EQ(acdbOpenAcDbEntity(writer, d.lineId, AcDb::kForWrite), Acad::eWasOpenForRead);
    EXPECT_EQ(writer, nullptr);
    reader->close();
    EXPECT_EQ(acdbOpenAcDbEntity(writer, d.lineId, AcDb::kForWrite), Acad::eOk);
    writer->close();
}

TEST(OpenProtocol, a_writer_excludes_readers_and_other_writers) {
    DrawingWithLine d;
    AcDbEntity* writer = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(writer, d.lineId, AcDb::kForWrite), Acad::eOk);
    AcDbEntity* other = nullptr;
    EXPECT_EQ(acdbOpenAcDbEntity(other, d.lineId, AcDb::kForRead), Acad::eWasOpenForWrite);
    EXPECT_EQ(acdbOpenAcDbEntity(other, d.lineId, AcDb::kForWrite), Acad::eWasOpenForWrite);
    writer->close();
}

TEST(OpenProtocol, an_erased_entity_opens_only_when_asked_for) {
    DrawingWithLine d;
    AcDbEntity* line = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(line, d.lineId, AcDb::kForWrite), Acad::eOk);
    ASSERT_EQ(line->erase(), Acad::eOk);
    line->close();
    EXPECT_TRUE(d.lineId.isErased());
    EXPECT_EQ(acdbOpenAcDbEntity(line, d.lineId, AcDb::kForRead), Acad::eWasErased);
    ASSERT_EQ(acdbOpenAcDbEntity(line, d.lineId, AcDb::kForWrite, true), Acad::eOk);
    EXPECT_EQ(line->erase(false), Acad::eOk);
    line->close();
    EXPECT_EQ(acdbOpenAcDbEntity(line, d.lineId, AcDb::kForRead), Acad::eOk);
    line->close();
}

TEST(OpenProtocol, erase_needs_the_object_open_for_write) {
    DrawingWithLine d;
    AcDbEntity* line = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(line, d.lineId, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(line->erase(), Acad::eNotOpenForWrite);
    line->close();
}

TEST(OpenProtocol, a_null_id_does_not_open) {
    AcDbEntity* entity = nullptr;
    EXPECT_EQ(acdbOpenAcDbEntity(entity, AcDbObjectId::kNull, AcDb::kForRead),
              Acad::eNullObjectId);
}

TEST(OpenProtocol, a_table_does_not_open_as_an_entity) {
    AcDbDatabase db;
    AcDbEntity* entity = nullptr;
    EXPECT_EQ(acdbOpenAcDbEntity(entity, db.layerTableId(), AcDb::kForRead), Acad::eNotAnEntity);
    // The failed open left no reader behind.
    AcDbLayerTable* layers = nullptr;
    EXPECT_EQ(db.getSymbolTable(layers, AcDb::kForWrite), Acad::eOk);
    layers->close();
}

TEST(OpenProtocol, objects_get_rising_handles_and_ids_know_their_database) {
    DrawingWithLine d;
    EXPECT_EQ(d.lineId.database(), &d.db);
    EXPECT_FALSE(d.lineId.handle().isNull());
    EXPECT_GT(d.db.handseed().value(), d.lineId.handle().value());
    AcDbObjectId again;
    ASSERT_EQ(d.db.getAcDbObjectId(again, false, d.lineId.handle()), Acad::eOk);
    EXPECT_EQ(again, d.lineId);
}

TEST(RuntimeClasses, names_are_the_exact_host_class_names) {
    AcDbLine line;
    EXPECT_STREQ(line.isA()->name(), L"AcDbLine");
    EXPECT_TRUE(line.isKindOf(AcDbCurve::desc()));
    EXPECT_TRUE(line.isKindOf(AcDbEntity::desc()));
    EXPECT_FALSE(line.isKindOf(AcDbBlockTableRecord::desc()));
}

TEST(RuntimeClasses, clone_copies_data_but_not_database_residence) {
    DrawingWithLine d;
    AcDbEntity* line = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(line, d.lineId, AcDb::kForRead), Acad::eOk);
    std::unique_ptr<AcDbLine> copy(static_cast<AcDbLine*>(line->clone()));
    line->close();
    EXPECT_TRUE(copy->isNewObject());
    EXPECT_TRUE(copy->objectId().isNull());
    EXPECT_EQ(copy->endPoint(), AcGePoint3d(10, 0, 0));
}

}  // namespace
