#pragma once
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/db/color.hpp"
#include "platform/db/names.hpp"
#include "platform/db/object.hpp"
#include "platform/ge/point2d.hpp"
#include "platform/ge/point3d.hpp"

class AcDbSymbolTableIterator;

// ---- Records ----

// A named entry of a symbol table. Names are compared without regard to case.
class AcDbSymbolTableRecord : public AcDbObject {
public:
    ACRX_DECLARE_ABSTRACT_MEMBERS(AcDbSymbolTableRecord)
    std::wstring name() const { return m_name; }
    Acad::ErrorStatus getName(std::wstring& name) const;
    Acad::ErrorStatus setName(const std::wstring& name);
    // Flags of group code 70 that the database does not model (xref dependence and the like).
    int flagBits() const { return m_flags; }
    void setFlagBits(int flags) { m_flags = flags; }

protected:
    AcDbSymbolTableRecord() = default;
    AcDbSymbolTableRecord(const AcDbSymbolTableRecord&) = default;

private:
    void takeName(const std::wstring& name);
    std::wstring m_name;
    int m_flags = 0;
};

class AcDbLayerTableRecord : public AcDbSymbolTableRecord {
public:
    ACRX_DECLARE_MEMBERS(AcDbLayerTableRecord)
    AcDbLayerTableRecord() = default;

    AcCmColor color() const { return m_color; }
    void setColor(const AcCmColor& color);
    AcDbObjectId linetypeObjectId() const { return m_linetype; }
    void setLinetypeObjectId(AcDbObjectId id) { m_linetype = id; }
    bool isFrozen() const { return m_frozen; }
    void setIsFrozen(bool frozen) { m_frozen = frozen; }
    bool isOff() const { return m_off; }
    void setIsOff(bool off) { m_off = off; }
    bool isLocked() const { return m_locked; }
    void setIsLocked(bool locked) { m_locked = locked; }
    // Frozen in new viewports.
    bool VPDFLT() const { return m_vpdflt; }
    void setVPDFLT(bool frozen) { m_vpdflt = frozen; }
    bool isPlottable() const { return m_plottable; }
    void setIsPlottable(bool plottable) { m_plottable = plottable; }
    AcDb::LineWeight lineWeight() const { return m_lineWeight; }
    void setLineWeight(AcDb::LineWeight weight) { m_lineWeight = weight; }
    void collectReferences(AcDbObjectIdArray& refs) const override;
    void remapReferences(const AcDbIdMapper& map) override;

private:
    AcCmColor m_color = [] { AcCmColor c; c.setColorIndex(7); return c; }();
    AcDbObjectId m_linetype;
    bool m_frozen = false;
    bool m_off = false;
    bool m_locked = false;
    bool m_vpdflt = false;
    bool m_plottable = true;
    AcDb::LineWeight m_lineWeight = AcDb::kLnWtByLwDefault;
};

class AcDbTextStyleTableRecord : public AcDbSymbolTableRecord {
public:
    ACRX_DECLARE_MEMBERS(AcDbTextStyleTableRecord)
    AcDbTextStyleTableRecord() = default;

    std::wstring fileName() const { return m_fileName; }
    Acad::ErrorStatus setFileName(const std::wstring& name) { m_fileName = name; return Acad::eOk; }
    std::wstring bigFontFileName() const { return m_bigFontFileName; }
    Acad::ErrorStatus setBigFontFileName(const std::wstring& name) {
        m_bigFontFileName = name;
        return Acad::eOk;
    }
    double textSize() const { return m_textSize; }
    void setTextSize(double size) { m_textSize = size; }
    double xScale() const { return m_xScale; }
    void setXScale(double scale) { m_xScale = scale; }
    double obliquingAngle() const { return m_oblique; }
    void setObliquingAngle(double angle) { m_oblique = angle; }
    double priorSize() const { return m_priorSize; }
    void setPriorSize(double size) { m_priorSize = size; }
    // Text generation flags (2 backwards, 4 upside down).
    int textGenerationFlags() const { return m_generation; }
    void setTextGenerationFlags(int flags) { m_generation = flags; }
    bool isShapeFile() const { return (flagBits() & 1) != 0; }

private:
    std::wstring m_fileName = L"txt";
    std::wstring m_bigFontFileName;
    double m_textSize = 0.0;
    double m_xScale = 1.0;
    double m_oblique = 0.0;
    double m_priorSize = 2.5;
    int m_generation = 0;
};

