#include "platform/win/file_find.hpp"

#include <algorithm>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>

#include "platform/win/codepage.hpp"
#include "platform/win/host_state.hpp"
#include "platform/win/paths.hpp"
#include "platform/win/text.hpp"

namespace fs = std::filesystem;

namespace {

bool IsRootFolder(std::wstring_view folder) {
    return folder.empty() || folder == L"/" || (folder.size() == 2 && folder[1] == L':');
}

// A hit from one look-up of the file (links followed): folders have no length, nor has what is
// neither a folder nor a plain file, nor what cannot be looked up.
CFileFind::Hit MakeHit(std::wstring name, const struct stat& info) {
    bool directory = S_ISDIR(info.st_mode);
    ULONGLONG length = S_ISREG(info.st_mode) ? static_cast<ULONGLONG>(info.st_size) : 0;
    return {std::move(name), directory ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL, length};
}

CFileFind::Hit MakeHit(std::wstring name, const fs::path& file) {
    struct stat info {};
    if (::stat(file.c_str(), &info) != 0) return {std::move(name), FILE_ATTRIBUTE_NORMAL, 0};
    return MakeHit(std::move(name), info);
}

}  // namespace

BOOL CFileFind::FindFile(LPCTSTR name, DWORD) {
    Close();
    std::wstring pattern = name ? name : L"*.*";
    size_t split = pattern.find_last_of(L"\\/");
    std::wstring folder = split == std::wstring::npos ? Host().currentDirectory : pattern.substr(0, split);
    std::wstring namePattern = split == std::wstring::npos ? pattern : pattern.substr(split + 1);
    while (folder.size() > 1 && (folder.back() == L'\\' || folder.back() == L'/')) folder.pop_back();
    if (namePattern.empty()) return FALSE;
    root_ = folder;
    std::wstring lookup = folder.size() == 2 && folder[1] == L':' ? folder + L"\\" : folder;
    if (!HasWildcards(namePattern)) {
        // Found as spelt, the file needs no resolving: one look-up in all.
        std::wstring name = lookup + L"\\" + namePattern;
        fs::path file = SpelledPath(name);
        struct stat info {};
        if (file.empty() || ::stat(file.c_str(), &info) != 0) {
            file = ResolvePath(name);
            if (::stat(file.c_str(), &info) != 0) return FALSE;
        }
        hits_.push_back(MakeHit(WideFromUtf8(file.filename().string()), info));
        return TRUE;
    }
    fs::path base = ResolvePath(lookup.empty() ? L"\\" : lookup);
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(base, error)) {
        std::wstring entryName = WideFromUtf8(entry.path().filename().string());
        if (MatchFileSpec(namePattern, entryName)) hits_.push_back(MakeHit(entryName, entry.path()));
    }
    if (!IsRootFolder(folder)) {
        for (const wchar_t* dots : {L".", L".."})
            if (MatchFileSpec(namePattern, dots)) hits_.push_back({dots, FILE_ATTRIBUTE_DIRECTORY, 0});
    }
    std::sort(hits_.begin(), hits_.end(),
              [](const Hit& a, const Hit& b) { return UpperCase(a.name) < UpperCase(b.name); });
    return hits_.empty() ? FALSE : TRUE;
}

BOOL CFileFind::FindNextFileW() {
    if (next_ >= hits_.size()) return FALSE;
    ++next_;
    return next_ < hits_.size() ? TRUE : FALSE;
}

void CFileFind::Close() {
    root_.clear();
    hits_.clear();
    next_ = 0;
}

const CFileFind::Hit* CFileFind::Current() const {
    return next_ == 0 || next_ > hits_.size() ? nullptr : &hits_[next_ - 1];
}

BOOL CFileFind::IsDots() const {
    const Hit* hit = Current();
    return hit && (hit->name == L"." || hit->name == L"..") ? TRUE : FALSE;
}

BOOL CFileFind::IsDirectory() const { return MatchesMask(FILE_ATTRIBUTE_DIRECTORY); }

BOOL CFileFind::MatchesMask(DWORD attributes) const {
    const Hit* hit = Current();
    return hit && (hit->attributes & attributes) ? TRUE : FALSE;
}

std::wstring CFileFind::GetFileName() const {
    const Hit* hit = Current();
    return hit ? hit->name : std::wstring();
}

std::wstring CFileFind::GetFilePath() const {
    const Hit* hit = Current();
    if (!hit) return {};
    bool endsInSeparator = !root_.empty() && (root_.back() == L'\\' || root_.back() == L'/');
    return endsInSeparator ? root_ + hit->name : root_ + L"\\" + hit->name;
}

std::wstring CFileFind::GetFileTitle() const {
    std::wstring name = GetFileName();
    size_t dot = name.find_last_of(L'.');
    return dot == std::wstring::npos || dot == 0 ? name : name.substr(0, dot);
}

std::wstring CFileFind::GetRoot() const { return root_; }

ULONGLONG CFileFind::GetLength() const {
    const Hit* hit = Current();
    return hit ? hit->length : 0;
}
