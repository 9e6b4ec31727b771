#pragma once
// FunSplineToPline: each spline, and each partial ellipse, becomes one polyline of arcs and
// straight pieces that follows it. The walk takes the whole rest of the curve first and halves
// it until the samples of the span lie on the circle through its ends and parametric middle.
// Section SplineToPline of CAD_line.ini; only its Tolerance takes part in a decision.
#include "platform/db/database.hpp"
#include "platform/ge/array.hpp"

// The walk as written, every try reading its 30 samples anew, or the thrifty one that keeps the
// points it has read by parameter and ends a try as soon as its outcome is certain. Both give
// the same polylines; the plain one is there for the comparison.
enum class SegmentReads { Plain, Thrifty };
extern SegmentReads SegmentWalkReads;

void ConvertSplinesToPlines(AcDbObjectIdArray ids, AcDbDatabase* database);
// The id of the new polyline, already in the model space of the working database, with the
// source's layer, linetype, colour and linetype scale; the null id when none comes about. The
// source stays.
AcDbObjectId SegmentCurve(AcDbObjectId id, double tolerance);
// A polyline at elevation 0 through the vertices with the bulges (the last vertex gets 0);
// closed, without its last vertex, when the ends are closer than 0.02. Null for fewer than two
// vertices, or two closer than 0.02.
AcDbObjectId MakePolylineEntity(const AcGePoint3dArray& vertices, const AcGeDoubleArray& bulges);
