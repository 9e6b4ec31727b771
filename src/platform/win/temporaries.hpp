#pragma once
// The temporary files of saves: a file is written as "NAME.tmpPID" beside its target and then
// renamed over it. A process killed before the rename leaves its temporary behind; the next
// save of the same target removes it, and so does the start of the next run on the prefix.
#include <filesystem>
#include <string>

// The temporary file of a save of `path` by the process `processId`.
std::string TemporaryName(const std::string& path, long processId);
// Removes the temporaries of `path` whose process no longer runs.
void RemoveStaleTemporaries(const std::string& path);
// Removes every temporary below `folder` whose process no longer runs: those of targets that no
// save will write again (a copy killed after its target was deleted).
void RemoveStaleTemporariesBelow(const std::filesystem::path& folder);
