#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "platform/ge/quadrature.hpp"

using tavrik::ge::integrate;

TEST(Quadrature, polynomial_is_exact) {
    EXPECT_NEAR(integrate([](double x) { return 3 * x * x; }, 0.0, 2.0, 1e-12), 8.0, 1e-12);
}

TEST(Quadrature, sharp_integrand_reaches_the_relative_tolerance) {
    // A quarter of a flat ellipse (a = 10, b = 0.1), against a 30-digit reference.
    auto speed = [](double t) { return std::hypot(10 * std::sin(t), 0.1 * std::cos(t)); };
    double quarter = integrate(speed, 0.0, std::numbers::pi / 2, 1e-9);
    const double expected = 10.0027458243066296521;
    EXPECT_NEAR(quarter / expected, 1.0, 1e-9);
}

TEST(Quadrature, empty_interval_is_zero) {
    EXPECT_EQ(integrate([](double) { return 1.0; }, 1.0, 1.0, 1e-9), 0.0);
}
