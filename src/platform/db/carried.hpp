#pragma once
#include <string>

#include "platform/db/entity.hpp"

// Entities the database carries without modelling their geometry: they keep their drawing-file
// record whole (fileTags) and are written back unchanged. The classes keep the host's names so
// that code telling entities apart by class sees the right one. Moving them under a
// transformation other than the identity is not supported (eNotApplicable).
class AcDbCarriedEntity : public AcDbEntity {
public:
    ACRX_DECLARE_ABSTRACT_MEMBERS(AcDbCarriedEntity)
    Acad::ErrorStatus transformBy(const AcGeMatrix3d& xform) override;

protected:
    AcDbCarriedEntity() = default;
    AcDbCarriedEntity(const AcDbCarriedEntity&) = default;
};

#define TAVRIK_DECLARE_CARRIED_ENTITY(CLASS)        \
    class CLASS : public AcDbCarriedEntity {         \
    public:                                          \
        ACRX_DECLARE_MEMBERS(CLASS)                  \
        CLASS() = default;                           \
    };

TAVRIK_DECLARE_CARRIED_ENTITY(AcDbLeader)
TAVRIK_DECLARE_CARRIED_ENTITY(AcDbMLeader)
TAVRIK_DECLARE_CARRIED_ENTITY(AcDbRegion)
TAVRIK_DECLARE_CARRIED_ENTITY(AcDb3dSolid)
TAVRIK_DECLARE_CARRIED_ENTITY(AcDbBody)
TAVRIK_DECLARE_CARRIED_ENTITY(AcDbSubDMesh)
TAVRIK_DECLARE_CARRIED_ENTITY(AcDbFcf)
TAVRIK_DECLARE_CARRIED_ENTITY(AcDbHatch)
TAVRIK_DECLARE_CARRIED_ENTITY(AcDbSolid)
TAVRIK_DECLARE_CARRIED_ENTITY(AcDbFace)
TAVRIK_DECLARE_CARRIED_ENTITY(AcDbTrace)
TAVRIK_DECLARE_CARRIED_ENTITY(AcDbViewport)
TAVRIK_DECLARE_CARRIED_ENTITY(AcDbRasterImage)
TAVRIK_DECLARE_CARRIED_ENTITY(AcDbWipeout)
TAVRIK_DECLARE_CARRIED_ENTITY(AcDbRay)
TAVRIK_DECLARE_CARRIED_ENTITY(AcDbXline)
TAVRIK_DECLARE_CARRIED_ENTITY(AcDbTable)
TAVRIK_DECLARE_CARRIED_ENTITY(AcDbPolyFaceMesh)
TAVRIK_DECLARE_CARRIED_ENTITY(AcDbPolygonMesh)

// An entity of a kind the database does not know at all, kept under its file name.
class AcDbUnknownEntity : public AcDbCarriedEntity {
public:
    ACRX_DECLARE_MEMBERS(AcDbUnknownEntity)
    AcDbUnknownEntity() = default;
    explicit AcDbUnknownEntity(const std::wstring& dxfName) : m_dxfName(dxfName) {}
    std::wstring dxfName() const { return m_dxfName; }

private:
    std::wstring m_dxfName;
};

// A non-graphical object of a kind the database does not model (dictionaries' entries, layouts,
// xrecords, styles of other applications...), kept whole under its file name.
class AcDbUnknownObject : public AcDbObject {
public:
    ACRX_DECLARE_MEMBERS(AcDbUnknownObject)
    AcDbUnknownObject() = default;
    explicit AcDbUnknownObject(const std::wstring& dxfName) : m_dxfName(dxfName) {}
    std::wstring dxfName() const { return m_dxfName; }

private:
    std::wstring m_dxfName;
};
