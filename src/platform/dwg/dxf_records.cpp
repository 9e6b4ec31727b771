#include "platform/dwg/dxf_records.hpp"

#include <charconv>
#include <cmath>
#include <type_traits>

#include "platform/dwg/blocks.hpp"
#include "platform/dwg/entities.hpp"
#include "platform/dxf/angle_text.hpp"

namespace dwg {

void DxfText::tag(int code, std::string_view text) { put(code, text, {}, false); }

void DxfText::put(int code, std::string_view text, const Number& number, bool plain) {
    if (feed_ != nullptr || keep_) {
        if (code == 0) flush();
        const std::size_t begin = out_.size();
        if (plain) out_.append(text);
        else value(text);
        spans_.push_back({code, begin, out_.size(), number});
        return;
    }
    char buffer[12];
    out_.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, code).ptr);
    out_ += '\n';
    if (plain) out_.append(text);
    else value(text);
    out_ += '\n';
}

void DxfText::value(std::string_view value) {
    // A value is one line: control characters (a line break inside an MTEXT) are written as
    // a DXF file gives them, "^J" for a line feed. The runs between them go in whole.
    std::size_t run = 0;
    for (std::size_t i = 0; i < value.size(); ++i) {
        const char c = value[i];
        if (static_cast<unsigned char>(c) >= 0x20 || c == '\t') continue;
        out_.append(value.substr(run, i - run));
        out_ += '^';
        out_ += static_cast<char>(c + 0x40);
        run = i + 1;
    }
    out_.append(value.substr(run));
}

void DxfText::flush() {
    if (feed_ == nullptr || spans_.empty()) return;
    feed(out_, spans_);
    spans_.clear();
    out_.clear();
}

void DxfText::feed(std::string_view values, std::span<const Span> record) {
    tags_.clear();
    for (const Span& s : record) {
        tags_.push_back({s.code, values.substr(s.begin, s.end - s.begin), 0, s.number.made, s.number.real});
    }
    feed_->record(tags_);
}

void DxfText::handTo(DxfText& to, const RecordWriter& writeRecord) {
    const std::string_view values = out_;
    auto put = [&](const Span& s) { to.put(s.code, values.substr(s.begin, s.end - s.begin), s.number, true); };
    auto starts = [](const Span& s) { return s.code == 0 || s.code == kPlain; };
    std::size_t i = 0;
    // The tags before the first record end the record being written there.
    for (; i < spans_.size() && !starts(spans_[i]); ++i) put(spans_[i]);
    while (i < spans_.size()) {
        if (spans_[i].code == kPlain) {
            Plain& p = plains_[spans_[i++].begin];
            if (!to.plain(std::move(p.entity), std::move(p.built), p.item)) writeRecord(to, p.item);
            continue;
        }
        const std::size_t begin = i;
        for (++i; i < spans_.size() && !starts(spans_[i]); ++i) {}
        if (i < spans_.size() && to.feeds()) {
            // A whole record goes to the feed from here, without being copied.
            to.flush();
            to.feed(values, std::span<const Span>(spans_).subspan(begin, i - begin));
        } else {
            // The last one stays open there, as if written there.
            for (std::size_t k = begin; k < i; ++k) put(spans_[k]);
        }
    }
    spans_.clear();
    plains_.clear();
    out_.clear();
}

bool DxfText::plain(dxf::PlainEntity&& entity, std::unique_ptr<AcDbEntity> built, std::uint32_t item) {
    if (keep_) {
        spans_.push_back({kPlain, plains_.size(), 0, {}});
        plains_.push_back({std::move(entity), std::move(built), item});
        return true;
    }
    if (feed_ == nullptr) return false;
    flush();
    return feed_->plainEntity(entity, std::move(built));
}

void DxfText::tag(int code, double value) {
    // The writer's form, so that a value the database still holds compares by its number; a
    // negative zero keeps its sign, which the writer's form drops.
    numberText_.clear();
    if (value == 0 && std::signbit(value)) numberText_ = "-0.0";
    else dxf::FormatDouble(value, numberText_);
    put(code, numberText_, {dxf::Made::kReal, value}, true);
}

