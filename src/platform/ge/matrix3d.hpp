#pragma once
#include "platform/ge/point3d.hpp"
#include "platform/ge/vector3d.hpp"

class AcGePlane;

// A 4x4 affine transformation of 3D space, applied to column vectors: p' = M * p.
class AcGeMatrix3d {
public:
    double entry[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};

    AcGeMatrix3d() = default;

    static const AcGeMatrix3d kIdentity;

    AcGeMatrix3d& setToIdentity();
    AcGeMatrix3d& setToTranslation(const AcGeVector3d& v);
    AcGeMatrix3d& setToRotation(double angle, const AcGeVector3d& axis,
                                const AcGePoint3d& center = AcGePoint3d::kOrigin);
    AcGeMatrix3d& setToScaling(double factor, const AcGePoint3d& center = AcGePoint3d::kOrigin);
    AcGeMatrix3d& setToMirroring(const AcGePlane& plane);
    AcGeMatrix3d& setToMirroring(const AcGePoint3d& point);
    // Maps the coordinate system (fromOrigin, fromX, fromY, fromZ) onto (toOrigin, ...).
    AcGeMatrix3d& setToAlignCoordSys(const AcGePoint3d& fromOrigin, const AcGeVector3d& fromXAxis,
                                     const AcGeVector3d& fromYAxis, const AcGeVector3d& fromZAxis,
                                     const AcGePoint3d& toOrigin, const AcGeVector3d& toXAxis,
                                     const AcGeVector3d& toYAxis, const AcGeVector3d& toZAxis);
    // The object-coordinate system of the arbitrary-axis algorithm for a normal, and back.
    AcGeMatrix3d& setToPlaneToWorld(const AcGeVector3d& normal);
    AcGeMatrix3d& setToWorldToPlane(const AcGeVector3d& normal);

    static AcGeMatrix3d translation(const AcGeVector3d& v);
    static AcGeMatrix3d rotation(double angle, const AcGeVector3d& axis,
                                 const AcGePoint3d& center = AcGePoint3d::kOrigin);
    static AcGeMatrix3d scaling(double factor, const AcGePoint3d& center = AcGePoint3d::kOrigin);
    static AcGeMatrix3d mirroring(const AcGePlane& plane);
    static AcGeMatrix3d planeToWorld(const AcGeVector3d& normal);
    static AcGeMatrix3d worldToPlane(const AcGeVector3d& normal);

    AcGeMatrix3d operator*(const AcGeMatrix3d& m) const;
    AcGeMatrix3d& operator*=(const AcGeMatrix3d& m) { return *this = *this * m; }
    AcGeMatrix3d& preMultBy(const AcGeMatrix3d& left) { return *this = left * *this; }
    AcGeMatrix3d& postMultBy(const AcGeMatrix3d& right) { return *this = *this * right; }

    AcGeMatrix3d inverse() const;
    AcGeMatrix3d& invert() { return *this = inverse(); }
    double det() const;
    bool isSingular(const AcGeTol& tol = AcGeContext::gTol) const;
    bool isEqualTo(const AcGeMatrix3d& m, const AcGeTol& tol = AcGeContext::gTol) const;
    // True when the matrix scales all directions alike (no shear, no non-uniform scale).
    bool isUniScaledOrtho(const AcGeTol& tol = AcGeContext::gTol) const;
    // The length by which the matrix scales a unit vector (for uniform scalings).
    double scale() const;
    AcGeVector3d translationPart() const { return {entry[0][3], entry[1][3], entry[2][3]}; }

    double operator()(int row, int col) const { return entry[row][col]; }
    double& operator()(int row, int col) { return entry[row][col]; }
    bool operator==(const AcGeMatrix3d& m) const { return isEqualTo(m); }

    AcGePoint3d apply(const AcGePoint3d& p) const;
    AcGeVector3d apply(const AcGeVector3d& v) const;
};

inline AcGePoint3d operator*(const AcGeMatrix3d& m, const AcGePoint3d& p) { return m.apply(p); }
inline AcGeVector3d operator*(const AcGeMatrix3d& m, const AcGeVector3d& v) { return m.apply(v); }
