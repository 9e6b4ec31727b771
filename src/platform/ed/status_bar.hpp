#pragma once
// The status-bar progress meter. On a terminal it is drawn on stderr as a one-line bar; it is
// also kept as a record that tests read.
#include <string>

#include "platform/win/wintypes.hpp"

struct ProgressMeter {
    bool shown = false;
    std::wstring label;
    int minimum = 0;
    int maximum = 0;
    int position = 0;
};

int acedSetStatusBarProgressMeter(const ACHAR* label, int minimum, int maximum);  // 0
int acedSetStatusBarProgressMeterPos(int position);  // 0; -1 when no meter is shown
void acedRestoreStatusBar();

const ProgressMeter& CurrentProgressMeter();
// The bar as drawn: "label [#####.....]  50%".
std::wstring RenderProgressMeter(const ProgressMeter& meter, int width);
