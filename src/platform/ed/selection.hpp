#pragma once
// Entity names, selection sets and picking. An entity name holds the object id of an entity of
// the working database; a selection set's name holds its number. Picking at a point takes the
// entities whose geometry passes within the pick box: PICKBOX pixels of a drawing window 750
// pixels high that shows VIEWSIZE drawing units (the current view's height).
#include "platform/db/object_id.hpp"
#include "platform/ed/resbuf.hpp"

int acdbGetAdsName(ads_name name, AcDbObjectId id);       // RTNORM, RTERROR for a null id
int acdbGetObjectId(AcDbObjectId& id, const ads_name name);  // RTNORM, RTERROR
// Erases the entity, or brings an erased one back. RTNORM or RTERROR.
int acdbEntDel(const ads_name entity);

// Modes: null (with `point1`: the entity at that point, else the user selects objects),
// "X" every entity of the model space, "W"/"C" the window/crossing of the two points, "I" the
// pick-first set, "L" the last entity, "P" the previous selection; a leading "_" is dropped.
// The filter applies in every mode. RTNORM with a new set, RTERROR when nothing was selected
// or the mode or filter is bad, RTCAN when the user cancelled.
int acedSSGet(const ACHAR* mode, const void* point1, const void* point2, const resbuf* filter, ads_name set);
int acedSSAdd(const ads_name entity, const ads_name set, ads_name result);
int acedSSName(const ads_name set, std::int32_t index, ads_name entity);
int acedSSLength(const ads_name set, std::int32_t* length);
int acedSSFree(const ads_name set);
// Makes the set the pick-first set (grips are not shown by a console host).
int acedSSSetFirst(const ads_name pickSet, const ads_name gripSet);
int acedSSGetFirst(resbuf** gripSet, resbuf** pickSet);
// Prompts for one entity: RTNORM with its name and the picked point, RTKWORD for a keyword of
// the last acedInitGet, RTNONE on Enter, RTERROR when no entity lies at the point, RTCAN.
int acedEntSel(const ACHAR* prompt, ads_name entity, ads_point point);

// The host's side.
AcDbObjectIdArray ModelSpaceEntities();
// The entities at a point, the topmost (last drawn) first.
AcDbObjectIdArray EntitiesAtPoint(const AcGePoint3d& point);
double PickAperture();
// The members of a set, or null for a name that is not a live set.
const AcDbObjectIdArray* SelectionSetMembers(const ads_name set);
// Makes a set of the ids; its name goes to `set`.
void NewSelectionSet(const AcDbObjectIdArray& ids, ads_name set);
