#pragma once
// What the host does around a run of the module so that no exported drawing is lost unseen:
// one run per prefix at a time, a deadline, and a check of the merged drawing at the end.
#include <filesystem>
#include <string>

// Takes the prefix's lock (the file tavrik.lock, held until the process ends, also when it is
// killed). False, with `error`, when another run holds it: this run is refused rather than made
// to wait, since the run before it consumes the hand-off that this one would have worked on.
// The lock file names the run that holds it until that run ends normally; `interruptedRun` is
// the process id of a run that was killed instead (0 when none was).
bool LockPrefix(const std::filesystem::path& prefix, std::string& error, long& interruptedRun);
// The run ends normally: the lock file no longer names it.
void ReleasePrefix();

// Brings back the files of the hand-off folder that an interrupted run moved to the recycle
// folder and that are still missing, when that hand-off is still to be worked on. The batch
// deletes an export before it copies the converted drawing in its place; a run killed between
// the two would leave the next run to merge the part without that sheet.
void RestoreInterruptedHandOff(const std::filesystem::path& prefix, long interruptedRun);

// Ends the process after `seconds` with the last line of Cg.log on stderr.
void StartDeadline(unsigned seconds);

// The merged drawing that the hand-off names, noted before the batch runs; empty without one.
struct HandOffTarget {
    std::wstring mergedPath;  // a Windows path
};
HandOffTarget ReadHandOffTarget();
// After the run: when the batch completed (the hand-off is gone), the merged drawing must exist
// and read. False, with the problem on stderr, when it does not.
bool CheckMergedDrawing(const HandOffTarget& target);
