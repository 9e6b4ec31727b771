#include "standard/layers_text.hpp"

#include <memory>

#include "platform/db/arc.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/polyline_classic.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/db/text.hpp"
#include "platform/ed/ads.hpp"
#include "platform/ed/utilities.hpp"
#include "platform/ge/plane.hpp"
#include "standard/db_helpers.hpp"
#include "standard/model_space_walk.hpp"

namespace {

// The text of a single-line or multi-line text; false for any other entity.
bool TextOfEntity(const AcDbEntity* entity, std::wstring& text) {
    if (auto* single = AcDbText::cast(entity)) text = single->textString();
    else if (auto* multi = AcDbMText::cast(entity)) text = multi->contents();
    else return false;
    return true;
}

void SetTextStyleOf(AcDbEntity* entity, AcDbObjectId style) {
    if (auto* single = AcDbText::cast(entity)) single->setTextStyle(style);
    else if (auto* multi = AcDbMText::cast(entity)) multi->setTextStyle(style);
}

// The normal of a circle, an arc or a 2D polyline; false for other entities.
bool PlanarNormal(const AcDbEntity* entity, AcGeVector3d& normal) {
    if (auto* circle = AcDbCircle::cast(entity)) normal = circle->normal();
    else if (auto* arc = AcDbArc::cast(entity)) normal = arc->normal();
    else if (auto* polyline = AcDb2dPolyline::cast(entity)) normal = polyline->normal();
    else return false;
    return true;
}

// The first occurrence of each diameter sign becomes "%%c".
std::wstring WithStandardDiameterSign(std::wstring text) {
    static const wchar_t* const kSigns[] = {L"\\U+2205", L"\\U+00D8", L"\u2205", L"\u00D8"};
    for (const wchar_t* sign : kSigns) {
        size_t at = text.find(sign);
        if (at != std::wstring::npos) text.replace(at, std::wstring(sign).size(), L"%%c");
    }
    return text;
}

}  // namespace

int FlipMirroredCurves(AcDbDatabase* db) {
    AcGeMatrix3d mirror;
    mirror.setToMirroring(AcGePlane(AcGePoint3d::kOrigin, AcGeVector3d::kXAxis, AcGeVector3d::kYAxis));
    return WalkModelSpace(db, AcDb::kForWrite, kEndAtFailedOpen, [&](AcDbEntity* entity) {
        AcGeVector3d normal;
        if (PlanarNormal(entity, normal) && (normal * -1.0).isEqualTo(AcGeVector3d::kZAxis))
            entity->transformBy(mirror);
    });
}

int ExplodeMText(AcDbDatabase* db) {
    return WalkModelSpace(db, AcDb::kForWrite, kEndAtFailedOpen, [&](AcDbEntity* entity) {
        if (!AcDbMText::cast(entity)) return;
        AcDbVoidPtrArray pieces;
        entity->explode(pieces);
        entity->erase();
        for (void* piece : pieces) {
            auto* text = static_cast<AcDbEntity*>(piece);
            AcDbObjectId id;
            AppendToModelSpace(db, text, id);
            text->close();
        }
    });
}

int NormalizeDiameterSign(AcDbDatabase* db) {
    return WalkModelSpace(db, AcDb::kForWrite, kEndAtFailedOpen, [](AcDbEntity* entity) {
        auto* text = AcDbText::cast(entity);
        if (!text) return;
        std::wstring normalized = WithStandardDiameterSign(text->textString());
        text->setWidthFactor(1.0);
        text->setTextString(normalized);
    });
}

int ApplyTextStyle(const std::wstring& style, const std::wstring& pattern, AcDbDatabase* db) {
    AcDbTextStyleTable* styles = nullptr;
    if (db->getSymbolTable(styles, AcDb::kForRead) != Acad::eOk) return 16;
    AcDbObjectId styleId;
    Acad::ErrorStatus es = styles->getAt(style, styleId);
    styles->close();
    if (es != Acad::eOk) return 16;
    return WalkModelSpace(db, AcDb::kForWrite, kSkipFailedOpen, [&](AcDbEntity* entity) {
        std::wstring text;
        if (TextOfEntity(entity, text) && acutWcMatch(text.c_str(), pattern.c_str()) == RTNORM)
            SetTextStyleOf(entity, styleId);
    });
}

int SetStyleFonts(const std::wstring& style, AcDbDatabase* db) {
    AcDbTextStyleTable* styles = nullptr;
    if (db->getSymbolTable(styles, AcDb::kForRead) != Acad::eOk) return 16;
    AcDbTextStyleTableRecord* record = nullptr;
    Acad::ErrorStatus es = styles->getAt(style, record, AcDb::kForWrite);
    styles->close();
    if (es != Acad::eOk) return 16;
    record->setFileName(L"gbenor.shx");
    record->setBigFontFileName(L"gbcbig.shx");
    record->close();
    return 0;
}
