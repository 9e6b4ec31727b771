#pragma once
// The host framework's file search class. FindFile takes a Windows path whose last component
// may hold '*' and '?'; the hits come in the order of an NTFS folder (by name, without regard
// to case), with "." and ".." in folders that are not a drive's root. As with the framework,
// FindNextFileW must be called before the first hit is read; it returns FALSE when the hit it
// moved to is the last one.
#include <string>
#include <vector>

#include "platform/win/wintypes.hpp"

class CFileFind {
public:
    // One entry that the search found.
    struct Hit {
        std::wstring name;
        DWORD attributes = 0;
        ULONGLONG length = 0;
    };

    BOOL FindFile(LPCTSTR name = nullptr, DWORD unused = 0);
    BOOL FindNextFileW();
    BOOL FindNextFile() { return FindNextFileW(); }
    void Close();

    BOOL IsDots() const;
    BOOL IsDirectory() const;
    BOOL MatchesMask(DWORD attributes) const;
    std::wstring GetFileName() const;
    std::wstring GetFilePath() const;  // the searched folder as written, '\', the name
    std::wstring GetFileTitle() const; // the name without its extension
    std::wstring GetRoot() const;
    ULONGLONG GetLength() const;

private:
    std::wstring root_;
    std::vector<Hit> hits_;
    size_t next_ = 0;  // index of the hit that FindNextFileW moves to
    const Hit* Current() const;
};
