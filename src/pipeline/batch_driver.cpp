#include "pipeline/batch_driver.hpp"

#include <algorithm>
#include <string>
#include <vector>

#include "host/module_state.hpp"
#include "host/tavrik_app.hpp"
#include "pipeline/batch_files.hpp"
#include "pipeline/drawing_pipeline.hpp"
#include "pipeline/logs.hpp"
#include "pipeline/sheet_merge.hpp"
#include "platform/ed/ads.hpp"
#include "platform/ed/utilities.hpp"
#include "platform/win/crt.hpp"
#include "platform/win/files.hpp"
#include "platform/win/messages.hpp"

namespace {

// The drawings of the part: all files of the hand-off folder with the part's extension whose
// stem begins with the part's stem (the stem is a wild-card pattern, not escaped).
struct PartFiles {
    std::vector<std::wstring> allFiles;
    std::vector<std::wstring> todoFiles;
};

PartFiles SelectPartFiles(const std::vector<std::wstring>& candidates, const std::wstring& partStem,
                          const std::vector<std::wstring>& doneFiles) {
    PartFiles part;
    std::wstring pattern = partStem + L"*";
    for (const std::wstring& candidate : candidates) {
        if (acutWcMatch(FileTitle(candidate).c_str(), pattern.c_str()) != RTNORM) continue;
        part.allFiles.push_back(candidate);
        if (!ContainsNoCase(candidate, doneFiles, -1)) part.todoFiles.push_back(candidate);
    }
    return part;
}

std::wstring WithoutBlanks(std::wstring text) {
    text.erase(std::remove(text.begin(), text.end(), L' '), text.end());
    return text;
}

std::wstring TrimRight(std::wstring text, wchar_t character) {
    while (!text.empty() && text.back() == character) text.pop_back();
    return text;
}

// The merged drawing's path: the target folder (blanks gone), the part's stem without trailing
// hyphens, a point and the extension. The folder is made when missing.
std::wstring PrepareMergedFileName(std::wstring& targetFolder, const std::wstring& partStem,
                                   const std::wstring& partExtension) {
    targetFolder = WithoutBlanks(targetFolder);
    std::wstring merged = targetFolder;
    std::wstring folder = TrimRight(targetFolder, L'\\');
    if (!PathIsDirectoryW(folder.c_str())) MakeDirectories(folder);
    AppendLogText(L"准备合并\n", kCgLogPath);
    merged = TrimRight(merged + partStem, L'-');
    return merged + L"." + partExtension;
}

// Removes the out log, the progress file, both hand-off files and the part's drawings.
void RemoveHandOff(const std::vector<std::wstring>& allFiles) {
    DeleteFileW(kOutLogPath);
    DeleteFileW(L"d:\\mytool\\cad\\msg.txt");
    crt::remove(HandOffFileA(kUgoutLogName).c_str());
    crt::remove(HandOffFileA(kUgmLogName).c_str());
    for (const std::wstring& file : allFiles) DeleteFileW(file.c_str());
}

}  // namespace

void RunBatch() {
    AppendLogText(L"20191115\n", kCgLogPath);
    WaitForHostReady();
    std::wstring targetFolder, secondLine;
    if (!ReadHandOff(targetFolder, secondLine)) return;
    std::wstring partExtension = FileExtension(secondLine);
    std::wstring partStem = FileTitle(secondLine);
    std::vector<std::wstring> doneFiles;
    ReadLines(doneFiles, kOutLogPath);
    std::vector<std::wstring> candidates;
    ListFilesByExtension(candidates, WideFromNarrow(HandOffFolderA()), partExtension);
    if (candidates.empty()) return;
    PartFiles part = SelectPartFiles(candidates, partStem, doneFiles);
    if (part.allFiles.empty() || part.todoFiles.empty()) return;
    for (const std::wstring& path : part.todoFiles) {
        ProcessDrawing(path);
        AppendLogText(L"\n文件 " + path + L"处理完成", kCgLogPath);
    }
    std::wstring& merged = Module().MergedFileName;
    merged = PrepareMergedFileName(targetFolder, partStem, partExtension);
    DeleteFileW(merged.c_str());
    MergeDrawings(part.allFiles, merged, 0, 1);
    AppendLogText(L"合并后的文件 " + merged + L" ,正确合并\n", kCgLogPath);
    RemoveBadNameCharacters(merged);
    RemoveHandOff(part.allFiles);
    WaitForHostReady();
    SetTimer(nullptr, 1, 2000, QuitTimerProc);
}
