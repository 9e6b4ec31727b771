#include "platform/ed/selection.hpp"

#include <cmath>
#include <cwchar>

#include "platform/db/block_table_record.hpp"
#include "platform/db/curve.hpp"
#include "platform/db/database.hpp"
#include "platform/db/entity.hpp"
#include "platform/ed/editor_state.hpp"
#include "platform/ed/prompts.hpp"
#include "platform/ed/ssfilter.hpp"
#include "platform/ed/sysvars.hpp"
#include "platform/win/text.hpp"

namespace {

constexpr double kWindowPixelHeight = 750.0;

AcDbObjectId IdOf(const ads_name name) { return AcDbObjectId(reinterpret_cast<AcDbStub*>(name[0])); }

bool Passes(AcDbObjectId id, const resbuf* filter) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) return false;
    bool passes = EntityPassesFilter(entity, filter);
    entity->close();
    return passes;
}

AcDbObjectIdArray Filtered(const AcDbObjectIdArray& ids, const resbuf* filter) {
    AcDbObjectIdArray kept;
    for (const AcDbObjectId& id : ids)
        if (!id.isErased() && Passes(id, filter)) kept.append(id);
    return kept;
}

bool Extents(AcDbObjectId id, AcDbExtents& box) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) return false;
    bool ok = entity->getGeomExtents(box) == Acad::eOk;
    entity->close();
    return ok;
}

bool Inside(const AcGePoint3d& p, double x0, double y0, double x1, double y1) {
    return p.x >= x0 && p.x <= x1 && p.y >= y0 && p.y <= y1;
}

// W: the whole box inside the window; C: the box meets the window.
AcDbObjectIdArray InWindow(const ads_real* a, const ads_real* b, bool crossing) {
    double x0 = std::min(a[0], b[0]), x1 = std::max(a[0], b[0]);
    double y0 = std::min(a[1], b[1]), y1 = std::max(a[1], b[1]);
    AcDbObjectIdArray found;
    for (const AcDbObjectId& id : ModelSpaceEntities()) {
        AcDbExtents box;
        if (!Extents(id, box)) continue;
        const AcGePoint3d &lo = box.minPoint(), &hi = box.maxPoint();
        bool inside = Inside(lo, x0, y0, x1, y1) && Inside(hi, x0, y0, x1, y1);
        bool meets = lo.x <= x1 && hi.x >= x0 && lo.y <= y1 && hi.y >= y0;
        if (crossing ? meets : inside) found.append(id);
    }
    return found;
}

bool NearGeometry(AcDbObjectId id, const AcGePoint3d& point, double aperture) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) return false;
    bool near = false;
    AcDbExtents box;
    if (entity->getGeomExtents(box) == Acad::eOk) {
        const AcGePoint3d &lo = box.minPoint(), &hi = box.maxPoint();
        near = Inside(point, lo.x - aperture, lo.y - aperture, hi.x + aperture, hi.y + aperture);
        // A curve is hit near its path, not anywhere in its box.
        AcGePoint3d closest;
        if (near && AcDbCurve::cast(entity) &&
            AcDbCurve::cast(entity)->getClosestPointTo(point, closest) == Acad::eOk)
            near = std::hypot(closest.x - point.x, closest.y - point.y) <= aperture;
    }
    entity->close();
    return near;
}

// The user selects objects: points pick, "W"/"C" then two points give a window, "ALL" every
// entity, "^C" cancels, Enter ends.
int SelectInteractively(AcDbObjectIdArray& chosen) {
    for (;;) {
        std::wstring line;
        AcDbObjectIdArray queued;
        Answer answer = ReadAnswer(L"\nSelect objects: ", line, &queued);
        if (answer == Answer::kCancel) return RTCAN;
        if (answer == Answer::kSelection) {
            for (const AcDbObjectId& id : queued) chosen.append(id);
            continue;
        }
        if (line.empty()) return RTNORM;
        ads_point p, q;
        if (EqualNoCase(line, L"ALL")) {
            chosen = ModelSpaceEntities();
        } else if (ParsePoint(line, nullptr, p)) {
            AcDbObjectIdArray hit = EntitiesAtPoint(AcGePoint3d(p[0], p[1], p[2]));
            if (hit.isEmpty()) HostMessage(L"0 found");
            else chosen.append(hit[0]);
        } else if ((EqualNoCase(line, L"W") || EqualNoCase(line, L"C"))) {
            std::wstring corner;
            if (ReadAnswer(L"\nFirst corner: ", corner) == Answer::kCancel) return RTCAN;
            std::wstring other;
            if (!ParsePoint(corner, nullptr, p) || ReadAnswer(L"\nOther corner: ", other) == Answer::kCancel) return RTCAN;
            if (!ParsePoint(other, nullptr, q)) {
                HostMessage(L"Invalid point.");
                continue;
            }
            for (const AcDbObjectId& id : InWindow(p, q, EqualNoCase(line, L"C"))) chosen.append(id);
        } else {
            HostMessage(L"*Invalid selection*\nExpects a point or ALL/W/C");
        }
    }
}

