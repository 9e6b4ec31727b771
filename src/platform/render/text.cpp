// Texts and multi-line texts in one CJK font (every style, SHX or TrueType, maps to it), so
// that Chinese and Latin alike show. A text is laid out in its own plane: x along the
// baseline (stretched by the width factor), y up (slanted by the oblique angle), one unit the
// text's height; cairo's matrix carries that plane onto the device.
#include <cmath>
#include <cwctype>

#include "platform/db/mtext.hpp"
#include "platform/db/text.hpp"
#include "platform/dxf/model.hpp"
#include "platform/render/text_frame.hpp"

namespace tavrik::render {

namespace {

// Texts smaller than this on the device are not drawn: they would be a smudge.
constexpr double kSmallestHeightPx = 1.0;

void ShowLine(Canvas& canvas, const std::string& utf8, double u, double v) {
    cairo_move_to(canvas.cr, u, -v);
    cairo_show_text(canvas.cr, utf8.c_str());
}

void SetColor(Canvas& canvas, const AcDbEntity& entity, const BlockContext& context) {
    Pen pen = PenOf(canvas, entity, context);
    cairo_set_source_rgb(canvas.cr, pen.color.r, pen.color.g, pen.color.b);
}

AcGeVector3d Along(double angle) { return {std::cos(angle), std::sin(angle), 0.0}; }

// Where a single-line text's baseline starts, in units of its height, for its alignment.
void AlignOffset(const AcDbText& text, double advance, double& u, double& v) {
    u = 0.0;
    v = 0.0;
    switch (text.horizontalMode()) {
        case AcDb::kTextCenter: case AcDb::kTextMid: u = -advance / 2; break;
        case AcDb::kTextRight: u = -advance; break;
        default: break;
    }
    if (text.horizontalMode() == AcDb::kTextMid) v = -0.5;
    switch (text.verticalMode()) {
        case AcDb::kTextBottom: v = 0.3; break;
        case AcDb::kTextVertMid: v = -0.5; break;
        case AcDb::kTextTop: v = -1.0; break;
        default: break;
    }
}

void DrawSingleLine(Canvas& canvas, const AcDbText& text, const BlockContext& context) {
    if (const AcDbAttribute* attribute = AcDbAttribute::cast(&text); attribute && attribute->isInvisible()) return;
    if (const AcDbAttributeDefinition* definition = AcDbAttributeDefinition::cast(&text);
        definition && definition->isInvisible()) return;
    std::wstring content = text.textString();
    if (const AcDbAttributeDefinition* definition = AcDbAttributeDefinition::cast(&text)) content = definition->tag();
    std::string utf8 = dxf::Utf8(ExpandControlCodes(content));
    double height = text.height() > 0 ? text.height() : 2.5;
    double mirrorX = text.isMirroredInX() ? -1.0 : 1.0;
    double mirrorY = text.isMirroredInY() ? -1.0 : 1.0;
    TextFrame frame;
    frame.anchor = text.isDefaultAlignment() ? text.position() : text.alignmentPoint();
    frame.xAxis = Along(text.rotation()) * (height * text.widthFactor() * mirrorX);
    frame.yAxis = (Along(text.rotation() + M_PI / 2) + Along(text.rotation()) * std::tan(text.oblique())) *
                  (height * mirrorY);
    bool fitted = text.horizontalMode() == AcDb::kTextAlign || text.horizontalMode() == AcDb::kTextFit;
    if (!EnterFrame(canvas, context, frame)) return;
    double advance = AdvanceOf(canvas, utf8);
    if (fitted && advance > 0) {
        cairo_restore(canvas.cr);
        double span = (text.alignmentPoint() - text.position()).length();
        frame.anchor = text.position();
        frame.xAxis = Along(text.rotation()) * (span / advance * mirrorX);
        if (!EnterFrame(canvas, context, frame)) return;
    }
    double u = 0.0, v = 0.0;
    if (!fitted) AlignOffset(text, advance, u, v);
    SetColor(canvas, text, context);
    ShowLine(canvas, utf8, u, v);
    cairo_restore(canvas.cr);
}

}  // namespace

std::wstring ExpandControlCodes(const std::wstring& text) {
    std::wstring out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text.compare(i, 2, L"%%") != 0 || i + 2 >= text.size()) {
            out += text[i];
            continue;
        }
        wchar_t code = static_cast<wchar_t>(std::towlower(text[i + 2]));
        if (code == L'd') out += L'\u00B0';
        else if (code == L'c') out += L'\u00D8';
        else if (code == L'p') out += L'\u00B1';
        else if (code == L'%') out += L'%';
        else if (code != L'u' && code != L'o') out += text.substr(i, 3);
        i += 2;
    }
    return out;
}

double AdvanceOf(const Canvas& canvas, const std::string& utf8) {
    cairo_text_extents_t extents;
    cairo_text_extents(canvas.cr, utf8.c_str(), &extents);
    return extents.x_advance;
}

bool EnterFrame(Canvas& canvas, const BlockContext& context, const TextFrame& frame) {
    AcGePoint3d origin = context.xform * frame.anchor;
    AcGeVector3d x = context.xform * frame.xAxis;
    AcGeVector3d y = context.xform * frame.yAxis;
    if (y.length() * canvas.scale < kSmallestHeightPx) return false;
    DevicePoint o = canvas.toDevice(origin);
    cairo_matrix_t m;
    cairo_matrix_init(&m, x.x * canvas.scale, -x.y * canvas.scale, -y.x * canvas.scale, y.y * canvas.scale, o.x, o.y);
    cairo_matrix_t inverse = m;
    if (cairo_matrix_invert(&inverse) != CAIRO_STATUS_SUCCESS) return false;  // a degenerate text
    cairo_save(canvas.cr);
    cairo_set_matrix(canvas.cr, &m);
    cairo_set_font_size(canvas.cr, 1.0 / canvas.capHeightPerEm);
    return true;
}


void SelectTextFont(Canvas& canvas) {
    cairo_select_font_face(canvas.cr, kTextFont, CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(canvas.cr, 100.0);
    cairo_text_extents_t capital;
    cairo_text_extents(canvas.cr, "H", &capital);
    if (capital.height > 0) canvas.capHeightPerEm = capital.height / 100.0;
}

void DrawText(Canvas& canvas, const AcDbEntity& entity, const BlockContext& context) {
    if (const AcDbText* text = AcDbText::cast(&entity)) DrawSingleLine(canvas, *text, context);
    else if (const AcDbMText* mtext = AcDbMText::cast(&entity)) DrawMultiLine(canvas, *mtext, context);
}

}  // namespace tavrik::render
