#pragma once
#include <string>

#include "platform/db/entity.hpp"
#include "platform/db/extrusion.hpp"

// A single line of text. The position is the left end of the base line; for other alignments
// the alignment point carries the justified position, as the host keeps them.
class AcDbText : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(AcDbText)
    AcDbText() = default;
    AcDbText(const AcGePoint3d& position, const std::wstring& text,
             AcDbObjectId style = AcDbObjectId::kNull, double height = 0.0, double rotation = 0.0)
        : m_position(position), m_height(height), m_rotation(rotation), m_text(text),
          m_style(style) {}

    AcGePoint3d position() const { return m_position; }
    Acad::ErrorStatus setPosition(const AcGePoint3d& p) { m_position = p; return Acad::eOk; }
    AcGePoint3d alignmentPoint() const { return m_alignment; }
    Acad::ErrorStatus setAlignmentPoint(const AcGePoint3d& p) { m_alignment = p; return Acad::eOk; }
    bool isDefaultAlignment() const {
        return m_horz == AcDb::kTextLeft && m_vert == AcDb::kTextBase;
    }
    double height() const { return m_height; }
    Acad::ErrorStatus setHeight(double h) { m_height = h; return Acad::eOk; }
    double widthFactor() const { return m_widthFactor; }
    Acad::ErrorStatus setWidthFactor(double f) { m_widthFactor = f; return Acad::eOk; }
    double rotation() const { return m_rotation; }
    Acad::ErrorStatus setRotation(double a) { m_rotation = a; return Acad::eOk; }
    double oblique() const { return m_oblique; }
    Acad::ErrorStatus setOblique(double a) { m_oblique = a; return Acad::eOk; }
    std::wstring textString() const { return m_text; }
    Acad::ErrorStatus setTextString(const std::wstring& text) { m_text = text; return Acad::eOk; }
    AcDbObjectId textStyle() const { return m_style; }
    Acad::ErrorStatus setTextStyle(AcDbObjectId style) { m_style = style; return Acad::eOk; }
    AcDb::TextHorzMode horizontalMode() const { return m_horz; }
    Acad::ErrorStatus setHorizontalMode(AcDb::TextHorzMode m) { m_horz = m; return Acad::eOk; }
    AcDb::TextVertMode verticalMode() const { return m_vert; }
    Acad::ErrorStatus setVerticalMode(AcDb::TextVertMode m) { m_vert = m; return Acad::eOk; }
    AcGeVector3d normal() const { return m_extrusion.normal(); }
    Acad::ErrorStatus setNormal(const AcGeVector3d& n) {
        m_extrusion.setNormal(n);
        return Acad::eOk;
    }
    double thickness() const { return m_extrusion.thickness(); }
    Acad::ErrorStatus setThickness(double t) {
        m_extrusion.setThickness(t);
        return Acad::eOk;
    }
    bool isMirroredInX() const { return (m_generation & 2) != 0; }
    Acad::ErrorStatus mirrorInX(bool on);
    bool isMirroredInY() const { return (m_generation & 4) != 0; }
    Acad::ErrorStatus mirrorInY(bool on);

    // The box of the text by the platform's character-cell approximation (text_metrics.hpp);
    // an empty string has no extents (eInvalidExtents).
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus transformBy(const AcGeMatrix3d& xform) override;
    Acad::ErrorStatus getStretchPoints(AcGePoint3dArray& points) const override;
    void collectReferences(AcDbObjectIdArray& refs) const override;
    void remapReferences(const AcDbIdMapper& map) override;

protected:
    AcDbText(const AcDbText&) = default;
    // Copies text, placement and style (not the common entity properties).
    void assignTextData(const AcDbText& other);

private:
    AcGePoint3d m_position;
    AcGePoint3d m_alignment;
    double m_height = 0.0;
    double m_widthFactor = 1.0;
    double m_rotation = 0.0;
    double m_oblique = 0.0;
    std::wstring m_text;
    AcDbObjectId m_style;
    AcDb::TextHorzMode m_horz = AcDb::kTextLeft;
    AcDb::TextVertMode m_vert = AcDb::kTextBase;
    AcDbExtrusion m_extrusion;
    int m_generation = 0;
};

// The template of an attribute inside a block definition.
class AcDbAttributeDefinition : public AcDbText {
public:
    ACRX_DECLARE_MEMBERS(AcDbAttributeDefinition)
    AcDbAttributeDefinition() = default;
    AcDbAttributeDefinition(const AcGePoint3d& position, const std::wstring& text,
                            const std::wstring& tag, const std::wstring& prompt,
                            AcDbObjectId style = AcDbObjectId::kNull)
        : AcDbText(position, text, style), m_tag(tag), m_prompt(prompt) {}

    std::wstring tag() const { return m_tag; }
    Acad::ErrorStatus setTag(const std::wstring& tag) { m_tag = tag; return Acad::eOk; }
    std::wstring prompt() const { return m_prompt; }
    Acad::ErrorStatus setPrompt(const std::wstring& p) { m_prompt = p; return Acad::eOk; }
    // Attribute flags of group code 70: 1 invisible, 2 constant, 4 verify, 8 preset.
    int attributeFlags() const { return m_flags; }
    void setAttributeFlags(int flags) { m_flags = flags; }
    bool isInvisible() const { return (m_flags & 1) != 0; }
    bool isConstant() const { return (m_flags & 2) != 0; }
    bool isVerifiable() const { return (m_flags & 4) != 0; }
    bool isPreset() const { return (m_flags & 8) != 0; }
    int fieldLength() const { return m_fieldLength; }
    void setFieldLength(int n) { m_fieldLength = n; }

private:
    std::wstring m_tag;
    std::wstring m_prompt;
    int m_flags = 0;
    int m_fieldLength = 0;
};

// An attribute value carried by a block reference (its owner).
class AcDbAttribute : public AcDbText {
public:
    ACRX_DECLARE_MEMBERS(AcDbAttribute)
    AcDbAttribute() = default;
    AcDbAttribute(const AcGePoint3d& position, const std::wstring& text, const std::wstring& tag,
                  AcDbObjectId style = AcDbObjectId::kNull)
        : AcDbText(position, text, style), m_tag(tag) {}

    std::wstring tag() const { return m_tag; }
    Acad::ErrorStatus setTag(const std::wstring& tag) { m_tag = tag; return Acad::eOk; }
    int attributeFlags() const { return m_flags; }
    void setAttributeFlags(int flags) { m_flags = flags; }
    bool isInvisible() const { return (m_flags & 1) != 0; }
    bool isConstant() const { return (m_flags & 2) != 0; }
    int fieldLength() const { return m_fieldLength; }
    void setFieldLength(int n) { m_fieldLength = n; }
    // Takes text, tag, flags, style and placement from a definition, transformed into the
    // reference's space.
    Acad::ErrorStatus setAttributeFromBlock(const AcDbAttributeDefinition* def,
                                            const AcGeMatrix3d& blockTransform);

private:
    std::wstring m_tag;
    int m_flags = 0;
    int m_fieldLength = 0;
};
