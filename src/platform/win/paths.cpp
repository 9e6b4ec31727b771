#include "platform/win/paths.hpp"

#include <cwctype>
#include <system_error>
#include <vector>

#include "platform/win/codepage.hpp"
#include "platform/win/host_state.hpp"
#include "platform/win/text.hpp"

namespace fs = std::filesystem;

namespace {

bool IsSeparator(wchar_t c) { return c == L'\\' || c == L'/'; }

bool HasDrive(std::wstring_view path) {
    return path.size() >= 2 && path[1] == L':' && std::iswalpha(static_cast<wint_t>(path[0]));
}

std::vector<std::wstring> Components(std::wstring_view path) {
    std::vector<std::wstring> parts;
    std::wstring part;
    for (wchar_t c : path) {
        if (!IsSeparator(c)) {
            part += c;
        } else if (!part.empty()) {
            parts.push_back(part);
            part.clear();
        }
    }
    if (!part.empty()) parts.push_back(part);
    return parts;
}

// The entry of `folder` named `name`: the exact one, else one equal without regard to case.
fs::path MatchEntry(const fs::path& folder, const std::wstring& name) {
    std::string utf8 = Utf8FromWide(name);
    std::error_code error;
    if (fs::exists(folder / utf8, error)) return folder / utf8;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        if (EqualNoCase(WideFromUtf8(entry.path().filename().string()), name)) return entry.path();
    }
    return folder / utf8;
}

// A path as its root folder and its components.
struct Located {
    fs::path root;
    std::vector<std::wstring> parts;
};

// The path spelled exactly as given, without any look-up; empty when "." or ".." have to be
// folded first.
fs::path Spelled(const Located& located) {
    fs::path exact = located.root;
    for (const std::wstring& part : located.parts) {
        if (part == L"." || part == L"..") return {};
        exact /= Utf8FromWide(part);
    }
    return exact;
}

// The exact spelling, when it exists: then every folder on the way exists under its own
// spelling too, and the walk below would build the same path one look-up at a time. Empty when
// it does not exist or when "." or ".." have to be folded first.
fs::path ExactPath(const Located& located) {
    fs::path exact = Spelled(located);
    std::error_code error;
    return !exact.empty() && fs::exists(exact, error) ? exact : fs::path();
}

// "." and ".." act on the path built so far, as Windows folds them before any look-up; ".."
// stops at the root (a drive's folder), so no path leaves its drive.
fs::path Walk(const Located& located) {
    if (fs::path exact = ExactPath(located); !exact.empty()) return exact;
    const fs::path& root = located.root;
    const std::vector<std::wstring>& parts = located.parts;
    fs::path base = root;
    std::vector<fs::path> walked;
    for (const std::wstring& part : parts) {
        if (part == L".") continue;
        if (part == L"..") {
            if (!walked.empty()) walked.pop_back();
            base = walked.empty() ? root : walked.back();
            continue;
        }
        base = MatchEntry(base, part);
        walked.push_back(base);
    }
    return base;
}

}  // namespace

fs::path DriveFolder(wchar_t letter) {
    std::string name(1, static_cast<char>(std::towlower(static_cast<wint_t>(letter))));
    fs::path base = Host().prefix.empty() ? fs::current_path() : Host().prefix;
    return base / "drives" / name;
}

namespace {

// Where a Windows path hangs: a POSIX root, a drive's folder, or the current directory.
Located Locate(std::wstring_view path) {
    if (path.starts_with(L"/")) return {"/", Components(path)};
    if (HasDrive(path)) {
        std::wstring_view rest = path.substr(2);
        if (!rest.empty() && IsSeparator(rest.front())) return {DriveFolder(path[0]), Components(rest)};
        // "D:file" is relative to the current directory when that is on the same drive.
        std::wstring current = Host().currentDirectory;
        if (HasDrive(current) && std::towupper(static_cast<wint_t>(current[0])) ==
                                     std::towupper(static_cast<wint_t>(path[0])))
            return {DriveFolder(path[0]), Components(current.substr(2) + L"\\" + std::wstring(rest))};
        return {DriveFolder(path[0]), Components(rest)};
    }
    // The current directory is always a drive path (the prefix settings keep it so).
    std::wstring current = Host().currentDirectory;
    if (!path.empty() && IsSeparator(path.front())) return {DriveFolder(current[0]), Components(path)};
    return {DriveFolder(current[0]), Components(current.substr(2) + L"\\" + std::wstring(path))};
}

}  // namespace

fs::path ResolvePath(std::wstring_view path) { return Walk(Locate(path)); }

fs::path SpelledPath(std::wstring_view path) { return Spelled(Locate(path)); }

fs::path ResolvePathA(std::string_view ansiPath) { return ResolvePath(WideFromAnsi(ansiPath)); }

bool HasWildcards(std::wstring_view text) { return text.find_first_of(L"*?") != std::wstring_view::npos; }

namespace {

bool MatchFrom(std::wstring_view pattern, std::wstring_view name) {
    size_t p = 0, n = 0, starP = std::wstring_view::npos, starN = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == L'*') {
            starP = p++;
            starN = n;
        } else if (p < pattern.size() &&
                   (pattern[p] == L'?' || std::towupper(static_cast<wint_t>(pattern[p])) ==
                                              std::towupper(static_cast<wint_t>(name[n])))) {
            ++p;
            ++n;
        } else if (starP != std::wstring_view::npos) {
            p = starP + 1;
            n = ++starN;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == L'*') ++p;
    return p == pattern.size();
}

}  // namespace

bool MatchFileSpec(std::wstring_view pattern, std::wstring_view name) {
    if (MatchFrom(pattern, name)) return true;
    bool hasDot = name.find(L'.') != std::wstring_view::npos;
    // "x.*" also takes "x" itself, and "x." the names without an extension.
    if (pattern.ends_with(L".*") && !hasDot) return MatchFrom(pattern.substr(0, pattern.size() - 2), name);
    if (pattern.ends_with(L'.') && !hasDot) return MatchFrom(pattern.substr(0, pattern.size() - 1), name);
    return false;
}
