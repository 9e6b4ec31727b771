#pragma once
// What tests ask of a drawing: its model space and the entities in it, the lines and their end
// points, the text style of a text, and text styles made for a test.
#include <string>
#include <utility>
#include <vector>

#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/line.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/db/text.hpp"

// The block table record named `block`, open in `mode`, for the caller to close.
inline AcDbBlockTableRecord* OpenBlockRecord(AcDbDatabase& db, const std::wstring& block, AcDb::OpenMode mode) {
    AcDbBlockTable* blocks = nullptr;
    db.getSymbolTable(blocks, AcDb::kForRead);
    AcDbBlockTableRecord* record = nullptr;
    blocks->getAt(block, record, mode);
    blocks->close();
    return record;
}

// The model space's record, open in `mode`, for the caller to close.
inline AcDbBlockTableRecord* OpenModelSpace(AcDbDatabase& db, AcDb::OpenMode mode) {
    return OpenBlockRecord(db, ACDB_MODEL_SPACE, mode);
}

// The ids of the model space's entities, in drawing order.
inline AcDbObjectIdArray ModelSpaceIds(AcDbDatabase& db) {
    AcDbBlockTableRecord* model = OpenModelSpace(db, AcDb::kForRead);
    AcDbObjectIdArray ids;
    for (const AcDbObjectId& id : model->entityIds()) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) continue;
        if (!entity->isErased()) ids.append(id);
        entity->close();
    }
    model->close();
    return ids;
}

// The end points of the model space's lines, in drawing order.
inline std::vector<std::pair<AcGePoint3d, AcGePoint3d>> ModelSpaceLines(AcDbDatabase& db) {
    std::vector<std::pair<AcGePoint3d, AcGePoint3d>> lines;
    for (const AcDbObjectId& id : ModelSpaceIds(db)) {
        AcDbEntity* entity = nullptr;
        acdbOpenAcDbEntity(entity, id, AcDb::kForRead);
        if (auto* line = AcDbLine::cast(entity)) lines.emplace_back(line->startPoint(), line->endPoint());
        entity->close();
    }
    return lines;
}

// Adds a layer of that name to `db` and answers its id.
inline AcDbObjectId AddLayer(AcDbDatabase& db, const std::wstring& name) {
    AcDbLayerTable* layers = nullptr;
    db.getSymbolTable(layers, AcDb::kForWrite);
    auto* layer = new AcDbLayerTableRecord;
    layer->setName(name);
    AcDbObjectId id;
    layers->add(id, layer);
    layer->close();
    layers->close();
    return id;
}

// Adds a text style of that name to `db` and answers its id.
inline AcDbObjectId AddTextStyle(AcDbDatabase& db, const std::wstring& name) {
    AcDbTextStyleTable* styles = nullptr;
    db.getSymbolTable(styles, AcDb::kForWrite);
    auto* record = new AcDbTextStyleTableRecord;
    record->setName(name);
    AcDbObjectId id;
    styles->add(id, record);
    record->close();
    styles->close();
    return id;
}

// The name of the text style of a single-line or multi-line text; empty for other entities.
inline std::wstring TextStyleName(const AcDbObjectId& textId) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, textId, AcDb::kForRead) != Acad::eOk) return L"";
    AcDbObjectId styleId;
    if (auto* single = AcDbText::cast(entity)) styleId = single->textStyle();
    else if (auto* multi = AcDbMText::cast(entity)) styleId = multi->textStyle();
    entity->close();
    AcDbObject* style = nullptr;
    if (acdbOpenAcDbObject(style, styleId, AcDb::kForRead) != Acad::eOk) return L"";
    std::wstring name;
    if (auto* record = AcDbTextStyleTableRecord::cast(style)) name = record->name();
    style->close();
    return name;
}

// The ids of the model space's single-line and multi-line texts, in drawing order.
inline std::vector<AcDbObjectId> ModelSpaceTexts(AcDbDatabase& db) {
    std::vector<AcDbObjectId> texts;
    for (const AcDbObjectId& id : ModelSpaceIds(db)) {
        AcDbEntity* entity = nullptr;
        acdbOpenAcDbEntity(entity, id, AcDb::kForRead);
        if (AcDbText::cast(entity) || AcDbMText::cast(entity)) texts.push_back(id);
        entity->close();
    }
    return texts;
}
