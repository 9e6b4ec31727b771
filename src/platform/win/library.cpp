#include "platform/win/library.hpp"

#include <dlfcn.h>

#include "platform/win/paths.hpp"

HMODULE LoadLibraryW(LPCWSTR path) {
    if (!path) return nullptr;
    return static_cast<HMODULE>(::dlopen(ResolvePath(path).c_str(), RTLD_NOW | RTLD_LOCAL));
}

FARPROC GetProcAddress(HMODULE module, LPCSTR name) {
    if (!module || !name) return nullptr;
    return reinterpret_cast<FARPROC>(::dlsym(module, name));
}

BOOL FreeLibrary(HMODULE module) { return module && ::dlclose(module) == 0 ? TRUE : FALSE; }
