#pragma once
#include <memory>
#include <vector>

#include "platform/db/entity.hpp"

class AcDbAttribute;

// Iterates the attributes owned by a block reference: by id when the reference is in a
// database, by pointer when it is not (an exploded nested reference still holds its own).
class AcDbObjectIterator {
public:
    explicit AcDbObjectIterator(AcDbObjectIdArray ids) : m_ids(std::move(ids)) {}
    explicit AcDbObjectIterator(std::vector<AcDbEntity*> entities)
        : m_entities(std::move(entities)) {}
    bool done() const { return m_index >= m_ids.length() + static_cast<int>(m_entities.size()); }
    void step() { ++m_index; }
    void start() { m_index = 0; }
    AcDbObjectId objectId() const {
        return m_index < m_ids.length() ? m_ids[m_index] : AcDbObjectId::kNull;
    }
    // The entity at the current place, not opened (the host hands the pointer out as is).
    AcDbEntity* entity() const;

private:
    AcDbObjectIdArray m_ids;
    std::vector<AcDbEntity*> m_entities;
    int m_index = 0;
};

// An insertion of a block: position, scale, rotation about the normal, and attributes.
class AcDbBlockReference : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(AcDbBlockReference)
    AcDbBlockReference() = default;
    AcDbBlockReference(const AcGePoint3d& position, AcDbObjectId blockTableRecord)
        : m_position(position), m_block(blockTableRecord) {}
    ~AcDbBlockReference() override;

    AcDbObjectId blockTableRecord() const { return m_block; }
    Acad::ErrorStatus setBlockTableRecord(AcDbObjectId id) { m_block = id; return Acad::eOk; }
    AcGePoint3d position() const { return m_position; }
    Acad::ErrorStatus setPosition(const AcGePoint3d& p) { m_position = p; return Acad::eOk; }
    AcGeScale3d scaleFactors() const { return m_scale; }
    Acad::ErrorStatus setScaleFactors(const AcGeScale3d& s);
    double rotation() const { return m_rotation; }
    Acad::ErrorStatus setRotation(double a) { m_rotation = a; return Acad::eOk; }
    AcGeVector3d normal() const { return m_normal; }
    Acad::ErrorStatus setNormal(const AcGeVector3d& n) { m_normal = n.normal(); return Acad::eOk; }
    // Block coordinates to world: base point to origin, scale, rotate, to the normal's plane,
    // to the position.
    AcGeMatrix3d blockTransform() const;
    Acad::ErrorStatus setBlockTransform(const AcGeMatrix3d& m);

    // Attributes: appended ones are owned by the reference (it must be database-resident and
    // open for write). The iterator is new, owned by the caller.
    Acad::ErrorStatus appendAttribute(AcDbAttribute* attribute);
    Acad::ErrorStatus appendAttribute(AcDbObjectId& id, AcDbAttribute* attribute);
    AcDbObjectIterator* attributeIterator() const;
    const AcDbObjectIdArray& attributeIds() const { return m_attributes; }
    // Lets a reader of a drawing file attach an attribute it has already added.
    void attachAttribute(AcDbObjectId id) { m_attributes.append(id); }
    // Attributes of a reference that is not in a database yet (explode makes such nested
    // references); they join the reference's database when it is appended to a block.
    void holdAttribute(AcDbEntity* attribute);
    Acad::ErrorStatus addHeldAttributes();
    // The SEQEND record that closes the attributes in a drawing file.
    AcDbHandle seqEndHandle() const { return m_seqEnd; }
    void setSeqEndHandle(AcDbHandle h) { m_seqEnd = h; }
    AcDbRawTags& seqEndTags() { return m_seqEndTags; }
    const AcDbRawTags& seqEndTags() const { return m_seqEndTags; }

    // The block's entities (erased ones excepted) and the attributes, transformed.
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus transformBy(const AcGeMatrix3d& xform) override;
    // Copies of the block's entities under blockTransform(); attribute definitions are left
    // out, the reference's attributes come out as texts, and a nested reference comes out with
    // copies of its attributes.
    Acad::ErrorStatus explode(AcDbVoidPtrArray& entitySet) const override;
    Acad::ErrorStatus getStretchPoints(AcGePoint3dArray& points) const override;
    void collectReferences(AcDbObjectIdArray& refs) const override;
    void remapReferences(const AcDbIdMapper& map) override;

protected:
    AcDbBlockReference(const AcDbBlockReference&);

private:
    AcGePoint3d m_position;
    AcDbObjectId m_block;
    AcGeScale3d m_scale;
    double m_rotation = 0.0;
    AcGeVector3d m_normal = AcGeVector3d::kZAxis;
    AcDbObjectIdArray m_attributes;
    std::vector<std::unique_ptr<AcDbEntity>> m_heldAttributes;
    AcDbHandle m_seqEnd;
    AcDbRawTags m_seqEndTags;
};

// A rectangular array of insertions (MINSERT).
class AcDbMInsertBlock : public AcDbBlockReference {
public:
    ACRX_DECLARE_MEMBERS(AcDbMInsertBlock)
    AcDbMInsertBlock() = default;
    int columns() const { return m_columns; }
    void setColumns(int n) { m_columns = n; }
    int rows() const { return m_rows; }
    void setRows(int n) { m_rows = n; }
    double columnSpacing() const { return m_columnSpacing; }
    void setColumnSpacing(double d) { m_columnSpacing = d; }
    double rowSpacing() const { return m_rowSpacing; }
    void setRowSpacing(double d) { m_rowSpacing = d; }

private:
    int m_columns = 1;
    int m_rows = 1;
    double m_columnSpacing = 0.0;
    double m_rowSpacing = 0.0;
};
