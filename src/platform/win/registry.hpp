#pragma once
// The registry API over the prefix's registry file. Keys open for reading only; a key exists
// when the file names it or any key below it.
#include <cstdint>

#include "platform/win/registry_file.hpp"
#include "platform/win/wintypes.hpp"

inline const HKEY HKEY_CLASSES_ROOT = reinterpret_cast<HKEY>(std::uintptr_t{0x80000000});
inline const HKEY HKEY_CURRENT_USER = reinterpret_cast<HKEY>(std::uintptr_t{0x80000001});
inline const HKEY HKEY_LOCAL_MACHINE = reinterpret_cast<HKEY>(std::uintptr_t{0x80000002});
inline const HKEY HKEY_USERS = reinterpret_cast<HKEY>(std::uintptr_t{0x80000003});

inline constexpr REGSAM KEY_QUERY_VALUE = 0x0001;
inline constexpr REGSAM KEY_READ = 0x20019;

LONG RegOpenKeyExW(HKEY parent, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result);
// With data null, reports type and size. With a buffer smaller than the value, reports the
// size and gives ERROR_MORE_DATA. Sizes are in bytes; strings are wchar_t with terminator.
LONG RegQueryValueExW(HKEY key, LPCWSTR valueName, LPDWORD reserved, LPDWORD type, LPBYTE data,
                      LPDWORD dataSize);
LONG RegCloseKey(HKEY key);
