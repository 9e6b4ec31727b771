#include "cleanup/repeating_lines.hpp"

#include <algorithm>
#include <cmath>

#include "cleanup/class_interface_data.hpp"
#include "cleanup/modify_color.hpp"
#include "curves/box_grid.hpp"
#include "curves/geometry.hpp"

namespace {

// A line that lies on the other one, both ends on its segment, dies; for equal lines the second.
PairVerdict LinePairTest(const tCurve& a, const tCurve& b, double t) {
    if (PointOnSegment(b.startPoint, a.startPoint, a.endPoint, t) &&
        PointOnSegment(b.endPoint, a.startPoint, a.endPoint, t))
        return PairVerdict::secondDies;
    if (PointOnSegment(a.startPoint, b.startPoint, b.endPoint, t) &&
        PointOnSegment(a.endPoint, b.startPoint, b.endPoint, t))
        return PairVerdict::firstDies;
    return PairVerdict::none;
}

// The start, mid and end point of `record` lie on the curve behind `curve`.
bool EndsOnCurve(const tCurve& record, AcDbObjectId curve, double t) {
    return PointOnCurve(record.startPoint, curve, t) && PointOnCurve(record.midPoint, curve, t) &&
           PointOnCurve(record.endPoint, curve, t);
}

// The start, end and mid point of `record` lie on the arc of `arc`.
bool EndsOnArc(const tCurve& record, const tCurve& arc, double t) {
    return PointOnArc(record.startPoint, arc.startPoint, arc.midPoint, arc.endPoint, t) &&
           PointOnArc(record.endPoint, arc.startPoint, arc.midPoint, arc.endPoint, t) &&
           PointOnArc(record.midPoint, arc.startPoint, arc.midPoint, arc.endPoint, t);
}

bool CentresNear(const tCurve& a, const tCurve& b, double t) { return a.center.distanceTo(b.center) <= t; }

// r(A) from r(B) - t to r(B) + t, bounds included.
bool RadiiNear(const tCurve& a, const tCurve& b, double t) {
    return a.radius >= b.radius - t && a.radius <= b.radius + t;
}

// Two arcs on near circles (radii strictly within t): the one that lies on the other dies.
PairVerdict ArcPairTest(const tCurve& a, const tCurve& b, double t) {
    if (!CentresNear(a, b, t) || !(std::fabs(a.radius - b.radius) < t)) return PairVerdict::none;
    if (EndsOnArc(b, a, t)) return PairVerdict::secondDies;
    if (EndsOnArc(a, b, t)) return PairVerdict::firstDies;
    return PairVerdict::none;
}

PairVerdict VerdictIf(bool holds, PairVerdict verdict) { return holds ? verdict : PairVerdict::none; }

FlatBox BoxOf(const tCurve& line) {
    return {std::min(line.startPoint.x, line.endPoint.x), std::min(line.startPoint.y, line.endPoint.y),
            std::max(line.startPoint.x, line.endPoint.x), std::max(line.startPoint.y, line.endPoint.y)};
}

// The plane box of a record's points, both corners starting from the first point.
FlatBox PointsBox(const tCurve& record) {
    FlatBox box{0.0, 0.0, 0.0, 0.0};
    if (record.points.isEmpty()) return box;
    box = {record.points[0].x, record.points[0].y, record.points[0].x, record.points[0].y};
    for (const AcGePoint3d& p : record.points) {
        box.minX = std::min(box.minX, p.x);
        box.minY = std::min(box.minY, p.y);
        box.maxX = std::max(box.maxX, p.x);
        box.maxY = std::max(box.maxY, p.y);
    }
    return box;
}

bool AllPointsOnCurve(const AcGePoint3dArray& points, AcDbObjectId curve, double t) {
    if (points.isEmpty()) return false;
    for (const AcGePoint3d& p : points)
        if (!PointOnCurve(p, curve, t)) return false;
    return true;
}

void EraseEntity(AcDbObjectId id) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite, false) != Acad::eOk) return;
    entity->erase(true);
    entity->close();
}

void MakeSolid(AcDbObjectId id, const std::wstring& solidLinetype) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite, false) != Acad::eOk) return;
    entity->setLinetype(solidLinetype, true);
    entity->setLinetypeScale(0.0, true);
    entity->close();
}

// The dying entity goes; a solid one passes its linetype (with scale 0.0) to the survivor's
// entity, while the survivor's record keeps its old linetype.
void EraseWithSurvivor(const tCurve& dying, const tCurve& survivor, const std::wstring& solidLinetype) {
    bool solid = dying.linetype == solidLinetype;
    EraseEntity(dying.id);
    if (solid) MakeSolid(survivor.id, solidLinetype);
}

// The records of the ids whose 2000-series code is one of `types`, in order.
std::vector<tCurve> RecordsOf(const AcDbObjectIdArray& ids, int type) {
    std::vector<tCurve> records;
    for (const AcDbObjectId& id : ids)
        if (EntityTypeOfId(id) == type) records.emplace_back(id);
    return records;
}

