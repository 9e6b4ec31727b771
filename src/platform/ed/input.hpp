#pragma once
// Where the host's command line takes its next line: the script, or the terminal. The host
// program installs the source; prompts of interactive commands read their answers from it.
#include <functional>
#include <string>

using HostInputSource = std::function<bool(const std::wstring& prompt, std::wstring& line)>;

void SetHostInputSource(HostInputSource source);
// False when the input has ended (or no source is installed).
bool ReadHostInputLine(const std::wstring& prompt, std::wstring& line);
