#pragma once
// Editor and utility functions of the host: wild-card matching, distance parsing, the colour
// palette, console output and alerts, and the host's file search.
#include <cstddef>

#include "platform/win/wintypes.hpp"

// RTNORM when `text` matches `pattern` in the host's wild-card language, else RTNONE:
//   #  a digit            @  a letter          .  neither letter nor digit
//   *  any run            ?  any character     ~  (first) not the pattern
//   [...] one of, with ranges a-z     [~...] none of     `x  x literally
//   ,  separates alternatives, each of which may begin with ~
// Matching is case-sensitive, as the host's.
int acutWcMatch(const ACHAR* text, const ACHAR* pattern);

// Reads a distance in linear unit mode 1 (scientific), 2 (decimal), 3 (engineering),
// 4 (architectural) or 5 (fractional). RTNORM, or RTERROR when the text is no distance.
int acdbDisToF(const ACHAR* text, int unitMode, double* value);

// The RGB of a colour index (1 to 255) as COLORREF: red + green * 256 + blue * 65536.
DWORD acedGetRGB(int colorIndex);

int acutPrintf(const ACHAR* format, ...);  // to stdout
int acedAlert(const ACHAR* message);       // to stderr; waits only on an interactive host

// Finds a file by the host's search: an absolute path as is, else the current directory.
// The path found goes to `result`; RTNORM, or RTERROR when there is none.
int acedFindFile(const ACHAR* fileName, ACHAR* result, size_t capacity);
