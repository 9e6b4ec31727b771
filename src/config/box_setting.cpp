#include "config/box_setting.hpp"

#include "config/setting_lines.hpp"
#include "platform/win/stdio_file.hpp"

BoxSetting::BoxSetting(std::wstring path) : path(std::move(path)) { Read(); }

void BoxSetting::Read() {
    // Starts afresh: the attributes that a sheet added are gone before the next sheet.
    frameMatches.clear();
    attributes.clear();
    auto onSetting = [&](const SettingLine& setting) {
        missing = 0;
        if (section == 0) frameMatches.push_back({setting.key, setting.value});
        else attributes.push_back({setting.key, setting.value, AcDbObjectId::kNull});
    };
    if (!ReadSettingLines(path, CFile::modeRead | CFile::shareDenyNone, {L"[SHTWCH]", L"[ATTWCH]"},
                          section, onSetting))
        missing = 1;
}
