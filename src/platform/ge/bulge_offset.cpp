#include "platform/ge/bulge_offset.hpp"

#include <algorithm>
#include <cmath>
#include <vector>

#include "platform/ge/angle.hpp"
#include "platform/ge/platform_tolerances.hpp"

namespace tavrik::ge {
namespace {

// One segment moved to the offset distance, with its current (trimmed) ends.
struct OffsetPiece {
    bool isArc = false;
    AcGePoint2d rawStart, rawEnd;  // the ends before joining
    AcGePoint2d start, end;
    AcGeVector2d direction;        // straight: unit direction of travel
    AcGePoint2d center;            // arc: centre, radius, turning sense and raw sweep
    double radius = 0.0;
    double turn = 1.0;
    double sweep = 0.0;
    bool connectorAfter = false;   // a straight piece joins it to the next
};

struct Join {
    AcGePoint2d point;
    bool met = false;
};

double pathScale(const BulgePath& path) {
    double scale = 1.0;
    for (const BulgeVertex& v : path.vertices)
        scale = std::max({scale, std::fabs(v.point.x), std::fabs(v.point.y)});
    return scale;
}

// Segments of non-zero length only: a repeated vertex has no direction to offset along.
std::vector<BulgeSegment> offsetableSegments(const BulgePath& path, double tolerance) {
    std::vector<BulgeSegment> segments = segmentsOf(path);
    std::erase_if(segments, [tolerance](const BulgeSegment& s) {
        return s.start.distanceTo(s.end) <= tolerance;
    });
    return segments;
}

std::optional<OffsetPiece> rawOffset(const BulgeSegment& segment, double distance) {
    OffsetPiece piece;
    if (!isArc(segment)) {
        piece.direction = (segment.end - segment.start).normal();
        AcGeVector2d right(piece.direction.y, -piece.direction.x);
        piece.rawStart = segment.start + right * distance;
        piece.rawEnd = segment.end + right * distance;
    } else {
        BulgeArc arc = arcOf(segment);
        piece.isArc = true;
        piece.center = arc.center;
        piece.turn = arc.sweep > 0 ? 1.0 : -1.0;
        piece.sweep = arc.sweep;
        // Right of a counter-clockwise arc is away from its centre.
        piece.radius = arc.radius + distance * piece.turn;
        if (piece.radius <= platform_tol::kZeroLength) return std::nullopt;
        double ratio = piece.radius / arc.radius;
        piece.rawStart = arc.center + (segment.start - arc.center) * ratio;
        piece.rawEnd = arc.center + (segment.end - arc.center) * ratio;
    }
    piece.start = piece.rawStart;
    piece.end = piece.rawEnd;
    return piece;
}

double polarAngle(const AcGePoint2d& center, const AcGePoint2d& p) {
    return std::atan2(p.y - center.y, p.x - center.x);
}

// How far along the piece's own direction a point of its carrier lies, from its raw start
// (length for a straight piece, swept angle for an arc).
double travelled(const OffsetPiece& piece, const AcGePoint2d& p) {
    if (!piece.isArc) return (p - piece.rawStart).dotProduct(piece.direction);
    double mid = polarAngle(piece.center, piece.rawStart) + 0.5 * piece.sweep;
    return wrapPi(polarAngle(piece.center, p) - mid) * piece.turn + 0.5 * std::fabs(piece.sweep);
}

double extent(const OffsetPiece& piece) {
    return travelled(piece, piece.end) - travelled(piece, piece.start);
}

std::vector<AcGePoint2d> lineLine(const OffsetPiece& a, const OffsetPiece& b) {
    double denom = a.direction.crossProduct(b.direction);
    if (std::fabs(denom) <= platform_tol::kParallelAngle) return {};
    double s = (b.rawStart - a.rawStart).crossProduct(b.direction) / denom;
    return {a.rawStart + a.direction * s};
}

std::vector<AcGePoint2d> lineCircle(const OffsetPiece& line, const OffsetPiece& circle) {
    AcGeVector2d toStart = line.rawStart - circle.center;
    double along = toStart.dotProduct(line.direction);
    double disc = along * along - (toStart.lengthSqrd() - circle.radius * circle.radius);
    if (disc < 0) return {};
    double root = std::sqrt(disc);
    return {line.rawStart + line.direction * (-along - root),
            line.rawStart + line.direction * (-along + root)};
}

std::vector<AcGePoint2d> circleCircle(const OffsetPiece& a, const OffsetPiece& b) {
    AcGeVector2d between = b.center - a.center;
    double d = between.length();
    if (d <= platform_tol::kZeroLength) return {};
    double x = (d * d + a.radius * a.radius - b.radius * b.radius) / (2.0 * d);
    double hSq = a.radius * a.radius - x * x;
    if (hSq < 0) return {};
    AcGeVector2d axis = between / d;
    AcGePoint2d foot = a.center + axis * x;
    AcGeVector2d across = axis.perpVector() * std::sqrt(hSq);
    return {foot + across, foot - across};
}

std::vector<AcGePoint2d> carrierIntersections(const OffsetPiece& a, const OffsetPiece& b) {
    if (!a.isArc && !b.isArc) return lineLine(a, b);
    if (!a.isArc) return lineCircle(a, b);
    if (!b.isArc) return lineCircle(b, a);
    return circleCircle(a, b);
}

// Where the piece before a vertex meets the piece after it.
Join joinPieces(const OffsetPiece& before, const OffsetPiece& after, double tolerance) {
    if (before.rawEnd.distanceTo(after.rawStart) <= tolerance)
        return {before.rawEnd + (after.rawStart - before.rawEnd) * 0.5, true};
    AcGePoint2d near = before.rawEnd + (after.rawStart - before.rawEnd) * 0.5;
    std::vector<AcGePoint2d> points = carrierIntersections(before, after);
    if (points.empty()) return {};
    auto closer = [&near](const AcGePoint2d& p, const AcGePoint2d& q) {
        return p.distanceTo(near) < q.distanceTo(near);
    };
    return {*std::min_element(points.begin(), points.end(), closer), true};
}

// Trims every piece to its joins with its neighbours; open ends keep their raw ends.
void joinAll(std::vector<OffsetPiece>& pieces, bool closed, double tolerance) {
    const std::size_t n = pieces.size();
    for (OffsetPiece& p : pieces) p.start = p.rawStart, p.end = p.rawEnd;
    const std::size_t joins = closed ? n : n - 1;
    for (std::size_t i = 0; i < joins; ++i) {
        OffsetPiece& before = pieces[i];
        OffsetPiece& after = pieces[(i + 1) % n];
        Join join = joinPieces(before, after, tolerance);
        before.connectorAfter = !join.met;
        if (join.met) before.end = after.start = join.point;
    }
}

double distanceToPath(const std::vector<BulgeSegment>& segments, const AcGePoint2d& p) {
    double best = HUGE_VAL;
    for (const BulgeSegment& s : segments) best = std::min(best, closestPoint(s, p).distance);
    return best;
}

AcGePoint2d middleOf(const OffsetPiece& piece) {
    if (!piece.isArc) return piece.start + (piece.end - piece.start) * 0.5;
    double angle = polarAngle(piece.center, piece.start) + 0.5 * extent(piece) * piece.turn;
    return piece.center + AcGeVector2d(std::cos(angle), std::sin(angle)) * piece.radius;
}

using PieceIt = std::vector<OffsetPiece>::iterator;

// The piece the offset turned furthest backwards, if any is.
std::optional<PieceIt> mostCollapsed(std::vector<OffsetPiece>& pieces, double tolerance) {
    auto worst = std::min_element(pieces.begin(), pieces.end(),
                                  [](const OffsetPiece& a, const OffsetPiece& b) {
                                      return extent(a) < extent(b);
                                  });
    if (extent(*worst) > tolerance) return std::nullopt;
    return worst;
}

// The piece whose middle comes closest to the source, if one comes nearer than the distance:
// it lies where another part of the source cuts it off.
std::optional<PieceIt> mostEncroached(std::vector<OffsetPiece>& pieces,
                                      const std::vector<BulgeSegment>& source, double distance,
                                      double tolerance) {
    std::optional<PieceIt> found;
    double nearest = std::fabs(distance) - tolerance;
    for (auto it = pieces.begin(); it != pieces.end(); ++it) {
        double d = distanceToPath(source, middleOf(*it));
        if (d < nearest) nearest = d, found = it;
    }
    return found;
}

// Joins the pieces, dropping one collapsed or encroached piece at a time until none is.
void joinDroppingInvalid(std::vector<OffsetPiece>& pieces, bool closed,
                         const std::vector<BulgeSegment>& source, double distance,
                         double tolerance, double checkTolerance) {
    while (!pieces.empty()) {
        joinAll(pieces, closed, tolerance);
        std::optional<PieceIt> drop = mostCollapsed(pieces, tolerance);
        if (!drop) drop = mostEncroached(pieces, source, distance, checkTolerance);
        if (!drop) return;
        pieces.erase(*drop);
    }
}

double bulgeOf(const OffsetPiece& piece) {
    return piece.isArc ? bulgeFromSweep(extent(piece) * piece.turn) : 0.0;
}

BulgePath assemble(const std::vector<OffsetPiece>& pieces, bool closed) {
    BulgePath path{{}, closed};
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const OffsetPiece& piece = pieces[i];
        path.vertices.push_back({piece.start, bulgeOf(piece)});
        if (piece.connectorAfter && (closed || i + 1 < pieces.size()))
            path.vertices.push_back({piece.end, 0.0});
    }
    if (!closed) path.vertices.push_back({pieces.back().end, 0.0});
    return path;
}

// Every vertex and segment middle of the result must keep the distance from the source, and
// a closed result must run the same way round.
bool keepsDistance(const std::vector<BulgeSegment>& source, bool closed,
                   const BulgePath& result, double distance, double tolerance) {
    for (const BulgeSegment& s : segmentsOf(result))
        for (double f : {0.0, 0.5})
            if (distanceToPath(source, pointAt(s, f)) < std::fabs(distance) - tolerance)
                return false;
    if (!closed) return true;
    double sourceTwiceArea = 0.0;
    for (const BulgeSegment& s : source) sourceTwiceArea += signedAreaTerm(s);
    return sourceTwiceArea * signedArea(result) > 0;
}

}  // namespace

std::optional<BulgePath> offsetPath(const BulgePath& path, double distance) {
    const double scale = pathScale(path);
    const double tolerance = platform_tol::kIntersection * scale;
    const double checkTolerance = platform_tol::kOffsetCheck * scale;
    const std::vector<BulgeSegment> source = offsetableSegments(path, tolerance);
    std::vector<OffsetPiece> pieces;
    for (const BulgeSegment& s : source)
        if (std::optional<OffsetPiece> piece = rawOffset(s, distance)) pieces.push_back(*piece);
    joinDroppingInvalid(pieces, path.closed, source, distance, tolerance, checkTolerance);
    if (pieces.size() < (path.closed ? 2u : 1u)) return std::nullopt;
    BulgePath result = assemble(pieces, path.closed);
    if (!keepsDistance(source, path.closed, result, distance, checkTolerance))
        return std::nullopt;
    return result;
}

}  // namespace tavrik::ge
