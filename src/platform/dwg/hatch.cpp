#include "platform/dwg/hatch.hpp"

namespace dwg {
namespace {

// A count of values that cannot exceed the bits the object holds.
std::int32_t Count(ObjectStreams& o) {
    const std::int32_t count = o.data.BL();
    if (count < 0 || static_cast<std::size_t>(count) > o.size * 8) {
        o.data.seekBit(o.data.bitEnd() + 1);
        return 0;
    }
    return count;
}

void ReadGradient(ObjectStreams& o, HatchRecord& out) {
    BitReader& d = o.data;
    out.gradient = d.BL() != 0;
    out.gradientReserved = d.BL();
    out.gradientAngle = d.BD();
    out.gradientShift = d.BD();
    out.singleColor = d.BL();
    out.gradientTint = d.BD();
    const std::int32_t colors = Count(o);
    for (std::int32_t i = 0; i < colors && !d.failed(); ++i) {
        const double value = d.BD();
        d.BS();
        const auto rgb = static_cast<std::uint32_t>(d.BL());
        d.RC();
        out.gradientColors.emplace_back(value, rgb);
    }
    out.gradientName = o.text().T();
}

void ReadSplineEdge(ObjectStreams& o, HatchEdge& e) {
    BitReader& d = o.data;
    e.degree = d.BL();
    e.rational = d.B();
    e.periodic = d.B();
    const std::int32_t knots = Count(o);
    const std::int32_t points = Count(o);
    for (std::int32_t i = 0; i < knots && !d.failed(); ++i) e.knots.push_back(d.BD());
    for (std::int32_t i = 0; i < points && !d.failed(); ++i) {
        e.controlPoints.push_back(d.RD2());
        if (e.rational) e.weights.push_back(d.BD());
    }
    if (d.version() < Version::kR2010) return;
    const std::int32_t fits = Count(o);
    if (fits == 0) return;
    for (std::int32_t i = 0; i < fits && !d.failed(); ++i) e.fitPoints.push_back(d.RD2());
    e.startTangent = d.RD2();
    e.endTangent = d.RD2();
}

void ReadEdge(ObjectStreams& o, HatchEdge& e) {
    BitReader& d = o.data;
    e.type = d.RC();
    switch (e.type) {
        case 1:
            e.start = d.RD2();
            e.end = d.RD2();
            break;
        case 2:
            e.start = d.RD2();
            e.radius = d.BD();
            e.startAngle = d.BD();
            e.endAngle = d.BD();
            e.counterClockwise = d.B();
            break;
        case 3:
            e.start = d.RD2();
            e.end = d.RD2();
            e.radius = d.BD();
            e.startAngle = d.BD();
            e.endAngle = d.BD();
            e.counterClockwise = d.B();
            break;
        case 4: ReadSplineEdge(o, e); break;
        default: d.seekBit(d.bitEnd() + 1); break;  // no such edge: the object is damaged
    }
}

void ReadPath(ObjectStreams& o, HatchPath& p) {
    BitReader& d = o.data;
    p.flags = d.BL();
    if (!(p.flags & 2)) {
        const std::int32_t edges = Count(o);
        p.edges.resize(static_cast<std::size_t>(edges));
        for (auto& e : p.edges) {
            if (d.failed()) break;
            ReadEdge(o, e);
        }
    } else {
        p.hasBulges = d.B();
        p.closed = d.B();
        const std::int32_t vertices = Count(o);
        for (std::int32_t i = 0; i < vertices && !d.failed(); ++i) {
            p.vertices.push_back(d.RD2());
            if (p.hasBulges) p.bulges.push_back(d.BD());
        }
    }
    p.sources.resize(static_cast<std::size_t>(Count(o)));
}

void ReadPattern(ObjectStreams& o, HatchRecord& out) {
    BitReader& d = o.data;
    out.angle = d.BD();
    out.scale = d.BD();
    out.doubled = d.B();
    const int lines = static_cast<std::uint16_t>(d.BS());
    for (int i = 0; i < lines && !d.failed(); ++i) {
        PatternLine line;
        line.angle = d.BD();
        line.base = d.BD2();
        line.offset = d.BD2();
        const int dashes = static_cast<std::uint16_t>(d.BS());
        for (int k = 0; k < dashes && !d.failed(); ++k) line.dashes.push_back(d.BD());
        out.lines.push_back(std::move(line));
    }
}

}  // namespace

bool ReadHatch(ObjectStreams& o, HatchRecord& out) {
    ReadEntityCommon(o, out.common);
    BitReader& d = o.data;
    if (d.version() >= Version::kR2004) ReadGradient(o, out);
    out.elevation = d.BD();
    out.normal = d.BD3();
    out.name = o.text().T();
    out.solid = d.B();
    out.associative = d.B();
    const std::int32_t paths = Count(o);
    out.paths.resize(static_cast<std::size_t>(paths));
    bool pixels = false;
    for (auto& p : out.paths) {
        if (d.failed()) break;
        ReadPath(o, p);
        pixels = pixels || (p.flags & 4);
    }
    out.style = d.BS();
    out.patternType = d.BS();
    if (!out.solid) ReadPattern(o, out);
    if (pixels) {
        out.hasPixelSize = true;
        out.pixelSize = d.BD();
    }
    const std::int32_t seeds = Count(o);
    for (std::int32_t i = 0; i < seeds && !d.failed(); ++i) out.seeds.push_back(d.RD2());
    for (auto& p : out.paths) {
        for (auto& source : p.sources) source = ReadHandle(o);
    }
    return !d.failed() && !o.handles.failed() && !o.strings.failed();
}

}  // namespace dwg