// The entities of the mode, before the filter. False for a mode the host does not know.
bool ModeEntities(std::wstring mode, const void* point1, const void* point2, AcDbObjectIdArray& ids, int& status) {
    if (mode.starts_with(L"_")) mode.erase(0, 1);
    mode = UpperCase(mode);
    auto* a = static_cast<const ads_real*>(point1);
    auto* b = static_cast<const ads_real*>(point2);
    status = RTNORM;
    if (mode.empty() && a) {
        ids = EntitiesAtPoint(AcGePoint3d(a[0], a[1], a[2]));
    } else if (mode.empty()) {
        status = SelectInteractively(ids);
    } else if (mode == L"X") {
        ids = ModelSpaceEntities();
    } else if ((mode == L"W" || mode == L"C") && a && b) {
        ids = InWindow(a, b, mode == L"C");
    } else if (mode == L"I") {
        ids = Editor().pickFirst;
    } else if (mode == L"P") {
        ids = Editor().previousSelection;
    } else if (mode == L"L") {
        AcDbObjectIdArray all = ModelSpaceEntities();
        if (!all.isEmpty()) ids.append(all[all.length() - 1]);
    } else {
        return false;
    }
    return true;
}

}  // namespace

AcDbObjectIdArray ModelSpaceEntities() {
    AcDbObjectIdArray ids;
    AcDbDatabase* db = acdbHostApplicationServices()->workingDatabase();
    AcDbBlockTableRecord* model = nullptr;
    if (!db || acdbOpenObject(model, db->modelSpaceId(), AcDb::kForRead) != Acad::eOk) return ids;
    AcDbBlockTableRecordIterator walk(model, true, true);
    for (; !walk.done(); walk.step()) {
        AcDbObjectId id;
        if (walk.getEntityId(id) == Acad::eOk) ids.append(id);
    }
    model->close();
    return ids;
}

double PickAperture() {
    resbuf box{}, size{};
    acedGetVar(L"PICKBOX", &box);
    acedGetVar(L"VIEWSIZE", &size);
    return box.resval.rint * size.resval.rreal / kWindowPixelHeight;
}

AcDbObjectIdArray EntitiesAtPoint(const AcGePoint3d& point) {
    AcDbObjectIdArray all = ModelSpaceEntities(), hit;
    double aperture = PickAperture();
    for (int i = all.length() - 1; i >= 0; --i)
        if (NearGeometry(all[i], point, aperture)) hit.append(all[i]);
    return hit;
}

int acdbGetAdsName(ads_name name, AcDbObjectId id) {
    if (id.isNull()) return RTERROR;
    name[0] = reinterpret_cast<std::int64_t>(id.stub());
    name[1] = 0;
    return RTNORM;
}

int acdbGetObjectId(AcDbObjectId& id, const ads_name name) {
    if (!name || name[0] == 0 || name[1] != 0) return RTERROR;
    id = IdOf(name);
    return RTNORM;
}

int acdbEntDel(const ads_name name) {
    AcDbObjectId id;
    if (acdbGetObjectId(id, name) != RTNORM) return RTERROR;
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite, true) != Acad::eOk) return RTERROR;
    Acad::ErrorStatus es = entity->erase(!entity->isErased());
    entity->close();
    return es == Acad::eOk ? RTNORM : RTERROR;
}

const AcDbObjectIdArray* SelectionSetMembers(const ads_name set) {
    if (!set || set[1] != 1) return nullptr;
    auto found = Editor().selectionSets.find(set[0]);
    return found == Editor().selectionSets.end() ? nullptr : &found->second;
}

void NewSelectionSet(const AcDbObjectIdArray& ids, ads_name set) {
    set[0] = Editor().nextSelectionSet++;
    set[1] = 1;  // marks a set's name apart from an entity's
    Editor().selectionSets[set[0]] = ids;
}

