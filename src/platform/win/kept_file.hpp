#pragma once
// Appending to a text file many times in a row (the module's trace logs) without opening and
// closing it for each text. What lands in the file is what CStdioFile writes when opened with
// modeCreate | modeNoTruncate | modeWrite, sought to its end, written in text mode and closed.
#include "platform/win/wintypes.hpp"

// Appends `text` through the descriptor kept from the last append to `path` under the same
// prefix and current directory, when the file there is still the one that append left: same
// device, inode, mode and size, so nothing else has written, moved, emptied or locked it since.
// FALSE, with nothing written, when no descriptor is kept or the file changed: the caller then
// appends through CStdioFile and may keep the file again.
BOOL AppendToKeptFile(LPCTSTR path, LPCTSTR text);
// Keeps a descriptor of the existing file at `path` for the appends that follow.
void KeepForAppending(LPCTSTR path);
