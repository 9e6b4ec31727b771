// Symbol records as the host keeps them: the view table takes unnamed views, a renamed layer
// takes its entities along and refuses a name already used.
#include <gtest/gtest.h>

#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/line.hpp"
#include "platform/db/symbol_tables.hpp"
#include "drawing_queries.hpp"

namespace {

AcDbObjectId AddLine(AcDbDatabase& db, const std::wstring& layer) {
    AcDbBlockTable* blocks = nullptr;
    db.getSymbolTable(blocks, AcDb::kForRead);
    AcDbBlockTableRecord* model = nullptr;
    blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForWrite);
    blocks->close();
    auto* line = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0));
    line->setLayerName(layer);
    AcDbObjectId id;
    model->appendAcDbEntity(id, line);
    line->close();
    model->close();
    return id;
}

std::wstring LayerOf(AcDbObjectId id) {
    AcDbEntity* entity = nullptr;
    acdbOpenAcDbEntity(entity, id, AcDb::kForRead);
    std::wstring layer = entity->layer();
    entity->close();
    return layer;
}

Acad::ErrorStatus Rename(AcDbObjectId record, const std::wstring& name) {
    AcDbObject* object = nullptr;
    acdbOpenAcDbObject(object, record, AcDb::kForWrite);
    Acad::ErrorStatus es = AcDbSymbolTableRecord::cast(object)->setName(name);
    object->close();
    return es;
}

TEST(ViewTable, takes_unnamed_views_side_by_side) {
    AcDbDatabase db;
    AcDbViewTable* views = nullptr;
    db.getSymbolTable(views, AcDb::kForWrite);
    auto* first = new AcDbViewTableRecord;
    auto* second = new AcDbViewTableRecord;
    EXPECT_EQ(views->add(first), Acad::eOk);
    EXPECT_EQ(views->add(second), Acad::eOk);
    first->close();
    second->close();
    EXPECT_EQ(views->recordIds().length(), 2);
    views->close();
}

TEST(ViewTable, other_tables_refuse_unnamed_records) {
    AcDbDatabase db;
    AcDbLayerTable* layers = nullptr;
    db.getSymbolTable(layers, AcDb::kForWrite);
    auto* layer = new AcDbLayerTableRecord;
    EXPECT_EQ(layers->add(layer), Acad::eInvalidSymbolTableName);
    delete layer;
    layers->close();
}

TEST(LayerRename, entities_follow_the_renamed_layer) {
    AcDbDatabase db;
    AcDbObjectId layer = AddLayer(db, L"OLD");
    AcDbObjectId line = AddLine(db, L"old");
    AcDbObjectId other = AddLine(db, L"0");
    EXPECT_EQ(Rename(layer, L"NEW"), Acad::eOk);
    EXPECT_EQ(LayerOf(line), L"NEW");
    EXPECT_EQ(LayerOf(other), L"0");
    AcDbLayerTable* layers = nullptr;
    db.getSymbolTable(layers, AcDb::kForRead);
    EXPECT_TRUE(layers->has(L"NEW"));
    EXPECT_FALSE(layers->has(L"OLD"));
    layers->close();
}

TEST(LayerRename, name_of_another_layer_is_refused) {
    AcDbDatabase db;
    AcDbObjectId layer = AddLayer(db, L"OLD");
    AddLayer(db, L"TAKEN");
    AcDbObjectId line = AddLine(db, L"OLD");
    EXPECT_EQ(Rename(layer, L"taken"), Acad::eDuplicateRecordName);
    EXPECT_EQ(LayerOf(line), L"OLD");
}

TEST(LayerRename, change_of_case_only_is_taken) {
    AcDbDatabase db;
    AcDbObjectId layer = AddLayer(db, L"Old");
    EXPECT_EQ(Rename(layer, L"OLD"), Acad::eOk);
    AcDbObject* object = nullptr;
    acdbOpenAcDbObject(object, layer, AcDb::kForRead);
    EXPECT_EQ(AcDbSymbolTableRecord::cast(object)->name(), L"OLD");
    object->close();
}

}  // namespace
