#pragma once
// Loading modules as the host does: the shared object is opened (its module-level objects are
// built), then kInitAppMsg goes through its acrxEntryPoint with the module's handle as the
// application id, then kLoadDwgMsg for each open document. Later messages go the same way.
#include <filesystem>
#include <string>

#include "platform/ed/rxapp.hpp"

struct LoadedModule {
    std::filesystem::path path;
    void* handle = nullptr;
    AcRxEntryPointFunction entryPoint = nullptr;
    int apiVersion = 0;
};

// False with a message when the file does not load or lacks acrxEntryPoint.
bool LoadHostModule(const std::filesystem::path& path, std::string& error);
AcRx::AppRetCode SendModuleMessage(const LoadedModule& module, AcRx::AppMsgCode message);
// Sends kUnloadDwgMsg and kUnloadAppMsg to every module, last loaded first, and closes them.
void UnloadHostModules();
