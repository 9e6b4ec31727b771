// The database helpers: appending to model space, adding layers, the zoom to extents, purges.
#include <gtest/gtest.h>

#include "batch_fixture.hpp"
#include "drawing_queries.hpp"
#include "geometry_matchers.hpp"
#include "platform/db/block_reference.hpp"
#include "platform/db/dimension.hpp"
#include "platform/ed/views.hpp"
#include "standard/db_helpers.hpp"

namespace {

class DbHelpers : public BatchTest {
protected:
    AcDbDatabase& Drawing() { return *hostDrawing_; }

    // Adds a record of that name to the table of its kind and answers its id.
    template <typename Table, typename Record>
    AcDbObjectId AddRecord(const std::wstring& name) {
        Table* table = nullptr;
        Drawing().getSymbolTable(table, AcDb::kForWrite);
        auto* record = new Record;
        record->setName(name);
        AcDbObjectId id;
        table->add(id, record);
        record->close();
        table->close();
        return id;
    }
    template <typename Table>
    bool Has(const std::wstring& name) {
        Table* table = nullptr;
        Drawing().getSymbolTable(table, AcDb::kForRead);
        bool has = table->has(name);
        table->close();
        return has;
    }
    AcDbLayerTableRecord* OpenLayer(const std::wstring& name) {
        AcDbLayerTable* layers = nullptr;
        Drawing().getSymbolTable(layers, AcDb::kForRead);
        AcDbLayerTableRecord* layer = nullptr;
        layers->getAt(name, layer, AcDb::kForRead);
        layers->close();
        return layer;
    }
    AcDbObjectId Continuous() {
        AcDbLinetypeTable* linetypes = nullptr;
        Drawing().getSymbolTable(linetypes, AcDb::kForRead);
        AcDbObjectId id;
        linetypes->getAt(L"CONTINUOUS", id);
        linetypes->close();
        return id;
    }
    static AcDbLine* NewLine() { return new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 1, 0)); }
    // Runs a purge of one table that holds the records UNUSED and USED: only UNUSED goes.
    template <typename Table>
    void ExpectOnlyTheUnusedRecordPurged(int (*purge)(AcDbDatabase*)) {
        EXPECT_EQ(purge(&Drawing()), 0);
        EXPECT_FALSE(Has<Table>(L"UNUSED"));
        EXPECT_TRUE(Has<Table>(L"USED"));
    }
};

TEST_F(DbHelpers, AppendToModelSpaceAnswersOneGivesTheIdAndLeavesTheEntityOpen) {
    AcDbLine* line = NewLine();
    AcDbObjectId id;
    EXPECT_EQ(AppendToModelSpace(&Drawing(), line, id), 1);
    EXPECT_FALSE(id.isNull());
    EXPECT_EQ(line->objectId(), id);
    EXPECT_EQ(line->close(), Acad::eOk);
    EXPECT_EQ(ModelSpaceIds(Drawing()), AcDbObjectIdArray{id});
}

TEST_F(DbHelpers, AppendToModelSpaceWithoutADatabaseUsesTheWorkingOne) {
    AcDbDatabase other(true, false);
    acdbHostApplicationServices()->setWorkingDatabase(&other);
    AcDbLine* line = NewLine();
    AcDbObjectId id;
    EXPECT_EQ(AppendToModelSpace(nullptr, line, id), 1);
    line->close();
    EXPECT_EQ(ModelSpaceIds(other).length(), 1);
    EXPECT_TRUE(ModelSpaceIds(Drawing()).isEmpty());
    acdbHostApplicationServices()->setWorkingDatabase(hostDrawing_.get());
}

TEST_F(DbHelpers, AppendToModelSpaceWithTheModelSpaceOpenElsewhereAlertsAndAnswersZero) {
    AcDbBlockTable* table = nullptr;
    Drawing().getSymbolTable(table, AcDb::kForRead);
    AcDbBlockTableRecord* model = nullptr;
    table->getAt(ACDB_MODEL_SPACE, model, AcDb::kForRead);
    table->close();
    AcDbLine* line = NewLine();
    AcDbObjectId id = AddRecord<AcDbLayerTable, AcDbLayerTableRecord>(L"NOT-THE-LINE");
    testing::internal::CaptureStderr();
    EXPECT_EQ(AppendToModelSpace(&Drawing(), line, id), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "读取块表记录失败!\n");
    EXPECT_TRUE(id.isNull());
    model->close();
    delete line;
    EXPECT_TRUE(ModelSpaceIds(Drawing()).isEmpty());
}

TEST_F(DbHelpers, AppendToModelSpaceOfNoEntityAnswersZero) {
    AcDbObjectId id;
    EXPECT_EQ(AppendToModelSpace(&Drawing(), nullptr, id), 0);
    EXPECT_TRUE(ModelSpaceIds(Drawing()).isEmpty());
}

