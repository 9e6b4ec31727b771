#pragma once
#include <algorithm>
#include <cmath>
#include <optional>

#include "platform/ge/platform_tolerances.hpp"
#include "platform/ge/point3d.hpp"

// Range and on-curve checks shared by the curve classes.
namespace tavrik::curve_params {

// The parameter on [start, end]: taken as the nearer end when it strays out by no more than
// rounding, empty when it lies outside.
inline std::optional<double> onRange(double param, double start, double end) {
    const double slack =
        platform_tol::kParamSlack * std::max({1.0, std::fabs(start), std::fabs(end)});
    if (param < start - slack || param > end + slack) return std::nullopt;
    return std::clamp(param, start, end);
}

// Whether a point found on the curve is the given one, within rounding of its coordinates.
inline bool sameLocation(const AcGePoint3d& onCurve, const AcGePoint3d& given) {
    const double scale =
        std::max({1.0, std::fabs(given.x), std::fabs(given.y), std::fabs(given.z)});
    return onCurve.distanceTo(given) <= platform_tol::kOnCurve * scale;
}

}  // namespace tavrik::curve_params
