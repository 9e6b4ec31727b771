#include "platform/db/symbol_tables.hpp"

#include <atomic>

#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/entity.hpp"
#include "platform/db/names.hpp"

ACRX_DEFINE_MEMBERS(AcDbSymbolTableRecord, AcDbObject, L"")
ACRX_DEFINE_MEMBERS(AcDbLayerTableRecord, AcDbSymbolTableRecord, L"LAYER")
ACRX_DEFINE_MEMBERS(AcDbTextStyleTableRecord, AcDbSymbolTableRecord, L"STYLE")
ACRX_DEFINE_MEMBERS(AcDbLinetypeTableRecord, AcDbSymbolTableRecord, L"LTYPE")
ACRX_DEFINE_MEMBERS(AcDbDimStyleTableRecord, AcDbSymbolTableRecord, L"DIMSTYLE")
ACRX_DEFINE_MEMBERS(AcDbAbstractViewTableRecord, AcDbSymbolTableRecord, L"")
ACRX_DEFINE_MEMBERS(AcDbViewTableRecord, AcDbAbstractViewTableRecord, L"VIEW")
ACRX_DEFINE_MEMBERS(AcDbViewportTableRecord, AcDbAbstractViewTableRecord, L"VPORT")
ACRX_DEFINE_MEMBERS(AcDbRegAppTableRecord, AcDbSymbolTableRecord, L"APPID")
ACRX_DEFINE_MEMBERS(AcDbUCSTableRecord, AcDbSymbolTableRecord, L"UCS")
ACRX_DEFINE_MEMBERS(AcDbSymbolTable, AcDbObject, L"")
ACRX_DEFINE_MEMBERS(AcDbBlockTable, AcDbSymbolTable, L"TABLE")
ACRX_DEFINE_MEMBERS(AcDbLayerTable, AcDbSymbolTable, L"TABLE")
ACRX_DEFINE_MEMBERS(AcDbTextStyleTable, AcDbSymbolTable, L"TABLE")
ACRX_DEFINE_MEMBERS(AcDbLinetypeTable, AcDbSymbolTable, L"TABLE")
ACRX_DEFINE_MEMBERS(AcDbDimStyleTable, AcDbSymbolTable, L"TABLE")
ACRX_DEFINE_MEMBERS(AcDbViewTable, AcDbSymbolTable, L"TABLE")
ACRX_DEFINE_MEMBERS(AcDbViewportTable, AcDbSymbolTable, L"TABLE")
ACRX_DEFINE_MEMBERS(AcDbRegAppTable, AcDbSymbolTable, L"TABLE")
ACRX_DEFINE_MEMBERS(AcDbUCSTable, AcDbSymbolTable, L"TABLE")

// ---- Records ----

Acad::ErrorStatus AcDbSymbolTableRecord::getName(std::wstring& name) const {
    name = m_name;
    return Acad::eOk;
}

namespace {

// Renames of records in a database, in any database: a table's name index made before one is
// made anew, as the renamed record may be in it.
std::atomic<std::uint64_t> g_recordRenames{0};

// The table that owns a resident record, or null.
const AcDbSymbolTable* OwningTable(const AcDbSymbolTableRecord* record) {
    AcDbObjectId owner = record->ownerId();
    if (owner.isNull() || owner.stub()->object == nullptr) return nullptr;
    return AcDbSymbolTable::cast(owner.stub()->object.get());
}

// Entities name their layer; a renamed layer takes its entities along, as the host's entities
// refer to the record itself.
void RenameLayerOfEntities(AcDbDatabase* db, const std::wstring& from, const std::wstring& to) {
    for (const AcDbStub& stub : db->stubs()) {
        auto* entity = AcDbEntity::cast(stub.object.get());
        if (entity && acdbNamesEqual(entity->layer(), from)) entity->setLayerName(to);
    }
}

}  // namespace

// Look-ups by name made before a record of a database changes its name index it no longer.
void AcDbSymbolTableRecord::takeName(const std::wstring& name) {
    if (name == m_name) return;
    m_name = name;
    if (database() != nullptr) g_recordRenames.fetch_add(1, std::memory_order_relaxed);
}

// A record of a drawing, open for write, is renamed as in the host: another record of the name
// refuses it, and a layer's entities follow. Records being built (not open) just take the name.
Acad::ErrorStatus AcDbSymbolTableRecord::setName(const std::wstring& name) {
    if (name.empty()) return Acad::eInvalidSymbolTableName;
    const AcDbSymbolTable* table = database() && isWriteEnabled() ? OwningTable(this) : nullptr;
    if (table == nullptr || acdbNamesEqual(name, m_name)) {
        takeName(name);
        return Acad::eOk;
    }
    if (table->has(name)) return Acad::eDuplicateRecordName;
    std::wstring previous = m_name;
    takeName(name);
    if (isKindOf(AcDbLayerTableRecord::desc())) RenameLayerOfEntities(database(), previous, name);
    return Acad::eOk;
}