TEST_F(DbHelpers, AddLayerMakesAStandardLayerWithLinetypeContinuous) {
    EXPECT_EQ(AddLayer(L"HOLES", &Drawing()), 0);
    AcDbLayerTableRecord* layer = OpenLayer(L"HOLES");
    ASSERT_NE(layer, nullptr);
    EXPECT_EQ(layer->color().colorIndex(), 7);
    EXPECT_FALSE(layer->isFrozen());
    EXPECT_FALSE(layer->isOff());
    EXPECT_FALSE(layer->isLocked());
    EXPECT_FALSE(layer->VPDFLT());
    EXPECT_EQ(layer->linetypeObjectId(), Continuous());
    layer->close();
    EXPECT_EQ(CgLog().rfind(L"添加新图层\n0\n层名为HOLES\n设置新线型\n", 0), 0u);
    // The layer and linetype tables are closed again.
    AcDbLayerTable* layers = nullptr;
    EXPECT_EQ(Drawing().getSymbolTable(layers, AcDb::kForWrite), Acad::eOk);
    if (layers) layers->close();
    AcDbLinetypeTable* linetypes = nullptr;
    EXPECT_EQ(Drawing().getSymbolTable(linetypes, AcDb::kForWrite), Acad::eOk);
    if (linetypes) linetypes->close();
}

TEST_F(DbHelpers, AddLayerOnAnExistingLayerChangesNothingOnIt) {
    AddRecord<AcDbLayerTable, AcDbLayerTableRecord>(L"HOLES");
    AcDbLayerTable* layers = nullptr;
    Drawing().getSymbolTable(layers, AcDb::kForRead);
    AcDbLayerTableRecord* layer = nullptr;
    layers->getAt(L"HOLES", layer, AcDb::kForWrite);
    layers->close();
    AcCmColor red;
    red.setColorIndex(1);
    layer->setColor(red);
    layer->setIsFrozen(true);
    layer->setIsLocked(true);
    layer->close();
    EXPECT_EQ(AddLayer(L"holes", &Drawing()), 0);
    layer = OpenLayer(L"HOLES");
    EXPECT_EQ(layer->color().colorIndex(), 1);
    EXPECT_TRUE(layer->isFrozen());
    EXPECT_TRUE(layer->isLocked());
    EXPECT_TRUE(layer->linetypeObjectId().isNull());
    layer->close();
    EXPECT_EQ(CgLog(), L"添加新图层\n0\n层名为holes\n");
}

TEST_F(DbHelpers, ZoomExtentsMakesAViewOfTheModelSpaceCurrent) {
    AcDbDatabase other(true, false);
    Add(other, new AcDbLine(AcGePoint3d(10, 20, 0), AcGePoint3d(110, 70, 0)));
    EXPECT_EQ(ZoomExtents(&other), 0);
    ASSERT_TRUE(CurrentView().set);
    EXPECT_EQ(CurrentView().center, AcGePoint2d(60, 45));
    EXPECT_DOUBLE_EQ(CurrentView().width, 100.0);
    EXPECT_DOUBLE_EQ(CurrentView().height, 50.0);
    EXPECT_EQ(acdbHostApplicationServices()->workingDatabase(), &other);
    acdbHostApplicationServices()->setWorkingDatabase(hostDrawing_.get());
}

TEST_F(DbHelpers, ZoomExtentsOnAnEmptyModelSpaceStillMakesAViewCurrent) {
    ASSERT_FALSE(CurrentView().set);
    EXPECT_EQ(ZoomExtents(&Drawing()), 0);
    EXPECT_TRUE(CurrentView().set);
}

// The view records of the drawing's view table, as (centre, width, height).
struct ViewRecord {
    AcGePoint2d center;
    double width, height;
    std::wstring name;
};
static std::vector<ViewRecord> ViewRecords(AcDbDatabase& db) {
    std::vector<ViewRecord> records;
    AcDbViewTable* views = nullptr;
    db.getSymbolTable(views, AcDb::kForRead);
    for (const AcDbObjectId& id : views->recordIds()) {
        AcDbObject* object = nullptr;
        if (acdbOpenAcDbObject(object, id, AcDb::kForRead) != Acad::eOk) continue;
        auto* view = AcDbViewTableRecord::cast(object);
        records.push_back({view->centerPoint(), view->width(), view->height(), view->name()});
        object->close();
    }
    views->close();
    return records;
}

