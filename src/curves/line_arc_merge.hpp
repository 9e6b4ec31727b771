#pragma once
// FunLineAndArcMerged: pieces of one straight run become one line, pieces of one circle one arc
// or circle, and practically flat arcs become lines. Lines and arcs are merged separately.
// Settings come from section LineAndArcMerged of CAD_line.ini (its BolOpen has no effect).
#include <vector>

#include "platform/db/database.hpp"
#include "platform/ge/point3d.hpp"

// A line of MergeLines with its slope (10086.0 marks a vertical line).
struct SlopeLine {
    double slope = 0.0;
    AcDbObjectId id;
    AcGePoint3d startPoint;
    AcGePoint3d endPoint;
};

// The ends of a curve for ClusterTouchingLines.
struct CurveEnds {
    AcDbObjectId id;
    AcGePoint3d startPoint;
    AcGePoint3d endPoint;
};

// An arc of MergeArcs; the mid point is at the half of its parameter range.
struct MergeArc {
    AcDbObjectId id;
    AcGePoint3d center;
    AcGePoint3d startPoint;
    AcGePoint3d midPoint;
    AcGePoint3d endPoint;
    double radius = 0.0;
};

// The operation on a snapshot of ids; new entities go to `database`.
void MergeLinesAndArcs(AcDbObjectIdArray ids, AcDbDatabase* database);
void MergeLines(AcDbObjectIdArray lineIds);
void MergeArcs(AcDbObjectIdArray arcIds);
// The clusters of curves whose ends lie on each other's segments within t, one array per
// cluster (single members included), members in walk order.
std::vector<AcDbObjectIdArray> ClusterTouchingLines(const AcDbObjectIdArray& ids, double tolerance);
