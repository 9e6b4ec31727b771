#include "pipeline/logs.hpp"

#include "pipeline/batch_files.hpp"
#include "platform/win/crt.hpp"
#include "platform/win/file_find.hpp"
#include "platform/win/format.hpp"
#include "platform/win/kept_file.hpp"
#include "platform/win/stdio_file.hpp"
#include "platform/win/text.hpp"

namespace {

// Create without truncating, for writing: the flags that the logs are opened with.
constexpr UINT kAppendFlags = CFile::modeCreate | CFile::modeNoTruncate | CFile::modeWrite;

}  // namespace

std::string HandOffFolderA() {
    const char* localAppData = crt::getenv("LOCALAPPDATA");
    return std::string(localAppData ? localAppData : "") + "\\Convert\\";
}

std::wstring HandOffFolder() { return WideFromNarrow(HandOffFolderA()); }

std::string HandOffFileA(const char* name) { return HandOffFolderA() + "\\" + name; }

void AppendLogText(LPCTSTR text, const std::wstring& path) {
    // A log is written to many times in a row: while nothing else touches it, the file of the
    // last text takes the next one without being looked up and opened again.
    if (AppendToKeptFile(path.c_str(), text)) return;
    // A log exists only when something outside has put it there: it is never created here.
    if (!FileExists(path)) return;
    CStdioFile file;
    if (!file.Open(path.c_str(), kAppendFlags)) return;
    file.SeekToEnd();
    file.WriteString(text);
    file.Close();
    KeepForAppending(path.c_str());
}

void AppendLogText(std::wstring text, const std::wstring& path) { AppendLogText(text.c_str(), path); }

void AppendLogInt(int value, const std::wstring& path) {
    AppendLogText(FormatHostString(L"%d", value), path);
}

void AppendLogDouble(double value, const std::wstring& path) {
    AppendLogText(FormatHostString(L"%f", value), path);
}

int ReadHandOff(std::wstring& firstLine, std::wstring& secondLine) {
    std::wstring path = WideFromNarrow(HandOffFileA(kUgmLogName));
    if (!FileExists(path)) return 0;
    CStdioFile file;
    if (!file.Open(path.c_str(), CFile::modeRead | CFile::shareDenyNone)) return 0;
    file.ReadString(firstLine);
    file.ReadString(secondLine);
    file.Close();
    return 1;
}

int ReadLines(std::vector<std::wstring>& lines, const std::wstring& path) {
    if (!FileExists(path)) return 0;
    CStdioFile file;
    if (!file.Open(path.c_str(), CFile::modeRead | CFile::shareDenyNone)) return 0;
    std::wstring line;
    while (file.ReadString(line)) {
        line = TrimBlanks(line);
        if (!line.empty()) lines.push_back(line);
    }
    file.Close();
    return 1;
}

void SplitString(const std::wstring& text, const std::wstring& delimiter,
                 std::vector<std::wstring>& tokens) {
    if (text.empty()) return;
    std::wstring rest = UpperCase(text);
    if (!delimiter.empty()) {
        for (size_t at = rest.find(delimiter); at != std::wstring::npos; at = rest.find(delimiter)) {
            tokens.push_back(rest.substr(0, at));
            rest.erase(0, at + delimiter.size());
        }
    }
    if (!rest.empty()) tokens.push_back(rest);
}

std::wstring FileTitle(const std::wstring& path) {
    size_t slash = path.rfind(L'\\');
    std::wstring name = slash == std::wstring::npos ? path : path.substr(slash + 1);
    size_t point = name.find(L'.');
    return point == std::wstring::npos ? std::wstring() : name.substr(0, point);
}

bool FileExists(const std::wstring& path) {
    CFileFind finder;
    bool found = finder.FindFile(path.c_str());
    finder.Close();
    return found;
}
