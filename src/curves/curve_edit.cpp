#include "curves/curve_edit.hpp"

#include "platform/db/block_table_record.hpp"
#include "platform/db/symbol_tables.hpp"

namespace {

// Opens for write, applies `edit`, closes.
template <typename Edit>
void EditById(AcDbObjectId id, Edit edit) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite, false) != Acad::eOk) return;
    edit(entity);
    entity->close();
}

template <typename Read>
std::wstring ReadById(AcDbObjectId id, Read read) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead, false) != Acad::eOk) return L"";
    std::wstring text = read(entity);
    entity->close();
    return text;
}

}  // namespace

AcDbObjectId AppendToModelOf(AcDbDatabase* db, AcDbEntity* entity) {
    AcDbObjectId id;
    AcDbBlockTable* table = nullptr;
    AcDbBlockTableRecord* model = nullptr;
    if (db->getSymbolTable(table, AcDb::kForRead) == Acad::eOk) {
        if (table->getAt(ACDB_MODEL_SPACE, model, AcDb::kForWrite) != Acad::eOk) model = nullptr;
        table->close();
    }
    if (model == nullptr || model->appendAcDbEntity(id, entity) != Acad::eOk) {
        if (model != nullptr) model->close();
        delete entity;
        return AcDbObjectId();
    }
    model->close();
    entity->close();
    return id;
}

std::wstring LinetypeOfId(AcDbObjectId id) {
    return ReadById(id, [](AcDbEntity* e) { return e->linetype(); });
}

std::wstring LayerOfId(AcDbObjectId id) {
    return ReadById(id, [](AcDbEntity* e) { return e->layer(); });
}

void SetLinetypeOfId(AcDbObjectId id, const std::wstring& name) {
    EditById(id, [&](AcDbEntity* e) { e->setLinetype(name, true); });
}

void SetLinetypeScaleOfId(AcDbObjectId id, double scale) {
    EditById(id, [&](AcDbEntity* e) { e->setLinetypeScale(scale, true); });
}

void EraseById(AcDbObjectId id) {
    EditById(id, [](AcDbEntity* e) { e->erase(true); });
}

EntityLook LookOf(const AcDbEntity* entity) {
    return {entity->layer(), entity->linetype(), entity->linetypeScale(), entity->colorIndex()};
}
