#include "platform/dxf/model.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

#include "platform/db/arc.hpp"
#include "platform/db/block_reference.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/carried.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/dictionary.hpp"
#include "platform/db/dimension.hpp"
#include "platform/db/ellipse.hpp"
#include "platform/db/line.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/db/polyline.hpp"
#include "platform/db/polyline_classic.hpp"
#include "platform/db/spline.hpp"
#include "platform/db/text.hpp"
#include "platform/dxf/codepage.hpp"
#include "platform/dxf/tagger.hpp"

namespace dxf {

void Model::clear() {
    subclasses.clear();
    fieldCount = 0;
    owned.clear();
}

bool Model::owns(const Subclass& s, int code) const {
    auto first = owned.begin() + static_cast<long>(s.ownedBegin);
    auto last = owned.begin() + static_cast<long>(s.ownedEnd);
    return std::find(first, last, code) != last;
}

std::string Utf8(std::wstring_view text) {
    std::string out;
    Utf8Into(text, out);
    return out;
}

void Utf8Into(std::wstring_view text, std::string& out) {
    // The ASCII characters that most names are made of go in one to one.
    const size_t start = out.size();
    out.resize(start + text.size());
    size_t i = 0;
    for (; i < text.size() && static_cast<unsigned>(text[i]) < 0x80; ++i)
        out[start + i] = static_cast<char>(text[i]);
    out.resize(start + i);
    for (; i < text.size(); ++i) AppendUtf8(out, static_cast<unsigned>(text[i]));
}

std::wstring Wide(std::string_view s) {
    std::wstring out;
    out.reserve(s.size());
    size_t ascii = 0;  // the ASCII characters of the start, one to one
    while (ascii < s.size() && static_cast<unsigned char>(s[ascii]) < 0x80) ++ascii;
    out.assign(s.begin(), s.begin() + static_cast<std::ptrdiff_t>(ascii));
    for (size_t i = ascii; i < s.size();) {
        auto c = static_cast<unsigned char>(s[i]);
        unsigned cp = c;
        size_t n = 1;
        if (c >= 0xF0) { cp = c & 0x07; n = 4; }
        else if (c >= 0xE0) { cp = c & 0x0F; n = 3; }
        else if (c >= 0xC0) { cp = c & 0x1F; n = 2; }
        if (i + n > s.size()) n = 1;
        for (size_t k = 1; k < n; ++k) cp = (cp << 6) | (static_cast<unsigned char>(s[i + k]) & 0x3F);
        out += static_cast<wchar_t>(cp);
        i += n;
    }
    return out;
}

void AppendHex(std::uint64_t value, std::string& out) {
    char buffer[20];
    auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value, 16);
    for (char* c = buffer; c != end; ++c)
        if (*c >= 'a') *c = static_cast<char>(*c - 'a' + 'A');
    out.append(buffer, end);
}

std::string HandleText(AcDbHandle handle) {
    std::string text;
    AppendHex(handle.value(), text);
    return text;
}

std::wstring RecordName(AcDbObjectId id) {
    if (id.isNull() || id.stub() == nullptr || !id.stub()->object) return {};
    auto* record = AcDbSymbolTableRecord::cast(id.stub()->object.get());
    return record ? record->name() : std::wstring();
}

void ModelWriter::subclass(std::string_view marker) {
    size_t f = m_model.fieldCount, o = m_model.owned.size();
    m_model.subclasses.push_back({marker, f, f, o, o});
}

void ModelWriter::own(std::initializer_list<int> codes) {
    m_model.owned.insert(m_model.owned.end(), codes.begin(), codes.end());
    m_model.subclasses.back().ownedEnd = m_model.owned.size();
}

Field& ModelWriter::add(int code, Field::Kind kind) {
    if (m_model.fieldCount == m_model.fields.size()) m_model.fields.emplace_back();
    Field& f = m_model.fields[m_model.fieldCount++];
    f.code = code;
    f.kind = kind;
    f.run = m_run;
    f.optional = m_optional;
    f.text.clear();
    m_model.owned.push_back(code);
    Subclass& s = m_model.subclasses.back();
    s.fieldEnd = m_model.fieldCount;
    s.ownedEnd = m_model.owned.size();
    return f;
}

void ModelWriter::text(int code, std::string_view value) {
    add(code, Field::Kind::kText).text = value;
    m_optional = false;
}