TEST_F(DbHelpers, ZoomExtentsAddsAnUnnamedViewOfTheExtentsToTheViewTable) {
    AcDbDatabase other(true, false);
    Add(other, new AcDbLine(AcGePoint3d(10, 20, 0), AcGePoint3d(110, 70, 0)));
    size_t before = ViewRecords(other).size();
    EXPECT_EQ(ZoomExtents(&other), 0);
    std::vector<ViewRecord> views = ViewRecords(other);
    ASSERT_EQ(views.size(), before + 1);
    EXPECT_EQ(views.back().center, AcGePoint2d(60, 45));
    EXPECT_DOUBLE_EQ(views.back().width, 100.0);
    EXPECT_DOUBLE_EQ(views.back().height, 50.0);
    EXPECT_EQ(views.back().name, L"");
    // The model space is closed again: a new entity goes in.
    AcDbObjectId id;
    auto* line = new AcDbLine(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0));
    EXPECT_EQ(AppendToModelSpace(&other, line, id), 1);
    if (id.isNull()) delete line;
    else line->close();
    acdbHostApplicationServices()->setWorkingDatabase(hostDrawing_.get());
}

TEST_F(DbHelpers, ZoomExtentsOnAnEmptyModelSpaceStillAddsAView) {
    size_t before = ViewRecords(Drawing()).size();
    EXPECT_EQ(ZoomExtents(&Drawing()), 0);
    EXPECT_EQ(ViewRecords(Drawing()).size(), before + 1);
    EXPECT_EQ(ZoomExtents(&Drawing()), 0);
    EXPECT_EQ(ViewRecords(Drawing()).size(), before + 2);
}

TEST_F(DbHelpers, PurgeLayersErasesUnusedLayersAndKeepsUsedOnes) {
    AddRecord<AcDbLayerTable, AcDbLayerTableRecord>(L"UNUSED");
    Add(Drawing(), NewLine(), L"USED");
    ExpectOnlyTheUnusedRecordPurged<AcDbLayerTable>(PurgeLayers);
    EXPECT_TRUE(Has<AcDbLayerTable>(L"0"));
}

TEST_F(DbHelpers, PurgeBlocksErasesUnreferencedBlocksAndKeepsReferencedOnes) {
    AddRecord<AcDbBlockTable, AcDbBlockTableRecord>(L"UNUSED");
    AcDbObjectId used = AddRecord<AcDbBlockTable, AcDbBlockTableRecord>(L"USED");
    Add(Drawing(), new AcDbBlockReference(AcGePoint3d(0, 0, 0), used));
    ExpectOnlyTheUnusedRecordPurged<AcDbBlockTable>(PurgeBlocks);
    EXPECT_TRUE(Has<AcDbBlockTable>(ACDB_MODEL_SPACE));
}

TEST_F(DbHelpers, PurgeLinetypesErasesUnusedLinetypesAndKeepsUsedOnes) {
    AddRecord<AcDbLinetypeTable, AcDbLinetypeTableRecord>(L"UNUSED");
    AcDbObjectId used = AddRecord<AcDbLinetypeTable, AcDbLinetypeTableRecord>(L"USED");
    AcDbEntity* line = nullptr;
    acdbOpenAcDbEntity(line, Add(Drawing(), NewLine()), AcDb::kForWrite);
    line->setLinetype(used);
    line->close();
    ExpectOnlyTheUnusedRecordPurged<AcDbLinetypeTable>(PurgeLinetypes);
    EXPECT_TRUE(Has<AcDbLinetypeTable>(L"CONTINUOUS"));
}

TEST_F(DbHelpers, PurgeDimStylesErasesUnusedStylesAndKeepsUsedOnes) {
    AddRecord<AcDbDimStyleTable, AcDbDimStyleTableRecord>(L"UNUSED");
    AcDbObjectId used = AddRecord<AcDbDimStyleTable, AcDbDimStyleTableRecord>(L"USED");
    auto* dimension = new AcDbAlignedDimension;
    dimension->setDimensionStyle(used);
    Add(Drawing(), dimension);
    ExpectOnlyTheUnusedRecordPurged<AcDbDimStyleTable>(PurgeDimStyles);
}

TEST_F(DbHelpers, OpenModelSpaceIteratorWalksTheModelSpace) {
    AcDbObjectId first = Add(Drawing(), NewLine());
    AcDbBlockTableRecordIterator* iterator = nullptr;
    ASSERT_EQ(OpenModelSpaceIterator(iterator, &Drawing()), 0);
    ASSERT_NE(iterator, nullptr);
    iterator->start(true, true);
    ASSERT_FALSE(iterator->done());
    AcDbObjectId id;
    iterator->getEntityId(id);
    EXPECT_EQ(id, first);
    iterator->step(true, true);
    EXPECT_TRUE(iterator->done());
    delete iterator;
}

}  // namespace
