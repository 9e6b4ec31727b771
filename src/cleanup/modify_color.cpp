#include "cleanup/modify_color.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "cleanup/class_interface_data.hpp"
#include "curves/box_grid.hpp"
#include "curves/end_clusters.hpp"
#include "platform/db/curve.hpp"
#include "platform/db/extents.hpp"
#include "platform/win/codepage.hpp"

namespace {

enum class ScanState { none, layer, solid, dotted, exclude };

struct Mark {
    const char* text;
    ScanState state;
};

constexpr Mark kMarks[] = {
    {"\"StrLayer\":\"", ScanState::layer},
    {"\"ColorSolid\":\"", ScanState::solid},
    {"\"ColorDotted\":\"", ScanState::dotted},
    {"\"ColorExclude\":[", ScanState::exclude},
};

// The mark that starts at `at`, or nullptr.
const Mark* MarkAt(const std::string& text, size_t at) {
    for (const Mark& mark : kMarks)
        if (text.compare(at, std::strlen(mark.text), mark.text) == 0) return &mark;
    return nullptr;
}

// A value of the working rule finished by a double quote.
void StoreValue(ScanState state, const std::string& token, ColorRule& rule) {
    if (state == ScanState::layer) rule.layer = WideFromAnsi(token);
    if (state == ScanState::solid) rule.colorSolid = RgbTextToColorIndex(token);
    if (state == ScanState::dotted) rule.colorDotted = RgbTextToColorIndex(token);
}

// One working rule serves the whole text: a rule inherits what it leaves out from the one before,
// and each closing "]" of ColorExclude appends a copy of it.
void ScanRules(const std::string& text, AcArray<ColorRule>& rules) {
    ColorRule rule;
    std::string token;
    ScanState state = ScanState::none;
    for (size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        const Mark* mark = c == '"' ? MarkAt(text, i) : nullptr;
        if (mark) {
            token.clear();
            state = mark->state;
            i += std::strlen(mark->text) - 1;
        } else if (state == ScanState::exclude) {
            if (c != ']') {
                token += c;
                continue;
            }
            ParseExcludeColors(token, rule.excludeColors);
            rules.append(rule);
            state = ScanState::none;
        } else if (state != ScanState::none) {
            if (c != '"') {
                token += c;
                continue;
            }
            StoreValue(state, token, rule);
            state = ScanState::none;
        }
    }
}

// The extents of an entity into the corners; an entity without valid extents leaves them as
// they were.
void TakeExtents(const AcDbEntity* entity, AcGePoint3d& low, AcGePoint3d& high) {
    AcDbExtents extents;
    if (entity->getGeomExtents(extents) == Acad::eInvalidExtents) return;
    low = extents.minPoint();
    high = extents.maxPoint();
}

// The records of the entities in order; one that does not open is passed over, and one without
// valid extents keeps the corners of the entity before it.
void CollectColorEntities(ModifyColorSettings& settings, const AcDbObjectIdArray& ids) {
    AcGePoint3d low, high;
    for (const AcDbObjectId& id : ids) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead, false) != Acad::eOk) continue;
        TakeExtents(entity, low, high);
        ColorEntity record;
        record.id = id;
        record.min = low;
        record.max = high;
        record.layer = entity->layer();
        record.color = EffectiveColorIndex(entity);
        record.kind = EntityKindOf(entity);
        record.isSolid = entity->linetype() == settings.solidLinetype;
        settings.entities.append(record);
        entity->close();
    }
}

// Lines, circles, arcs, splines, polylines and ellipses take part; all else does not.
AcDbObjectIdArray CurveIds(const AcDbObjectIdArray& ids) {
    AcDbObjectIdArray kept(0, 8);
    for (const AcDbObjectId& id : ids) {
        int kind = EntityKindOfId(id);
        if (kind == 1 || kind == 3 || kind == 2 || kind == 5 || kind == 4 || kind == 16) kept.append(id);
    }
    return kept;
}

// The lines and arcs of the rule's layer leave the entities and become the chain list.
AcDbObjectIdArray TakeChainCurves(AcArray<ColorEntity>& entities, const std::wstring& layer) {
    AcDbObjectIdArray chain(0, 8);
    AcArray<ColorEntity> rest;
    for (const ColorEntity& record : entities) {
        if ((record.kind == 1 || record.kind == 3) && record.layer == layer)
            chain.append(record.id);
        else
            rest.append(record);
    }
    entities = rest;
    return chain;
}

// The box over the extents of a group's entities. An entity without valid extents counts for
// nothing and is left open for read; a group where none counts leaves the box as it was.
void UnionExtents(const AcDbObjectIdArray& group, AcGePoint3d& boxMin, AcGePoint3d& boxMax) {
    bool any = false;
    AcGePoint3d low, high;
    for (const AcDbObjectId& id : group) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead, false) != Acad::eOk) continue;
        AcDbExtents extents;
        if (entity->getGeomExtents(extents) == Acad::eInvalidExtents) continue;
        entity->close();
        AcGePoint3d a = extents.minPoint(), b = extents.maxPoint();
        if (!any) {
            low = a;
            high = b;
            any = true;
        }
        low = AcGePoint3d(std::min(low.x, a.x), std::min(low.y, a.y), std::min(low.z, a.z));
        high = AcGePoint3d(std::max(high.x, b.x), std::max(high.y, b.y), std::max(high.z, b.z));
    }
    if (!any) return;
    boxMin = low;
    boxMax = high;
}

