#include <cmath>
#include <numbers>

#include "platform/ge/angle.hpp"
#include "platform/ge/matrix3d.hpp"
#include "platform/ge/plane.hpp"
#include "platform/ge/point2d.hpp"
#include "platform/ge/point3d.hpp"

const AcGeVector2d AcGeVector2d::kIdentity{0, 0};
const AcGeVector2d AcGeVector2d::kXAxis{1, 0};
const AcGeVector2d AcGeVector2d::kYAxis{0, 1};
const AcGePoint2d AcGePoint2d::kOrigin{0, 0};
const AcGeVector3d AcGeVector3d::kIdentity{0, 0, 0};
const AcGeVector3d AcGeVector3d::kXAxis{1, 0, 0};
const AcGeVector3d AcGeVector3d::kYAxis{0, 1, 0};
const AcGeVector3d AcGeVector3d::kZAxis{0, 0, 1};
const AcGePoint3d AcGePoint3d::kOrigin{0, 0, 0};
const AcGeScale3d AcGeScale3d::kIdentity{1, 1, 1};

using tavrik::ge::kTwoPi;
using tavrik::ge::wrapTwoPi;

// ---- AcGeVector2d ----
double AcGeVector2d::length() const { return std::hypot(x, y); }
double AcGeVector2d::angle() const { return wrapTwoPi(std::atan2(y, x)); }
double AcGeVector2d::angleTo(const AcGeVector2d& v) const {
    return std::fabs(std::atan2(crossProduct(v), dotProduct(v)));
}
AcGeVector2d AcGeVector2d::normal(const AcGeTol& tol) const {
    double len = length();
    if (len <= tol.equalVector()) return *this;
    return {x / len, y / len};
}
AcGeVector2d& AcGeVector2d::normalize(const AcGeTol& tol) { return *this = normal(tol); }
AcGeVector2d& AcGeVector2d::rotateBy(double a) {
    double c = std::cos(a), s = std::sin(a);
    *this = {x * c - y * s, x * s + y * c};
    return *this;
}
bool AcGeVector2d::isZeroLength(const AcGeTol& tol) const { return length() <= tol.equalVector(); }
bool AcGeVector2d::isEqualTo(const AcGeVector2d& v, const AcGeTol& tol) const {
    return std::fabs(x - v.x) <= tol.equalVector() && std::fabs(y - v.y) <= tol.equalVector();
}

// ---- AcGePoint2d ----
double AcGePoint2d::distanceTo(const AcGePoint2d& p) const { return std::hypot(x - p.x, y - p.y); }
bool AcGePoint2d::isEqualTo(const AcGePoint2d& p, const AcGeTol& tol) const {
    return distanceTo(p) <= tol.equalPoint();
}

// ---- AcGeVector3d ----
double AcGeVector3d::length() const { return std::sqrt(lengthSqrd()); }
double AcGeVector3d::angleTo(const AcGeVector3d& v) const {
    return std::atan2(crossProduct(v).length(), dotProduct(v));
}
double AcGeVector3d::angleTo(const AcGeVector3d& v, const AcGeVector3d& refVector) const {
    AcGeVector3d cross = crossProduct(v);
    double angle = std::atan2(cross.length(), dotProduct(v));
    if (cross.dotProduct(refVector) < 0) angle = kTwoPi - angle;
    return wrapTwoPi(angle);
}
AcGeVector3d AcGeVector3d::normal(const AcGeTol& tol) const {
    double len = length();
    if (len <= tol.equalVector()) return *this;
    return *this / len;
}
AcGeVector3d& AcGeVector3d::normalize(const AcGeTol& tol) { return *this = normal(tol); }
AcGeVector3d AcGeVector3d::perpVector() const {
    // The arbitrary-axis rule of the drawing format: near the z axis use the world y axis.
    AcGeVector3d n = normal();
    AcGeVector3d ax = (std::fabs(n.x) < 1.0 / 64 && std::fabs(n.y) < 1.0 / 64)
                          ? kYAxis.crossProduct(n)
                          : kZAxis.crossProduct(n);
    return ax.normal();
}
AcGeVector3d& AcGeVector3d::rotateBy(double angle, const AcGeVector3d& axis) {
    return transformBy(AcGeMatrix3d::rotation(angle, axis));
}
AcGeVector3d& AcGeVector3d::transformBy(const AcGeMatrix3d& m) { return *this = m.apply(*this); }
AcGeVector3d& AcGeVector3d::mirror(const AcGeVector3d& normalToPlane) {
    AcGeVector3d n = normalToPlane.normal();
    return *this -= n * (2.0 * dotProduct(n));
}
bool AcGeVector3d::isZeroLength(const AcGeTol& tol) const { return length() <= tol.equalVector(); }
bool AcGeVector3d::isUnitLength(const AcGeTol& tol) const {
    return std::fabs(length() - 1.0) <= tol.equalVector();
}
bool AcGeVector3d::isParallelTo(const AcGeVector3d& v, const AcGeTol& tol) const {
    return normal().crossProduct(v.normal()).length() <= tol.equalVector();
}
bool AcGeVector3d::isCodirectionalTo(const AcGeVector3d& v, const AcGeTol& tol) const {
    return normal().isEqualTo(v.normal(), tol);
}
bool AcGeVector3d::isPerpendicularTo(const AcGeVector3d& v, const AcGeTol& tol) const {
    return std::fabs(normal().dotProduct(v.normal())) <= tol.equalVector();
}
bool AcGeVector3d::isEqualTo(const AcGeVector3d& v, const AcGeTol& tol) const {
    return std::fabs(x - v.x) <= tol.equalVector() && std::fabs(y - v.y) <= tol.equalVector() &&
           std::fabs(z - v.z) <= tol.equalVector();
}

// ---- AcGePoint3d ----
AcGePoint3d::AcGePoint3d(const AcGePlane& plane, const AcGePoint2d& pnt) {
    *this = plane.evalPoint(pnt);
}
double AcGePoint3d::distanceTo(const AcGePoint3d& p) const { return (*this - p).length(); }
AcGePoint3d& AcGePoint3d::transformBy(const AcGeMatrix3d& m) { return *this = m.apply(*this); }
AcGePoint3d& AcGePoint3d::rotateBy(double angle, const AcGeVector3d& axis,
                                   const AcGePoint3d& wrtPoint) {
    return transformBy(AcGeMatrix3d::rotation(angle, axis, wrtPoint));
}
AcGePoint3d& AcGePoint3d::scaleBy(double factor, const AcGePoint3d& wrtPoint) {
    return *this = wrtPoint + (*this - wrtPoint) * factor;
}
AcGePoint3d& AcGePoint3d::mirror(const AcGePlane& plane) {
    return transformBy(AcGeMatrix3d::mirroring(plane));
}
AcGePoint2d AcGePoint3d::convert2d(const AcGePlane& plane) const { return plane.paramOf(*this); }
bool AcGePoint3d::isEqualTo(const AcGePoint3d& p, const AcGeTol& tol) const {
    return distanceTo(p) <= tol.equalPoint();
}

bool AcGeScale3d::isEqualTo(const AcGeScale3d& s, const AcGeTol& tol) const {
    return std::fabs(sx - s.sx) <= tol.equalVector() && std::fabs(sy - s.sy) <= tol.equalVector() &&
           std::fabs(sz - s.sz) <= tol.equalVector();
}
