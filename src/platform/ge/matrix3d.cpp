#include "platform/ge/matrix3d.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/ge/plane.hpp"

const AcGeMatrix3d AcGeMatrix3d::kIdentity{};

AcGeMatrix3d& AcGeMatrix3d::setToIdentity() { return *this = AcGeMatrix3d{}; }

AcGeMatrix3d& AcGeMatrix3d::setToTranslation(const AcGeVector3d& v) {
    setToIdentity();
    entry[0][3] = v.x;
    entry[1][3] = v.y;
    entry[2][3] = v.z;
    return *this;
}

AcGeMatrix3d& AcGeMatrix3d::setToRotation(double angle, const AcGeVector3d& axis,
                                          const AcGePoint3d& center) {
    // Rodrigues' rotation about a unit axis through the centre.
    AcGeVector3d u = axis.normal();
    double c = std::cos(angle), s = std::sin(angle), t = 1.0 - c;
    setToIdentity();
    entry[0][0] = t * u.x * u.x + c;
    entry[0][1] = t * u.x * u.y - s * u.z;
    entry[0][2] = t * u.x * u.z + s * u.y;
    entry[1][0] = t * u.x * u.y + s * u.z;
    entry[1][1] = t * u.y * u.y + c;
    entry[1][2] = t * u.y * u.z - s * u.x;
    entry[2][0] = t * u.x * u.z - s * u.y;
    entry[2][1] = t * u.y * u.z + s * u.x;
    entry[2][2] = t * u.z * u.z + c;
    AcGeVector3d moved = center.asVector() - apply(center.asVector());
    entry[0][3] = moved.x;
    entry[1][3] = moved.y;
    entry[2][3] = moved.z;
    return *this;
}

AcGeMatrix3d& AcGeMatrix3d::setToScaling(double factor, const AcGePoint3d& center) {
    setToIdentity();
    for (int i = 0; i < 3; ++i) {
        entry[i][i] = factor;
        entry[i][3] = center[i] * (1.0 - factor);
    }
    return *this;
}

AcGeMatrix3d& AcGeMatrix3d::setToMirroring(const AcGePlane& plane) {
    // Householder reflection I - 2nn^T about the plane through its point.
    AcGeVector3d n = plane.normal().normal();
    AcGePoint3d p = plane.pointOnPlane();
    setToIdentity();
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j) entry[i][j] = (i == j ? 1.0 : 0.0) - 2.0 * n[i] * n[j];
    double d = 2.0 * p.asVector().dotProduct(n);
    for (int i = 0; i < 3; ++i) entry[i][3] = d * n[i];
    return *this;
}

AcGeMatrix3d& AcGeMatrix3d::setToMirroring(const AcGePoint3d& point) {
    return setToScaling(-1.0, point);
}

AcGeMatrix3d& AcGeMatrix3d::setToAlignCoordSys(
    const AcGePoint3d& fromOrigin, const AcGeVector3d& fromXAxis, const AcGeVector3d& fromYAxis,
    const AcGeVector3d& fromZAxis, const AcGePoint3d& toOrigin, const AcGeVector3d& toXAxis,
    const AcGeVector3d& toYAxis, const AcGeVector3d& toZAxis) {
    AcGeMatrix3d from, to;
    for (int i = 0; i < 3; ++i) {
        from.entry[i][0] = fromXAxis[i];
        from.entry[i][1] = fromYAxis[i];
        from.entry[i][2] = fromZAxis[i];
        from.entry[i][3] = fromOrigin[i];
        to.entry[i][0] = toXAxis[i];
        to.entry[i][1] = toYAxis[i];
        to.entry[i][2] = toZAxis[i];
        to.entry[i][3] = toOrigin[i];
    }
    return *this = to * from.inverse();
}

AcGeMatrix3d& AcGeMatrix3d::setToPlaneToWorld(const AcGeVector3d& normal) {
    AcGeVector3d z = normal.normal();
    AcGeVector3d x = z.perpVector();
    AcGeVector3d y = z.crossProduct(x).normal();
    setToIdentity();
    for (int i = 0; i < 3; ++i) {
        entry[i][0] = x[i];
        entry[i][1] = y[i];
        entry[i][2] = z[i];
    }
    return *this;
}

AcGeMatrix3d& AcGeMatrix3d::setToWorldToPlane(const AcGeVector3d& normal) {
    setToPlaneToWorld(normal);
    for (int i = 0; i < 3; ++i)
        for (int j = i + 1; j < 3; ++j) std::swap(entry[i][j], entry[j][i]);
    return *this;
}

