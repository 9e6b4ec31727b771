#pragma once
#include "platform/ge/point2d.hpp"
#include "platform/ge/vector3d.hpp"

// A 3D point. Drawings keep their coordinates in these.
class AcGePoint3d {
public:
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    constexpr AcGePoint3d() = default;
    constexpr AcGePoint3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}
    // The point of a plane with the given 2D coordinates in it.
    AcGePoint3d(const AcGePlane& plane, const AcGePoint2d& pnt);

    static const AcGePoint3d kOrigin;

    double distanceTo(const AcGePoint3d& p) const;
    AcGePoint3d& transformBy(const AcGeMatrix3d& m);
    AcGePoint3d& rotateBy(double angle, const AcGeVector3d& axis,
                          const AcGePoint3d& wrtPoint = kOrigin);
    AcGePoint3d& scaleBy(double factor, const AcGePoint3d& wrtPoint = kOrigin);
    AcGePoint3d& mirror(const AcGePlane& plane);
    AcGePoint2d convert2d() const { return {x, y}; }
    AcGePoint2d convert2d(const AcGePlane& plane) const;
    AcGeVector3d asVector() const { return {x, y, z}; }
    // Within tol.equalPoint() of p (Euclidean distance).
    bool isEqualTo(const AcGePoint3d& p, const AcGeTol& tol = AcGeContext::gTol) const;

    AcGePoint3d operator+(const AcGeVector3d& v) const { return {x + v.x, y + v.y, z + v.z}; }
    AcGePoint3d operator-(const AcGeVector3d& v) const { return {x - v.x, y - v.y, z - v.z}; }
    AcGeVector3d operator-(const AcGePoint3d& p) const { return {x - p.x, y - p.y, z - p.z}; }
    AcGePoint3d& operator+=(const AcGeVector3d& v) { x += v.x; y += v.y; z += v.z; return *this; }
    AcGePoint3d& operator-=(const AcGeVector3d& v) { x -= v.x; y -= v.y; z -= v.z; return *this; }
    bool operator==(const AcGePoint3d& p) const { return isEqualTo(p); }
    bool operator!=(const AcGePoint3d& p) const { return !isEqualTo(p); }
    double operator[](int i) const { return i == 0 ? x : (i == 1 ? y : z); }
    double& operator[](int i) { return i == 0 ? x : (i == 1 ? y : z); }
};

// Scales of a block reference along its own axes.
class AcGeScale3d {
public:
    double sx = 1.0;
    double sy = 1.0;
    double sz = 1.0;

    constexpr AcGeScale3d() = default;
    constexpr explicit AcGeScale3d(double factor) : sx(factor), sy(factor), sz(factor) {}
    constexpr AcGeScale3d(double x, double y, double z) : sx(x), sy(y), sz(z) {}

    static const AcGeScale3d kIdentity;

    bool isEqualTo(const AcGeScale3d& s, const AcGeTol& tol = AcGeContext::gTol) const;
    double operator[](int i) const { return i == 0 ? sx : (i == 1 ? sy : sz); }
    double& operator[](int i) { return i == 0 ? sx : (i == 1 ? sy : sz); }
};
