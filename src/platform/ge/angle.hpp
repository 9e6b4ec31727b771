#pragma once
#include <cmath>
#include <numbers>

// Angle arithmetic shared by arcs, ellipses and bulges (radians throughout).
namespace tavrik::ge {
inline constexpr double kTwoPi = 2.0 * std::numbers::pi;

// The angle brought into [0, 2pi).
inline double wrapTwoPi(double angle) {
    angle = std::fmod(angle, kTwoPi);
    if (angle < 0) angle += kTwoPi;
    return angle >= kTwoPi ? 0.0 : angle;
}

// The angle brought into (-pi, pi].
inline double wrapPi(double angle) {
    angle = wrapTwoPi(angle);
    return angle > std::numbers::pi ? angle - kTwoPi : angle;
}
}  // namespace tavrik::ge