int acedSSGet(const ACHAR* mode, const void* point1, const void* point2, const resbuf* filter, ads_name set) {
    AcDbObjectIdArray ids;
    int status = RTNORM;
    if (!set || !ModeEntities(mode ? mode : L"", point1, point2, ids, status)) return RTERROR;
    if (status != RTNORM) return status;
    std::wstring problem;
    if (filter && !ids.isEmpty()) {
        AcDbEntity* probe = nullptr;
        if (acdbOpenAcDbEntity(probe, ids[0], AcDb::kForRead) == Acad::eOk) {
            EntityPassesFilter(probe, filter, &problem);
            probe->close();
        }
    }
    if (!problem.empty()) return RTERROR;
    AcDbObjectIdArray kept = Filtered(ids, filter);
    // A pick at a point takes the topmost entity that passes.
    if ((!mode || !*mode) && point1 && kept.length() > 1) kept.setLogicalLength(1);
    if (kept.isEmpty()) return RTERROR;
    NewSelectionSet(kept, set);
    Editor().previousSelection = kept;
    return RTNORM;
}

int acedSSAdd(const ads_name entity, const ads_name set, ads_name result) {
    AcDbObjectIdArray members;
    if (set) {
        const AcDbObjectIdArray* existing = SelectionSetMembers(set);
        if (!existing) return RTERROR;
        members = *existing;
    }
    AcDbObjectId id;
    if (entity && acdbGetObjectId(id, entity) != RTNORM) return RTERROR;
    if (entity && !members.contains(id)) members.append(id);
    if (set) {
        Editor().selectionSets[set[0]] = members;
        result[0] = set[0];
        result[1] = set[1];
    } else {
        NewSelectionSet(members, result);
    }
    return RTNORM;
}

int acedSSName(const ads_name set, std::int32_t index, ads_name entity) {
    const AcDbObjectIdArray* members = SelectionSetMembers(set);
    if (!members || index < 0 || index >= members->length()) return RTERROR;
    return acdbGetAdsName(entity, (*members)[index]);
}

int acedSSLength(const ads_name set, std::int32_t* length) {
    const AcDbObjectIdArray* members = SelectionSetMembers(set);
    if (!members || !length) return RTERROR;
    *length = members->length();
    return RTNORM;
}

int acedSSFree(const ads_name set) {
    if (!SelectionSetMembers(set)) return RTERROR;
    Editor().selectionSets.erase(set[0]);
    return RTNORM;
}

int acedSSSetFirst(const ads_name pickSet, const ads_name) {
    if (!pickSet) {
        Editor().pickFirst.setLogicalLength(0);
        return RTNORM;
    }
    const AcDbObjectIdArray* members = SelectionSetMembers(pickSet);
    if (!members) return RTERROR;
    Editor().pickFirst = *members;
    return RTNORM;
}

int acedSSGetFirst(resbuf** gripSet, resbuf** pickSet) {
    if (gripSet) *gripSet = nullptr;
    if (!pickSet) return RTNORM;
    *pickSet = nullptr;
    if (Editor().pickFirst.isEmpty()) return RTNORM;
    ads_name set;
    NewSelectionSet(Editor().pickFirst, set);
    *pickSet = acutBuildList(RTPICKS, set, 0);
    return RTNORM;
}

int acedEntSel(const ACHAR* prompt, ads_name entity, ads_point point) {
    int bits = 0;
    std::wstring keywords;
    TakeInitGet(bits, keywords);
    for (;;) {
        std::wstring line;
        if (ReadAnswer(prompt ? prompt : L"\nSelect object: ", line) == Answer::kCancel) return RTCAN;
        if (line.empty()) return RTNONE;
        std::wstring keyword = MatchKeyword(line, keywords);
        if (!keyword.empty()) {
            Editor().lastKeyword = keyword;
            return RTKWORD;
        }
        if (!ParsePoint(line, nullptr, point)) {
            HostMessage(keywords.empty() ? L"Invalid point." : L"Point or option keyword required.");
            continue;
        }
        AcDbObjectIdArray hit = EntitiesAtPoint(AcGePoint3d(point[0], point[1], point[2]));
        if (hit.isEmpty()) {
            HostMessage(L"Nothing found at " + line + L".");
            return RTERROR;
        }
        return acdbGetAdsName(entity, hit[0]);
    }
}
