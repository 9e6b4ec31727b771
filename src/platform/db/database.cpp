#include "platform/db/database.hpp"

#include <algorithm>

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include "platform/db/block_table_record.hpp"
#include "platform/db/dictionary.hpp"
#include "platform/db/entity.hpp"

namespace {

void GiveBackFreedMemory() {
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

// Blocks of a megabyte and more (a drawing file's bytes, its decompressed sections, the lists of
// a large drawing) get mappings of their own, which go back to the system whole when freed. The
// allocator would otherwise raise that threshold once such a block is freed, and place those of
// the next drawing in the heap, where their pages outlive them.
void MapLargeBlocks() {
#ifdef __GLIBC__
    static const bool fixed = mallopt(M_MMAP_THRESHOLD, 1 << 20) != 0;
    (void)fixed;
#endif
}

}  // namespace

AcDbHostApplicationServices* acdbHostApplicationServices() {
    static AcDbHostApplicationServices services;
    return &services;
}

AcDbDatabase::AcDbDatabase(bool buildDefault, bool) {
    MapLargeBlocks();
    if (buildDefault) buildDefaultDrawing();
}

AcDbDatabase::~AcDbDatabase() {
    if (acdbHostApplicationServices()->workingDatabase() == this)
        acdbHostApplicationServices()->setWorkingDatabase(nullptr);
    // A drawing's objects are many small blocks, which the allocator keeps once freed: given back
    // to the system here, so that a host reading drawing after drawing holds at most the one it
    // reads, not also the pages of those it has let go.
    discardContents();
    GiveBackFreedMemory();
}

void AcDbDatabase::discardContents() {
    m_stubs.clear();
    m_byHandle.clear();
    m_maxHandle = 0;
    m_nonEntitiesAdded.clear();
    m_handseed = AcDbHandle(1);
    for (AcDbObjectId& table : m_tables) table = AcDbObjectId::kNull;
    m_namedObjects = m_clayer = m_celtype = m_textstyle = m_dimstyle = AcDbObjectId::kNull;
    m_extmin = AcGePoint3d(1e20, 1e20, 1e20);
    m_extmax = AcGePoint3d(-1e20, -1e20, -1e20);
    m_headerVars.clear();
    m_classes.clear();
    m_thumbnail.clear();
    m_acdsData.clear();
    m_dwgKept.clear();
    m_dwgFiled = {};
    m_textSpellings.clear();
}

void AcDbDatabase::addTextSpelling(AcDbHandle record, int code, std::string_view spelling) {
    m_textSpellings[record.value()].push_back(code, spelling);
}

// ---- Objects ----

AcDbStub& AcDbDatabase::newStub(AcDbHandle handle) {
    AcDbStub& stub = m_byHandle.add(handle.value());
    stub.database = this;
    m_maxHandle = std::max(m_maxHandle, handle.value());
    if (handle.value() >= m_handseed.value()) m_handseed = AcDbHandle(handle.value() + 1);
    return stub;
}

Acad::ErrorStatus AcDbDatabase::addAcDbObject(AcDbObjectId& id, AcDbObject* object) {
    return addAcDbObjectWithHandle(id, object, m_handseed);
}

Acad::ErrorStatus AcDbDatabase::addAcDbObjectWithHandle(AcDbObjectId& id, AcDbObject* object,
                                                        AcDbHandle handle) {
    const Acad::ErrorStatus es = addClosedAcDbObjectWithHandle(id, object, handle);
    if (es == Acad::eOk) object->openFor(AcDb::kForWrite);
    return es;
}

Acad::ErrorStatus AcDbDatabase::addClosedAcDbObjectWithHandle(AcDbObjectId& id, AcDbObject* object,
                                                              AcDbHandle handle) {
    if (object == nullptr) return Acad::eNullObjectPointer;
    if (!object->isNewObject()) return Acad::eAlreadyInDb;
    if (handle.isNull()) return Acad::eNullHandle;
    AcDbStub* stub = m_byHandle.find(handle.value());
    if (stub != nullptr) {
        // A forward reference made the slot before the object came.
        if (stub->object != nullptr) return Acad::eHandleInUse;
    } else {
        stub = &newStub(handle);
    }
    stub->object.reset(object);
    if (AcDbEntity::cast(object) == nullptr) m_nonEntitiesAdded.push_back(stub);
    object->attachToStub(stub);
    id = AcDbObjectId(stub);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::moveToHandle(AcDbObjectId id, AcDbHandle handle) {
    AcDbStub* stub = id.stub();
    if (stub == nullptr || stub->database != this || stub->object == nullptr) return Acad::eNullObjectId;
    if (handle.isNull()) return Acad::eNullHandle;
    if (m_byHandle.find(handle.value()) != nullptr) return Acad::eHandleInUse;
    const std::uint64_t old = stub->handle.value();
    m_byHandle.rekey(old, handle.value());
    if (old == m_maxHandle) m_maxHandle = m_byHandle.largestHandle();
    m_maxHandle = std::max(m_maxHandle, handle.value());
    if (handle.value() >= m_handseed.value()) m_handseed = AcDbHandle(handle.value() + 1);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::getAcDbObjectId(AcDbObjectId& id, bool createIfNotFound,
                                                const AcDbHandle& handle) {
    if (handle.isNull()) return Acad::eNullHandle;
    if (AcDbStub* found = m_byHandle.find(handle.value())) {
        id = AcDbObjectId(found);
        return Acad::eOk;
    }
    if (!createIfNotFound) return Acad::eUnknownHandle;
    id = AcDbObjectId(&newStub(handle));
    return Acad::eOk;
}

void AcDbDatabase::setHandseed(AcDbHandle seed) {
    // Never below a handle in use: new objects must not collide with read ones. The largest
    // handle in use is kept as objects come, since writers raise the seed once per new handle.
    if (!m_byHandle.empty() && m_maxHandle >= seed.value()) seed = AcDbHandle(m_maxHandle + 1);
    m_handseed = seed;
}

// ---- Tables ----

namespace {
template <typename Table>
Acad::ErrorStatus openTable(AcDbObjectId id, Table*& table, AcDb::OpenMode mode) {
    table = nullptr;
    if (id.isNull()) return Acad::eNullObjectId;
    return acdbOpenObject(table, id, mode);
}
}  // namespace

#define TAVRIK_DEFINE_GET_TABLE(TABLE, KIND)                                                  \
    Acad::ErrorStatus AcDbDatabase::getSymbolTable(TABLE*& table, AcDb::OpenMode mode) const { \
        return openTable(m_tables[KIND], table, mode);                                         \
    }

TAVRIK_DEFINE_GET_TABLE(AcDbBlockTable, kBlockTable)
TAVRIK_DEFINE_GET_TABLE(AcDbLayerTable, kLayerTable)
TAVRIK_DEFINE_GET_TABLE(AcDbTextStyleTable, kTextStyleTable)
TAVRIK_DEFINE_GET_TABLE(AcDbLinetypeTable, kLinetypeTable)
TAVRIK_DEFINE_GET_TABLE(AcDbDimStyleTable, kDimStyleTable)
TAVRIK_DEFINE_GET_TABLE(AcDbViewTable, kViewTable)
TAVRIK_DEFINE_GET_TABLE(AcDbViewportTable, kViewportTable)
TAVRIK_DEFINE_GET_TABLE(AcDbRegAppTable, kRegAppTable)
TAVRIK_DEFINE_GET_TABLE(AcDbUCSTable, kUCSTable)

AcDbObjectId AcDbDatabase::blockId(const std::wstring& name) const {
    AcDbObjectId tableId = m_tables[kBlockTable];
    if (!tableId.isValid()) return AcDbObjectId::kNull;
    AcDbObjectId id;
    static_cast<AcDbSymbolTable*>(tableId.stub()->object.get())->getAt(name, id);
    return id;
}

// ---- The default drawing ----

namespace {
template <typename Table>
AcDbObjectId addTable(AcDbDatabase& db, AcDbDatabase::TableKind kind) {
    AcDbObjectId id;
    auto* table = new Table();
    db.addAcDbObject(id, table);
    table->close();
    db.setTableId(kind, id);
    return id;
}

template <typename Record>
AcDbObjectId addRecord(AcDbObjectId tableId, Record* record, const std::wstring& name) {
    record->setName(name);
    AcDbSymbolTable* table = nullptr;
    AcDbObjectId id;
    if (acdbOpenObject(table, tableId, AcDb::kForWrite) != Acad::eOk) {
        delete record;
        return id;
    }
    if (table->add(id, record) == Acad::eOk)
        record->close();
    else
        delete record;
    table->close();
    return id;
}
}  // namespace

void AcDbDatabase::buildDefaultDrawing() {
    AcDbObjectId blocks = addTable<AcDbBlockTable>(*this, kBlockTable);
    AcDbObjectId layers = addTable<AcDbLayerTable>(*this, kLayerTable);
    AcDbObjectId styles = addTable<AcDbTextStyleTable>(*this, kTextStyleTable);
    AcDbObjectId linetypes = addTable<AcDbLinetypeTable>(*this, kLinetypeTable);
    AcDbObjectId dimstyles = addTable<AcDbDimStyleTable>(*this, kDimStyleTable);
    addTable<AcDbViewTable>(*this, kViewTable);
    AcDbObjectId viewports = addTable<AcDbViewportTable>(*this, kViewportTable);
    AcDbObjectId regapps = addTable<AcDbRegAppTable>(*this, kRegAppTable);
    addTable<AcDbUCSTable>(*this, kUCSTable);

    addRecord(linetypes, new AcDbLinetypeTableRecord(), L"ByBlock");
    m_celtype = addRecord(linetypes, new AcDbLinetypeTableRecord(), L"ByLayer");
    auto* continuous = new AcDbLinetypeTableRecord();
    continuous->setComments(L"Solid line");
    AcDbObjectId continuousId = addRecord(linetypes, continuous, L"Continuous");

    auto* zero = new AcDbLayerTableRecord();
    zero->setLinetypeObjectId(continuousId);
    m_clayer = addRecord(layers, zero, L"0");
    m_textstyle = addRecord(styles, new AcDbTextStyleTableRecord(), L"Standard");
    m_dimstyle = addRecord(dimstyles, new AcDbDimStyleTableRecord(), L"Standard");
    addRecord(regapps, new AcDbRegAppTableRecord(), L"ACAD");
    addRecord(viewports, new AcDbViewportTableRecord(), L"*Active");
    addRecord(blocks, new AcDbBlockTableRecord(), ACDB_MODEL_SPACE);
    addRecord(blocks, new AcDbBlockTableRecord(), ACDB_PAPER_SPACE);

    auto* named = new AcDbDictionary();
    addAcDbObject(m_namedObjects, named);
    AcDbObjectId groups;
    named->setAt(L"ACAD_GROUP", new AcDbDictionary(), groups);
    named->close();
    if (AcDbObject* group = groups.stub()->object.get()) group->close();
}

// ---- Extents ----

Acad::ErrorStatus AcDbDatabase::updateExt(bool) {
    AcDbExtents box;
    AcDbObjectId model = modelSpaceId();
    if (model.isValid())
        box.addBlockExt(static_cast<AcDbBlockTableRecord*>(model.stub()->object.get()));
    m_extmin = box.minPoint();
    m_extmax = box.maxPoint();
    return Acad::eOk;
}

// ---- Files ----

Acad::ErrorStatus AcDbDatabase::getFilename(const ACHAR*& fileName) const {
    fileName = m_filename.c_str();
    return m_filename.empty() ? Acad::eNoFileName : Acad::eOk;
}
