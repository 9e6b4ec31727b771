#pragma once
// Faults that tests switch on to reach error paths that a machine rarely shows. Nothing sets
// these variables outside the tests.
// - TAVRIK_TEST_FULL_DRIVE names drive letters ("D" or "CD"): a file written below one of them
//   fails as on a full disk.
// - TAVRIK_TEST_KILL_AT=N: the process kills itself with SIGKILL at the Nth point where the
//   platform changes a file for the module, as a power cut or `kill -9` would end it there.
//   Each point passed before is named on stderr, so a whole run with a large N lists them.
#include <filesystem>

inline constexpr const char* kFullDriveVariable = "TAVRIK_TEST_FULL_DRIVE";
inline constexpr const char* kKillAtVariable = "TAVRIK_TEST_KILL_AT";

// True when writing `file` must fail with ENOSPC.
bool DriveFullFault(const std::filesystem::path& file);
// A point between two changes of files: `what` happens next or just happened.
void KillPoint(const char* what);
