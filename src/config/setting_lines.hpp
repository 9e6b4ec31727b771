#pragma once
// The line handling that the tool's text configuration files share (CAD_standard.ini,
// CAD_layerug.ini, boxsetting.txt): each line is trimmed and upper-cased; a section name at its
// start selects the section; empty lines, comments ("//", ";") and bracketed lines are no
// settings; a setting is cut at "," and needs at least two pieces.
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>

#include "platform/win/wintypes.hpp"

// One setting line: the whole line, piece 1 and piece 2, each trimmed and upper case.
struct SettingLine {
    std::wstring line;
    std::wstring key;
    std::wstring value;
};

// Reads the file at `path`, opened with the CStdioFile flags `openFlags`. A line beginning
// with the i-th of `sectionNames` sets `section` to i; `onSetting` receives the setting lines.
// False when the file cannot be opened.
bool ReadSettingLines(const std::wstring& path, UINT openFlags,
                      std::initializer_list<std::wstring_view> sectionNames, int& section,
                      const std::function<void(const SettingLine&)>& onSetting);
