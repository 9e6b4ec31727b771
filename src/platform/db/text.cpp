#include "platform/db/text.hpp"

#include <cmath>

#include "platform/db/ocs.hpp"
#include "platform/db/text_metrics.hpp"

ACRX_DEFINE_MEMBERS(AcDbText, AcDbEntity, L"TEXT")
ACRX_DEFINE_MEMBERS(AcDbAttributeDefinition, AcDbText, L"ATTDEF")
ACRX_DEFINE_MEMBERS(AcDbAttribute, AcDbText, L"ATTRIB")

Acad::ErrorStatus AcDbText::mirrorInX(bool on) {
    m_generation = on ? (m_generation | 2) : (m_generation & ~2);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::mirrorInY(bool on) {
    m_generation = on ? (m_generation | 4) : (m_generation & ~4);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::getGeomExtents(AcDbExtents& extents) const {
    if (m_text.empty()) return Acad::eInvalidExtents;
    double width = tavrik::text_metrics::lineWidth(m_text, m_height, m_widthFactor);
    // The base line runs from the position along the rotation; for justified text the
    // alignment point holds the justified place, so the line is shifted to start left of it.
    const AcGeVector3d plane = m_extrusion.normal();
    AcGeVector3d along = tavrik::ocs::directionInPlane(m_rotation, plane);
    AcGeVector3d up = plane.crossProduct(along).normal();
    AcGePoint3d start = m_position;
    if (!isDefaultAlignment()) {
        double shift = m_horz == AcDb::kTextCenter || m_horz == AcDb::kTextMid ? width / 2
                       : m_horz == AcDb::kTextRight                            ? width
                                                                                : 0.0;
        start = m_alignment - along * shift;
        if (m_vert == AcDb::kTextVertMid || m_horz == AcDb::kTextMid) start -= up * (m_height / 2);
        if (m_vert == AcDb::kTextTop) start -= up * m_height;
    }
    extents = AcDbExtents();
    extents.addPoint(start);
    extents.addPoint(start + along * width);
    extents.addPoint(start + up * m_height);
    extents.addPoint(start + along * width + up * m_height);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::transformBy(const AcGeMatrix3d& xform) {
    double scale = 1.0;
    if (!tavrik::ocs::uniformScale(xform, scale)) return Acad::eCannotScaleNonUniformly;
    AcGeVector3d along = xform.apply(tavrik::ocs::directionInPlane(m_rotation, m_extrusion.normal()));
    m_position.transformBy(xform);
    m_alignment.transformBy(xform);
    m_extrusion.setNormal(xform.apply(m_extrusion.normal()).normal());
    m_height *= scale;
    m_rotation = tavrik::ocs::angleInPlane(along, m_extrusion.normal());
    if (xform.det() < 0) mirrorInX(!isMirroredInX());
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::getStretchPoints(AcGePoint3dArray& points) const {
    points.append(isDefaultAlignment() ? m_position : m_alignment);
    return Acad::eOk;
}

void AcDbText::collectReferences(AcDbObjectIdArray& refs) const {
    AcDbEntity::collectReferences(refs);
    if (!m_style.isNull()) refs.append(m_style);
}

void AcDbText::assignTextData(const AcDbText& o) {
    m_position = o.m_position;
    m_alignment = o.m_alignment;
    m_height = o.m_height;
    m_widthFactor = o.m_widthFactor;
    m_rotation = o.m_rotation;
    m_oblique = o.m_oblique;
    m_text = o.m_text;
    m_style = o.m_style;
    m_horz = o.m_horz;
    m_vert = o.m_vert;
    m_extrusion = o.m_extrusion;
    m_generation = o.m_generation;
}

void AcDbText::remapReferences(const AcDbIdMapper& map) {
    AcDbEntity::remapReferences(map);
    if (!m_style.isNull()) m_style = map(m_style);
}

Acad::ErrorStatus AcDbAttribute::setAttributeFromBlock(const AcDbAttributeDefinition* def,
                                                       const AcGeMatrix3d& blockTransform) {
    if (def == nullptr) return Acad::eNullObjectPointer;
    assignTextData(*def);
    setPropertiesFrom(def);
    m_tag = def->tag();
    m_flags = def->attributeFlags();
    m_fieldLength = def->fieldLength();
    return transformBy(blockTransform);
}