class AcDbLinetypeTableRecord : public AcDbSymbolTableRecord {
public:
    ACRX_DECLARE_MEMBERS(AcDbLinetypeTableRecord)
    AcDbLinetypeTableRecord() = default;

    std::wstring comments() const { return m_comments; }
    void setComments(const std::wstring& text) { m_comments = text; }
    double patternLength() const { return m_patternLength; }
    void setPatternLength(double length) { m_patternLength = length; }
    // Dash lengths: positive drawn, negative gaps, zero dots.
    const std::vector<double>& dashes() const { return m_dashes; }
    void setDashes(const std::vector<double>& dashes) { m_dashes = dashes; }
    int numDashes() const { return static_cast<int>(m_dashes.size()); }

private:
    std::wstring m_comments;
    double m_patternLength = 0.0;
    std::vector<double> m_dashes;
};

// Values of a dimension style or of one dimension's overrides, keyed by the variable's DXF
// group code (DIMTXT 140, DIMDEC 271, ...).
struct AcDbDimVarValue {
    enum Kind { kReal, kInt, kString, kHandle } kind = kReal;
    double real = 0.0;
    int integer = 0;
    std::wstring text;
    AcDbObjectId id;
    bool operator==(const AcDbDimVarValue&) const = default;
};
using AcDbDimVars = std::map<int, AcDbDimVarValue>;

class AcDbDimStyleTableRecord : public AcDbSymbolTableRecord {
public:
    ACRX_DECLARE_MEMBERS(AcDbDimStyleTableRecord)
    AcDbDimStyleTableRecord();

    const AcDbDimVars& dimVars() const { return m_vars; }
    AcDbDimVars& dimVars() { return m_vars; }
    void collectReferences(AcDbObjectIdArray& refs) const override;

    // The dimension line, extension line and text colours (DIMCLRD, DIMCLRE, DIMCLRT) as
    // colours. The variables (176-178) hold their indexes; a true colour is kept beside them and
    // holds while the variable keeps the index it was set with.
    AcCmColor dimclrd() const { return colorVar(176); }
    Acad::ErrorStatus setDimclrd(const AcCmColor& c) { return setColorVar(176, c); }
    AcCmColor dimclre() const { return colorVar(177); }
    Acad::ErrorStatus setDimclre(const AcCmColor& c) { return setColorVar(177, c); }
    AcCmColor dimclrt() const { return colorVar(178); }
    Acad::ErrorStatus setDimclrt(const AcCmColor& c) { return setColorVar(178, c); }
    // The same by the variable's group code.
    AcCmColor colorVar(int code) const;
    Acad::ErrorStatus setColorVar(int code, const AcCmColor& c);

private:
    AcDbDimVars m_vars;
    std::map<int, AcCmColor> m_trueColors;  // by group code
};

// Shared by views and viewports: a window onto the drawing.
class AcDbAbstractViewTableRecord : public AcDbSymbolTableRecord {
public:
    ACRX_DECLARE_ABSTRACT_MEMBERS(AcDbAbstractViewTableRecord)
    AcGePoint2d centerPoint() const { return m_center; }
    void setCenterPoint(const AcGePoint2d& p) { m_center = p; }
    double width() const { return m_width; }
    void setWidth(double w) { m_width = w; }
    double height() const { return m_height; }
    void setHeight(double h) { m_height = h; }
    AcGePoint3d target() const { return m_target; }
    void setTarget(const AcGePoint3d& p) { m_target = p; }
    AcGeVector3d viewDirection() const { return m_direction; }
    void setViewDirection(const AcGeVector3d& v) { m_direction = v; }
    double viewTwist() const { return m_twist; }
    void setViewTwist(double a) { m_twist = a; }
    // The view's coordinate system is the world's.
    bool isUcsWorld() const { return m_ucsWorld; }
    void setUcsToWorld() { m_ucsWorld = true; }
    // The camera: lens length, clipping planes and their switches, perspective.
    double lensLength() const { return m_lensLength; }
    void setLensLength(double length) { m_lensLength = length; }
    double frontClipDistance() const { return m_frontClip; }
    void setFrontClipDistance(double distance) { m_frontClip = distance; }
    double backClipDistance() const { return m_backClip; }
    void setBackClipDistance(double distance) { m_backClip = distance; }
    bool perspectiveEnabled() const { return m_perspective; }
    void setPerspectiveEnabled(bool enabled) { m_perspective = enabled; }
    bool frontClipEnabled() const { return m_frontClipOn; }
    void setFrontClipEnabled(bool enabled) { m_frontClipOn = enabled; }
    bool backClipEnabled() const { return m_backClipOn; }
    void setBackClipEnabled(bool enabled) { m_backClipOn = enabled; }
    bool frontClipAtEye() const { return m_frontClipAtEye; }
    void setFrontClipAtEye(bool atEye) { m_frontClipAtEye = atEye; }

protected:
    AcDbAbstractViewTableRecord() = default;
    AcDbAbstractViewTableRecord(const AcDbAbstractViewTableRecord&) = default;

private:
    AcGePoint2d m_center;
    double m_width = 1.0;
    double m_height = 1.0;
    AcGePoint3d m_target;
    AcGeVector3d m_direction = AcGeVector3d::kZAxis;
    double m_twist = 0.0;
    bool m_ucsWorld = true;
    double m_lensLength = 50.0;
    double m_frontClip = 0.0;
    double m_backClip = 0.0;
    bool m_perspective = false;
    bool m_frontClipOn = false;
    bool m_backClipOn = false;
    bool m_frontClipAtEye = true;
};

