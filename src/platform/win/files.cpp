#include "platform/win/files.hpp"

#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "platform/win/codepage.hpp"
#include "platform/win/faults.hpp"
#include "platform/win/paths.hpp"
#include "platform/win/recycle.hpp"
#include "platform/win/temporaries.hpp"

namespace fs = std::filesystem;

BOOL DeleteFileW(LPCWSTR path) {
    if (!path) return FALSE;
    fs::path file = ResolvePath(path);
    std::error_code error;
    if (!fs::is_regular_file(file, error)) return FALSE;
    std::string reason;
    KillPoint("delete");
    return RecycleFile(file, reason) ? TRUE : FALSE;
}

namespace {

// Copies `source` to a temporary file beside `target`, then renames it into place: a reader or
// a killed process never sees a half-written target. What the target held is recycled first.
bool CopyThroughTemporary(const fs::path& source, const fs::path& target) {
    RemoveStaleTemporaries(target.string());
    fs::path temp = TemporaryName(target.string(), ::getpid());
    std::error_code error;
    std::string reason;
    if (DriveFullFault(target)) {
        errno = ENOSPC;
        return false;
    }
    KillPoint("copy");
    if (!fs::copy_file(source, temp, fs::copy_options::overwrite_existing, error) || !RecycleCopy(target, reason)) {
        fs::remove(temp, error);
        return false;
    }
    KillPoint("copy written");
    fs::rename(temp, target, error);
    if (!error) return true;
    fs::remove(temp, error);
    return false;
}

}  // namespace

BOOL CopyFileW(LPCWSTR from, LPCWSTR to, BOOL failIfExists) {
    if (!from || !to) return FALSE;
    fs::path source = ResolvePath(from);
    fs::path target = ResolvePath(to);
    std::error_code error;
    if (!fs::is_regular_file(source, error)) return FALSE;
    if (failIfExists && fs::exists(target, error)) return FALSE;
    if (fs::is_directory(target, error)) return FALSE;
    return CopyThroughTemporary(source, target) ? TRUE : FALSE;
}

BOOL CreateDirectoryW(LPCWSTR path, void*) {
    if (!path) return FALSE;
    fs::path folder = ResolvePath(path);
    std::error_code error;
    if (fs::exists(folder, error) || !fs::is_directory(folder.parent_path(), error)) return FALSE;
    return fs::create_directory(folder, error) ? TRUE : FALSE;
}

BOOL PathIsDirectoryW(LPCWSTR path) {
    std::error_code error;
    return path && fs::is_directory(ResolvePath(path), error) ? TRUE : FALSE;
}

BOOL PathFileExistsW(LPCWSTR path) {
    std::error_code error;
    return path && fs::exists(ResolvePath(path), error) ? TRUE : FALSE;
}

DWORD GetFileAttributesW(LPCWSTR path) {
    if (!path) return INVALID_FILE_ATTRIBUTES;
    fs::path file = ResolvePath(path);
    std::error_code error;
    fs::file_status status = fs::status(file, error);
    if (!fs::exists(status)) return INVALID_FILE_ATTRIBUTES;
    DWORD attributes = fs::is_directory(status) ? FILE_ATTRIBUTE_DIRECTORY : 0;
    if (::access(file.c_str(), W_OK) != 0) attributes |= FILE_ATTRIBUTE_READONLY;
    return attributes ? attributes : FILE_ATTRIBUTE_NORMAL;
}

int _wmkdir(const wchar_t* path) {
    if (!path) {
        errno = EINVAL;
        return -1;
    }
    fs::path folder = ResolvePath(path);
    std::error_code error;
    if (fs::exists(folder, error)) {
        errno = EEXIST;
        return -1;
    }
    if (!fs::create_directory(folder, error)) {
        errno = error ? error.value() : ENOENT;
        return -1;
    }
    return 0;
}

int _waccess(const wchar_t* path, int mode) {
    if (!path) {
        errno = EINVAL;
        return -1;
    }
    int posixMode = F_OK | ((mode & 2) ? W_OK : 0) | ((mode & 4) ? R_OK : 0);
    return ::access(ResolvePath(path).c_str(), posixMode) == 0 ? 0 : -1;
}

int _access(const char* path, int mode) {
    if (!path) {
        errno = EINVAL;
        return -1;
    }
    return _waccess(WideFromAnsi(path).c_str(), mode);
}
