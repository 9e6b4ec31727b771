#pragma once
// Windows paths on POSIX. A drive path "D:\MYTOOL\cad\Cg.log" resolves below the prefix, at
// <prefix>/drives/d/MYTOOL/cad/Cg.log. Both '\' and '/' separate components. Each component
// is taken as spelt when it exists, else the first entry of the folder that equals it without
// regard to case, else as spelt (a file about to be created). A path without a drive hangs
// from the current directory (one with a leading separator, from its drive's root). A POSIX
// absolute path ("/tmp/x") keeps its root and is matched the same way.
#include <filesystem>
#include <string>
#include <string_view>

#include "platform/win/wintypes.hpp"

std::filesystem::path ResolvePath(std::wstring_view windowsPath);
// The path spelt exactly as given, below the same root, without looking anything up; empty
// when "." or ".." have to be folded first. When something exists there, ResolvePath gives this
// same path, so a look-up that finds it there needs no resolving.
std::filesystem::path SpelledPath(std::wstring_view windowsPath);
// A narrow path in the host code page.
std::filesystem::path ResolvePathA(std::string_view ansiPath);
// The folder that stands for a drive letter.
std::filesystem::path DriveFolder(wchar_t letter);

// A file-search pattern as Windows matches it against one name: no regard to case, '*' any
// run, '?' one character; "*.*" matches every name, a pattern ending in '.' names without an
// extension.
bool MatchFileSpec(std::wstring_view pattern, std::wstring_view name);
bool HasWildcards(std::wstring_view text);
