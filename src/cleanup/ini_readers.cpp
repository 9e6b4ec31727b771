#include "cleanup/ini_readers.hpp"

#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <vector>

#include "cleanup/color_helpers.hpp"
#include "platform/win/codepage.hpp"
#include "platform/win/crt.hpp"
#include "platform/win/format.hpp"
#include "platform/win/ini.hpp"

namespace {

constexpr DWORD kLongCapacity = 1024;
constexpr DWORD kShortCapacity = 69;

bool IsShortValueSection(const std::wstring& section) {
    return section == L"UpLineScale" || section == L"DeleteSmallLineAndPoint" ||
           section == L"DeleteRepeatingLine" || section == L"DeleteArcDownCurve" ||
           section == L"SplineToLineAndArc";
}

std::wstring ReadText(const std::wstring& file, const std::wstring& section, const std::wstring& key,
                      DWORD capacity) {
    std::vector<wchar_t> buffer(capacity, L'\0');
    GetPrivateProfileStringW(section.c_str(), key.c_str(), L"", buffer.data(), capacity, file.c_str());
    return buffer.data();
}

}  // namespace

std::wstring CadLineIniPath(const std::wstring& userPath) { return userPath + L"\\CAD_line.ini"; }

void IniReadString(const std::wstring& file, const std::wstring& section, const std::wstring& key,
                   std::wstring& target) {
    std::wstring text = ReadText(file, section, key, kLongCapacity);
    target = FormatHostString(text.c_str());
}

void IniReadInt(const std::wstring& file, const std::wstring& section, const std::wstring& key,
                int& target) {
    target = _wtoi(ReadText(file, section, key, kLongCapacity).c_str());
}

void IniReadDouble(const std::wstring& file, const std::wstring& section, const std::wstring& key,
                   double& target) {
    bool isShort = IsShortValueSection(section) || section == L"DeleteLineDownCurve";
    std::wstring text = ReadText(file, section, key, isShort ? kShortCapacity : kLongCapacity);
    target = std::wcstod(text.c_str(), nullptr);
}

void IniReadBool(const std::wstring& file, const std::wstring& section, const std::wstring& key,
                 bool& target) {
    DWORD capacity = IsShortValueSection(section) ? kShortCapacity : kLongCapacity;
    target = _wtoi(ReadText(file, section, key, capacity).c_str()) != 0;
}

void ColorListFromText(const std::wstring& text, AcArray<int>& colors) {
    colors.removeAll();
    std::wstring colour;
    for (wchar_t c : text) {
        if (c != L';') {
            colour += c;
            continue;
        }
        colors.append(NearestColorIndex(ParseRgbText(colour)));
        colour.clear();
    }
}

void ColorListFromAnsiText(const std::wstring& text, AcArray<int>& colors) {
    colors.removeAll();
    std::string bytes = AnsiFromWide(text).substr(0, 1023);
    std::string colour;
    for (char c : bytes) {
        if (c != ';') {
            colour += c;
            continue;
        }
        colors.append(NearestColorIndex(PackNarrowRgb(colour, 127)));
        colour.clear();
    }
}
