#include "platform/db/carried.hpp"

ACRX_DEFINE_MEMBERS(AcDbCarriedEntity, AcDbEntity, L"")
ACRX_DEFINE_MEMBERS(AcDbLeader, AcDbCarriedEntity, L"LEADER")
ACRX_DEFINE_MEMBERS(AcDbMLeader, AcDbCarriedEntity, L"MULTILEADER")
ACRX_DEFINE_MEMBERS(AcDbRegion, AcDbCarriedEntity, L"REGION")
ACRX_DEFINE_MEMBERS(AcDb3dSolid, AcDbCarriedEntity, L"3DSOLID")
ACRX_DEFINE_MEMBERS(AcDbBody, AcDbCarriedEntity, L"BODY")
ACRX_DEFINE_MEMBERS(AcDbSubDMesh, AcDbCarriedEntity, L"MESH")
ACRX_DEFINE_MEMBERS(AcDbFcf, AcDbCarriedEntity, L"TOLERANCE")
ACRX_DEFINE_MEMBERS(AcDbHatch, AcDbCarriedEntity, L"HATCH")
ACRX_DEFINE_MEMBERS(AcDbSolid, AcDbCarriedEntity, L"SOLID")
ACRX_DEFINE_MEMBERS(AcDbFace, AcDbCarriedEntity, L"3DFACE")
ACRX_DEFINE_MEMBERS(AcDbTrace, AcDbCarriedEntity, L"TRACE")
ACRX_DEFINE_MEMBERS(AcDbViewport, AcDbCarriedEntity, L"VIEWPORT")
ACRX_DEFINE_MEMBERS(AcDbRasterImage, AcDbCarriedEntity, L"IMAGE")
ACRX_DEFINE_MEMBERS(AcDbWipeout, AcDbCarriedEntity, L"WIPEOUT")
ACRX_DEFINE_MEMBERS(AcDbRay, AcDbCarriedEntity, L"RAY")
ACRX_DEFINE_MEMBERS(AcDbXline, AcDbCarriedEntity, L"XLINE")
ACRX_DEFINE_MEMBERS(AcDbTable, AcDbCarriedEntity, L"ACAD_TABLE")
ACRX_DEFINE_MEMBERS(AcDbPolyFaceMesh, AcDbCarriedEntity, L"POLYLINE")
ACRX_DEFINE_MEMBERS(AcDbPolygonMesh, AcDbCarriedEntity, L"POLYLINE")
ACRX_DEFINE_MEMBERS(AcDbUnknownEntity, AcDbCarriedEntity, L"")
ACRX_DEFINE_MEMBERS(AcDbUnknownObject, AcDbObject, L"")

Acad::ErrorStatus AcDbCarriedEntity::transformBy(const AcGeMatrix3d& xform) {
    return xform.isEqualTo(AcGeMatrix3d::kIdentity) ? Acad::eOk : Acad::eNotApplicable;
}
