#include "cleanup/cleanup_globals.hpp"

CleanupState::CleanupState()
    : helperKit(std::make_unique<CleanupHelperKit>()),
      splineToPline(std::make_unique<SplineToPlineSettings>()),
      connectPline(std::make_unique<ConnectPlineSettings>()),
      lineAndArcMerged(std::make_unique<LineAndArcMergedSettings>()),
      modifyColor(std::make_unique<ModifyColorSettings>()),
      splineToLineAndArc(std::make_unique<SplineToLineAndArcSettings>()) {}

CleanupState* CleanupGlobals = new CleanupState;
