#include "platform/win/temporaries.hpp"

#include <signal.h>
#include <unistd.h>

#include <cerrno>

namespace fs = std::filesystem;

namespace {

constexpr const char* kMark = ".tmp";

// The process id in a temporary's name "STEM.tmpPID", 0 when the name is not one of ours.
pid_t TemporaryOwner(const std::string& name, const std::string& stem) {
    if (name.size() <= stem.size() + 4 || name.compare(0, stem.size(), stem) != 0 ||
        name.compare(stem.size(), 4, kMark) != 0)
        return 0;
    std::string digits = name.substr(stem.size() + 4);
    if (digits.find_first_not_of("0123456789") != std::string::npos || digits.size() > 9) return 0;
    return static_cast<pid_t>(std::stol(digits));
}

// The save of a process that no longer runs will never be finished.
void RemoveIfOwnerGone(const fs::path& file, pid_t owner) {
    std::error_code error;
    if (owner > 0 && owner != ::getpid() && ::kill(owner, 0) != 0 && errno == ESRCH) fs::remove(file, error);
}

}  // namespace

std::string TemporaryName(const std::string& path, long processId) { return path + kMark + std::to_string(processId); }

void RemoveStaleTemporaries(const std::string& path) {
    fs::path target(path);
    std::string stem = target.filename().string();
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(target.parent_path(), error)) {
        if (entry.is_regular_file(error))
            RemoveIfOwnerGone(entry.path(), TemporaryOwner(entry.path().filename().string(), stem));
    }
}

void RemoveStaleTemporariesBelow(const fs::path& folder) {
    std::error_code error;
    for (auto it = fs::recursive_directory_iterator(folder, error); !error && it != fs::end(it); it.increment(error)) {
        if (!it->is_regular_file(error)) continue;
        std::string name = it->path().filename().string();
        size_t mark = name.rfind(kMark);
        if (mark != std::string::npos && mark > 0) RemoveIfOwnerGone(it->path(), TemporaryOwner(name, name.substr(0, mark)));
    }
}
