#pragma once
// The one home of the editor side's process state: loaded modules, the command stack, LISP
// functions, documents, application flags, the progress meter and the input source. Tests rebuild it fresh with
// ResetEditorState().
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/ed/commands.hpp"
#include "platform/ed/documents.hpp"
#include "platform/ed/input.hpp"
#include "platform/ed/modules.hpp"
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
};

EditorState& Editor();
void ResetEditorState();
