#include "pipeline/batch_files.hpp"

#include <clocale>

#include "platform/win/crt.hpp"
#include "platform/win/file_find.hpp"
#include "platform/win/files.hpp"
#include "platform/win/text.hpp"

std::wstring FileExtension(const std::wstring& name) {
    size_t point = name.find(L'.');
    if (point == std::wstring::npos) return name;
    return FileExtension(name.substr(point + 1));
}

std::wstring FileFolder(const std::wstring& path) {
    size_t slash = path.rfind(L'\\');
    return slash == std::wstring::npos ? std::wstring() : path.substr(0, slash + 1);
}

void ListFilesByExtension(std::vector<std::wstring>& files, std::wstring folder,
                          const std::wstring& extension) {
    while (!folder.empty() && folder.back() == L'\\') folder.pop_back();
    // Three characters, whatever the extension's length: a folder that ends so is taken for a
    // ready search pattern.
    std::wstring lastThree = folder.substr(folder.size() < 3 ? 0 : folder.size() - 3);
    if (lastThree != extension) folder += L"\\*." + extension;

    CFileFind finder;
    BOOL more = finder.FindFile(folder.c_str());
    while (more) {
        more = finder.FindNextFileW();
        if (finder.IsDots() || finder.IsDirectory()) continue;
        if (!EqualNoCase(FileExtension(finder.GetFileName()), extension)) continue;
        files.push_back(finder.GetFilePath());
    }
    finder.Close();
}

int ContainsNoCase(const std::wstring& text, const std::vector<std::wstring>& list, int) {
    for (const std::wstring& entry : list)
        if (EqualNoCase(entry, text)) return 1;
    return 0;
}

std::wstring WideFromNarrow(const std::string& text) {
    // The name returned is that of the locale just set, so the user's default locale stays in
    // force: the text files with Chinese content are read and written under it.
    const char* selected = crt::setlocale(LC_ALL, "");
    std::string localeName = selected ? selected : "";
    std::wstring wide;
    size_t length = crt::mbstowcs(nullptr, text.c_str(), 0);
    if (length != static_cast<size_t>(-1)) {
        wide.resize(length);
        crt::mbstowcs(wide.data(), text.c_str(), length);
    }
    crt::setlocale(LC_ALL, localeName.c_str());
    return wide;
}

bool MakeDirectories(std::wstring path) {
    if (path.empty() || path.back() != L'\\') path += L'\\';
    for (size_t slash = path.find(L'\\'); slash != std::wstring::npos; slash = path.find(L'\\', slash + 1)) {
        std::wstring prefix = path.substr(0, slash);
        if (!PathIsDirectoryW(prefix.c_str())) CreateDirectoryW(prefix.c_str(), nullptr);
    }
    return PathIsDirectoryW(path.c_str());
}
