// The kit's functions that read or make entities: bulge of an arc, lengths and points of
// curves, new lines, arcs and circles. Angles are degrees here and become radians only at the
// entity's constructor.
#include <cmath>

#include "curves/curve_record.hpp"
#include "curves/geometry.hpp"
#include "platform/db/arc.hpp"
#include "platform/db/circle.hpp"

double ArcBulge(const AcDbEntity* entity) {
    if (EntityTypeOf(entity) != 2003) return 0.0;
    const auto* arc = AcDbArc::cast(entity);
    if (arc == nullptr) return 0.0;
    double start = arc->startAngle();
    double end = arc->endAngle();
    if (end < start) start -= 8.0 * std::atan(1.0);
    return std::tan((end - start) * 0.25);
}

double CurveLength(const AcDbCurve* curve) {
    double endParam = 0.0, length = 0.0;
    curve->getEndParam(endParam);
    curve->getDistAtParam(endParam, length);
    return length;
}

double CurveLengthOfId(AcDbObjectId id) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead, false) != Acad::eOk) return -1.0;
    const auto* curve = AcDbCurve::cast(entity);
    double length = curve != nullptr ? CurveLength(curve) : 0.0;
    entity->close();
    return length;
}

AcGePoint3d CurvePointAt(AcDbObjectId id, double fraction) {
    AcGePoint3d point(0.0, 0.0, 0.0);
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead, false) != Acad::eOk) return point;
    if (const auto* curve = AcDbCurve::cast(entity)) {
        if (fraction == 0.0) {
            curve->getStartPoint(point);
        } else if (fraction == 1.0) {
            curve->getEndPoint(point);
        } else {
            double startParam = 0.0, endParam = 0.0;
            curve->getStartParam(startParam);
            curve->getEndParam(endParam);
            curve->getPointAtParam((endParam - startParam) * fraction, point);
        }
    }
    entity->close();
    return point;
}

void MakeLine(const AcGePoint3d& start, const AcGePoint3d& end, AcDbLine*& line) {
    line = new AcDbLine(start, end);
}

void MakeArcOrCircle(const AcGePoint3d& center, double radius, double startAngle, double endAngle,
                     AcDbEntity*& entity) {
    if (endAngle == 360.0 && startAngle == 0.0) {
        entity = new AcDbCircle(center, AcGeVector3d(0.0, 0.0, 1.0), radius);
        return;
    }
    entity = new AcDbArc(center, radius, startAngle * 3.141592653589793 / 180,
                         endAngle * 3.141592653589793 / 180);
}

void MakeArcThroughPoints(const AcGePoint3d& start, const AcGePoint3d& mid, const AcGePoint3d& end,
                          AcDbEntity*& entity) {
    AcGePoint3d center;
    double radius = 0.0;
    if (!CircleFromThreePoints(start, mid, end, center, radius)) return;
    double startAngle = PolarAngle(center, start, true);
    double endAngle = PolarAngle(center, end, true);
    double cross = (mid.x - start.x) * (end.y - mid.y) - (mid.y - start.y) * (end.x - mid.x);
    if (cross > 0.0)
        MakeArcOrCircle(center, radius, startAngle, endAngle, entity);
    else
        MakeArcOrCircle(center, radius, endAngle, startAngle, entity);
}