// Removes each spline that lies along a record of `curves` (`along` says so), record by record
// in order, each meeting the splines still there in order: the spline dies, the record stays and
// takes a solid spline's linetype with scale 0.0.
void RemoveSplinesAlong(const std::vector<tCurve>& curves, std::vector<tCurve>& splines, double t,
                        const std::wstring& solidLinetype,
                        bool (*along)(const tCurve& curve, const tCurve& spline, double t)) {
    for (const tCurve& curve : curves) {
        for (size_t s = 0; s < splines.size();) {
            if (!along(curve, splines[s], t)) {
                ++s;
                continue;
            }
            if (splines[s].linetype == solidLinetype) MakeSolid(curve.id, solidLinetype);
            EraseEntity(splines[s].id);
            splines.erase(splines.begin() + static_cast<long>(s));
        }
    }
}

// The box test of both spline removals: the boxes come within t of each other, and a corner of
// the spline's box lies in the record's box widened by t. A record of a line, arc or circle has
// no box, so its corners stand at the origin.
bool SplineBoxNear(const tCurve& curve, const tCurve& spline, double t) {
    if (curve.boxMax.x + t < spline.boxMin.x || curve.boxMax.y + t < spline.boxMin.y ||
        curve.boxMin.x - t > spline.boxMax.x || curve.boxMin.y - t > spline.boxMax.y)
        return false;
    return PointInBox(spline.boxMin, curve.boxMin, curve.boxMax, t) ||
           PointInBox(spline.boxMax, curve.boxMin, curve.boxMax, t);
}

bool AllWithinRadius(const AcGePoint3dArray& points, const AcGePoint3d& center, double radius, double t) {
    for (const AcGePoint3d& p : points)
        if (!(std::fabs(PointDistance(p, center) - radius) < t)) return false;
    return true;
}

}  // namespace

PairVerdict CurvePairTest(const tCurve& a, const tCurve& b, double t) {
    int first = a.typeCode, second = b.typeCode;
    if (first == 2001 && second == 2001) return LinePairTest(a, b, t);
    if ((first == 2001 || first == 2003) && second == 2004)
        return VerdictIf(EndsOnCurve(a, b.id, t), PairVerdict::firstDies);
    if (first == 2004 && (second == 2001 || second == 2003))
        return VerdictIf(EndsOnCurve(b, a.id, t), PairVerdict::secondDies);
    if (first == 2004 && second == 2004) {
        int coincide = CurvesCoincide(a, b, t);
        return coincide == 1 ? PairVerdict::secondDies : coincide == 2 ? PairVerdict::firstDies : PairVerdict::none;
    }
    if (first == 2003 && second == 2003) return ArcPairTest(a, b, t);
    bool near = CentresNear(a, b, t) && RadiiNear(a, b, t);
    if (first == 2002 && (second == 2002 || second == 2003)) return VerdictIf(near, PairVerdict::secondDies);
    if (first == 2003 && second == 2002) return VerdictIf(near, PairVerdict::firstDies);
    return PairVerdict::none;
}

bool PointOnCurve(const AcGePoint3d& p, AcDbObjectId id, double tolerance) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) return false;
    bool on = false;
    AcGePoint3d closest;
    if (auto* curve = AcDbCurve::cast(entity); curve && curve->getClosestPointTo(p, closest, false) == Acad::eOk)
        on = SamePoint(closest, p, tolerance);
    entity->close();
    return on;
}

int CurvesCoincide(const tCurve& a, const tCurve& b, double tolerance) {
    FlatBox boxA = PointsBox(a), boxB = PointsBox(b);
    if (boxA.maxX < boxB.minX || boxB.maxX < boxA.minX || boxA.maxY < boxB.minY || boxB.maxY < boxA.minY) return 0;
    if (AllPointsOnCurve(b.points, a.id, tolerance)) return 1;
    if (AllPointsOnCurve(a.points, b.id, tolerance)) return 2;
    return 0;
}

bool SplineOnLine(const tCurve& line, const tCurve& spline, double t) {
    if (!SplineBoxNear(line, spline, t) || spline.points.isEmpty()) return false;
    for (const AcGePoint3d& p : spline.points)
        if (!PointOnSegment(p, line.startPoint, line.endPoint, t)) return false;
    return true;
}

bool SplineOnArc(const tCurve& arc, const tCurve& spline, double t) {
    if (!SplineBoxNear(arc, spline, t) || !PointsWithinRadius(arc.center, arc.radius, spline.points, t)) return false;
    if (EntityTypeOfId(arc.id) != 2003) return true;
    for (const AcGePoint3d& p : spline.points)
        if (!PointOnArc(p, arc.startPoint, arc.midPoint, arc.endPoint, t)) return false;
    return true;
}

