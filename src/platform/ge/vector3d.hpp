#pragma once
#include "platform/ge/tolerance.hpp"
#include "platform/ge/vector2d.hpp"

class AcGeMatrix3d;
class AcGePlane;

// A 3D vector (displacement or direction).
class AcGeVector3d {
public:
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    constexpr AcGeVector3d() = default;
    constexpr AcGeVector3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}

    static const AcGeVector3d kIdentity;
    static const AcGeVector3d kXAxis;
    static const AcGeVector3d kYAxis;
    static const AcGeVector3d kZAxis;

    double length() const;
    double lengthSqrd() const { return x * x + y * y + z * z; }
    double dotProduct(const AcGeVector3d& v) const { return x * v.x + y * v.y + z * v.z; }
    AcGeVector3d crossProduct(const AcGeVector3d& v) const {
        return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
    }
    // Unsigned angle to v, in [0, pi].
    double angleTo(const AcGeVector3d& v) const;
    // Signed angle to v measured counter-clockwise about refVector, in [0, 2pi).
    double angleTo(const AcGeVector3d& v, const AcGeVector3d& refVector) const;
    AcGeVector3d normal(const AcGeTol& tol = AcGeContext::gTol) const;
    AcGeVector3d& normalize(const AcGeTol& tol = AcGeContext::gTol);
    // Some vector perpendicular to this one (the arbitrary-axis choice for x directions).
    AcGeVector3d perpVector() const;
    AcGeVector3d& rotateBy(double angle, const AcGeVector3d& axis);
    AcGeVector3d& transformBy(const AcGeMatrix3d& m);
    AcGeVector3d& mirror(const AcGeVector3d& normalToPlane);
    AcGeVector2d convert2d() const { return {x, y}; }
    bool isZeroLength(const AcGeTol& tol = AcGeContext::gTol) const;
    bool isUnitLength(const AcGeTol& tol = AcGeContext::gTol) const;
    bool isParallelTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const;
    bool isCodirectionalTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const;
    bool isPerpendicularTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const;
    // Componentwise comparison: each coordinate differs by at most tol.equalVector().
    bool isEqualTo(const AcGeVector3d& v, const AcGeTol& tol = AcGeContext::gTol) const;

    AcGeVector3d operator-() const { return {-x, -y, -z}; }
    AcGeVector3d operator+(const AcGeVector3d& v) const { return {x + v.x, y + v.y, z + v.z}; }
    AcGeVector3d operator-(const AcGeVector3d& v) const { return {x - v.x, y - v.y, z - v.z}; }
    AcGeVector3d operator*(double s) const { return {x * s, y * s, z * s}; }
    AcGeVector3d operator/(double s) const { return {x / s, y / s, z / s}; }
    AcGeVector3d& operator+=(const AcGeVector3d& v) { x += v.x; y += v.y; z += v.z; return *this; }
    AcGeVector3d& operator-=(const AcGeVector3d& v) { x -= v.x; y -= v.y; z -= v.z; return *this; }
    AcGeVector3d& operator*=(double s) { x *= s; y *= s; z *= s; return *this; }
    AcGeVector3d& operator/=(double s) { x /= s; y /= s; z /= s; return *this; }
    bool operator==(const AcGeVector3d& v) const { return isEqualTo(v); }
    bool operator!=(const AcGeVector3d& v) const { return !isEqualTo(v); }
    double operator[](int i) const { return i == 0 ? x : (i == 1 ? y : z); }
    double& operator[](int i) { return i == 0 ? x : (i == 1 ? y : z); }
};

inline AcGeVector3d operator*(double s, const AcGeVector3d& v) { return v * s; }
