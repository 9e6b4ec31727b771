#include "standard/db_helpers.hpp"

#include "pipeline/logs.hpp"
#include "platform/db/extents.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/ed/utilities.hpp"
#include "platform/ed/views.hpp"

int OpenModelSpaceIterator(AcDbBlockTableRecordIterator*& iterator, AcDbDatabase* db) {
    iterator = nullptr;
    AcDbBlockTable* table = nullptr;
    Acad::ErrorStatus es = db->getSymbolTable(table, AcDb::kForRead);
    if (es != Acad::eOk) return es;
    AcDbBlockTableRecord* model = nullptr;
    es = table->getAt(ACDB_MODEL_SPACE, model, AcDb::kForRead);
    if (es != Acad::eOk) {
        table->close();
        return es;
    }
    model->newIterator(iterator, true, true);
    model->close();
    table->close();
    return iterator ? 0 : 16;
}

int AppendToModelSpace(AcDbDatabase* db, AcDbEntity* entity, AcDbObjectId& id) {
    if (entity == nullptr) return 0;
    id = AcDbObjectId::kNull;
    if (db == nullptr) db = acdbHostApplicationServices()->workingDatabase();
    AcDbBlockTable* table = nullptr;
    Acad::ErrorStatus es = db->getSymbolTable(table, AcDb::kForRead);
    if (es != Acad::eOk) {
        acedAlert(L"读取块表失败!");
        return es;
    }
    AcDbBlockTableRecord* model = nullptr;
    es = table->getAt(ACDB_MODEL_SPACE, model, AcDb::kForWrite);
    table->close();
    if (es != Acad::eOk) {
        acedAlert(L"读取块表记录失败!");
        return 0;
    }
    es = model->appendAcDbEntity(id, entity);
    model->close();
    if (es != Acad::eOk) {
        acedAlert(L"实体加入数据库失败!");
        return 0;
    }
    return 1;
}

AcDbLayerTableRecord* NewStandardLayer(const std::wstring& name, AcDbDatabase* db, bool log) {
    auto* layer = new AcDbLayerTableRecord;
    layer->setIsFrozen(false);
    layer->setIsOff(false);
    layer->setVPDFLT(false);
    layer->setIsLocked(false);
    AcCmColor color;
    color.setColorIndex(7);
    layer->setColor(color);
    layer->setName(name);
    AcDbLinetypeTable* linetypes = nullptr;
    AcDbObjectId continuous;
    Acad::ErrorStatus es = db->getSymbolTable(linetypes, AcDb::kForRead);
    if (es == Acad::eOk) {
        es = linetypes->getAt(L"CONTINUOUS", continuous);
        linetypes->close();
    }
    if (log) {
        AppendLogText(L"设置新线型\n", kCgLogPath);
        AppendLogInt(es, kCgLogPath);
    }
    layer->setLinetypeObjectId(continuous);
    return layer;
}

int AddLayer(const std::wstring& name, AcDbDatabase* db) {
    AcDbLayerTable* table = nullptr;
    Acad::ErrorStatus es = db->getSymbolTable(table, AcDb::kForWrite);
    AppendLogText(L"添加新图层\n", kCgLogPath);
    AppendLogInt(es, kCgLogPath);
    AppendLogText(L"\n层名为" + name + L"\n", kCgLogPath);
    if (es != Acad::eOk) return es;
    if (table->has(name)) {
        table->close();
        return 0;
    }
    AcDbLayerTableRecord* layer = NewStandardLayer(name, db, true);
    es = table->add(layer);
    AppendLogInt(es, kCgLogPath);
    if (es == Acad::eOk) layer->close();
    else delete layer;
    table->close();
    return es;
}

int ZoomExtents(AcDbDatabase* db) {
    acdbHostApplicationServices()->setWorkingDatabase(db);
    AcDbBlockTable* table = nullptr;
    if (db->getSymbolTable(table, AcDb::kForRead) != Acad::eOk) {
        acedAlert(L"取得块表失败!");
        return 44;
    }
    AcDbBlockTableRecord* model = nullptr;
    Acad::ErrorStatus es = table->getAt(ACDB_MODEL_SPACE, model, AcDb::kForRead);
    table->close();
    if (es != Acad::eOk) return 44;
    AcDbExtents box;
    box.addBlockExt(model);
    model->close();
    AcGePoint3d low = box.minPoint(), high = box.maxPoint();
    auto* view = new AcDbViewTableRecord;
    view->setCenterPoint(AcGePoint2d((low.x + high.x) / 2.0, (low.y + high.y) / 2.0));
    view->setWidth(std::abs(low.x - high.x));
    view->setHeight(std::abs(low.y - high.y));
    view->setUcsToWorld();
    AcDbViewTable* views = nullptr;
    bool added = false;
    if (db->getSymbolTable(views, AcDb::kForWrite) == Acad::eOk) {
        added = views->add(view) == Acad::eOk;
        acedSetCurrentView(view, nullptr);
        views->close();
    }
    if (added) view->close();
    else delete view;
    db->updateExt(true);
    return 0;
}

int PurgeAndErase(AcDbObjectIdArray& ids, AcDbDatabase* db) {
    Acad::ErrorStatus es = db->purge(ids);
    if (es != Acad::eOk) return es;
    for (const AcDbObjectId& id : ids) {
        AcDbObject* object = nullptr;
        if (acdbOpenAcDbObject(object, id, AcDb::kForWrite) != Acad::eOk) continue;
        object->erase();
        object->close();
    }
    return 0;
}

namespace {

// Collects the ids of all records of one table, opening each in `mode` as the caller's
// table walk does, and erases those that nothing refers to.
template <typename Table>
int PurgeTable(AcDbDatabase* db, AcDb::OpenMode mode) {
    Table* table = nullptr;
    Acad::ErrorStatus es = db->getSymbolTable(table, AcDb::kForRead);
    if (es != Acad::eOk) return es;
    AcDbSymbolTableIterator* iterator = nullptr;
    table->newIterator(iterator, true, true);
    AcDbObjectIdArray ids;
    for (iterator->start(); !iterator->done(); iterator->step()) {
        AcDbSymbolTableRecord* record = nullptr;
        if (iterator->getRecord(record, mode) != Acad::eOk) continue;
        ids.append(record->objectId());
        record->close();
    }
    delete iterator;
    table->close();
    return PurgeAndErase(ids, db);
}

}  // namespace

int PurgeLayers(AcDbDatabase* db) { return PurgeTable<AcDbLayerTable>(db, AcDb::kForRead); }
int PurgeBlocks(AcDbDatabase* db) { return PurgeTable<AcDbBlockTable>(db, AcDb::kForWrite); }
int PurgeDimStyles(AcDbDatabase* db) { return PurgeTable<AcDbDimStyleTable>(db, AcDb::kForWrite); }
int PurgeLinetypes(AcDbDatabase* db) { return PurgeTable<AcDbLinetypeTable>(db, AcDb::kForWrite); }
