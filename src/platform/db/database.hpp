#pragma once
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/db/object.hpp"
#include "platform/db/stub_index.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/ge/matrix3d.hpp"

class AcDbBlockTableRecord;

// A drawing: its objects by handle, the symbol tables, the header settings.
class AcDbDatabase {
public:
    // buildDefaultDrawing: start with what every drawing has (layer "0", linetypes ByBlock,
    // ByLayer and Continuous, text style and dimension style Standard, the model and paper
    // space blocks, the named-object dictionary). Without it the database is empty, as a
    // reader of a drawing file wants it. noDocument is kept for the call shape.
    explicit AcDbDatabase(bool buildDefaultDrawing = true, bool noDocument = false);
    ~AcDbDatabase();
    AcDbDatabase(const AcDbDatabase&) = delete;
    AcDbDatabase& operator=(const AcDbDatabase&) = delete;

    // ---- Objects ----
    // Adds a new object (ownership passes to the database) under the next handle.
    Acad::ErrorStatus addAcDbObject(AcDbObjectId& id, AcDbObject* object);
    // Adds a new object under a given handle (readers of drawing files). A handle already
    // holding an object gives eHandleInUse.
    Acad::ErrorStatus addAcDbObjectWithHandle(AcDbObjectId& id, AcDbObject* object,
                                              AcDbHandle handle);
    // The same, the object left closed: for a reader that fills an object before adding it and
    // has nothing to write to it after (opening for write looks the entity's layer up).
    Acad::ErrorStatus addClosedAcDbObjectWithHandle(AcDbObjectId& id, AcDbObject* object,
                                                    AcDbHandle handle);
    // Prepares room for about this many objects more (a reader that knows the file's size).
    void reserveObjects(std::size_t count) { m_byHandle.reserve(m_byHandle.size() + count); }
    // Gives a resident object another, free handle; its id stays the same. Readers use it for
    // an object they numbered themselves when the file later names that handle for another.
    // eHandleInUse when the new handle is taken, eNullObjectId for an id of no object here.
    Acad::ErrorStatus moveToHandle(AcDbObjectId id, AcDbHandle handle);
    // The id of a handle; with createIfNotFound an empty slot is made, to be filled later.
    Acad::ErrorStatus getAcDbObjectId(AcDbObjectId& id, bool createIfNotFound,
                                      const AcDbHandle& handle);
    // The next free handle, as the header's $HANDSEED keeps it.
    AcDbHandle handseed() const { return m_handseed; }
    void setHandseed(AcDbHandle seed);
    // Every stub in the order of creation (for writers and audits). A stub made for a reference
    // before its object came stands where the reference was met.
    const std::deque<AcDbStub>& stubs() const { return m_stubs; }
    // The stubs of the objects that are not entities, in the order the objects were added (a
    // drawing read keeps its file's order of them; entities are in their blocks' order).
    const std::vector<const AcDbStub*>& nonEntitiesAdded() const { return m_nonEntitiesAdded; }

