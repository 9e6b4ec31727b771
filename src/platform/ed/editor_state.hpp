#pragma once
// The one home of the editor side's process state: loaded modules, the command stack, LISP
// functions, documents, application flags, the progress meter and the input source. Tests rebuild it fresh with
// ResetEditorState().
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/db/object_id.hpp"
#include "platform/ed/commands.hpp"
#include "platform/ed/documents.hpp"
#include "platform/ed/input.hpp"
#include "platform/ed/modules.hpp"
#include "platform/ed/resbuf.hpp"
#include "platform/ed/status_bar.hpp"
#include "platform/ed/views.hpp"

struct LispFunction {
    std::wstring name;
    int functionCode = 0;
    void* appId = nullptr;          // the module that defined it
    int (*function)() = nullptr;    // set by acedRegFunc
};

struct ApplicationFlags {
    bool unlocked = false;
    bool mdiAware = false;
};

// An answer waiting for the next prompt: arguments of acedCommand. A pause asks the user; a
// selection answers a prompt for objects.
struct PendingAnswer {
    std::wstring text;
    bool pause = false;
    bool isSelection = false;
    AcDbObjectIdArray selection;
};

// A built-in command of the host (MOVE, COPY and those the host program adds).
struct HostCommand {
    std::wstring name;
    std::wstring help;
    void (*function)() = nullptr;
};

struct EditorState {
    std::vector<LoadedModule> modules;
    void* currentAppId = nullptr;  // the module whose message is being handled
    std::vector<AcEdCommandRecord> commands;
    std::vector<LispFunction> lispFunctions;
    int currentFunctionCode = -1;  // during a LISP call
    std::map<const void*, ApplicationFlags> applications;
    std::vector<std::unique_ptr<AcApDocument>> documents;
    AcApDocument* currentDocument = nullptr;
    std::vector<AcApDocManagerReactor*> reactors;
    std::map<const AcDbDatabase*, int> dbmod;
    bool applicationContext = false;
    ProgressMeter progress;
    bool drawProgress = false;  // true when stderr is a terminal
    HostInputSource input;      // the command line's source of lines
    CurrentViewRecord currentView;
    int defaultSaveFormat = 24;
    std::map<std::wstring, resbuf> systemVariables;  // numbers and points only, no strings
    // Prompts: the next acedInitGet's bits and keywords, the last keyword given, and the
    // answers that acedCommand queued.
    int initGetBits = 0;
    std::wstring initGetKeywords;
    std::wstring lastKeyword;
    std::deque<PendingAnswer> pendingAnswers;
    // Selection sets by number, the pick-first set and the set of the last selection.
    std::map<std::int64_t, AcDbObjectIdArray> selectionSets;
    std::int64_t nextSelectionSet = 1;
    AcDbObjectIdArray pickFirst;
    AcDbObjectIdArray previousSelection;
    // A LISP call: its arguments and the value it returns.
    resbuf* lispArguments = nullptr;
    resbuf* lispResult = nullptr;
    std::vector<HostCommand> hostCommands;
};

EditorState& Editor();
void ResetEditorState();
