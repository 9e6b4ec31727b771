#include "platform/ge/path3d.hpp"

#include <algorithm>
#include <cmath>

#include "platform/ge/angle.hpp"
#include "platform/ge/matrix3d.hpp"
#include "platform/ge/platform_tolerances.hpp"

namespace tavrik::ge {
namespace {

double radiusOf(const EllipticArc& arc) { return arc.u.length(); }

struct SegmentAt {
    std::size_t index;
    double fraction;
};

// The segment holding a parameter; the end of the path is the end of its last segment.
SegmentAt locate(const Path3d& path, double param) {
    const double last = static_cast<double>(path.segments.size() - 1);
    double index = std::clamp(std::floor(param), 0.0, last);
    return {static_cast<std::size_t>(index), std::clamp(param - index, 0.0, 1.0)};
}

struct FractionHit {
    double fraction;
    AcGePoint3d point;
};

FractionHit closestOnLine(const PathSegment3d& s, const AcGePoint3d& q) {
    AcGeVector3d chord = s.end - s.start;
    double lengthSq = chord.lengthSqrd();
    if (lengthSq <= platform_tol::kZeroLength * platform_tol::kZeroLength) return {0.0, s.start};
    double f = std::clamp((q - s.start).dotProduct(chord) / lengthSq, 0.0, 1.0);
    return {f, pointAt(s, f)};
}

FractionHit closestOnArc(const PathSegment3d& s, const AcGePoint3d& q) {
    const EllipticArc& arc = *s.arc;
    AcGeVector3d d = q - arc.center;
    double x = d.dotProduct(arc.u), y = d.dotProduct(arc.v);
    const double sweep = arc.end - arc.start;
    if (std::hypot(x, y) > platform_tol::kZeroLength) {
        double travelled = wrapTwoPi((std::atan2(y, x) - arc.start) * (sweep > 0 ? 1.0 : -1.0));
        if (travelled <= std::fabs(sweep)) {
            double f = travelled / std::fabs(sweep);
            return {f, pointAt(s, f)};
        }
    }
    return s.end.distanceTo(q) < s.start.distanceTo(q) ? FractionHit{1.0, s.end}
                                                        : FractionHit{0.0, s.start};
}

}  // namespace

double segmentLength(const PathSegment3d& segment) {
    if (!segment.arc) return segment.start.distanceTo(segment.end);
    return radiusOf(*segment.arc) * std::fabs(segment.arc->end - segment.arc->start);
}

AcGePoint3d pointAt(const PathSegment3d& segment, double fraction) {
    if (fraction == 0.0) return segment.start;
    if (fraction == 1.0) return segment.end;
    if (!segment.arc) return segment.start + (segment.end - segment.start) * fraction;
    const EllipticArc& arc = *segment.arc;
    return pointAt(arc, arc.start + (arc.end - arc.start) * fraction);
}

AcGeVector3d derivativeAt(const PathSegment3d& segment, double fraction) {
    if (!segment.arc) return segment.end - segment.start;
    const EllipticArc& arc = *segment.arc;
    const double sweep = arc.end - arc.start;
    return derivativeAt(arc, arc.start + sweep * fraction) * sweep;
}

Path3d pathInPlane(const BulgePath& path, const AcGeVector3d& normal, double elevation) {
    const AcGeMatrix3d toWorld = AcGeMatrix3d::planeToWorld(normal);
    auto world = [&](const AcGePoint2d& p) {
        return toWorld.apply(AcGePoint3d(p.x, p.y, elevation));
    };
    Path3d out;
    if (!path.vertices.empty()) out.first = world(path.vertices.front().point);
    const AcGeVector3d xAxis = toWorld.apply(AcGeVector3d::kXAxis);
    const AcGeVector3d yAxis = toWorld.apply(AcGeVector3d::kYAxis);
    for (const BulgeSegment& s : segmentsOf(path)) {
        PathSegment3d segment{world(s.start), world(s.end), std::nullopt};
        if (isArc(s)) {
            BulgeArc a = arcOf(s);
            segment.arc = EllipticArc{world(a.center), xAxis * a.radius, yAxis * a.radius,
                                      a.startAngle, a.startAngle + a.sweep};
        }
        out.segments.push_back(segment);
    }
    return out;
}

Path3d pathThrough(const std::vector<AcGePoint3d>& points, bool closed) {
    Path3d out;
    if (points.empty()) return out;
    out.first = points.front();
    const std::size_t n = points.size();
    const std::size_t count = closed ? n : n - 1;
    for (std::size_t i = 0; i < count; ++i)
        out.segments.push_back({points[i], points[(i + 1) % n], std::nullopt});
    return out;
}

double endParam(const Path3d& path) { return static_cast<double>(path.segments.size()); }

AcGePoint3d pointAtParam(const Path3d& path, double param) {
    if (path.segments.empty()) return path.first;
    SegmentAt at = locate(path, param);
    return pointAt(path.segments[at.index], at.fraction);
}

AcGeVector3d derivativeAtParam(const Path3d& path, double param) {
    if (path.segments.empty()) return {};
    SegmentAt at = locate(path, param);
    return derivativeAt(path.segments[at.index], at.fraction);
}

double lengthAtParam(const Path3d& path, double param) {
    if (path.segments.empty()) return 0.0;
    SegmentAt at = locate(path, param);
    double length = 0.0;
    for (std::size_t i = 0; i < at.index; ++i) length += segmentLength(path.segments[i]);
    return length + at.fraction * segmentLength(path.segments[at.index]);
}

ParamPoint closestPoint(const Path3d& path, const AcGePoint3d& query) {
    ParamPoint best{0.0, path.first};
    double bestDistance = path.first.distanceTo(query);
    for (std::size_t i = 0; i < path.segments.size(); ++i) {
        const PathSegment3d& s = path.segments[i];
        FractionHit hit = s.arc ? closestOnArc(s, query) : closestOnLine(s, query);
        double d = hit.point.distanceTo(query);
        if (d < bestDistance) {
            bestDistance = d;
            best = {static_cast<double>(i) + hit.fraction, hit.point};
        }
    }
    return best;
}

}  // namespace tavrik::ge
