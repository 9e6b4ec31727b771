#include <string>
#include <unordered_map>
#include <unordered_set>

#include "platform/db/block_reference.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/dimension.hpp"
#include "platform/db/names.hpp"
#include "platform/db/text.hpp"

// Copying one database's model space into another. Symbol table records come along by name: a
// name the target has keeps the target's record, others are copied. Blocks are copied with
// their entities; anonymous blocks (dimension pictures, *U blocks) always get a fresh name, as
// their names mean nothing across drawings.

namespace {

AcDbObject* objectOf(AcDbObjectId id) { return id.isValid() ? id.stub()->object.get() : nullptr; }

class Importer {
public:
    Importer(AcDbDatabase& target, AcDbDatabase& source) : m_target(target), m_source(source) {}

    // Copies every live entity of the source's model space into a block of the target.
    Acad::ErrorStatus copyModelSpace(AcDbObjectId targetBlock, const AcGeMatrix3d& xform) {
        auto* model = AcDbBlockTableRecord::cast(objectOf(m_source.modelSpaceId()));
        if (model == nullptr) return Acad::eNullObjectId;
        return copyEntities(*model, targetBlock, xform);
    }

    AcDbObjectId map(AcDbObjectId sourceId) {
        if (sourceId.isNull() || sourceId.database() != &m_source) return sourceId;
        auto found = m_map.find(sourceId.stub());
        if (found != m_map.end()) return found->second;
        AcDbObject* object = objectOf(sourceId);
        if (auto* block = AcDbBlockTableRecord::cast(object)) return importBlock(sourceId, *block);
        if (auto* record = AcDbSymbolTableRecord::cast(object)) return importRecord(sourceId, *record);
        return AcDbObjectId::kNull;  // other objects do not travel
    }

private:
    Acad::ErrorStatus copyEntities(const AcDbBlockTableRecord& from, AcDbObjectId targetBlock,
                                   const AcGeMatrix3d& xform) {
        auto* to = AcDbBlockTableRecord::cast(objectOf(targetBlock));
        if (to == nullptr) return Acad::eNullObjectId;
        bool identity = xform.isEqualTo(AcGeMatrix3d::kIdentity);
        AcDbObjectIdArray ids = from.entityIds();  // the walk may add blocks, not entities here
        for (const AcDbObjectId& id : ids) {
            auto* entity = AcDbEntity::cast(objectOf(id));
            if (entity == nullptr || entity->isErased()) continue;
            AcDbEntity* copy = copyOf(*entity, identity, xform);
            if (copy == nullptr) continue;
            appendTo(*to, copy);
            carryKept(*entity, *copy);
            if (auto* ref = AcDbBlockReference::cast(entity))
                copyAttributes(*ref, *static_cast<AcDbBlockReference*>(copy), identity, xform);
        }
        return Acad::eOk;
    }

    AcDbEntity* copyOf(const AcDbEntity& entity, bool identity, const AcGeMatrix3d& xform) {
        auto* copy = static_cast<AcDbEntity*>(entity.clone());
        copy->remapReferences([this](AcDbObjectId id) { return map(id); });
        importByName(AcDbDatabase::kLayerTable, copy->layer());
        importByName(AcDbDatabase::kLinetypeTable, copy->linetype());
        if (!identity && copy->transformBy(xform) != Acad::eOk) {
            delete copy;
            return nullptr;
        }
        // An untransformed dimension keeps the picture its block brought along.
        if (auto* dim = AcDbDimension::cast(copy); dim != nullptr && identity) dim->markGraphicsCurrent();
        return copy;
    }

    // Appends without the open protocol: the target block may be open for the caller.
    void appendTo(AcDbBlockTableRecord& block, AcDbEntity* entity) {
        AcDbObjectId id;
        m_target.addAcDbObject(id, entity);
        entity->setOwnerId(block.objectId());
        block.attachEntity(id);
        entity->close();
    }

