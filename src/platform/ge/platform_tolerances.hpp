#pragma once
// The platform's own numeric tolerances, in one place. The module's thresholds are literals at
// their place of use and do not live here.

namespace tavrik::platform_tol {
// Below this, a length, radius or determinant counts as zero (degenerate geometry).
inline constexpr double kZeroLength = 1e-12;
// A polyline segment whose bulge is below this in magnitude is straight.
inline constexpr double kZeroBulge = 1e-12;
// How far (in parameter units) a requested parameter may stray outside a curve's range and
// still be taken as its end, to absorb rounding in callers' parameter arithmetic.
inline constexpr double kParamSlack = 1e-10;
// A point this close to a curve (relative to the curve's size, with an absolute floor of the
// same value) lies on it, for point-to-parameter queries.
inline constexpr double kOnCurve = 1e-9;
// Two offset segments whose directions differ less than this (radians) are treated as parallel
// and joined by a straight connector instead of by their intersection.
inline constexpr double kParallelAngle = 1e-9;
// Points closer than this are one point when curves are intersected or joined.
inline constexpr double kIntersection = 1e-9;
// An offset result may come this much (relative to the drawing's size) closer to its source
// than the offset distance before it counts as cutting across the source.
inline constexpr double kOffsetCheck = 1e-7;
// Relative accuracy of the adaptive quadrature that measures splines and ellipses.
inline constexpr double kQuadratureRelative = 1e-9;
// Accuracy of the Newton refinement in closest-point and point-to-parameter searches.
inline constexpr double kParamSearch = 1e-12;
// Samples per knot span (or per quarter turn of an ellipse) before a closest-point search
// refines the best one; enough to separate the local minima of one span.
inline constexpr int kSearchSamplesPerSpan = 16;
}  // namespace tavrik::platform_tol
