// Hatches and filled solids, which the database carries as their file records: the boundary
// loops are read from the record's tags. A solid hatch is filled; a pattern is drawn as its
// families of parallel lines clipped to the loops (its dashes as a dash pattern).
#include <algorithm>
#include <charconv>
#include <cmath>

#include "platform/db/carried.hpp"
#include "platform/db/raw_tags.hpp"
#include "platform/ge/nurbs.hpp"
#include "platform/render/canvas.hpp"

namespace tavrik::render {

namespace {

// Pattern lines closer than this on the device are drawn as a light fill instead.
constexpr double kFinestSpacingPx = 2.0;
constexpr int kArcSamples = 48;
constexpr int kSplineSpanSamples = 16;

struct PatternLine {
    double angle = 0.0;  // degrees
    AcGePoint3d base;
    AcGeVector3d offset;
    std::vector<double> dashes;
};

struct HatchRecord {
    bool solid = false;
    std::vector<std::vector<AcGePoint3d>> loops;
    std::vector<PatternLine> pattern;
};

// The tags of a record as a sequence that can be read in order.
class TagReader {
public:
    explicit TagReader(const AcDbRawTags& tags) {
        for (AcDbRawTag tag : tags) m_tags.push_back(tag);
    }
    bool done() const { return m_next >= m_tags.size(); }
    // The code of the tag `ahead` places after the cursor; -1 past the end.
    int peekCode(size_t ahead = 0) const {
        return m_next + ahead < m_tags.size() ? m_tags[m_next + ahead].code : -1;
    }
    // The value of the next tag of this code at or after the cursor, which moves past it.
    double number(int code) {
        while (!done() && m_tags[m_next].code != code) ++m_next;
        if (done()) return 0.0;
        std::string_view text = m_tags[m_next++].value;
        while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
        double value = 0.0;
        std::from_chars(text.data(), text.data() + text.size(), value);
        return value;
    }
    int integer(int code) { return static_cast<int>(number(code)); }
    AcGePoint3d point(int xCode) {
        double x = number(xCode);
        double y = number(xCode + 10);
        return {x, y, 0.0};
    }
    // Moves the cursor to the first tag of this code; false when there is none.
    bool seek(int code) {
        while (!done() && m_tags[m_next].code != code) ++m_next;
        return !done();
    }

private:
    std::vector<AcDbRawTag> m_tags;
    size_t m_next = 0;
};

void AppendArc(std::vector<AcGePoint3d>& loop, const AcGePoint3d& center, const AcGeVector3d& major,
               double ratio, double start, double end, bool counterClockwise) {
    if (!counterClockwise) {
        start = -start;
        end = -end;
    }
    double sweep = end - start;
    if (counterClockwise && sweep <= 0) sweep += 2 * M_PI;
    if (!counterClockwise && sweep >= 0) sweep -= 2 * M_PI;
    AcGeVector3d minor(-major.y * ratio, major.x * ratio, 0.0);
    for (int i = 0; i <= kArcSamples; ++i) {
        double t = start + sweep * i / kArcSamples;
        loop.push_back(center + major * std::cos(t) + minor * std::sin(t));
    }
}

void ReadPolylineLoop(TagReader& tags, std::vector<AcGePoint3d>& loop) {
    bool bulges = tags.integer(72) != 0;
    int count = tags.integer(93);
    std::vector<std::pair<AcGePoint3d, double>> vertices;
    for (int i = 0; i < count; ++i) {
        AcGePoint3d p = tags.point(10);
        double bulge = bulges && tags.peekCode() == 42 ? tags.number(42) : 0.0;
        vertices.emplace_back(p, bulge);
    }
    for (size_t i = 0; i < vertices.size(); ++i) {
        const auto& [p, bulge] = vertices[i];
        loop.push_back(p);
        if (bulge == 0.0) continue;
        const AcGePoint3d& q = vertices[(i + 1) % vertices.size()].first;
        AcGeVector3d chord = q - p;
        AcGeVector3d normal(-chord.y, chord.x, 0.0);
        AcGePoint3d center = p + chord / 2 + normal * ((1 - bulge * bulge) / (4 * bulge));
        double sweep = 4 * std::atan(bulge);
        AcGeVector3d from = p - center;
        for (int k = 1; k < kArcSamples; ++k) {
            double t = sweep * k / kArcSamples;
            loop.push_back(center + AcGeVector3d(from.x * std::cos(t) - from.y * std::sin(t),
                                                 from.x * std::sin(t) + from.y * std::cos(t), 0.0));
        }
    }
}

// A spline edge: degree, knots, control points (with weights when rational). Later versions
// write fit data after them: its count (97) and fit points (11). That 97 is taken here, lest
// the loop read it as its count of source objects and pass over what follows; the rest of the
// fit data is passed over as every reading seeks its own code.
tavrik::ge::NurbsCurve ReadSplineEdge(TagReader& tags) {
    tavrik::ge::NurbsCurve curve;
    curve.degree = tags.integer(94);
    bool rational = tags.integer(73) != 0;
    int knots = tags.integer(95), controls = tags.integer(96);
    for (int i = 0; i < knots; ++i) curve.knots.push_back(tags.number(40));
    for (int i = 0; i < controls; ++i) {
        curve.controlPoints.push_back(tags.point(10));
        if (rational) curve.weights.push_back(tags.peekCode() == 42 ? tags.number(42) : 1.0);
    }
    if (tags.peekCode() == 97 && tags.peekCode(1) == 11) tags.integer(97);
    return curve;
}

// Points along the spline, kSplineSpanSamples per knot span; a malformed spline is drawn along
// its control polygon.
void AppendSpline(std::vector<AcGePoint3d>& loop, const tavrik::ge::NurbsCurve& curve) {
    if (!tavrik::ge::isWellFormed(curve)) {
        loop.insert(loop.end(), curve.controlPoints.begin(), curve.controlPoints.end());
        return;
    }
    std::vector<double> breaks = tavrik::ge::spanBreaks(curve);
    loop.push_back(tavrik::ge::evaluate(curve, breaks.front()).point);
    for (size_t i = 1; i < breaks.size(); ++i) {
        for (int k = 1; k <= kSplineSpanSamples; ++k) {
            double t = breaks[i - 1] + (breaks[i] - breaks[i - 1]) * k / kSplineSpanSamples;
            loop.push_back(tavrik::ge::evaluate(curve, t).point);
        }
    }
}

void ReadEdge(TagReader& tags, std::vector<AcGePoint3d>& loop) {
    int type = tags.integer(72);
    if (type == 1) {
        loop.push_back(tags.point(10));
        loop.push_back(tags.point(11));
    } else if (type == 2) {
        AcGePoint3d center = tags.point(10);
        double radius = tags.number(40);
        double start = tags.number(50) * M_PI / 180, end = tags.number(51) * M_PI / 180;
        AppendArc(loop, center, AcGeVector3d(radius, 0, 0), 1.0, start, end, tags.integer(73) != 0);
    } else if (type == 3) {
        AcGePoint3d center = tags.point(10);
        AcGePoint3d axisEnd = tags.point(11);
        double ratio = tags.number(40);
        double start = tags.number(50) * M_PI / 180, end = tags.number(51) * M_PI / 180;
        AppendArc(loop, center, axisEnd - AcGePoint3d::kOrigin, ratio, start, end, tags.integer(73) != 0);
    } else if (type == 4) {
        AppendSpline(loop, ReadSplineEdge(tags));
    }
}

HatchRecord ReadHatch(const AcDbRawTags& raw) {
    HatchRecord hatch;
    TagReader tags(raw);
    hatch.solid = tags.integer(70) != 0;
    int loops = tags.integer(91);
    for (int i = 0; i < loops && !tags.done(); ++i) {
        std::vector<AcGePoint3d> loop;
        int flags = tags.integer(92);
        if (flags & 2) {
            ReadPolylineLoop(tags, loop);
        } else {
            int edges = tags.integer(93);
            for (int e = 0; e < edges && !tags.done(); ++e) ReadEdge(tags, loop);
        }
        int sources = tags.integer(97);
        for (int s = 0; s < sources; ++s) tags.number(330);
        if (loop.size() >= 2) hatch.loops.push_back(std::move(loop));
    }
    if (hatch.solid || !tags.seek(78)) return hatch;
    int lines = tags.integer(78);
    for (int i = 0; i < lines && !tags.done(); ++i) {
        PatternLine line;
        line.angle = tags.number(53);
        line.base = {tags.number(43), tags.number(44), 0.0};
        line.offset = {tags.number(45), tags.number(46), 0.0};
        int dashes = tags.integer(79);
        for (int d = 0; d < dashes; ++d) line.dashes.push_back(tags.number(49));
        hatch.pattern.push_back(line);
    }
    return hatch;
}

// Lines of one family across the loops' box: through base + k * offset, along the angle.
void DrawFamily(Canvas& canvas, const BlockContext& context, const PatternLine& line, const Pen& pen,
                const AcDbExtents& box) {
    AcGeVector3d along(std::cos(line.angle * M_PI / 180), std::sin(line.angle * M_PI / 180), 0.0);
    AcGeVector3d across(-along.y, along.x, 0.0);
    double spacing = std::fabs(line.offset.dotProduct(across));
    AcGePoint3d corners[4] = {box.minPoint(), {box.maxPoint().x, box.minPoint().y, 0},
                              box.maxPoint(), {box.minPoint().x, box.maxPoint().y, 0}};
    double lo = 1e300, hi = -1e300, from = 1e300, to = -1e300;
    for (const AcGePoint3d& c : corners) {
        lo = std::min(lo, (c - line.base).dotProduct(across));
        hi = std::max(hi, (c - line.base).dotProduct(across));
        from = std::min(from, (c - line.base).dotProduct(along));
        to = std::max(to, (c - line.base).dotProduct(along));
    }
    Pen dashed = pen;
    dashed.dashes.clear();
    for (double d : line.dashes) dashed.dashes.push_back(std::fabs(d));
    if (dashed.dashes.size() % 2 == 1) dashed.dashes.clear();
    for (double k = std::ceil(lo / spacing); k * spacing <= hi; k += 1.0) {
        // Each line of the family is shifted along itself by the offset's along part.
        AcGePoint3d origin = line.base + line.offset * (k * spacing / line.offset.dotProduct(across));
        double shift = (origin - line.base).dotProduct(along);
        StrokePath(canvas, context, dashed, {origin + along * (from - shift), origin + along * (to - shift)}, false);
    }
}

void DrawPattern(Canvas& canvas, const BlockContext& context, const HatchRecord& hatch, const Pen& pen) {
    AcDbExtents box;
    for (const auto& loop : hatch.loops)
        for (const AcGePoint3d& p : loop) box.addPoint(p);
    cairo_save(canvas.cr);
    for (const auto& loop : hatch.loops) {
        bool first = true;
        for (const AcGePoint3d& p : loop) {
            DevicePoint d = canvas.toDevice(context.xform * p);
            if (first) cairo_move_to(canvas.cr, d.x, d.y);
            else cairo_line_to(canvas.cr, d.x, d.y);
            first = false;
        }
        cairo_close_path(canvas.cr);
    }
    cairo_set_fill_rule(canvas.cr, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_clip(canvas.cr);
    Pen thin = pen;
    thin.widthPx = 1.0;
    for (const PatternLine& line : hatch.pattern) {
        AcGeVector3d across(-std::sin(line.angle * M_PI / 180), std::cos(line.angle * M_PI / 180), 0.0);
        double spacingPx = std::fabs(line.offset.dotProduct(across)) * canvas.scale * context.scale;
        if (spacingPx < kFinestSpacingPx) {
            cairo_set_source_rgba(canvas.cr, pen.color.r, pen.color.g, pen.color.b, 0.35);
            cairo_paint(canvas.cr);
            break;
        }
        DrawFamily(canvas, context, line, thin, box);
    }
    cairo_restore(canvas.cr);
}

}  // namespace

void DrawHatch(Canvas& canvas, const AcDbEntity& entity, const BlockContext& context) {
    HatchRecord hatch = ReadHatch(entity.fileTags());
    if (hatch.loops.empty()) return;
    Pen pen = PenOf(canvas, entity, context);
    if (hatch.solid || hatch.pattern.empty()) FillPath(canvas, context, pen.color, hatch.loops);
    else DrawPattern(canvas, context, hatch, pen);
}

std::vector<AcGePoint3d> OutlinePoints(const AcDbEntity& entity) {
    std::vector<AcGePoint3d> points;
    if (AcDbHatch::cast(&entity)) {
        for (const auto& loop : ReadHatch(entity.fileTags()).loops) points.insert(points.end(), loop.begin(), loop.end());
        return points;
    }
    TagReader tags(entity.fileTags());
    for (int code = 10; code <= 13; ++code) points.push_back(tags.point(code));
    return points;
}

// A filled solid or trace: four corners, the last two crossed as the file stores them.
void DrawSolid(Canvas& canvas, const AcDbEntity& entity, const BlockContext& context) {
    TagReader tags(entity.fileTags());
    AcGePoint3d a = tags.point(10), b = tags.point(11), c = tags.point(12), d = tags.point(13);
    FillPath(canvas, context, PenOf(canvas, entity, context).color, {{a, b, d, c}});
}

}  // namespace tavrik::render
