#include "pipeline/sheet_merge.hpp"

#include <algorithm>

#include "pipeline/batch_files.hpp"
#include "pipeline/logs.hpp"
#include "platform/db/block_reference.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/ed/documents.hpp"
#include "platform/ed/utilities.hpp"
#include "platform/ge/matrix3d.hpp"
#include "platform/win/files.hpp"
#include "platform/win/format.hpp"
#include "standard/db_helpers.hpp"
#include "standard/layers_text.hpp"

namespace {

const wchar_t* const kFallbackTarget = L"d:\\Mytool\\temp\\Dorvault.dwg";

void SetWorking(AcDbDatabase* db) { acdbHostApplicationServices()->setWorkingDatabase(db); }

// Reads one finished drawing and inserts it into `merged`. An unreadable drawing is left out,
// and its scratch database is not deleted.
void MergeOneDrawing(AcDbDatabase* merged, const std::wstring& file) {
    auto* scratch = new AcDbDatabase(true, false);
    SetWorking(scratch);
    AppendLogText(FormatHostString(L"读入文件：%s \n", file.c_str()), kCgLogPath);
    Acad::ErrorStatus es = scratch->readDwgFile(file.c_str(), 0x10, false, nullptr);
    AppendLogInt(es, kCgLogPath);
    AppendLogText(L"读入成功\n", kCgLogPath);
    if (es != Acad::eOk) return;
    SetWorking(merged);
    merged->insert(AcGeMatrix3d::kIdentity, scratch, false);
    delete scratch;
}

// When the save left no file at `target`: save at the fallback, tell the user, and name the
// fallback in `target`.
void SaveAtFallback(AcDbDatabase* merged, std::wstring& target) {
    acdbSaveAs2004(merged, kFallbackTarget);
    if (PathFileExistsW(kFallbackTarget)) acutPrintf(L"\n保存 %s 成功!", kFallbackTarget);
    std::wstring message = FormatHostString(L"文件名 %s 无效!\n\n已保存到 %s ", target.c_str(), kFallbackTarget);
    target = kFallbackTarget;
    acedAlert(message.c_str());
}

}  // namespace

void RemoveBadNameCharacters(std::wstring& text) {
    auto removeAll = [&text](wchar_t c) { text.erase(std::remove(text.begin(), text.end(), c), text.end()); };
    removeAll(L'*');
    for (wchar_t c : {L'?', L'<', L'>', L'|', L' '}) removeAll(c);
}

int MergeDrawings(const std::vector<std::wstring>& files, std::wstring& target, int, int) {
    if (files.empty()) return 53;
    AcDbDatabase* remembered = acdbHostApplicationServices()->workingDatabase();
    auto* merged = new AcDbDatabase(true, false);
    acDocManager->lockDocument(acDocManager->curDocument(), AcAp::kWrite, nullptr, nullptr, true);
    for (const std::wstring& file : files) MergeOneDrawing(merged, file);
    SetWorking(merged);
    PurgeLayers(merged);
    PurgeDimStyles(merged);
    PurgeBlocks(merged);
    PurgeLinetypes(merged);
    ApplyTextStyle(L"bar", L"`**`*", merged);
    RemoveBadNameCharacters(target);
    acDocManager->setDefaultFormatForSave(24);
    MakeDirectories(FileFolder(target));
    acdbSaveAs2004(merged, target.c_str());
    if (!PathFileExistsW(target.c_str())) SaveAtFallback(merged, target);
    AppendLogText(target, kCgLogPath);
    SetWorking(remembered);
    delete merged;
    return 0;
}

namespace {

// Reads `file` into a scratch database and inserts it into `db` as the block `name`. 76 when the
// read fails; the scratch database then stays the working one.
int LoadSymbolBlock(AcDbDatabase* db, const std::wstring& file, const std::wstring& name,
                    AcDbObjectId& blockId) {
    AppendLogText(L"建新数据库\n", kCgLogPath);
    auto* scratch = new AcDbDatabase(false, true);
    SetWorking(scratch);
    AppendLogText(L"读入文件" + file + L"\n", kCgLogPath);
    AppendLogText(L"上一次在这里出错，如果这行是最后一行，错误没有解除\n", kCgLogPath);
    Acad::ErrorStatus es = scratch->readDwgFile(file.c_str(), 0x10, false, nullptr);
    AppendLogText(L"错误行已运行通过\n", kCgLogPath);
    if (es != Acad::eOk) return 76;
    AppendLogText(L"开始插入文件 " + file + L"\n", kCgLogPath);
    es = db->insert(blockId, name.c_str(), scratch, true);
    AppendLogText(L"错误信息：", kCgLogPath);
    AppendLogInt(es, kCgLogPath);
    AppendLogText(L"\n", kCgLogPath);
    AppendLogText(L"已插入\n", kCgLogPath);
    SetWorking(db);
    delete scratch;
    return 0;
}

}  // namespace

int InsertDrawingEntities(AcDbDatabase* db, const std::wstring& file, AcDbVoidPtrArray& entities,
                          const AcGePoint3d& position, double scale) {
    std::wstring name = FileTitle(file);
    AppendLogText(L"开始插入文件: " + file + L"\n", kCgLogPath);
    AcDbBlockTable* table = nullptr;
    Acad::ErrorStatus es = db->getSymbolTable(table, AcDb::kForRead);
    AppendLogText(L"取得块表返回值: ", kCgLogPath);
    AppendLogInt(es, kCgLogPath);
    AppendLogText(L"\n", kCgLogPath);
    AppendLogText(L"换孔开始\n", kCgLogPath);
    AcDbObjectId blockId;
    bool loaded = table && table->has(name);
    if (loaded) table->getAt(name, blockId);
    if (table) table->close();
    if (!loaded && LoadSymbolBlock(db, file, name, blockId) != 0) return 76;
    if (blockId.isNull()) return 16;
    AppendLogText(L"打散块", kCgLogPath);
    auto* reference = new AcDbBlockReference(position, blockId);
    reference->setScaleFactors(AcGeScale3d(scale));
    reference->explode(entities);
    AppendLogText(L"已打散", kCgLogPath);
    delete reference;
    return 0;
}
