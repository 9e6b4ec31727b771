#pragma once
// FunSplineToLineAndArc: a spline or ellipse that is as a whole a straight line within
// ToleranceLine becomes a line; one that is a circular arc or full circle within ToleranceArc
// becomes an arc or circle. Anything else stays as it is. Section SplineToLineAndArc of
// CAD_line.ini; its BolOpen is a real switch.
#include "platform/db/curve.hpp"
#include "platform/db/database.hpp"

void ConvertSplinesToLinesAndArcs(AcDbObjectIdArray ids, AcDbDatabase* database);

// The samples both fits look at: n = the count of stretch points held between 10 and 30, the
// points at n parameters evenly from start to end, with the end point added before the last
// one (so usually n + 1 points, the last two the end twice). A point that cannot be had is
// passed over.
AcGePoint3dArray SampleCurve(const AcDbCurve* curve);

// A new line (in no database) from the first to the last sample, when every sample lies
// strictly within t of that chord in the plane and the line is not shorter than t; else null.
AcDbEntity* FitLine(const AcDbCurve* curve, double tolerance);
// A new arc, or a circle for a curve whose ends meet, at z 0 through three points of the curve,
// when the samples fit the circle within t and its length lies within 10% of the curve's; else
// null.
AcDbEntity* FitArc(const AcDbCurve* curve, double tolerance);
