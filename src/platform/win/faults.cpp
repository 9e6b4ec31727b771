#include "platform/win/faults.hpp"

#include <cctype>
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
