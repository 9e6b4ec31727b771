#pragma once
// What the clean-ups need to know of an entity behind an id: its type code in one of two
// numberings (a small code and a 2000-series code, both by the exact run-time class name), and
// the geometry of a curve held in a plain record after the entity is closed.
#include <string>

#include "platform/db/entity.hpp"
#include "platform/ge/array.hpp"
#include "platform/ge/point3d.hpp"

// The small code: 1 line, 2 circle, 3 arc, 4 polyline, 16 ellipse, 5 spline, 6 multi-line text,
// 7 to 12 the dimensions, 13 block reference, 14 leader, 15 text, 17 multi-leader, 18 point,
// 0 anything else (a class derived from one of these included).
int EntityKindOf(const AcDbEntity* entity);
// The same for an id; -1 when the entity does not open for read.
int EntityKindOfId(AcDbObjectId id);
// The 2000-series code: 2000 + the small code, and 2018 to 2023 for region, 3D solid, mesh,
// feature control frame, 2D and 3D polyline, 2024 for a point; 2000 for anything else.
int EntityTypeOf(const AcDbEntity* entity);
// The same for an id; 0 when the entity does not open for read.
int EntityTypeOfId(AcDbObjectId id);

// One curve's geometry, kept by value. Filled from an id for lines, circles, arcs, polylines
// and splines; arcs and polylines carry the circle's code 2002 (tell them apart by their ends
// and points), and an ellipse or any other class leaves the record empty with a null id.
struct tCurve {
    tCurve() = default;
    explicit tCurve(AcDbObjectId entityId);

    int typeCode = 0;
    AcDbObjectId id;
    // The box of a spline's stretch points in the plane; both corners keep the first point's z.
    AcGePoint3d boxMin;
    AcGePoint3d boxMax;
    // The entity's own linetype name as stored, and its linetype scale.
    std::wstring linetype;
    double linetypeScale = 0.0;
    AcGePoint3d center;
    double radius = 0.0;
    AcGePoint3d startPoint;
    // The point at the half of the parameter range.
    AcGePoint3d midPoint;
    AcGePoint3d endPoint;
    // A polyline's vertices or a spline's stretch points.
    AcGePoint3dArray points{0, 8};
};
