#pragma once
#include "platform/ge/vector2d.hpp"

// A 2D point, as polyline vertices are stored.
class AcGePoint2d {
public:
    double x = 0.0;
    double y = 0.0;

    constexpr AcGePoint2d() = default;
    constexpr AcGePoint2d(double xx, double yy) : x(xx), y(yy) {}

    static const AcGePoint2d kOrigin;

    double distanceTo(const AcGePoint2d& p) const;
    bool isEqualTo(const AcGePoint2d& p, const AcGeTol& tol = AcGeContext::gTol) const;
    AcGeVector2d asVector() const { return {x, y}; }

    AcGePoint2d operator+(const AcGeVector2d& v) const { return {x + v.x, y + v.y}; }
    AcGePoint2d operator-(const AcGeVector2d& v) const { return {x - v.x, y - v.y}; }
    AcGeVector2d operator-(const AcGePoint2d& p) const { return {x - p.x, y - p.y}; }
    AcGePoint2d& operator+=(const AcGeVector2d& v) { x += v.x; y += v.y; return *this; }
    AcGePoint2d& operator-=(const AcGeVector2d& v) { x -= v.x; y -= v.y; return *this; }
    bool operator==(const AcGePoint2d& p) const { return isEqualTo(p); }
    double operator[](int i) const { return i == 0 ? x : y; }
    double& operator[](int i) { return i == 0 ? x : y; }
};
