// Dimensions, splines, hatches, 3D faces, rays and construction lines from their DXF records.
#include "platform/dwg/encode_annotations.hpp"
#include "platform/dwg/entities.hpp"
#include "platform/dwg/write_context.hpp"
#include "platform/dxf/tagger.hpp"

namespace dwg {
namespace {

// The object type of a dimension by its DXF type (70 & 7).
std::int32_t DimensionKind(long long dxfType) {
    static constexpr std::int32_t kKinds[] = {kDimensionLinear,     kDimensionAligned,
                                              kDimensionAngular2Ln, kDimensionDiameter,
                                              kDimensionRadius,     kDimensionAngular3Pt,
                                              kDimensionOrdinate};
    return dxfType >= 0 && dxfType <= 6 ? kKinds[dxfType] : kDimensionLinear;
}

DimensionRecord DimensionOf(const SourceRecord& r, EntityCommon common, WriteContext& c) {
    DimensionRecord d;
    d.common = std::move(common);
    const long long flags = r.integer(70);
    d.kind = DimensionKind(flags & 7);
    d.version = static_cast<std::uint8_t>(r.integer(280));
    d.normal = r.point(210, {0, 0, 1});
    const Point3 text = r.point(11);
    d.textMidpoint = {text.x, text.y};
    d.elevation = text.z;
    // Bit 0: the text stands where the dimension puts it (DXF 128 clear); bit 1: the block is
    // this dimension's alone (DXF 32); bit 3 is set in every dimension AutoCAD writes.
    d.flags = static_cast<std::uint8_t>(((flags & 128) ? 0 : 1) | ((flags & 32) ? 2 : 0) | 8);
    d.ordinateX = (flags & 64) != 0;
    d.text = std::string(r.text(1));
    d.textRotation = r.angle(53);
    d.horizontalDirection = r.angle(51);
    d.attachment = static_cast<std::int16_t>(r.integer(71, 5));
    d.lineSpacingStyle = static_cast<std::int16_t>(r.integer(72, 1));
    d.lineSpacingFactor = r.real(41, 1.0);
    d.measurement = r.real(42);
    const Point3 clone = r.point(12);
    d.clonePoint = {clone.x, clone.y};
    d.points[0] = r.point(10);
    for (int i = 3; i <= 6; ++i) d.points[i] = r.point(10 + i);
    d.obliqueAngle = r.angle(52);
    d.rotation = r.angle(50);
    d.leaderLength = r.real(40);
    d.style = WriteContext::find(c.dimensionStyles, r.has(3) ? r.text(3) : "STANDARD");
    d.block = WriteContext::find(c.blocks, r.text(2));
    return d;
}

// Repeated points of one code, in their order (code, code+10, code+20).
std::vector<Point3> Points(const SourceRecord& r, int code) {
    std::vector<Point3> out;
    for (const SourceTag& tag : r.tags) {
        const int c = tag.code();
        double number = 0;
        if (c != code && c != code + 10 && c != code + 20) continue;
        TagReal(tag, number);
        if (c == code) {
            out.push_back({number, 0, 0});
        } else if (!out.empty()) {
            (c == code + 10 ? out.back().y : out.back().z) = number;
        }
    }
    return out;
}

std::vector<double> Reals(const SourceRecord& r, int code) {
    std::vector<double> out;
    for (const SourceTag& tag : r.tags) {
        double number = 0;
        if (tag.code() == code && TagReal(tag, number)) out.push_back(number);
    }
    return out;
}

// A spline keeps its control points where it has them (the curve itself); one given by fit
// points only is stored by them.
SplineRecord SplineOf(const SourceRecord& r, EntityCommon common) {
    SplineRecord s;
    s.common = std::move(common);
    const long long flags = r.integer(70);
    s.closed = (flags & 1) != 0;
    s.periodic = (flags & 2) != 0;
    s.rational = (flags & 4) != 0;
    s.degree = static_cast<std::int32_t>(r.integer(71, 3));
    s.knotTolerance = r.real(42);
    s.controlTolerance = r.real(43);
    s.fitTolerance = r.real(44);
    s.knots = Reals(r, 40);
    s.weights = Reals(r, 41);
    s.weighted = !s.weights.empty();
    s.controlPoints = Points(r, 10);
    s.fitPoints = Points(r, 11);
    s.startTangent = r.point(12);
    s.endTangent = r.point(13);
    s.scenario = s.controlPoints.empty() && !s.fitPoints.empty() ? 2 : 1;
    return s;
}

FaceRecord FaceOf(const SourceRecord& r, EntityCommon common) {
    FaceRecord f;
    f.common = std::move(common);
    for (int i = 0; i < 4; ++i) f.corners[i] = r.point(10 + i);
    f.invisibleEdges = static_cast<std::int16_t>(r.integer(70));
    return f;
}

}  // namespace

bool WriteAnnotation(const SourceRecord& r, EntityCommon common, WriteContext& c) {
    const std::uint64_t handle = common.handle;
    const EncodeOptions& o = c.options;
    if (r.type == "DIMENSION") {
        c.add(handle, EncodeDimension(DimensionOf(r, std::move(common), c), o));
    } else if (r.type == "SPLINE") {
        c.add(handle, EncodeSpline(SplineOf(r, std::move(common)), o));
    } else if (r.type == "3DFACE") {
        c.add(handle, EncodeFace(FaceOf(r, std::move(common)), o));
    } else if (r.type == "RAY" || r.type == "XLINE") {
        c.add(handle, EncodeRay({std::move(common), r.point(10), r.point(11)},
                                r.type == "RAY" ? kRay : kXLine, o));
    } else if (r.type == "HATCH") {
        c.add(handle, EncodeHatch(HatchOf(r, std::move(common), c.leftOut), o));
    } else {
        return false;
    }
    return true;
}

}  // namespace dwg
