#include "platform/db/dimension.hpp"

#include "platform/db/database.hpp"

ACRX_DEFINE_MEMBERS(AcDbDimension, AcDbEntity, L"DIMENSION")
ACRX_DEFINE_MEMBERS(AcDbRotatedDimension, AcDbDimension, L"DIMENSION")
ACRX_DEFINE_MEMBERS(AcDbAlignedDimension, AcDbDimension, L"DIMENSION")
ACRX_DEFINE_MEMBERS(AcDbOrdinateDimension, AcDbDimension, L"DIMENSION")
ACRX_DEFINE_MEMBERS(AcDbDiametricDimension, AcDbDimension, L"DIMENSION")
ACRX_DEFINE_MEMBERS(AcDbRadialDimension, AcDbDimension, L"DIMENSION")
ACRX_DEFINE_MEMBERS(AcDb2LineAngularDimension, AcDbDimension, L"DIMENSION")
ACRX_DEFINE_MEMBERS(AcDbCarriedDimension, AcDbDimension, L"DIMENSION")

void AcDbDimension::setDatabaseDefaults(AcDbDatabase* db) {
    AcDbEntity::setDatabaseDefaults(db);
    if (db == nullptr) db = acdbHostApplicationServices()->workingDatabase();
    if (db != nullptr) m_style = db->dimstyle();
}

void AcDbDimension::collectReferences(AcDbObjectIdArray& refs) const {
    AcDbEntity::collectReferences(refs);
    if (!m_style.isNull()) refs.append(m_style);
    if (!m_block.isNull()) refs.append(m_block);
}

void AcDbDimension::remapReferences(const AcDbIdMapper& map) {
    AcDbEntity::remapReferences(map);
    if (!m_style.isNull()) m_style = map(m_style);
    if (!m_block.isNull()) m_block = map(m_block);
}

// ---- Constructors ----

AcDbRotatedDimension::AcDbRotatedDimension(double rotation, const AcGePoint3d& xLine1Point,
                                           const AcGePoint3d& xLine2Point,
                                           const AcGePoint3d& dimLinePoint,
                                           const std::wstring& dimText, AcDbObjectId dimStyle)
    : m_xLine1(xLine1Point), m_xLine2(xLine2Point), m_dimLine(dimLinePoint), m_rotation(rotation) {
    setDimensionText(dimText);
    setDimensionStyle(dimStyle);
}

AcDbAlignedDimension::AcDbAlignedDimension(const AcGePoint3d& xLine1Point,
                                           const AcGePoint3d& xLine2Point,
                                           const AcGePoint3d& dimLinePoint,
                                           const std::wstring& dimText, AcDbObjectId dimStyle)
    : m_xLine1(xLine1Point), m_xLine2(xLine2Point), m_dimLine(dimLinePoint) {
    setDimensionText(dimText);
    setDimensionStyle(dimStyle);
}

AcDbOrdinateDimension::AcDbOrdinateDimension(bool useXAxis, const AcGePoint3d& definingPoint,
                                             const AcGePoint3d& leaderEndPoint,
                                             const std::wstring& dimText, AcDbObjectId dimStyle)
    : m_useXAxis(useXAxis), m_definingPoint(definingPoint), m_leaderEnd(leaderEndPoint) {
    setDimensionText(dimText);
    setDimensionStyle(dimStyle);
}
