#pragma once
// The registry of a prefix, read from a file in the text format of a registry export
// ("Windows Registry Editor Version 5.00" or "REGEDIT4"): [key] lines, then "name"=value lines
// with string, dword:, hex: and hex(n): values. Keys and value names are kept upper-case, as
// the registry compares them without regard to case.
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/win/wintypes.hpp"

inline constexpr DWORD REG_NONE = 0;
inline constexpr DWORD REG_SZ = 1;
inline constexpr DWORD REG_EXPAND_SZ = 2;
inline constexpr DWORD REG_BINARY = 3;
inline constexpr DWORD REG_DWORD = 4;
inline constexpr DWORD REG_MULTI_SZ = 7;
inline constexpr DWORD REG_QWORD = 11;

// Data as RegQueryValueExW hands it out: strings as wchar_t units with their terminator.
struct RegistryValue {
    DWORD type = REG_NONE;
    std::vector<BYTE> data;
};

struct RegistryKeyData {
    std::map<std::wstring, RegistryValue> values;  // upper-case name ("" is the default value)
};

// Full upper-case key path ("HKEY_LOCAL_MACHINE\SOFTWARE\X") -> its values.
using RegistryData = std::map<std::wstring, RegistryKeyData>;

RegistryData ParseRegistryExport(std::wstring_view text);
// Reads a file as written by regedit (UTF-16LE with BOM), or UTF-8, or the host code page.
RegistryData LoadRegistryFile(const std::filesystem::path& file);
// Root names in full: HKLM -> HKEY_LOCAL_MACHINE and so on; the rest upper-cased.
std::wstring NormalizeKeyPath(std::wstring_view path);
