#pragma once
#include <string>

// The platform has no font files, so text is measured by a fixed character cell: every
// character is as tall as the text height; a full-width character (CJK ideographs, kana,
// hangul, full-width forms) advances one height times the width factor, any other character
// kCellWidthRatio of that. Control codes of the drawing format (%%c, %%d, %%p) count as one
// character. All text extents of the database come from here.
namespace tavrik::text_metrics {
inline constexpr double kCellWidthRatio = 0.7;
bool isFullWidth(wchar_t c);
// The advance of a single-line text string, in drawing units.
double lineWidth(const std::wstring& text, double height, double widthFactor);
}  // namespace tavrik::text_metrics
