#include "platform/win/temporaries.hpp"

#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

std::string TemporaryName(const std::string& path, long processId) { return path + ".tmp" + std::to_string(processId); }

void RemoveStaleTemporaries(const std::string& path) {
    namespace fs = std::filesystem;
    fs::path target(path);
    std::string stem = target.filename().string() + ".tmp";
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(target.parent_path(), error)) {
        std::string name = entry.path().filename().string();
        if (name.size() <= stem.size() || name.compare(0, stem.size(), stem) != 0) continue;
        std::string digits = name.substr(stem.size());
        if (digits.find_first_not_of("0123456789") != std::string::npos || digits.size() > 9) continue;
        pid_t owner = static_cast<pid_t>(std::stol(digits));
        // The save of a process that no longer runs will never be finished.
        if (owner != ::getpid() && ::kill(owner, 0) != 0 && errno == ESRCH) fs::remove(entry.path(), error);
    }
}

