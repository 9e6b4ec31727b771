#include "standard/sheet_frame.hpp"

#include <algorithm>
#include <memory>

#include "host/module_state.hpp"
#include "pipeline/logs.hpp"
#include "platform/db/block_reference.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/line.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/text.hpp"
#include "platform/ed/ads.hpp"
#include "platform/ed/utilities.hpp"
#include "platform/win/text.hpp"
#include "standard/db_helpers.hpp"

namespace {

bool IsOneOfNoCase(const std::wstring& name, const std::vector<std::wstring>& names) {
    return std::any_of(names.begin(), names.end(),
                       [&](const std::wstring& candidate) { return EqualNoCase(name, candidate); });
}

// Walks the model space with entities open for read; `visit` sees each. 16 when the walk
// cannot start or an entity does not open.
template <typename Visit>
int WalkModelSpaceForRead(AcDbDatabase* db, Visit visit) {
    AcDbBlockTableRecordIterator* iterator = nullptr;
    if (OpenModelSpaceIterator(iterator, db) != 0) return 16;
    std::unique_ptr<AcDbBlockTableRecordIterator> walk(iterator);
    for (walk->start(true, true); !walk->done(); walk->step(true, true)) {
        AcDbEntity* entity = nullptr;
        if (walk->getEntity(entity, AcDb::kForRead) != Acad::eOk) return 16;
        visit(entity);
        entity->close();
    }
    return 0;
}

void LogTrace(const std::wstring& text) { AppendLogText(text, kCgLogPath); }

// The text of a single-line or multi-line text and where it stands; false for other entities.
bool TextAndPlace(AcDbEntity* entity, std::wstring& text, AcGePoint3d& place) {
    if (auto* single = AcDbText::cast(entity)) {
        text = single->textString();
        place = single->position();
        return true;
    }
    if (auto* multi = AcDbMText::cast(entity)) {
        text = multi->contents();
        place = multi->location();
        return true;
    }
    return false;
}

bool InBoxOnPlan(const AcGePoint3d& p, const AcDbExtents& box) {
    return box.minPoint().x <= p.x && p.x <= box.maxPoint().x && box.minPoint().y <= p.y &&
           p.y <= box.maxPoint().y;
}

// The frame's block in the drawing: found by name, else read from the file and inserted. A
// failed read leaves the temporary database as the working one (and alive), as the host's
// sequence does; the frame then is not placed.
AcDbObjectId FrameBlock(AcDbDatabase* db, const std::wstring& path, const std::wstring& blockName) {
    AcDbBlockTable* blocks = nullptr;
    AcDbObjectId id;
    if (db->getSymbolTable(blocks, AcDb::kForRead) != Acad::eOk) return id;
    bool known = blocks->has(blockName.c_str());
    if (known) blocks->getAt(blockName.c_str(), id);
    blocks->close();
    if (known) return id;
    auto* source = new AcDbDatabase(false, true);
    acdbHostApplicationServices()->setWorkingDatabase(source);
    if (source->readDwgFile(path.c_str(), 16, false, nullptr) != Acad::eOk) return id;
    Acad::ErrorStatus es = db->insert(id, blockName.c_str(), source, true);
    acdbHostApplicationServices()->setWorkingDatabase(db);
    delete source;
    return es == Acad::eOk ? id : AcDbObjectId::kNull;
}

// Fills the attributes of a nested reference from the first row of its tag; a row that came
// from a text erases that text.
void FillAttributes(AcDbBlockReference* reference, const std::vector<attstr>& rows) {
    std::unique_ptr<AcDbObjectIterator> walk(reference->attributeIterator());
    for (; !walk->done(); walk->step()) {
        auto* attribute = AcDbAttribute::cast(walk->entity());
        if (attribute == nullptr) continue;
        std::wstring tag = UpperCase(attribute->tag());
        auto row = std::find_if(rows.begin(), rows.end(),
                                [&](const attstr& r) { return EqualNoCase(r.tag, tag); });
        if (row != rows.end()) {
            attribute->setTextString(row->value);
            AcDbEntity* source = nullptr;
            if (!row->source.isNull() &&
                acdbOpenAcDbEntity(source, row->source, AcDb::kForWrite) == Acad::eOk) {
                source->erase();
                source->close();
            }
        }
        attribute->close();
    }
}

}  // namespace

