#include "platform/win/prefix.hpp"

#include <fstream>
#include <system_error>

#include "platform/win/host_state.hpp"
#include "platform/win/codepage.hpp"
#include "platform/win/ini.hpp"
#include "platform/win/recycle.hpp"
#include "platform/win/text.hpp"
#include "platform/win/whole_file.hpp"

namespace fs = std::filesystem;

namespace {

const char* kDefaultSettings =
    "[Host]\r\n"
    "; ANSI code page of the host: 936 (GBK) or 65001 (UTF-8)\r\n"
    "CodePage=936\r\n"
    "CurrentDirectory=C:\\\r\n"
    "; days that the recycle folder keeps deleted and overwritten files\r\n"
    "RecycleDays=14\r\n"
    "\r\n"
    "[Environment]\r\n"
    "LOCALAPPDATA=C:\\Users\\tavrik\\AppData\\Local\r\n";

const char* kEmptyRegistry = "Windows Registry Editor Version 5.00\r\n\r\n";

bool ApplySettings(const IniDocument& settings, HostState& state, std::string& error) {
    if (const std::wstring* codePage = FindIniValue(settings, L"Host", L"CodePage")) {
        UINT value = static_cast<UINT>(std::wcstoul(codePage->c_str(), nullptr, 10));
        if (value != 936 && value != 65001) {
            error = "host.ini: CodePage must be 936 or 65001";
            return false;
        }
        state.codePage = value;
    }
    if (const std::wstring* current = FindIniValue(settings, L"Host", L"CurrentDirectory")) {
        if (current->size() < 2 || (*current)[1] != L':') {
            error = "host.ini: CurrentDirectory must be a drive path such as C:\\";
            return false;
        }
        state.currentDirectory = *current;
    }
    if (const std::wstring* days = FindIniValue(settings, L"Host", L"RecycleDays")) {
        wchar_t* end = nullptr;
        long value = std::wcstol(days->c_str(), &end, 10);
        if (days->empty() || *end != L'\0' || value < 0) {
            error = "host.ini: RecycleDays must be a number of days, 0 or more";
            return false;
        }
        state.recycleDays = static_cast<int>(value);
    }
    if (const IniSection* environment = FindIniSection(settings, L"Environment"))
        for (const IniEntry& entry : environment->entries)
            state.environment.emplace(UpperCase(entry.key), entry.value);
    return true;
}

// The text of a file of the prefix; a missing file reads as empty, any other failure is an error.
bool ReadPrefixFile(const fs::path& file, std::wstring& text, std::string& error) {
    std::error_code code;
    std::string bytes;
    if (!fs::exists(fs::symlink_status(file, code))) {
        text.clear();
        return true;
    }
    if (!ReadWholeFile(file, bytes, error)) return false;
    text = DecodeTextBytes(bytes);
    return true;
}

}  // namespace

bool OpenPrefix(const fs::path& folder, std::string& error) {
    std::error_code code;
    if (!fs::is_directory(folder, code)) {
        error = "prefix " + folder.string() + " is not a folder";
        return false;
    }
    HostState& state = Host();
    state.prefix = fs::absolute(folder, code);
    state.environment.clear();
    state.recycleEntry.clear();
    state.recycleKept.clear();
    std::wstring settings, registry;
    if (!ReadPrefixFile(folder / kHostSettingsFileName, settings, error) ||
        !ReadPrefixFile(folder / kRegistryFileName, registry, error))
        return false;
    if (!ApplySettings(ParseIni(settings), state, error)) return false;
    state.registry = ParseRegistryExport(registry);
    PurgeRecycle(state.prefix, state.recycleDays);
    return true;
}

bool InitPrefix(const fs::path& folder, std::string& error) {
    std::error_code code;
    if (fs::exists(folder, code) && !fs::is_empty(folder, code)) {
        error = "prefix " + folder.string() + " exists and is not empty";
        return false;
    }
    fs::create_directories(folder / "drives" / "c" / "Users" / "tavrik" / "AppData" / "Local", code);
    fs::create_directories(folder / "drives" / "d", code);
    std::ofstream(folder / kHostSettingsFileName, std::ios::binary) << kDefaultSettings;
    std::ofstream registry(folder / kRegistryFileName, std::ios::binary);
    registry << kEmptyRegistry;
    if (!registry || code) {
        error = "cannot write the prefix at " + folder.string();
        return false;
    }
    return true;
}
