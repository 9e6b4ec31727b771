// The clean-ups that change each entity by itself: flatten, linetype scale, short lines and
// points, lineweight. None looks at layers; an entity that does not open is passed over.
#include "cleanup/class_interface_data.hpp"
#include "platform/db/arc.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/line.hpp"

namespace {

AcGePoint3d Flat(AcGePoint3d point) {
    point.z = 0.0;
    return point;
}

// Moves a line's ends, a circle's or an arc's centre onto Z 0; X and Y stay.
void FlattenEntity(AcDbEntity* entity) {
    switch (EntityTypeOf(entity)) {
    case 2001:
        if (auto* line = AcDbLine::cast(entity)) {
            line->setStartPoint(Flat(line->startPoint()));
            line->setEndPoint(Flat(line->endPoint()));
        }
        break;
    case 2002:
        if (auto* circle = AcDbCircle::cast(entity)) circle->setCenter(Flat(circle->center()));
        break;
    case 2003:
        if (auto* arc = AcDbArc::cast(entity)) arc->setCenter(Flat(arc->center()));
        break;
    default:
        break;
    }
}

// The entity's own linetype name; empty when it does not open.
std::wstring LinetypeOf(AcDbObjectId id) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead, false) != Acad::eOk) return L"";
    std::wstring name = entity->linetype();
    entity->close();
    return name;
}

int SetLinetypeScale(AcDbObjectId id, double scale) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite, false) != Acad::eOk) return -1;
    entity->setLinetypeScale(scale, true);
    entity->close();
    return 0;
}

// The length of a curve over its parameter range; 0.0 for anything else.
double CurveLengthOf(AcDbObjectId id) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead, false) != Acad::eOk) return 0.0;
    double length = 0.0;
    if (auto* curve = AcDbCurve::cast(entity)) {
        double startParam = 0.0, endParam = 0.0;
        curve->getStartParam(startParam);
        curve->getEndParam(endParam);
        curve->getDistAtParam((endParam - startParam) * 1.0, length);
    }
    entity->close();
    return length;
}

int EraseEntity(AcDbObjectId id) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite, false) != Acad::eOk) return -1;
    entity->erase(true);
    entity->close();
    return 0;
}

}  // namespace

void ClassInterfaceData::FunCoorToZero() {
    for (const AcDbObjectId& id : GetModelSpaceIds(database)) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite, false) != Acad::eOk) continue;
        FlattenEntity(entity);
        entity->close();
    }
}

// Dashed entities (own linetype name equal to the dashed name, exactly) get VarScale, all others
// exactly 0.0.
void ClassInterfaceData::FunUpLineScale() {
    std::wstring file = CadLineIniPath(CleanupGlobals->UserPath);
    bool open = false;
    double scale = 0.0;
    IniReadBool(file, L"UpLineScale", L"BolOpen", open);
    IniReadDouble(file, L"UpLineScale", L"VarScale", scale);
    if (!open) return;
    for (const AcDbObjectId& id : GetModelSpaceIds(acdbHostApplicationServices()->workingDatabase()))
        SetLinetypeScale(id, LinetypeOf(id) == dottedLinetype ? scale : 0.0);
}

// Erases lines strictly shorter than Tolerance and every point. The snapshot keeps erased ids,
// so after an erase the same index is looked at again; an entity that will not open for write
// (on a locked layer) is tried again without end.
void ClassInterfaceData::FunDeleteSmallLineAndPoint() {
    std::wstring file = CadLineIniPath(CleanupGlobals->UserPath);
    bool open = false;
    double tolerance = 0.0;
    IniReadBool(file, L"DeleteSmallLineAndPoint", L"BolOpen", open);
    IniReadDouble(file, L"DeleteSmallLineAndPoint", L"Tolerance", tolerance);
    if (!open) return;
    AcDbObjectIdArray ids = GetModelSpaceIds(database);
    for (int i = 0; i < ids.length(); ++i) {
        int type = EntityTypeOfId(ids[i]);
        if ((type == 2001 && CurveLengthOf(ids[i]) < tolerance) || type == 2024) {
            EraseEntity(ids[i]);
            --i;
        }
    }
}

// Lineweight 0 (0.00 mm, not ByLayer) on every entity.
void ClassInterfaceData::FunLineWidthToZero() {
    for (const AcDbObjectId& id : GetModelSpaceIds(database)) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite, false) != Acad::eOk) continue;
        entity->setLineWeight(AcDb::kLnWt000, true);
        entity->close();
    }
}
