#include "platform/ed/status_bar.hpp"

#include <algorithm>
#include <cstdio>

#include "platform/ed/editor_state.hpp"
#include "platform/win/messages.hpp"

namespace {

constexpr int kBarWidth = 30;

void Draw(const ProgressMeter& meter) {
    if (Editor().drawProgress) WriteConsoleText(stderr, L"\r" + RenderProgressMeter(meter, kBarWidth));
}

}  // namespace

std::wstring RenderProgressMeter(const ProgressMeter& meter, int width) {
    int span = meter.maximum - meter.minimum;
    int done = span > 0 ? std::clamp(meter.position - meter.minimum, 0, span) : 0;
    int filled = span > 0 ? done * width / span : 0;
    int percent = span > 0 ? done * 100 / span : 0;
    wchar_t number[8];
    std::swprintf(number, 8, L"%3d%%", percent);
    return meter.label + L" [" + std::wstring(filled, L'#') + std::wstring(width - filled, L'.') + L"] " + number;
}

int acedSetStatusBarProgressMeter(const ACHAR* label, int minimum, int maximum) {
    Editor().progress = {true, label ? label : L"", minimum, maximum, minimum};
    Draw(Editor().progress);
    return 0;
}

int acedSetStatusBarProgressMeterPos(int position) {
    ProgressMeter& meter = Editor().progress;
    if (!meter.shown) return -1;
    meter.position = position;
    Draw(meter);
    return 0;
}

void acedRestoreStatusBar() {
    if (Editor().progress.shown && Editor().drawProgress) WriteConsoleText(stderr, L"\n");
    Editor().progress = {};
}

const ProgressMeter& CurrentProgressMeter() { return Editor().progress; }
