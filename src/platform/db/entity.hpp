#pragma once
#include <string>

#include "platform/db/color.hpp"
#include "platform/db/entity_look.hpp"
#include "platform/db/extents.hpp"
#include "platform/db/object.hpp"
#include "platform/ge/matrix3d.hpp"

// Base of everything drawn: the common properties every entity has, and the geometric
// operations every entity answers.
class AcDbEntity : public AcDbObject {
public:
    ACRX_DECLARE_ABSTRACT_MEMBERS(AcDbEntity)

    // The entity's own layer and linetype names, as stored (not resolved).
    const std::wstring& layer() const { return m_look.get().layer.str(); }
    AcDbObjectId layerId() const;
    // Sets the layer by name. Fails with eKeyNotFound when the entity's database (or, for a new
    // entity, the working database) has no such layer.
    Acad::ErrorStatus setLayer(const std::wstring& name, bool doSubents = true);
    Acad::ErrorStatus setLayer(AcDbObjectId layerId, bool doSubents = true);
    const std::wstring& linetype() const { return m_look.get().linetype.str(); }
    AcDbObjectId linetypeId() const;
    Acad::ErrorStatus setLinetype(const std::wstring& name, bool doSubents = true);
    Acad::ErrorStatus setLinetype(AcDbObjectId linetypeId, bool doSubents = true);
    double linetypeScale() const { return m_look.get().linetypeScale; }
    Acad::ErrorStatus setLinetypeScale(double scale, bool doSubents = true);
    AcCmColor color() const { return m_look.get().color; }
    Acad::ErrorStatus setColor(const AcCmColor& color, bool doSubents = true);
    std::uint16_t colorIndex() const { return m_look.get().color.colorIndex(); }
    // Index 0 ByBlock, 1-255, 256 ByLayer; anything else fails with eBadColorIndex.
    Acad::ErrorStatus setColorIndex(std::uint16_t index, bool doSubents = true);
    AcDb::LineWeight lineWeight() const { return m_look.get().lineWeight; }
    Acad::ErrorStatus setLineWeight(AcDb::LineWeight weight, bool doSubents = true);
    AcDb::Visibility visibility() const { return m_invisible ? AcDb::kInvisible : AcDb::kVisible; }
    Acad::ErrorStatus setVisibility(AcDb::Visibility v, bool doSubents = true);
    // Unchecked setters for readers of drawing files, which may name a layer or linetype
    // before (or without) its table record.
    void setLayerName(const std::wstring& name) {
        m_look.change([&](AcDbEntityLook& look) { look.layer = name; });
    }
    void setLinetypeName(const std::wstring& name) {
        m_look.change([&](AcDbEntityLook& look) { look.linetype = name; });
    }
    const std::wstring& plotStyleName() const { return m_look.get().plotStyleName.str(); }
    void setPlotStyleName(const std::wstring& name) {
        m_look.change([&](AcDbEntityLook& look) { look.plotStyleName = name; });
    }
    // All six properties of the look at once, unchecked, for readers of drawing files.
    const AcDbEntityLook& look() const { return m_look.get(); }
    void setLook(const AcDbEntityLook& look) { m_look.set(look); }
    // The block record that holds the entity (its owner), or null.
    AcDbObjectId blockId() const { return ownerId(); }
    // True for entities read from or meant for paper space (group code 67).
    bool inPaperSpace() const { return m_paperSpace; }
    void setInPaperSpace(bool paper) { m_paperSpace = paper; }

    // Takes layer, colour, linetype, linetype scale and lineweight from the database's current
    // settings (the working database when db is null).
    void setDatabaseDefaults(AcDbDatabase* db = nullptr);
    // Copies the common properties of another entity.
    void setPropertiesFrom(const AcDbEntity* other, bool doSubents = true);

    // World box of the geometry. eInvalidExtents when there is no geometry to measure.
    virtual Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const;
    virtual Acad::ErrorStatus transformBy(const AcGeMatrix3d& xform);
    // A transformed copy (new, owned by the caller); fails where transformBy would.
    virtual Acad::ErrorStatus getTransformedCopy(const AcGeMatrix3d& xform,
                                                 AcDbEntity*& copy) const;
    // Simpler entities that together draw this one, new and owned by the caller.
    virtual Acad::ErrorStatus explode(AcDbVoidPtrArray& entitySet) const;
    virtual Acad::ErrorStatus getStretchPoints(AcGePoint3dArray& points) const;
    virtual Acad::ErrorStatus getGripPoints(AcGePoint3dArray& points) const {
        return getStretchPoints(points);
    }

    void collectReferences(AcDbObjectIdArray& refs) const override;
    // An entity on a locked layer of its database does not open for write (eOnLockedLayer).
    Acad::ErrorStatus writeRefusal() const override;

protected:
    AcDbEntity() = default;
    AcDbEntity(const AcDbEntity&) = default;

private:
    // The two flags first, where they fill the object's last bytes before the pointers.
    bool m_invisible = false;
    bool m_paperSpace = false;
    AcDbSharedLook m_look;
};

// Opens an entity by id; an object that is not an entity gives eNotAnEntity.
Acad::ErrorStatus acdbOpenAcDbEntity(AcDbEntity*& entity, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased = false);
