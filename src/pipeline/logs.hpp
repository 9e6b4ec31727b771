#pragma once
// The batch's files: the trace logs, the hand-off that the UG side leaves, the out log; and the
// text routines that every reader of the tool's text files shares.
#include <string>
#include <vector>

#include "platform/win/wintypes.hpp"

// Fixed paths of the tool on drive D.
inline constexpr const wchar_t* kCgLogPath = L"d:\\Mytool\\cad\\Cg.log";
inline constexpr const wchar_t* kMsgTxtPath = L"d:\\Mytool\\cad\\msg.txt";
inline constexpr const wchar_t* kOutLogPath = L"d:\\Mytool\\cad\\Dorvaultout.log";
inline constexpr const wchar_t* kLogLogPath = L"D:\\MYTOOL\\CAD\\Log.log";

// Names of the hand-off files in the hand-off folder.
inline constexpr const char* kUgmLogName = "ugm.log";
inline constexpr const char* kUgoutLogName = "ugout.log";

// The hand-off folder: the value of LOCALAPPDATA followed by "\Convert\", narrow (host code
// page), and widened by WideFromNarrow.
std::string HandOffFolderA();
std::wstring HandOffFolder();
// A hand-off file as the batch names it: the folder, "\" and the name, so with a doubled
// backslash.
std::string HandOffFileA(const char* name);

// Appends a text to a log file that exists; a missing log file turns the message off. The text
// is written as given, without a line end of its own.
void AppendLogText(LPCTSTR text, const std::wstring& path);
void AppendLogText(std::wstring text, const std::wstring& path);
void AppendLogInt(int value, const std::wstring& path);        // "%d"
void AppendLogDouble(double value, const std::wstring& path);  // "%f"

// Lines 1 and 2 of ugm.log. 0, with both strings untouched, when there is no ugm.log.
int ReadHandOff(std::wstring& firstLine, std::wstring& secondLine);
// Appends the trimmed non-empty lines of a text file to `lines`. 0 when the file is missing.
int ReadLines(std::vector<std::wstring>& lines, const std::wstring& path);

// Appends to `tokens` the pieces of `text` in upper case between the delimiters. Empty pieces
// between two delimiters are kept; an empty rest after the last delimiter is not.
void SplitString(const std::wstring& text, const std::wstring& delimiter,
                 std::vector<std::wstring>& tokens);
// The name after the last backslash, up to its first point; empty for a name without a point.
std::wstring FileTitle(const std::wstring& path);
// True when a file search for the path finds anything (wild cards act as such).
bool FileExists(const std::wstring& path);
