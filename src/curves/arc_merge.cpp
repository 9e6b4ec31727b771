// The arc half of FunLineAndArcMerged: flat arcs become lines; arcs of one circle that touch or
// overlap become the arc across them, or the circle when no gap is left.
#include <cmath>

#include "cleanup/class_interface_data.hpp"
#include "curves/curve_edit.hpp"
#include "curves/geometry.hpp"
#include "curves/line_arc_merge.hpp"
#include "curves/touch_clusters.hpp"
#include "platform/db/arc.hpp"

namespace {

// The line that takes the place of a flat arc, with the arc's colour, layer, linetype and scale.
void ReplaceFlatArc(AcDbArc* arc, const AcGePoint3d& s, const AcGePoint3d& e, AcDbDatabase* db) {
    AcDbLine* line = nullptr;
    MakeLine(s, e, line);
    line->setColorIndex(arc->colorIndex(), true);
    line->setLayer(arc->layer(), true);
    line->setLinetype(arc->linetype(), true);
    line->setLinetypeScale(arc->linetypeScale(), true);
    AppendToModelOf(db, line);
    arc->erase(true);
}

// Step 1: each arc either goes as flat (its mid point within 0.01 of its chord) or is noted.
std::vector<MergeArc> ReadArcsReplacingFlatOnes(const AcDbObjectIdArray& arcIds, AcDbDatabase* db) {
    std::vector<MergeArc> arcs;
    for (const AcDbObjectId& id : arcIds) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite, false) != Acad::eOk) continue;
        if (auto* arc = AcDbArc::cast(entity)) {
            MergeArc record;
            record.id = id;
            double sp = 0.0, ep = 0.0;
            arc->getStartPoint(record.startPoint);
            arc->getEndPoint(record.endPoint);
            arc->getStartParam(sp);
            arc->getEndParam(ep);
            arc->getPointAtParam((ep - sp) * 0.5 + sp, record.midPoint);
            if (PointOnSegment(record.midPoint, record.startPoint, record.endPoint, 0.01)) {
                ReplaceFlatArc(arc, record.startPoint, record.endPoint, db);
            } else {
                record.center = arc->center();
                record.radius = arc->radius();
                arcs.push_back(record);
            }
        }
        entity->close();
    }
    return arcs;
}

bool ArcsJoin(const MergeArc& c, const MergeArc& w, double t) {
    if (!(std::fabs(c.radius - w.radius) < t)) return false;
    if (!SamePoint(c.center, w.center, t)) return false;
    return PointOnArcCoarse(c.startPoint, w.startPoint, w.midPoint, w.endPoint, t) ||
           PointOnArcCoarse(c.endPoint, w.startPoint, w.midPoint, w.endPoint, t) ||
           PointOnArcCoarse(w.startPoint, c.startPoint, c.midPoint, c.endPoint, t) ||
           PointOnArcCoarse(w.endPoint, c.startPoint, c.midPoint, c.endPoint, t);
}

// Clusters of two arcs or more. Arcs join only with centres within t on every axis, so the
// centre widened by t is each arc's reach.
std::vector<std::vector<MergeArc>> ArcClusters(const std::vector<MergeArc>& arcs, double t) {
    std::vector<PlaneBox> reach;
    for (const MergeArc& a : arcs)
        reach.push_back({a.center.x - t, a.center.y - t, a.center.x + t, a.center.y + t});
    auto joins = [&](int c, int w) { return ArcsJoin(arcs[c], arcs[w], t); };
    std::vector<std::vector<MergeArc>> clusters;
    for (const std::vector<int>& members :
         WalkClusters(static_cast<int>(arcs.size()), joins, reach, MergeClusterWalk)) {
        if (members.size() < 2) continue;
        std::vector<MergeArc> cluster;
        for (int i : members) cluster.push_back(arcs[i]);
        clusters.push_back(cluster);
    }
    return clusters;
}

// The end angles of all members, thinned (per entry at most the first later one within t goes),
// sorted, and closed by the first angle plus a turn.
AcGeDoubleArray EndAngles(const std::vector<MergeArc>& cluster, double t) {
    AcGeDoubleArray angles;
    for (const MergeArc& arc : cluster) {
        angles.append(PolarAngle(arc.center, arc.startPoint, true));
        angles.append(PolarAngle(arc.center, arc.endPoint, true));
    }
    for (int i = 0; i < angles.length() - 1; ++i)
        for (int j = i + 1; j < angles.length(); ++j)
            if (std::fabs(angles[j] - angles[i]) < t) {
                angles.removeAt(j);
                break;
            }
    SortAscending(angles);
    angles.append(angles[0] + 360.0);
    return angles;
}

bool SpanCovered(const AcGePoint3d& probe, const std::vector<MergeArc>& cluster, double t) {
    for (const MergeArc& arc : cluster)
        if (PointOnArcCoarse(probe, arc.startPoint, arc.midPoint, arc.endPoint, t)) return true;
    return false;
}

// The first span between neighbouring angles that no member covers at its middle; the merged
// arc runs round from its far end to its near end. No gap: 0 to 360, a circle.
void MergedSweep(const std::vector<MergeArc>& cluster, double t, double& start, double& end) {
    AcGeDoubleArray angles = EndAngles(cluster, t);
    const AcGePoint3d& c0 = cluster[0].center;
    double r0 = cluster[0].radius;
    start = 0.0;
    end = 360.0;
    for (int k = 0; k + 1 < angles.length(); ++k) {
        double middle = (angles[k + 1] - angles[k]) * 0.5 + angles[k];
        AcGePoint3d probe = RotateAboutPoint(AcGePoint3d(c0.x + r0, c0.y, 0.0), c0, middle);
        if (SpanCovered(probe, cluster, t)) continue;
        start = angles[k + 1];
        end = angles[k] + 360.0;
        return;
    }
}

void MergeArcCluster(const std::vector<MergeArc>& cluster, const LineAndArcMergedSettings& settings) {
    double t = settings.Tolerance;
    double start = 0.0, end = 0.0;
    MergedSweep(cluster, t, start, end);
    double pieces = 0.0;
    for (const MergeArc& arc : cluster) pieces += CurveLengthOfId(arc.id);
    AcDbEntity* merged = nullptr;
    MakeArcOrCircle(cluster[0].center, cluster[0].radius, start, end, merged);
    if (CurveLength(AcDbCurve::cast(merged)) > 1.05 * pieces) {
        delete merged;  // never appended: a result longer than its pieces is refused
        return;
    }
    bool solid = false;
    for (const MergeArc& arc : cluster)
        if (LinetypeOfId(arc.id) == settings.solidLinetype) solid = true;
    merged->setColorIndex(static_cast<std::uint16_t>(EffectiveColorIndex(cluster[0].id)), true);
    merged->setLayer(LayerOfId(cluster[0].id), true);
    AcDbObjectId id = AppendToModelOf(settings.database, merged);
    if (solid) {
        SetLinetypeScaleOfId(id, 0.0);
        SetLinetypeOfId(id, settings.solidLinetype);
    } else {
        SetLinetypeOfId(id, settings.dottedLinetype);
    }
    for (const MergeArc& arc : cluster) EraseById(arc.id);
}

}  // namespace

void MergeArcs(AcDbObjectIdArray arcIds) {
    const LineAndArcMergedSettings& settings = *CleanupGlobals->lineAndArcMerged;
    std::vector<MergeArc> arcs = ReadArcsReplacingFlatOnes(arcIds, settings.database);
    for (const std::vector<MergeArc>& cluster : ArcClusters(arcs, settings.Tolerance))
        MergeArcCluster(cluster, settings);
}
