#pragma once
#include "platform/ge/tolerance.hpp"

// A 2D vector (displacement) in the plane.
class AcGeVector2d {
public:
    double x = 0.0;
    double y = 0.0;

    constexpr AcGeVector2d() = default;
    constexpr AcGeVector2d(double xx, double yy) : x(xx), y(yy) {}

    static const AcGeVector2d kIdentity;
    static const AcGeVector2d kXAxis;
    static const AcGeVector2d kYAxis;

    double length() const;
    double lengthSqrd() const { return x * x + y * y; }
    double dotProduct(const AcGeVector2d& v) const { return x * v.x + y * v.y; }
    // The z component of the 3D cross product; positive when v lies counter-clockwise.
    double crossProduct(const AcGeVector2d& v) const { return x * v.y - y * v.x; }
    // Angle from the x axis, in [0, 2pi).
    double angle() const;
    double angleTo(const AcGeVector2d& v) const;
    AcGeVector2d normal(const AcGeTol& tol = AcGeContext::gTol) const;
    AcGeVector2d& normalize(const AcGeTol& tol = AcGeContext::gTol);
    AcGeVector2d perpVector() const { return {-y, x}; }
    AcGeVector2d& rotateBy(double angle);
    bool isZeroLength(const AcGeTol& tol = AcGeContext::gTol) const;
    bool isEqualTo(const AcGeVector2d& v, const AcGeTol& tol = AcGeContext::gTol) const;

    AcGeVector2d operator-() const { return {-x, -y}; }
    AcGeVector2d operator+(const AcGeVector2d& v) const { return {x + v.x, y + v.y}; }
    AcGeVector2d operator-(const AcGeVector2d& v) const { return {x - v.x, y - v.y}; }
    AcGeVector2d operator*(double s) const { return {x * s, y * s}; }
    AcGeVector2d operator/(double s) const { return {x / s, y / s}; }
    AcGeVector2d& operator+=(const AcGeVector2d& v) { x += v.x; y += v.y; return *this; }
    AcGeVector2d& operator-=(const AcGeVector2d& v) { x -= v.x; y -= v.y; return *this; }
    AcGeVector2d& operator*=(double s) { x *= s; y *= s; return *this; }
    bool operator==(const AcGeVector2d& v) const { return isEqualTo(v); }
    double operator[](int i) const { return i == 0 ? x : y; }
    double& operator[](int i) { return i == 0 ? x : y; }
};

inline AcGeVector2d operator*(double s, const AcGeVector2d& v) { return v * s; }
