#include "platform/dxf/required_objects.hpp"

#include <string>
#include <vector>

#include "platform/db/block_table_record.hpp"
#include "platform/db/carried.hpp"
#include "platform/db/dictionary.hpp"
#include "platform/db/dimension.hpp"
#include "platform/dxf/model.hpp"

namespace dxf {

namespace {

// Adds an object that the writer needs and the drawing lacks; it is not left open, so that
// the drawing can still be opened after the save.
void AddClosed(AcDbDatabase& db, AcDbObjectId& id, AcDbObject* object) {
    db.addAcDbObject(id, object);
    object->close();
}

AcDbSymbolTable* NewTableOf(AcDbDatabase::TableKind kind) {
    switch (kind) {
        case AcDbDatabase::kBlockTable: return new AcDbBlockTable();
        case AcDbDatabase::kLayerTable: return new AcDbLayerTable();
        case AcDbDatabase::kTextStyleTable: return new AcDbTextStyleTable();
        case AcDbDatabase::kLinetypeTable: return new AcDbLinetypeTable();
        case AcDbDatabase::kDimStyleTable: return new AcDbDimStyleTable();
        case AcDbDatabase::kViewTable: return new AcDbViewTable();
        case AcDbDatabase::kViewportTable: return new AcDbViewportTable();
        case AcDbDatabase::kRegAppTable: return new AcDbRegAppTable();
        default: return new AcDbUCSTable();
    }
}

AcDbSymbolTable* EnsureTable(AcDbDatabase& db, AcDbDatabase::TableKind kind) {
    if (auto* t = AcDbSymbolTable::cast(ObjectOf(db.tableId(kind)))) return t;
    AcDbSymbolTable* table = NewTableOf(kind);
    AcDbObjectId id;
    AddClosed(db, id, table);
    db.setTableId(kind, id);
    return table;
}

void EnsureRecord(AcDbDatabase& db, AcDbDatabase::TableKind kind, const std::wstring& name,
                  AcDbSymbolTableRecord* record) {
    AcDbSymbolTable* table = EnsureTable(db, kind);
    if (table->has(name)) {
        delete record;
        return;
    }
    record->setName(name);
    record->setOwnerId(table->objectId());
    AcDbObjectId id;
    AddClosed(db, id, record);
    table->attachRecord(id);
}

AcDbDictionary* EnsureEntry(AcDbDatabase& db, AcDbDictionary& parent, const std::wstring& key) {
    AcDbObjectId id;
    if (parent.getAt(key, id) == Acad::eOk)
        if (auto* d = AcDbDictionary::cast(ObjectOf(id))) return d;
    auto* d = new AcDbDictionary();
    AddClosed(db, id, d);
    d->setOwnerId(parent.objectId());
    parent.setAtId(key, id);
    return d;
}

// A layout's record: plot settings of an unconfigured device and the layout proper.
AcDbRawTags LayoutTags(const std::string& name, int tab, AcDbHandle block) {
    AcDbRawTags t = {
        {0, "LAYOUT"}, {5, "0"}, {330, "0"}, {100, "AcDbPlotSettings"}, {1, ""},
        {2, "none_device"}, {4, ""}, {6, ""}, {40, "0.0"}, {41, "0.0"}, {42, "0.0"},
        {43, "0.0"}, {44, "0.0"}, {45, "0.0"}, {46, "0.0"}, {47, "0.0"}, {48, "0.0"},
        {49, "0.0"}, {140, "0.0"}, {141, "0.0"}, {142, "1.0"}, {143, "1.0"}, {70, "688"},
        {72, "0"}, {73, "0"}, {74, "5"}, {7, ""}, {75, "16"}, {147, "1.0"}, {148, "0.0"},
        {149, "0.0"}, {100, "AcDbLayout"}, {1, name}, {70, "1"}, {71, std::to_string(tab)},
        {10, "0.0"}, {20, "0.0"}, {11, "420.0"}, {21, "297.0"}, {12, "0.0"}, {22, "0.0"},
        {32, "0.0"}, {14, "0.0"}, {24, "0.0"}, {34, "0.0"}, {15, "0.0"}, {25, "0.0"},
        {35, "0.0"}, {146, "0.0"}, {13, "0.0"}, {23, "0.0"}, {33, "0.0"}, {16, "1.0"},
        {26, "0.0"}, {36, "0.0"}, {17, "0.0"}, {27, "1.0"}, {37, "0.0"}, {76, "0"},
        {330, HandleText(block)}};
    return t;
}

// A dimension made in memory gets the anonymous block that readers expect it to name, with its
// picture in it.
void EnsureDimensionBlocks(AcDbDatabase& db) {
    auto* blocks = AcDbBlockTable::cast(ObjectOf(db.blockTableId()));
    if (!blocks) return;
    std::vector<AcDbDimension*> missing;
    for (const auto& bid : blocks->recordIds())
        if (auto* b = AcDbBlockTableRecord::cast(ObjectOf(bid)))
            for (const auto& eid : b->entityIds())
                if (auto* d = AcDbDimension::cast(ObjectOf(eid));
                    d && d->dimBlockId().isNull() && d->fileTags().empty())
                    missing.push_back(d);
    for (AcDbDimension* d : missing) {
        d->recomputeDimBlock();
        if (!d->dimBlockId().isNull()) continue;
        // A kind the platform does not draw: an empty block.
        std::wstring name;
        int next = 1;
        do name = L"*D" + std::to_wstring(next++);
        while (blocks->has(name));
        auto* block = new AcDbBlockTableRecord();
        block->setName(name);
        block->setFlagBits(1);
        block->setOwnerId(blocks->objectId());
        AcDbObjectId id;
        AddClosed(db, id, block);
        blocks->attachRecord(id);
        d->setDimBlockId(id);
    }
}

void EnsureLayouts(AcDbDatabase& db) {
    auto* root = AcDbDictionary::cast(ObjectOf(db.namedObjectsDictionaryId()));
    if (!root) {
        root = new AcDbDictionary();
        AcDbObjectId id;
        AddClosed(db, id, root);
        db.setNamedObjectsDictionaryId(id);
    }
    EnsureEntry(db, *root, L"ACAD_GROUP");
    AcDbDictionary* layouts = EnsureEntry(db, *root, L"ACAD_LAYOUT");
    int tab = 0;
    for (const wchar_t* name : {ACDB_MODEL_SPACE, ACDB_PAPER_SPACE}) {
        auto* block = AcDbBlockTableRecord::cast(ObjectOf(db.blockId(name)));
        if (!block || !block->getLayoutId().isNull()) {
            ++tab;
            continue;
        }
        std::string layoutName = tab == 0 ? "Model" : "Layout1";
        auto* layout = new AcDbUnknownObject(L"LAYOUT");
        AcDbObjectId id;
        AddClosed(db, id, layout);
        layout->fileTags() = LayoutTags(layoutName, tab, block->objectId().handle());
        layout->setOwnerId(layouts->objectId());
        layouts->setAtId(Wide(layoutName), id);
        block->setLayoutId(id);
        ++tab;
    }
}


}  // namespace

void AddRequiredObjects(AcDbDatabase& db) {
    for (int k = 0; k < AcDbDatabase::kTableCount; ++k)
        EnsureTable(db, static_cast<AcDbDatabase::TableKind>(k));
    EnsureRecord(db, AcDbDatabase::kLayerTable, L"0", new AcDbLayerTableRecord());
    for (const wchar_t* lt : {L"ByBlock", L"ByLayer", L"Continuous"})
        EnsureRecord(db, AcDbDatabase::kLinetypeTable, lt, new AcDbLinetypeTableRecord());
    EnsureRecord(db, AcDbDatabase::kTextStyleTable, L"Standard", new AcDbTextStyleTableRecord());
    EnsureRecord(db, AcDbDatabase::kRegAppTable, L"ACAD", new AcDbRegAppTableRecord());
    EnsureRecord(db, AcDbDatabase::kDimStyleTable, L"Standard", new AcDbDimStyleTableRecord());
    EnsureRecord(db, AcDbDatabase::kViewportTable, L"*Active", new AcDbViewportTableRecord());
    EnsureRecord(db, AcDbDatabase::kBlockTable, ACDB_MODEL_SPACE, new AcDbBlockTableRecord());
    EnsureRecord(db, AcDbDatabase::kBlockTable, ACDB_PAPER_SPACE, new AcDbBlockTableRecord());
    EnsureLayouts(db);
    EnsureDimensionBlocks(db);
}

}  // namespace dxf
