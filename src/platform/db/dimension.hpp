#pragma once
#include <string>

#include "platform/db/color.hpp"
#include "platform/db/entity.hpp"
#include "platform/db/symbol_tables.hpp"

// The dimension variables the database knows: group code, name, kind and the value of the
// metric "Standard" style. Overrides of one dimension are stored by group code.
struct AcDbDimVarInfo {
    int code;
    const char* name;
    AcDbDimVarValue::Kind kind;
    double defaultValue;
};
// Look-ups in the table; null when the code or name is not a known variable.
const AcDbDimVarInfo* acdbDimVarByCode(int code);
const AcDbDimVarInfo* acdbDimVarByName(const std::string& name);


// Base of all dimensions: the style, the block that draws them, the text, the measured value,
// and per-object overrides of the style's variables.
class AcDbDimension : public AcDbEntity {
public:
    ACRX_DECLARE_ABSTRACT_MEMBERS(AcDbDimension)

    AcDbObjectId dimensionStyle() const { return m_style; }
    Acad::ErrorStatus setDimensionStyle(AcDbObjectId style) { m_style = style; return Acad::eOk; }
    AcDbObjectId dimBlockId() const { return m_block; }
    Acad::ErrorStatus setDimBlockId(AcDbObjectId id) { m_block = id; return Acad::eOk; }
    AcGePoint3d dimBlockPosition() const { return m_blockPosition; }
    Acad::ErrorStatus setDimBlockPosition(const AcGePoint3d& p) { m_blockPosition = p; return Acad::eOk; }
    AcGePoint3d textPosition() const { return m_textPosition; }
    Acad::ErrorStatus setTextPosition(const AcGePoint3d& p) { m_textPosition = p; return Acad::eOk; }
    bool isUsingDefaultTextPosition() const { return m_defaultTextPosition; }
    Acad::ErrorStatus useSetTextPosition() { m_defaultTextPosition = false; return Acad::eOk; }
    Acad::ErrorStatus useDefaultTextPosition() { m_defaultTextPosition = true; return Acad::eOk; }
    double textRotation() const { return m_textRotation; }
    Acad::ErrorStatus setTextRotation(double a) { m_textRotation = a; return Acad::eOk; }
    // The user's text ("" shows the measurement, "<>" stands for it inside other text).
    std::wstring dimensionText() const { return m_text; }
    Acad::ErrorStatus setDimensionText(const std::wstring& t) { m_text = t; return Acad::eOk; }
    AcGeVector3d normal() const { return m_normal; }
    Acad::ErrorStatus setNormal(const AcGeVector3d& n) { m_normal = n.normal(); return Acad::eOk; }
    double elevation() const { return m_elevation; }
    Acad::ErrorStatus setElevation(double z) { m_elevation = z; return Acad::eOk; }
    // The value the dimension shows, computed from its geometry (lengths in drawing units,
    // angles in radians).
    virtual Acad::ErrorStatus measurement(double& value) const;
    // The measurement as stored in a drawing file (group code 42), kept as read.
    double storedMeasurement() const { return m_storedMeasurement; }
    void setStoredMeasurement(double v) { m_storedMeasurement = v; }
    // Group code 70 bits other than the type (e.g. 128 user text position).
    int dimFlags() const { return m_flags; }
    void setDimFlags(int flags) { m_flags = flags; }

    // ---- Per-object dimension variables ----
    const AcDbDimVars& dimVarOverrides() const { return m_overrides; }
    AcDbDimVars& dimVarOverrides() { return m_overrides; }
    // The effective value: the override, else the style's value, else the default.
    double realVar(int code) const;
    int intVar(int code) const;
    Acad::ErrorStatus setRealVar(int code, double v);
    Acad::ErrorStatus setIntVar(int code, int v);