void DxfText::integer(int code, long long value) {
    char buffer[24];
    put(code, std::string_view(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr),
        {dxf::Made::kInteger, 0.0}, true);
}

void DxfText::handle(int code, std::uint64_t value) {
    char buffer[20];
    char* end = std::to_chars(buffer, buffer + sizeof buffer, value, 16).ptr;
    for (char* c = buffer; c != end; ++c)
        if (*c >= 'a') *c = static_cast<char>(*c - 'a' + 'A');  // hexadecimal digits a to f
    // A handle is hexadecimal: checked as any text is.
    put(code, std::string_view(buffer, end), {dxf::Made::kHandle, 0.0}, true);
}

void DxfText::point(int code, const Point3& p) {
    tag(code, p.x);
    tag(code + 10, p.y);
    tag(code + 20, p.z);
}

void DxfText::point(int code, const Point2& p) {
    tag(code, p.x);
    tag(code + 10, p.y);
}

void DxfText::angle(int code, double radians) {
    numberText_.clear();
    dxf::FormatAngle(radians, numberText_);
    put(code, numberText_, {dxf::Made::kAngle, radians}, true);
}

const std::string& NameIndex::name(const std::unordered_map<std::uint64_t, std::string>& table,
                                   std::uint64_t handle) const {
    static const std::string kNone;
    const auto it = table.find(handle);
    return it == table.end() ? kNone : it->second;
}

namespace {

bool IsUpright(const Point3& n) { return n.x == 0 && n.y == 0 && n.z == 1; }

void Normal(DxfText& out, const Point3& n) {
    if (!IsUpright(n)) out.point(210, n);
}

void Thickness(DxfText& out, double thickness) {
    if (thickness != 0) out.tag(39, thickness);
}

}  // namespace

void WriteHead(DxfText& out, const std::string& type, const ObjectCommon& c, std::uint64_t owner,
               int handleCode) {
    out.tag(0, type);
    out.handle(handleCode, c.handle);
    if (!c.reactors.empty()) {
        out.tag(102, "{ACAD_REACTORS");
        for (auto r : c.reactors) out.handle(330, r);
        out.tag(102, "}");
    }
    if (c.extensionDictionary != 0) {
        out.tag(102, "{ACAD_XDICTIONARY");
        out.handle(360, c.extensionDictionary);
        out.tag(102, "}");
    }
    out.handle(330, owner);
}