class AcDbViewTableRecord : public AcDbAbstractViewTableRecord {
public:
    ACRX_DECLARE_MEMBERS(AcDbViewTableRecord)
    AcDbViewTableRecord() = default;
    bool isPaperspaceView() const { return m_paperSpace; }
    void setIsPaperspaceView(bool paperSpace) { m_paperSpace = paperSpace; }

private:
    bool m_paperSpace = false;
};

class AcDbViewportTableRecord : public AcDbAbstractViewTableRecord {
public:
    ACRX_DECLARE_MEMBERS(AcDbViewportTableRecord)
    AcDbViewportTableRecord() = default;
};

class AcDbRegAppTableRecord : public AcDbSymbolTableRecord {
public:
    ACRX_DECLARE_MEMBERS(AcDbRegAppTableRecord)
    AcDbRegAppTableRecord() = default;
};

class AcDbUCSTableRecord : public AcDbSymbolTableRecord {
public:
    ACRX_DECLARE_MEMBERS(AcDbUCSTableRecord)
    AcDbUCSTableRecord() = default;
    AcGePoint3d origin() const { return m_origin; }
    void setOrigin(const AcGePoint3d& p) { m_origin = p; }
    AcGeVector3d xAxis() const { return m_xAxis; }
    void setXAxis(const AcGeVector3d& v) { m_xAxis = v; }
    AcGeVector3d yAxis() const { return m_yAxis; }
    void setYAxis(const AcGeVector3d& v) { m_yAxis = v; }

private:
    AcGePoint3d m_origin;
    AcGeVector3d m_xAxis = AcGeVector3d::kXAxis;
    AcGeVector3d m_yAxis = AcGeVector3d::kYAxis;
};

// ---- Tables ----

// Where a table's records stand by name, ignoring case, so that a look-up by name does not walk
// the records. The table brings it up to date at each look-up; a copy starts empty, to be built
// from the copy's own records.
struct AcDbRecordNameIndex {
    struct Hash {
        std::size_t operator()(const std::wstring& name) const { return acdbNameHash(name); }
    };
    struct Equal {
        bool operator()(const std::wstring& a, const std::wstring& b) const { return acdbNamesEqual(a, b); }
    };
    // Positions in the table's records, in order, of the records of each name.
    std::unordered_map<std::wstring, std::vector<int>, Hash, Equal> positions;
    int indexed = 0;            // the records before this position are in `positions`
    std::uint64_t renames = 0;  // the count of record renames `positions` was made at
    std::mutex guard;           // look-ups may come from several threads of a writer

    AcDbRecordNameIndex() = default;
    AcDbRecordNameIndex(const AcDbRecordNameIndex&) {}
    AcDbRecordNameIndex& operator=(const AcDbRecordNameIndex&) = delete;
};

// A table of named records. The table owns its records (by id); look-ups ignore case and skip
// erased records unless asked for them.
class AcDbSymbolTable : public AcDbObject {
public:
    ACRX_DECLARE_ABSTRACT_MEMBERS(AcDbSymbolTable)

