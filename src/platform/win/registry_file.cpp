#include "platform/win/registry_file.hpp"

#include <cstring>
#include <fstream>
#include <sstream>

#include "platform/win/codepage.hpp"
#include "platform/win/text.hpp"

namespace {

std::vector<BYTE> WideBytes(const std::wstring& text) {
    std::vector<BYTE> data((text.size() + 1) * sizeof(wchar_t), 0);
    std::memcpy(data.data(), text.data(), text.size() * sizeof(wchar_t));
    return data;
}

// "..." with \\ and \" escapes; `pos` moves past the closing quote.
std::wstring ReadQuoted(std::wstring_view line, size_t& pos) {
    std::wstring out;
    for (++pos; pos < line.size() && line[pos] != L'"'; ++pos) {
        if (line[pos] == L'\\' && pos + 1 < line.size()) ++pos;
        out += line[pos];
    }
    ++pos;
    return out;
}

std::vector<BYTE> HexBytes(std::wstring_view text) {
    std::vector<BYTE> bytes;
    std::wstringstream in{std::wstring(text)};
    std::wstring item;
    while (std::getline(in, item, L',')) {
        item = TrimBlanks(item);
        if (!item.empty()) bytes.push_back(static_cast<BYTE>(std::wcstoul(item.c_str(), nullptr, 16)));
    }
    return bytes;
}

// hex(2) and hex(7) hold UTF-16LE text in the export; we hand out wchar_t units.
std::vector<BYTE> Utf16ToWideBytes(const std::vector<BYTE>& utf16) {
    std::wstring text;
    for (size_t i = 0; i + 1 < utf16.size(); i += 2) text += static_cast<wchar_t>(utf16[i] | utf16[i + 1] << 8);
    while (!text.empty() && text.back() == L'\0') text.pop_back();
    return WideBytes(text);
}

bool ParseValue(std::wstring_view valueText, RegistryValue& value) {
    if (valueText.starts_with(L"\"")) {
        size_t pos = 0;
        value = {REG_SZ, WideBytes(ReadQuoted(valueText, pos))};
        return true;
    }
    if (valueText.starts_with(L"dword:")) {
        DWORD number = static_cast<DWORD>(std::wcstoul(std::wstring(valueText.substr(6)).c_str(), nullptr, 16));
        value = {REG_DWORD, std::vector<BYTE>(4)};
        std::memcpy(value.data.data(), &number, 4);
        return true;
    }
    if (valueText.starts_with(L"hex:")) {
        value = {REG_BINARY, HexBytes(valueText.substr(4))};
        return true;
    }
    if (valueText.starts_with(L"hex(")) {
        size_t close = valueText.find(L"):");
        if (close == std::wstring_view::npos) return false;
        DWORD type = static_cast<DWORD>(std::wcstoul(std::wstring(valueText.substr(4, close - 4)).c_str(), nullptr, 16));
        std::vector<BYTE> bytes = HexBytes(valueText.substr(close + 2));
        bool text = type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
        value = {type, text ? Utf16ToWideBytes(bytes) : bytes};
        if (type == REG_MULTI_SZ) value.data.resize(value.data.size() + sizeof(wchar_t), 0);
        return true;
    }
    return false;
}

// Joins the lines that end in a backslash (long hex values) with their continuation.
std::vector<std::wstring> LogicalLines(std::wstring_view text) {
    std::vector<std::wstring> lines;
    std::wstringstream in{std::wstring(text)};
    std::wstring line, pending;
    while (std::getline(in, line)) {
        line = TrimBlanks(line);
        if (line.ends_with(L'\\') && !line.starts_with(L'[')) {
            pending += line.substr(0, line.size() - 1);
            continue;
        }
        lines.push_back(pending + line);
        pending.clear();
    }
    if (!pending.empty()) lines.push_back(pending);
    return lines;
}

}  // namespace

std::wstring NormalizeKeyPath(std::wstring_view path) {
    static const std::pair<const wchar_t*, const wchar_t*> roots[] = {
        {L"HKLM", L"HKEY_LOCAL_MACHINE"}, {L"HKCU", L"HKEY_CURRENT_USER"},
        {L"HKCR", L"HKEY_CLASSES_ROOT"},  {L"HKU", L"HKEY_USERS"},
        {L"HKCC", L"HKEY_CURRENT_CONFIG"}};
    std::wstring upper = UpperCase(path);
    while (upper.ends_with(L'\\')) upper.pop_back();
    std::wstring first = upper.substr(0, upper.find(L'\\'));
    for (auto [abbreviation, full] : roots)
        if (first == abbreviation) return full + upper.substr(first.size());
    return upper;
}

RegistryData ParseRegistryExport(std::wstring_view text) {
    RegistryData registry;
    RegistryKeyData* key = nullptr;
    for (const std::wstring& line : LogicalLines(text)) {
        if (line.starts_with(L"[-")) {
            key = nullptr;  // a deletion in an export: nothing to keep
        } else if (line.starts_with(L'[') && line.ends_with(L']')) {
            key = &registry[NormalizeKeyPath(std::wstring_view(line).substr(1, line.size() - 2))];
        } else if (key && (line.starts_with(L'"') || line.starts_with(L"@="))) {
            size_t pos = 1;
            std::wstring name;
            if (line[0] == L'"') name = ReadQuoted(line, pos = 0);
            if (pos >= line.size() || line[pos] != L'=') continue;
            RegistryValue value;
            if (ParseValue(std::wstring_view(line).substr(pos + 1), value)) key->values[UpperCase(name)] = value;
        }
    }
    return registry;
}

RegistryData LoadRegistryFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    return ParseRegistryExport(DecodeTextBytes(bytes));
}