void AcDbLayerTableRecord::collectReferences(AcDbObjectIdArray& refs) const {
    AcDbSymbolTableRecord::collectReferences(refs);
    if (!m_linetype.isNull()) refs.append(m_linetype);
}

void AcDbLayerTableRecord::remapReferences(const AcDbIdMapper& map) {
    AcDbSymbolTableRecord::remapReferences(map);
    if (!m_linetype.isNull()) m_linetype = map(m_linetype);
}

AcDbDimStyleTableRecord::AcDbDimStyleTableRecord() = default;

void AcDbDimStyleTableRecord::collectReferences(AcDbObjectIdArray& refs) const {
    AcDbSymbolTableRecord::collectReferences(refs);
    for (const auto& [code, value] : m_vars)
        if (value.kind == AcDbDimVarValue::kHandle && !value.id.isNull()) refs.append(value.id);
}

AcCmColor AcDbDimStyleTableRecord::colorVar(int code) const {
    const auto var = m_vars.find(code);
    const int index = var == m_vars.end() ? 0 : var->second.integer;  // 0 (BYBLOCK) by default
    const auto trueColor = m_trueColors.find(code);
    if (trueColor != m_trueColors.end() && trueColor->second.colorIndex() == index) return trueColor->second;
    AcCmColor color;
    color.setColorIndex(static_cast<std::uint16_t>(index));
    return color;
}

Acad::ErrorStatus AcDbDimStyleTableRecord::setColorVar(int code, const AcCmColor& c) {
    AcDbDimVarValue value;
    value.kind = AcDbDimVarValue::kInt;
    value.integer = c.colorIndex();
    m_vars[code] = value;
    if (c.hasTrueColor()) m_trueColors[code] = c;
    else m_trueColors.erase(code);
    return Acad::eOk;
}

// ---- Tables ----

// Indexes the records added since the last look-up, or all of them after a rename. A record
// whose object is not there yet stops the indexing; look-ups walk the records from there.
void AcDbSymbolTable::indexNames() const {
    const std::uint64_t renames = g_recordRenames.load(std::memory_order_relaxed);
    if (m_names.renames != renames) {
        m_names.positions.clear();
        m_names.indexed = 0;
        m_names.renames = renames;
    }
    for (; m_names.indexed < m_records.length(); ++m_names.indexed) {
        const AcDbStub* stub = m_records[m_names.indexed].stub();
        if (stub == nullptr || stub->object == nullptr) break;
        const auto* record = static_cast<const AcDbSymbolTableRecord*>(stub->object.get());
        m_names.positions[record->name()].push_back(m_names.indexed);
    }
}

bool AcDbSymbolTable::recordMatches(int position, const std::wstring& name, bool erased) const {
    const AcDbStub* stub = m_records[position].stub();
    const AcDbObject* object = stub ? stub->object.get() : nullptr;
    if (object == nullptr || (object->isErased() && !erased)) return false;
    return acdbNamesEqual(static_cast<const AcDbSymbolTableRecord*>(object)->name(), name);
}

// The first record of the name in the table's order, as a walk over the records finds it.
Acad::ErrorStatus AcDbSymbolTable::getAt(const std::wstring& name, AcDbObjectId& id,
                                         bool getErasedRecord) const {
    std::lock_guard<std::mutex> lock(m_names.guard);
    indexNames();
    auto found = m_names.positions.find(name);
    if (found != m_names.positions.end())
        for (int position : found->second)
            if (recordMatches(position, name, getErasedRecord)) {
                id = m_records[position];
                return Acad::eOk;
            }
    for (int position = m_names.indexed; position < m_records.length(); ++position)
        if (recordMatches(position, name, getErasedRecord)) {
            id = m_records[position];
            return Acad::eOk;
        }
    return Acad::eKeyNotFound;
}

Acad::ErrorStatus AcDbSymbolTable::getAt(const std::wstring& name,
                                         AcDbSymbolTableRecord*& record, AcDb::OpenMode mode,
                                         bool openErasedRecord) const {
    record = nullptr;
    AcDbObjectId id;
    Acad::ErrorStatus es = getAt(name, id, openErasedRecord);
    if (es != Acad::eOk) return es;
    return acdbOpenObject(record, id, mode, openErasedRecord);
}

bool AcDbSymbolTable::has(const std::wstring& name) const {
    AcDbObjectId id;
    return getAt(name, id) == Acad::eOk;
}

bool AcDbSymbolTable::has(AcDbObjectId id) const {
    return m_records.contains(id) && !id.isErased();
}

