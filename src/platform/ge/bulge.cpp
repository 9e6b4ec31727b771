#include "platform/ge/bulge.hpp"

#include <cmath>

#include "platform/ge/angle.hpp"
#include "platform/ge/platform_tolerances.hpp"

namespace tavrik::ge {

bool isArc(const BulgeSegment& segment) {
    return std::fabs(segment.bulge) > platform_tol::kZeroBulge &&
           segment.start.distanceTo(segment.end) > platform_tol::kZeroLength;
}

double bulgeFromSweep(double sweep) { return std::tan(sweep / 4.0); }
double sweepFromBulge(double bulge) { return 4.0 * std::atan(bulge); }

BulgeArc arcOf(const BulgeSegment& segment) {
    const double b = segment.bulge;
    AcGeVector2d chord = segment.end - segment.start;
    const double c = chord.length();
    // The centre lies on the chord's bisector, c (1 - b^2) / (4b) to the left of the chord.
    AcGePoint2d mid = segment.start + chord * 0.5;
    AcGeVector2d left = chord.perpVector() / c;
    BulgeArc arc;
    arc.center = mid + left * (c * (1.0 - b * b) / (4.0 * b));
    arc.radius = c * (1.0 + b * b) / (4.0 * std::fabs(b));
    AcGeVector2d fromCenter = segment.start - arc.center;
    arc.startAngle = std::atan2(fromCenter.y, fromCenter.x);
    arc.sweep = sweepFromBulge(b);
    return arc;
}

double segmentLength(const BulgeSegment& segment) {
    if (!isArc(segment)) return segment.start.distanceTo(segment.end);
    BulgeArc arc = arcOf(segment);
    return arc.radius * std::fabs(arc.sweep);
}

AcGePoint2d pointAt(const BulgeSegment& segment, double fraction) {
    if (fraction == 0.0) return segment.start;
    if (fraction == 1.0) return segment.end;
    if (!isArc(segment)) return segment.start + (segment.end - segment.start) * fraction;
    BulgeArc arc = arcOf(segment);
    double angle = arc.startAngle + arc.sweep * fraction;
    return arc.center + AcGeVector2d(std::cos(angle), std::sin(angle)) * arc.radius;
}

AcGeVector2d tangentAt(const BulgeSegment& segment, double fraction) {
    if (!isArc(segment)) return segment.end - segment.start;
    BulgeArc arc = arcOf(segment);
    double angle = arc.startAngle + arc.sweep * fraction;
    return AcGeVector2d(-std::sin(angle), std::cos(angle)) * (arc.radius * arc.sweep);
}

namespace {
SegmentHit hitAt(const BulgeSegment& segment, double fraction, const AcGePoint2d& query) {
    AcGePoint2d p = pointAt(segment, fraction);
    return {fraction, p, p.distanceTo(query)};
}

SegmentHit nearerEnd(const BulgeSegment& segment, const AcGePoint2d& query) {
    SegmentHit atStart = hitAt(segment, 0.0, query);
    SegmentHit atEnd = hitAt(segment, 1.0, query);
    return atEnd.distance < atStart.distance ? atEnd : atStart;
}
}  // namespace

SegmentHit closestPoint(const BulgeSegment& segment, const AcGePoint2d& query) {
    if (!isArc(segment)) {
        AcGeVector2d chord = segment.end - segment.start;
        double lengthSq = chord.lengthSqrd();
        if (lengthSq <= platform_tol::kZeroLength * platform_tol::kZeroLength)
            return hitAt(segment, 0.0, query);
        double f = (query - segment.start).dotProduct(chord) / lengthSq;
        return hitAt(segment, std::fmin(1.0, std::fmax(0.0, f)), query);
    }
    BulgeArc arc = arcOf(segment);
    AcGeVector2d fromCenter = query - arc.center;
    if (fromCenter.length() <= platform_tol::kZeroLength) return hitAt(segment, 0.0, query);
    // Angle travelled from the start in the arc's own direction.
    double travelled = wrapTwoPi((std::atan2(fromCenter.y, fromCenter.x) - arc.startAngle) *
                                 (arc.sweep > 0 ? 1.0 : -1.0));
    if (travelled <= std::fabs(arc.sweep))
        return hitAt(segment, travelled / std::fabs(arc.sweep), query);
    return nearerEnd(segment, query);
}

double signedAreaTerm(const BulgeSegment& segment) {
    double term = segment.start.x * segment.end.y - segment.end.x * segment.start.y;
    if (!isArc(segment)) return term;
    BulgeArc arc = arcOf(segment);
    // The circular segment between chord and arc, signed by the turning direction.
    double theta = std::fabs(arc.sweep);
    double segmentArea = 0.5 * arc.radius * arc.radius * (theta - std::sin(theta));
    return term + 2.0 * (arc.sweep > 0 ? segmentArea : -segmentArea);
}

std::vector<BulgeSegment> segmentsOf(const BulgePath& path) {
    std::vector<BulgeSegment> segments;
    const std::size_t n = path.vertices.size();
    const std::size_t count = path.closed ? n : (n == 0 ? 0 : n - 1);
    for (std::size_t i = 0; i < count; ++i)
        segments.push_back({path.vertices[i].point, path.vertices[(i + 1) % n].point,
                            path.vertices[i].bulge});
    return segments;
}

double signedArea(const BulgePath& path) {
    double twice = 0.0;
    for (const BulgeSegment& s : segmentsOf(path)) twice += signedAreaTerm(s);
    return 0.5 * twice;
}

}  // namespace tavrik::ge
