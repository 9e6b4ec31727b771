#include "platform/db/dimension_graphics.hpp"

#include <cmath>
#include <cstdio>
#include <memory>
#include <sstream>

#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/line.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/ocs.hpp"
#include "platform/db/polyline.hpp"
#include "platform/db/text_metrics.hpp"

namespace tavrik::dimension_graphics {

namespace {

// The sizes of one dimension, in drawing units: its variables times DIMSCALE (0 counts as 1).
struct Sizes {
    double arrow, extOffset, extBeyond, gap, text;
    int lineColor, extColor, textColor;
};

Sizes SizesOf(const AcDbDimension& dim) {
    double scale = dim.dimscale() == 0.0 ? 1.0 : dim.dimscale();
    return {dim.dimasz() * scale, dim.dimexo() * scale, dim.dimexe() * scale, dim.dimgap() * scale,
            dim.dimtxt() * scale, dim.dimclrd().colorIndex(), dim.dimclre().colorIndex(),
            dim.dimclrt().colorIndex()};
}

wchar_t Separator(const AcDbDimension& dim) {
    int code = dim.intVar(278);
    return code > 32 && code < 127 ? static_cast<wchar_t>(code) : L'.';
}

// A deviation with its sign; zero shows without one.
std::wstring SignedValue(double value, int decimals, int zin, wchar_t separator) {
    std::wstring digits = FormatValue(std::fabs(value), decimals, zin, separator);
    if (FormatValue(0.0, decimals, zin, separator) == digits) return digits;
    return (value > 0.0 ? L"+" : L"-") + digits;
}

std::wstring FactorText(double factor) {
    std::ostringstream out;
    out << factor;
    std::string narrow = out.str();
    return std::wstring(narrow.begin(), narrow.end());
}

std::wstring ToleranceText(const AcDbDimension& dim) {
    if (!dim.dimtol()) return L"";
    const wchar_t separator = Separator(dim);
    const int decimals = dim.dimtdec(), zin = dim.dimtzin();
    if (dim.dimtp() == dim.dimtm())
        return L"%%p" + FormatValue(std::fabs(dim.dimtp()), decimals, zin, separator);
    return L"{\\H" + FactorText(dim.dimtfac()) + L"x;\\S" +
           SignedValue(dim.dimtp(), decimals, zin, separator) + L"^" +
           SignedValue(-dim.dimtm(), decimals, zin, separator) + L";}";
}

// The width that the shown text takes: the value at full height, the tolerance at DIMTFAC.
double TextWidth(const AcDbDimension& dim, double height) {
    double measured = 0.0;
    dim.measurement(measured);
    std::wstring value = FormatValue(measured, dim.dimdec(), dim.dimzin(), Separator(dim));
    double width = text_metrics::lineWidth(value, height, 1.0);
    if (dim.dimtol()) width += text_metrics::lineWidth(L"+0.000", height * dim.dimtfac(), 1.0);
    return width;
}

// A direction turned so that text along it reads from the left or from below.
double ReadableAngle(double angle) {
    angle = std::remainder(angle, 2.0 * M_PI);
    if (angle <= -M_PI / 2.0 + 1e-9) angle += M_PI;
    if (angle > M_PI / 2.0 + 1e-9) angle -= M_PI;
    return angle;
}

Element Line(const AcGePoint3d& a, const AcGePoint3d& b, int color) {
    Element e;
    e.kind = Element::kLine;
    e.from = a;
    e.to = b;
    e.color = color;
    return e;
}

Element Arrow(const AcGePoint3d& tip, const AcGeVector3d& back, double size, int color) {
    Element e;
    e.kind = Element::kArrow;
    e.from = tip;
    e.to = tip + back * size;
    e.width = size / 3.0;
    e.color = color;
    return e;
}

Element Text(const AcDbDimension& dim, const AcGePoint3d& centre, double rotation, const Sizes& s) {
    Element e;
    e.kind = Element::kText;
    e.from = dim.isUsingDefaultTextPosition() ? centre : dim.textPosition();
    e.text = MeasurementText(dim);
    e.height = s.text;
    e.rotation = rotation;
    e.color = s.textColor;
    return e;
}

// Extension line from a measured point to the dimension line, offset from the point by DIMEXO
// and running DIMEXE beyond the line.
void AddExtensionLine(std::vector<Element>& out, const AcGePoint3d& from, const AcGePoint3d& onLine,
                      const Sizes& s) {
    AcGeVector3d along = onLine - from;
    if (along.length() <= 1e-12) return;
    along.normalize();
    out.push_back(Line(from + along * s.extOffset, onLine + along * s.extBeyond, s.extColor));
}

std::vector<Element> LinearGraphics(const AcDbDimension& dim, const AcGePoint3d& xLine1,
                                    const AcGePoint3d& xLine2, const AcGePoint3d& dimLine,
                                    const AcGeVector3d& direction) {
    const Sizes s = SizesOf(dim);
    const AcGeVector3d normal = dim.normal();
    const AcGeVector3d across = normal.crossProduct(direction);
    const AcGePoint3d p1 = xLine1 + across * (dimLine - xLine1).dotProduct(across);
    const AcGePoint3d p2 = xLine2 + across * (dimLine - xLine2).dotProduct(across);
    std::vector<Element> out;
    AddExtensionLine(out, xLine1, p1, s);
    AddExtensionLine(out, xLine2, p2, s);
    const double length = p1.distanceTo(p2);
    AcGeVector3d v = length > 1e-12 ? (p2 - p1) / length : direction;
    const double textWidth = TextWidth(dim, s.text);
    const bool arrowsInside = length >= 2.0 * s.arrow;
    const bool textInside = length >= textWidth + 2.0 * s.arrow;
    // Arrows point outward at the extension lines, from inside when they fit.
    AcGePoint3d lineStart = p1, lineEnd = p2;
    if (!arrowsInside) {
        lineStart = p1 - v * (2.0 * s.arrow);
        lineEnd = p2 + v * (2.0 * s.arrow);
    }
    out.push_back(Arrow(p1, arrowsInside ? v : -v, s.arrow, s.lineColor));
    out.push_back(Arrow(p2, arrowsInside ? -v : v, s.arrow, s.lineColor));

    const double lineAngle = tavrik::ocs::angleInPlane(v, normal);
    const bool horizontal = textInside ? dim.dimtih() : dim.dimtoh();
    const double textAngle = horizontal ? 0.0 : ReadableAngle(lineAngle);
    const double along = horizontal ? std::fabs(std::cos(lineAngle)) * textWidth +
                                          std::fabs(std::sin(lineAngle)) * s.text
                                    : textWidth;
    AcGePoint3d centre;
    const int just = dim.dimjust();
    if (!textInside) centre = p2 + v * (s.arrow + s.gap + along * 0.5);
    else if (just == 1 || just == 3) centre = p1 + v * (s.arrow + s.gap + along * 0.5);
    else if (just == 2 || just == 4) centre = p2 - v * (s.arrow + s.gap + along * 0.5);
    else centre = p1 + (p2 - p1) * 0.5;
    const bool above = dim.dimtad() != 0 && !horizontal;
    if (above) {
        AcGeVector3d up = normal.crossProduct(tavrik::ocs::directionInPlane(textAngle, normal));
        centre += up * (s.gap + s.text * 0.5);
    }
    if (!textInside) lineEnd = p2 + v * (s.arrow + s.gap + along);
    if (textInside && !above) {
        // The text sits on the line, which leaves it room.
        const double half = along * 0.5 + s.gap;
        const double at = (centre - p1).dotProduct(v);
        out.push_back(Line(lineStart, p1 + v * std::max(0.0, at - half), s.lineColor));
        out.push_back(Line(p1 + v * std::min(length, at + half), lineEnd, s.lineColor));
    } else {
        out.push_back(Line(lineStart, lineEnd, s.lineColor));
    }
    out.push_back(Text(dim, centre, textAngle, s));
    return out;
}

// An ordinate: the leader from the feature (less DIMEXO) to the leader end, bent across where
// the text stands off the feature's line, and the text beyond the end.
std::vector<Element> OrdinateGraphics(const AcDbOrdinateDimension& dim) {
    const Sizes s = SizesOf(dim);
    const AcGeVector3d normal = dim.normal();
    const AcGeVector3d axis = tavrik::ocs::directionInPlane(dim.isUsingXAxis() ? 0.5 * M_PI : 0.0, normal);
    const AcGePoint3d feature = dim.definingPoint(), end = dim.leaderEndPoint();
    const double run = (end - feature).dotProduct(axis);
    const AcGeVector3d out = run < 0.0 ? -axis : axis;
    const double reach = std::fabs(run);
    const AcGePoint3d start = feature + out * s.extOffset;
    const AcGeVector3d side = (end - feature) - axis * run;
    std::vector<Element> elements;
    if (side.length() <= 1e-9) {
        elements.push_back(Line(start, end, s.extColor));
    } else {
        // The bend: straight to 2 arrow sizes before the end, across over one arrow size.
        const double bendAt = std::max(s.extOffset, reach - 2.0 * s.arrow);
        const double bendEnd = std::max(bendAt, reach - s.arrow);
        const AcGePoint3d b1 = feature + out * bendAt;
        const AcGePoint3d b2 = feature + side + out * bendEnd;
        elements.push_back(Line(start, b1, s.extColor));
        elements.push_back(Line(b1, b2, s.extColor));
        elements.push_back(Line(b2, end, s.extColor));
    }
    // The text starts (or ends) just beyond the leader's end, whatever its width.
    const double leaderAngle = tavrik::ocs::angleInPlane(out, normal);
    const bool horizontal = dim.dimtoh() && dim.isUsingXAxis();
    const double textAngle = horizontal ? 0.0 : ReadableAngle(leaderAngle);
    Element text = Text(dim, end + out * s.gap, textAngle, s);
    if (horizontal) {
        text.attachment = out.dotProduct(tavrik::ocs::directionInPlane(0.5 * M_PI, normal)) > 0.0 ? 8 : 2;
    } else {
        const bool reading = out.dotProduct(tavrik::ocs::directionInPlane(textAngle, normal)) > 0.0;
        text.attachment = reading ? 4 : 6;
    }
    elements.push_back(text);
    return elements;
}

std::string KeyOf(const std::vector<Element>& elements) {
    std::ostringstream key;
    key.precision(12);
    for (const Element& e : elements) {
        key << e.kind << ' ' << e.from.x << ' ' << e.from.y << ' ' << e.from.z << ' ' << e.to.x
            << ' ' << e.to.y << ' ' << e.to.z << ' ' << e.color << ' ' << e.width << ' '
            << e.height << ' ' << e.rotation << ' ' << e.attachment << ' ' << e.text.size() << ':';
        for (wchar_t c : e.text) key << static_cast<unsigned>(c) << ',';
        key << ';';
    }
    return key.str();
}

AcDbEntity* EntityOf(const Element& e, const AcGeVector3d& normal) {
    AcDbEntity* entity = nullptr;
    if (e.kind == Element::kLine) {
        entity = new AcDbLine(e.from, e.to);
    } else if (e.kind == Element::kArrow) {
        // A tapered polyline: full width at the base, none at the tip.
        auto* arrow = new AcDbPolyline(2);
        arrow->addVertexAt(0, AcGePoint2d(e.to.x, e.to.y), 0.0, e.width, 0.0);
        arrow->addVertexAt(1, AcGePoint2d(e.from.x, e.from.y), 0.0, 0.0, 0.0);
        arrow->setElevation(e.from.z);
        entity = arrow;
    } else {
        auto* text = new AcDbMText;
        text->setLocation(e.from);
        text->setContents(e.text);
        text->setTextHeight(e.height);
        text->setAttachment(static_cast<AcDbMText::AttachmentPoint>(e.attachment));
        text->setNormal(normal);
        text->setRotation(e.rotation);
        entity = text;
    }
    entity->setLayerName(L"0");
    entity->setColorIndex(static_cast<std::uint16_t>(e.color));
    return entity;
}

}  // namespace

std::wstring FormatValue(double value, int decimals, int zin, wchar_t separator) {
    if (decimals < 0) decimals = 0;
    if (decimals > 8) decimals = 8;
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.*f", decimals, value + 0.0);
    std::wstring text(buffer, buffer + std::char_traits<char>::length(buffer));
    if (text.find_first_not_of(L"-0.") == std::wstring::npos && text[0] == L'-') text.erase(0, 1);
    size_t point = text.find(L'.');
    if (point != std::wstring::npos) {
        text[point] = separator;
        if (zin & 8) {
            text.erase(text.find_last_not_of(L'0') + 1);
            if (text.back() == separator) text.pop_back();
        }
    }
    if (zin & 4) {
        size_t digit = text[0] == L'-' ? 1 : 0;
        if (text.size() > digit + 1 && text[digit] == L'0' && text[digit + 1] == separator)
            text.erase(digit, 1);
    }
    return text;
}

std::wstring MeasurementText(const AcDbDimension& dim) {
    double measured = 0.0;
    dim.measurement(measured);
    std::wstring value = FormatValue(measured, dim.dimdec(), dim.dimzin(), Separator(dim));
    std::wstring shown = dim.dimensionText();
    if (shown.empty()) shown = L"<>";
    size_t at = shown.find(L"<>");
    if (at != std::wstring::npos) shown.replace(at, 2, value);
    std::wstring tolerance = ToleranceText(dim);
    if (tolerance.empty()) return shown;
    const int justify = dim.dimtolj();
    return L"\\A" + std::to_wstring(justify < 0 || justify > 2 ? 1 : justify) + L";" + shown +
           tolerance;
}

std::vector<Element> BuildGraphics(const AcDbDimension& dim) {
    if (auto* ordinate = AcDbOrdinateDimension::cast(&dim)) return OrdinateGraphics(*ordinate);
    if (auto* rotated = AcDbRotatedDimension::cast(&dim))
        return LinearGraphics(dim, rotated->xLine1Point(), rotated->xLine2Point(),
                              rotated->dimLinePoint(),
                              tavrik::ocs::directionInPlane(rotated->rotation(), dim.normal()));
    if (auto* aligned = AcDbAlignedDimension::cast(&dim)) {
        AcGeVector3d along = aligned->xLine2Point() - aligned->xLine1Point();
        along -= dim.normal() * along.dotProduct(dim.normal());
        if (along.length() <= 1e-12) along = tavrik::ocs::directionInPlane(0.0, dim.normal());
        return LinearGraphics(dim, aligned->xLine1Point(), aligned->xLine2Point(),
                              aligned->dimLinePoint(), along.normal());
    }
    return {};
}

namespace {

std::string GraphicsKey(const AcDbDimension& dim) { return KeyOf(BuildGraphics(dim)); }

// Fills the dimension's block (made when it names none) with entities for `elements`.
Acad::ErrorStatus FillBlock(AcDbDimension& dim, const std::vector<Element>& elements) {
    AcDbDatabase* db = dim.database();
    if (db == nullptr) return Acad::eNoDatabase;
    AcDbBlockTableRecord* block = nullptr;
    if (!dim.dimBlockId().isNull() &&
        acdbOpenObject(block, dim.dimBlockId(), AcDb::kForWrite) == Acad::eOk) {
        for (const AcDbObjectId& id : block->entityIds()) {
            AcDbEntity* old = nullptr;
            if (acdbOpenAcDbEntity(old, id, AcDb::kForWrite) != Acad::eOk) continue;
            old->erase();
            old->close();
        }
    } else {
        AcDbBlockTable* blocks = nullptr;
        Acad::ErrorStatus es = db->getSymbolTable(blocks, AcDb::kForWrite);
        if (es != Acad::eOk) return es;
        std::wstring name;
        for (int n = 1; name.empty() || blocks->has(name); ++n) name = L"*D" + std::to_wstring(n);
        block = new AcDbBlockTableRecord;
        block->setName(name);
        block->setFlagBits(1);
        AcDbObjectId id;
        es = blocks->add(id, block);
        blocks->close();
        if (es != Acad::eOk) {
            delete block;
            return es;
        }
        dim.setDimBlockId(id);
    }
    for (const Element& e : elements) {
        AcDbEntity* entity = EntityOf(e, dim.normal());
        if (block->appendAcDbEntity(entity) != Acad::eOk) {
            delete entity;
            continue;
        }
        entity->close();
    }
    block->close();
    return Acad::eOk;
}

}  // namespace

}  // namespace tavrik::dimension_graphics

Acad::ErrorStatus AcDbDimension::recomputeDimBlock(bool forceUpdate) {
    using namespace tavrik::dimension_graphics;
    std::vector<Element> elements = BuildGraphics(*this);
    if (elements.empty()) return Acad::eOk;  // kinds the platform does not draw keep their block
    std::string key = KeyOf(elements);
    if (!forceUpdate && key == m_graphicsKey && !m_block.isNull()) return Acad::eOk;
    for (const Element& e : elements)
        if (e.kind == Element::kText && isUsingDefaultTextPosition()) m_textPosition = e.from;
    Acad::ErrorStatus es = FillBlock(*this, elements);
    if (es == Acad::eOk) m_graphicsKey = key;
    return es;
}

void AcDbDimension::markGraphicsCurrent() {
    m_graphicsKey = tavrik::dimension_graphics::GraphicsKey(*this);
}

// A dimension read from a file keeps the file's block until its definition changes: the reader
// marks the block current once the names are resolved, and closes before that are the read's.
void AcDbDimension::closedAfterWrite() {
    if (!m_graphicsKey.empty() || fileTags().empty()) recomputeDimBlock(false);
}
