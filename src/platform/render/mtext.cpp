// Multi-line texts with their format codes applied: each paragraph a line of runs (broken into
// lines at the text's width when it has one), each run
// in its own height, width, slant, colour and weight, with its under-, over- and strike-through
// lines; stacks drawn as tolerances (one part over the other), fractions (with a bar) or
// diagonal fractions (with a slash). Lines are placed by the attachment point (rows top,
// middle, bottom; columns left, centre, right). Units are the text's height, y up.
#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/db/mtext.hpp"
#include "platform/dxf/model.hpp"
#include "platform/render/mtext_format.hpp"
#include "platform/render/text_frame.hpp"

namespace tavrik::render {

namespace {

// Lines are spaced at 5/3 of their tallest height times the spacing factor.
constexpr double kLinePitch = 5.0 / 3.0;
// The parts of a stack are this much of the run's height; a tolerance or fraction keeps this
// much of the run's height between the middle of the line and each part.
constexpr double kStackPartScale = 0.7;
constexpr double kStackGap = 0.1;
// Italic text leans by this many degrees more.
constexpr double kItalicDegrees = 15.0;
// A line's box reaches this far below its baseline and above it, in its heights (descenders,
// stacks and overlines included).
constexpr double kDescent = -0.35, kAscent = 1.25;
// Texts are measured for their box at this many pixels to the text height, where the font's
// metrics are those of a readable size.
constexpr double kMeasureScale = 100.0;
// Under-, over- and strike-through lines: their heights and thickness, in run heights.
constexpr double kUnderline = -0.2, kOverline = 1.2, kStrike = 0.5, kRuleThickness = 0.06;

std::string Shown(const std::wstring& text) { return dxf::Utf8(ExpandControlCodes(text)); }

// Enters a run's own plane at (u, v) of the text: its height, width factor and slant; the font
// in its weight. Restored by cairo_restore.
void EnterRun(Canvas& canvas, const RunLook& look, double u, double v, double height) {
    cairo_save(canvas.cr);
    double slant = std::tan((look.obliqueDegrees + (look.italic ? kItalicDegrees : 0.0)) * M_PI / 180);
    cairo_matrix_t m;
    cairo_matrix_init(&m, look.widthFactor * height, 0.0, -slant * height, height, u, -v);
    cairo_transform(canvas.cr, &m);
    cairo_select_font_face(canvas.cr, kTextFont, CAIRO_FONT_SLANT_NORMAL,
                           look.bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(canvas.cr, 1.0 / canvas.capHeightPerEm);
}

// The advance of a piece of text in its run's plane, tracking included; shown at (0, 0)
// when draw is set.
double ShowPiece(Canvas& canvas, const RunLook& look, const std::string& utf8, bool draw) {
    if (look.tracking == 1.0) {
        if (draw) {
            cairo_move_to(canvas.cr, 0, 0);
            cairo_show_text(canvas.cr, utf8.c_str());
        }
        return AdvanceOf(canvas, utf8);
    }
    double u = 0.0;
    for (size_t i = 0; i < utf8.size();) {
        size_t n = 1;
        while (i + n < utf8.size() && (static_cast<unsigned char>(utf8[i + n]) & 0xC0) == 0x80) ++n;
        std::string glyph = utf8.substr(i, n);
        if (draw) {
            cairo_move_to(canvas.cr, u, 0);
            cairo_show_text(canvas.cr, glyph.c_str());
        }
        u += AdvanceOf(canvas, glyph) * look.tracking;
        i += n;
    }
    return u;
}

// The advance of text in the text's units at the given height, shown at (u, v) when draw is set.
double Piece(Canvas& canvas, const RunLook& look, const std::wstring& text, double height, double u, double v,
             bool draw) {
    EnterRun(canvas, look, u, v, height);
    double advance = ShowPiece(canvas, look, Shown(text), draw) * look.widthFactor * height;
    cairo_new_path(canvas.cr);  // the glyphs' start points are no part of a later stroke
    cairo_restore(canvas.cr);
    return advance;
}

struct StackShape {
    double upperWidth = 0.0, lowerWidth = 0.0, width = 0.0;
};

StackShape MeasureStack(Canvas& canvas, const TextRun& run) {
    double part = run.look.height * kStackPartScale;
    StackShape shape;
    shape.upperWidth = Piece(canvas, run.look, run.upper, part, 0, 0, false);
    shape.lowerWidth = Piece(canvas, run.look, run.lower, part, 0, 0, false);
    shape.width = run.stack == StackKind::kDiagonal ? shape.upperWidth + part + shape.lowerWidth
                                                    : std::max(shape.upperWidth, shape.lowerWidth);
    return shape;
}

double RunWidth(Canvas& canvas, const TextRun& run) {
    if (run.stack != StackKind::kNone) return MeasureStack(canvas, run).width;
    return Piece(canvas, run.look, run.text, run.look.height, 0, 0, false);
}

void FillBand(Canvas& canvas, double u0, double u1, double v, double thickness) {
    cairo_rectangle(canvas.cr, u0, -(v + thickness / 2), u1 - u0, thickness);
    cairo_fill(canvas.cr);
}

void DrawRules(Canvas& canvas, const RunLook& look, double u, double v, double width) {
    double t = kRuleThickness * look.height;
    if (look.underline) FillBand(canvas, u, u + width, v + kUnderline * look.height, t);
    if (look.overline) FillBand(canvas, u, u + width, v + kOverline * look.height, t);
    if (look.strike) FillBand(canvas, u, u + width, v + kStrike * look.height, t);
}

// A stack about the middle of its line (half the line's height above the baseline v).
void DrawStack(Canvas& canvas, const TextRun& run, double u, double v, double lineHeight) {
    StackShape shape = MeasureStack(canvas, run);
    double part = run.look.height * kStackPartScale;
    double middle = v + lineHeight / 2;
    double gap = kStackGap * run.look.height;
    if (run.stack == StackKind::kDiagonal) {
        double slashU = u + shape.upperWidth;
        Piece(canvas, run.look, run.upper, part, u, middle, true);
        Piece(canvas, run.look, run.lower, part, slashU + part, middle - part - gap, true);
        cairo_move_to(canvas.cr, slashU + part * 0.2, -(middle - part - gap));
        cairo_line_to(canvas.cr, slashU + part * 0.8, -(middle + part));
    } else {
        bool centred = run.stack == StackKind::kFraction;
        double upperU = centred ? u + (shape.width - shape.upperWidth) / 2 : u;
        double lowerU = centred ? u + (shape.width - shape.lowerWidth) / 2 : u;
        Piece(canvas, run.look, run.upper, part, upperU, middle + gap, true);
        Piece(canvas, run.look, run.lower, part, lowerU, middle - gap - part, true);
        if (centred) {
            cairo_move_to(canvas.cr, u, -middle);
            cairo_line_to(canvas.cr, u + shape.width, -middle);
        }
    }
    cairo_set_line_width(canvas.cr, kRuleThickness * run.look.height);
    cairo_stroke(canvas.cr);
}

// A line of the text: its runs and their widths, and its tallest height.
struct LaidLine {
    const Paragraph* runs = nullptr;
    std::vector<double> widths;
    double width = 0.0;
    double height = 1.0;
};

LaidLine LayOut(Canvas& canvas, const Paragraph& paragraph) {
    LaidLine line{&paragraph, {}, 0.0, paragraph.empty() ? 1.0 : 0.0};
    for (const TextRun& run : paragraph) {
        line.widths.push_back(RunWidth(canvas, run));
        line.width += line.widths.back();
        line.height = std::max(line.height, run.look.height);
    }
    return line;
}

void SetRunColor(Canvas& canvas, const RunLook& look, const Rgb& own) {
    Rgb color = own;
    if (look.hasTrueColor) {
        color = {(look.trueColor & 0xFF) / 255.0, (look.trueColor >> 8 & 0xFF) / 255.0,
                 (look.trueColor >> 16 & 0xFF) / 255.0};
    } else if (look.colorIndex >= 1 && look.colorIndex <= 255) {
        color = IndexColor(canvas, look.colorIndex);
    }
    cairo_set_source_rgb(canvas.cr, color.r, color.g, color.b);
}

void DrawLine(Canvas& canvas, const LaidLine& line, double u, double v, const Rgb& own) {
    for (size_t i = 0; i < line.runs->size(); ++i) {
        const TextRun& run = (*line.runs)[i];
        SetRunColor(canvas, run.look, own);
        if (run.stack != StackKind::kNone) DrawStack(canvas, run, u, v, line.height);
        else Piece(canvas, run.look, run.text, run.look.height, u, v, true);
        DrawRules(canvas, run.look, u, v, line.widths[i]);
        u += line.widths[i];
    }
}

// Where a line may break: after a space, and before and after an ideograph (CJK text breaks
// between any two of them).
bool IsIdeograph(wchar_t c) { return c >= 0x2E80; }

std::vector<std::wstring> BreakPieces(const std::wstring& text) {
    std::vector<std::wstring> pieces(1);
    for (wchar_t c : text) {
        if (IsIdeograph(c) && !pieces.back().empty()) pieces.emplace_back();
        pieces.back() += c;
        if (c == L' ' || IsIdeograph(c)) pieces.emplace_back();
    }
    if (pieces.back().empty()) pieces.pop_back();
    return pieces;
}

// A paragraph broken into lines no wider than limit (in text heights) where it can break, each
// piece a run of its own; a piece wider than the limit stands on a line of its own.
std::vector<Paragraph> Wrap(Canvas& canvas, const Paragraph& paragraph, double limit) {
    std::vector<Paragraph> lines(1);
    double width = 0.0;
    auto place = [&](const TextRun& run, double runWidth) {
        if (width + runWidth > limit && width > 0.0) {
            lines.emplace_back();
            width = 0.0;
        }
        lines.back().push_back(run);
        width += runWidth;
    };
    for (const TextRun& run : paragraph) {
        if (run.stack != StackKind::kNone) {
            place(run, RunWidth(canvas, run));
            continue;
        }
        for (const std::wstring& piece : BreakPieces(run.text)) {
            TextRun part = run;
            part.text = piece;
            place(part, Piece(canvas, run.look, piece, run.look.height, 0, 0, false));
        }
    }
    return lines;
}

// The text's plane: along its direction, up across it, one unit its height.
TextFrame FrameOf(const AcDbMText& mtext) {
    double height = mtext.textHeight() > 0 ? mtext.textHeight() : 2.5;
    AcGeVector3d direction = mtext.direction();
    if (direction.length() < 1e-12) direction = AcGeVector3d(1, 0, 0);
    direction = direction / direction.length();
    AcGeVector3d up = mtext.normal().crossProduct(direction);
    if (up.length() < 1e-12) up = AcGeVector3d(-direction.y, direction.x, 0);
    return {mtext.location(), direction * height, up / up.length() * height};
}

// The lines of a text laid out in the current frame: each line's runs and widths, its baseline
// and where it starts, placed by the attachment point.
struct TextLayout {
    std::vector<Paragraph> paragraphs;
    std::vector<LaidLine> lines;
    std::vector<double> baselines, starts;
};

void LayOutText(Canvas& canvas, const AcDbMText& mtext, TextLayout& layout) {
    double height = mtext.textHeight() > 0 ? mtext.textHeight() : 2.5;
    double limit = mtext.width() / height;
    for (const Paragraph& paragraph : ParseMText(mtext.contents(), height)) {
        if (limit <= 0.0) {
            layout.paragraphs.push_back(paragraph);
            continue;
        }
        for (Paragraph& line : Wrap(canvas, paragraph, limit)) layout.paragraphs.push_back(std::move(line));
    }
    for (const Paragraph& paragraph : layout.paragraphs) layout.lines.push_back(LayOut(canvas, paragraph));
    // Baselines below the top: the first at its line's height, each next one a pitch of its own
    // height lower.
    double spacing = kLinePitch * (mtext.lineSpacingFactor() > 0 ? mtext.lineSpacingFactor() : 1.0);
    layout.baselines.push_back(-layout.lines.front().height);
    for (size_t i = 1; i < layout.lines.size(); ++i)
        layout.baselines.push_back(layout.baselines.back() - spacing * layout.lines[i].height);
    double block = -layout.baselines.back();
    int attachment = static_cast<int>(mtext.attachment());
    int row = (attachment - 1) / 3, column = (attachment - 1) % 3;
    double shift = row == 0 ? 0.0 : row == 1 ? block / 2 : block;
    for (size_t i = 0; i < layout.lines.size(); ++i) {
        double width = layout.lines[i].width;
        layout.baselines[i] += shift;
        layout.starts.push_back(column == 0 ? 0.0 : column == 1 ? -width / 2 : -width);
    }
}

}  // namespace

void DrawMultiLine(Canvas& canvas, const AcDbMText& mtext, const BlockContext& context) {
    if (!EnterFrame(canvas, context, FrameOf(mtext))) return;
    TextLayout layout;
    LayOutText(canvas, mtext, layout);
    Rgb own = PenOf(canvas, mtext, context).color;
    for (size_t i = 0; i < layout.lines.size(); ++i)
        DrawLine(canvas, layout.lines[i], layout.starts[i], layout.baselines[i], own);
    cairo_restore(canvas.cr);
}

bool MTextExtents(Canvas& measure, const AcDbMText& mtext, AcDbExtents& box) {
    TextFrame frame = FrameOf(mtext);
    cairo_save(measure.cr);
    cairo_identity_matrix(measure.cr);
    cairo_scale(measure.cr, kMeasureScale, kMeasureScale);
    cairo_set_font_size(measure.cr, 1.0 / measure.capHeightPerEm);
    TextLayout layout;
    LayOutText(measure, mtext, layout);
    cairo_restore(measure.cr);
    for (size_t i = 0; i < layout.lines.size(); ++i) {
        double h = layout.lines[i].height, u = layout.starts[i], v = layout.baselines[i];
        for (double du : {0.0, layout.lines[i].width})
            for (double dv : {kDescent * h, kAscent * h})
                box.addPoint(frame.anchor + frame.xAxis * (u + du) + frame.yAxis * (v + dv));
    }
    return true;
}

}  // namespace tavrik::render
