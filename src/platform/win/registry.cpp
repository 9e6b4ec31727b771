#include "platform/win/registry.hpp"

#include <cstring>

#include "platform/win/host_state.hpp"
#include "platform/win/text.hpp"

namespace {

const wchar_t* RootName(HKEY key) {
    if (key == HKEY_CLASSES_ROOT) return L"HKEY_CLASSES_ROOT";
    if (key == HKEY_CURRENT_USER) return L"HKEY_CURRENT_USER";
    if (key == HKEY_LOCAL_MACHINE) return L"HKEY_LOCAL_MACHINE";
    if (key == HKEY_USERS) return L"HKEY_USERS";
    return nullptr;
}

// The full path of an open or predefined key; empty for an unknown handle.
std::wstring KeyPath(HKEY key) {
    if (const wchar_t* root = RootName(key)) return root;
    auto found = Host().openKeys.find(reinterpret_cast<std::uintptr_t>(key));
    return found == Host().openKeys.end() ? std::wstring() : found->second;
}

bool KeyExists(const std::wstring& path) {
    const RegistryData& registry = Host().registry;
    auto below = registry.lower_bound(path);
    return below != registry.end() &&
           (below->first == path || below->first.starts_with(path + L"\\"));
}

}  // namespace

LONG RegOpenKeyExW(HKEY parent, LPCWSTR subKey, DWORD, REGSAM, PHKEY result) {
    std::wstring path = KeyPath(parent);
    if (path.empty() || !result) return ERROR_INVALID_HANDLE;
    if (subKey && *subKey) path = NormalizeKeyPath(path + L"\\" + subKey);
    if (path.find(L'\\') != std::wstring::npos && !KeyExists(path)) return ERROR_FILE_NOT_FOUND;
    std::uintptr_t handle = Host().nextKeyHandle++;
    Host().openKeys[handle] = path;
    *result = reinterpret_cast<HKEY>(handle);
    return ERROR_SUCCESS;
}

LONG RegQueryValueExW(HKEY key, LPCWSTR valueName, LPDWORD, LPDWORD type, LPBYTE data,
                      LPDWORD dataSize) {
    std::wstring path = KeyPath(key);
    if (path.empty()) return ERROR_INVALID_HANDLE;
    auto keyData = Host().registry.find(path);
    if (keyData == Host().registry.end()) return ERROR_FILE_NOT_FOUND;
    auto value = keyData->second.values.find(UpperCase(valueName ? valueName : L""));
    if (value == keyData->second.values.end()) return ERROR_FILE_NOT_FOUND;
    if (data && !dataSize) return ERROR_INVALID_PARAMETER;
    const std::vector<BYTE>& bytes = value->second.data;
    if (type) *type = value->second.type;
    LONG status = ERROR_SUCCESS;
    if (data && *dataSize < bytes.size())
        status = ERROR_MORE_DATA;
    else if (data)
        std::memcpy(data, bytes.data(), bytes.size());
    if (dataSize) *dataSize = static_cast<DWORD>(bytes.size());
    return status;
}

LONG RegCloseKey(HKEY key) {
    if (RootName(key)) return ERROR_SUCCESS;
    return Host().openKeys.erase(reinterpret_cast<std::uintptr_t>(key)) ? ERROR_SUCCESS
                                                                        : ERROR_INVALID_HANDLE;
}
