#include <cstdarg>
#include <cwchar>
#include <filesystem>
#include <system_error>

#include "platform/ed/ads.hpp"
#include "platform/ed/utilities.hpp"
#include "platform/win/format.hpp"
#include "platform/win/host_state.hpp"
#include "platform/win/messages.hpp"
#include "platform/win/paths.hpp"

int acutPrintf(const ACHAR* format, ...) {
    va_list args;
    va_start(args, format);
    std::wstring text = FormatHostStringV(format, args);
    va_end(args);
    WriteConsoleText(stdout, text);
    return static_cast<int>(text.size());
}

int acedAlert(const ACHAR* message) {
    ShowUserMessage(message ? message : L"");
    return RTNORM;
}

int acedFindFile(const ACHAR* fileName, ACHAR* result, size_t capacity) {
    if (!fileName || !*fileName || !result || capacity == 0) return RTERROR;
    std::wstring name = fileName;
    bool absolute = name.starts_with(L"\\") || name.starts_with(L"/") || (name.size() > 1 && name[1] == L':');
    std::wstring found = absolute ? name : Host().currentDirectory + (Host().currentDirectory.ends_with(L'\\') ? L"" : L"\\") + name;
    std::error_code error;
    if (!std::filesystem::is_regular_file(ResolvePath(found), error) || found.size() >= capacity) return RTERROR;
    std::wcsncpy(result, found.c_str(), capacity);
    return RTNORM;
}
