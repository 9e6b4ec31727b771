#include "platform/db/block_reference.hpp"

#include <cmath>

#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/ocs.hpp"
#include "platform/db/text.hpp"

ACRX_DEFINE_MEMBERS(AcDbBlockReference, AcDbEntity, L"INSERT")
ACRX_DEFINE_MEMBERS(AcDbMInsertBlock, AcDbBlockReference, L"INSERT")

AcDbEntity* AcDbObjectIterator::entity() const {
    if (done()) return nullptr;
    if (m_index >= m_ids.length()) return m_entities[m_index - m_ids.length()];
    AcDbObjectId id = objectId();
    return id.isValid() ? AcDbEntity::cast(id.stub()->object.get()) : nullptr;
}

// A copy refers to the same block but owns no attributes: they belong to the original.
AcDbBlockReference::AcDbBlockReference(const AcDbBlockReference& other)
    : AcDbEntity(other),
      m_position(other.m_position),
      m_block(other.m_block),
      m_scale(other.m_scale),
      m_rotation(other.m_rotation),
      m_normal(other.m_normal) {}

AcDbBlockReference::~AcDbBlockReference() = default;

Acad::ErrorStatus AcDbBlockReference::setScaleFactors(const AcGeScale3d& s) {
    if (s.sx == 0.0 || s.sy == 0.0 || s.sz == 0.0) return Acad::eInvalidInput;
    m_scale = s;
    return Acad::eOk;
}

namespace {
AcGePoint3d blockOrigin(AcDbObjectId block) {
    if (!block.isValid()) return AcGePoint3d::kOrigin;
    auto* record = AcDbBlockTableRecord::cast(block.stub()->object.get());
    return record ? record->origin() : AcGePoint3d::kOrigin;
}

// The attributes of a nested reference travel with its exploded copy.
void copyAttributesTo(const AcDbBlockReference& from, AcDbBlockReference& to,
                      const AcGeMatrix3d& xform) {
    for (const AcDbObjectId& id : from.attributeIds()) {
        if (!id.isValid() || id.isErased()) continue;
        AcDbEntity* copy = nullptr;
        auto* attribute = AcDbEntity::cast(id.stub()->object.get());
        if (attribute != nullptr && attribute->getTransformedCopy(xform, copy) == Acad::eOk)
            to.holdAttribute(copy);
    }
}

AcGeMatrix3d scaling(const AcGeScale3d& s) {
    AcGeMatrix3d m;
    m(0, 0) = s.sx;
    m(1, 1) = s.sy;
    m(2, 2) = s.sz;
    return m;
}
}  // namespace

AcGeMatrix3d AcDbBlockReference::blockTransform() const {
    return AcGeMatrix3d::translation(m_position.asVector()) *
           AcGeMatrix3d::planeToWorld(m_normal) *
           AcGeMatrix3d::rotation(m_rotation, AcGeVector3d::kZAxis) * scaling(m_scale) *
           AcGeMatrix3d::translation(-blockOrigin(m_block).asVector());
}