namespace {

void Head(DxfText& out, const std::string& type, const ObjectCommon& c, std::uint64_t owner) {
    WriteHead(out, type, c, owner, 5);
}

void EntityProperties(DxfText& out, const EntityCommon& c, std::uint64_t owner,
                      const NameIndex& names) {
    out.tag(100, "AcDbEntity");
    if (c.mode == 1 || (owner != 0 && owner == names.paperSpace)) out.integer(67, 1);
    out.tag(8, names.name(names.layers, c.layer));
    switch (c.linetypeFlags) {
        case 1: out.tag(6, "ByBlock"); break;
        case 2: out.tag(6, "Continuous"); break;
        case 3: out.tag(6, names.name(names.linetypes, c.linetype)); break;
        default: break;
    }
    if (c.color.index != 256) out.integer(62, c.color.index);
    if ((c.color.rgb >> 24) == 0xC2) out.integer(420, c.color.rgb & 0xFFFFFF);
    // A colour of a colour book is its colour object, named by the colour dictionary.
    if (c.color.hasBookHandle && names.entries.count(c.colorBook) != 0) {
        out.tag(430, names.entries.at(c.colorBook));
    }
    if (c.color.hasTransparency) out.integer(440, c.color.transparency);
    const int lineweight = LineweightFromIndex(c.lineweight);
    if (lineweight != -1) out.integer(370, lineweight);
    if (c.linetypeScale != 1.0) out.tag(48, c.linetypeScale);
    // How the plot style is given (by layer unless said), and its object when by handle.
    if (c.plotStyleFlags != 0) out.integer(380, c.plotStyleFlags);
    if (c.plotStyleFlags == 3 && c.plotStyle != 0) out.handle(390, c.plotStyle);
    if (c.invisible & 1) out.integer(60, 1);
}

void Body(DxfText& out, const LineRecord& r, const NameIndex&) {
    out.tag(100, "AcDbLine");
    Thickness(out, r.thickness);
    out.point(10, r.start);
    out.point(11, r.end);
    Normal(out, r.normal);
}

void Round(DxfText& out, const CircleRecord& r) {
    out.tag(100, "AcDbCircle");
    Thickness(out, r.thickness);
    out.point(10, r.center);
    out.tag(40, r.radius);
    Normal(out, r.normal);
}

void Body(DxfText& out, const CircleRecord& r, const NameIndex&) { Round(out, r); }

void Body(DxfText& out, const ArcRecord& r, const NameIndex&) {
    Round(out, r.circle);
    out.tag(100, "AcDbArc");
    out.angle(50, r.startAngle);
    out.angle(51, r.endAngle);
}

void Body(DxfText& out, const PointRecord& r, const NameIndex&) {
    out.tag(100, "AcDbPoint");
    out.point(10, r.position);
    Thickness(out, r.thickness);
    Normal(out, r.normal);
    if (r.xAxisAngle != 0) out.angle(50, r.xAxisAngle);
}

// The TEXT part shared by texts and attributes; the vertical mode's code differs.
void TextPart(DxfText& out, const TextRecord& r, const NameIndex& names) {
    out.tag(100, "AcDbText");
    Thickness(out, r.thickness);
    out.point(10, Point3{r.insertion.x, r.insertion.y, r.elevation});
    out.tag(40, r.height);
    out.tag(1, r.text);
    if (r.rotation != 0) out.angle(50, r.rotation);
    if (r.widthFactor != 1) out.tag(41, r.widthFactor);
    if (r.oblique != 0) out.angle(51, r.oblique);
    out.tag(7, names.name(names.styles, r.style));
    if (r.generation != 0) out.integer(71, r.generation);
    if (r.horizontal != 0) out.integer(72, r.horizontal);
    if (r.horizontal != 0 || r.vertical != 0) {
        out.point(11, Point3{r.alignment.x, r.alignment.y, r.elevation});
    }
    Normal(out, r.normal);
}

void Body(DxfText& out, const TextRecord& r, const NameIndex& names) {
    TextPart(out, r, names);
    out.tag(100, "AcDbText");
    if (r.vertical != 0) out.integer(73, r.vertical);
}

void Body(DxfText& out, const AttributeRecord& r, const NameIndex& names, bool definition) {
    TextPart(out, r.text, names);
    if (definition) {
        out.tag(100, "AcDbAttributeDefinition");
        out.tag(3, r.prompt);
    } else {
        out.tag(100, "AcDbAttribute");
    }
    out.tag(2, r.tag);
    out.integer(70, r.flags);
    if (r.fieldLength != 0) out.integer(73, r.fieldLength);
    if (r.text.vertical != 0) out.integer(74, r.text.vertical);
}

void Body(DxfText& out, const MTextRecord& r, const NameIndex& names) {
    out.tag(100, "AcDbMText");
    out.point(10, r.insertion);
    out.tag(40, r.height);
    out.tag(41, r.width);
    out.integer(71, r.attachment);
    out.integer(72, r.flow);
    out.tag(1, r.contents);
    out.tag(42, r.extentsWidth);
    out.tag(43, r.extentsHeight);
    out.tag(7, names.name(names.styles, r.style));
    Normal(out, r.normal);
    out.point(11, r.direction);
    out.integer(73, r.lineSpacingStyle);
    out.tag(44, r.lineSpacingFactor);
}

void Body(DxfText& out, const InsertRecord& r, const NameIndex& names) {
    out.tag(100, r.columns > 1 || r.rows > 1 ? "AcDbMInsertBlock" : "AcDbBlockReference");
    if (r.hasAttributes) out.integer(66, 1);
    out.tag(2, names.name(names.blocks, r.block));
    out.point(10, r.position);
    if (r.scale.x != 1) out.tag(41, r.scale.x);
    if (r.scale.y != 1) out.tag(42, r.scale.y);
    if (r.scale.z != 1) out.tag(43, r.scale.z);
    if (r.rotation != 0) out.angle(50, r.rotation);
    if (r.columns > 1) out.integer(70, r.columns);
    if (r.rows > 1) out.integer(71, r.rows);
    if (r.columnSpacing != 0) out.tag(44, r.columnSpacing);
    if (r.rowSpacing != 0) out.tag(45, r.rowSpacing);
    Normal(out, r.normal);
}

void Body(DxfText& out, const EllipseRecord& r, const NameIndex&) {
    out.tag(100, "AcDbEllipse");
    out.point(10, r.center);
    out.point(11, r.majorAxis);
    Normal(out, r.normal);
    out.tag(40, r.ratio);
    out.tag(41, r.startParam);
    out.tag(42, r.endParam);
}

void Body(DxfText& out, const LwPolylineRecord& r, const NameIndex&) {
    out.tag(100, "AcDbPolyline");
    out.integer(90, static_cast<long long>(r.points.size()));
    out.integer(70, (r.closed() ? 1 : 0) | ((r.flags & 256) ? 128 : 0));
    if (r.flags & 4) out.tag(43, r.constantWidth);
    if (r.elevation != 0) out.tag(38, r.elevation);
    Thickness(out, r.thickness);
    for (std::size_t i = 0; i < r.points.size(); ++i) {
        out.point(10, r.points[i]);
        if (i < r.widths.size()) {
            out.tag(40, r.widths[i].x);
            out.tag(41, r.widths[i].y);
        }
        if (i < r.bulges.size() && r.bulges[i] != 0) out.tag(42, r.bulges[i]);
    }
    Normal(out, r.normal);
}

// DXF's flags of a POLYLINE: the kind is told by 8 (3D) and 64 (polyface mesh).
int PolylineFlags(const PolylineRecord& r) {
    if (r.kind == kPolyline3d) return 8 | (r.flags & 1);
    if (r.kind == kPolylinePface) return 64;
    return r.flags;
}

void Body(DxfText& out, const PolylineRecord& r, const NameIndex&) {
    out.tag(100, r.kind == kPolyline3d      ? "AcDb3dPolyline"
                 : r.kind == kPolylinePface ? "AcDbPolyFaceMesh"
                                            : "AcDb2dPolyline");
    out.integer(66, 1);
    out.point(10, Point3{0, 0, r.elevation});
    Thickness(out, r.thickness);
    out.integer(70, PolylineFlags(r));
    if (r.startWidth != 0) out.tag(40, r.startWidth);
    if (r.endWidth != 0) out.tag(41, r.endWidth);
    if (r.kind == kPolylinePface) {
        out.integer(71, r.vertexCount);
        out.integer(72, r.faceCount);
    }
    if (r.curveType != 0) out.integer(75, r.curveType);
    Normal(out, r.normal);
}

void Body(DxfText& out, const VertexRecord& r, const NameIndex&) {
    out.tag(100, "AcDbVertex");
    if (r.kind == kVertexPfaceFace) {
        out.tag(100, "AcDbFaceRecord");
        out.point(10, Point3{});
        out.integer(70, 128);
        for (int i = 0; i < 4; ++i) {
            if (r.faceIndex[i] != 0) out.integer(71 + i, r.faceIndex[i]);
        }
        return;
    }
    out.tag(100, r.kind == kVertex3d      ? "AcDb3dPolylineVertex"
                 : r.kind == kVertexPface ? "AcDbPolyFaceMeshVertex"
                 : r.kind == kVertexMesh  ? "AcDbPolygonMeshVertex"
                                          : "AcDb2dVertex");
    out.point(10, r.position);
    if (r.kind == kVertex2d) {
        if (r.startWidth != 0) out.tag(40, r.startWidth);
        if (r.endWidth != 0) out.tag(41, r.endWidth);
        if (r.bulge != 0) out.tag(42, r.bulge);
    }
    out.integer(70, r.flags);
    if (r.kind == kVertex2d && r.tangent != 0) out.angle(50, r.tangent);
}

void Body(DxfText& out, const SolidRecord& r, const NameIndex&) {
    out.tag(100, "AcDbTrace");
    for (int i = 0; i < 4; ++i) {
        out.point(10 + i, Point3{r.corners[i].x, r.corners[i].y, r.elevation});
    }
    Thickness(out, r.thickness);
    Normal(out, r.normal);
}

void Body(DxfText& out, const FaceRecord& r, const NameIndex&) {
    out.tag(100, "AcDbFace");
    for (int i = 0; i < 4; ++i) out.point(10 + i, r.corners[i]);
    if (r.invisibleEdges != 0) out.integer(70, r.invisibleEdges);
}

void Body(DxfText& out, const RayRecord& r, const NameIndex&, const std::string& typeName) {
    out.tag(100, typeName == "RAY" ? "AcDbRay" : "AcDbXline");
    out.point(10, r.point);
    out.point(11, r.direction);
}

void HatchEdgeBody(DxfText& out, const HatchEdge& e) {
    out.integer(72, e.type);
    switch (e.type) {
        case 1:
            out.point(10, e.start);
            out.point(11, e.end);
            return;
        case 2:
        case 3:
            out.point(10, e.start);
            if (e.type == 3) out.point(11, e.end);
            out.tag(40, e.radius);
            out.angle(50, e.startAngle);
            out.angle(51, e.endAngle);
            out.integer(73, e.counterClockwise ? 1 : 0);
            return;
        default: break;
    }
    out.integer(94, e.degree);
    out.integer(73, e.rational ? 1 : 0);
    out.integer(74, e.periodic ? 1 : 0);
    out.integer(95, static_cast<long long>(e.knots.size()));
    out.integer(96, static_cast<long long>(e.controlPoints.size()));
    for (double k : e.knots) out.tag(40, k);
    for (std::size_t i = 0; i < e.controlPoints.size(); ++i) {
        out.point(10, e.controlPoints[i]);
        if (i < e.weights.size()) out.tag(42, e.weights[i]);
    }
    if (e.fitPoints.empty()) return;
    out.integer(97, static_cast<long long>(e.fitPoints.size()));
    for (const auto& p : e.fitPoints) out.point(11, p);
    out.point(12, e.startTangent);
    out.point(13, e.endTangent);
}

void HatchPathBody(DxfText& out, const HatchPath& p) {
    out.integer(92, p.flags);
    if (p.flags & 2) {
        out.integer(72, p.hasBulges ? 1 : 0);
        out.integer(73, p.closed ? 1 : 0);
        out.integer(93, static_cast<long long>(p.vertices.size()));
        for (std::size_t i = 0; i < p.vertices.size(); ++i) {
            out.point(10, p.vertices[i]);
            if (p.hasBulges) out.tag(42, i < p.bulges.size() ? p.bulges[i] : 0.0);
        }
    } else {
        out.integer(93, static_cast<long long>(p.edges.size()));
        for (const auto& e : p.edges) HatchEdgeBody(out, e);
    }
    out.integer(97, static_cast<long long>(p.sources.size()));
    for (auto h : p.sources) out.handle(330, h);
}

void Body(DxfText& out, const HatchRecord& r, const NameIndex&) {
    out.tag(100, "AcDbHatch");
    out.point(10, Point3{0, 0, r.elevation});
    out.point(210, r.normal);
    out.tag(2, r.name);
    out.integer(70, r.solid ? 1 : 0);
    out.integer(71, r.associative ? 1 : 0);
    out.integer(91, static_cast<long long>(r.paths.size()));
    for (const auto& p : r.paths) HatchPathBody(out, p);
    out.integer(75, r.style);
    out.integer(76, r.patternType);
    if (!r.solid) {
        out.angle(52, r.angle);
        out.tag(41, r.scale);
        out.integer(77, r.doubled ? 1 : 0);
        out.integer(78, static_cast<long long>(r.lines.size()));
        for (const auto& l : r.lines) {
            out.angle(53, l.angle);
            out.tag(43, l.base.x);
            out.tag(44, l.base.y);
            out.tag(45, l.offset.x);
            out.tag(46, l.offset.y);
            out.integer(79, static_cast<long long>(l.dashes.size()));
            for (double dash : l.dashes) out.tag(49, dash);
        }
    }
    if (r.hasPixelSize) out.tag(47, r.pixelSize);
    out.integer(98, static_cast<long long>(r.seeds.size()));
    for (const auto& p : r.seeds) out.point(10, p);
    if (!r.gradient) return;
    // In the order of the format's own DXF writer.
    out.integer(450, 1);
    out.integer(451, r.gradientReserved);
    out.angle(460, r.gradientAngle);
    out.tag(461, r.gradientShift);
    out.integer(452, r.singleColor);
    out.tag(462, r.gradientTint);
    out.integer(453, static_cast<long long>(r.gradientColors.size()));
    for (const auto& [value, rgb] : r.gradientColors) {
        out.tag(463, value);
        out.integer(63, 256);
        out.integer(421, rgb & 0xFFFFFF);
    }
    out.tag(470, r.gradientName);
}

const char* DimensionSubclass(int dxfType) {
    switch (dxfType) {
        case 0: return "AcDbAlignedDimension";
        case 1: return "AcDbAlignedDimension";
        case 2: return "AcDb2LineAngularDimension";
        case 3: return "AcDbDiametricDimension";
        case 4: return "AcDbRadialDimension";
        case 5: return "AcDb3PointAngularDimension";
        default: return "AcDbOrdinateDimension";
    }
}

void Body(DxfText& out, const DimensionRecord& r, const NameIndex& names) {
    out.tag(100, "AcDbDimension");
    if (r.version != 0) out.integer(280, r.version);
    out.tag(2, names.name(names.blocks, r.block));
    out.point(10, r.points[0]);
    out.point(11, Point3{r.textMidpoint.x, r.textMidpoint.y, r.elevation});
    if (r.clonePoint.x != 0 || r.clonePoint.y != 0) {
        out.point(12, Point3{r.clonePoint.x, r.clonePoint.y, r.elevation});
    }
    const int type = r.dxfType();
    // Bit 0 of the stored flags clear: the text stands where the user put it; bit 1: the block
    // is the dimension's alone.
    out.integer(70, type | ((r.flags & 2) ? 32 : 0) | ((r.flags & 1) ? 0 : 128) | (r.ordinateX ? 64 : 0));
    if (!r.text.empty()) out.tag(1, r.text);
    out.integer(71, r.attachment);
    if (r.lineSpacingStyle != 1) out.integer(72, r.lineSpacingStyle);
    if (r.lineSpacingFactor != 1) out.tag(41, r.lineSpacingFactor);
    out.tag(42, r.measurement);
    if (r.textRotation != 0) out.angle(53, r.textRotation);
    if (r.horizontalDirection != 0) out.angle(51, r.horizontalDirection);
    Normal(out, r.normal);
    out.tag(3, names.name(names.dimensionStyles, r.style));
    out.tag(100, DimensionSubclass(type));
    for (int i = 3; i <= 6; ++i) {
        if (type == 2 ? true : i == 3 || i == 4 || (i == 5 && type >= 3)) out.point(10 + i, r.points[i]);
    }
    if (type == 0 || type == 1) out.angle(52, r.obliqueAngle);
    if (type == 0) {
        out.angle(50, r.rotation);
        out.tag(100, "AcDbRotatedDimension");
    }
    if (type == 3 || type == 4) out.tag(40, r.leaderLength);
}

void Body(DxfText& out, const SplineRecord& r, const NameIndex&) {
    out.tag(100, "AcDbSpline");
    const int flags = (r.closed ? 1 : 0) | (r.periodic ? 2 : 0) | (r.rational ? 4 : 0);
    out.integer(70, flags);
    out.integer(71, r.degree);
    out.integer(72, static_cast<long long>(r.knots.size()));
    out.integer(73, static_cast<long long>(r.controlPoints.size()));
    out.integer(74, static_cast<long long>(r.fitPoints.size()));
    out.tag(42, r.knotTolerance);
    out.tag(43, r.controlTolerance);
    // The fit tolerance is stored with fit data only; a DXF record has it only then too.
    if (r.scenario == 2) {
        out.tag(44, r.fitTolerance);
        out.point(12, r.startTangent);
        out.point(13, r.endTangent);
    }
    for (double k : r.knots) out.tag(40, k);
    for (double w : r.weights) out.tag(41, w);
    for (const auto& p : r.controlPoints) out.point(10, p);
    for (const auto& p : r.fitPoints) out.point(11, p);
}

void WritePlotSettings(DxfText& out, const PlotSettings& p) {
    out.tag(100, "AcDbPlotSettings");
    out.tag(1, p.pageSetupName);
    out.tag(2, p.printerName);
    out.tag(4, p.paperSize);
    out.tag(6, p.plotViewName);
    for (int i = 0; i < 4; ++i) out.tag(40 + i, p.margins[i]);
    out.tag(44, p.paperWidth);
    out.tag(45, p.paperHeight);
    out.tag(46, p.origin.x);
    out.tag(47, p.origin.y);
    out.tag(48, p.windowMin.x);
    out.tag(49, p.windowMin.y);
    out.tag(140, p.windowMax.x);
    out.tag(141, p.windowMax.y);
    out.tag(142, p.realWorldUnits);
    out.tag(143, p.drawingUnits);
    out.integer(70, p.flags);
    out.integer(72, p.paperUnits);
    out.integer(73, p.rotation);
    out.integer(74, p.plotType);
    out.tag(7, p.styleSheet);
    out.integer(75, p.scaleType);
    out.tag(147, p.scaleFactor);
    // The shade plot settings follow the scale factor, as the format's own DXF writer has them.
    if (p.shadeStored) {
        out.integer(76, p.shadeMode);
        out.integer(77, p.shadeResolution);
        out.integer(78, p.shadeDpi);
    }
    out.tag(148, p.imageOrigin.x);
    out.tag(149, p.imageOrigin.y);
    if (p.plotView != 0) out.handle(333, p.plotView);
}

void WriteLayout(DxfText& out, const LayoutRecord& l, const std::string& typeName) {
    WriteHead(out, typeName, l.common, l.common.owner, 5);
    WritePlotSettings(out, l.plot);
    out.tag(100, "AcDbLayout");
    out.tag(1, l.name);
    out.integer(70, l.flags);
    out.integer(71, l.tabOrder);
    out.point(10, l.limmin);
    out.point(11, l.limmax);
    out.point(12, l.insbase);
    out.point(14, l.extmin);
    out.point(15, l.extmax);
    out.tag(146, l.elevation);
    out.point(13, l.ucsOrigin);
    out.point(16, l.ucsX);
    out.point(17, l.ucsY);
    out.integer(76, l.orthoView);
    out.handle(330, l.block);
    if (l.viewport != 0) out.handle(331, l.viewport);
    if (l.namedUcs != 0) out.handle(345, l.namedUcs);
    if (l.baseUcs != 0) out.handle(346, l.baseUcs);
}

}  // namespace

