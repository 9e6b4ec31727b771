#pragma once
// The small path and list routines of the batch.
#include <string>
#include <vector>

// The text after the last point; a name without a point gives itself back.
std::wstring FileExtension(const std::wstring& name);
// The path up to and including its last backslash; empty without one.
std::wstring FileFolder(const std::wstring& path);
// Appends the full paths of the files of `folder` whose extension is `extension` (no regard to
// case), in the order of the search. A folder that already ends in the extension's last three
// characters is taken as the search pattern itself.
void ListFilesByExtension(std::vector<std::wstring>& files, std::wstring folder,
                          const std::wstring& extension);
// 1 when an entry of `list` equals `text` without regard to case, else 0. `ignored` has no effect.
int ContainsNoCase(const std::wstring& text, const std::vector<std::wstring>& list, int ignored);
// Converts host code page text with mbstowcs under the user's default locale, which stays in
// force afterwards.
std::wstring WideFromNarrow(const std::string& text);
// Makes every missing folder along `path`, shortest first. True when the whole path is a folder
// afterwards.
bool MakeDirectories(std::wstring path);
