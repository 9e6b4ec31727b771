#include "platform/db/path_curve.hpp"

#include "platform/db/arc.hpp"
#include "platform/db/curve_params.hpp"
#include "platform/db/line.hpp"
#include "platform/ge/angle.hpp"
#include "platform/ge/platform_tolerances.hpp"

namespace tavrik::path_curve {
namespace {

std::optional<double> paramOnPath(const ge::Path3d& path, double param) {
    return curve_params::onRange(param, 0.0, ge::endParam(path));
}

AcDbEntity* entityOf(const ge::PathSegment3d& segment, const AcGeVector3d& normal) {
    if (!segment.arc) return new AcDbLine(segment.start, segment.end);
    const ge::EllipticArc& a = *segment.arc;
    const bool clockwise = a.end < a.start;
    return new AcDbArc(a.center, normal, a.u.length(), ge::wrapTwoPi(clockwise ? a.end : a.start),
                       ge::wrapTwoPi(clockwise ? a.start : a.end));
}

}  // namespace

Acad::ErrorStatus startParam(const MaybePath& path, double& param) {
    if (!path) return Acad::eDegenerateGeometry;
    param = 0.0;
    return Acad::eOk;
}

Acad::ErrorStatus endParam(const MaybePath& path, double& param) {
    if (!path) return Acad::eDegenerateGeometry;
    param = ge::endParam(*path);
    return Acad::eOk;
}

Acad::ErrorStatus startPoint(const MaybePath& path, AcGePoint3d& point) {
    if (!path) return Acad::eDegenerateGeometry;
    point = path->first;
    return Acad::eOk;
}

Acad::ErrorStatus endPoint(const MaybePath& path, AcGePoint3d& point) {
    if (!path) return Acad::eDegenerateGeometry;
    point = ge::pointAtParam(*path, ge::endParam(*path));
    return Acad::eOk;
}

Acad::ErrorStatus pointAtParam(const MaybePath& path, double param, AcGePoint3d& point) {
    if (!path) return Acad::eDegenerateGeometry;
    std::optional<double> t = paramOnPath(*path, param);
    if (!t) return Acad::eInvalidInput;
    point = ge::pointAtParam(*path, *t);
    return Acad::eOk;
}

Acad::ErrorStatus paramAtPoint(const MaybePath& path, const AcGePoint3d& point, double& param) {
    if (!path) return Acad::eDegenerateGeometry;
    ge::ParamPoint nearest = ge::closestPoint(*path, point);
    if (!curve_params::sameLocation(nearest.point, point)) return Acad::ePointNotOnEntity;
    param = nearest.param;
    return Acad::eOk;
}

Acad::ErrorStatus distAtParam(const MaybePath& path, double param, double& dist) {
    if (!path) return Acad::eDegenerateGeometry;
    std::optional<double> t = paramOnPath(*path, param);
    if (!t) return Acad::eInvalidInput;
    dist = ge::lengthAtParam(*path, *t);
    return Acad::eOk;
}

Acad::ErrorStatus firstDeriv(const MaybePath& path, double param, AcGeVector3d& deriv) {
    if (!path) return Acad::eDegenerateGeometry;
    std::optional<double> t = paramOnPath(*path, param);
    if (!t) return Acad::eInvalidInput;
    deriv = ge::derivativeAtParam(*path, *t);
    return Acad::eOk;
}

Acad::ErrorStatus closestPointTo(const MaybePath& path, const AcGePoint3d& given,
                                 AcGePoint3d& closest) {
    if (!path) return Acad::eDegenerateGeometry;
    closest = ge::closestPoint(*path, given).point;
    return Acad::eOk;
}

Acad::ErrorStatus geomExtents(const MaybePath& path, AcDbExtents& extents) {
    if (!path) return Acad::eInvalidExtents;
    AcDbExtents box;
    box.addPoint(path->first);
    for (const ge::PathSegment3d& s : path->segments) {
        box.addPoint(s.end);
        if (!s.arc) continue;
        ge::Box3d arcBox = ge::boundingBox(*s.arc);
        box.addPoint(arcBox.min);
        box.addPoint(arcBox.max);
    }
    extents = box;
    return Acad::eOk;
}

Acad::ErrorStatus explode(const MaybePath& path, const AcGeVector3d& normal,
                          const AcDbEntity& source, AcDbVoidPtrArray& entitySet) {
    if (!path) return Acad::eDegenerateGeometry;
    for (const ge::PathSegment3d& s : path->segments) {
        if (ge::segmentLength(s) <= platform_tol::kZeroLength) continue;
        AcDbEntity* piece = entityOf(s, normal);
        piece->setPropertiesFrom(&source);
        entitySet.append(piece);
    }
    return Acad::eOk;
}

}  // namespace tavrik::path_curve
