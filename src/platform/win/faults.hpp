#pragma once
// Faults that tests switch on to reach error paths that a machine rarely shows. The variable
// TAVRIK_TEST_FULL_DRIVE names drive letters ("D" or "CD"): a file written below one of them
// fails as on a full disk. Nothing sets it outside the tests.
#include <filesystem>

inline constexpr const char* kFullDriveVariable = "TAVRIK_TEST_FULL_DRIVE";

// True when writing `file` must fail with ENOSPC.
bool DriveFullFault(const std::filesystem::path& file);