void ModelWriter::wide(int code, std::wstring_view value) {
    Utf8Into(value, add(code, Field::Kind::kText).text);
    m_optional = false;
}

void ModelWriter::real(int code, double value) {
    add(code, Field::Kind::kReal).real = value;
    m_optional = false;
}

void ModelWriter::angle(int code, double radians) {
    add(code, Field::Kind::kAngle).real = radians;
    m_optional = false;
}

void ModelWriter::integer(int code, long long value) {
    add(code, Field::Kind::kInteger).integer = value;
    m_optional = false;
}

void ModelWriter::handle(int code, AcDbHandle h) {
    add(code, Field::Kind::kHandle).integer = static_cast<long long>(h.value());
    m_optional = false;
}

void ModelWriter::id(int code, AcDbObjectId id) {
    handle(code, id.isNull() ? AcDbHandle() : id.handle());
}

void ModelWriter::point(int code, const AcGePoint3d& p) {
    for (int k = 0; k < 3; ++k) add(code + 10 * k, Field::Kind::kReal).real = p[k];
    m_optional = false;
}

void ModelWriter::point2d(int code, const AcGePoint2d& p) {
    add(code, Field::Kind::kReal).real = p.x;
    add(code + 10, Field::Kind::kReal).real = p.y;
    m_optional = false;
}

void ModelWriter::normal(const AcGeVector3d& n) {
    optional(n.x == 0.0 && n.y == 0.0 && n.z == 1.0).vector(210, n);
}

void ModelWriter::name(int code, AcDbObjectId id) {
    std::wstring n = RecordName(id);
    if (!n.empty()) wide(code, n);
}

