#pragma once
// The platform's own numeric tolerances, in one place. The module's thresholds are literals at
// their place of use and do not live here.

namespace tavrik::platform_tol {
// Below this, a length, radius or determinant counts as zero (degenerate geometry).
inline constexpr double kZeroLength = 1e-12;
// Two offset segments whose directions differ less than this (radians) are treated as parallel
// and joined by a straight connector instead of by their intersection.
inline constexpr double kParallelAngle = 1e-9;
// Points closer than this are one point when curves are intersected or joined.
inline constexpr double kIntersection = 1e-9;
// Relative accuracy of the adaptive quadrature that measures splines and ellipses.
inline constexpr double kQuadratureRelative = 1e-9;
// Accuracy of the Newton refinement in closest-point and point-to-parameter searches.
inline constexpr double kParamSearch = 1e-12;
}  // namespace tavrik::platform_tol
