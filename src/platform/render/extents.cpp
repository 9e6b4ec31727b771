// The box of what the picture shows, for entities whose box the database does not measure:
// dimensions by their graphics block, hatches by their loops, solids by their corners; and
// multi-line texts as they are drawn, with their format codes.
#include "platform/db/block_table_record.hpp"
#include "platform/db/carried.hpp"
#include "platform/db/database.hpp"
#include "platform/db/dimension.hpp"
#include "platform/db/mtext.hpp"
#include "platform/render/canvas.hpp"

namespace tavrik::render {

namespace {

bool BlockExtents(Canvas& measure, const AcDbObjectId& blockId, AcDbExtents& box, int depth) {
    AcDbBlockTableRecord* block = nullptr;
    if (depth > 16 || acdbOpenObject(block, blockId, AcDb::kForRead) != Acad::eOk) return false;
    AcDbObjectIdArray ids = block->entityIds();
    block->close();
    bool any = false;
    for (AcDbObjectId id : ids) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) continue;
        AcDbExtents one;
        if (EntityExtents(measure, *entity, one, depth + 1)) {
            box.addExt(one);
            any = true;
        }
        entity->close();
    }
    return any;
}

// The box of the model space's entities on layers that show.
std::optional<Window> VisibleExtents(Canvas& canvas, const AcDbDatabase& db) {
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
        if (!IsHidden(canvas, entity->layer()) && EntityExtents(canvas, *entity, one, 0)) {
            box.addExt(one);
            any = true;
        }
        entity->close();
    }
    if (!any) return std::nullopt;
    return Window{box.minPoint().x, box.minPoint().y, box.maxPoint().x, box.maxPoint().y};
}

}  // namespace

bool EntityExtents(Canvas& measure, const AcDbEntity& entity, AcDbExtents& box, int depth) {
    if (const AcDbDimension* dimension = AcDbDimension::cast(&entity); dimension && !dimension->dimBlockId().isNull())
        return BlockExtents(measure, dimension->dimBlockId(), box, depth);
    if (const AcDbMText* mtext = AcDbMText::cast(&entity)) return MTextExtents(measure, *mtext, box);
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
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 1, 1);
    canvas.cr = cairo_create(surface);
    SelectTextFont(canvas);
    std::optional<Window> window = VisibleExtents(canvas, db);
    cairo_destroy(canvas.cr);
    cairo_surface_destroy(surface);
    return window;
}

}  // namespace tavrik::render
