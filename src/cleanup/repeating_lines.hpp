#pragma once
// The removal of lines that lie on other lines, and of splines that lie along a line.
#include <vector>

#include "curves/curve_record.hpp"

// The verdict of the pair test on two records A and B.
enum class PairVerdict { none, secondDies, firstDies };

// The pair test of the duplicate walk, keyed on the two records' type codes. Lines (2001): one
// that lies on the other, both ends on its segment, dies, of equal lines the second. The further
// rows take 2002 for circles, 2003 for arcs and 2004 for polylines: a line, arc or polyline whose
// start, mid and end points lie on a polyline dies; of two polylines the one whose vertices all
// lie on the other; of two arcs with near centres and radii (strictly) the one whose ends and
// mid point lie on the other; a circle or arc with a near centre and radius after a circle, or
// an arc before a circle, dies. Other pairs are never found on each other.
PairVerdict CurvePairTest(const tCurve& a, const tCurve& b, double tolerance);

// The point lies within the tolerance of the curve behind `id` (its closest point, on each axis);
// false when the entity does not open or is no curve.
bool PointOnCurve(const AcGePoint3d& p, AcDbObjectId id, double tolerance);

// 1 when the plane boxes of the records' points meet (touching counts) and every point of B lies
// on A's curve, 2 when every point of A lies on B's, else 0.
int CurvesCoincide(const tCurve& a, const tCurve& b, double tolerance);

// One removal of the duplicate walk: the record that dies and the one that lives on.
struct LineDeath {
    size_t dying;
    size_t survivor;
};

// The removals of the pair walk over the line records (the list holds nothing else, so the other
// rows of the pair test do not fire), in the order the walk makes them: each
// record that is still there, in list order, meets every later record still there, in list
// order; a later record that lies on it dies, and when it lies on a later one it dies itself and
// its walk ends. Only records whose boxes come within the tolerance of each other are tested,
// found through a grid, which gives the same removals as testing every pair.
std::vector<LineDeath> RepeatingLineDeaths(const std::vector<tCurve>& lines, double tolerance);

// A spline that lies along a line: a corner of its box within the tolerance of the line's box,
// which a line's record leaves at the origin, and every stretch point on the segment.
bool SplineOnLine(const tCurve& line, const tCurve& spline, double tolerance);
// A spline that lies along a circle (every stretch point within the tolerance of its radius) or
// an arc (on the arc as well), with the box test of SplineOnLine.
bool SplineOnArc(const tCurve& arc, const tCurve& spline, double tolerance);

// -1, 0, 1 (along a line), 2 (along an arc) or 3 (along a circle) from a spline's record.
int ClassifySpline(const tCurve& record, double lineTolerance, double arcTolerance);
