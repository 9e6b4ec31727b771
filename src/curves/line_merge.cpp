// The line half of FunLineAndArcMerged: lines of one slope family that touch or overlap become
// the one line across their box.
#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

#include "cleanup/class_interface_data.hpp"
#include "curves/curve_edit.hpp"
#include "curves/geometry.hpp"
#include "curves/line_arc_merge.hpp"
#include "curves/touch_clusters.hpp"

namespace {

void ReadLineAndArcMergedSettings(LineAndArcMergedSettings& settings, AcDbDatabase* database) {
    std::wstring file = CadLineIniPath(CleanupGlobals->UserPath);
    IniReadString(file, L"public", L"StrDottedLineType", settings.dottedLinetype);
    IniReadString(file, L"public", L"StrSolidLineType", settings.solidLinetype);
    IniReadBool(file, L"LineAndArcMerged", L"BolOpen", settings.BolOpen);
    settings.BolOpen = true;  // read, and the merge runs whatever the file says
    IniReadDouble(file, L"LineAndArcMerged", L"Tolerance", settings.Tolerance);
    settings.database = database;
}

// The slope of step 1: 10086.0 for a run of less than 0.001 in x.
double GroupSlope(const AcGePoint3d& s, const AcGePoint3d& e) {
    if (std::fabs(e.x - s.x) < 0.001) return 10086.0;
    return (e.y - s.y) / (e.x - s.x);
}

std::vector<SlopeLine> ReadSlopeLines(const AcDbObjectIdArray& lineIds) {
    std::vector<SlopeLine> lines;
    for (const AcDbObjectId& id : lineIds) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead, false) != Acad::eOk) continue;
        if (const auto* line = AcDbLine::cast(entity)) {
            AcGePoint3d s = line->startPoint(), e = line->endPoint();
            lines.push_back({GroupSlope(s, e), id, s, e});
        }
        entity->close();
    }
    return lines;
}

// The first slope met stands for its family; families are 0.0005 wide, strictly.
std::vector<double> DistinctSlopesPlain(const std::vector<SlopeLine>& lines) {
    std::vector<double> slopes;
    for (const SlopeLine& line : lines) {
        bool known = false;
        for (double slope : slopes)
            if (std::fabs(line.slope - slope) < 0.0005) known = true;
        if (!known) slopes.push_back(line.slope);
    }
    return slopes;
}

// The same with the listed slopes kept sorted: only those within 0.001 can be within 0.0005,
// and the exact test decides among them.
std::vector<double> DistinctSlopesIndexed(const std::vector<SlopeLine>& lines) {
    std::vector<double> slopes;
    std::multiset<double> sorted;
    for (const SlopeLine& line : lines) {
        bool known = false;
        if (!std::isnan(line.slope))
            for (auto it = sorted.lower_bound(line.slope - 0.001);
                 it != sorted.end() && *it <= line.slope + 0.001 && !known; ++it)
                known = std::fabs(line.slope - *it) < 0.0005;
        if (known) continue;
        slopes.push_back(line.slope);
        if (!std::isnan(line.slope)) sorted.insert(line.slope);
    }
    return slopes;
}

// For each listed slope, the ids of all lines within 0.0005 of it, strictly, in line order.
std::vector<AcDbObjectIdArray> SlopeGroupsPlain(const std::vector<SlopeLine>& lines,
                                                const std::vector<double>& slopes) {
    std::vector<AcDbObjectIdArray> groups;
    for (double slope : slopes) {
        AcDbObjectIdArray group;
        for (const SlopeLine& line : lines)
            if (std::fabs(line.slope - slope) < 0.0005) group.append(line.id);
        groups.push_back(group);
    }
    return groups;
}

// The same through the lines sorted by slope: the candidates within 0.001, tested exactly and
// put back in line order.
std::vector<AcDbObjectIdArray> SlopeGroupsIndexed(const std::vector<SlopeLine>& lines,
                                                  const std::vector<double>& slopes) {
    std::vector<std::pair<double, int>> bySlope;
    for (int i = 0; i < static_cast<int>(lines.size()); ++i)
        if (!std::isnan(lines[i].slope)) bySlope.emplace_back(lines[i].slope, i);
    std::sort(bySlope.begin(), bySlope.end());
    std::vector<AcDbObjectIdArray> groups;
    std::vector<int> members;
    for (double slope : slopes) {
        members.clear();
        auto it = std::lower_bound(bySlope.begin(), bySlope.end(), std::make_pair(slope - 0.001, -1));
        for (; it != bySlope.end() && it->first <= slope + 0.001; ++it)
            if (std::fabs(it->first - slope) < 0.0005) members.push_back(it->second);
        std::sort(members.begin(), members.end());
        AcDbObjectIdArray group;
        for (int i : members) group.append(lines[i].id);
        groups.push_back(group);
    }
    return groups;
}

std::vector<AcDbObjectIdArray> SlopeGroups(const std::vector<SlopeLine>& lines) {
    if (MergeClusterWalk == ClusterWalk::Plain) return SlopeGroupsPlain(lines, DistinctSlopesPlain(lines));
    return SlopeGroupsIndexed(lines, DistinctSlopesIndexed(lines));
}

// What the members of a cluster give the merged line: all their ends, and layer, colour and
// slope of the last line read (10086.0 marks the horizontal here).
struct ClusterLook {
    AcGePoint3dArray points;
    std::wstring layer;
    int color = 0;
    double slope = 0.0;
};

