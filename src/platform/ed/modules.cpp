#include "platform/ed/modules.hpp"

#include <dlfcn.h>

#include "platform/ed/editor_state.hpp"

AcRx::AppRetCode SendModuleMessage(const LoadedModule& module, AcRx::AppMsgCode message) {
    void* saved = Editor().currentAppId;
    Editor().currentAppId = module.handle;
    AcRx::AppRetCode result = module.entryPoint(message, module.handle);
    Editor().currentAppId = saved;
    return result;
}

bool LoadHostModule(const std::filesystem::path& path, std::string& error) {
    void* handle = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        error = ::dlerror();
        return false;
    }
    auto entryPoint = reinterpret_cast<AcRxEntryPointFunction>(::dlsym(handle, "acrxEntryPoint"));
    if (!entryPoint) {
        error = path.string() + " has no acrxEntryPoint";
        ::dlclose(handle);
        return false;
    }
    auto version = reinterpret_cast<AcRxApiVersionFunction>(::dlsym(handle, "acrxGetApiVersion"));
    LoadedModule module{path, handle, entryPoint, version ? version() : 0};
    Editor().modules.push_back(module);
    SendModuleMessage(module, AcRx::kInitAppMsg);
    for (size_t i = 0; i < Editor().documents.size(); ++i) SendModuleMessage(module, AcRx::kLoadDwgMsg);
    return true;
}

void UnloadHostModules() {
    EditorState& state = Editor();
    while (!state.modules.empty()) {
        LoadedModule module = state.modules.back();
        for (size_t i = 0; i < state.documents.size(); ++i) SendModuleMessage(module, AcRx::kUnloadDwgMsg);
        SendModuleMessage(module, AcRx::kUnloadAppMsg);
        state.modules.pop_back();
        ::dlclose(module.handle);
    }
}
