#include "platform/dwg/curves.hpp"

#include "platform/dwg/entities.hpp"

namespace dwg {
namespace {

bool Ok(const ObjectStreams& o) {
    return !o.data.failed() && !o.handles.failed() && !o.strings.failed();
}

// A count of values that cannot exceed the bits the object holds.
std::int32_t Count(ObjectStreams& o) {
    const std::int32_t count = o.data.BL();
    if (count < 0 || static_cast<std::size_t>(count) > o.size * 8) {
        o.data.seekBit(o.data.bitEnd() + 1);
        return 0;
    }
    return count;
}

void ReadLwPoints(BitReader& d, std::int32_t count, std::vector<Point2>& out) {
    out.reserve(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count && !d.failed(); ++i) {
        // From 2000 each point after the first is stored as its difference from the last.
        if (i == 0 || d.version() < Version::kR2000) {
            out.push_back(d.RD2());
        } else {
            out.push_back(d.DD2(out.back()));
        }
    }
}

}  // namespace

bool ReadEllipse(ObjectStreams& o, EllipseRecord& out) {
    ReadEntityCommon(o, out.common);
    BitReader& d = o.data;
    out.center = d.BD3();
    out.majorAxis = d.BD3();
    out.normal = d.BD3();
    out.ratio = d.BD();
    out.startParam = d.BD();
    out.endParam = d.BD();
    return Ok(o);
}

bool ReadLwPolyline(ObjectStreams& o, LwPolylineRecord& out) {
    ReadEntityCommon(o, out.common);
    BitReader& d = o.data;
    out.flags = d.BS();
    if (out.flags & 4) out.constantWidth = d.BD();
    if (out.flags & 8) out.elevation = d.BD();
    if (out.flags & 2) out.thickness = d.BD();
    if (out.flags & 1) out.normal = d.BD3();
    const std::int32_t points = Count(o);
    const std::int32_t bulges = (out.flags & 16) ? Count(o) : 0;
    const std::int32_t ids =
        (d.version() >= Version::kR2010 && (out.flags & 1024)) ? Count(o) : 0;
    const std::int32_t widths = (out.flags & 32) ? Count(o) : 0;
    ReadLwPoints(d, points, out.points);
    for (std::int32_t i = 0; i < bulges && !d.failed(); ++i) out.bulges.push_back(d.BD());
    for (std::int32_t i = 0; i < ids && !d.failed(); ++i) out.vertexIds.push_back(d.BL());
    for (std::int32_t i = 0; i < widths && !d.failed(); ++i) out.widths.push_back(d.BD2());
    return Ok(o);
}

bool ReadPolyline(ObjectStreams& o, PolylineRecord& out) {
    ReadEntityCommon(o, out.common);
    BitReader& d = o.data;
    out.kind = o.type;
    if (o.type == kPolyline2d) {
        out.flags = d.BS();
        out.curveType = d.BS();
        out.startWidth = d.BD();
        out.endWidth = d.BD();
        out.thickness = d.BT();
        out.elevation = d.BD();
        out.normal = d.BE();
    } else if (o.type == kPolyline3d) {
        out.curveType = d.RC();
        out.flags = d.RC();
    } else {
        out.vertexCount = d.BS();
        out.faceCount = d.BS();
    }
    const std::int32_t owned = d.version() >= Version::kR2004 ? Count(o) : 0;
    ReadOwnedHandles(o, owned, out.vertices);
    return Ok(o);
}

bool ReadVertex(ObjectStreams& o, VertexRecord& out) {
    ReadEntityCommon(o, out.common);
    BitReader& d = o.data;
    out.kind = o.type;
    if (o.type == kVertexPfaceFace) {
        for (auto& index : out.faceIndex) index = d.BS();
        return Ok(o);
    }
    out.flags = d.RC();
    out.position = d.BD3();
    if (o.type == kVertex2d) {
        out.startWidth = d.BD();
        // A negative start width stands for equal start and end widths.
        if (out.startWidth < 0) {
            out.startWidth = -out.startWidth;
            out.endWidth = out.startWidth;
        } else {
            out.endWidth = d.BD();
        }
        out.bulge = d.BD();
        if (d.version() >= Version::kR2010) out.id = d.BL();
        out.tangent = d.BD();
    }
    return Ok(o);
}

bool ReadSolid(ObjectStreams& o, SolidRecord& out) {
    ReadEntityCommon(o, out.common);
    BitReader& d = o.data;
    out.thickness = d.BT();
    out.elevation = d.BD();
    for (auto& corner : out.corners) corner = d.RD2();
    out.normal = d.BE();
    return Ok(o);
}

}  // namespace dwg
