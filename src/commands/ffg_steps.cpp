#include "commands/ffg_steps.hpp"

#include "platform/db/database.hpp"
#include "platform/db/entity.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/text.hpp"
#include "platform/ed/selection.hpp"
#include "platform/ed/trans.hpp"
#include "platform/win/text.hpp"
#include "standard/db_helpers.hpp"

namespace {

constexpr short kWorld = 0;
constexpr short kUcs = 1;

AcGePoint3d Turn(const AcGePoint3d& p, short from, short to) {
    resbuf source{}, target{};
    source.restype = target.restype = RTSHORT;
    source.resval.rint = from;
    target.resval.rint = to;
    ads_point in = {p.x, p.y, p.z}, out = {p.x, p.y, p.z};
    acedTrans(in, &source, &target, 0, out);
    return AcGePoint3d(out[0], out[1], out[2]);
}

bool ExtentsOf(AcDbObjectId id, AcGePoint3d& low, AcGePoint3d& high) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) return false;
    AcDbExtents box;
    Acad::ErrorStatus es = entity->getGeomExtents(box);
    entity->close();
    low = WorldToUcs(box.minPoint());
    high = WorldToUcs(box.maxPoint());
    return es == Acad::eOk;
}

// The contents of a multi-line text or the string of a text; false for other entities.
bool TextOf(const AcDbEntity* entity, std::wstring& text) {
    if (auto* mtext = AcDbMText::cast(entity)) {
        text = mtext->contents();
        return true;
    }
    if (auto* single = AcDbText::cast(entity)) {
        text = single->textString();
        return true;
    }
    return false;
}

void SetTextOf(AcDbEntity* entity, const std::wstring& text) {
    if (auto* mtext = AcDbMText::cast(entity)) mtext->setContents(text);
    else if (auto* single = AcDbText::cast(entity)) single->setTextString(text);
}

double HeightOf(const AcDbEntity* entity) {
    if (auto* mtext = AcDbMText::cast(entity)) return mtext->textHeight();
    if (auto* single = AcDbText::cast(entity)) return single->height();
    return 0.0;
}

}  // namespace

AcGePoint3d WorldToUcs(const AcGePoint3d& p) { return Turn(p, kWorld, kUcs); }
AcGePoint3d UcsToWorld(const AcGePoint3d& p) { return Turn(p, kUcs, kWorld); }

bool ReadPickedText(const ads_name text, PickedText& picked) {
    if (acdbGetObjectId(picked.id, text) != RTNORM) return false;
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, picked.id, AcDb::kForRead) != Acad::eOk) return false;
    AcDbExtents box;
    entity->getGeomExtents(box);
    std::wstring value;
    bool isText = TextOf(entity, value);
    entity->close();
    if (!isText) return false;
    picked.search = TrimBlanks(value);
    size_t colon = picked.search.find(L':');
    picked.colon = colon == std::wstring::npos ? -1 : static_cast<long>(colon);
    if (picked.colon >= 1) picked.search = TrimBlanks(picked.search.substr(0, colon));
    picked.low = WorldToUcs(box.minPoint());
    picked.high = WorldToUcs(box.maxPoint());
    return true;
}

bool FindSheet(const AcGePoint3d& point, AcGePoint3d& low, AcGePoint3d& high) {
    resbuf* filter = acutBuildList(RTDXF0, L"insert", 66, 1, 0);
    ads_name sheets = {0, 0};
    int status = acedSSGet(L"X", nullptr, nullptr, filter, sheets);
    acutRelRb(filter);
    if (status != RTNORM) return false;
    std::int32_t length = 0;
    acedSSLength(sheets, &length);
    bool found = false;
    for (std::int32_t i = 0; i < length && !found; ++i) {
        ads_name member;
        AcDbObjectId id;
        if (acedSSName(sheets, i, member) != RTNORM || acdbGetObjectId(id, member) != RTNORM) continue;
        if (!ExtentsOf(id, low, high)) continue;
        found = point.x >= low.x && point.x <= high.x && point.y >= low.y && point.y <= high.y;
    }
    acedSSFree(sheets);
    if (!found) return false;
    low = UcsToWorld(low);
    high = UcsToWorld(high);
    return true;
}

bool FindSameTexts(const std::wstring& search, const AcGePoint3d& low, const AcGePoint3d& high, ads_name set) {
    std::wstring formatted = L"*;" + search + L"*}";
    ads_point lowPoint = {low.x, low.y, low.z}, highPoint = {high.x, high.y, high.z};
    resbuf* filter = acutBuildList(RTDXF0, L"mtext,text", -4, L"<OR", 1, search.c_str(), 1, formatted.c_str(), -4,
                                   L"OR>", -4, L"<AND", -4, L">=,>=,*", 10, lowPoint, -4, L"<=,<=,*", 10, highPoint,
                                   -4, L"AND>", 0);
    int status = acedSSGet(L"X", nullptr, nullptr, filter, set);
    acutRelRb(filter);
    return status == RTNORM;
}

void SetEntityColor(AcDbObjectId id, int color) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite) != Acad::eOk) return;
    entity->setColorIndex(static_cast<std::uint16_t>(color), true);
    entity->close();
}

AcDbObjectId AddCountText(const PickedText& picked, int n) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, picked.id, AcDb::kForRead) != Acad::eOk) return AcDbObjectId::kNull;
    auto* copy = static_cast<AcDbEntity*>(entity->clone());
    entity->close();
    SetTextOf(copy, L"共 " + std::to_wstring(n) + L" 个");
    double h = HeightOf(copy);
    AcDbExtents box;
    copy->getGeomExtents(box);
    AcGePoint3d copyHigh = WorldToUcs(box.maxPoint());
    AcGeMatrix3d shift;
    shift.setToTranslation(AcGeVector3d(picked.low.x - copyHigh.x - h, 0.0, 0.0));
    copy->transformBy(shift);
    AcDbObjectId id;
    AppendToModelSpace(acdbHostApplicationServices()->workingDatabase(), copy, id);
    if (id.isNull()) delete copy;
    else copy->close();
    return id;
}

void ReplaceInText(AcDbObjectId id, const std::wstring& search, const std::wstring& replacement) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite) != Acad::eOk) return;
    std::wstring text;
    if (TextOf(entity, text) && !search.empty()) {
        for (size_t at = text.find(search); at != std::wstring::npos; at = text.find(search, at + replacement.size())) {
            text.replace(at, search.size(), replacement);
        }
        SetTextOf(entity, text);
    }
    entity->close();
}
