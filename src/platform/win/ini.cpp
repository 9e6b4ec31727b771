#include "platform/win/ini.hpp"

#include <algorithm>
#include <fstream>
#include <sstream>

#include "platform/win/codepage.hpp"
#include "platform/win/paths.hpp"
#include "platform/win/text.hpp"

namespace {

std::wstring Unquote(std::wstring value) {
    if (value.size() >= 2 && (value.front() == L'"' || value.front() == L'\'') &&
        value.back() == value.front())
        return value.substr(1, value.size() - 2);
    return value;
}

// Copies a run of terminated strings; a run too long for the buffer keeps what fits and ends
// in two terminators, and the count is then capacity - 2.
DWORD CopyList(const std::vector<std::wstring>& items, LPWSTR buffer, DWORD capacity) {
    std::wstring run;
    for (const std::wstring& item : items) run += item + L'\0';
    if (run.size() + 1 <= capacity) {
        std::copy(run.begin(), run.end(), buffer);
        buffer[run.size()] = L'\0';
        return static_cast<DWORD>(run.size());
    }
    if (capacity < 2) {
        buffer[0] = L'\0';
        return 0;
    }
    std::copy(run.begin(), run.begin() + (capacity - 2), buffer);
    buffer[capacity - 2] = L'\0';
    buffer[capacity - 1] = L'\0';
    return capacity - 2;
}

DWORD CopyText(std::wstring_view text, LPWSTR buffer, DWORD capacity) {
    size_t count = std::min<size_t>(text.size(), capacity - 1);
    std::copy_n(text.begin(), count, buffer);
    buffer[count] = L'\0';
    return static_cast<DWORD>(count);
}

std::filesystem::path ProfilePath(std::wstring_view fileName) {
    if (fileName.find_first_of(L"\\/") == std::wstring_view::npos)
        return ResolvePath(L"C:\\Windows\\" + std::wstring(fileName));
    return ResolvePath(fileName);
}

}  // namespace

IniDocument ParseIni(std::wstring_view text) {
    IniDocument document;
    std::wstringstream in{std::wstring(text)};
    std::wstring line;
    while (std::getline(in, line)) {
        line = TrimBlanks(line);
        if (line.starts_with(L'[')) {
            size_t close = line.find(L']');
            document.push_back({TrimBlanks(line.substr(1, close == std::wstring::npos ? line.npos : close - 1)), {}});
            continue;
        }
        size_t equals = line.find(L'=');
        if (document.empty() || equals == std::wstring::npos) continue;
        document.back().entries.push_back(
            {TrimBlanks(line.substr(0, equals)), Unquote(TrimBlanks(line.substr(equals + 1)))});
    }
    return document;
}

IniDocument ReadIniFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) return {};
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    return ParseIni(DecodeTextBytes(bytes));
}

const IniSection* FindIniSection(const IniDocument& document, std::wstring_view name) {
    auto found = std::find_if(document.begin(), document.end(),
                              [&](const IniSection& s) { return EqualNoCase(s.name, name); });
    return found == document.end() ? nullptr : &*found;
}

const std::wstring* FindIniValue(const IniDocument& document, std::wstring_view section,
                                 std::wstring_view key) {
    const IniSection* found = FindIniSection(document, section);
    if (!found) return nullptr;
    for (const IniEntry& entry : found->entries)
        if (EqualNoCase(entry.key, key)) return &entry.value;
    return nullptr;
}

DWORD GetPrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR defaultValue, LPWSTR buffer,
                               DWORD capacity, LPCWSTR fileName) {
    if (!buffer || capacity == 0) return 0;
    IniDocument document = fileName ? ReadIniFile(ProfilePath(fileName)) : IniDocument{};
    std::vector<std::wstring> names;
    if (!section) {
        for (const IniSection& s : document) names.push_back(s.name);
        return CopyList(names, buffer, capacity);
    }
    if (!key) {
        if (const IniSection* s = FindIniSection(document, section))
            for (const IniEntry& entry : s->entries) names.push_back(entry.key);
        return CopyList(names, buffer, capacity);
    }
    if (const std::wstring* value = FindIniValue(document, section, key))
        return CopyText(*value, buffer, capacity);
    std::wstring fallback = defaultValue ? defaultValue : L"";
    fallback.erase(fallback.find_last_not_of(L' ') + 1);
    return CopyText(fallback, buffer, capacity);
}
