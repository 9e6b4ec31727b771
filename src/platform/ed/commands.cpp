#include "platform/ed/commands.hpp"

#include <algorithm>

#include "platform/ed/editor_state.hpp"
#include "platform/win/text.hpp"

namespace {

std::vector<AcEdCommandRecord>::iterator FindCommand(const ACHAR* group, const ACHAR* global) {
    auto& commands = Editor().commands;
    return std::find_if(commands.begin(), commands.end(), [&](const AcEdCommandRecord& c) {
        return EqualNoCase(c.groupName, group) && EqualNoCase(c.globalName, global);
    });
}

template <typename Field>
const AcEdCommandRecord* FindByName(const ACHAR* name, Field field) {
    if (!name) return nullptr;
    const auto& commands = Editor().commands;
    auto found = std::find_if(commands.begin(), commands.end(),
                              [&](const AcEdCommandRecord& c) { return EqualNoCase(c.*field, name); });
    return found == commands.end() ? nullptr : &*found;
}

}  // namespace

Acad::ErrorStatus AcEdCommandStack::addCommand(const ACHAR* groupName, const ACHAR* globalName,
                                               const ACHAR* localName, int flags,
                                               AcRxFunctionPtr function, AcEdUIContext* uiContext,
                                               int functionCode, HINSTANCE resourceHandle,
                                               AcEdCommand** command) {
    if (command) *command = nullptr;
    if (!groupName || !globalName || !*globalName || !function) return Acad::eInvalidInput;
    if (FindCommand(groupName, globalName) != Editor().commands.end()) return Acad::eDuplicateKey;
    Editor().commands.push_back({groupName, globalName, localName ? localName : globalName, flags,
                                 function, uiContext, functionCode, resourceHandle});
    return Acad::eOk;
}

Acad::ErrorStatus AcEdCommandStack::removeCmd(const ACHAR* groupName, const ACHAR* globalName) {
    if (!groupName || !globalName) return Acad::eInvalidInput;
    auto found = FindCommand(groupName, globalName);
    if (found == Editor().commands.end()) return Acad::eKeyNotFound;
    Editor().commands.erase(found);
    return Acad::eOk;
}

Acad::ErrorStatus AcEdCommandStack::removeGroup(const ACHAR* groupName) {
    if (!groupName) return Acad::eInvalidInput;
    size_t removed = std::erase_if(Editor().commands, [&](const AcEdCommandRecord& c) {
        return EqualNoCase(c.groupName, groupName);
    });
    return removed ? Acad::eOk : Acad::eKeyNotFound;
}

const AcEdCommandRecord* AcEdCommandStack::lookupGlobalCmd(const ACHAR* globalName) const {
    return FindByName(globalName, &AcEdCommandRecord::globalName);
}

const AcEdCommandRecord* AcEdCommandStack::lookupLocalCmd(const ACHAR* localName) const {
    return FindByName(localName, &AcEdCommandRecord::localName);
}

const AcEdCommandRecord* AcEdCommandStack::lookupCmd(const ACHAR* typedName) const {
    if (!typedName) return nullptr;
    if (const AcEdCommandRecord* local = lookupLocalCmd(typedName)) return local;
    if (const AcEdCommandRecord* global = lookupGlobalCmd(typedName)) return global;
    return typedName[0] == L'_' ? lookupGlobalCmd(typedName + 1) : nullptr;
}

AcEdCommandStack* acedCommandStack() {
    static AcEdCommandStack stack;
    return &stack;
}

bool AcRxDynamicLinker::unlockApplication(void* appId) {
    Editor().applications[appId].unlocked = true;
    return true;
}

bool AcRxDynamicLinker::lockApplication(void* appId) {
    Editor().applications[appId].unlocked = false;
    return true;
}

bool AcRxDynamicLinker::isApplicationLocked(const void* appId) const {
    auto found = Editor().applications.find(appId);
    return found == Editor().applications.end() || !found->second.unlocked;
}

bool AcRxDynamicLinker::registerAppMDIAware(void* appId) {
    Editor().applications[appId].mdiAware = true;
    return true;
}

bool AcRxDynamicLinker::registerAppNotMDIAware(void* appId) {
    Editor().applications[appId].mdiAware = false;
    return true;
}

bool AcRxDynamicLinker::isAppMDIAware(const void* appId) const {
    auto found = Editor().applications.find(appId);
    return found != Editor().applications.end() && found->second.mdiAware;
}

AcRxDynamicLinker* acrxDynamicLinkerInstance() {
    static AcRxDynamicLinker linker;
    return &linker;
}
