#include "platform/db/entity.hpp"

#include "platform/db/database.hpp"
#include "platform/db/symbol_tables.hpp"

ACRX_DEFINE_MEMBERS(AcDbEntity, AcDbObject, L"")

namespace {
// The database that resolves names for an entity: its own, or the working one while it is new.
AcDbDatabase* resolvingDatabase(const AcDbEntity* entity) {
    if (entity->database() != nullptr) return entity->database();
    return acdbHostApplicationServices()->workingDatabase();
}

// Looked up without the open protocol: a name resolves even while its table is open elsewhere.
AcDbObjectId recordIdByName(AcDbDatabase* db, AcDbDatabase::TableKind kind,
                            const std::wstring& name) {
    if (db == nullptr || !db->tableId(kind).isValid()) return AcDbObjectId::kNull;
    AcDbObjectId id;
    static_cast<AcDbSymbolTable*>(db->tableId(kind).stub()->object.get())->getAt(name, id);
    return id;
}

// The name of a record, or empty when the id does not open.
std::wstring recordName(AcDbObjectId id) {
    AcDbObject* object = nullptr;
    if (acdbOpenAcDbObject(object, id, AcDb::kForRead) != Acad::eOk) return {};
    auto* record = AcDbSymbolTableRecord::cast(object);
    std::wstring name = record ? record->name() : std::wstring{};
    object->close();
    return name;
}
}  // namespace

Acad::ErrorStatus AcDbEntity::writeRefusal() const {
    if (database() == nullptr) return Acad::eOk;
    AcDbObjectId layer = recordIdByName(database(), AcDbDatabase::kLayerTable, m_look.get().layer.str());
    if (layer.isNull()) return Acad::eOk;
    auto* record = AcDbLayerTableRecord::cast(layer.stub()->object.get());
    return record && record->isLocked() ? Acad::eOnLockedLayer : Acad::eOk;
}

AcDbObjectId AcDbEntity::layerId() const {
    return recordIdByName(resolvingDatabase(this), AcDbDatabase::kLayerTable, m_look.get().layer.str());
}

Acad::ErrorStatus AcDbEntity::setLayer(const std::wstring& name, bool) {
    AcDbDatabase* db = resolvingDatabase(this);
    if (db != nullptr && recordIdByName(db, AcDbDatabase::kLayerTable, name).isNull())
        return Acad::eKeyNotFound;
    setLayerName(name);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setLayer(AcDbObjectId layerId, bool) {
    std::wstring name = recordName(layerId);
    if (name.empty()) return Acad::eKeyNotFound;
    setLayerName(name);
    return Acad::eOk;
}

AcDbObjectId AcDbEntity::linetypeId() const {
    return recordIdByName(resolvingDatabase(this), AcDbDatabase::kLinetypeTable, m_look.get().linetype.str());
}

Acad::ErrorStatus AcDbEntity::setLinetype(const std::wstring& name, bool) {
    AcDbDatabase* db = resolvingDatabase(this);
    if (db != nullptr && recordIdByName(db, AcDbDatabase::kLinetypeTable, name).isNull())
        return Acad::eKeyNotFound;
    setLinetypeName(name);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setLinetype(AcDbObjectId linetypeId, bool) {
    std::wstring name = recordName(linetypeId);
    if (name.empty()) return Acad::eKeyNotFound;
    setLinetypeName(name);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setLinetypeScale(double scale, bool) {
    // The host stores a scale of 0.0 as given; only a negative one is refused.
    if (scale < 0.0) return Acad::eBadLinetypeScale;
    m_look.change([&](AcDbEntityLook& look) { look.linetypeScale = scale; });
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setColor(const AcCmColor& color, bool) {
    m_look.change([&](AcDbEntityLook& look) { look.color = color; });
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setColorIndex(std::uint16_t index, bool) {
    if (index > 256) return Acad::eBadColorIndex;
    m_look.change([&](AcDbEntityLook& look) { look.color.setColorIndex(index); });
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setLineWeight(AcDb::LineWeight weight, bool) {
    m_look.change([&](AcDbEntityLook& look) { look.lineWeight = weight; });
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setVisibility(AcDb::Visibility v, bool) {
    m_invisible = v == AcDb::kInvisible;
    return Acad::eOk;
}

void AcDbEntity::setDatabaseDefaults(AcDbDatabase* db) {
    if (db == nullptr) db = acdbHostApplicationServices()->workingDatabase();
    if (db == nullptr) return;
    const std::wstring layer = recordName(db->clayer());
    const std::wstring linetype = recordName(db->celtype());
    m_look.change([&](AcDbEntityLook& look) {
        look.layer = layer.empty() ? L"0" : layer;
        look.linetype = linetype.empty() ? L"BYLAYER" : linetype;
        look.color = db->cecolor();
        look.linetypeScale = db->celtscale();
        look.lineWeight = db->celweight();
    });
}

void AcDbEntity::setPropertiesFrom(const AcDbEntity* other, bool) {
    m_look = other->m_look;
    m_invisible = other->m_invisible;
}

Acad::ErrorStatus AcDbEntity::getGeomExtents(AcDbExtents&) const { return Acad::eInvalidExtents; }

Acad::ErrorStatus AcDbEntity::transformBy(const AcGeMatrix3d&) { return Acad::eNotApplicable; }

Acad::ErrorStatus AcDbEntity::getTransformedCopy(const AcGeMatrix3d& xform,
                                                 AcDbEntity*& copy) const {
    auto* made = static_cast<AcDbEntity*>(clone());
    Acad::ErrorStatus es = made->transformBy(xform);
    if (es != Acad::eOk) {
        delete made;
        return es;
    }
    copy = made;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::explode(AcDbVoidPtrArray&) const { return Acad::eNotApplicable; }

Acad::ErrorStatus AcDbEntity::getStretchPoints(AcGePoint3dArray&) const {
    return Acad::eNotApplicable;
}

void AcDbEntity::collectReferences(AcDbObjectIdArray& refs) const {
    AcDbObject::collectReferences(refs);
    AcDbObjectId layer = layerId();
    if (!layer.isNull()) refs.append(layer);
    AcDbObjectId linetype = linetypeId();
    if (!linetype.isNull()) refs.append(linetype);
}

Acad::ErrorStatus acdbOpenAcDbEntity(AcDbEntity*& entity, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased) {
    entity = nullptr;
    AcDbObject* object = nullptr;
    Acad::ErrorStatus es = acdbOpenAcDbObject(object, id, mode, openErased);
    if (es != Acad::eOk) return es;
    entity = AcDbEntity::cast(object);
    if (entity == nullptr) {
        object->close();
        return Acad::eNotAnEntity;
    }
    return Acad::eOk;
}
