#include "platform/win/whole_file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace {

bool Fail(const std::filesystem::path& file, const std::string& reason, std::string& error) {
    error = file.string() + ": " + reason;
    return false;
}

}  // namespace

bool ReadWholeFile(const std::filesystem::path& file, std::string& bytes, std::string& error, std::size_t limit) {
    bytes.clear();
    int fd = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return Fail(file, std::strerror(errno), error);
    struct stat info {};
    bool ok = false;
    if (::fstat(fd, &info) != 0) Fail(file, std::strerror(errno), error);
    else if (S_ISDIR(info.st_mode)) Fail(file, "is a folder, not a file", error);
    else if (static_cast<std::size_t>(info.st_size) > limit) Fail(file, "is larger than " + std::to_string(limit) + " bytes", error);
    else ok = true;
    char buffer[65536];
    while (ok) {
        ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n == 0) break;
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) ok = Fail(file, std::strerror(errno), error);
        else if (bytes.size() + static_cast<std::size_t>(n) > limit) ok = Fail(file, "is larger than " + std::to_string(limit) + " bytes", error);
        else bytes.append(buffer, static_cast<std::size_t>(n));
    }
    ::close(fd);
    return ok;
}