AcGeMatrix3d AcGeMatrix3d::translation(const AcGeVector3d& v) {
    return AcGeMatrix3d{}.setToTranslation(v);
}
AcGeMatrix3d AcGeMatrix3d::rotation(double angle, const AcGeVector3d& axis,
                                    const AcGePoint3d& center) {
    return AcGeMatrix3d{}.setToRotation(angle, axis, center);
}
AcGeMatrix3d AcGeMatrix3d::scaling(double factor, const AcGePoint3d& center) {
    return AcGeMatrix3d{}.setToScaling(factor, center);
}
AcGeMatrix3d AcGeMatrix3d::mirroring(const AcGePlane& plane) {
    return AcGeMatrix3d{}.setToMirroring(plane);
}
AcGeMatrix3d AcGeMatrix3d::planeToWorld(const AcGeVector3d& normal) {
    return AcGeMatrix3d{}.setToPlaneToWorld(normal);
}
AcGeMatrix3d AcGeMatrix3d::worldToPlane(const AcGeVector3d& normal) {
    return AcGeMatrix3d{}.setToWorldToPlane(normal);
}

AcGeMatrix3d AcGeMatrix3d::operator*(const AcGeMatrix3d& m) const {
    AcGeMatrix3d r;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            double sum = 0.0;
            for (int k = 0; k < 4; ++k) sum += entry[i][k] * m.entry[k][j];
            r.entry[i][j] = sum;
        }
    return r;
}

double AcGeMatrix3d::det() const {
    // Affine matrices: the determinant of the linear part.
    const auto& e = entry;
    return e[0][0] * (e[1][1] * e[2][2] - e[1][2] * e[2][1]) -
           e[0][1] * (e[1][0] * e[2][2] - e[1][2] * e[2][0]) +
           e[0][2] * (e[1][0] * e[2][1] - e[1][1] * e[2][0]);
}

bool AcGeMatrix3d::isSingular(const AcGeTol& tol) const {
    return std::fabs(det()) <= tol.equalPoint();
}

AcGeMatrix3d AcGeMatrix3d::inverse() const {
    // Gauss-Jordan elimination with partial pivoting on the full 4x4 matrix.
    double a[4][8];
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            a[i][j] = entry[i][j];
            a[i][j + 4] = (i == j) ? 1.0 : 0.0;
        }
    for (int col = 0; col < 4; ++col) {
        int pivot = col;
        for (int r = col + 1; r < 4; ++r)
            if (std::fabs(a[r][col]) > std::fabs(a[pivot][col])) pivot = r;
        if (a[pivot][col] == 0.0) return kIdentity;
        if (pivot != col)
            for (int j = 0; j < 8; ++j) std::swap(a[pivot][j], a[col][j]);
        double inv = 1.0 / a[col][col];
        for (int j = 0; j < 8; ++j) a[col][j] *= inv;
        for (int r = 0; r < 4; ++r) {
            if (r == col || a[r][col] == 0.0) continue;
            double f = a[r][col];
            for (int j = 0; j < 8; ++j) a[r][j] -= f * a[col][j];
        }
    }
    AcGeMatrix3d r;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) r.entry[i][j] = a[i][j + 4];
    return r;
}

bool AcGeMatrix3d::isEqualTo(const AcGeMatrix3d& m, const AcGeTol& tol) const {
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            if (std::fabs(entry[i][j] - m.entry[i][j]) > tol.equalVector()) return false;
    return true;
}

bool AcGeMatrix3d::isUniScaledOrtho(const AcGeTol& tol) const {
    AcGeVector3d cols[3];
    for (int j = 0; j < 3; ++j) cols[j] = {entry[0][j], entry[1][j], entry[2][j]};
    double len = cols[0].length();
    const double eps = std::max(tol.equalVector(), 1e-9) * std::max(len, 1.0);
    for (int j = 0; j < 3; ++j)
        if (std::fabs(cols[j].length() - len) > eps) return false;
    return std::fabs(cols[0].dotProduct(cols[1])) <= eps * len &&
           std::fabs(cols[1].dotProduct(cols[2])) <= eps * len &&
           std::fabs(cols[0].dotProduct(cols[2])) <= eps * len;
}

double AcGeMatrix3d::scale() const { return std::cbrt(std::fabs(det())); }

AcGePoint3d AcGeMatrix3d::apply(const AcGePoint3d& p) const {
    AcGePoint3d r;
    for (int i = 0; i < 3; ++i)
        r[i] = entry[i][0] * p.x + entry[i][1] * p.y + entry[i][2] * p.z + entry[i][3];
    return r;
}

AcGeVector3d AcGeMatrix3d::apply(const AcGeVector3d& v) const {
    AcGeVector3d r;
    for (int i = 0; i < 3; ++i) r[i] = entry[i][0] * v.x + entry[i][1] * v.y + entry[i][2] * v.z;
    return r;
}
