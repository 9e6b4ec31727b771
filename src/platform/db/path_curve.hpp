#pragma once
#include <optional>

#include "platform/db/curve.hpp"
#include "platform/ge/path3d.hpp"

// The curve operations of the polyline classes, answered from the chain of segments they
// draw. An empty optional stands for a polyline without vertices: every operation fails with
// eDegenerateGeometry.
namespace tavrik::path_curve {

using MaybePath = std::optional<ge::Path3d>;

Acad::ErrorStatus startParam(const MaybePath& path, double& param);
Acad::ErrorStatus endParam(const MaybePath& path, double& param);
Acad::ErrorStatus startPoint(const MaybePath& path, AcGePoint3d& point);
Acad::ErrorStatus endPoint(const MaybePath& path, AcGePoint3d& point);
Acad::ErrorStatus pointAtParam(const MaybePath& path, double param, AcGePoint3d& point);
Acad::ErrorStatus paramAtPoint(const MaybePath& path, const AcGePoint3d& point, double& param);
Acad::ErrorStatus distAtParam(const MaybePath& path, double param, double& dist);
Acad::ErrorStatus firstDeriv(const MaybePath& path, double param, AcGeVector3d& deriv);
Acad::ErrorStatus closestPointTo(const MaybePath& path, const AcGePoint3d& given,
                                 AcGePoint3d& closest);
Acad::ErrorStatus geomExtents(const MaybePath& path, AcDbExtents& extents);
// One line or arc per segment of non-zero length, with the source's properties; arcs run
// counter-clockwise about the normal, so a clockwise segment becomes an arc whose start is
// the segment's end.
Acad::ErrorStatus explode(const MaybePath& path, const AcGeVector3d& normal,
                          const AcDbEntity& source, AcDbVoidPtrArray& entitySet);

}  // namespace tavrik::path_curve