    // A copy of an entity kept whole from a DWG is such an entity too: its record is its head
    // only, which a DXF writer must leave out.
    void carryKept(const AcDbObject& from, const AcDbObject& copy) {
        const auto& kept = m_source.dwgKeptObjects();
        if (kept.empty()) return;
        if (const auto it = kept.find(from.getHandle().value()); it != kept.end())
            m_target.dwgKeptObjects()[copy.getHandle().value()] = it->second;
    }

    void copyAttributes(const AcDbBlockReference& from, AcDbBlockReference& to, bool identity,
                        const AcGeMatrix3d& xform) {
        for (const AcDbObjectId& id : from.attributeIds()) {
            auto* attribute = AcDbAttribute::cast(objectOf(id));
            if (attribute == nullptr || attribute->isErased()) continue;
            AcDbEntity* copy = copyOf(*attribute, identity, xform);
            if (copy == nullptr) continue;
            AcDbObjectId copyId;
            m_target.addAcDbObject(copyId, copy);
            copy->setOwnerId(to.objectId());
            to.attachAttribute(copyId);
            copy->close();
        }
    }

    static AcDbDatabase::TableKind tableKindOf(const AcDbDatabase& db, AcDbObjectId table) {
        for (int k = 0; k < AcDbDatabase::kTableCount; ++k) {
            auto kind = static_cast<AcDbDatabase::TableKind>(k);
            if (db.tableId(kind) == table) return kind;
        }
        return AcDbDatabase::kTableCount;
    }

    static AcDbSymbolTable* table(const AcDbDatabase& db, AcDbDatabase::TableKind kind) {
        return AcDbSymbolTable::cast(objectOf(db.tableId(kind)));
    }

    void importByName(AcDbDatabase::TableKind kind, const std::wstring& name) {
        AcDbSymbolTable* from = table(m_source, kind);
        AcDbObjectId sourceId;
        if (from != nullptr && from->getAt(name, sourceId) == Acad::eOk) map(sourceId);
    }

    AcDbObjectId importRecord(AcDbObjectId sourceId, const AcDbSymbolTableRecord& record) {
        AcDbDatabase::TableKind kind = tableKindOf(m_source, record.ownerId());
        AcDbSymbolTable* to = kind == AcDbDatabase::kTableCount ? nullptr : table(m_target, kind);
        if (to == nullptr) return AcDbObjectId::kNull;
        AcDbObjectId existing;
        if (to->getAt(record.name(), existing) == Acad::eOk) {
            m_map[sourceId.stub()] = existing;
            return existing;
        }
        auto* copy = static_cast<AcDbSymbolTableRecord*>(record.clone());
        AcDbObjectId copyId = attachRecord(*to, copy);
        m_map[sourceId.stub()] = copyId;
        copy->remapReferences([this](AcDbObjectId id) { return map(id); });
        return copyId;
    }

    AcDbObjectId attachRecord(AcDbSymbolTable& to, AcDbSymbolTableRecord* record) {
        AcDbObjectId id;
        m_target.addAcDbObject(id, record);
        record->setOwnerId(to.objectId());
        to.attachRecord(id);
        record->close();
        return id;
    }

    AcDbObjectId importBlock(AcDbObjectId sourceId, const AcDbBlockTableRecord& block) {
        AcDbSymbolTable* blocks = table(m_target, AcDbDatabase::kBlockTable);
        if (blocks == nullptr) return AcDbObjectId::kNull;
        std::wstring name = block.name();
        AcDbObjectId existing;
        bool anonymous = block.isAnonymous();
        if (!anonymous && blocks->getAt(name, existing) == Acad::eOk) {
            m_map[sourceId.stub()] = existing;
            return existing;
        }
        if (anonymous) name = freshAnonymousName(*blocks, name);
        auto* copy = new AcDbBlockTableRecord();
        copy->setName(name);
        copy->setOrigin(block.origin());
        copy->setComments(block.comments());
        AcDbObjectId copyId = attachRecord(*blocks, copy);
        m_map[sourceId.stub()] = copyId;
        copyEntities(block, copyId, AcGeMatrix3d::kIdentity);
        return copyId;
    }

