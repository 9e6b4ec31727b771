#include "platform/db/mtext.hpp"

#include <cmath>
#include <vector>

#include "platform/db/ocs.hpp"
#include "platform/db/text.hpp"
#include "platform/db/text_metrics.hpp"

ACRX_DEFINE_MEMBERS(AcDbMText, AcDbEntity, L"MTEXT")

namespace {
// Distance between base lines at spacing factor 1, in text heights.
constexpr double kLinePitch = 5.0 / 3.0;

// Skips a formatting code that runs up to and including the next ';'.
std::size_t skipToSemicolon(const std::wstring& s, std::size_t i) {
    std::size_t end = s.find(L';', i);
    return end == std::wstring::npos ? s.size() : end + 1;
}

// The plain text of the contents: formatting codes removed, \P as a line break, stacked
// fractions written as numerator/denominator.
std::wstring plainText(const std::wstring& s) {
    std::wstring out;
    for (std::size_t i = 0; i < s.size(); ++i) {
        wchar_t c = s[i];
        if (c == L'{' || c == L'}') continue;
        if (c != L'\\' || i + 1 >= s.size()) {
            out += c;
            continue;
        }
        wchar_t code = s[++i];
        switch (code) {
            case L'P': out += L'\n'; break;
            case L'~': out += L' '; break;
            case L'\\': case L'{': case L'}': out += code; break;
            case L'S': {
                std::size_t end = skipToSemicolon(s, i + 1);
                for (std::size_t k = i + 1; k + 1 < end; ++k)
                    out += (s[k] == L'^' || s[k] == L'#') ? L'/' : s[k];
                i = end - 1;
                break;
            }
            case L'f': case L'F': case L'H': case L'W': case L'Q': case L'T': case L'A':
            case L'C': case L'c': case L'p':
                i = skipToSemicolon(s, i + 1) - 1;
                break;
            default: break;  // \L \l \O \o \K \k and unknown codes: switches without text
        }
    }
    return out;
}

std::vector<std::wstring> splitLines(const std::wstring& text) {
    std::vector<std::wstring> lines(1);
    for (wchar_t c : text) {
        if (c == L'\n')
            lines.emplace_back();
        else
            lines.back() += c;
    }
    return lines;
}

// Column of the attachment: 0 left, 1 centre, 2 right; row: 0 top, 1 middle, 2 bottom.
int attachmentColumn(AcDbMText::AttachmentPoint a) { return (static_cast<int>(a) - 1) % 3; }
int attachmentRow(AcDbMText::AttachmentPoint a) { return (static_cast<int>(a) - 1) / 3; }
}  // namespace

std::wstring AcDbMText::text() const { return plainText(m_contents); }

double AcDbMText::rotation() const { return tavrik::ocs::angleInPlane(m_direction, m_normal); }

Acad::ErrorStatus AcDbMText::setRotation(double a) {
    m_direction = tavrik::ocs::directionInPlane(a, m_normal);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::getGeomExtents(AcDbExtents& extents) const {
    AcDbVoidPtrArray lines;
    explode(lines);
    if (lines.isEmpty()) return Acad::eInvalidExtents;
    extents = AcDbExtents();
    for (void* p : lines) {
        auto* line = static_cast<AcDbText*>(p);
        AcDbExtents box;
        if (line->getGeomExtents(box) == Acad::eOk) extents.addExt(box);
        delete line;
    }
    return extents.isEmpty() ? Acad::eInvalidExtents : Acad::eOk;
}

Acad::ErrorStatus AcDbMText::transformBy(const AcGeMatrix3d& xform) {
    double scale = 1.0;
    if (!tavrik::ocs::uniformScale(xform, scale)) return Acad::eCannotScaleNonUniformly;
    m_location.transformBy(xform);
    m_direction = xform.apply(m_direction).normal();
    m_normal = xform.apply(m_normal).normal();
    m_height *= scale;
    m_width *= scale;
    m_actualWidth *= scale;
    m_actualHeight *= scale;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::explode(AcDbVoidPtrArray& entitySet) const {
    std::vector<std::wstring> lines = splitLines(text());
    AcGeVector3d along = m_direction.normal();
    AcGeVector3d up = m_normal.crossProduct(along).normal();
    double pitch = m_height * kLinePitch * m_lineSpacing;
    double block = m_height + pitch * static_cast<double>(lines.size() - 1);
    int row = attachmentRow(m_attachment);
    // Base line of the first line, measured down from the attachment point.
    double firstBase = row == 0 ? m_height : (row == 1 ? m_height - block / 2 : m_height - block);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].empty()) continue;
        double width = tavrik::text_metrics::lineWidth(lines[i], m_height, 1.0);
        double shift = attachmentColumn(m_attachment) * width / 2;
        AcGePoint3d base = m_location - up * (firstBase + pitch * static_cast<double>(i)) -
                           along * shift;
        auto* line = new AcDbText(base, lines[i], m_style, m_height,
                                  tavrik::ocs::angleInPlane(along, m_normal));
        line->setNormal(m_normal);
        line->setPropertiesFrom(this);
        entitySet.append(line);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::getStretchPoints(AcGePoint3dArray& points) const {
    points.append(m_location);
    return Acad::eOk;
}

void AcDbMText::collectReferences(AcDbObjectIdArray& refs) const {
    AcDbEntity::collectReferences(refs);
    if (!m_style.isNull()) refs.append(m_style);
}

void AcDbMText::remapReferences(const AcDbIdMapper& map) {
    AcDbEntity::remapReferences(map);
    if (!m_style.isNull()) m_style = map(m_style);
}
