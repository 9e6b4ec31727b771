#include "platform/db/block_table_record.hpp"

#include "platform/db/block_reference.hpp"
#include "platform/db/database.hpp"
#include "platform/db/names.hpp"
#include "platform/db/text.hpp"

ACRX_DEFINE_MEMBERS(AcDbBlockTableRecord, AcDbSymbolTableRecord, L"BLOCK_RECORD")

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbEntity* entity) {
    AcDbObjectId id;
    return appendAcDbEntity(id, entity);
}

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbObjectId& id, AcDbEntity* entity) {
    if (entity == nullptr) return Acad::eNullEntityPointer;
    if (database() == nullptr) return Acad::eNoDatabase;
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (!entity->isNewObject()) return Acad::eAlreadyInDb;
    Acad::ErrorStatus es = database()->addAcDbObject(id, entity);
    if (es != Acad::eOk) return es;
    entity->setOwnerId(objectId());
    m_entities.append(id);
    if (auto* reference = AcDbBlockReference::cast(entity)) return reference->addHeldAttributes();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::newIterator(AcDbBlockTableRecordIterator*& iterator,
                                                    bool atBeginning, bool skipDeleted) const {
    iterator = new AcDbBlockTableRecordIterator(this, atBeginning, skipDeleted);
    return Acad::eOk;
}

bool AcDbBlockTableRecord::isLayout() const {
    std::wstring upper = acdbNameUpper(name());
    return upper == L"*MODEL_SPACE" || upper.rfind(L"*PAPER_SPACE", 0) == 0;
}

bool AcDbBlockTableRecord::hasAttributeDefinitions() const {
    for (const AcDbObjectId& id : m_entities)
        if (!id.isErased() && id.objectClass() == AcDbAttributeDefinition::desc()) return true;
    return false;
}

void AcDbBlockTableRecord::collectReferences(AcDbObjectIdArray& refs) const {
    AcDbSymbolTableRecord::collectReferences(refs);
    if (!m_layout.isNull()) refs.append(m_layout);
}

// ---- Iterator ----
// It keeps the block's id, not a pointer to it, because walks of the model space close the
// block right after asking for the iterator.

namespace {
const AcDbObjectIdArray* entityList(AcDbObjectId block) {
    if (!block.isValid()) return nullptr;
    return &static_cast<AcDbBlockTableRecord*>(block.stub()->object.get())->entityIds();
}
}  // namespace

AcDbBlockTableRecordIterator::AcDbBlockTableRecordIterator(const AcDbBlockTableRecord* block,
                                                           bool atBeginning, bool skipDeleted)
    : m_block(block->objectId()) {
    start(atBeginning, skipDeleted);
}

void AcDbBlockTableRecordIterator::start(bool atBeginning, bool skipDeleted) {
    const AcDbObjectIdArray* ids = entityList(m_block);
    m_index = atBeginning ? 0 : (ids ? ids->length() - 1 : -1);
    if (skipDeleted) skipErased(atBeginning);
}

bool AcDbBlockTableRecordIterator::done() const {
    const AcDbObjectIdArray* ids = entityList(m_block);
    return ids == nullptr || m_index < 0 || m_index >= ids->length();
}

void AcDbBlockTableRecordIterator::step(bool forward, bool skipDeleted) {
    m_index += forward ? 1 : -1;
    if (skipDeleted) skipErased(forward);
}

void AcDbBlockTableRecordIterator::skipErased(bool forward) {
    while (!done() && (*entityList(m_block))[m_index].isErased()) m_index += forward ? 1 : -1;
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::getEntityId(AcDbObjectId& id) const {
    if (done()) return Acad::eIteratorDone;
    id = (*entityList(m_block))[m_index];
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::getEntity(AcDbEntity*& entity,
                                                          AcDb::OpenMode mode,
                                                          bool openErasedEntity) const {
    entity = nullptr;
    AcDbObjectId id;
    Acad::ErrorStatus es = getEntityId(id);
    if (es != Acad::eOk) return es;
    return acdbOpenAcDbEntity(entity, id, mode, openErasedEntity);
}