ClusterLook ReadCluster(const AcDbObjectIdArray& cluster) {
    ClusterLook look;
    for (const AcDbObjectId& id : cluster) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead, false) != Acad::eOk) continue;
        if (const auto* line = AcDbLine::cast(entity)) {
            AcGePoint3d s = line->startPoint(), e = line->endPoint();
            look.points.append(s);
            look.points.append(e);
            look.layer = line->layer();
            look.color = EffectiveColorIndex(entity);
            look.slope = (e.y - s.y) / (e.x - s.x);
            if (look.slope == 0.0) look.slope = 10086.0;
        }
        entity->close();
    }
    return look;
}

bool AnySolid(const AcDbObjectIdArray& ids, const std::wstring& solidLinetype) {
    for (const AcDbObjectId& id : ids)
        if (LinetypeOfId(id) == solidLinetype) return true;
    return false;
}

// One line across the box of the cluster; the box diagonal rises, so it is turned to fall when
// the members' slope differs from it.
void MergeLineCluster(const AcDbObjectIdArray& cluster, const LineAndArcMergedSettings& settings) {
    ClusterLook look = ReadCluster(cluster);
    if (look.points.isEmpty()) return;
    AcGePoint3d low, high;
    BoundingCorners(look.points, low, high);
    double boxSlope = (high.y - low.y) / (high.x - low.x);
    if (boxSlope == 0.0) boxSlope = 10086.0;
    if (std::fabs(look.slope - boxSlope) >= 0.0005) {
        double width = std::fabs(high.x - low.x);
        low.x = low.x + width;
        high.x = high.x - width;
    }
    bool solid = AnySolid(cluster, settings.solidLinetype);
    AcDbLine* line = nullptr;
    MakeLine(low, high, line);
    line->setLayer(look.layer, true);
    line->setColorIndex(static_cast<std::uint16_t>(look.color), true);
    AcDbObjectId id = AppendToModelOf(settings.database, line);
    if (solid) {
        SetLinetypeOfId(id, settings.solidLinetype);
    } else {
        SetLinetypeOfId(id, settings.dottedLinetype);
        SetLinetypeScaleOfId(id, 0.0);
    }
    for (const AcDbObjectId& member : cluster) EraseById(member);
}

// A segment's box widened by t on every side: two segments can touch within t only where their
// widened boxes overlap.
PlaneBox SegmentReach(const CurveEnds& ends, double tolerance) {
    return {std::fmin(ends.startPoint.x, ends.endPoint.x) - tolerance,
            std::fmin(ends.startPoint.y, ends.endPoint.y) - tolerance,
            std::fmax(ends.startPoint.x, ends.endPoint.x) + tolerance,
            std::fmax(ends.startPoint.y, ends.endPoint.y) + tolerance};
}

bool EndsTouch(const CurveEnds& c, const CurveEnds& w, double t) {
    return PointOnSegment(c.startPoint, w.startPoint, w.endPoint, t) ||
           PointOnSegment(c.endPoint, w.startPoint, w.endPoint, t) ||
           PointOnSegment(w.startPoint, c.startPoint, c.endPoint, t) ||
           PointOnSegment(w.endPoint, c.startPoint, c.endPoint, t);
}

}  // namespace

std::vector<AcDbObjectIdArray> ClusterTouchingLines(const AcDbObjectIdArray& ids, double tolerance) {
    std::vector<CurveEnds> records;
    for (const AcDbObjectId& id : ids) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead, false) != Acad::eOk) continue;
        if (const auto* curve = AcDbCurve::cast(entity)) {
            CurveEnds ends{id, {}, {}};
            curve->getStartPoint(ends.startPoint);
            curve->getEndPoint(ends.endPoint);
            records.push_back(ends);
        }
        entity->close();
    }
    std::vector<PlaneBox> reach;
    for (const CurveEnds& r : records) reach.push_back(SegmentReach(r, tolerance));
    auto joins = [&](int c, int w) { return EndsTouch(records[c], records[w], tolerance); };
    std::vector<AcDbObjectIdArray> clusters;
    for (const std::vector<int>& members :
         WalkClusters(static_cast<int>(records.size()), joins, reach, MergeClusterWalk)) {
        AcDbObjectIdArray cluster;
        for (int i : members) cluster.append(records[i].id);
        clusters.push_back(cluster);
    }
    return clusters;
}

void MergeLines(AcDbObjectIdArray lineIds) {
    const LineAndArcMergedSettings& settings = *CleanupGlobals->lineAndArcMerged;
    std::vector<SlopeLine> lines = ReadSlopeLines(lineIds);
    for (const AcDbObjectIdArray& group : SlopeGroups(lines)) {
        if (group.length() <= 1) continue;
        for (const AcDbObjectIdArray& cluster : ClusterTouchingLines(group, 0.02))
            if (cluster.length() > 1) MergeLineCluster(cluster, settings);
    }
}

void MergeLinesAndArcs(AcDbObjectIdArray ids, AcDbDatabase* database) {
    AppendCleanupLog(L"合并直线和圆弧开始\n");
    ReadLineAndArcMergedSettings(*CleanupGlobals->lineAndArcMerged, database);
    AcDbObjectIdArray lineIds, arcIds;
    for (const AcDbObjectId& id : ids) {
        int kind = EntityKindOfId(id);
        if (kind == 1) lineIds.append(id);
        if (kind == 3) arcIds.append(id);
    }
    if (ids.isEmpty() || (lineIds.isEmpty() && arcIds.isEmpty())) return;
    MergeLines(lineIds);
    MergeArcs(arcIds);
    AppendCleanupLog(L"合并直线和圆弧结束\n");
}

void ClassInterfaceData::FunLineAndArcMerged() {
    AcDbDatabase* working = acdbHostApplicationServices()->workingDatabase();
    MergeLinesAndArcs(GetModelSpaceIds(working), working);
}
