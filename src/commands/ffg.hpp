#pragma once
// FFG: find the texts of a drawing sheet by an example text and change them. The command keeps
// two values from one run to the next: the highlight colour (6 at first), which the user may
// change at the pick prompt, and whether the count text stays (useri1 not 0).

struct FfgState {
    int highlightColor = 6;
    bool keepCount = false;
};

// The values that a next run of FFG starts from.
FfgState& FfgSettings();
void FfgCommand();
