#pragma once
// Dynamic libraries: a Windows path to a shared object, loaded with dlopen.
#include "platform/win/wintypes.hpp"

HMODULE LoadLibraryW(LPCWSTR path);  // null when the file is missing or does not load
FARPROC GetProcAddress(HMODULE module, LPCSTR name);
BOOL FreeLibrary(HMODULE module);
