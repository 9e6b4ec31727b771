#pragma once
// The point, circle, arc and bulge kit that the curve clean-ups decide with. Each function keeps
// its own thresholds and the strictness of each comparison, since the operations above accept
// or refuse geometry by these results; the circle constructions round their radius to single
// precision on purpose. Angles are in degrees unless a function says otherwise. No state.
#include <cmath>

#include "platform/db/curve.hpp"
#include "platform/db/entity.hpp"
#include "platform/db/line.hpp"
#include "platform/ge/array.hpp"
#include "platform/ge/point3d.hpp"

// Each axis of a strictly inside (b - t, b + t): a tolerance of 0 never holds.
bool SamePoint(const AcGePoint3d& a, const AcGePoint3d& b, double tolerance);
// The 3D distance. Inline, as are the band and near-duplicate tests below: the polyline walk
// asks them for every sample it reads.
inline double PointDistance(const AcGePoint3d& a, const AcGePoint3d& b) {
    double dx = a.x - b.x, dy = a.y - b.y, dz = a.z - b.z;
    return std::sqrt(dx * dx + dy * dy + dz * dz);
}
// In the plane: p within the box of the segment widened by t (inclusive), and its distance from
// the segment's line strictly below t. A segment of no length holds no point.
bool PointOnSegment(const AcGePoint3d& p, const AcGePoint3d& a, const AcGePoint3d& b,
                    double tolerance);
// p on the arc from a over m to b: near an end (3D distance strictly below t), or on the circle
// of CircleFromThreePointsFine strictly within t and on the same side of the chord as m.
bool PointOnArc(const AcGePoint3d& p, const AcGePoint3d& a, const AcGePoint3d& m,
                const AcGePoint3d& b, double tolerance);
// As PointOnArc, with SamePoint at the ends and the circle of CircleFromThreePoints.
bool PointOnArcCoarse(const AcGePoint3d& p, const AcGePoint3d& a, const AcGePoint3d& m,
                      const AcGePoint3d& b, double tolerance);
// The turn from p over q to r is clockwise or none (cross product <= 0).
bool TurnNotLeft(const AcGePoint3d& p, const AcGePoint3d& q, const AcGePoint3d& r);

// The circle through three points in the plane (centre at z 0) by the crossing of the bisectors
// of p1p2 and p1p3. Refuses when p2 and p1 differ by less than 0.001 in y (both slopes are then
// taken as 0) or when the slopes differ by less than 0.01; an undefined slope difference passes.
// The radius carries single precision. On refusal the out values stay as they were.
bool CircleFromThreePoints(const AcGePoint3d& p1, const AcGePoint3d& p2, const AcGePoint3d& p3,
                           AcGePoint3d& center, double& radius);
// The same with the threshold 5e-7, a test per slope, slopes kept in single precision and the
// slope difference tested in single precision.
bool CircleFromThreePointsFine(const AcGePoint3d& p1, const AcGePoint3d& p2,
                               const AcGePoint3d& p3, AcGePoint3d& center, double& radius);
// The circle through the points at 0, n/3 and 2n/3 holds every point within t (inclusive, 3D
// distance to the centre at z 0); fewer than 3 points never fit.
bool SamplesFitCircle(const AcGePoint3dArray& points, double tolerance);
// The point within t of the radius (inclusive; an undefined difference passes: |r - d| above t
// fails).
inline bool PointWithinRadius(const AcGePoint3d& center, double radius, const AcGePoint3d& point,
                              double tolerance) {
    return !(std::fabs(radius - PointDistance(point, center)) > tolerance);
}
// Every point within t of the radius (inclusive); an empty list is false.
bool PointsWithinRadius(const AcGePoint3d& center, double radius, const AcGePoint3dArray& points,
                        double tolerance);

// The direction from `from` to `to` in [0, 360) degrees, or in radians when `degrees` is false;
// a vertical or empty direction gives 90 (upwards or none) or 270.
double PolarAngle(const AcGePoint3d& from, const AcGePoint3d& to, bool degrees);
// p turned about c by an angle in degrees, counter-clockwise, in the plane at z 0.
AcGePoint3d RotateAboutPoint(const AcGePoint3d& p, const AcGePoint3d& c, double angle);
// The smallest and largest x, y and z of the points, each axis by itself; an empty list leaves
// the corners as they were.
void BoundingCorners(const AcGePoint3dArray& points, AcGePoint3d& low, AcGePoint3d& high);

// The distance of p from the line through q and r, by the cosine rule at q.
double HeightOverChord(const AcGePoint3d& p, const AcGePoint3d& q, const AcGePoint3d& r);
// The bulge height / half chord of m over the chord a-b, positive when a-m-b turns left.
double ChordBulge(const AcGePoint3d& a, const AcGePoint3d& m, const AcGePoint3d& b);
// The bulge of an arc in its own counter-clockwise direction; 0.0 for any other entity.
double ArcBulge(const AcDbEntity* entity);

// The distance along the curve at its end parameter; 0.0 when the curve does not answer.
double CurveLength(const AcDbCurve* curve);
// The same by id: -1.0 when the entity does not open, 0.0 when it is no curve.
double CurveLengthOfId(AcDbObjectId id);
// The start point at fraction 0.0, the end point at 1.0, otherwise the point at the parameter
// (end - start) * fraction, without the start parameter added. The origin when the entity does
// not open or is no curve.
AcGePoint3d CurvePointAt(AcDbObjectId id, double fraction);

// New entities that belong to no database: the caller appends or deletes them.
void MakeLine(const AcGePoint3d& start, const AcGePoint3d& end, AcDbLine*& line);
// A circle when start is exactly 0 and end exactly 360, otherwise an arc (angles in degrees).
void MakeArcOrCircle(const AcGePoint3d& center, double radius, double startAngle, double endAngle,
                     AcDbEntity*& entity);
// The arc through three points at z 0, counter-clockwise from whichever end makes it pass the
// mid point; nothing is made (and `entity` stays) when CircleFromThreePoints refuses.
void MakeArcThroughPoints(const AcGePoint3d& start, const AcGePoint3d& mid, const AcGePoint3d& end,
                          AcDbEntity*& entity);

// `other` lies within 0.02 of `kept` on all three axes (inclusive).
inline bool NearDuplicate(const AcGePoint3d& kept, const AcGePoint3d& other) {
    return std::fabs(other.x - kept.x) <= 0.02 && std::fabs(other.y - kept.y) <= 0.02 &&
           std::fabs(other.z - kept.z) <= 0.02;
}
// Removes every later point within 0.02 on all three axes (inclusive) of a surviving earlier one.
void DropNearDuplicates(AcGePoint3dArray& points);
// Bubble sort; neighbours swap only when the right one is strictly smaller.
void SortAscending(AcGeDoubleArray& values);
