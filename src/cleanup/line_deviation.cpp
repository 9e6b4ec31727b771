// The offset of the polylines of one layer by a distance that their colour selects, to the side
// where the copy does not come out longer than the polyline it replaces.
#include <string>
#include <vector>

#include "cleanup/class_interface_data.hpp"
#include "cleanup/json_text.hpp"
#include "curves/geometry.hpp"

namespace {

struct LineOffsetRule {
    int color = 0;
    double offset = 0.0;
};

// One rule per object; a later member of the same name overrides an earlier one, a missing
// Color gives 0 and a missing VarOffset 0.0.
std::vector<LineOffsetRule> ReadOffsetRules(const std::wstring& text) {
    JsonDocument document;
    JsonDocumentParse(text, document);
    std::vector<LineOffsetRule> rules;
    for (const JsonObject& object : document.objects) {
        LineOffsetRule rule;
        for (const JsonValue& value : object.values) {
            if (value.key == L"Color") rule.color = NearestColorIndex(ParseRgbText(value.textValue));
            if (value.key == L"VarOffset") rule.offset = value.type == kJsonInt ? value.intValue : value.realValue;
        }
        rules.push_back(rule);
    }
    return rules;
}

// The layer of an entity, opened for write as the operation does: a locked layer gives "".
std::wstring LayerForWrite(AcDbObjectId id) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite, false) != Acad::eOk) return L"";
    std::wstring layer = entity->layer();
    entity->close();
    return layer;
}

void EraseEntity(AcDbObjectId id) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite, false) != Acad::eOk) return;
    entity->erase(true);
    entity->close();
}

// The offset curves of an entity, appended to the model space of `db`; empty when the entity
// does not open for write, is no curve or gives no offset.
AcDbObjectIdArray OffsetCurveIntoModelSpace(AcDbObjectId id, double distance, AcDbDatabase* db) {
    AcDbObjectIdArray added(0, 8);
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite, false) != Acad::eOk) return added;
    if (auto* curve = AcDbCurve::cast(entity)) {
        AcDbVoidPtrArray curves;
        curve->getOffsetCurves(distance, curves);
        for (void* made : curves) {
            AcDbObjectId newId = AppendToCleanupModelSpace(db, static_cast<AcDbEntity*>(made));
            if (!newId.isNull()) added.append(newId);
        }
    }
    entity->close();
    return added;
}

// Replaces the polyline by its offset; an offset longer than the polyline (by its first curve)
// is taken back and made to the other side, without a look at what that gives. False when the
// first offset gives nothing: the polyline stays and no later rule is tried.
bool ApplyOffsetRule(AcDbObjectId polyline, double offset, AcDbDatabase* db) {
    AcDbObjectIdArray added = OffsetCurveIntoModelSpace(polyline, offset, db);
    if (added.isEmpty()) return false;
    if (CurveLengthOfId(added[0]) > CurveLengthOfId(polyline)) {
        for (const AcDbObjectId& id : added) EraseEntity(id);
        OffsetCurveIntoModelSpace(polyline, 0.0 - offset, db);
    }
    EraseEntity(polyline);
    return true;
}

}  // namespace

void ClassInterfaceData::FunLineDeviation() {
    std::wstring file = CadLineIniPath(CleanupGlobals->UserPath);
    bool open = false;
    std::wstring json, layer;
    IniReadBool(file, L"LineDeviation", L"BolOpen", open);
    IniReadString(file, L"LineDeviation", L"StrJson", json);
    IniReadString(file, L"LineDeviation", L"StrLayer", layer);
    if (!open) return;
    std::vector<LineOffsetRule> rules = ReadOffsetRules(json);
    // The ids are taken before the walk, so the new polylines are not treated again.
    for (const AcDbObjectId& id : GetModelSpaceIds(acdbHostApplicationServices()->workingDatabase())) {
        if (EntityKindOfId(id) != 4) continue;
        if (LayerForWrite(id) != layer) continue;
        int color = EffectiveColorIndex(id);
        // Once erased, the polyline no longer opens, so a later rule of its colour finds nothing.
        for (const LineOffsetRule& rule : rules) {
            if (rule.color != color) continue;
            if (!ApplyOffsetRule(id, rule.offset, database)) break;
        }
    }
}
