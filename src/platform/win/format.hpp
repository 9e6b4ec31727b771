#pragma once
// printf-style formatting of wide strings with the host's conventions: in a wide format "%s"
// and "%c" take wide arguments ("%hs", "%hc" narrow ones), and "%I64d" is a 64-bit integer.
#include <cstdarg>
#include <string>

std::wstring FormatHostStringV(const wchar_t* format, va_list args);
std::wstring FormatHostString(const wchar_t* format, ...);
