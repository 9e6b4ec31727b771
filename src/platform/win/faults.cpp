#include "platform/win/faults.hpp"

#include <signal.h>
#include <unistd.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>

#include "platform/win/paths.hpp"

bool DriveFullFault(const std::filesystem::path& file) {
    const char* drives = std::getenv(kFullDriveVariable);
    if (!drives) return false;
    std::filesystem::path target = file.lexically_normal();
    for (const char* d = drives; *d; ++d) {
        if (!std::isalpha(static_cast<unsigned char>(*d))) continue;
        std::filesystem::path relative = target.lexically_relative(DriveFolder(static_cast<wchar_t>(*d)));
        if (!relative.empty() && *relative.begin() != "..") return true;
    }
    return false;
}

void KillPoint(const char* what) {
    static long passed = 0;
    const char* at = std::getenv(kKillAtVariable);
    if (!at) return;
    if (++passed >= std::atol(at)) ::kill(::getpid(), SIGKILL);
    std::fprintf(stderr, "tavrik: kill point %ld: %s\n", passed, what);
}
