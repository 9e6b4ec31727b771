#include "cleanup/repeating_lines.hpp"

#include <algorithm>
#include <cmath>

#include "cleanup/class_interface_data.hpp"
#include "cleanup/modify_color.hpp"
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

// A line's box in the plane.
struct FlatBox {
    double minX, minY, maxX, maxY;
};

FlatBox BoxOf(const tCurve& line) {
    return {std::min(line.startPoint.x, line.endPoint.x), std::min(line.startPoint.y, line.endPoint.y),
            std::max(line.startPoint.x, line.endPoint.x), std::max(line.startPoint.y, line.endPoint.y)};
}

bool FiniteBox(const FlatBox& b) {
    return std::isfinite(b.minX) && std::isfinite(b.minY) && std::isfinite(b.maxX) && std::isfinite(b.maxY);
}

// A grid of about one cell per line over the lines' boxes. Two lines can only be found on each
// other when their boxes come within the tolerance (the segment test holds a point inside the
// segment's box widened by it), so a line meets the lines filed in the cells of its widened box
// and one cell more on each side. Lines with a coordinate that is not finite meet every line.
struct LineGrid {
    double originX = 0.0, originY = 0.0, cellX = 1.0, cellY = 1.0;
    long columns = 1, rows = 1;
    std::vector<std::vector<size_t>> cells;
    std::vector<size_t> everywhere;
};

long CellNumber(double value, double origin, double cell, long count) {
    double n = std::floor((value - origin) / cell);
    if (!(n >= 0.0)) return 0;
    return n >= static_cast<double>(count - 1) ? count - 1 : static_cast<long>(n);
}

LineGrid BuildLineGrid(const std::vector<FlatBox>& boxes) {
    LineGrid grid;
    FlatBox all{INFINITY, INFINITY, -INFINITY, -INFINITY};
    for (const FlatBox& b : boxes) {
        if (!FiniteBox(b)) continue;
        all = {std::min(all.minX, b.minX), std::min(all.minY, b.minY), std::max(all.maxX, b.maxX),
               std::max(all.maxY, b.maxY)};
    }
    if (all.minX > all.maxX) all = {0.0, 0.0, 0.0, 0.0};
    grid.columns = grid.rows = std::max(1L, static_cast<long>(std::sqrt(static_cast<double>(boxes.size()))));
    grid.originX = all.minX;
    grid.originY = all.minY;
    grid.cellX = all.maxX > all.minX ? (all.maxX - all.minX) / grid.columns : 1.0;
    grid.cellY = all.maxY > all.minY ? (all.maxY - all.minY) / grid.rows : 1.0;
    grid.cells.resize(static_cast<size_t>(grid.columns * grid.rows));
    for (size_t i = 0; i < boxes.size(); ++i) {
        const FlatBox& b = boxes[i];
        if (!FiniteBox(b)) {
            grid.everywhere.push_back(i);
            continue;
        }
        long x0 = CellNumber(b.minX, grid.originX, grid.cellX, grid.columns);
        long x1 = CellNumber(b.maxX, grid.originX, grid.cellX, grid.columns);
        long y0 = CellNumber(b.minY, grid.originY, grid.cellY, grid.rows);
        long y1 = CellNumber(b.maxY, grid.originY, grid.cellY, grid.rows);
        for (long y = y0; y <= y1; ++y)
            for (long x = x0; x <= x1; ++x) grid.cells[static_cast<size_t>(y * grid.columns + x)].push_back(i);
    }
    return grid;
}

// The lines after `first` still in the list that may lie on it or hold it, in list order.
std::vector<size_t> LaterCandidates(const LineGrid& grid, const FlatBox& box, size_t first, double t,
                                    const std::vector<bool>& gone) {
    std::vector<size_t> found = grid.everywhere;
    if (!FiniteBox(box)) {
        for (size_t j = first + 1; j < gone.size(); ++j) found.push_back(j);
    } else {
        long x0 = std::max(0L, CellNumber(box.minX - t, grid.originX, grid.cellX, grid.columns) - 1);
        long x1 = std::min(grid.columns - 1, CellNumber(box.maxX + t, grid.originX, grid.cellX, grid.columns) + 1);
        long y0 = std::max(0L, CellNumber(box.minY - t, grid.originY, grid.cellY, grid.rows) - 1);
        long y1 = std::min(grid.rows - 1, CellNumber(box.maxY + t, grid.originY, grid.cellY, grid.rows) + 1);
        for (long y = y0; y <= y1; ++y)
            for (long x = x0; x <= x1; ++x) {
                const std::vector<size_t>& cell = grid.cells[static_cast<size_t>(y * grid.columns + x)];
                found.insert(found.end(), cell.begin(), cell.end());
            }
    }
    std::erase_if(found, [&](size_t j) { return j <= first || gone[j]; });
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
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
    std::vector<FlatBox> boxes;
    for (const tCurve& line : lines) boxes.push_back(BoxOf(line));
    LineGrid grid = BuildLineGrid(boxes);
    FlatBox none{0.0, 0.0, 0.0, INFINITY};  // an endless tolerance: every later line is a candidate
    std::vector<bool> gone(lines.size(), false);
    for (size_t i = 0; i < lines.size(); ++i) {
        if (gone[i]) continue;
        const FlatBox& box = std::isfinite(tolerance) ? boxes[i] : none;
        for (size_t j : LaterCandidates(grid, box, i, tolerance, gone)) {
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
