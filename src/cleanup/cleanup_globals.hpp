#pragma once
// The one object the clean-ups share across all ClassInterfaceData instances and all drawings:
// the folder of CAD_line.ini, the path of the clean-up log, and the settings records. It is made
// when the module loads and never freed.
#include <memory>
#include <string>

#include "cleanup/cleanup_settings.hpp"

// The home of the helpers' working storage: a scratch string and the text buffer that LogAppend
// converts into (a text longer than it is cut).
struct CleanupHelperKit {
    std::wstring scratch;
    char textBuffer[2048] = {};
};

struct CleanupState {
    CleanupState();

    // Cleared by every constructor of ClassInterfaceData; nothing reads it.
    unsigned char flag = 0;
    // Folder of CAD_line.ini, without a trailing backslash.
    std::wstring UserPath;
    // Full path of the clean-up log.
    std::wstring LogPath;
    std::unique_ptr<CleanupHelperKit> helperKit;
    std::unique_ptr<SplineToPlineSettings> splineToPline;
    std::unique_ptr<ConnectPlineSettings> connectPline;
    std::unique_ptr<LineAndArcMergedSettings> lineAndArcMerged;
    std::unique_ptr<ModifyColorSettings> modifyColor;
    std::unique_ptr<SplineToLineAndArcSettings> splineToLineAndArc;
};

// Null only if the allocation at load failed; nothing tests for that.
extern CleanupState* CleanupGlobals;
