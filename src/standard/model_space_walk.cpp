#include "standard/model_space_walk.hpp"

#include <memory>

#include "platform/db/block_table_record.hpp"
#include "standard/db_helpers.hpp"

int WalkModelSpace(AcDbDatabase* db, AcDb::OpenMode mode, FailedOpen onFailure,
                   const std::function<void(AcDbEntity*)>& visit) {
    AcDbBlockTableRecordIterator* iterator = nullptr;
    int status = OpenModelSpaceIterator(iterator, db);
    if (status != 0) return status;
    std::unique_ptr<AcDbBlockTableRecordIterator> walk(iterator);
    for (walk->start(true, true); !walk->done(); walk->step(true, true)) {
        AcDbEntity* entity = nullptr;
        if (walk->getEntity(entity, mode) != Acad::eOk) {
            if (onFailure == kEndAtFailedOpen) return 16;
            continue;
        }
        visit(entity);
        entity->close();
    }
    return 0;
}
