#include "platform/dwg/encode_annotations.hpp"

#include "platform/dwg/entities.hpp"

namespace dwg {
namespace {

void WriteDimensionCommon(BitWriter& d, const DimensionRecord& r) {
    d.BD3(r.normal);
    d.RD2(r.textMidpoint);
    d.BD(r.elevation);
    d.RC(r.flags);
    d.T(r.text);
    d.BD(r.textRotation);
    d.BD(r.horizontalDirection);
    d.BD3(r.insertScale);
    d.BD(r.insertRotation);
    d.BS(r.attachment);
    d.BS(r.lineSpacingStyle);
    d.BD(r.lineSpacingFactor);
    d.BD(r.measurement);
    d.RD2(r.clonePoint);
}

void WriteDimensionPoints(BitWriter& d, const DimensionRecord& r) {
    const Point3* p = r.points;
    switch (r.kind) {
        case kDimensionOrdinate:
            d.BD3(p[0]);
            d.BD3(p[3]);
            d.BD3(p[4]);
            d.RC(r.ordinateX ? 1 : 0);
            break;
        case kDimensionLinear:
        case kDimensionAligned:
            d.BD3(p[3]);
            d.BD3(p[4]);
            d.BD3(p[0]);
            d.BD(r.obliqueAngle);
            if (r.kind == kDimensionLinear) d.BD(r.rotation);
            break;
        case kDimensionAngular3Pt:
            d.BD3(p[0]);
            d.BD3(p[3]);
            d.BD3(p[4]);
            d.BD3(p[5]);
            break;
        case kDimensionAngular2Ln:
            d.RD2({p[6].x, p[6].y});
            d.BD3(p[3]);
            d.BD3(p[4]);
            d.BD3(p[5]);
            d.BD3(p[0]);
            break;
        default:
            d.BD3(p[0]);
            d.BD3(p[5]);
            d.BD(r.leaderLength);
            break;
    }
}

void WriteHatchSplineEdge(BitWriter& d, const HatchEdge& e) {
    d.BL(e.degree);
    d.B(e.rational);
    d.B(e.periodic);
    d.BL(static_cast<std::int32_t>(e.knots.size()));
    d.BL(static_cast<std::int32_t>(e.controlPoints.size()));
    for (double k : e.knots) d.BD(k);
    for (std::size_t i = 0; i < e.controlPoints.size(); ++i) {
        d.RD2(e.controlPoints[i]);
        if (e.rational) d.BD(i < e.weights.size() ? e.weights[i] : 1.0);
    }
}

void WriteHatchEdge(BitWriter& d, const HatchEdge& e) {
    d.RC(e.type);
    switch (e.type) {
        case 1:
            d.RD2(e.start);
            d.RD2(e.end);
            break;
        case 2:
        case 3:
            d.RD2(e.start);
            if (e.type == 3) d.RD2(e.end);
            d.BD(e.radius);
            d.BD(e.startAngle);
            d.BD(e.endAngle);
            d.B(e.counterClockwise);
            break;
        default: WriteHatchSplineEdge(d, e); break;
    }
}

void WriteHatchPath(BitWriter& d, const HatchPath& p) {
    d.BL(p.flags);
    if (!(p.flags & 2)) {
        d.BL(static_cast<std::int32_t>(p.edges.size()));
        for (const HatchEdge& e : p.edges) WriteHatchEdge(d, e);
    } else {
        d.B(p.hasBulges);
        d.B(p.closed);
        d.BL(static_cast<std::int32_t>(p.vertices.size()));
        for (std::size_t i = 0; i < p.vertices.size(); ++i) {
            d.RD2(p.vertices[i]);
            if (p.hasBulges) d.BD(i < p.bulges.size() ? p.bulges[i] : 0.0);
        }
    }
    d.BL(static_cast<std::int32_t>(p.sources.size()));
}

void WriteGradient(BitWriter& d, const HatchRecord& h) {
    d.BL(h.gradient ? 1 : 0);
    d.BL(h.gradientReserved);
    d.BD(h.gradientAngle);
    d.BD(h.gradientShift);
    d.BL(h.singleColor);
    d.BD(h.gradientTint);
    d.BL(static_cast<std::int32_t>(h.gradientColors.size()));
    for (const auto& [value, rgb] : h.gradientColors) {
        d.BD(value);
        d.BS(0);
        d.BL(static_cast<std::int32_t>(rgb));
        d.RC(0);
    }
    d.T(h.gradientName);
}

}  // namespace

std::vector<std::uint8_t> EncodeDimension(const DimensionRecord& r, const EncodeOptions& options) {
    ObjectWriter o = BeginEntity(r.kind, r.common, options);
    WriteDimensionCommon(o.data, r);
    WriteDimensionPoints(o.data, r);
    WriteHandle(o, kHardPointer, r.style);
    WriteHandle(o, kHardPointer, r.block);
    return FinishObject(o);
}

std::vector<std::uint8_t> EncodeSpline(const SplineRecord& r, const EncodeOptions& options) {
    ObjectWriter o = BeginEntity(kSpline, r.common, options);
    BitWriter& d = o.data;
    d.BL(r.scenario);
    d.BL(r.degree);
    if (r.scenario == 2) {
        d.BD(r.fitTolerance);
        d.BD3(r.startTangent);
        d.BD3(r.endTangent);
        d.BL(static_cast<std::int32_t>(r.fitPoints.size()));
        for (const Point3& p : r.fitPoints) d.BD3(p);
        return FinishObject(o);
    }
    d.B(r.rational);
    d.B(r.closed);
    d.B(r.periodic);
    d.BD(r.knotTolerance);
    d.BD(r.controlTolerance);
    d.BL(static_cast<std::int32_t>(r.knots.size()));
    d.BL(static_cast<std::int32_t>(r.controlPoints.size()));
    d.B(r.weighted);
    for (double k : r.knots) d.BD(k);
    for (std::size_t i = 0; i < r.controlPoints.size(); ++i) {
        d.BD3(r.controlPoints[i]);
        if (r.weighted) d.BD(i < r.weights.size() ? r.weights[i] : 1.0);
    }
    return FinishObject(o);
}

std::vector<std::uint8_t> EncodeHatch(const HatchRecord& h, const EncodeOptions& options) {
    ObjectWriter o = BeginEntity(kHatch, h.common, options);
    BitWriter& d = o.data;
    if (options.version >= Version::kR2004) WriteGradient(d, h);
    d.BD(h.elevation);
    d.BD3(h.normal);
    d.T(h.name);
    d.B(h.solid);
    d.B(h.associative);
    d.BL(static_cast<std::int32_t>(h.paths.size()));
    bool pixels = false;
    for (const HatchPath& p : h.paths) {
        WriteHatchPath(d, p);
        pixels = pixels || (p.flags & 4);
    }
    d.BS(h.style);
    d.BS(h.patternType);
    if (!h.solid) {
        d.BD(h.angle);
        d.BD(h.scale);
        d.B(h.doubled);
        d.BS(static_cast<int>(h.lines.size()));
        for (const PatternLine& line : h.lines) {
            d.BD(line.angle);
            d.BD2(line.base);
            d.BD2(line.offset);
            d.BS(static_cast<int>(line.dashes.size()));
            for (double dash : line.dashes) d.BD(dash);
        }
    }
    if (pixels) d.BD(h.pixelSize);
    d.BL(static_cast<std::int32_t>(h.seeds.size()));
    for (const Point2& seed : h.seeds) d.RD2(seed);
    for (const HatchPath& p : h.paths) {
        for (std::uint64_t source : p.sources) WriteHandle(o, kSoftPointer, source);
    }
    return FinishObject(o);
}

// From 2000 each corner is stored against the one before; the z of a flat face is left out.
std::vector<std::uint8_t> EncodeFace(const FaceRecord& f, const EncodeOptions& options) {
    ObjectWriter o = BeginEntity(kFace3d, f.common, options);
    BitWriter& d = o.data;
    const bool flat = f.corners[0].z == 0.0;
    d.B(f.invisibleEdges == 0);
    d.B(flat);
    d.RD(f.corners[0].x);
    d.RD(f.corners[0].y);
    if (!flat) d.RD(f.corners[0].z);
    for (int i = 1; i < 4; ++i) {
        const Point3& before = f.corners[i - 1];
        d.DD(f.corners[i].x, before.x);
        d.DD(f.corners[i].y, before.y);
        d.DD(f.corners[i].z, before.z);
    }
    if (f.invisibleEdges != 0) d.BS(f.invisibleEdges);
    return FinishObject(o);
}

std::vector<std::uint8_t> EncodeRay(const RayRecord& r, std::int32_t type,
                                    const EncodeOptions& options) {
    ObjectWriter o = BeginEntity(type, r.common, options);
    o.data.BD3(r.point);
    o.data.BD3(r.direction);
    return FinishObject(o);
}

std::vector<std::uint8_t> EncodeDictionaryVariable(const DictionaryVariableRecord& v,
                                                   std::int32_t type, const EncodeOptions& options) {
    ObjectWriter o = BeginObject(type, v.common.handle, options.version, options.codePage);
    WriteObjectCommon(o, v.common);
    o.data.RC(v.schema);
    o.data.T(v.value);
    return FinishObject(o);
}

std::vector<std::uint8_t> EncodeScale(const ScaleRecord& s, std::int32_t type,
                                      const EncodeOptions& options) {
    ObjectWriter o = BeginObject(type, s.common.handle, options.version, options.codePage);
    WriteObjectCommon(o, s.common);
    BitWriter& d = o.data;
    d.BS(s.flags);
    d.T(s.name);
    d.BD(s.paperUnits);
    d.BD(s.drawingUnits);
    d.B(s.unitScale);
    return FinishObject(o);
}

std::vector<std::uint8_t> EncodeGroup(const GroupRecord& g, const EncodeOptions& options) {
    ObjectWriter o = BeginObject(kGroup, g.common.handle, options.version, options.codePage);
    WriteObjectCommon(o, g.common);
    BitWriter& d = o.data;
    d.T(g.description);
    d.BS(g.unnamed);
    d.BS(g.selectable);
    d.BL(static_cast<std::int32_t>(g.entities.size()));
    for (std::uint64_t entity : g.entities) WriteHandle(o, kHardPointer, entity);
    return FinishObject(o);
}

}  // namespace dwg
