// A hatch from its DXF record. The record is a sequence whose counts say what follows (paths,
// their edges or vertices, pattern lines, seeds), so it is read in order.
#include "platform/dwg/write_context.hpp"
#include "platform/dxf/angle_text.hpp"
#include "platform/dxf/tagger.hpp"

namespace dwg {
namespace {

class TagWalk {
public:
    explicit TagWalk(const SourceRecord& r) : tags_(r.tags) {}
    // The value of the next tag when it has the code (moving past it), else the fallback.
    double real(int code, double fallback = 0) {
        double value = fallback;
        if (at(code)) TagReal(tags_[i_++], value);
        return value;
    }
    // An angle in degrees, as radians.
    double angle(int code) { return at(code) ? dxf::Radians(tags_[i_++].text()) : 0; }
    long long integer(int code, long long fallback = 0) {
        long long value = fallback;
        if (at(code)) dxf::ParseInteger(tags_[i_++].text(), value);
        return value;
    }
    std::string_view text(int code) { return at(code) ? tags_[i_++].text() : std::string_view(); }
    Point2 point(int code) {
        const double x = real(code);
        return {x, real(code + 10)};
    }
    bool at(int code) const { return i_ < tags_.size() && tags_[i_].code() == code; }
    // Moves to the next tag of the code, from where the walk stands.
    bool seek(int code) {
        while (i_ < tags_.size() && tags_[i_].code() != code) ++i_;
        return i_ < tags_.size();
    }
    void skipPoint() {
        if (at(30)) ++i_;
    }

private:
    std::span<const SourceTag> tags_;
    std::size_t i_ = 0;
};

void SplineEdge(TagWalk& w, HatchEdge& e) {
    e.degree = static_cast<std::int32_t>(w.integer(94, 3));
    e.rational = w.integer(73) != 0;
    e.periodic = w.integer(74) != 0;
    const long long knots = w.integer(95);
    const long long points = w.integer(96);
    for (long long i = 0; i < knots; ++i) e.knots.push_back(w.real(40));
    for (long long i = 0; i < points; ++i) {
        e.controlPoints.push_back(w.point(10));
        if (w.at(42)) e.weights.push_back(w.real(42));
    }
    const long long fits = w.integer(97);
    for (long long i = 0; i < fits; ++i) e.fitPoints.push_back(w.point(11));
    if (fits > 0) {
        e.startTangent = w.point(12);
        e.endTangent = w.point(13);
    }
}

HatchEdge Edge(TagWalk& w) {
    HatchEdge e;
    e.type = static_cast<std::uint8_t>(w.integer(72, 1));
    switch (e.type) {
        case 1:
            e.start = w.point(10);
            e.end = w.point(11);
            break;
        case 2:
        case 3:
            e.start = w.point(10);
            if (e.type == 3) e.end = w.point(11);
            e.radius = w.real(40);
            e.startAngle = w.angle(50);
            e.endAngle = w.angle(51);
            e.counterClockwise = w.integer(73, 1) != 0;
            break;
        default: SplineEdge(w, e); break;
    }
    return e;
}

HatchPath Path(TagWalk& w) {
    HatchPath p;
    p.flags = static_cast<std::int32_t>(w.integer(92));
    if (p.flags & 2) {
        p.hasBulges = w.integer(72) != 0;
        p.closed = w.integer(73) != 0;
        const long long count = w.integer(93);
        for (long long i = 0; i < count; ++i) {
            p.vertices.push_back(w.point(10));
            if (p.hasBulges) p.bulges.push_back(w.real(42));
        }
    } else {
        const long long count = w.integer(93);
        for (long long i = 0; i < count; ++i) p.edges.push_back(Edge(w));
    }
    const long long sources = w.integer(97);
    for (long long i = 0; i < sources; ++i) p.sources.push_back(ParseHandle(w.text(330)));
    return p;
}

void Pattern(TagWalk& w, HatchRecord& h) {
    h.angle = w.angle(52);
    h.scale = w.real(41, 1.0);
    h.doubled = w.integer(77) != 0;
    const long long lines = w.integer(78);
    for (long long i = 0; i < lines; ++i) {
        PatternLine line;
        line.angle = w.angle(53);
        line.base.x = w.real(43);
        line.base.y = w.real(44);
        line.offset.x = w.real(45);
        line.offset.y = w.real(46);
        const long long dashes = w.integer(79);
        for (long long k = 0; k < dashes; ++k) line.dashes.push_back(w.real(49));
        h.lines.push_back(std::move(line));
    }
}

// The gradient's groups in the format's order: 450, 451, 460, 461, 452, 462, 453 and the colours.
void Gradient(TagWalk& w, HatchRecord& h, std::map<std::string, int>& leftOut) {
    h.gradient = w.integer(450) != 0;
    h.gradientReserved = static_cast<std::int32_t>(w.integer(451));
    h.gradientAngle = w.angle(460);
    h.gradientShift = w.real(461);
    h.singleColor = static_cast<std::int32_t>(w.integer(452));
    h.gradientTint = w.real(462);
    const long long colors = w.integer(453);
    for (long long i = 0; i < colors; ++i) {
        const double value = w.real(463);
        if (w.integer(63, 256) != 256) ++leftOut["HATCH gradient colour index"];
        const auto rgb = static_cast<std::uint32_t>(w.integer(421));
        h.gradientColors.emplace_back(value, 0xC2000000u | (rgb & 0xFFFFFF));
    }
    h.gradientName = std::string(w.text(470));
}

}  // namespace

HatchRecord HatchOf(const SourceRecord& r, EntityCommon common,
                    std::map<std::string, int>& leftOut) {
    HatchRecord h;
    h.common = std::move(common);
    const SourceRecord body = r.subclass("AcDbHatch");
    TagWalk w(body);
    h.elevation = body.point(10).z;
    h.normal = body.point(210, {0, 0, 1});
    w.seek(2);
    h.name = std::string(w.text(2));
    h.solid = w.integer(70) != 0;
    h.associative = w.integer(71) != 0;
    const long long paths = w.integer(91);
    for (long long i = 0; i < paths; ++i) h.paths.push_back(Path(w));
    h.style = static_cast<std::int16_t>(w.integer(75));
    h.patternType = static_cast<std::int16_t>(w.integer(76, 1));
    if (!h.solid) Pattern(w, h);
    if (w.at(47)) {
        h.hasPixelSize = true;
        h.pixelSize = w.real(47);
    }
    const long long seeds = w.integer(98);
    for (long long i = 0; i < seeds; ++i) h.seeds.push_back(w.point(10));
    if (w.seek(450)) Gradient(w, h, leftOut);
    return h;
}

}  // namespace dwg
