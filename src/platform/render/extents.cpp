// The box of what the picture shows, for entities whose box the database does not measure:
// dimensions by their graphics block, hatches by their loops, solids by their corners.
#include "platform/db/block_table_record.hpp"
#include "platform/db/carried.hpp"
#include "platform/db/database.hpp"
#include "platform/db/dimension.hpp"
#include "platform/render/canvas.hpp"

namespace tavrik::render {

namespace {

bool BlockExtents(const AcDbObjectId& blockId, AcDbExtents& box, int depth) {
    AcDbBlockTableRecord* block = nullptr;
    if (depth > 16 || acdbOpenObject(block, blockId, AcDb::kForRead) != Acad::eOk) return false;
    AcDbObjectIdArray ids = block->entityIds();
    block->close();
    bool any = false;
    for (AcDbObjectId id : ids) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) continue;
        AcDbExtents one;
        if (EntityExtents(*entity, one, depth + 1)) {
            box.addExt(one);
            any = true;
        }
        entity->close();
    }
    return any;
}

}  // namespace

bool EntityExtents(const AcDbEntity& entity, AcDbExtents& box, int depth) {
    if (const AcDbDimension* dimension = AcDbDimension::cast(&entity); dimension && !dimension->dimBlockId().isNull())
        return BlockExtents(dimension->dimBlockId(), box, depth);
    if (entity.getGeomExtents(box) == Acad::eOk) return true;
    if (AcDbHatch::cast(&entity) || AcDbSolid::cast(&entity) || AcDbTrace::cast(&entity)) {
        std::vector<AcGePoint3d> points = OutlinePoints(entity);
        for (const AcGePoint3d& p : points) box.addPoint(p);
        return !points.empty();
    }
    return false;
}

std::optional<Window> ModelExtents(const AcDbDatabase& db) {
    Canvas canvas;
    canvas.db = &db;
    LoadTables(canvas);
    AcDbBlockTableRecord* space = nullptr;
    if (acdbOpenObject(space, db.modelSpaceId(), AcDb::kForRead) != Acad::eOk) return std::nullopt;
    AcDbObjectIdArray ids = space->entityIds();
    space->close();
    AcDbExtents box;
    bool any = false;
    for (AcDbObjectId id : ids) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) continue;
        AcDbExtents one;
        if (!IsHidden(canvas, entity->layer()) && EntityExtents(*entity, one, 0)) {
            box.addExt(one);
            any = true;
        }
        entity->close();
    }
    if (!any) return std::nullopt;
    return Window{box.minPoint().x, box.minPoint().y, box.maxPoint().x, box.maxPoint().y};
}

}  // namespace tavrik::render
