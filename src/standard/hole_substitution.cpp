#include "standard/hole_substitution.hpp"

#include <memory>

#include "platform/db/point_entity.hpp"
#include "standard/db_helpers.hpp"

int CollectPoints(AcDbDatabase* db, AcArray<tPt>& points) {
    AcDbBlockTableRecordIterator* iterator = nullptr;
    int status = OpenModelSpaceIterator(iterator, db);
    if (status != 0) return status;
    std::unique_ptr<AcDbBlockTableRecordIterator> walk(iterator);
    for (walk->start(true, true); !walk->done(); walk->step(true, true)) {
        AcDbEntity* entity = nullptr;
        if (walk->getEntity(entity, AcDb::kForRead) != Acad::eOk) return 16;
        if (auto* point = AcDbPoint::cast(entity)) points.append(tPt{entity->layer(), point->position()});
        entity->close();
    }
    return 0;
}
