#pragma once
#include <functional>

// Adaptive numerical integration, for lengths of curves that have no closed form.
namespace tavrik::ge {

// The integral of f over [a, b]. Each interval is measured by a 15-point Gauss-Kronrod rule and
// halved while the Kronrod and embedded Gauss estimates differ by more than its share of
// relativeTolerance times the whole integral.
double integrate(const std::function<double(double)>& f, double a, double b,
                 double relativeTolerance);

}  // namespace tavrik::ge
