#pragma once
// File and folder services of Windows, on paths resolved by ResolvePath.
#include "platform/win/wintypes.hpp"

inline constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;

BOOL DeleteFileW(LPCWSTR path);                                 // files only, not folders
BOOL CopyFileW(LPCWSTR from, LPCWSTR to, BOOL failIfExists);    // overwrites unless told not to
BOOL CreateDirectoryW(LPCWSTR path, void* securityAttributes);  // fails if it exists or the parent is missing
BOOL PathIsDirectoryW(LPCWSTR path);
BOOL PathFileExistsW(LPCWSTR path);                             // a file or a folder
DWORD GetFileAttributesW(LPCWSTR path);
int _wmkdir(const wchar_t* path);                               // 0, or -1 with errno
int _waccess(const wchar_t* path, int mode);                    // mode 0 existence, 2 write, 4 read
int _access(const char* path, int mode);                        // path in the host code page
