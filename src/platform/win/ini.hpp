#pragma once
// INI files as the Windows profile API reads them: "[section]" lines, then "key=value" lines.
// Sections and keys are trimmed and compared without regard to case, the first one of a name
// wins, values are trimmed and lose one pair of enclosing quotes.
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "platform/win/wintypes.hpp"

struct IniEntry {
    std::wstring key;
    std::wstring value;
};

struct IniSection {
    std::wstring name;
    std::vector<IniEntry> entries;
};

using IniDocument = std::vector<IniSection>;

IniDocument ParseIni(std::wstring_view text);
// Reads and decodes a file (byte-order marks honoured, else the host code page); a missing file
// gives an empty document.
IniDocument ReadIniFile(const std::filesystem::path& file);
const IniSection* FindIniSection(const IniDocument& document, std::wstring_view name);
const std::wstring* FindIniValue(const IniDocument& document, std::wstring_view section,
                                 std::wstring_view key);

// Copies the value (or the default, without its trailing blanks) into `buffer`, cut to
// capacity - 1 characters and terminated; returns the characters copied. A null section lists
// the section names, a null key the keys of the section, each terminated, the list by a
// second terminator. A file name without a folder is looked for in C:\Windows.
DWORD GetPrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR defaultValue, LPWSTR buffer,
                               DWORD capacity, LPCWSTR fileName);
