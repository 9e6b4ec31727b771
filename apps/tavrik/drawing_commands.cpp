#include "drawing_commands.hpp"

#include <cmath>
#include <memory>

#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/ed/commands.hpp"
#include "platform/ed/documents.hpp"
#include "platform/ed/editor_state.hpp"
#include "platform/ed/host_commands.hpp"
#include "platform/ed/lisp.hpp"
#include "platform/ed/prompts.hpp"
#include "platform/ed/sysvars.hpp"
#include "platform/ed/views.hpp"
#include "platform/win/messages.hpp"
#include "platform/win/text.hpp"

namespace {

std::unique_ptr<AcDbDatabase> drawing;
AcApDocument* document = nullptr;
bool failed = false;

void Fail(const std::wstring& message) {
    WriteConsoleText(stderr, L"tavrik: " + message + L"\n");
    failed = true;
}

// The view a drawing opens with: its model space's extents, or the metric sheet of a new
// drawing (420 x 297) when it has none.
void ViewWholeDrawing(AcDbDatabase* db) {
    AcDbExtents box;
    AcDbBlockTableRecord* model = nullptr;
    if (acdbOpenObject(model, db->modelSpaceId(), AcDb::kForRead) == Acad::eOk) {
        box.addBlockExt(model);
        model->close();
    }
    AcGePoint3d low(0, 0, 0), high(420, 297, 0);
    if (!box.isEmpty()) low = box.minPoint(), high = box.maxPoint();
    AcDbViewTableRecord view;
    view.setCenterPoint(AcGePoint2d((low.x + high.x) / 2.0, (low.y + high.y) / 2.0));
    view.setWidth(std::max(high.x - low.x, 1e-6));
    view.setHeight(std::max(high.y - low.y, 1e-6));
    acedSetCurrentView(&view, nullptr);
}

void CloseDocument(void*) {
    if (document) acDocManager->appContextCloseDocument(document);
}

void Show(std::unique_ptr<AcDbDatabase> db, const std::wstring& name) {
    acDocManager->executeInApplicationContext(CloseDocument, nullptr);
    Editor().pickFirst.setLogicalLength(0);
    Editor().previousSelection.setLogicalLength(0);
    Editor().selectionSets.clear();
    acdbHostApplicationServices()->setWorkingDatabase(db.get());
    document = OpenHostDocument(db.get(), name);
    drawing = std::move(db);
    ViewWholeDrawing(drawing.get());
}

std::wstring Ask(const std::wstring& prompt) {
    std::wstring line;
    if (ReadAnswer(prompt, line) == Answer::kCancel) return L"";
    return line;
}

bool Save(const std::wstring& name) {
    Acad::ErrorStatus es = drawing->saveAs(name.c_str());
    if (es != Acad::eOk) {
        std::wstring reason = drawing->lastError().empty() ? L"status " + std::to_wstring(es) : drawing->lastError();
        Fail(L"cannot save " + name + L": " + reason);
        return false;
    }
    acdbSetDbmod(drawing.get(), 0);
    HostMessage(L"Saved " + name + L".");
    return true;
}

void OpenCommand() {
    std::wstring name = Ask(L"\nEnter name of drawing to open: ");
    if (!name.empty()) OpenHostDrawing(name);
}

void SaveAsCommand() {
    std::wstring name = Ask(L"\nEnter file name <" + drawing->filename() + L">: ");
    if (name.empty()) name = drawing->filename();
    if (name.empty()) return Fail(L"SAVEAS: no file name");
    if (Save(name)) drawing->setFilename(name);
}

void SaveCommand() {
    if (drawing->filename().empty()) return SaveAsCommand();
    Save(drawing->filename());
}

void HelpCommand() {
    HostMessage(L"Commands of the host:");
    for (const HostCommand& command : HostCommands()) HostMessage(L"  " + command.name + L"  " + command.help);
    HostMessage(L"  QUIT  ends the session without saving");
    HostMessage(L"Commands of the modules (local name, global name):");
    for (const AcEdCommandRecord& command : Editor().commands)
        HostMessage(L"  " + command.localName + L"  " + command.globalName + L"  (" + command.groupName + L")");
    HostMessage(L"LISP functions, typed as (name arguments...):");
    for (const LispFunction& function : Editor().lispFunctions) HostMessage(L"  (" + function.name + L")");
    std::wstring names;
    for (const std::wstring& name : SystemVariableNames()) names += L" " + name;
    HostMessage(L"System variables (type the name to see or set one):" + names);
    HostMessage(L"At a prompt: x,y or x,y,z for a point, @dx,dy relative, Enter for the default,");
    HostMessage(L"Esc or ^C to cancel.");
}

void SetVarCommand() {
    std::wstring name = Ask(L"\nEnter variable name: ");
    if (name.empty()) return;
    if (!IsSystemVariable(name)) return Fail(L"unknown variable name \"" + name + L"\"");
    EditSystemVariable(name);
}

// The typed value as the variable's type asks.
bool ParseValue(const std::wstring& text, short type, resbuf& value) {
    value.restype = type;
    if (type == RT3DPOINT) return ParsePoint(text, nullptr, value.resval.rpoint);
    wchar_t* end = nullptr;
    double number = std::wcstod(text.c_str(), &end);
    if (!end || *end != L'\0' || !std::isfinite(number)) return false;
    if (type == RTREAL) {
        value.resval.rreal = number;
        return true;
    }
    if (number != std::floor(number) || number < -32768 || number > 32767) return false;
    value.resval.rint = static_cast<short>(number);
    return true;
}

}  // namespace