    double dimtxt() const { return realVar(140); }
    Acad::ErrorStatus setDimtxt(double v) { return setRealVar(140, v); }
    AcCmColor dimclrd() const { return colorVar(176); }
    Acad::ErrorStatus setDimclrd(const AcCmColor& c) { return setIntVar(176, c.colorIndex()); }
    AcCmColor dimclre() const { return colorVar(177); }
    Acad::ErrorStatus setDimclre(const AcCmColor& c) { return setIntVar(177, c.colorIndex()); }
    AcCmColor dimclrt() const { return colorVar(178); }
    Acad::ErrorStatus setDimclrt(const AcCmColor& c) { return setIntVar(178, c.colorIndex()); }
    int dimtzin() const { return intVar(284); }
    Acad::ErrorStatus setDimtzin(int v) { return setIntVar(284, v); }
    int dimtdec() const { return intVar(272); }
    Acad::ErrorStatus setDimtdec(int v) { return setIntVar(272, v); }
    double dimtfac() const { return realVar(146); }
    Acad::ErrorStatus setDimtfac(double v) { return setRealVar(146, v); }
    int dimtolj() const { return intVar(283); }
    Acad::ErrorStatus setDimtolj(int v) { return setIntVar(283, v); }
    bool dimtol() const { return intVar(71) != 0; }
    Acad::ErrorStatus setDimtol(bool v) { return setIntVar(71, v ? 1 : 0); }
    double dimtm() const { return realVar(48); }
    Acad::ErrorStatus setDimtm(double v) { return setRealVar(48, v); }
    double dimtp() const { return realVar(47); }
    Acad::ErrorStatus setDimtp(double v) { return setRealVar(47, v); }
    int dimdec() const { return intVar(271); }
    Acad::ErrorStatus setDimdec(int v) { return setIntVar(271, v); }
    double dimscale() const { return realVar(40); }
    Acad::ErrorStatus setDimscale(double v) { return setRealVar(40, v); }
    double dimasz() const { return realVar(41); }
    Acad::ErrorStatus setDimasz(double v) { return setRealVar(41, v); }
    int dimzin() const { return intVar(78); }
    Acad::ErrorStatus setDimzin(int v) { return setIntVar(78, v); }
    AcDb::LineWeight dimlwd() const { return static_cast<AcDb::LineWeight>(intVar(371)); }
    Acad::ErrorStatus setDimlwd(AcDb::LineWeight v) { return setIntVar(371, v); }
    AcDb::LineWeight dimlwe() const { return static_cast<AcDb::LineWeight>(intVar(372)); }
    Acad::ErrorStatus setDimlwe(AcDb::LineWeight v) { return setIntVar(372, v); }
    double dimexe() const { return realVar(44); }
    Acad::ErrorStatus setDimexe(double v) { return setRealVar(44, v); }
    double dimexo() const { return realVar(42); }
    Acad::ErrorStatus setDimexo(double v) { return setRealVar(42, v); }
    double dimgap() const { return realVar(147); }
    Acad::ErrorStatus setDimgap(double v) { return setRealVar(147, v); }
    int dimtad() const { return intVar(77); }
    Acad::ErrorStatus setDimtad(int v) { return setIntVar(77, v); }
    int dimjust() const { return intVar(280); }
    Acad::ErrorStatus setDimjust(int v) { return setIntVar(280, v); }
    bool dimtih() const { return intVar(73) != 0; }
    Acad::ErrorStatus setDimtih(bool v) { return setIntVar(73, v ? 1 : 0); }
    bool dimtoh() const { return intVar(74) != 0; }
    Acad::ErrorStatus setDimtoh(bool v) { return setIntVar(74, v ? 1 : 0); }

    void setDatabaseDefaults(AcDbDatabase* db = nullptr);
    // Draws the dimension anew into its anonymous "*D" block (made when it names none). Without
    // forceUpdate nothing happens while the picture would stay the same. A dimension that is
    // closed after a write is redrawn so.
    Acad::ErrorStatus recomputeDimBlock(bool forceUpdate = true);
    // Takes the block as it stands for the picture of the present definition (a reader's
    // dimensions keep the block of their file until they change).
    void markGraphicsCurrent();
    void collectReferences(AcDbObjectIdArray& refs) const override;
    void remapReferences(const AcDbIdMapper& map) override;

protected:
    AcDbDimension() = default;
    AcDbDimension(const AcDbDimension&) = default;
    AcCmColor colorVar(int code) const;
    const AcDbDimVarValue* styleValue(int code) const;
    void closedAfterWrite() override;

private:
    AcDbObjectId m_style;
    AcDbObjectId m_block;
    AcGePoint3d m_blockPosition;
    AcGePoint3d m_textPosition;
    bool m_defaultTextPosition = true;
    double m_textRotation = 0.0;
    std::wstring m_text;
    AcGeVector3d m_normal = AcGeVector3d::kZAxis;
    double m_elevation = 0.0;
    double m_storedMeasurement = 0.0;
    int m_flags = 0;
    AcDbDimVars m_overrides;
    std::string m_graphicsKey;  // the picture the block holds, as last drawn
};