    // ---- Tables ----
    Acad::ErrorStatus getSymbolTable(AcDbBlockTable*& table, AcDb::OpenMode mode) const;
    Acad::ErrorStatus getSymbolTable(AcDbLayerTable*& table, AcDb::OpenMode mode) const;
    Acad::ErrorStatus getSymbolTable(AcDbTextStyleTable*& table, AcDb::OpenMode mode) const;
    Acad::ErrorStatus getSymbolTable(AcDbLinetypeTable*& table, AcDb::OpenMode mode) const;
    Acad::ErrorStatus getSymbolTable(AcDbDimStyleTable*& table, AcDb::OpenMode mode) const;
    Acad::ErrorStatus getSymbolTable(AcDbViewTable*& table, AcDb::OpenMode mode) const;
    Acad::ErrorStatus getSymbolTable(AcDbViewportTable*& table, AcDb::OpenMode mode) const;
    Acad::ErrorStatus getSymbolTable(AcDbRegAppTable*& table, AcDb::OpenMode mode) const;
    Acad::ErrorStatus getSymbolTable(AcDbUCSTable*& table, AcDb::OpenMode mode) const;
    Acad::ErrorStatus getBlockTable(AcDbBlockTable*& t, AcDb::OpenMode m) const {
        return getSymbolTable(t, m);
    }
    Acad::ErrorStatus getLayerTable(AcDbLayerTable*& t, AcDb::OpenMode m) const {
        return getSymbolTable(t, m);
    }
    AcDbObjectId blockTableId() const { return m_tables[kBlockTable]; }
    AcDbObjectId layerTableId() const { return m_tables[kLayerTable]; }
    AcDbObjectId textStyleTableId() const { return m_tables[kTextStyleTable]; }
    AcDbObjectId linetypeTableId() const { return m_tables[kLinetypeTable]; }
    AcDbObjectId dimStyleTableId() const { return m_tables[kDimStyleTable]; }
    AcDbObjectId viewTableId() const { return m_tables[kViewTable]; }
    AcDbObjectId viewportTableId() const { return m_tables[kViewportTable]; }
    AcDbObjectId regAppTableId() const { return m_tables[kRegAppTable]; }
    AcDbObjectId UCSTableId() const { return m_tables[kUCSTable]; }
    // Readers of drawing files install the tables they read.
    enum TableKind {
        kBlockTable, kLayerTable, kTextStyleTable, kLinetypeTable, kDimStyleTable,
        kViewTable, kViewportTable, kRegAppTable, kUCSTable, kTableCount
    };
    void setTableId(TableKind kind, AcDbObjectId id) { m_tables[kind] = id; }
    AcDbObjectId tableId(TableKind kind) const { return m_tables[kind]; }
    AcDbObjectId namedObjectsDictionaryId() const { return m_namedObjects; }
    void setNamedObjectsDictionaryId(AcDbObjectId id) { m_namedObjects = id; }
    // The id of a block record by name, null when missing.
    AcDbObjectId blockId(const std::wstring& name) const;
    AcDbObjectId modelSpaceId() const { return blockId(ACDB_MODEL_SPACE); }
    AcDbObjectId paperSpaceId() const { return blockId(ACDB_PAPER_SPACE); }

    // ---- Current settings used for new entities ----
    AcDbObjectId clayer() const { return m_clayer; }
    Acad::ErrorStatus setClayer(AcDbObjectId layer) { m_clayer = layer; return Acad::eOk; }
    AcDbObjectId celtype() const { return m_celtype; }
    Acad::ErrorStatus setCeltype(AcDbObjectId linetype) { m_celtype = linetype; return Acad::eOk; }
    AcDbObjectId textstyle() const { return m_textstyle; }
    Acad::ErrorStatus setTextstyle(AcDbObjectId style) { m_textstyle = style; return Acad::eOk; }
    AcDbObjectId dimstyle() const { return m_dimstyle; }
    Acad::ErrorStatus setDimstyle(AcDbObjectId style) { m_dimstyle = style; return Acad::eOk; }
    AcCmColor cecolor() const { return m_cecolor; }
    Acad::ErrorStatus setCecolor(const AcCmColor& c) { m_cecolor = c; return Acad::eOk; }
    double celtscale() const { return m_celtscale; }
    Acad::ErrorStatus setCeltscale(double s) { m_celtscale = s; return Acad::eOk; }
    AcDb::LineWeight celweight() const { return m_celweight; }
    Acad::ErrorStatus setCelweight(AcDb::LineWeight w) { m_celweight = w; return Acad::eOk; }
    double ltscale() const { return m_ltscale; }
    Acad::ErrorStatus setLtscale(double s) { m_ltscale = s; return Acad::eOk; }
    double textsize() const { return m_textsize; }
    Acad::ErrorStatus setTextsize(double s) { m_textsize = s; return Acad::eOk; }

