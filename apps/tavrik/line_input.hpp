#pragma once
// The terminal's command line: GNU readline with line editing and a history of the session.
// Esc (alone) cancels the line, as "^C" typed: the prompt gets RTCAN.
#include <string>

enum class ReadResult { kLine, kEnd, kTimeout };

// Waits at most `timeoutMs` (-1: without limit) for a whole line typed at the terminal; a line
// half typed when the time runs out stays on the screen for the next call.
ReadResult ReadTerminalLine(const std::wstring& prompt, long long timeoutMs, std::wstring& line);
