#include "run_guard.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <cstdio>
#include <thread>

#include "platform/db/database.hpp"
#include "platform/win/codepage.hpp"
#include "platform/win/files.hpp"
#include "platform/win/host_state.hpp"
#include "platform/win/messages.hpp"
#include "platform/win/paths.hpp"
#include "platform/win/recycle.hpp"
#include "platform/win/text.hpp"
#include "platform/win/whole_file.hpp"
#include "subcommands.hpp"

namespace fs = std::filesystem;

namespace {

constexpr const wchar_t* kTraceLog = L"d:\\Mytool\\cad\\Cg.log";
constexpr const wchar_t* kFallbackDrawing = L"d:\\Mytool\\temp\\Dorvault.dwg";

int lockFile = -1;  // open for the whole run: closing it would release the lock

std::wstring HandOffFile() {
    auto found = Host().environment.find(L"LOCALAPPDATA");
    std::wstring base = found == Host().environment.end() ? L"" : found->second;
    if (const char* process = std::getenv("LOCALAPPDATA")) base = WideFromUtf8(process);
    return base + L"\\Convert\\ugm.log";
}

std::wstring LastLine(const fs::path& file) {
    std::string bytes, error;
    if (!ReadWholeFile(file, bytes, error)) return L"(" + WideFromUtf8(error) + L")";
    std::wstring text = WideFromAnsi(bytes);
    while (!text.empty() && (text.back() == L'\n' || text.back() == L'\r')) text.pop_back();
    size_t start = text.find_last_of(L"\r\n");
    return start == std::wstring::npos ? text : text.substr(start + 1);
}

// The text after the last point; a name without one is its own extension.
std::wstring ExtensionOf(const std::wstring& name) {
    size_t point = name.rfind(L'.');
    return point == std::wstring::npos ? name : name.substr(point + 1);
}

// The file name of a path up to its first point; empty without one.
std::wstring TitleOf(const std::wstring& path) {
    size_t slash = path.find_last_of(L"\\/");
    std::wstring name = slash == std::wstring::npos ? path : path.substr(slash + 1);
    size_t point = name.find(L'.');
    return point == std::wstring::npos ? L"" : name.substr(0, point);
}

}  // namespace

bool LockPrefix(const fs::path& prefix, std::string& error, long& interruptedRun) {
    fs::path file = prefix / "tavrik.lock";
    int fd = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (fd < 0) {
        error = file.string() + ": cannot open the lock: " + std::strerror(errno);
        return false;
    }
    char holder[32] = {};
    bool locked = ::flock(fd, LOCK_EX | LOCK_NB) == 0;
    ssize_t n = ::pread(fd, holder, sizeof holder - 1, 0);
    std::string pid = n > 0 ? std::string(holder, static_cast<size_t>(n)) : "";
    if (!locked) {
        error = "another tavrik run (pid " + (pid.empty() ? std::string("unknown") : pid) + ") is working on the prefix " +
                prefix.string() + "; this run did not start. Run it again when that one has ended.";
        ::close(fd);
        return false;
    }
    interruptedRun = std::atol(pid.c_str());
    pid = std::to_string(::getpid());
    if (::ftruncate(fd, 0) != 0 || ::pwrite(fd, pid.data(), pid.size(), 0) < 0) {
        // Without the pid a refused run names no holder, and a kill of this run goes unnoticed
        // by the next; the lock itself holds.
    }
    lockFile = fd;
    return true;
}

void ReleasePrefix() {
    if (lockFile >= 0 && ::ftruncate(lockFile, 0) != 0) {
        // The next run takes this one for interrupted and looks for missing hand-off files.
    }
}

void RestoreInterruptedHandOff(const fs::path& prefix, long interruptedRun) {
    std::error_code code;
    fs::path handOff = ResolvePath(HandOffFile());
    if (interruptedRun <= 0 || !fs::is_regular_file(handOff, code)) return;
    fs::path folder = handOff.parent_path().lexically_relative(Host().prefix);
    // The interrupted run's entry: the newest whose name ends in its process id.
    std::string suffix = "-" + std::to_string(interruptedRun);
    std::string entry;
    std::vector<RecycledFile> files = ListRecycle(prefix);
    for (const RecycledFile& file : files) {
        std::string name = fs::path(file.item).begin()->string();
        if (name.size() > suffix.size() && name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0)
            entry = std::max(entry, name);
    }
    std::erase_if(files, [&](const RecycledFile& file) { return fs::path(file.item).begin()->string() != entry; });
    for (const RecycledFile& file : LatestVersions(files)) {
        if (fs::path(file.original).parent_path() != folder || fs::exists(prefix / file.original, code)) continue;
        std::string error;
        if (RestoreRecycled(prefix, file.item, error))
            std::fprintf(stderr, "tavrik: the run before (pid %ld) was ended inside the batch; %s is back from the recycle folder\n",
                         interruptedRun, file.original.c_str());
        else
            std::fprintf(stderr, "tavrik: %s\n", error.c_str());
    }
}

void StartDeadline(unsigned seconds) {
    fs::path trace = ResolvePath(kTraceLog);
    std::thread([seconds, trace] {
        std::this_thread::sleep_for(std::chrono::seconds(seconds));
        std::string last = Utf8FromWide(LastLine(trace));
        std::fprintf(stderr, "tavrik: the run took longer than %u s and was ended; last line of Cg.log: %s\n",
                     seconds, last.c_str());
        std::fflush(stderr);
        ::_exit(kExitFailure);
    }).detach();
}

HandOffTarget ReadHandOffTarget() {
    std::string bytes, error;
    if (!ReadWholeFile(ResolvePath(HandOffFile()), bytes, error)) return {};
    std::wstring text = WideFromAnsi(bytes);
    std::vector<std::wstring> lines(2);
    size_t at = 0;
    for (std::wstring& line : lines) {
        size_t end = text.find(L'\n', at);
        line = text.substr(at, end == std::wstring::npos ? std::wstring::npos : end - at);
        if (!line.empty() && line.back() == L'\r') line.pop_back();
        at = end == std::wstring::npos ? text.size() : end + 1;
    }
    // The name that the batch gives the merged drawing: the first line without blanks, the
    // part's stem without trailing hyphens, a point and the part's extension.
    std::wstring merged;
    for (wchar_t c : lines[0])
        if (c != L' ') merged += c;
    merged += TitleOf(lines[1]);
    while (!merged.empty() && merged.back() == L'-') merged.pop_back();
    return {merged + L"." + ExtensionOf(lines[1])};
}

bool CheckMergedDrawing(const HandOffTarget& target) {
    if (target.mergedPath.empty() || PathFileExistsW(HandOffFile().c_str())) return true;
    std::wstring problem;
    if (!PathFileExistsW(target.mergedPath.c_str())) {
        problem = L"does not exist";
    } else {
        AcDbDatabase merged(false, true);
        if (merged.readDwgFile(target.mergedPath.c_str()) == Acad::eOk) return true;
        problem = L"does not read: " + merged.lastError();
    }
    std::wstring message = L"tavrik: the batch ended but the merged drawing " + target.mergedPath + L" " + problem;
    if (PathFileExistsW(kFallbackDrawing)) message += std::wstring(L"; a drawing stands at ") + kFallbackDrawing;
    message += L". The exported drawings are kept in the recycle folder (tavrik recycle list).\n";
    WriteConsoleText(stderr, message);
    return false;
}