// A linear dimension measured along a rotation angle.
class AcDbRotatedDimension : public AcDbDimension {
public:
    ACRX_DECLARE_MEMBERS(AcDbRotatedDimension)
    AcDbRotatedDimension() = default;
    AcDbRotatedDimension(double rotation, const AcGePoint3d& xLine1Point,
                         const AcGePoint3d& xLine2Point, const AcGePoint3d& dimLinePoint,
                         const std::wstring& dimText = L"",
                         AcDbObjectId dimStyle = AcDbObjectId::kNull);
    AcGePoint3d xLine1Point() const { return m_xLine1; }
    Acad::ErrorStatus setXLine1Point(const AcGePoint3d& p) { m_xLine1 = p; return Acad::eOk; }
    AcGePoint3d xLine2Point() const { return m_xLine2; }
    Acad::ErrorStatus setXLine2Point(const AcGePoint3d& p) { m_xLine2 = p; return Acad::eOk; }
    AcGePoint3d dimLinePoint() const { return m_dimLine; }
    Acad::ErrorStatus setDimLinePoint(const AcGePoint3d& p) { m_dimLine = p; return Acad::eOk; }
    double rotation() const { return m_rotation; }
    Acad::ErrorStatus setRotation(double a) { m_rotation = a; return Acad::eOk; }
    double oblique() const { return m_oblique; }
    Acad::ErrorStatus setOblique(double a) { m_oblique = a; return Acad::eOk; }

    Acad::ErrorStatus measurement(double& value) const override;

private:
    AcGePoint3d m_xLine1, m_xLine2, m_dimLine;
    double m_rotation = 0.0;
    double m_oblique = 0.0;
};

// A linear dimension measured along the line between its two points.
class AcDbAlignedDimension : public AcDbDimension {
public:
    ACRX_DECLARE_MEMBERS(AcDbAlignedDimension)
    AcDbAlignedDimension() = default;
    AcDbAlignedDimension(const AcGePoint3d& xLine1Point, const AcGePoint3d& xLine2Point,
                         const AcGePoint3d& dimLinePoint, const std::wstring& dimText = L"",
                         AcDbObjectId dimStyle = AcDbObjectId::kNull);
    AcGePoint3d xLine1Point() const { return m_xLine1; }
    Acad::ErrorStatus setXLine1Point(const AcGePoint3d& p) { m_xLine1 = p; return Acad::eOk; }
    AcGePoint3d xLine2Point() const { return m_xLine2; }
    Acad::ErrorStatus setXLine2Point(const AcGePoint3d& p) { m_xLine2 = p; return Acad::eOk; }
    AcGePoint3d dimLinePoint() const { return m_dimLine; }
    Acad::ErrorStatus setDimLinePoint(const AcGePoint3d& p) { m_dimLine = p; return Acad::eOk; }
    double oblique() const { return m_oblique; }
    Acad::ErrorStatus setOblique(double a) { m_oblique = a; return Acad::eOk; }

    Acad::ErrorStatus measurement(double& value) const override;

private:
    AcGePoint3d m_xLine1, m_xLine2, m_dimLine;
    double m_oblique = 0.0;
};

// An ordinate: the x or y distance of the defining point from the origin.
class AcDbOrdinateDimension : public AcDbDimension {
public:
    ACRX_DECLARE_MEMBERS(AcDbOrdinateDimension)
    AcDbOrdinateDimension() = default;
    AcDbOrdinateDimension(bool useXAxis, const AcGePoint3d& definingPoint,
                          const AcGePoint3d& leaderEndPoint, const std::wstring& dimText = L"",
                          AcDbObjectId dimStyle = AcDbObjectId::kNull);
    bool isUsingXAxis() const { return m_useXAxis; }
    bool isUsingYAxis() const { return !m_useXAxis; }
    Acad::ErrorStatus useXAxis() { m_useXAxis = true; return Acad::eOk; }
    Acad::ErrorStatus useYAxis() { m_useXAxis = false; return Acad::eOk; }
    AcGePoint3d origin() const { return m_origin; }
    Acad::ErrorStatus setOrigin(const AcGePoint3d& p) { m_origin = p; return Acad::eOk; }
    AcGePoint3d definingPoint() const { return m_definingPoint; }
    Acad::ErrorStatus setDefiningPoint(const AcGePoint3d& p) { m_definingPoint = p; return Acad::eOk; }
    AcGePoint3d leaderEndPoint() const { return m_leaderEnd; }
    Acad::ErrorStatus setLeaderEndPoint(const AcGePoint3d& p) { m_leaderEnd = p; return Acad::eOk; }

