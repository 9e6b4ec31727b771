#include "standard/layers_text.hpp"

#include <memory>

#include "platform/db/mtext.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/db/text.hpp"
#include "platform/ed/ads.hpp"
#include "platform/ed/utilities.hpp"
#include "standard/db_helpers.hpp"

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

}  // namespace

int ApplyTextStyle(const std::wstring& style, const std::wstring& pattern, AcDbDatabase* db) {
    AcDbTextStyleTable* styles = nullptr;
    if (db->getSymbolTable(styles, AcDb::kForRead) != Acad::eOk) return 16;
    AcDbObjectId styleId;
    Acad::ErrorStatus es = styles->getAt(style, styleId);
    styles->close();
    if (es != Acad::eOk) return 16;
    AcDbBlockTableRecordIterator* iterator = nullptr;
    int status = OpenModelSpaceIterator(iterator, db);
    if (status != 0) return status;
    std::unique_ptr<AcDbBlockTableRecordIterator> walk(iterator);
    for (walk->start(true, true); !walk->done(); walk->step(true, true)) {
        AcDbEntity* entity = nullptr;
        // An entity that does not open is passed over.
        if (walk->getEntity(entity, AcDb::kForWrite) != Acad::eOk) continue;
        std::wstring text;
        if (TextOfEntity(entity, text) && acutWcMatch(text.c_str(), pattern.c_str()) == RTNORM)
            SetTextStyleOf(entity, styleId);
        entity->close();
    }
    return 0;
}
