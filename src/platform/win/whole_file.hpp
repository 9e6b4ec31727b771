#pragma once
// Reading a whole small file (a script, host.ini, registry.reg) with an error that names the
// file and the reason: a folder, a file too large or unreadable is refused; a device is read
// up to the limit (an empty script from /dev/null), never without end.
#include <cstddef>
#include <filesystem>
#include <string>

inline constexpr std::size_t kWholeFileLimit = 64u << 20;

// False, with `error` as "PATH: REASON", when the file cannot be read whole.
bool ReadWholeFile(const std::filesystem::path& file, std::string& bytes, std::string& error,
                   std::size_t limit = kWholeFileLimit);
