#include "platform/ed/host_commands.hpp"

#include <cstdarg>
#include <cwchar>

#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/entity.hpp"
#include "platform/ed/commands.hpp"
#include "platform/ed/prompts.hpp"
#include "platform/ed/selection.hpp"
#include "platform/win/text.hpp"

namespace {

// Set while a command started by acedCommand runs: a cancelled prompt ends it with RTCAN.
bool commandCancelled = false;

// The objects to work on: the pick-first set (then cleared), else the user selects.
bool ObjectsToEdit(AcDbObjectIdArray& ids) {
    if (!Editor().pickFirst.isEmpty()) {
        ids = Editor().pickFirst;
        Editor().pickFirst.setLogicalLength(0);
        return true;
    }
    ads_name set;
    int status = acedSSGet(nullptr, nullptr, nullptr, nullptr, set);
    if (status == RTCAN) commandCancelled = true;
    if (status != RTNORM) return false;
    ids = *SelectionSetMembers(set);
    acedSSFree(set);
    return true;
}

// The base point and the second point; Enter at the second uses the base as the displacement.
bool Displacement(AcGeVector3d& move) {
    ads_point base, second;
    int status = acedGetPoint(nullptr, L"\nSpecify base point: ", base);
    if (status != RTNORM) {
        commandCancelled = status == RTCAN;
        return false;
    }
    status = acedGetPoint(base, L"\nSpecify second point or <use first point as displacement>: ", second);
    if (status == RTNONE) {
        move = AcGeVector3d(base[0], base[1], base[2]);
        return true;
    }
    if (status != RTNORM) {
        commandCancelled = status == RTCAN;
        return false;
    }
    move = AcGeVector3d(second[0] - base[0], second[1] - base[1], second[2] - base[2]);
    return true;
}

void MoveCommand() {
    AcDbObjectIdArray ids;
    AcGeVector3d move;
    if (!ObjectsToEdit(ids) || !Displacement(move)) return;
    AcGeMatrix3d shift;
    shift.setToTranslation(move);
    for (const AcDbObjectId& id : ids) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite) != Acad::eOk) continue;
        entity->transformBy(shift);
        entity->close();
    }
}

void CopyCommand() {
    AcDbObjectIdArray ids;
    AcGeVector3d move;
    if (!ObjectsToEdit(ids) || !Displacement(move)) return;
    AcGeMatrix3d shift;
    shift.setToTranslation(move);
    for (const AcDbObjectId& id : ids) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) continue;
        AcDbEntity* copy = nullptr;
        AcDbObjectId owner = entity->ownerId();
        Acad::ErrorStatus es = entity->getTransformedCopy(shift, copy);
        entity->close();
        AcDbBlockTableRecord* block = nullptr;
        if (es != Acad::eOk || acdbOpenObject(block, owner, AcDb::kForWrite) != Acad::eOk) {
            delete copy;
            continue;
        }
        if (block->appendAcDbEntity(copy) == Acad::eOk) copy->close();
        else delete copy;
        block->close();
    }
}

std::wstring PointText(const ads_real* p) {
    wchar_t text[128];
    std::swprintf(text, 128, L"%.17g,%.17g,%.17g", p[0], p[1], p[2]);
    return text;
}

// One argument as a queued answer; false for a type that cannot answer a prompt.
bool QueueArgument(const resbuf* rb) {
    PendingAnswer answer;
    switch (rb->restype) {
        case RTSTR: {
            std::wstring text = rb->resval.rstring ? rb->resval.rstring : L"";
            answer.pause = text == PAUSE;
            answer.text = answer.pause ? L"" : text;
            break;
        }
        case RTPOINT: case RT3DPOINT: {
            ads_point p = {rb->resval.rpoint[0], rb->resval.rpoint[1], rb->restype == RTPOINT ? 0.0 : rb->resval.rpoint[2]};
            answer.text = PointText(p);
            break;
        }
        case RTSHORT: answer.text = std::to_wstring(rb->resval.rint); break;
        case RTLONG: answer.text = std::to_wstring(rb->resval.rlong); break;
        case RTREAL: case RTANG: answer.text = std::to_wstring(rb->resval.rreal); break;
        case RTENAME: case RTPICKS: {
            answer.isSelection = true;
            if (rb->restype == RTPICKS) {
                const AcDbObjectIdArray* members = SelectionSetMembers(rb->resval.rlname);
                if (!members) return false;
                answer.selection = *members;
            } else {
                AcDbObjectId id;
                if (acdbGetObjectId(id, rb->resval.rlname) != RTNORM) return false;
                answer.selection.append(id);
            }
            break;
        }
        default: return false;
    }
    Editor().pendingAnswers.push_back(answer);
    return true;
}

}  // namespace

