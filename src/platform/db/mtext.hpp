#pragma once
#include <cstdint>
#include <string>

#include "platform/db/entity.hpp"

// Multi-line text with inline formatting codes (\P paragraph breaks, {\f...;} font changes...).
class AcDbMText : public AcDbEntity {
public:
    ACRX_DECLARE_MEMBERS(AcDbMText)
    AcDbMText() = default;

    enum AttachmentPoint {
        kTopLeft = 1, kTopCenter = 2, kTopRight = 3, kMiddleLeft = 4, kMiddleCenter = 5,
        kMiddleRight = 6, kBottomLeft = 7, kBottomCenter = 8, kBottomRight = 9
    };

    AcGePoint3d location() const { return m_location; }
    Acad::ErrorStatus setLocation(const AcGePoint3d& p) { m_location = p; return Acad::eOk; }
    // The contents with their formatting codes, as stored.
    std::wstring contents() const { return m_contents; }
    Acad::ErrorStatus setContents(const std::wstring& text) { m_contents = text; return Acad::eOk; }
    // The contents without formatting codes, paragraphs joined by line breaks.
    std::wstring text() const;
    double textHeight() const { return m_height; }
    Acad::ErrorStatus setTextHeight(double h) { m_height = h; return Acad::eOk; }
    double width() const { return m_width; }
    Acad::ErrorStatus setWidth(double w) { m_width = w; return Acad::eOk; }
    double rotation() const;
    Acad::ErrorStatus setRotation(double a);
    AcGeVector3d direction() const { return m_direction; }
    Acad::ErrorStatus setDirection(const AcGeVector3d& v) { m_direction = v; return Acad::eOk; }
    AcGeVector3d normal() const { return m_normal; }
    Acad::ErrorStatus setNormal(const AcGeVector3d& n) { m_normal = n; return Acad::eOk; }
    AttachmentPoint attachment() const { return m_attachment; }
    Acad::ErrorStatus setAttachment(AttachmentPoint a) { m_attachment = a; return Acad::eOk; }
    AcDbObjectId textStyle() const { return m_style; }
    Acad::ErrorStatus setTextStyle(AcDbObjectId style) { m_style = style; return Acad::eOk; }
    double lineSpacingFactor() const { return m_lineSpacing; }
    Acad::ErrorStatus setLineSpacingFactor(double f) { m_lineSpacing = f; return Acad::eOk; }
    AcDb::LineSpacingStyle lineSpacingStyle() const { return m_lineSpacingStyle; }
    Acad::ErrorStatus setLineSpacingStyle(AcDb::LineSpacingStyle s) { m_lineSpacingStyle = s; return Acad::eOk; }
    // Drawing direction code of group 72 (1 left to right).
    int flowDirection() const { return m_flow; }
    void setFlowDirection(int d) { m_flow = d; }
    // The size of the text as the program that wrote its file measured it (group codes 42, 43);
    // 0 for a text made here, which has not been measured.
    double actualWidth() const { return m_actualWidth; }
    double actualHeight() const { return m_actualHeight; }
    void setActualWidth(double w) { m_actualWidth = w; }
    void setActualHeight(double h) { m_actualHeight = h; }

    // The values a drawing file gave, those at their default included, which a file written
    // again gives back: the measured size, the direction, the line spacing style and factor.
    enum FileValue : std::uint8_t {
        kFileActualWidth = 1, kFileActualHeight = 2, kFileDirection = 4,
        kFileLineSpacingStyle = 8, kFileLineSpacingFactor = 16
    };
    bool fileGave(FileValue v) const { return (m_fileValues & v) != 0; }
    void setFileGave(FileValue v) { m_fileValues = static_cast<std::uint8_t>(m_fileValues | v); }

    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus transformBy(const AcGeMatrix3d& xform) override;
    // One AcDbText per line of the plain text, placed line below line from the attachment.
    Acad::ErrorStatus explode(AcDbVoidPtrArray& entitySet) const override;
    Acad::ErrorStatus getStretchPoints(AcGePoint3dArray& points) const override;
    void collectReferences(AcDbObjectIdArray& refs) const override;
    void remapReferences(const AcDbIdMapper& map) override;

private:
    AcGePoint3d m_location;
    std::wstring m_contents;
    double m_height = 2.5;
    double m_width = 0.0;
    AcGeVector3d m_direction = AcGeVector3d::kXAxis;
    AcGeVector3d m_normal = AcGeVector3d::kZAxis;
    AttachmentPoint m_attachment = kTopLeft;
    AcDbObjectId m_style;
    double m_lineSpacing = 1.0;
    double m_actualWidth = 0.0;
    double m_actualHeight = 0.0;
    AcDb::LineSpacingStyle m_lineSpacingStyle = AcDb::kAtLeast;
    int m_flow = 1;
    std::uint8_t m_fileValues = 0;
};
