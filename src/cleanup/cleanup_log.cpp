#include "cleanup/cleanup_log.hpp"

#include <cstdio>
#include <memory>

#include "cleanup/cleanup_globals.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/win/codepage.hpp"
#include "platform/win/crt.hpp"

bool LogFileExists(const std::wstring& path) {
    FILE* file = crt::fopen(AnsiFromWide(path).c_str(), "r");
    if (!file) return false;
    std::fclose(file);
    return true;
}

int LogAppend(const std::wstring& path, const std::wstring& text) {
    FILE* file = crt::fopen(AnsiFromWide(path).c_str(), "a+");
    if (!file) return -1;
    char* buffer = CleanupGlobals->helperKit->textBuffer;
    std::string bytes = AnsiFromWide(text).substr(0, sizeof(CleanupHelperKit::textBuffer) - 1);
    std::copy(bytes.begin(), bytes.end(), buffer);
    buffer[bytes.size()] = '\0';
    std::fwrite(buffer, 1, bytes.size(), file);
    std::fclose(file);
    return 0;
}

void AppendCleanupLog(const std::wstring& text) {
    if (LogFileExists(CleanupGlobals->LogPath)) LogAppend(CleanupGlobals->LogPath, text);
}

AcDbObjectIdArray GetModelSpaceIds(AcDbDatabase* db) {
    AcDbObjectIdArray ids(0, 8);
    AcDbBlockTable* blocks = nullptr;
    if (db->getSymbolTable(blocks, AcDb::kForRead) != Acad::eOk) return ids;
    AcDbBlockTableRecord* model = nullptr;
    if (blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForWrite) == Acad::eOk) {
        AcDbBlockTableRecordIterator* iterator = nullptr;
        model->newIterator(iterator, true, true);
        std::unique_ptr<AcDbBlockTableRecordIterator> walk(iterator);
        for (walk->start(true, true); !walk->done(); walk->step(true, true)) {
            AcDbEntity* entity = nullptr;
            if (walk->getEntity(entity, AcDb::kForRead) != Acad::eOk) continue;
            if (!entity->objectId().isNull()) ids.append(entity->objectId());
            entity->close();
        }
        model->close();
    }
    blocks->close();
    return ids;
}

AcDbObjectId AppendToCleanupModelSpace(AcDbDatabase* db, AcDbEntity* entity) {
    AcDbObjectId id;
    AcDbBlockTable* blocks = nullptr;
    AcDbBlockTableRecord* model = nullptr;
    if (db->getSymbolTable(blocks, AcDb::kForRead) == Acad::eOk) {
        if (blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForWrite) == Acad::eOk) {
            if (model->appendAcDbEntity(id, entity) != Acad::eOk) id = AcDbObjectId::kNull;
            model->close();
        }
        blocks->close();
    }
    if (id.isNull()) {
        delete entity;
        return id;
    }
    entity->close();
    return id;
}