void SetColor(AcDbObjectId id, int color) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite, false) != Acad::eOk) return;
    entity->setColorIndex(static_cast<std::uint16_t>(color), true);
    entity->close();
}

// Every record inside a chain's box is settled by the first chain that holds it: recoloured,
// or kept by exclusion; either way it leaves the entities. The records are filed in a grid by
// their boxes, so a chain's box visits only the records that can lie inside it. A group whose
// entities give no box keeps the box of the group before.
void RecolorInsideChains(ModifyColorSettings& settings, const ColorRule& rule, AcGePoint3d& boxMin,
                         AcGePoint3d& boxMax) {
    std::vector<FlatBox> boxes;
    for (const ColorEntity& r : settings.entities)
        boxes.push_back({std::min(r.min.x, r.max.x), std::min(r.min.y, r.max.y), std::max(r.min.x, r.max.x),
                         std::max(r.min.y, r.max.y)});
    BoxGrid grid = BuildBoxGrid(boxes);
    std::vector<bool> settled(boxes.size(), false);
    for (const AcDbObjectIdArray& group : rule.groups) {
        UnionExtents(group, boxMin, boxMax);
        for (size_t i : BoxGridCandidates(grid, {boxMin.x, boxMin.y, boxMax.x, boxMax.y}, settings.tolerance)) {
            const ColorEntity& record = settings.entities[static_cast<int>(i)];
            if (settled[i] || !PointInBox(record.min, boxMin, boxMax, settings.tolerance) ||
                !PointInBox(record.max, boxMin, boxMax, settings.tolerance))
                continue;
            settled[i] = true;
            if (!rule.excludeColors.contains(record.color))
                SetColor(record.id, record.isSolid ? rule.colorSolid : rule.colorDotted);
        }
    }
    AcArray<ColorEntity> rest;
    for (int i = 0; i < settings.entities.length(); ++i)
        if (!settled[static_cast<size_t>(i)]) rest.append(settings.entities[i]);
    settings.entities = rest;
}

}  // namespace

bool PointInBox(const AcGePoint3d& p, const AcGePoint3d& boxMin, const AcGePoint3d& boxMax,
                double tolerance) {
    return p.x >= boxMin.x - tolerance && p.x <= boxMax.x + tolerance &&
           p.y >= boxMin.y - tolerance && p.y <= boxMax.y + tolerance;
}

void ParseExcludeColors(const std::string& token, AcArray<int>& colors) {
    colors.removeAll();
    bool inItem = false;
    std::string item;
    for (size_t i = 0; i < token.size(); ++i) {
        char c = token[i];
        if (!inItem) {
            inItem = c == '"';
            item.clear();
            continue;
        }
        if (c != '"') {
            item += c;
            continue;
        }
        // The byte behind the closing quote is passed over, whatever it is.
        ++i;
        colors.append(NearestColorIndex(PackNarrowRgb(item, 128)));
        inItem = false;
    }
}

void ReadModifyColorSettings(ModifyColorSettings& settings) {
    std::wstring file = CadLineIniPath(CleanupGlobals->UserPath);
    std::wstring text;
    IniReadString(file, L"ModifyColor", L"StrJson", text);
    IniReadBool(file, L"ModifyColor", L"BolOpen", settings.BolOpen);
    IniReadString(file, L"public", L"StrDottedLineType", settings.dottedLinetype);
    IniReadString(file, L"public", L"StrSolidLineType", settings.solidLinetype);
    settings.rules.removeAll();
    // The text is scanned as ANSI bytes in a buffer of 1,024 bytes, terminator included.
    std::string bytes = AnsiFromWide(text).substr(0, 1023);
    ScanRules(bytes, settings.rules);
}

AcArray<AcDbObjectIdArray> GroupConnectedCurves(const AcDbObjectIdArray& ids, double tolerance) {
    std::vector<CurveEnds> pending;
    for (const AcDbObjectId& id : ids) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead, false) != Acad::eOk) continue;
        if (auto* curve = AcDbCurve::cast(entity)) {
            CurveEnds ends{id, {}, {}};
            curve->getStartPoint(ends.start);
            curve->getEndPoint(ends.end);
            pending.push_back(ends);
        }
        entity->close();
    }
    AcArray<AcDbObjectIdArray> groups;
    for (const std::vector<size_t>& cluster : ClusterByTouchingEnds(pending, tolerance)) {
        AcDbObjectIdArray group(0, 8);
        for (size_t index : cluster) group.append(pending[index].id);
        groups.append(group);
    }
    return groups;
}

void ModifyColorRun(ModifyColorSettings& settings, AcDbObjectIdArray ids, AcDbDatabase* db) {
    AppendCleanupLog(L"修改颜色开始\n");
    ReadModifyColorSettings(settings);
    settings.BolOpen = true;
    settings.database = db;
    ids = CurveIds(ids);
    settings.tolerance = 0.02;
    settings.entities.removeAll();
    CollectColorEntities(settings, ids);
    // A box that no entity of a group could give stays from the group before.
    AcGePoint3d boxMin, boxMax;
    for (ColorRule& rule : settings.rules) {
        rule.groups = GroupConnectedCurves(TakeChainCurves(settings.entities, rule.layer), 0.02);
        RecolorInsideChains(settings, rule, boxMin, boxMax);
    }
    AppendCleanupLog(L"修改颜色结束\n");
}

void ClassInterfaceData::FunModifyColor() {
    ModifyColorRun(*CleanupGlobals->modifyColor, GetModelSpaceIds(acdbHostApplicationServices()->workingDatabase()),
                   database);
}