    Acad::ErrorStatus measurement(double& value) const override;

private:
    bool m_useXAxis = true;
    AcGePoint3d m_origin, m_definingPoint, m_leaderEnd;
};

class AcDbDiametricDimension : public AcDbDimension {
public:
    ACRX_DECLARE_MEMBERS(AcDbDiametricDimension)
    AcDbDiametricDimension() = default;
    AcGePoint3d chordPoint() const { return m_chord; }
    Acad::ErrorStatus setChordPoint(const AcGePoint3d& p) { m_chord = p; return Acad::eOk; }
    AcGePoint3d farChordPoint() const { return m_farChord; }
    Acad::ErrorStatus setFarChordPoint(const AcGePoint3d& p) { m_farChord = p; return Acad::eOk; }
    double leaderLength() const { return m_leaderLength; }
    Acad::ErrorStatus setLeaderLength(double l) { m_leaderLength = l; return Acad::eOk; }

    Acad::ErrorStatus measurement(double& value) const override;

private:
    AcGePoint3d m_chord, m_farChord;
    double m_leaderLength = 0.0;
};

class AcDbRadialDimension : public AcDbDimension {
public:
    ACRX_DECLARE_MEMBERS(AcDbRadialDimension)
    AcDbRadialDimension() = default;
    AcGePoint3d center() const { return m_center; }
    Acad::ErrorStatus setCenter(const AcGePoint3d& p) { m_center = p; return Acad::eOk; }
    AcGePoint3d chordPoint() const { return m_chord; }
    Acad::ErrorStatus setChordPoint(const AcGePoint3d& p) { m_chord = p; return Acad::eOk; }
    double leaderLength() const { return m_leaderLength; }
    Acad::ErrorStatus setLeaderLength(double l) { m_leaderLength = l; return Acad::eOk; }

    Acad::ErrorStatus measurement(double& value) const override;

private:
    AcGePoint3d m_center, m_chord;
    double m_leaderLength = 0.0;
};

// An angle between two lines, drawn as an arc through arcPoint.
class AcDb2LineAngularDimension : public AcDbDimension {
public:
    ACRX_DECLARE_MEMBERS(AcDb2LineAngularDimension)
    AcDb2LineAngularDimension() = default;
    AcGePoint3d xLine1Start() const { return m_l1s; }
    Acad::ErrorStatus setXLine1Start(const AcGePoint3d& p) { m_l1s = p; return Acad::eOk; }
    AcGePoint3d xLine1End() const { return m_l1e; }
    Acad::ErrorStatus setXLine1End(const AcGePoint3d& p) { m_l1e = p; return Acad::eOk; }
    AcGePoint3d xLine2Start() const { return m_l2s; }
    Acad::ErrorStatus setXLine2Start(const AcGePoint3d& p) { m_l2s = p; return Acad::eOk; }
    AcGePoint3d xLine2End() const { return m_l2e; }
    Acad::ErrorStatus setXLine2End(const AcGePoint3d& p) { m_l2e = p; return Acad::eOk; }
    AcGePoint3d arcPoint() const { return m_arc; }
    Acad::ErrorStatus setArcPoint(const AcGePoint3d& p) { m_arc = p; return Acad::eOk; }

    Acad::ErrorStatus measurement(double& value) const override;

private:
    AcGePoint3d m_l1s, m_l1e, m_l2s, m_l2e, m_arc;
};

// Other dimension kinds a drawing may hold (3-point angular, arc length...), carried whole.
class AcDbCarriedDimension : public AcDbDimension {
public:
    ACRX_DECLARE_MEMBERS(AcDbCarriedDimension)
    AcDbCarriedDimension() = default;
    int dimType() const { return m_type; }
    void setDimType(int t) { m_type = t; }

private:
    int m_type = 0;
};