    // The lowest n for which the target has no live block named as `name`'s kind ("*D", "*U",
    // "*X" ...) followed by n. The numbers taken are gathered once per kind and insert, and
    // the search goes on from the last number given: the sheets of a part merged into one
    // drawing bring thousands of anonymous blocks, and a walk from 1 through the whole table
    // for each of them kept a merge of 200 sheets going for over twenty minutes.
    std::wstring freshAnonymousName(const AcDbSymbolTable& blocks, const std::wstring& name) {
        std::wstring kind = name.substr(0, 2);
        auto [numbers, first] = m_anonymousNumbers.try_emplace(acdbNameUpper(kind));
        if (first) numbers->second.taken = NumbersTaken(blocks, kind);
        AnonymousNumbers& used = numbers->second;
        while (used.taken.contains(used.next)) ++used.next;
        used.taken.insert(used.next);
        return kind + std::to_wstring(used.next);
    }

    // The numbers n of the live blocks named `kind` followed by n written without leading zeros.
    static std::unordered_set<long> NumbersTaken(const AcDbSymbolTable& blocks, const std::wstring& kind) {
        std::unordered_set<long> taken;
        for (const AcDbObjectId& id : blocks.recordIds()) {
            auto* record = AcDbSymbolTableRecord::cast(objectOf(id));
            if (record == nullptr || record->isErased()) continue;
            std::wstring name = record->name();
            if (name.size() < 3 || name.size() > 11 || !acdbNamesEqual(name.substr(0, 2), kind)) continue;
            std::wstring digits = name.substr(2);
            if (digits[0] == L'0' || digits.find_first_not_of(L"0123456789") != std::wstring::npos) continue;
            taken.insert(std::stol(digits));
        }
        return taken;
    }

    struct AnonymousNumbers {
        std::unordered_set<long> taken;
        long next = 1;
    };

    AcDbDatabase& m_target;
    AcDbDatabase& m_source;
    std::unordered_map<AcDbStub*, AcDbObjectId> m_map;
    std::unordered_map<std::wstring, AnonymousNumbers> m_anonymousNumbers;  // by upper-case kind
};

}  // namespace

Acad::ErrorStatus AcDbDatabase::insert(const AcGeMatrix3d& xform, AcDbDatabase* source, bool) {
    if (source == nullptr) return Acad::eNullObjectPointer;
    if (source == this) return Acad::eSelfReference;
    AcDbObjectId model = modelSpaceId();
    if (model.isNull()) return Acad::eNullObjectId;
    return Importer(*this, *source).copyModelSpace(model, xform);
}

Acad::ErrorStatus AcDbDatabase::insert(AcDbObjectId& blockId, const ACHAR* blockName,
                                       AcDbDatabase* source, bool) {
    if (source == nullptr) return Acad::eNullObjectPointer;
    if (source == this) return Acad::eSelfReference;
    if (blockName == nullptr || *blockName == L'\0') return Acad::eNullBlockName;
    auto* blocks = AcDbSymbolTable::cast(objectOf(blockTableId()));
    if (blocks == nullptr) return Acad::eNullObjectId;
    if (blocks->has(blockName)) return Acad::eDuplicateRecordName;
    auto* block = new AcDbBlockTableRecord();
    block->setName(blockName);
    AcDbObjectId id;
    addAcDbObject(id, block);
    block->setOwnerId(blocks->objectId());
    blocks->attachRecord(id);
    block->close();
    Acad::ErrorStatus es = Importer(*this, *source).copyModelSpace(id, AcGeMatrix3d::kIdentity);
    if (es == Acad::eOk) blockId = id;
    return es;
}