namespace {

void HeadOf(const AcDbObject& o, ModelWriter& w, int handleCode = 5) {
    w.subclass("");
    w.handle(handleCode, o.getHandle());
    w.own({330});
    if (!o.ownerId().isNull()) w.id(330, o.ownerId());
}

bool IsByLayer(std::wstring_view linetype) {
    constexpr std::wstring_view kByLayer = L"BYLAYER";
    if (linetype.size() != kByLayer.size()) return false;
    for (size_t i = 0; i < linetype.size(); ++i)
        if (std::towupper(linetype[i]) != static_cast<std::wint_t>(kByLayer[i])) return false;
    return true;
}

void EntityCommon(const AcDbEntity& e, ModelWriter& w) {
    w.subclass("AcDbEntity");
    w.own({67, 8, 6, 62, 420, 430, 370, 48, 60});
    w.optional(!e.inPaperSpace()).integer(67, e.inPaperSpace() ? 1 : 0);
    w.wide(8, e.layer());
    const std::wstring& lt = e.linetype();
    w.optional(lt.empty() || IsByLayer(lt)).wide(6, lt);
    const AcCmColor& c = e.color();
    w.optional(!(c.colorIndex() != 256)).integer(62, c.colorIndex());
    w.optional(!(c.hasTrueColor())).integer(420, c.trueColor());
    w.optional(!(!c.colorName().empty())).wide(430, c.colorName());
    w.optional(!(e.lineWeight() != AcDb::kLnWtByLayer)).integer(370, e.lineWeight());
    w.optional(!(e.linetypeScale() != 1.0)).real(48, e.linetypeScale());
    bool invisible = e.visibility() == AcDb::kInvisible;
    w.optional(!invisible).integer(60, invisible ? 1 : 0);
}

void LineModel(const AcDbLine& e, ModelWriter& w) {
    w.subclass("AcDbLine");
    w.thickness(e.thickness());
    w.point(10, e.startPoint());
    w.point(11, e.endPoint());
    w.normal(e.normal());
}

void CircleModel(const AcDbCircle& e, ModelWriter& w) {
    w.subclass("AcDbCircle");
    w.thickness(e.thickness());
    w.point(10, AcGeMatrix3d::worldToPlane(e.normal()) * e.center());
    w.real(40, e.radius());
    w.normal(e.normal());
}

void ArcModel(const AcDbArc& e, ModelWriter& w) {
    w.subclass("AcDbCircle");
    w.thickness(e.thickness());
    w.point(10, AcGeMatrix3d::worldToPlane(e.normal()) * e.center());
    w.real(40, e.radius());
    w.normal(e.normal());
    w.subclass("AcDbArc");
    w.angle(50, e.startAngle());
    w.angle(51, e.endAngle());
}

void PointModel(const AcDbPoint& e, ModelWriter& w) {
    w.subclass("AcDbPoint");
    w.point(10, e.position());
    w.thickness(e.thickness());
    w.normal(e.normal());
    w.own({50});
    w.optional(!(e.ecsRotation() != 0.0)).angle(50, e.ecsRotation());
}

// The first AcDbText subclass, shared by texts and attributes.
void TextBody(const AcDbText& e, ModelWriter& w) {
    w.subclass("AcDbText");
    w.thickness(e.thickness());
    w.point(10, e.position());
    w.real(40, e.height());
    w.wide(1, e.textString());
    w.own({50, 41, 51, 7, 71, 72, 11, 21, 31});
    w.optional(!(e.rotation() != 0.0)).angle(50, e.rotation());
    w.optional(!(e.widthFactor() != 1.0)).real(41, e.widthFactor());
    w.optional(!(e.oblique() != 0.0)).angle(51, e.oblique());
    w.name(7, e.textStyle());
    int generation = (e.isMirroredInX() ? 2 : 0) | (e.isMirroredInY() ? 4 : 0);
    w.optional(!(generation != 0)).integer(71, generation);
    w.optional(!(e.horizontalMode() != AcDb::kTextLeft)).integer(72, e.horizontalMode());
    w.optional(!(!e.isDefaultAlignment())).point(11, e.alignmentPoint());
    w.normal(e.normal());
}

void TextModel(const AcDbText& e, ModelWriter& w) {
    TextBody(e, w);
    w.subclass("AcDbText");
    w.own({73});
    w.optional(!(e.verticalMode() != AcDb::kTextBase)).integer(73, e.verticalMode());
}

void AttributeDefinitionModel(const AcDbAttributeDefinition& e, ModelWriter& w) {
    TextBody(e, w);
    w.subclass("AcDbAttributeDefinition");
    w.wide(3, e.prompt());
    w.wide(2, e.tag());
    w.integer(70, e.attributeFlags());
    w.own({73, 74});
    w.optional(!(e.fieldLength() != 0)).integer(73, e.fieldLength());
    w.optional(!(e.verticalMode() != AcDb::kTextBase)).integer(74, e.verticalMode());
}

void AttributeModel(const AcDbAttribute& e, ModelWriter& w) {
    TextBody(e, w);
    w.subclass("AcDbAttribute");
    w.wide(2, e.tag());
    w.integer(70, e.attributeFlags());
    w.own({73, 74});
    w.optional(!(e.fieldLength() != 0)).integer(73, e.fieldLength());
    w.optional(!(e.verticalMode() != AcDb::kTextBase)).integer(74, e.verticalMode());
}

// MTEXT contents: chunks of 250 bytes under code 3, the rest under code 1.
void MTextContents(const std::string& text, ModelWriter& w) {
    w.beginRun();
    size_t pos = 0;
    while (text.size() - pos > 250) {
        size_t n = 250;
        while (n > 0 && (static_cast<unsigned char>(text[pos + n]) & 0xC0) == 0x80) --n;
        w.text(3, std::string_view(text).substr(pos, n));
        pos += n;
    }
    w.text(1, std::string_view(text).substr(pos));
    w.endRun();
}

void MTextModel(const AcDbMText& e, ModelWriter& w) {
    w.subclass("AcDbMText");
    w.point(10, e.location());
    w.real(40, e.textHeight());
    w.real(41, e.width());
    w.integer(71, e.attachment());
    w.integer(72, e.flowDirection());
    MTextContents(Utf8(e.contents()), w);
    // Each value below is written when the file gave it, or when it is not at its default.
    auto gave = [&e](AcDbMText::FileValue v) { return e.fileGave(v); };
    w.own({7});
    w.optional(!gave(AcDbMText::kFileActualWidth) && e.actualWidth() == 0.0).real(42, e.actualWidth());
    w.optional(!gave(AcDbMText::kFileActualHeight) && e.actualHeight() == 0.0).real(43, e.actualHeight());
    w.name(7, e.textStyle());
    w.normal(e.normal());
    AcGeVector3d d = e.direction();
    w.optional(!gave(AcDbMText::kFileDirection) && d.x == 1.0 && d.y == 0.0 && d.z == 0.0).vector(11, d);
    w.optional(!gave(AcDbMText::kFileLineSpacingStyle) && e.lineSpacingStyle() == AcDb::kAtLeast)
        .integer(73, e.lineSpacingStyle());
    w.optional(!gave(AcDbMText::kFileLineSpacingFactor) && e.lineSpacingFactor() == 1.0).real(44, e.lineSpacingFactor());
}

// What a polyline's record as read gives each vertex beyond the database's values: its
// identifier (group code 91), which the database does not keep, and whether it wrote the widths
// (40, 41) when they were zero. Both go back with the vertices while the polyline has as many
// vertices as its record; otherwise the list is empty.
struct VertexAsRead {
    std::optional<long long> id;
    bool widths = false;
};

std::vector<VertexAsRead> VerticesAsRead(const AcDbPolyline& e) {
    std::vector<VertexAsRead> read;
    bool inPolyline = false;
    long long id = 0;
    for (const AcDbRawTag& t : e.fileTags()) {
        if (t.code == 100) inPolyline = t.value == "AcDbPolyline";
        else if (!inPolyline) continue;
        else if (t.code == 10) read.emplace_back();
        else if (read.empty()) continue;
        else if (t.code == 91 && ParseInteger(t.value, id)) read.back().id = id;
        else if (t.code == 40 || t.code == 41) read.back().widths = true;
    }
    if (read.size() != e.numVerts()) read.clear();
    return read;
}

void LwPolylineModel(const AcDbPolyline& e, ModelWriter& w) {
    w.subclass("AcDbPolyline");
    w.integer(90, e.numVerts());
    w.integer(70, (e.isClosed() ? 1 : 0) | (e.hasPlinegen() ? 128 : 0));
    w.own({43, 38, 39});
    double constantWidth = 0.0;
    bool constant = e.hasConstantWidthTag() && e.getConstantWidth(constantWidth) == Acad::eOk;
    w.optional(!(constant)).real(43, constantWidth);
    w.optional(!(e.elevation() != 0.0)).real(38, e.elevation());
    w.optional(!(e.thickness() != 0.0)).real(39, e.thickness());
    w.beginRun();
    w.own({10, 20, 40, 41, 42, 91});
    std::vector<VertexAsRead> read;
    if (w.hasTemplate()) read = VerticesAsRead(e);
    for (unsigned int k = 0; k < e.numVerts(); ++k) {
        const AcDbPolyline::Vertex v = e.vertexAt(k);
        w.point2d(10, v.point);
        if (k < read.size() && read[k].id) w.integer(91, *read[k].id);
        // Zero widths are left out, as the format's writers do, unless the record had them.
        bool widths = v.startWidth != 0.0 || v.endWidth != 0.0 || (k < read.size() && read[k].widths);
        if (!constant && widths) {
            w.real(40, v.startWidth);
            w.real(41, v.endWidth);
        }
        w.optional(!(v.bulge != 0.0)).real(42, v.bulge);
    }
    w.endRun();
    w.normal(e.normal());
}

void SplineModel(const AcDbSpline& e, ModelWriter& w) {
    w.subclass("AcDbSpline");
    w.normal(e.normal());
    int flags = e.splineFlags() & ~(1 | 2 | 4 | 8);
    flags |= (e.isClosed() ? 1 : 0) | (e.isPeriodic() ? 2 : 0) | (e.isRational() ? 4 : 0) |
             (e.isPlanar() ? 8 : 0);
    w.integer(70, flags);
    w.integer(71, e.degree());
    w.integer(72, e.numKnots());
    w.integer(73, e.numControlPoints());
    w.integer(74, e.numFitPoints());
    w.real(42, e.knotTolerance());
    w.real(43, e.controlPointTolerance());
    w.own({44, 12, 22, 32, 13, 23, 33});
    w.optional(!(e.hasFitData())).real(44, e.fitTolerance());
    AcGeVector3d st = e.startFitTangent(), et = e.endFitTangent();
    w.optional(!(st.length() > 0.0)).vector(12, st);
    w.optional(!(et.length() > 0.0)).vector(13, et);
    w.beginRun();
    for (double k : e.knots()) w.real(40, k);
    w.endRun();
    w.beginRun();
    w.own({41});
    for (double k : e.weights()) w.real(41, k);
    w.endRun();
    w.beginRun();
    w.own({10, 20, 30});
    for (const auto& p : e.controlPoints()) w.point(10, p);
    w.endRun();
    w.beginRun();
    w.own({11, 21, 31});
    for (const auto& p : e.fitPoints()) w.point(11, p);
    w.endRun();
}

void EllipseModel(const AcDbEllipse& e, ModelWriter& w) {
    w.subclass("AcDbEllipse");
    w.point(10, e.center());
    w.vector(11, e.majorAxis());
    w.normal(e.normal());
    w.real(40, e.radiusRatio());
    w.real(41, e.startParam());
    w.real(42, e.endParam());
}

void BlockReferenceModel(const AcDbBlockReference& e, ModelWriter& w) {
    w.subclass("AcDbBlockReference");
    w.own({66, 2, 41, 42, 43, 50});
    bool attributes = !e.attributeIds().isEmpty();
    w.optional(!attributes).integer(66, attributes ? 1 : 0);
    w.name(2, e.blockTableRecord());
    w.point(10, e.position());
    AcGeScale3d s = e.scaleFactors();
    w.optional(!(s.sx != 1.0)).real(41, s.sx);
    w.optional(!(s.sy != 1.0)).real(42, s.sy);
    w.optional(!(s.sz != 1.0)).real(43, s.sz);
    w.optional(!(e.rotation() != 0.0)).angle(50, e.rotation());
    if (auto* m = AcDbMInsertBlock::cast(&e)) {
        w.own({70, 71, 44, 45});
        w.optional(!(m->columns() != 1)).integer(70, m->columns());
        w.optional(!(m->rows() != 1)).integer(71, m->rows());
        w.optional(!(m->columnSpacing() != 0.0)).real(44, m->columnSpacing());
        w.optional(!(m->rowSpacing() != 0.0)).real(45, m->rowSpacing());
    }
    w.normal(e.normal());
}

int DimensionType(const AcDbDimension& e) {
    if (AcDbRotatedDimension::cast(&e)) return 0;
    if (AcDbAlignedDimension::cast(&e)) return 1;
    if (AcDb2LineAngularDimension::cast(&e)) return 2;
    if (AcDbDiametricDimension::cast(&e)) return 3;
    if (AcDbRadialDimension::cast(&e)) return 4;
    if (AcDbOrdinateDimension::cast(&e)) return 6;
    if (auto* c = AcDbCarriedDimension::cast(&e)) return c->dimType();
    return 0;
}

AcGePoint3d DimensionDefPoint(const AcDbDimension& e) {
    if (auto* d = AcDbRotatedDimension::cast(&e)) return d->dimLinePoint();
    if (auto* d = AcDbAlignedDimension::cast(&e)) return d->dimLinePoint();
    if (auto* d = AcDb2LineAngularDimension::cast(&e)) return d->xLine2End();
    if (auto* d = AcDbDiametricDimension::cast(&e)) return d->farChordPoint();
    if (auto* d = AcDbRadialDimension::cast(&e)) return d->center();
    if (auto* d = AcDbOrdinateDimension::cast(&e)) return d->origin();
    return e.dimBlockPosition();
}

void DimensionModel(const AcDbDimension& e, ModelWriter& w) {
    bool carried = AcDbCarriedDimension::cast(&e) != nullptr;
    int type = DimensionType(e);
    w.subclass("AcDbDimension");
    w.own({2, 3, 53, 1, 11, 21, 31, 42});
    w.name(2, e.dimBlockId());
    w.optional(!(!carried)).point(10, DimensionDefPoint(e));
    w.point(11, e.textPosition());
    int flags = e.dimFlags() | type | (e.isUsingDefaultTextPosition() ? 0 : 128);
    if (auto* o = AcDbOrdinateDimension::cast(&e); o && o->isUsingXAxis()) flags |= 64;
    w.integer(70, flags);
    double measured = e.storedMeasurement();
    if (!w.hasTemplate() && !carried) e.measurement(measured);
    w.real(42, measured);
    w.optional(!(!e.dimensionText().empty())).wide(1, e.dimensionText());
    w.optional(!(e.textRotation() != 0.0)).angle(53, e.textRotation());
    w.normal(e.normal());
    w.name(3, e.dimensionStyle());
    if (auto* d = AcDbRotatedDimension::cast(&e)) {
        w.subclass("AcDbAlignedDimension");
        w.point(13, d->xLine1Point());
        w.point(14, d->xLine2Point());
        w.angle(50, d->rotation());
        w.own({52});
        w.optional(!(d->oblique() != 0.0)).angle(52, d->oblique());
        w.subclass("AcDbRotatedDimension");
    } else if (auto* d = AcDbAlignedDimension::cast(&e)) {
        w.subclass("AcDbAlignedDimension");
        w.point(13, d->xLine1Point());
        w.point(14, d->xLine2Point());
        w.own({52});
        w.optional(!(d->oblique() != 0.0)).angle(52, d->oblique());
    } else if (auto* d = AcDb2LineAngularDimension::cast(&e)) {
        w.subclass("AcDb2LineAngularDimension");
        w.point(13, d->xLine1Start());
        w.point(14, d->xLine1End());
        w.point(15, d->xLine2Start());
        w.point(16, d->arcPoint());
    } else if (auto* d = AcDbDiametricDimension::cast(&e)) {
        w.subclass("AcDbDiametricDimension");
        w.point(15, d->chordPoint());
        w.real(40, d->leaderLength());
    } else if (auto* d = AcDbRadialDimension::cast(&e)) {
        w.subclass("AcDbRadialDimension");
        w.point(15, d->chordPoint());
        w.real(40, d->leaderLength());
    } else if (auto* d = AcDbOrdinateDimension::cast(&e)) {
        w.subclass("AcDbOrdinateDimension");
        w.point(13, d->definingPoint());
        w.point(14, d->leaderEndPoint());
    }
}

void Polyline2dModel(const AcDb2dPolyline& e, ModelWriter& w) {
    w.subclass("AcDb2dPolyline");
    w.own({66, 40, 41, 75});
    w.integer(66, 1);
    w.optional(e.elevation() == 0.0).point(10, {0.0, 0.0, e.elevation()});
    w.thickness(e.thickness());
    int flags = (e.polylineFlags() & ~1) | (e.isClosed() ? 1 : 0);
    w.optional(flags == 0).integer(70, flags);
    w.optional(!(e.defaultStartWidth() != 0.0)).real(40, e.defaultStartWidth());
    w.optional(!(e.defaultEndWidth() != 0.0)).real(41, e.defaultEndWidth());
    int curve = e.polyType() == AcDb::k2dQuadSplinePoly    ? 5
                : e.polyType() == AcDb::k2dCubicSplinePoly ? 6
                : e.polyType() == AcDb::k2dFitCurvePoly    ? 8
                                                           : 0;
    w.optional(!(curve != 0)).integer(75, curve);
    w.normal(e.normal());
}

void Polyline3dModel(const AcDb3dPolyline& e, ModelWriter& w) {
    w.subclass("AcDb3dPolyline");
    w.own({66, 75});
    w.integer(66, 1);
    w.optional(true).point(10, AcGePoint3d());
    w.integer(70, (e.polylineFlags() & ~1) | 8 | (e.isClosed() ? 1 : 0));
    int curve = e.polyType() == AcDb::k3dQuadSplinePoly    ? 5
                : e.polyType() == AcDb::k3dCubicSplinePoly ? 6
                                                           : 0;
    w.optional(!(curve != 0)).integer(75, curve);
}

void LayerModel(const AcDbLayerTableRecord& r, ModelWriter& w) {
    w.subclass("AcDbLayerTableRecord");
    w.wide(2, r.name());
    int flags = r.flagBits() | (r.isFrozen() ? 1 : 0) | (r.VPDFLT() ? 2 : 0) | (r.isLocked() ? 4 : 0);
    w.integer(70, flags);
    int color = r.color().colorIndex();
    w.integer(62, r.isOff() ? -color : color);
    w.own({420, 6, 290, 370});
    w.optional(!(r.color().hasTrueColor())).integer(420, r.color().trueColor());
    std::wstring lt = RecordName(r.linetypeObjectId());
    w.wide(6, lt.empty() ? L"Continuous" : lt);
    w.optional(r.isPlottable()).integer(290, r.isPlottable() ? 1 : 0);
    w.integer(370, r.lineWeight());
}

void TextStyleModel(const AcDbTextStyleTableRecord& r, ModelWriter& w) {
    w.subclass("AcDbTextStyleTableRecord");
    w.wide(2, r.name());
    w.integer(70, r.flagBits());
    w.real(40, r.textSize());
    w.real(41, r.xScale());
    w.angle(50, r.obliquingAngle());
    w.integer(71, r.textGenerationFlags());
    w.real(42, r.priorSize());
    w.wide(3, r.fileName());
    w.wide(4, r.bigFontFileName());
}

void LinetypeModel(const AcDbLinetypeTableRecord& r, ModelWriter& w) {
    w.subclass("AcDbLinetypeTableRecord");
    w.wide(2, r.name());
    w.integer(70, r.flagBits());
    w.wide(3, r.comments());
    if (w.hasTemplate()) return;  // the dash elements of a file stay as read
    w.integer(72, 65);
    w.integer(73, r.numDashes());
    w.real(40, r.patternLength());
    for (double d : r.dashes()) {
        w.real(49, d);
        w.integer(74, 0);
    }
}

void DimStyleModel(const AcDbDimStyleTableRecord& r, ModelWriter& w) {
    w.subclass("AcDbDimStyleTableRecord");
    w.wide(2, r.name());
    w.integer(70, r.flagBits());
    for (const auto& [code, v] : r.dimVars()) {
        switch (v.kind) {
            case AcDbDimVarValue::kReal: w.real(code, v.real); break;
            case AcDbDimVarValue::kInt: w.integer(code, v.integer); break;
            case AcDbDimVarValue::kString: w.wide(code, v.text); break;
            case AcDbDimVarValue::kHandle:
                if (!v.id.isNull()) w.id(code, v.id);
                break;
        }
    }
}

void ViewModel(const AcDbAbstractViewTableRecord& r, ModelWriter& w, bool viewport) {
    w.subclass(viewport ? "AcDbViewportTableRecord" : "AcDbViewTableRecord");
    w.wide(2, r.name());
    w.integer(70, r.flagBits());
    if (viewport) {
        if (!w.hasTemplate()) {
            w.point2d(10, {0.0, 0.0});
            w.point2d(11, {1.0, 1.0});
        }
        w.point2d(12, r.centerPoint());
        w.real(40, r.height());
        w.real(41, r.height() != 0.0 ? r.width() / r.height() : 1.0);
    } else {
        w.real(40, r.height());
        w.point2d(10, r.centerPoint());
        w.real(41, r.width());
    }
    w.vector(viewport ? 16 : 11, r.viewDirection());
    w.point(viewport ? 17 : 12, r.target());
}

void UcsModel(const AcDbUCSTableRecord& r, ModelWriter& w) {
    w.subclass("AcDbUCSTableRecord");
    w.wide(2, r.name());
    w.integer(70, r.flagBits());
    w.point(10, r.origin());
    w.vector(11, r.xAxis());
    w.vector(12, r.yAxis());
}

void BlockRecordModel(const AcDbBlockTableRecord& r, ModelWriter& w) {
    w.subclass("AcDbBlockTableRecord");
    w.wide(2, r.name());
    w.own({340});
    if (!r.getLayoutId().isNull()) w.id(340, r.getLayoutId());
}

void DictionaryModel(const AcDbDictionary& d, ModelWriter& w, bool hardOwner) {
    w.subclass("AcDbDictionary");
    if (!w.hasTemplate()) w.integer(281, 1);
    w.beginRun();
    w.own({3, 350, 360});
    for (const auto& [key, id] : d.entries()) {
        w.wide(3, key);
        w.id(hardOwner ? 360 : 350, id);
    }
    w.endRun();
}

bool UsesHardOwnership(const AcDbObject& o) {
    for (const AcDbRawTag& t : o.fileTags())
        if (t.code == 360) return true;
    return false;
}

void EntityModel(const AcDbEntity& e, ModelWriter& w) {
    EntityCommon(e, w);
    if (auto* x = AcDbLine::cast(&e)) LineModel(*x, w);
    else if (auto* x = AcDbArc::cast(&e)) ArcModel(*x, w);
    else if (auto* x = AcDbCircle::cast(&e)) CircleModel(*x, w);
    else if (auto* x = AcDbPoint::cast(&e)) PointModel(*x, w);
    else if (auto* x = AcDbAttributeDefinition::cast(&e)) AttributeDefinitionModel(*x, w);
    else if (auto* x = AcDbAttribute::cast(&e)) AttributeModel(*x, w);
    else if (auto* x = AcDbText::cast(&e)) TextModel(*x, w);
    else if (auto* x = AcDbMText::cast(&e)) MTextModel(*x, w);
    else if (auto* x = AcDbPolyline::cast(&e)) LwPolylineModel(*x, w);
    else if (auto* x = AcDbSpline::cast(&e)) SplineModel(*x, w);
    else if (auto* x = AcDbEllipse::cast(&e)) EllipseModel(*x, w);
    else if (auto* x = AcDbBlockReference::cast(&e)) BlockReferenceModel(*x, w);
    else if (auto* x = AcDbDimension::cast(&e)) DimensionModel(*x, w);
    else if (auto* x = AcDb2dPolyline::cast(&e)) Polyline2dModel(*x, w);
    else if (auto* x = AcDb3dPolyline::cast(&e)) Polyline3dModel(*x, w);
}

void RecordModel(const AcDbSymbolTableRecord& r, ModelWriter& w) {
    if (auto* x = AcDbLayerTableRecord::cast(&r)) LayerModel(*x, w);
    else if (auto* x = AcDbTextStyleTableRecord::cast(&r)) TextStyleModel(*x, w);
    else if (auto* x = AcDbLinetypeTableRecord::cast(&r)) LinetypeModel(*x, w);
    else if (auto* x = AcDbDimStyleTableRecord::cast(&r)) DimStyleModel(*x, w);
    else if (auto* x = AcDbViewportTableRecord::cast(&r)) ViewModel(*x, w, true);
    else if (auto* x = AcDbViewTableRecord::cast(&r)) ViewModel(*x, w, false);
    else if (auto* x = AcDbUCSTableRecord::cast(&r)) UcsModel(*x, w);
    else if (auto* x = AcDbBlockTableRecord::cast(&r)) BlockRecordModel(*x, w);
    else if (AcDbRegAppTableRecord::cast(&r)) {
        w.subclass("AcDbRegAppTableRecord");
        w.wide(2, r.name());
        w.integer(70, r.flagBits());
    }
}

// The subclass of the entities the database carries whose records are one subclass deep.
std::string_view CarriedSubclass(const AcDbEntity& e, std::string_view type) {
    if (AcDbPolyFaceMesh::cast(&e)) return "AcDbPolyFaceMesh";
    if (AcDbPolygonMesh::cast(&e)) return "AcDbPolygonMesh";
    if (type == "SOLID" || type == "TRACE") return "AcDbTrace";
    if (type == "3DFACE") return "AcDbFace";
    if (type == "SHAPE") return "AcDbShape";
    if (type == "VIEWPORT") return "AcDbViewport";
    return {};
}

}  // namespace