std::vector<LineDeath> RepeatingLineDeaths(const std::vector<tCurve>& lines, double tolerance) {
    std::vector<LineDeath> deaths;
    // No segment holds a point at a tolerance that is not above 0.
    if (!(tolerance > 0.0)) return deaths;
    // Two lines can only be found on each other when their boxes come within the tolerance,
    // since the segment test holds a point inside the segment's box widened by it.
    std::vector<FlatBox> boxes;
    for (const tCurve& line : lines) boxes.push_back(BoxOf(line));
    BoxGrid grid = BuildBoxGrid(boxes);
    std::vector<bool> gone(lines.size(), false);
    for (size_t i = 0; i < lines.size(); ++i) {
        if (gone[i]) continue;
        for (size_t j : BoxGridCandidates(grid, boxes[i], tolerance)) {
            if (j <= i || gone[j]) continue;
            PairVerdict verdict = CurvePairTest(lines[i], lines[j], tolerance);
            if (verdict == PairVerdict::secondDies) {
                deaths.push_back({j, i});
                gone[j] = true;
            } else if (verdict == PairVerdict::firstDies) {
                deaths.push_back({i, j});
                gone[i] = true;
                break;
            }
        }
    }
    return deaths;
}

int ClassifySpline(const tCurve& record, double lineTolerance, double arcTolerance) {
    const AcGePoint3dArray& points = record.points;
    if (points.length() < 2) return -1;
    const AcGePoint3d& first = points[0];
    const AcGePoint3d& last = points[points.length() - 1];
    double a = last.y - first.y, b = first.x - last.x, c = first.y * last.x - first.x * last.y;
    bool straight = true;
    for (const AcGePoint3d& p : points)
        if (std::fabs(p.x * a + p.y * b + c) / std::sqrt(a * a + b * b) > lineTolerance) straight = false;
    if (straight) return 1;
    if (points.length() < 3) return -1;
    AcGePoint3d center;
    double radius = 0.0;
    if (arcTolerance * 2.0 > PointDistance(record.startPoint, record.endPoint)) {
        if (!CircleFromThreePointsFine(CurvePointAt(record.id, 0.1), CurvePointAt(record.id, 0.5),
                                       CurvePointAt(record.id, 0.9), center, radius))
            return -1;
        if (AllWithinRadius(points, center, radius, arcTolerance)) return 3;
    }
    if (!CircleFromThreePointsFine(record.startPoint, record.midPoint, record.endPoint, center, radius)) return -1;
    return AllWithinRadius(points, center, radius, arcTolerance) ? 2 : 0;
}

void ClassInterfaceData::FunDeleteRepeatingLine() {
    std::wstring file = CadLineIniPath(CleanupGlobals->UserPath);
    bool open = false;
    double tolerance = 0.0;
    IniReadBool(file, L"DeleteRepeatingLine", L"BolOpen", open);
    IniReadDouble(file, L"DeleteRepeatingLine", L"Tolerance", tolerance);
    if (!open) return;
    // Only lines take part: arcs, circles and polylines on top of a line stay.
    std::vector<tCurve> lines = RecordsOf(GetModelSpaceIds(database), 2001);
    for (const LineDeath& death : RepeatingLineDeaths(lines, tolerance))
        EraseWithSurvivor(lines[death.dying], lines[death.survivor], solidLinetype);
}

void ClassInterfaceData::FunDeleteLineAndArcDownSpline(int mode) {
    std::wstring file = CadLineIniPath(CleanupGlobals->UserPath);
    bool open = false;
    double arcTolerance = 0.0, lineTolerance = 0.0;
    IniReadBool(file, L"DeleteArcDownCurve", L"BolOpen", open);
    IniReadDouble(file, L"DeleteArcDownCurve", L"Tolerance", arcTolerance);
    IniReadDouble(file, L"DeleteLineDownCurve", L"Tolerance", lineTolerance);
    if (!open) return;
    // Lines, and splines along a line; arcs, circles and splines along an arc for the arc pass.
    std::vector<tCurve> lines, lineSplines, arcs;
    for (const AcDbObjectId& id : GetModelSpaceIds(database)) {
        int type = EntityTypeOfId(id);
        if (type == 2001) lines.emplace_back(id);
        if (type == 2002 || type == 2003) arcs.emplace_back(id);
        if (type != 2005) continue;
        tCurve spline(id);
        int shape = ClassifySpline(spline, lineTolerance, arcTolerance);
        if (shape == 1) lineSplines.push_back(spline);
        if (shape == 2) arcs.push_back(spline);
    }
    if (mode == 0 || mode == 1) RemoveSplinesAlong(lines, lineSplines, lineTolerance, solidLinetype, SplineOnLine);
    // The arc pass meets the arcs with a second list of splines that nothing fills: it removes
    // nothing in any mode.
    std::vector<tCurve> arcSplines;
    if (mode == 0 || mode == 2) RemoveSplinesAlong(arcs, arcSplines, arcTolerance, solidLinetype, SplineOnArc);
}