    // ---- Extents ----
    AcGePoint3d extmin() const { return m_extmin; }
    AcGePoint3d extmax() const { return m_extmax; }
    void setExtmin(const AcGePoint3d& p) { m_extmin = p; }
    void setExtmax(const AcGePoint3d& p) { m_extmax = p; }
    // Recomputes EXTMIN/EXTMAX from the model space (an empty one gives the inverted box
    // 1e20/-1e20, as the host keeps it).
    Acad::ErrorStatus updateExt(bool doBestFit = false);

    // ---- Header variables the database does not model, by name ("$ACADVER") in file order ----
    std::vector<std::pair<std::string, AcDbRawTags>>& headerVars() { return m_headerVars; }
    const std::vector<std::pair<std::string, AcDbRawTags>>& headerVars() const {
        return m_headerVars;
    }
    // The CLASSES section, kept as read.
    AcDbRawTags& classesSection() { return m_classes; }
    const AcDbRawTags& classesSection() const { return m_classes; }
    // The THUMBNAILIMAGE section, kept as read.
    AcDbRawTags& thumbnailSection() { return m_thumbnail; }
    const AcDbRawTags& thumbnailSection() const { return m_thumbnail; }
    // The ACDSDATA section (data of solids and surfaces), kept as read: the tags after its name.
    AcDbRawTags& acdsDataSection() { return m_acdsData; }
    const AcDbRawTags& acdsDataSection() const { return m_acdsData; }
    // Objects read from DWG whose kind the database does not model, by handle: their type name
    // and their DWG data (values and handle references), kept whole so that a DWG writer can put
    // them back. Their file records hold only their head, which is no complete DXF record, so
    // the DXF writer leaves them out and says so (dxf::LeftOutOfDxf).
    struct DwgKeptObject {
        std::string typeName;
        std::vector<std::uint8_t> data;
        // The code page of the data's texts when the data is of an AC1018 file (which a DWG
        // written again can hold as it is); 0 for other versions.
        int ac1018CodePage = 0;
        // The object whose list names this one, which a DXF record of it cannot give: the
        // block record whose references list it (an ACAD_TABLE, which draws that block), the
        // layout whose viewports it is. 0 for none.
        std::uint64_t listedBy = 0;
    };
    std::unordered_map<std::uint64_t, DwgKeptObject>& dwgKeptObjects() { return m_dwgKept; }
    const std::unordered_map<std::uint64_t, DwgKeptObject>& dwgKeptObjects() const {
        return m_dwgKept;
    }
    // A drawing file as it was when read: where it is, its size and a 64-bit hash of its bytes,
    // which tell whether the file is still the one read.
    struct DwgSourceFile {
        std::string path;
        std::uint64_t size = 0;
        std::uint64_t hash = 0;
    };
    // The sections of the AC1018 file the database was read from (header variables, classes,
    // object map, objects; decompressed), so that a DWG save can give each object that has not
    // changed since the read the bits the file stored: the save reads them again and compares
    // the writer's encoding of each object of that read with its encoding of the object now.
    // A drawing read from a file keeps the file's identity instead of its sections, and the
    // save takes the sections from the file again while it is unchanged.
    struct DwgFiledObjects {
        int codePage = 0;     // the Windows code page of the file's texts; 0 when nothing is kept
        int maintenance = 0;  // the file header's maintenance release
        std::vector<std::uint8_t> header, classes, objectMap, objects;  // empty when read from a file
        DwgSourceFile file;  // path empty when the sections are held
    };
    DwgFiledObjects& dwgFiledObjects() { return m_dwgFiled; }
    const DwgFiledObjects& dwgFiledObjects() const { return m_dwgFiled; }
    // The strings of records read from a file that spelled characters as escapes (\U+XXXX,
    // \M+nXXXX) where the database holds the characters: per record handle, those tags as the
    // file spelled them (UTF-8, escapes kept). A writer spells a tag of the record so while its
    // value is still the one the spelling decodes to.
    const std::unordered_map<std::uint64_t, AcDbRawTags>& textSpellings() const { return m_textSpellings; }
    void addTextSpelling(AcDbHandle record, int code, std::string_view spelling);
    // Version of the file read (AC1009 ... AC1032); the writer may keep it.
    AcDb::AcDbDwgVersion originalFileVersion() const { return m_fileVersion; }
    void setOriginalFileVersion(AcDb::AcDbDwgVersion v) { m_fileVersion = v; }