int FindSheetMarkers(const std::vector<std::wstring>& layerNames, AcDbDatabase* db,
                     AcDbObjectIdArray& markers) {
    bool found = false;
    int status = WalkModelSpaceForRead(db, [&](AcDbEntity* entity) {
        if (!AcDbCircle::cast(entity) || !IsOneOfNoCase(entity->layer(), layerNames)) return;
        markers.append(entity->objectId());
        found = true;
    });
    return status == 0 && found ? 0 : 16;
}

int CollectSheetEntities(AcDbObjectIdArray& ids, AcDbDatabase* db) {
    const LayerKeys& keys = Module().cadStandardIni.layer;
    const std::vector<std::wstring> layers = {keys.BIGFRAM, keys.USTAND, keys.URECT, keys.FRONT,
                                              keys.LEFT,    keys.TOP,    keys.STAND, keys.RECT};
    return WalkModelSpaceForRead(db, [&](AcDbEntity* entity) {
        if (IsOneOfNoCase(entity->layer(), layers)) ids.append(entity->objectId());
    });
}

int MeasureSheetFrame(const AcGePoint3d& marker, AcDbExtents& frameBox, AcDbDatabase* db) {
    const std::wstring& frameLayer = Module().cadStandardIni.layer.BIGFRAM;
    AcDbExtents box;
    int status = WalkModelSpaceForRead(db, [&](AcDbEntity* entity) {
        auto* line = AcDbLine::cast(entity);
        if (!line || !EqualNoCase(line->layer(), frameLayer)) return;
        AcGePoint3d start = line->startPoint(), end = line->endPoint();
        if (start.distanceTo(marker) > 1e-05 && end.distanceTo(marker) > 1e-05) return;
        box.addPoint(start);
        box.addPoint(end);
    });
    frameBox = box;
    return status;
}

std::wstring MatchFrameName(const std::vector<dwgmatch>& matches, const std::wstring& drawingName) {
    std::wstring name = FileTitle(drawingName);
    for (const dwgmatch& row : matches)
        if (acutWcMatch(name.c_str(), row.pattern.c_str()) == RTNORM) return row.frameFile;
    return L"";
}

int CollectAttributeTexts(AcDbDatabase* db) {
    ModuleState& state = Module();
    const AcDbExtents& frameBox = state.dimensionState.frameBox;
    std::vector<attstr>& rows = state.boxSetting.attributes;
    return WalkModelSpaceForRead(db, [&](AcDbEntity* entity) {
        std::wstring text;
        AcGePoint3d place;
        if (!TextAndPlace(entity, text, place)) return;
        text = TrimBlanks(text);
        size_t colon = text.find(L':');
        if (!InBoxOnPlan(place, frameBox) || colon == std::wstring::npos || colon < 1) return;
        std::vector<std::wstring> tokens;
        SplitString(text, L":", tokens);
        if (tokens.size() >= 2) rows.push_back({tokens[0], tokens[1], entity->objectId()});
    });
}

int InsertSheetFrame(const std::wstring& folder, const AcGePoint3d& position, AcDbObjectIdArray& ids) {
    ModuleState& state = Module();
    const std::wstring& frameName = state.frameName;
    LogTrace(L"\n查找图框");
    LogTrace(frameName);
    if (!FileExists(folder + frameName)) return 16;
    std::wstring path = folder + frameName;
    LogTrace(L"\n图框名为:");
    LogTrace(path);
    // A right trim by the characters of ".DWG", not by the suffix.
    std::wstring blockName = frameName.substr(0, frameName.find_last_not_of(L".DWG") + 1);
    AcDbDatabase* db = state.CurrentDatabase;
    AcDbObjectId block = FrameBlock(db, path, blockName);
    if (block.isNull()) return 0;

    auto* reference = new AcDbBlockReference(position, block);
    AcDbExtents extents;
    reference->getGeomExtents(extents);
    const AcDbExtents& frameBox = state.dimensionState.frameBox;
    double scale = (frameBox.maxPoint().x - frameBox.minPoint().x) /
                   (extents.maxPoint().x - extents.minPoint().x);
    reference->setScaleFactors(AcGeScale3d(scale));
    AcDbVoidPtrArray parts;
    reference->explode(parts);
    delete reference;
    for (void* part : parts) {
        auto* entity = static_cast<AcDbEntity*>(part);
        if (auto* nested = AcDbBlockReference::cast(entity))
            FillAttributes(nested, state.boxSetting.attributes);
        AcDbObjectId id;
        AppendToModelSpace(db, entity, id);
        ids.append(id);
        entity->close();
    }
    return 0;
}
