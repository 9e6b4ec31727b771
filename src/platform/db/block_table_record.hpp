#pragma once
#include <string>

#include "platform/db/entity.hpp"
#include "platform/db/symbol_tables.hpp"

class AcDbBlockTableRecordIterator;

// A block definition: a named, ordered list of entities with a base point. The two layout
// blocks "*Model_Space" and "*Paper_Space" are blocks too.
class AcDbBlockTableRecord : public AcDbSymbolTableRecord {
public:
    ACRX_DECLARE_MEMBERS(AcDbBlockTableRecord)
    AcDbBlockTableRecord() = default;

    // Adds a new entity (ownership passes to the database) at the end of the block. The block
    // must be database-resident and open for write. The entity is left open for write.
    Acad::ErrorStatus appendAcDbEntity(AcDbEntity* entity);
    Acad::ErrorStatus appendAcDbEntity(AcDbObjectId& id, AcDbEntity* entity);
    Acad::ErrorStatus newIterator(AcDbBlockTableRecordIterator*& iterator,
                                  bool atBeginning = true, bool skipDeleted = true) const;

    AcGePoint3d origin() const { return m_origin; }
    void setOrigin(const AcGePoint3d& p) { m_origin = p; }
    std::wstring comments() const { return m_comments; }
    void setComments(const std::wstring& text) { m_comments = text; }
    std::wstring pathName() const { return m_xrefPath; }
    void setPathName(const std::wstring& path) { m_xrefPath = path; }
    bool isLayout() const;
    bool isAnonymous() const { return !name().empty() && name()[0] == L'*' && !isLayout(); }
    bool hasAttributeDefinitions() const;
    AcDbObjectId getLayoutId() const { return m_layout; }
    void setLayoutId(AcDbObjectId id) { m_layout = id; }

    // All entity ids in order, erased ones included.
    const AcDbObjectIdArray& entityIds() const { return m_entities; }
    // Lets a reader of a drawing file attach an entity it has already added to the database.
    void attachEntity(AcDbObjectId id) { m_entities.append(id); }

    // The BLOCK and ENDBLK records of a drawing file, kept for a lossless write.
    struct FileMarker {
        AcDbHandle handle;
        AcDbRawTags tags;
    };
    FileMarker& blockBegin() { return m_blockBegin; }
    const FileMarker& blockBegin() const { return m_blockBegin; }
    FileMarker& blockEnd() { return m_blockEnd; }
    const FileMarker& blockEnd() const { return m_blockEnd; }

    void collectReferences(AcDbObjectIdArray& refs) const override;

private:
    AcDbObjectIdArray m_entities;
    AcGePoint3d m_origin;
    std::wstring m_comments;
    std::wstring m_xrefPath;
    AcDbObjectId m_layout;
    FileMarker m_blockBegin;
    FileMarker m_blockEnd;
};

// Walks the entities of a block. Entities appended during the walk are reached too.
class AcDbBlockTableRecordIterator {
public:
    AcDbBlockTableRecordIterator(const AcDbBlockTableRecord* block, bool atBeginning,
                                 bool skipDeleted);
    void start(bool atBeginning = true, bool skipDeleted = true);
    bool done() const;
    void step(bool forward = true, bool skipDeleted = true);
    Acad::ErrorStatus getEntityId(AcDbObjectId& id) const;
    Acad::ErrorStatus getEntity(AcDbEntity*& entity, AcDb::OpenMode mode,
                                bool openErasedEntity = false) const;

private:
    void skipErased(bool forward);
    AcDbObjectId m_block;
    int m_index = 0;
};
