#include "config/config_root.hpp"

#include <cstdint>
#include <vector>

#include "config/read_config_file.hpp"
#include "pipeline/batch_files.hpp"
#include "platform/win/codepage.hpp"
#include "platform/win/crt.hpp"
#include "platform/win/files.hpp"
#include "platform/win/registry.hpp"

namespace {

// The predefined registry roots, in the order of their numbers.
constexpr std::uintptr_t kRegistryRoots[] = {0x80000000, 0x80000001, 0x80000002, 0x80000003,
                                             0x80000004, 0x80000005, 0x80000006, 0x80000007,
                                             0x80000050, 0x80000060};

// A wide string in the host code page, by wcstombs under the user's default locale.
std::string NarrowFromWide(const std::wstring& text) {
    size_t length = crt::wcstombs(nullptr, text.c_str(), 0);
    if (length == static_cast<size_t>(-1)) return {};
    std::string narrow(length, '\0');
    crt::wcstombs(narrow.data(), text.c_str(), length);
    return narrow;
}

// The REG_SZ value of an open key, without its terminator; empty for another type.
std::string QueryStringValue(HKEY key, const std::wstring& valueName) {
    DWORD type = REG_NONE;
    DWORD size = 0;
    if (RegQueryValueExW(key, valueName.c_str(), nullptr, &type, nullptr, &size) != ERROR_SUCCESS ||
        type != REG_SZ)
        return {};
    std::vector<wchar_t> buffer(size + 1, L'\0');  // zeroed: the value ends in a terminator
    DWORD capacity = static_cast<DWORD>(buffer.size() * sizeof(wchar_t));
    if (RegQueryValueExW(key, valueName.c_str(), nullptr, &type,
                         reinterpret_cast<LPBYTE>(buffer.data()), &capacity) != ERROR_SUCCESS)
        return {};
    return NarrowFromWide(buffer.data());
}

}  // namespace

std::string ReadRegistryString(int root, const std::string& subKey, const std::string& valueName) {
    std::wstring wideKey = WideFromNarrow(subKey);
    std::wstring wideValue = WideFromNarrow(valueName);
    if (root < 0 || root >= static_cast<int>(std::size(kRegistryRoots))) return {};
    HKEY key = nullptr;
    if (RegOpenKeyExW(reinterpret_cast<HKEY>(kRegistryRoots[root]), wideKey.c_str(), 0,
                      KEY_QUERY_VALUE, &key) != ERROR_SUCCESS)
        return {};
    std::string value = QueryStringValue(key, wideValue);
    RegCloseKey(key);
    return value;
}

std::wstring GetConfigRoot() {
    std::string base = ReadRegistryString(
        2, "SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment", "CZConfig");
    if (base.empty()) return {};
    std::string root = base + "\\config";
    std::string table = base + "\\config\\standard.csv";
    if (_access(table.c_str(), 0) != 0) return WideFromNarrow(root);
    ReadConfigFile reader;
    if (!reader.Load(table)) return WideFromNarrow(root);
    // The headers stand in the file in the host code page, and are compared as bytes.
    std::vector<std::string> folders = reader.Column(AnsiFromWide(L"文件夹名称"));
    std::vector<std::string> valid = reader.Column(AnsiFromWide(L"有效配置"));
    if (folders.empty() || valid.empty()) return WideFromNarrow(root);
    // Every valid row adds its folder: two valid rows make a nested path.
    for (size_t i = 0; i < valid.size() && i < folders.size(); ++i)
        if ((valid[i] == "Y" || valid[i] == "y") && !folders[i].empty()) root += "\\" + folders[i];
    reader.Close();
    return WideFromNarrow(root);
}
