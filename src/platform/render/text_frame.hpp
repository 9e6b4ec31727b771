#pragma once
#include <string>

#include "platform/render/canvas.hpp"

class AcDbMText;

// What single-line and multi-line texts share: the font, the text's own plane and the %% codes.
namespace tavrik::render {

// The font that the Debian package fonts-wqy-microhei installs; fontconfig falls back to
// another CJK font (fonts-noto-cjk) when it is missing.
inline constexpr const char* kTextFont = "WenQuanYi Micro Hei";

// A text's plane: its anchor and axes in world units of the block (x stretched by the width
// factor, y of the text's height).
struct TextFrame {
    AcGePoint3d anchor;
    AcGeVector3d xAxis;
    AcGeVector3d yAxis;
};

// Sets cairo's matrix so that one unit is the text height along the frame's axes, with y down
// as cairo draws glyphs, and the font so that its capitals are one unit high; saves the cairo
// state (the caller restores it). False, with nothing saved, when the text is too small to see
// or degenerate.
bool EnterFrame(Canvas& canvas, const BlockContext& context, const TextFrame& frame);
// The %% codes of texts: degree, diameter and plus-minus signs; the underline and overline
// toggles are dropped; "%%%" is a percent sign.
std::wstring ExpandControlCodes(const std::wstring& text);
// The advance of utf8 in the current font, in units of the current matrix.
double AdvanceOf(const Canvas& canvas, const std::string& utf8);

void DrawMultiLine(Canvas& canvas, const AcDbMText& mtext, const BlockContext& context);

}  // namespace tavrik::render