    // ---- Files (implemented by the drawing-file codec) ----
    // Reads a drawing file into this (empty) database. The kind of file is told by content.
    Acad::ErrorStatus readDwgFile(const ACHAR* fileName, int shareMode = 0,
                                  bool allowCPConversion = false,
                                  const wchar_t* password = nullptr);
    Acad::ErrorStatus saveAs(const ACHAR* fileName);
    // The file this database was read from or last saved to.
    Acad::ErrorStatus getFilename(const ACHAR*& fileName) const;
    const std::wstring& filename() const { return m_filename; }
    void setFilename(const std::wstring& name) { m_filename = name; }
    // The reason of the last failed read or save: file, line and what was wrong.
    const std::wstring& lastError() const { return m_lastError; }
    void setLastError(const std::wstring& message) { m_lastError = message; }

    // ---- Whole-drawing operations ----
    // Copies the model space of another database into this one's model space under a
    // transformation; layers, linetypes, styles and blocks that the copies use come along,
    // merged by name (a name already here keeps this database's record).
    Acad::ErrorStatus insert(const AcGeMatrix3d& xform, AcDbDatabase* source,
                             bool preserveSourceDatabase = true);
    // Copies the model space of another database into a new block of this one.
    Acad::ErrorStatus insert(AcDbObjectId& blockId, const ACHAR* blockName, AcDbDatabase* source,
                             bool preserveSourceDatabase = true);
    // Reduces ids to those that nothing in the database refers to.
    Acad::ErrorStatus purge(AcDbObjectIdArray& ids) const;
    // Drops every object and header value, leaving the database as one built without a default
    // drawing: reading a drawing file replaces what the database held.
    void discardContents();

private:
    AcDbStub& newStub(AcDbHandle handle);
    void buildDefaultDrawing();

    std::deque<AcDbStub> m_stubs;
    AcDbStubIndex m_byHandle{m_stubs};
    std::uint64_t m_maxHandle = 0;  // largest key of m_byHandle
    // Kept apart from the stubs, so that a stub costs no order that only the few non-entities need.
    std::vector<const AcDbStub*> m_nonEntitiesAdded;
    AcDbHandle m_handseed{1};
    AcDbObjectId m_tables[kTableCount];
    AcDbObjectId m_namedObjects;
    AcDbObjectId m_clayer, m_celtype, m_textstyle, m_dimstyle;
    AcCmColor m_cecolor;
    double m_celtscale = 1.0;
    AcDb::LineWeight m_celweight = AcDb::kLnWtByLayer;
    double m_ltscale = 1.0;
    double m_textsize = 2.5;
    AcGePoint3d m_extmin{1e20, 1e20, 1e20};
    AcGePoint3d m_extmax{-1e20, -1e20, -1e20};
    std::vector<std::pair<std::string, AcDbRawTags>> m_headerVars;
    AcDbRawTags m_classes;
    AcDbRawTags m_thumbnail;
    AcDbRawTags m_acdsData;
    std::unordered_map<std::uint64_t, DwgKeptObject> m_dwgKept;
    DwgFiledObjects m_dwgFiled;
    std::unordered_map<std::uint64_t, AcDbRawTags> m_textSpellings;
    AcDb::AcDbDwgVersion m_fileVersion = AcDb::kDHL_1018;
    std::wstring m_filename;
    std::wstring m_lastError;
};

// Saves a database in the 2004 format (AC1018) to a file; implemented by the codec.
Acad::ErrorStatus acdbSaveAs2004(AcDbDatabase* db, const ACHAR* fileName);

// The host's services that know the working database.
class AcDbHostApplicationServices {
public:
    AcDbDatabase* workingDatabase() const { return m_working; }
    void setWorkingDatabase(AcDbDatabase* db) { m_working = db; }

private:
    AcDbDatabase* m_working = nullptr;
};

AcDbHostApplicationServices* acdbHostApplicationServices();
