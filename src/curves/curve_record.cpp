#include "curves/curve_record.hpp"

#include <cwchar>

#include "platform/db/arc.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/line.hpp"
#include "platform/db/polyline.hpp"
#include "platform/db/spline.hpp"

namespace {

// The class names in the order they are tried, with their small and 2000-series codes.
struct TypeRow {
    const wchar_t* className;
    int kind;
    int type;
};

constexpr TypeRow kTypeRows[] = {
    {L"AcDbLine", 1, 2001},
    {L"AcDbCircle", 2, 2002},
    {L"AcDbArc", 3, 2003},
    {L"AcDbPolyline", 4, 2004},
    {L"AcDbEllipse", 16, 2016},
    {L"AcDbSpline", 5, 2005},
    {L"AcDbMText", 6, 2006},
    {L"AcDbRotatedDimension", 7, 2007},
    {L"AcDbAlignedDimension", 8, 2008},
    {L"AcDbDiametricDimension", 9, 2009},
    {L"AcDbRadialDimension", 10, 2010},
    {L"AcDbOrdinateDimension", 11, 2011},
    {L"AcDb2LineAngularDimension", 12, 2012},
    {L"AcDbBlockReference", 13, 2013},
    {L"AcDbLeader", 14, 2014},
    {L"AcDbText", 15, 2015},
    {L"AcDbMLeader", 17, 2017},
    {L"AcDbRegion", 0, 2018},
    {L"AcDb3dSolid", 0, 2019},
    {L"AcDbSubDMesh", 0, 2020},
    {L"AcDbFcf", 0, 2021},
    {L"AcDb2dPolyline", 0, 2022},
    {L"AcDb3dPolyline", 0, 2023},
    {L"AcDbPoint", 18, 2024},
};
constexpr TypeRow kUnknownType = {L"", 0, 2000};

// The row of the entity's exact class name; a derived class is not its parent's.
const TypeRow& TypeRowOf(const AcDbEntity* entity) {
    const wchar_t* name = entity->isA()->name();
    for (const TypeRow& row : kTypeRows)
        if (std::wcscmp(row.className, name) == 0) return row;
    return kUnknownType;
}

bool IsClass(const AcDbEntity* entity, const wchar_t* className) {
    return std::wcscmp(entity->isA()->name(), className) == 0;
}

// The ends and the point at the half parameter of any curve.
void FillEnds(const AcDbCurve* curve, tCurve& record) {
    double startParam = 0.0, endParam = 0.0;
    curve->getStartParam(startParam);
    curve->getEndParam(endParam);
    curve->getStartPoint(record.startPoint);
    curve->getPointAtParam((endParam - startParam) * 0.5 + startParam, record.midPoint);
    curve->getEndPoint(record.endPoint);
}

void FillLine(const AcDbLine* line, tCurve& record) {
    double startParam = 0.0, endParam = 0.0;
    line->getStartParam(startParam);
    line->getEndParam(endParam);
    record.startPoint = line->startPoint();
    line->getPointAtParam((endParam - startParam) * 0.5 + startParam, record.midPoint);
    record.endPoint = line->endPoint();
}

void FillPolylineVertices(const AcDbPolyline* polyline, tCurve& record) {
    for (unsigned int i = 0; i < polyline->numVerts(); ++i) {
        AcGePoint3d vertex;
        polyline->getPointAt(i, vertex);
        record.points.append(vertex);
    }
}

// Both corners start at the first stretch point; x and y widen them, z stays the first one's.
void FillSplineBox(tCurve& record) {
    if (record.points.isEmpty()) return;
    record.boxMin = record.boxMax = record.points.first();
    for (int i = 1; i < record.points.length(); ++i) {
        const AcGePoint3d& p = record.points[i];
        if (p.x < record.boxMin.x) record.boxMin.x = p.x;
        if (p.y < record.boxMin.y) record.boxMin.y = p.y;
        if (p.x > record.boxMax.x) record.boxMax.x = p.x;
        if (p.y > record.boxMax.y) record.boxMax.y = p.y;
    }
}

// Fills the record from an open entity of one of the recorded classes. An ellipse passes the
// class test and is yet left empty.
void FillRecord(const AcDbEntity* entity, AcDbObjectId entityId, tCurve& record) {
    auto start = [&](int code) {
        record.typeCode = code;
        record.id = entityId;
        record.linetype = entity->linetype();
        record.linetypeScale = entity->linetypeScale();
    };
    if (IsClass(entity, L"AcDbLine")) {
        start(2001);
        FillLine(AcDbLine::cast(entity), record);
    } else if (IsClass(entity, L"AcDbCircle")) {
        start(2002);
        record.center = AcDbCircle::cast(entity)->center();
        record.radius = AcDbCircle::cast(entity)->radius();
    } else if (IsClass(entity, L"AcDbArc")) {
        start(2002);
        record.center = AcDbArc::cast(entity)->center();
        record.radius = AcDbArc::cast(entity)->radius();
        FillEnds(AcDbArc::cast(entity), record);
    } else if (IsClass(entity, L"AcDbPolyline")) {
        start(2002);
        FillEnds(AcDbPolyline::cast(entity), record);
        FillPolylineVertices(AcDbPolyline::cast(entity), record);
    } else if (IsClass(entity, L"AcDbSpline")) {
        start(2005);
        FillEnds(AcDbSpline::cast(entity), record);
        entity->getStretchPoints(record.points);
        FillSplineBox(record);
    }
}

}  // namespace

int EntityKindOf(const AcDbEntity* entity) { return TypeRowOf(entity).kind; }

int EntityTypeOf(const AcDbEntity* entity) { return TypeRowOf(entity).type; }

int EntityKindOfId(AcDbObjectId id) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead, false) != Acad::eOk) return -1;
    int kind = EntityKindOf(entity);
    entity->close();
    return kind;
}

int EntityTypeOfId(AcDbObjectId id) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead, false) != Acad::eOk) return 0;
    int type = EntityTypeOf(entity);
    entity->close();
    return type;
}

tCurve::tCurve(AcDbObjectId entityId) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, entityId, AcDb::kForRead, false) != Acad::eOk) return;
    FillRecord(entity, entityId, *this);
    entity->close();
}
