#pragma once
#include <cstdint>
#include <string>
#include <vector>

// The contents of a multi-line text read as what they show: paragraphs of runs, each run a
// piece of text in one look (height, width, slant, colour, font, lines), or a stack (a
// fraction or a tolerance) of an upper and a lower part.
namespace tavrik::render {

enum class StackKind {
    kNone,
    kTolerance,   // "^": upper over lower, left-aligned, no bar
    kFraction,    // "/": upper over lower, centred, a bar between
    kDiagonal,    // "#": upper left and raised, lower right and lowered, a slash between
};

// How a run looks. Heights and widths are factors of the text's own height and width. Fonts
// asked for by \f and \F are not kept: every family draws in the one CJK font, so that Chinese
// shows whatever the drawing names; their bold and italic flags are.
struct RunLook {
    double height = 1.0;
    double widthFactor = 1.0;
    double obliqueDegrees = 0.0;
    double tracking = 1.0;     // space between characters, as a factor of their advance
    int colorIndex = -1;       // -1: the text's own colour; else an ACI from \C
    bool hasTrueColor = false; // \c: trueColor (red in the low byte, as Windows writes it)
    std::uint32_t trueColor = 0;
    bool bold = false, italic = false;
    bool underline = false, overline = false, strike = false;
};

struct TextRun {
    std::wstring text;  // the shown text of a plain run; empty for a stack
    StackKind stack = StackKind::kNone;
    std::wstring upper, lower;
    RunLook look;
};

using Paragraph = std::vector<TextRun>;

// Reads the format codes: { } groups keep a look to themselves; \P (and \N, \X) start a new
// paragraph; \H \W \Q \T \C \c \f \F \L \l \O \o \K \k change the look; \S makes a stack;
// \~ is a space that does not break; \\ \{ \} are the characters; \A \p and unknown codes show
// nothing. An absolute \H is a height in drawing units, made a factor of textHeight. There is
// always at least one paragraph.
std::vector<Paragraph> ParseMText(const std::wstring& contents, double textHeight);

}  // namespace tavrik::render