Acad::ErrorStatus AcDbBlockReference::setBlockTransform(const AcGeMatrix3d& m) {
    // Undo the base point and the plane, then read rotation and scales off the rest.
    AcGePoint3d origin = blockOrigin(m_block);
    AcGeVector3d normal = m.apply(m_normal);
    if (normal.isZeroLength()) return Acad::eInvalidInput;
    normal.normalize();
    AcGeMatrix3d local = AcGeMatrix3d::worldToPlane(normal) * m;
    double rotation = std::atan2(local(1, 0), local(0, 0));
    AcGeMatrix3d unrotated = AcGeMatrix3d::rotation(-rotation, AcGeVector3d::kZAxis) * local;
    AcGeScale3d scale(unrotated(0, 0), unrotated(1, 1), unrotated(2, 2));
    if (scale.sx == 0.0 || scale.sy == 0.0 || scale.sz == 0.0) return Acad::eInvalidInput;
    m_position = m.apply(origin);
    m_normal = normal;
    m_rotation = rotation < 0 ? rotation + 2 * M_PI : rotation;
    m_scale = scale;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::appendAttribute(AcDbAttribute* attribute) {
    AcDbObjectId id;
    return appendAttribute(id, attribute);
}

Acad::ErrorStatus AcDbBlockReference::appendAttribute(AcDbObjectId& id, AcDbAttribute* attribute) {
    if (attribute == nullptr) return Acad::eNullEntityPointer;
    if (database() == nullptr) return Acad::eNoDatabase;
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    Acad::ErrorStatus es = database()->addAcDbObject(id, attribute);
    if (es != Acad::eOk) return es;
    attribute->setOwnerId(objectId());
    m_attributes.append(id);
    return Acad::eOk;
}

AcDbObjectIterator* AcDbBlockReference::attributeIterator() const {
    if (m_heldAttributes.empty()) return new AcDbObjectIterator(m_attributes);
    std::vector<AcDbEntity*> held;
    for (const auto& attribute : m_heldAttributes) held.push_back(attribute.get());
    return new AcDbObjectIterator(std::move(held));
}

void AcDbBlockReference::holdAttribute(AcDbEntity* attribute) {
    m_heldAttributes.emplace_back(attribute);
}

Acad::ErrorStatus AcDbBlockReference::addHeldAttributes() {
    if (database() == nullptr) return Acad::eNoDatabase;
    for (auto& attribute : m_heldAttributes) {
        AcDbObjectId id;
        Acad::ErrorStatus es = database()->addAcDbObject(id, attribute.get());
        if (es != Acad::eOk) return es;
        AcDbEntity* added = attribute.release();
        added->setOwnerId(objectId());
        added->close();
        m_attributes.append(id);
    }
    m_heldAttributes.clear();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::getGeomExtents(AcDbExtents& extents) const {
    AcDbVoidPtrArray parts;
    Acad::ErrorStatus es = explode(parts);
    if (es != Acad::eOk) return es;
    extents = AcDbExtents();
    for (void* p : parts) {
        auto* part = static_cast<AcDbEntity*>(p);
        AcDbExtents box;
        if (part->getGeomExtents(box) == Acad::eOk) extents.addExt(box);
        delete part;
    }
    return extents.isEmpty() ? Acad::eInvalidExtents : Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::transformBy(const AcGeMatrix3d& xform) {
    Acad::ErrorStatus es = setBlockTransform(xform * blockTransform());
    if (es != Acad::eOk) return es;
    for (const AcDbObjectId& id : m_attributes)
        if (id.isValid()) static_cast<AcDbEntity*>(id.stub()->object.get())->transformBy(xform);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::explode(AcDbVoidPtrArray& entitySet) const {
    if (!m_block.isValid()) return Acad::eNullObjectId;
    auto* block = AcDbBlockTableRecord::cast(m_block.stub()->object.get());
    if (block == nullptr) return Acad::eWrongObjectType;
    AcGeMatrix3d xform = blockTransform();
    AcDbVoidPtrArray made;
    auto addCopy = [&](const AcDbEntity* source) {
        AcDbEntity* copy = nullptr;
        if (source->getTransformedCopy(xform, copy) != Acad::eOk) return false;
        made.append(copy);
        if (auto* nested = AcDbBlockReference::cast(source))
            copyAttributesTo(*nested, *static_cast<AcDbBlockReference*>(copy), xform);
        return true;
    };
    for (const AcDbObjectId& id : block->entityIds()) {
        if (!id.isValid() || id.isErased()) continue;
        auto* entity = AcDbEntity::cast(id.stub()->object.get());
        if (entity == nullptr || entity->isA() == AcDbAttributeDefinition::desc()) continue;
        if (!addCopy(entity)) {
            for (void* p : made) delete static_cast<AcDbEntity*>(p);
            return Acad::eCannotExplodeEntity;
        }
    }
    // Attributes come out as plain texts carrying their values.
    for (const AcDbObjectId& id : m_attributes) {
        if (!id.isValid() || id.isErased()) continue;
        auto* attribute = static_cast<AcDbAttribute*>(id.stub()->object.get());
        if (attribute->isInvisible()) continue;
        auto* text = new AcDbText(attribute->position(), attribute->textString(),
                                  attribute->textStyle(), attribute->height(),
                                  attribute->rotation());
        text->setPropertiesFrom(attribute);
        text->setNormal(attribute->normal());
        text->setWidthFactor(attribute->widthFactor());
        made.append(text);
    }
    entitySet.append(made);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::getStretchPoints(AcGePoint3dArray& points) const {
    points.append(m_position);
    return Acad::eOk;
}

void AcDbBlockReference::collectReferences(AcDbObjectIdArray& refs) const {
    AcDbEntity::collectReferences(refs);
    if (!m_block.isNull()) refs.append(m_block);
    for (const AcDbObjectId& id : m_attributes) refs.append(id);
}

void AcDbBlockReference::remapReferences(const AcDbIdMapper& map) {
    AcDbEntity::remapReferences(map);
    if (!m_block.isNull()) m_block = map(m_block);
    for (AcDbObjectId& id : m_attributes) id = map(id);
}