void RegisterHostCommand(const std::wstring& name, const std::wstring& help, void (*function)()) {
    auto& commands = Editor().hostCommands;
    std::erase_if(commands, [&](const HostCommand& c) { return EqualNoCase(c.name, name); });
    commands.push_back({UpperCase(name), help, function});
}

void RegisterEditingCommands() {
    RegisterHostCommand(L"MOVE", L"moves objects by a base point and a second point", MoveCommand);
    RegisterHostCommand(L"COPY", L"copies objects by a base point and a second point", CopyCommand);
}

const HostCommand* LookupHostCommand(std::wstring name) {
    while (!name.empty() && (name.front() == L'.' || name.front() == L'_')) name.erase(0, 1);
    for (const HostCommand& command : Editor().hostCommands)
        if (EqualNoCase(command.name, name)) return &command;
    return nullptr;
}

const std::vector<HostCommand>& HostCommands() { return Editor().hostCommands; }

int acedCmd(const resbuf* arguments) {
    if (!arguments || arguments->restype != RTSTR || !arguments->resval.rstring) return RTERROR;
    std::wstring name = arguments->resval.rstring;
    void (*function)() = nullptr;
    if (const HostCommand* host = LookupHostCommand(name)) function = host->function;
    else if (const AcEdCommandRecord* module = acedRegCmds->lookupCmd(name.c_str())) function = module->function;
    if (!function) return RTERROR;
    auto saved = std::move(Editor().pendingAnswers);
    Editor().pendingAnswers.clear();
    for (const resbuf* rb = arguments->rbnext; rb; rb = rb->rbnext)
        if (!QueueArgument(rb)) {
            Editor().pendingAnswers = std::move(saved);
            return RTERROR;
        }
    bool outerCancelled = commandCancelled;
    commandCancelled = false;
    function();
    bool cancelled = commandCancelled;
    commandCancelled = outerCancelled;
    Editor().pendingAnswers = std::move(saved);
    return cancelled ? RTCAN : RTNORM;
}

int acedCommand(int restype, ...) {
    va_list args;
    va_start(args, restype);
    resbuf* head = nullptr;
    resbuf** tail = &head;
    bool ok = true;
    for (int type = restype; type != 0 && type != RTNONE; type = va_arg(args, int)) {
        resbuf* rb = acutNewRb(type);
        *tail = rb;
        tail = &rb->rbnext;
        switch (ResbufKind(type)) {
            case RbKind::kString: SetResbufString(rb, va_arg(args, const ACHAR*)); break;
            case RbKind::kReal: rb->resval.rreal = va_arg(args, double); break;
            case RbKind::kShort: rb->resval.rint = static_cast<short>(va_arg(args, int)); break;
            case RbKind::kLong: rb->resval.rlong = va_arg(args, std::int32_t); break;
            case RbKind::kPoint: {
                const ads_real* p = va_arg(args, const ads_real*);
                std::copy(p, p + 3, rb->resval.rpoint);
                break;
            }
            case RbKind::kName: {
                const std::int64_t* n = va_arg(args, const std::int64_t*);
                rb->resval.rlname[0] = n[0];
                rb->resval.rlname[1] = n[1];
                break;
            }
            case RbKind::kNone: ok = false; break;
        }
        if (!ok) break;
    }
    va_end(args);
    int status = ok ? acedCmd(head) : RTERROR;
    acutRelRb(head);
    return status;
}