void WriteEntity(DxfText& out, const DecodedObject& decoded, const std::string& typeName,
                 std::uint64_t owner, const NameIndex& names) {
    const EntityCommon* common = EntityCommonOf(decoded);
    if (common == nullptr) return;
    Head(out, typeName, *common, owner);
    EntityProperties(out, *common, owner, names);
    std::visit(
        [&](const auto& r) {
            using R = std::decay_t<decltype(r)>;
            if constexpr (std::is_same_v<R, AttributeRecord>) {
                Body(out, r, names, typeName == "ATTDEF");
            } else if constexpr (std::is_same_v<R, RayRecord>) {
                Body(out, r, names, typeName);
            } else if constexpr (requires { Body(out, r, names); }) {
                Body(out, r, names);
            }
        },
        decoded);
}

namespace {

void ObjectBody(DxfText& out, const DictionaryRecord& d) {
    out.tag(100, "AcDbDictionary");
    if (d.hardOwner != 0) out.integer(280, d.hardOwner);
    out.integer(281, d.cloning);
    for (const auto& [name, entry] : d.entries) {
        out.tag(3, name);
        out.handle(d.hardOwner != 0 ? 360 : 350, entry);
    }
    if (d.withDefault) {
        out.tag(100, "AcDbDictionaryWithDefault");
        out.handle(340, d.defaultEntry);
    }
}

void ObjectBody(DxfText& out, const XRecordRecord& x) {
    out.tag(100, "AcDbXrecord");
    out.integer(280, x.cloning);
    for (const auto& [code, value] : x.groups) {
        // Codes above the DXF's last (1071) are the DWG's own: a DXF record cannot hold them.
        if (code <= 1071) out.tag(code, value);
    }
}

void ObjectBody(DxfText& out, const DictionaryVariableRecord& v) {
    out.tag(100, "DictionaryVariables");
    out.integer(280, v.schema);
    out.tag(1, v.value);
}

void ObjectBody(DxfText& out, const ScaleRecord& s) {
    out.tag(100, "AcDbScale");
    out.integer(70, s.flags);
    out.tag(300, s.name);
    out.tag(140, s.paperUnits);
    out.tag(141, s.drawingUnits);
    out.integer(290, s.unitScale ? 1 : 0);
}

void ObjectBody(DxfText& out, const GroupRecord& g) {
    out.tag(100, "AcDbGroup");
    out.tag(300, g.description);
    out.integer(70, g.unnamed);
    out.integer(71, g.selectable);
    for (auto h : g.entities) out.handle(340, h);
}

// A line's linetype as DXF names it: by layer in capitals, as AutoCAD writes it, whatever the
// case of the table's entry (see MLineStyleInDxfTerms for the lines decoded).
std::string_view MLineLinetype(const MLineStyleLine& line, const NameIndex& names) {
    if (line.linetype == 0) return "BYLAYER";
    const std::string& name = names.name(names.linetypes, line.linetype);
    if (SameAsciiNoCase(name, "ByLayer")) return "BYLAYER";
    if (SameAsciiNoCase(name, "ByBlock")) return "BYBLOCK";
    return name;
}

void ObjectBody(DxfText& out, const MLineStyleRecord& s, const NameIndex& names) {
    out.tag(100, "AcDbMlineStyle");
    out.tag(2, s.name);
    out.integer(70, s.flags);
    out.tag(3, s.description);
    out.integer(62, s.fill.index);
    out.angle(51, s.startAngle);
    out.angle(52, s.endAngle);
    out.integer(71, static_cast<long long>(s.lines.size()));
    for (const MLineStyleLine& line : s.lines) {
        out.tag(49, line.offset);
        out.integer(62, line.color.index);
        out.tag(6, MLineLinetype(line, names));
    }
}

void ObjectBody(DxfText&, const PlaceHolderRecord&) {}
void ObjectBody(DxfText&, const KeptObject&) {}

}  // namespace

void WriteObject(DxfText& out, const DecodedObject& decoded, const std::string& typeName,
                 std::uint64_t handle, const NameIndex& names) {
    if (const auto* l = std::get_if<LayoutRecord>(&decoded)) {
        WriteLayout(out, *l, typeName);
        return;
    }
    const bool written = std::visit(
        [&](const auto& r) {
            if constexpr (requires { ObjectBody(out, r); r.common.owner; }) {
                Head(out, typeName, r.common, r.common.owner);
                ObjectBody(out, r);
                return true;
            } else if constexpr (requires { ObjectBody(out, r, names); }) {
                Head(out, typeName, r.common, r.common.owner);
                ObjectBody(out, r, names);
                return true;
            } else {
                return false;
            }
        },
        decoded);
    if (written) return;
    out.tag(0, typeName);
    out.handle(5, handle);
}

}  // namespace dwg
