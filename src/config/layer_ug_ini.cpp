#include "config/layer_ug_ini.hpp"

#include "config/setting_lines.hpp"
#include "platform/win/stdio_file.hpp"

namespace {

enum Section { kNone = -1, kSpecial = 0, kConvert = 1, kFillay = 2 };

}  // namespace

LayerUgIni::LayerUgIni(std::wstring path) : path(std::move(path)) { Read(); }

void LayerUgIni::Read() {
    // Unlike the other two files, the section starts afresh with each read, and this file is
    // opened with default sharing.
    int section = kNone;
    auto onSetting = [&](const SettingLine& setting) {
        missing = 0;
        if (section == kSpecial) special = setting.line;
        else if (section == kConvert) conversions.push_back({setting.key, setting.value});
        else if (section == kFillay) fillLayers.push_back({setting.key, setting.value});
    };
    if (!ReadSettingLines(path, CFile::modeRead, {L"[SPECIAL]", L"[CONVERT]", L"[FILLAY]"},
                          section, onSetting))
        missing = 1;
}