void RegisterDrawingCommands() {
    RegisterHostCommand(L"OPEN", L"opens a drawing in place of the current one", OpenCommand);
    RegisterHostCommand(L"SAVE", L"saves the drawing to its file", SaveCommand);
    RegisterHostCommand(L"SAVEAS", L"saves the drawing to a new file, which it keeps", SaveAsCommand);
    RegisterHostCommand(L"SETVAR", L"shows or sets a system variable", SetVarCommand);
    RegisterHostCommand(L"HELP", L"this list", HelpCommand);
}

void NewHostDrawing() {
    auto db = std::make_unique<AcDbDatabase>(true, false);
    Show(std::move(db), L"Drawing1.dwg");
}

bool OpenHostDrawing(const std::wstring& path) {
    auto db = std::make_unique<AcDbDatabase>(false, true);
    if (db->readDwgFile(path.c_str()) != Acad::eOk) {
        Fail(L"cannot open " + path + L": " + db->lastError());
        return false;
    }
    db->setFilename(path);
    Show(std::move(db), path);
    return true;
}

AcDbDatabase* HostDrawing() { return drawing.get(); }

void CloseHostDrawing() {
    acDocManager->executeInApplicationContext(CloseDocument, nullptr);
    document = nullptr;
    if (acdbHostApplicationServices()->workingDatabase() == drawing.get())
        acdbHostApplicationServices()->setWorkingDatabase(nullptr);
    drawing.reset();
}

void EditSystemVariable(const std::wstring& name) {
    std::wstring key = UpperCase(name);
    if (IsReadOnlySystemVariable(key)) {
        HostMessage(key + L" = " + FormatSystemVariable(key) + L" (read only)");
        return;
    }
    std::wstring answer = Ask(L"\nEnter new value for " + key + L" <" + FormatSystemVariable(key) + L">: ");
    if (answer.empty()) return;
    resbuf current{}, value{};
    acedGetVar(key.c_str(), &current);
    if (!ParseValue(answer, current.restype, value) || acedSetVar(key.c_str(), &value) != RTNORM)
        Fail(L"\"" + answer + L"\" is no value for " + key);
}

bool TakeHostCommandFailure() {
    bool was = failed;
    failed = false;
    return was;
}
