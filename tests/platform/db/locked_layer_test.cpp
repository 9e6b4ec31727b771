// An entity on a locked layer does not open for write, as in the host; reading still works.
#include <gtest/gtest.h>

#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/line.hpp"
#include "platform/db/symbol_tables.hpp"

namespace {

struct DrawingWithLockedLayer {
    AcDbDatabase db;
    AcDbObjectId lineId;
    AcDbObjectId layerId;
    DrawingWithLockedLayer() {
        AcDbLayerTable* layers = nullptr;
        db.getSymbolTable(layers, AcDb::kForWrite);
        auto* layer = new AcDbLayerTableRecord;
        layer->setName(L"LOCKED");
        layer->setIsLocked(true);
        layers->add(layerId, layer);
        layer->close();
        layers->close();
        AcDbBlockTable* blocks = nullptr;
        db.getSymbolTable(blocks, AcDb::kForRead);
        AcDbBlockTableRecord* model = nullptr;
        blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForWrite);
        blocks->close();
        auto* line = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(10, 0, 0));
        line->setLayerName(L"locked");  // names compare without regard to case
        model->appendAcDbEntity(lineId, line);
        line->close();
        model->close();
    }
    void SetLocked(bool locked) {
        AcDbObject* object = nullptr;
        acdbOpenAcDbObject(object, layerId, AcDb::kForWrite);
        AcDbLayerTableRecord::cast(object)->setIsLocked(locked);
        object->close();
    }
};

TEST(LockedLayer, entity_on_locked_layer_does_not_open_for_write) {
    DrawingWithLockedLayer d;
    AcDbEntity* entity = nullptr;
    EXPECT_EQ(acdbOpenAcDbEntity(entity, d.lineId, AcDb::kForWrite), Acad::eOnLockedLayer);
    EXPECT_EQ(entity, nullptr);
}

TEST(LockedLayer, entity_on_locked_layer_opens_for_read) {
    DrawingWithLockedLayer d;
    AcDbEntity* entity = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(entity, d.lineId, AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(entity->upgradeOpen(), Acad::eOnLockedLayer);
    EXPECT_FALSE(entity->isWriteEnabled());
    entity->close();
}

TEST(LockedLayer, unlocked_layer_lets_the_entity_open_for_write) {
    DrawingWithLockedLayer d;
    d.SetLocked(false);
    AcDbEntity* entity = nullptr;
    ASSERT_EQ(acdbOpenAcDbEntity(entity, d.lineId, AcDb::kForWrite), Acad::eOk);
    entity->close();
}

TEST(LockedLayer, locked_layer_record_itself_opens_for_write) {
    DrawingWithLockedLayer d;
    AcDbObject* object = nullptr;
    ASSERT_EQ(acdbOpenAcDbObject(object, d.layerId, AcDb::kForWrite), Acad::eOk);
    object->close();
}

TEST(LockedLayer, new_entity_on_locked_layer_is_appended) {
    DrawingWithLockedLayer d;
    AcDbBlockTable* blocks = nullptr;
    d.db.getSymbolTable(blocks, AcDb::kForRead);
    AcDbBlockTableRecord* model = nullptr;
    blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForWrite);
    blocks->close();
    auto* line = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0));
    line->setLayerName(L"LOCKED");
    AcDbObjectId id;
    EXPECT_EQ(model->appendAcDbEntity(id, line), Acad::eOk);
    line->close();
    model->close();
}

}  // namespace
