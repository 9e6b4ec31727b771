#include "standard/hole_substitution.hpp"

#include "platform/db/point_entity.hpp"
#include "standard/model_space_walk.hpp"

int CollectPoints(AcDbDatabase* db, AcArray<tPt>& points) {
    return WalkModelSpace(db, AcDb::kForRead, kEndAtFailedOpen, [&](AcDbEntity* entity) {
        if (auto* point = AcDbPoint::cast(entity)) points.append(tPt{entity->layer(), point->position()});
    });
}
