#pragma once
// The removal of lines that lie on other lines, and of splines that lie along a line.
#include <vector>

#include "curves/curve_record.hpp"

// One removal of the duplicate walk: the record that dies and the one that lives on.
struct LineDeath {
    size_t dying;
    size_t survivor;
};

// The removals of the pair walk over the line records, in the order the walk makes them: each
// record that is still there, in list order, meets every later record still there, in list
// order; a later record that lies on it dies, and when it lies on a later one it dies itself and
// its walk ends. Only records whose boxes come within the tolerance of each other are tested,
// found through a grid, which gives the same removals as testing every pair.
std::vector<LineDeath> RepeatingLineDeaths(const std::vector<tCurve>& lines, double tolerance);

// -1, 0, 1 (along a line), 2 (along an arc) or 3 (along a circle) from a spline's record.
int ClassifySpline(const tCurve& record, double lineTolerance, double arcTolerance);
