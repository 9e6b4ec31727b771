// The exports of Tavrik.arx. Loading the module builds its module-level objects, which reads
// the configuration; the host's messages then go to the application object.
#include <dlfcn.h>

#include "host/module_state.hpp"

namespace {

// The module's own handle, as the host's loader knows it.
HINSTANCE OwnInstance() {
    Dl_info info{};
    if (!::dladdr(reinterpret_cast<void*>(&OwnInstance), &info) || !info.dli_fname) return nullptr;
    void* handle = ::dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD);
    if (handle) ::dlclose(handle);  // RTLD_NOLOAD took a reference of its own
    return static_cast<HINSTANCE>(handle);
}

struct ModuleAttach {
    ModuleAttach() {
        BuildModuleState();
        Module().moduleInstance = OwnInstance();
    }
};
const ModuleAttach attach;

}  // namespace

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* appId) {
    return Module().app.Dispatch(message, appId);
}

extern "C" int acrxGetApiVersion() { return kTavrikApiVersion; }