Acad::ErrorStatus AcDbSymbolTable::add(AcDbSymbolTableRecord* record) {
    AcDbObjectId id;
    return add(id, record);
}

Acad::ErrorStatus AcDbSymbolTable::add(AcDbObjectId& id, AcDbSymbolTableRecord* record) {
    if (record == nullptr) return Acad::eNullObjectPointer;
    if (database() == nullptr) return Acad::eNoDatabase;
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (!record->isKindOf(recordClass())) return Acad::eWrongObjectType;
    // The view table, as the host's, takes records without a name (a zoom's view); they are
    // reached by id only, so several may stand side by side.
    if (record->name().empty()) {
        if (recordClass() != AcDbViewTableRecord::desc()) return Acad::eInvalidSymbolTableName;
    } else if (has(record->name())) {
        return Acad::eDuplicateRecordName;
    }
    Acad::ErrorStatus es = database()->addAcDbObject(id, record);
    if (es != Acad::eOk) return es;
    record->setOwnerId(objectId());
    m_records.append(id);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTable::newIterator(AcDbSymbolTableIterator*& iterator,
                                               bool atBeginning, bool skipDeleted) const {
    iterator = new AcDbSymbolTableIterator(this, atBeginning, skipDeleted);
    return Acad::eOk;
}

#define TAVRIK_DEFINE_TYPED_GETAT(TABLE, RECORD)                                              \
    Acad::ErrorStatus TABLE::getAt(const std::wstring& name, RECORD*& record,                 \
                                   AcDb::OpenMode mode, bool openErasedRecord) const {        \
        record = nullptr;                                                                     \
        AcDbObjectId id;                                                                      \
        Acad::ErrorStatus es = AcDbSymbolTable::getAt(name, id, openErasedRecord);            \
        if (es != Acad::eOk) return es;                                                       \
        return acdbOpenObject(record, id, mode, openErasedRecord);                            \
    }                                                                                         \
    AcRxClass* TABLE::recordClass() const { return RECORD::desc(); }

TAVRIK_DEFINE_TYPED_GETAT(AcDbBlockTable, AcDbBlockTableRecord)
TAVRIK_DEFINE_TYPED_GETAT(AcDbLayerTable, AcDbLayerTableRecord)
TAVRIK_DEFINE_TYPED_GETAT(AcDbTextStyleTable, AcDbTextStyleTableRecord)
TAVRIK_DEFINE_TYPED_GETAT(AcDbLinetypeTable, AcDbLinetypeTableRecord)
TAVRIK_DEFINE_TYPED_GETAT(AcDbDimStyleTable, AcDbDimStyleTableRecord)
TAVRIK_DEFINE_TYPED_GETAT(AcDbViewTable, AcDbViewTableRecord)
TAVRIK_DEFINE_TYPED_GETAT(AcDbViewportTable, AcDbViewportTableRecord)
TAVRIK_DEFINE_TYPED_GETAT(AcDbRegAppTable, AcDbRegAppTableRecord)
TAVRIK_DEFINE_TYPED_GETAT(AcDbUCSTable, AcDbUCSTableRecord)

// ---- Iterator ----

AcDbSymbolTableIterator::AcDbSymbolTableIterator(const AcDbSymbolTable* table, bool atBeginning,
                                                 bool skipDeleted)
    : m_ids(table->recordIds()) {
    start(atBeginning, skipDeleted);
}

void AcDbSymbolTableIterator::start(bool atBeginning, bool skipDeleted) {
    m_index = atBeginning ? 0 : m_ids.length() - 1;
    if (skipDeleted) skipErased(atBeginning);
}

bool AcDbSymbolTableIterator::done() const { return m_index < 0 || m_index >= m_ids.length(); }

void AcDbSymbolTableIterator::step(bool forward, bool skipDeleted) {
    m_index += forward ? 1 : -1;
    if (skipDeleted) skipErased(forward);
}

void AcDbSymbolTableIterator::skipErased(bool forward) {
    while (!done() && (m_ids[m_index].isErased() || !m_ids[m_index].isValid()))
        m_index += forward ? 1 : -1;
}

Acad::ErrorStatus AcDbSymbolTableIterator::getRecordId(AcDbObjectId& id) const {
    if (done()) return Acad::eIteratorDone;
    id = m_ids[m_index];
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableIterator::getRecord(AcDbSymbolTableRecord*& record,
                                                     AcDb::OpenMode mode,
                                                     bool openErasedRecord) const {
    record = nullptr;
    if (done()) return Acad::eIteratorDone;
    return acdbOpenObject(record, m_ids[m_index], mode, openErasedRecord);
}

// Out of line: inlined into the readers' casts, the copy trips a false overflow warning of GCC.
void AcDbLayerTableRecord::setColor(const AcCmColor& color) { m_color = color; }
