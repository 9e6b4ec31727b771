#include "cleanup/repeating_lines.hpp"

#include <algorithm>
#include <cmath>

#include "cleanup/class_interface_data.hpp"
#include "cleanup/modify_color.hpp"
#include "curves/box_grid.hpp"
#include "curves/geometry.hpp"

namespace {

enum class PairVerdict { none, secondDies, firstDies };

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

FlatBox BoxOf(const tCurve& line) {
    return {std::min(line.startPoint.x, line.endPoint.x), std::min(line.startPoint.y, line.endPoint.y),
            std::max(line.startPoint.x, line.endPoint.x), std::max(line.startPoint.y, line.endPoint.y)};
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

// A spline that lies along the line dies, the line stays. The line's record has no box, so its
// corners stand at the origin: only splines with a box corner near the origin are found.
bool SplineOnLine(const tCurve& line, const tCurve& spline, double t) {
    if (line.boxMax.x + t < spline.boxMin.x || line.boxMax.y + t < spline.boxMin.y ||
        line.boxMin.x - t > spline.boxMax.x || line.boxMin.y - t > spline.boxMax.y)
        return false;
    if (!PointInBox(spline.boxMin, line.boxMin, line.boxMax, t) &&
        !PointInBox(spline.boxMax, line.boxMin, line.boxMax, t))
        return false;
    if (spline.points.isEmpty()) return false;
    for (const AcGePoint3d& p : spline.points)
        if (!PointOnSegment(p, line.startPoint, line.endPoint, t)) return false;
    return true;
}

void RemoveSplinesOnLines(const std::vector<tCurve>& lines, std::vector<tCurve>& splines, double t,
                          const std::wstring& solidLinetype) {
    for (const tCurve& line : lines) {
        for (size_t s = 0; s < splines.size();) {
            if (!SplineOnLine(line, splines[s], t)) {
                ++s;
                continue;
            }
            if (splines[s].linetype == solidLinetype) MakeSolid(line.id, solidLinetype);
            EraseEntity(splines[s].id);
            splines.erase(splines.begin() + static_cast<long>(s));
        }
    }
}

bool AllWithinRadius(const AcGePoint3dArray& points, const AcGePoint3d& center, double radius, double t) {
    for (const AcGePoint3d& p : points)
        if (!(std::fabs(PointDistance(p, center) - radius) < t)) return false;
    return true;
}

}  // namespace

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
            PairVerdict verdict = LinePairTest(lines[i], lines[j], tolerance);
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
    std::vector<tCurve> lines, lineSplines;
    for (const AcDbObjectId& id : GetModelSpaceIds(database)) {
        int type = EntityTypeOfId(id);
        if (type == 2001) lines.emplace_back(id);
        if (type != 2005) continue;
        tCurve spline(id);
        if (ClassifySpline(spline, lineTolerance, arcTolerance) == 1) lineSplines.push_back(spline);
    }
    if (mode == 0 || mode == 1) RemoveSplinesOnLines(lines, lineSplines, lineTolerance, solidLinetype);
    // The arc pass compares the arcs with a list of splines that nothing fills, so it finds
    // nothing in any mode; arcs, circles and arc-like splines are therefore not gathered.
}
