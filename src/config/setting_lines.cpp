#include "config/setting_lines.hpp"

#include <vector>

#include "pipeline/logs.hpp"
#include "platform/win/stdio_file.hpp"
#include "platform/win/text.hpp"

namespace {

bool IsNoSetting(const std::wstring& line) {
    return line.empty() || line.starts_with(L"//") || line.starts_with(L";") || line.starts_with(L"[");
}

}  // namespace

bool ReadSettingLines(const std::wstring& path, UINT openFlags,
                      std::initializer_list<std::wstring_view> sectionNames, int& section,
                      const std::function<void(const SettingLine&)>& onSetting) {
    CStdioFile file;
    if (!file.Open(path.c_str(), openFlags)) return false;
    std::wstring raw;
    while (file.ReadString(raw)) {
        std::wstring line = UpperCase(TrimBlanks(raw));
        int index = 0;
        for (std::wstring_view name : sectionNames) {
            if (line.starts_with(name)) section = index;
            ++index;
        }
        if (IsNoSetting(line)) continue;
        std::vector<std::wstring> pieces;
        SplitString(line, L",", pieces);
        if (pieces.size() < 2) continue;
        onSetting({line, TrimBlanks(pieces[0]), TrimBlanks(pieces[1])});  // upper case already
    }
    file.Close();
    return true;
}
