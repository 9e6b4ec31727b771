#include "platform/dwg/encode_curves.hpp"

#include "platform/dwg/encode_blocks.hpp"

namespace dwg {
namespace {

bool IsUpNormal(const Point3& n) { return n.x == 0.0 && n.y == 0.0 && n.z == 1.0; }

std::int16_t LwPolylineFlags(const LwPolylineRecord& p) {
    auto flags = static_cast<std::int16_t>(p.flags & ~0x43F);
    if (!IsUpNormal(p.normal)) flags |= 1;
    if (p.thickness != 0.0) flags |= 2;
    if (p.constantWidth != 0.0) flags |= 4;
    if (p.elevation != 0.0) flags |= 8;
    if (!p.bulges.empty()) flags |= 16;
    if (!p.widths.empty()) flags |= 32;
    if (!p.vertexIds.empty()) flags |= 1024;
    return flags;
}

// Each point after the first is stored as the bytes that differ from the one before.
void WriteLwPoints(BitWriter& d, const std::vector<Point2>& points) {
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (i == 0) {
            d.RD2(points[i]);
        } else {
            d.DD2(points[i], points[i - 1]);
        }
    }
}

}  // namespace

std::vector<std::uint8_t> EncodeEllipse(const EllipseRecord& e, const EncodeOptions& options) {
    ObjectWriter o = BeginEntity(kEllipse, e.common, options);
    BitWriter& d = o.data;
    d.BD3(e.center);
    d.BD3(e.majorAxis);
    d.BD3(e.normal);
    d.BD(e.ratio);
    d.BD(e.startParam);
    d.BD(e.endParam);
    return FinishObject(o);
}

std::vector<std::uint8_t> EncodeLwPolyline(const LwPolylineRecord& p,
                                           const EncodeOptions& options) {
    ObjectWriter o = BeginEntity(kLwPolyline, p.common, options);
    BitWriter& d = o.data;
    const std::int16_t flags = LwPolylineFlags(p);
    d.BS(flags);
    if (flags & 4) d.BD(p.constantWidth);
    if (flags & 8) d.BD(p.elevation);
    if (flags & 2) d.BD(p.thickness);
    if (flags & 1) d.BD3(p.normal);
    d.BL(static_cast<std::int32_t>(p.points.size()));
    if (flags & 16) d.BL(static_cast<std::int32_t>(p.bulges.size()));
    const bool ids = options.version >= Version::kR2010 && (flags & 1024);
    if (ids) d.BL(static_cast<std::int32_t>(p.vertexIds.size()));
    if (flags & 32) d.BL(static_cast<std::int32_t>(p.widths.size()));
    WriteLwPoints(d, p.points);
    for (double bulge : p.bulges) d.BD(bulge);
    if (ids) {
        for (std::int32_t id : p.vertexIds) d.BL(id);
    }
    for (const Point2& width : p.widths) d.BD2(width);
    return FinishObject(o);
}

std::vector<std::uint8_t> EncodeSolid(const SolidRecord& s, std::int32_t type,
                                      const EncodeOptions& options) {
    ObjectWriter o = BeginEntity(type, s.common, options);
    BitWriter& d = o.data;
    d.BT(s.thickness);
    d.BD(s.elevation);
    for (const Point2& corner : s.corners) d.RD2(corner);
    d.BE(s.normal);
    return FinishObject(o);
}

std::vector<std::uint8_t> EncodePolyline(const PolylineRecord& p, const EncodeOptions& options) {
    ObjectWriter o = BeginEntity(p.kind, p.common, options);
    BitWriter& d = o.data;
    if (p.kind == kPolyline2d) {
        d.BS(p.flags);
        d.BS(p.curveType);
        d.BD(p.startWidth);
        d.BD(p.endWidth);
        d.BT(p.thickness);
        d.BD(p.elevation);
        d.BE(p.normal);
    } else if (p.kind == kPolyline3d) {
        d.RC(static_cast<unsigned>(p.curveType));
        d.RC(static_cast<unsigned>(p.flags));
    } else {
        d.BS(p.vertexCount);
        d.BS(p.faceCount);
    }
    if (options.version >= Version::kR2004) {
        d.BL(static_cast<std::int32_t>(p.vertices.handles.size()));
    }
    WriteOwnedHandles(o, p.vertices);
    return FinishObject(o);
}

// A 2D vertex with equal start and end widths stores one negative width.
std::vector<std::uint8_t> EncodeVertex(const VertexRecord& v, const EncodeOptions& options) {
    ObjectWriter o = BeginEntity(v.kind, v.common, options);
    BitWriter& d = o.data;
    if (v.kind == kVertexPfaceFace) {
        for (std::int16_t index : v.faceIndex) d.BS(index);
        return FinishObject(o);
    }
    d.RC(v.flags);
    d.BD3(v.position);
    if (v.kind == kVertex2d) {
        if (v.startWidth > 0 && v.startWidth == v.endWidth) {
            d.BD(-v.startWidth);
        } else {
            d.BD(v.startWidth);
            d.BD(v.endWidth);
        }
        d.BD(v.bulge);
        d.BD(v.tangent);
    }
    return FinishObject(o);
}

}  // namespace dwg