    bool has(const std::wstring& name) const;
    bool has(AcDbObjectId id) const;
    Acad::ErrorStatus getAt(const std::wstring& name, AcDbObjectId& id,
                            bool getErasedRecord = false) const;
    Acad::ErrorStatus getAt(const std::wstring& name, AcDbSymbolTableRecord*& record,
                            AcDb::OpenMode mode, bool openErasedRecord = false) const;
    // Adds a new record (which takes ownership). The table must be open for write; a name
    // already present gives eDuplicateRecordName, a record of the wrong class eWrongObjectType,
    // an empty name eInvalidSymbolTableName except in the view table.
    Acad::ErrorStatus add(AcDbSymbolTableRecord* record);
    Acad::ErrorStatus add(AcDbObjectId& id, AcDbSymbolTableRecord* record);
    Acad::ErrorStatus newIterator(AcDbSymbolTableIterator*& iterator, bool atBeginning = true,
                                  bool skipDeleted = true) const;

    // All record ids in the order they were added, erased ones included.
    const AcDbObjectIdArray& recordIds() const { return m_records; }
    // The class of the records this table holds.
    virtual AcRxClass* recordClass() const = 0;
    // Lets a reader of a drawing file attach a record it has already added to the database.
    void attachRecord(AcDbObjectId id) { m_records.append(id); }
    // The places, in a DWG file's list of this table's records, that name no record: records
    // erased before the file was saved, which its list still counts. Kept from a DWG read so
    // that a DWG written again lists them at the same places; a DXF table has no place for them.
    const std::vector<int>& erasedEntryPlaces() const { return m_erasedPlaces; }
    void setErasedEntryPlaces(std::vector<int> places) { m_erasedPlaces = std::move(places); }

protected:
    AcDbSymbolTable() = default;
    AcDbSymbolTable(const AcDbSymbolTable&) = default;

private:
    void indexNames() const;
    bool recordMatches(int position, const std::wstring& name, bool erased) const;
    AcDbObjectIdArray m_records;
    std::vector<int> m_erasedPlaces;
    mutable AcDbRecordNameIndex m_names;
};

// Walks a table's records in order.
class AcDbSymbolTableIterator {
public:
    AcDbSymbolTableIterator(const AcDbSymbolTable* table, bool atBeginning, bool skipDeleted);
    void start(bool atBeginning = true, bool skipDeleted = true);
    bool done() const;
    void step(bool forward = true, bool skipDeleted = true);
    Acad::ErrorStatus getRecordId(AcDbObjectId& id) const;
    Acad::ErrorStatus getRecord(AcDbSymbolTableRecord*& record, AcDb::OpenMode mode,
                                bool openErasedRecord = false) const;

private:
    void skipErased(bool forward);
    AcDbObjectIdArray m_ids;
    int m_index = 0;
};

// Typed tables: the same operations with the record type the host gives them.
#define TAVRIK_DECLARE_SYMBOL_TABLE(TABLE, RECORD)                                         \
    class TABLE : public AcDbSymbolTable {                                                 \
    public:                                                                                \
        ACRX_DECLARE_MEMBERS(TABLE)                                                        \
        TABLE() = default;                                                                 \
        using AcDbSymbolTable::getAt;                                                      \
        Acad::ErrorStatus getAt(const std::wstring& name, RECORD*& record,                 \
                                AcDb::OpenMode mode, bool openErasedRecord = false) const; \
        AcRxClass* recordClass() const override;                                           \
    };

class AcDbBlockTableRecord;
TAVRIK_DECLARE_SYMBOL_TABLE(AcDbBlockTable, AcDbBlockTableRecord)
TAVRIK_DECLARE_SYMBOL_TABLE(AcDbLayerTable, AcDbLayerTableRecord)
TAVRIK_DECLARE_SYMBOL_TABLE(AcDbTextStyleTable, AcDbTextStyleTableRecord)
TAVRIK_DECLARE_SYMBOL_TABLE(AcDbLinetypeTable, AcDbLinetypeTableRecord)
TAVRIK_DECLARE_SYMBOL_TABLE(AcDbDimStyleTable, AcDbDimStyleTableRecord)
TAVRIK_DECLARE_SYMBOL_TABLE(AcDbViewTable, AcDbViewTableRecord)
TAVRIK_DECLARE_SYMBOL_TABLE(AcDbViewportTable, AcDbViewportTableRecord)
TAVRIK_DECLARE_SYMBOL_TABLE(AcDbRegAppTable, AcDbRegAppTableRecord)
TAVRIK_DECLARE_SYMBOL_TABLE(AcDbUCSTable, AcDbUCSTableRecord)

#define ACDB_MODEL_SPACE L"*Model_Space"
#define ACDB_PAPER_SPACE L"*Paper_Space"
