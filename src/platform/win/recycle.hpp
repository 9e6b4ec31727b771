#pragma once
// The recycle folder of the prefix (<prefix>/recycle). Every file that the platform deletes or
// overwrites inside the prefix for a module goes there first, so that a drawing removed after a
// failed step can be brought back. Each run of the host has one entry folder, named by the time
// it started and its process id; below it a file keeps its path relative to the prefix, and a
// second version of one path in the same run gets "~2", "~3"... appended.
#include <filesystem>
#include <string>
#include <vector>

inline constexpr const char* kRecycleFolderName = "recycle";

// Moves `file` into the recycle folder when it lies inside the prefix. Outside the prefix (or
// without one) it is removed. False, with `error`, when the file is still where it was.
bool RecycleFile(const std::filesystem::path& file, std::string& error);
// Puts a copy of `file` into the recycle folder before it is overwritten (a hard link when the
// file system allows it). True when nothing needs keeping (outside the prefix, no such file).
bool RecycleCopy(const std::filesystem::path& file, std::string& error);
// Removes the entry folders older than `days` days.
void PurgeRecycle(const std::filesystem::path& prefix, int days);

struct RecycledFile {
    std::string item;      // "ENTRY/relative/path[~N]", as `RestoreRecycled` takes it
    std::string original;  // the path relative to the prefix that it came from
    std::uintmax_t size = 0;
};
std::vector<RecycledFile> ListRecycle(const std::filesystem::path& prefix);
// The last version of each original path among `files` (in the order ListRecycle gives).
std::vector<RecycledFile> LatestVersions(const std::vector<RecycledFile>& files);
// Copies a recycled file back to where it came from; an existing file there is itself recycled
// first. False, with `error`, when the item does not exist or the copy fails.
bool RestoreRecycled(const std::filesystem::path& prefix, const std::string& item, std::string& error);
