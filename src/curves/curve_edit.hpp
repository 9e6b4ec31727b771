#pragma once
// Small edits by id that the curve clean-ups make on the entities they add and remove. Each opens
// the entity, makes one change and closes it; an entity that does not open is passed over and
// the result of the change is not looked at.
#include <string>

#include "platform/db/database.hpp"
#include "platform/db/entity.hpp"

// Appends a new entity to the model space of `db` (block table for read, the model space record
// for write) and closes it. The null id when that fails; the entity is then deleted.
AcDbObjectId AppendToModelOf(AcDbDatabase* db, AcDbEntity* entity);
// The entity's own linetype and layer names; empty when it does not open.
std::wstring LinetypeOfId(AcDbObjectId id);
std::wstring LayerOfId(AcDbObjectId id);
void SetLinetypeOfId(AcDbObjectId id, const std::wstring& name);
void SetLinetypeScaleOfId(AcDbObjectId id, double scale);
void EraseById(AcDbObjectId id);
// The entity's layer, linetype, linetype scale and colour index as they stand.
struct EntityLook {
    std::wstring layer;
    std::wstring linetype;
    double linetypeScale = 0.0;
    int colorIndex = 0;
};
EntityLook LookOf(const AcDbEntity* entity);
