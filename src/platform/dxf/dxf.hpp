#pragma once
// The drawing-file codec: reads DXF (R12 to 2018, ASCII and binary) into a database and writes
// a database as ASCII DXF, keeping what the database does not model.
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/db/database.hpp"
#include "platform/dxf/drawing_tag.hpp"

namespace dxf {

// Numbered reasons of a failed read or write; the number stands in lastError() as "DXFnnn".
enum class DxfError {
    kNone = 0,
    kCannotOpen = 1,       // the file cannot be read
    kNotDxf = 2,           // the content is not a drawing file of this format
    kBadGroupCode = 3,     // a group code that is not a number or not a known code
    kTruncated = 4,        // the data ends inside a tag, a section or before EOF
    kBadNumber = 5,        // a value that is not a number where the group code wants one
    kMissingSection = 6,   // a section every drawing needs is missing
    kBadStructure = 7,     // tags out of the format's order (section, table, block nesting)
    kCannotWrite = 8,      // the target cannot be written or renamed into place
    kDatabaseRejected = 9  // the database refused an object (a handle used twice)
};

// Reads a drawing file into an empty database. On failure the database is left empty and
// db.lastError() says "file:line: DXFnnn reason".
Acad::ErrorStatus ReadDxfFile(AcDbDatabase& db, const std::string& path);
Acad::ErrorStatus ReadDxfBytes(AcDbDatabase& db, std::string_view bytes, const std::string& name);
// True when the bytes open like a DXF file (ASCII or binary).
bool LooksLikeDxf(std::string_view head);

struct WriteOptions {
    // The version written. A drawing read from R12 or R14 is brought up to it: records of R12,
    // which have no subclasses, are written anew from the database's values.
    AcDb::AcDbDwgVersion version = AcDb::kDHL_1018;
    // Keep the version the drawing was read in.
    bool keepVersion = false;
    // The host's code page: 936 (GBK) or 65001 (UTF-8; before AC1021 the text is then written
    // as ASCII with \U+XXXX escapes).
    int codePage = 936;
};

// What a DXF written from the database leaves out, as type name and count: the objects read
// from DWG that the database keeps whole (AcDbDatabase::dwgKeptObjects) and that no DXF record
// can be given for. Empty for a drawing read from DXF or made in memory.
std::map<std::string, int> LeftOutOfDxf(const AcDbDatabase& db);

// Writes the database to text. Objects made in memory take handles from $HANDSEED.
Acad::ErrorStatus WriteDxfText(AcDbDatabase& db, const WriteOptions& options, std::string& out);

// The tags of a drawing as the writer makes them, without the text around them: for a writer
// of another format that starts from the records. The values' characters are the list's own.
// The reals that entities' records take from the database come as numbers (not for angles,
// whose text the reader turns into radians): the same numbers the text would be read back as.
// The tags are kept in parts, in their order, each part whole records: a record's tags are
// side by side, and no part is copied to grow the list.
class DrawingTags {
public:
    using Entry = DrawingTag;
    const std::vector<std::vector<Entry>>& parts() const { return m_parts; }
    void add(int code, std::string_view value);
    void addNumber(int code, double value);
    // Moves another list's parts after this one's.
    void append(DrawingTags&& other);

private:
    void push(const Entry& entry);
    std::vector<std::vector<Entry>> m_parts;
    // Values are copied into blocks that never move, so that the views stay valid.
    std::vector<std::unique_ptr<char[]>> m_blocks;
    char* m_free = nullptr;
    size_t m_left = 0;
};

// The tags WriteDxfText would write as text, in the same order and with the same values.
Acad::ErrorStatus WriteDxfTags(AcDbDatabase& db, const WriteOptions& options, DrawingTags& out);
// Writes atomically: a temporary file beside the target, then a rename over it. The
// temporary files that saves of the target by processes no longer running left are removed.
Acad::ErrorStatus WriteDxfFile(AcDbDatabase& db, const std::string& path,
                               const WriteOptions& options);

// Told of every drawing that AcDbDatabase::saveAs has written (the database and the file):
// the host program's run report watches the batch's saves through it. None by default.
using DrawingSavedObserver = void (*)(AcDbDatabase& db, const std::string& path);
void SetDrawingSavedObserver(DrawingSavedObserver observer);
// Calls the observer, if one is set.
void NotifyDrawingSaved(AcDbDatabase& db, const std::string& path);

// The version's $ACADVER name ("AC1018") and back.
std::string VersionName(AcDb::AcDbDwgVersion version);
AcDb::AcDbDwgVersion VersionFromName(std::string_view name);

}  // namespace dxf