void BuildModel(const AcDbObject& object, bool hasTemplate, Model& model) {
    model.clear();
    model.type = TypeName(object);
    ModelWriter w(model, hasTemplate);
    bool isDimStyle = AcDbDimStyleTableRecord::cast(&object) != nullptr;
    HeadOf(object, w, isDimStyle ? 105 : 5);
    if (auto* e = AcDbEntity::cast(&object)) {
        if (!AcDbCarriedEntity::cast(e)) {
            EntityModel(*e, w);
        } else {
            EntityCommon(*e, w);
            // The class's own subclass, which a record of R12 lacks: written for a later
            // version, what follows the common properties goes under it.
            if (std::string_view marker = CarriedSubclass(*e, model.type); !marker.empty()) w.subclass(marker);
        }
    } else if (auto* r = AcDbSymbolTableRecord::cast(&object)) {
        w.subclass("AcDbSymbolTableRecord");
        RecordModel(*r, w);
    } else if (auto* d = AcDbDictionary::cast(&object)) {
        DictionaryModel(*d, w, UsesHardOwnership(object));
    }
}

void DimVarsToXData(const AcDbDimVars& vars, AcDbRawTags& tags) {
    tags.push_back(1000, "DSTYLE");
    tags.push_back(1002, "{");
    for (const auto& [code, v] : vars) {
        tags.push_back(1070, std::to_string(code));
        switch (v.kind) {
            case AcDbDimVarValue::kReal: {
                std::string s;
                FormatDouble(v.real, s);
                tags.push_back(1040, s);
                break;
            }
            case AcDbDimVarValue::kInt: tags.push_back(1070, std::to_string(v.integer)); break;
            case AcDbDimVarValue::kString: tags.push_back(1000, Utf8(v.text)); break;
            case AcDbDimVarValue::kHandle:
                tags.push_back(1005, HandleText(v.id.isNull() ? AcDbHandle() : v.id.handle()));
                break;
        }
    }
    tags.push_back(1002, "}");
}

}  // namespace dxf
