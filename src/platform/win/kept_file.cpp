#include "platform/win/kept_file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "platform/win/host_state.hpp"
#include "platform/win/paths.hpp"
#include "platform/win/stdio_file.hpp"

namespace {

struct KeptFile {
    std::wstring path;  // as the caller names it
    std::filesystem::path prefix;
    std::wstring currentDirectory;
    std::filesystem::path file;  // where the path resolved
    int fd = -1;
    struct stat state {};  // the file as the last append left it
    bool utf8 = false;
};

// Few files are appended to in turns: the trace and the list of steps.
constexpr size_t kMostKept = 4;

std::vector<KeptFile>& Kept() {
    static std::vector<KeptFile> kept;
    return kept;
}

bool Unchanged(const struct stat& now, const struct stat& then) {
    return now.st_dev == then.st_dev && now.st_ino == then.st_ino && now.st_mode == then.st_mode &&
           now.st_size == then.st_size;
}

void Forget(size_t index) {
    ::close(Kept()[index].fd);
    Kept().erase(Kept().begin() + static_cast<std::ptrdiff_t>(index));
}

// The entry for `path` under the present prefix and current directory, or the end.
size_t FindKept(LPCTSTR path) {
    const std::vector<KeptFile>& kept = Kept();
    for (size_t i = 0; i < kept.size(); ++i)
        if (kept[i].path == path && kept[i].prefix == Host().prefix && kept[i].currentDirectory == Host().currentDirectory)
            return i;
    return kept.size();
}

// Writes all bytes; false when the file takes fewer.
bool WriteAll(int fd, const std::string& bytes) {
    size_t done = 0;
    while (done < bytes.size()) {
        ssize_t written = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (written <= 0) return false;
        done += static_cast<size_t>(written);
    }
    return true;
}

}  // namespace

BOOL AppendToKeptFile(LPCTSTR path, LPCTSTR text) {
    if (!path) return FALSE;
    size_t index = FindKept(path);
    if (index == Kept().size()) return FALSE;
    KeptFile& kept = Kept()[index];
    struct stat now {};
    if (::stat(kept.file.c_str(), &now) != 0 || !Unchanged(now, kept.state)) {
        Forget(index);
        return FALSE;
    }
    if (!text) return TRUE;
    std::string bytes = EncodeFileText(text, true, kept.utf8);
    // As CStdioFile, a write that fails is not reported; the file is opened afresh next time.
    if (!WriteAll(kept.fd, bytes)) Forget(index);
    else kept.state.st_size += static_cast<off_t>(bytes.size());
    return TRUE;
}

void KeepForAppending(LPCTSTR path) {
    if (!path) return;
    if (size_t index = FindKept(path); index != Kept().size()) Forget(index);
    KeptFile kept{path, Host().prefix, Host().currentDirectory, ResolvePath(path)};
    kept.fd = ::open(kept.file.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    if (kept.fd < 0) return;
    if (::fstat(kept.fd, &kept.state) != 0 || !S_ISREG(kept.state.st_mode)) {
        ::close(kept.fd);
        return;
    }
    kept.utf8 = FileStartsWithBom(kept.file);
    if (Kept().size() == kMostKept) Forget(0);
    Kept().push_back(std::move(kept));
}
