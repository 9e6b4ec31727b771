#include "standard/sheet_frame.hpp"

#include <algorithm>
#include <memory>

#include "host/module_state.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/line.hpp"
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
