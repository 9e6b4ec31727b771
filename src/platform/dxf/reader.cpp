// Reading: one pass over the tags that checks them and turns records into objects, each keeping
// its record's tags as the writer's template. When the file turns out bad, what was built is
// discarded: the database is left empty.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <map>
#include <span>
#include <unordered_map>
#include <unordered_set>

#include "platform/db/arc.hpp"
#include "platform/db/block_reference.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/carried.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/dictionary.hpp"
#include "platform/db/dimension.hpp"
#include "platform/db/ellipse.hpp"
#include "platform/db/line.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/db/polyline.hpp"
#include "platform/db/polyline_classic.hpp"
#include "platform/db/spline.hpp"
#include "platform/db/text.hpp"
#include "platform/dxf/codepage.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/mapped_file.hpp"
#include "platform/dxf/model.hpp"
#include "platform/dxf/tagger.hpp"

namespace dxf {

std::string VersionName(AcDb::AcDbDwgVersion version) {
    switch (version) {
        case AcDb::kDHL_1009: return "AC1009";
        case AcDb::kDHL_1012: return "AC1012";
        case AcDb::kDHL_1014: return "AC1014";
        case AcDb::kDHL_1015: return "AC1015";
        case AcDb::kDHL_1021: return "AC1021";
        case AcDb::kDHL_1024: return "AC1024";
        case AcDb::kDHL_1027: return "AC1027";
        case AcDb::kDHL_1032: return "AC1032";
        default: return "AC1018";
    }
}

AcDb::AcDbDwgVersion VersionFromName(std::string_view name) {
    static const std::pair<std::string_view, AcDb::AcDbDwgVersion> known[] = {
        {"AC1009", AcDb::kDHL_1009}, {"AC1012", AcDb::kDHL_1012}, {"AC1014", AcDb::kDHL_1014},
        {"AC1015", AcDb::kDHL_1015}, {"AC1018", AcDb::kDHL_1018}, {"AC1021", AcDb::kDHL_1021},
        {"AC1024", AcDb::kDHL_1024}, {"AC1027", AcDb::kDHL_1027}, {"AC1032", AcDb::kDHL_1032}};
    for (auto& [n, v] : known)
        if (n == name) return v;
    if (name < "AC1009") return AcDb::kDHL_1009;
    return name > "AC1032" ? AcDb::kDHL_1032 : AcDb::kDHL_Unknown;
}

bool LooksLikeDxf(std::string_view head) {
    if (head.substr(0, kBinarySentinel.size()) == kBinarySentinel) return true;
    size_t i = 0;
    if (head.substr(0, 3) == "\xEF\xBB\xBF") i = 3;
    // Comments and stray header values may come first; the first structure tag must be
    // 0 SECTION.
    TagCursor cursor(head.substr(i, 4096));
    Tag tag;
    while (cursor.next(tag))
        if (tag.code == 0) return tag.value == "SECTION";
    return false;
}

namespace {

struct ReadError {
    DxfError error = DxfError::kNone;
    int line = 0;
    std::string reason;
    Acad::ErrorStatus status = Acad::eOk;
};

// What the header tells about the records after it.
struct FileFacts {
    AcDb::AcDbDwgVersion version = AcDb::kDHL_1009;
    int codePage = 1252;
    std::uint64_t handseed = 0;
};

bool ParseHandle(std::string_view text, std::uint64_t& value) {
    value = 0;
    if (text.empty() || text.size() > 16) return false;
    for (char c : text) {
        int d = (c >= '0' && c <= '9') ? c - '0'
                : (c >= 'A' && c <= 'F') ? c - 'A' + 10
                : (c >= 'a' && c <= 'f') ? c - 'a' + 10 : -1;
        if (d < 0) return false;
        value = value * 16 + static_cast<unsigned>(d);
    }
    return true;
}

bool ValidNumber(ValueKind kind, std::string_view v) {
    if (kind == ValueKind::kDouble) {
        double d;
        return IsPlainDecimal(v) || ParseDouble(v, d);
    }
    if (IsIntegerKind(kind)) {
        long long i;
        double d;
        return ParseInteger(v, i) || (ParseDouble(v, d) && std::floor(d) == d);
    }
    return true;
}

// Walks the records of the text: the 0 tag and every tag up to the next 0, checking each tag's
// group code and number on the way. A bad tag ends the walk with error() set. Nothing after
// EOF is read.
class RecordReader {
public:
    explicit RecordReader(std::string_view text) : m_cursor(text) { m_has = take(m_pending); }
    bool next(std::vector<Tag>& record) {
        record.clear();
        while (m_has && m_pending.code == 999) m_has = take(m_pending);
        if (!m_has) return false;
        record.push_back(m_pending);
        if (m_pending.code == 0 && m_pending.value == "EOF") {
            m_has = false;
            return true;
        }
        while ((m_has = take(m_pending)) && m_pending.code != 0)
            if (m_pending.code != 999) record.push_back(m_pending);
        return m_error.error == DxfError::kNone;
    }
    const ReadError& error() const { return m_error; }
    int lastLine() const { return m_lastLine; }

private:
    bool take(Tag& tag) {
        if (!m_cursor.next(tag)) {
            const std::string& e = m_cursor.error();
            if (!e.empty())
                m_error = {e.rfind("file ends", 0) == 0 ? DxfError::kTruncated : DxfError::kBadGroupCode,
                           m_cursor.line(), e};
            return false;
        }
        m_lastLine = tag.line;
        ValueKind kind = KindOfCode(tag.code);
        if (kind == ValueKind::kInvalid)
            m_error = {DxfError::kBadGroupCode, tag.line, "unknown group code " + std::to_string(tag.code)};
        else if (!ValidNumber(kind, tag.value))
            m_error = {DxfError::kBadNumber, tag.line + 1,
                       "value '" + std::string(tag.value.substr(0, 40)) + "' of group code " +
                           std::to_string(tag.code) + " is not a number"};
        return m_error.error == DxfError::kNone;
    }
    TagCursor m_cursor;
    Tag m_pending;
    bool m_has = false;
    int m_lastLine = 0;
    ReadError m_error;
};

// The order of sections and records: sections named, not nested, closed, and the file ended
// by EOF outside them. Tags before the first section are allowed (comments, stray values).
class SectionOrder {
public:
    // Checks a record; the current section is then section().
    ReadError enter(const std::vector<Tag>& record) {
        const Tag& head = record[0];
        if (head.code != 0) {
            if (!m_names.empty()) return outside(head);
            return {};
        }
        if (head.value == "SECTION") {
            if (!m_section.empty()) return {DxfError::kBadStructure, head.line, "SECTION inside section " + std::string(m_section)};
            if (record.size() < 2 || record[1].code != 2)
                return {DxfError::kBadStructure, record.size() < 2 ? head.line : record[1].line, "SECTION without a name"};
            m_section = record[1].value;
            m_names.push_back(m_section);
            return {};
        }
        if (head.value == "ENDSEC") {
            if (m_section.empty()) return {DxfError::kBadStructure, head.line, "ENDSEC outside a section"};
            m_section = {};
            return record.size() > 1 ? outside(record[1]) : ReadError{};
        }
        if (head.value == "EOF") {
            if (!m_section.empty()) return {DxfError::kTruncated, head.line, "EOF inside section " + std::string(m_section)};
            m_ended = true;
            return {};
        }
        if (m_section.empty())
            return {DxfError::kBadStructure, head.line, "record " + std::string(head.value.substr(0, 40)) + " outside a section"};
        return {};
    }
    std::string_view section() const { return m_section; }
    // What the whole file lacks, once it has been read to its last line.
    ReadError finish(AcDb::AcDbDwgVersion version, int lastLine) const {
        if (!m_ended) return {DxfError::kTruncated, lastLine, "the file ends before EOF"};
        if (!has("ENTITIES")) return {DxfError::kMissingSection, lastLine, "no ENTITIES section"};
        if (version >= AcDb::kDHL_1015)
            for (const char* needed : {"TABLES", "BLOCKS", "OBJECTS"})
                if (!has(needed)) return {DxfError::kMissingSection, lastLine, std::string("no ") + needed + " section"};
        return {};
    }

private:
    static ReadError outside(const Tag& t) {
        return {DxfError::kBadStructure, t.line, "group code " + std::to_string(t.code) + " outside a section"};
    }
    bool has(std::string_view name) const { return std::find(m_names.begin(), m_names.end(), name) != m_names.end(); }
    std::string_view m_section;  // in the text, which stays mapped while it is read
    std::vector<std::string_view> m_names;
    bool m_ended = false;
};

double Real(std::string_view v) {
    double d = 0.0;
    ParseDouble(v, d);
    return d;
}

long long Integer(std::string_view v) {
    long long i = 0;
    if (ParseInteger(v, i)) return i;
    double d = Real(v);
    return std::fabs(d) < 9.2e18 ? static_cast<long long>(d) : 0;
}

// An enumerated value of the file, kept within the enumeration's range.
template <typename E>
E Enumerated(std::string_view v, int low, int high, E fallback) {
    long long i = Integer(v);
    return i < low || i > high ? fallback : static_cast<E>(i);
}

std::string Upper(std::wstring_view s) {
    std::string out = Utf8(s);
    for (auto& c : out) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return out;
}

// Sets coordinate `axis` (0 x, 1 y, 2 z) of a point from a group code of base+10*axis.
void SetAxis(AcGePoint3d& p, int code, int base, double v) { p[(code - base) / 10] = v; }
void SetAxis(AcGeVector3d& p, int code, int base, double v) {
    if (code == base) p.x = v;
    else if (code == base + 10) p.y = v;
    else p.z = v;
}

class Builder {
public:
    explicit Builder(AcDbDatabase& db) : m_db(db) {}
    ReadError build(std::string_view text, MappedFile* file);

private:
    // ---- tags ----
    void toRawTags(std::span<const Tag> record, AcDbRawTags& tags,
                   std::vector<AcDbObject::XDataGroup>* xdata);
    std::string_view value(const Tag& tag);
    AcDbObjectId idOf(std::string_view handleText);
    // The record's own handle (5, or 105 of a dimension style); null when it has none.
    static AcDbHandle handleOf(const AcDbRawTags& tags);

    // ---- sections ----
    void readHeader(const std::vector<Tag>& record);
    void readTableRecord(const std::vector<Tag>& record);
    void readBlockRecord(const std::vector<Tag>& record);
    void readEntityRecord(const std::vector<Tag>& record);
    void readObjectRecord(const std::vector<Tag>& record);

    // ---- objects ----
    // Adds an object under its record's handle; one without gets a provisional handle.
    AcDbObjectId add(AcDbObject* object, AcDbHandle handle);
    AcDbHandle provisionalHandle();
    void readHead(AcDbObject& o);
    AcDbEntity* newEntity(std::string_view type, const AcDbRawTags& tags);
    void readEntity(AcDbEntity& e);
    AcDbSymbolTable* tableFor(const std::string& name);
    AcDbBlockTableRecord* blockRecordNamed(const std::wstring& name);
    void attachEntity(AcDbEntity* e, AcDbObjectId id);
    void readDimStyleXData(AcDbDimension& d);
    void resolveNames();

    AcDbDatabase& m_db;
    FileFacts m_facts;
    std::uint64_t m_nextHandle = 1;
    // Handles given to objects whose records had none. The file has not named them yet; if a
    // later record does, the earlier object moves to another.
    std::unordered_set<std::uint64_t> m_provisional;
    std::string m_tableName;
    AcDbSymbolTable* m_table = nullptr;
    std::map<std::string, AcDbSymbolTable*> m_tables;
    std::unordered_map<std::string, AcDbBlockTableRecord*> m_blocks;  // by upper-case name
    AcDbBlockTableRecord* m_currentBlock = nullptr;
    AcDbBlockReference* m_openInsert = nullptr;
    AcDbEntity* m_openPolyline = nullptr;
    bool m_firstObject = true;
    std::vector<std::pair<AcDbBlockReference*, std::wstring>> m_insertNames;
    std::vector<std::pair<AcDbDimension*, std::wstring>> m_dimBlockNames;
    std::vector<std::pair<AcDbLayerTableRecord*, std::wstring>> m_layerLinetypes;
    std::string m_scratch;
    AcDbRawTags m_packed;
};

// The value as the database keeps it: strings in UTF-8, integers without a plus sign or a
// fraction. Most values are kept as the file has them.
std::string_view Builder::value(const Tag& tag) {
    ValueKind kind = KindOfCode(tag.code);
    if (kind == ValueKind::kString) {
        if (DecodesUnchanged(tag.value, m_facts.codePage)) return tag.value;
        DecodeText(tag.value, m_facts.codePage, m_scratch);
        return m_scratch;
    }
    if (IsIntegerKind(kind)) {
        long long i;
        bool plain = ParseInteger(tag.value, i);
        if (!plain || tag.value.front() == '+') {
            m_scratch = std::to_string(plain ? i : Integer(tag.value));
            return m_scratch;
        }
    }
    return tag.value;
}

// Packs the record's tags onto a list (the extension data apart when xdata is given). The tags
// are packed into a buffer kept between records, so that the list grows once, by their size.
void Builder::toRawTags(std::span<const Tag> record, AcDbRawTags& tags,
                        std::vector<AcDbObject::XDataGroup>* xdata) {
    m_packed.clear();
    AcDbRawTags* into = &m_packed;
    for (const Tag& t : record) {
        if (xdata && t.code == 1001) {
            xdata->push_back({Wide(value(t)), {}});
            into = &xdata->back().tags;
            continue;
        }
        into->push_back(t.code, value(t));
    }
    tags.append(m_packed);
}

AcDbObjectId Builder::idOf(std::string_view text) {
    std::uint64_t h = 0;
    AcDbObjectId id;
    if (ParseHandle(text, h) && h != 0) m_db.getAcDbObjectId(id, true, AcDbHandle(h));
    return id;
}

AcDbHandle Builder::handleOf(const AcDbRawTags& tags) {
    for (const auto& t : tags) {
        if (t.code == 5 || t.code == 105) {
            std::uint64_t h = 0;
            if (ParseHandle(t.value, h)) return AcDbHandle(h);
            break;
        }
        if (t.code == 100) break;
    }
    return {};
}

// Above every handle the database has met so far, and not below the header's $HANDSEED.
AcDbHandle Builder::provisionalHandle() {
    std::uint64_t h = std::max(m_nextHandle, m_db.handseed().value());
    m_nextHandle = h + 1;
    m_provisional.insert(h);
    return AcDbHandle(h);
}

AcDbObjectId Builder::add(AcDbObject* object, AcDbHandle handle) {
    AcDbObjectId id;
    if (handle.isNull()) handle = provisionalHandle();
    if (m_db.addAcDbObjectWithHandle(id, object, handle) != Acad::eOk) {
        AcDbObjectId earlier;
        if (m_provisional.erase(handle.value()) != 0 &&
            m_db.getAcDbObjectId(earlier, false, handle) == Acad::eOk &&
            m_db.moveToHandle(earlier, provisionalHandle()) == Acad::eOk) {
            m_db.addAcDbObjectWithHandle(id, object, handle);
        } else {
            // A handle used twice: the later object takes a fresh one.
            m_db.addAcDbObjectWithHandle(id, object, provisionalHandle());
        }
    }
    // The reader fills the object's fields directly; a drawing read leaves nothing open.
    object->close();
    return id;
}

// The record's head: owner, reactors and extension dictionary.
void Builder::readHead(AcDbObject& o) {
    const auto& tags = o.fileTags();
    if (tags.empty()) return;
    bool ownerSeen = false;
    for (auto it = std::next(tags.begin()), end = tags.end(); it != end && it->code != 100; ++it) {
        AcDbRawTag t = *it;
        if (t.code == 102) {
            bool reactors = t.value == "{ACAD_REACTORS", xdict = t.value == "{ACAD_XDICTIONARY";
            for (++it; it != end && it->code != 102; ++it) {
                if (reactors && it->code == 330) {
                    AcDbObjectId id = idOf(it->value);
                    if (!id.isNull()) o.persistentReactors().append(id);
                } else if (xdict && it->code == 360) {
                    o.setExtensionDictionary(idOf(it->value));
                }
            }
            if (it == end) break;
        } else if (t.code == 330 && !ownerSeen) {
            ownerSeen = true;
            o.setOwnerId(idOf(t.value));
        }
    }
}

// Calls fn(marker, tag) for the tags of the record after its head, skipping application
// groups and stopping at an embedded object.
template <typename Fn>
void ForEachBodyTag(const AcDbRawTags& tags, Fn fn) {
    if (tags.empty()) return;
    std::string_view marker;
    for (auto it = std::next(tags.begin()), end = tags.end(); it != end; ++it) {
        AcDbRawTag t = *it;
        if (t.code == 101) return;
        if (t.code == 100) {
            marker = t.value;
            continue;
        }
        if (t.code == 102) {
            do ++it;
            while (it != end && it->code != 102);
            if (it == end) return;
            continue;
        }
        if (marker.empty() && (t.code == 5 || t.code == 105 || t.code == 330)) continue;
        fn(marker, t);
    }
}

void ReadCommon(AcDbEntity& e, std::string_view marker, const AcDbRawTag& t) {
    if (!marker.empty() && marker != "AcDbEntity") return;
    std::string_view v = t.value;
    switch (t.code) {
        case 8: e.setLayerName(Wide(v)); break;
        case 6: e.setLinetypeName(Wide(v)); break;
        case 62: {
            AcCmColor c = e.color();
            long long i = std::llabs(Integer(v));
            AcCmColor n;
            n.setColorIndex(static_cast<std::uint16_t>(i > 257 ? 256 : i));
            if (c.hasTrueColor()) n.setTrueColor(c.trueColor());
            n.setColorName(c.colorName());
            e.setColor(n);
            break;
        }
        case 420: {
            AcCmColor c = e.color();
            c.setTrueColor(static_cast<std::uint32_t>(Integer(v)));
            e.setColor(c);
            break;
        }
        case 430: {
            AcCmColor c = e.color();
            c.setColorName(Wide(v));
            e.setColor(c);
            break;
        }
        case 370: e.setLineWeight(static_cast<AcDb::LineWeight>(Integer(v))); break;
        case 48: e.setLinetypeScale(Real(v)); break;
        case 60: e.setVisibility(Integer(v) ? AcDb::kInvisible : AcDb::kVisible); break;
        case 67: e.setInPaperSpace(Integer(v) != 0); break;
        default: break;
    }
}

bool InEntityPart(std::string_view marker) { return marker != "AcDbEntity"; }

void ReadLine(AcDbLine& e, const AcDbRawTags& tags) {
    AcGePoint3d s, t;
    AcGeVector3d n = AcGeVector3d::kZAxis;
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        double v = Real(tag.value);
        if (tag.code == 10 || tag.code == 20 || tag.code == 30) SetAxis(s, tag.code, 10, v);
        else if (tag.code == 11 || tag.code == 21 || tag.code == 31) SetAxis(t, tag.code, 11, v);
        else if (tag.code >= 210 && tag.code <= 230 && tag.code % 10 == 0) SetAxis(n, tag.code, 210, v);
        else if (tag.code == 39) e.setThickness(v);
    });
    e.setStartPoint(s);
    e.setEndPoint(t);
    e.setNormal(n);
}

// Circle and arc share their centre, radius, thickness and normal.
template <typename T>
void ReadRound(T& e, const AcDbRawTags& tags, double* start, double* end) {
    AcGePoint3d c;
    AcGeVector3d n = AcGeVector3d::kZAxis;
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        double v = Real(tag.value);
        switch (tag.code) {
            case 10: case 20: case 30: SetAxis(c, tag.code, 10, v); break;
            case 210: case 220: case 230: SetAxis(n, tag.code, 210, v); break;
            case 40: e.setRadius(v); break;
            case 39: e.setThickness(v); break;
            case 50: if (start) *start = v / kDegrees; break;
            case 51: if (end) *end = v / kDegrees; break;
            default: break;
        }
    });
    // The file gives the centre in the object coordinates of the normal; the database keeps it
    // in world coordinates, as the host does.
    e.setNormal(n);
    e.setCenter(AcGeMatrix3d::planeToWorld(e.normal()) * c);
}

void ReadPoint(AcDbPoint& e, const AcDbRawTags& tags) {
    AcGePoint3d p;
    AcGeVector3d n = AcGeVector3d::kZAxis;
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        double v = Real(tag.value);
        switch (tag.code) {
            case 10: case 20: case 30: SetAxis(p, tag.code, 10, v); break;
            case 210: case 220: case 230: SetAxis(n, tag.code, 210, v); break;
            case 39: e.setThickness(v); break;
            case 50: e.setEcsRotation(v / kDegrees); break;
            default: break;
        }
    });
    e.setPosition(p);
    e.setNormal(n);
}

// Texts, attribute definitions and attributes. Attributes keep the field length under 73 and
// the vertical alignment under 74; a text has its vertical alignment under 73.
template <typename T>
void ReadText(T& e, const AcDbRawTags& tags, AcDbDatabase& db, bool attribute) {
    AcGePoint3d p, a;
    AcGeVector3d n = AcGeVector3d::kZAxis;
    bool hasAlignment = false;
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        std::string_view s = tag.value;
        switch (tag.code) {
            case 10: case 20: case 30: SetAxis(p, tag.code, 10, Real(s)); break;
            case 11: case 21: case 31: SetAxis(a, tag.code, 11, Real(s)); hasAlignment = true; break;
            case 210: case 220: case 230: SetAxis(n, tag.code, 210, Real(s)); break;
            case 39: e.setThickness(Real(s)); break;
            case 40: e.setHeight(Real(s)); break;
            case 1: e.setTextString(Wide(s)); break;
            case 50: e.setRotation(Real(s) / kDegrees); break;
            case 41: e.setWidthFactor(Real(s)); break;
            case 51: e.setOblique(Real(s) / kDegrees); break;
            case 7: {
                AcDbTextStyleTable* table = nullptr;
                AcDbObjectId id;
                if (!db.textStyleTableId().isNull() && db.textStyleTableId().stub()->object &&
                    (table = AcDbTextStyleTable::cast(db.textStyleTableId().stub()->object.get())) &&
                    table->getAt(Wide(s), id) == Acad::eOk)
                    e.setTextStyle(id);
                break;
            }
            case 71: e.mirrorInX((Integer(s) & 2) != 0); e.mirrorInY((Integer(s) & 4) != 0); break;
            case 72: e.setHorizontalMode(Enumerated(s, 0, 5, AcDb::kTextLeft)); break;
            case 73:
                if (!attribute) e.setVerticalMode(Enumerated(s, 0, 3, AcDb::kTextBase));
                break;
            case 74:
                if (attribute) e.setVerticalMode(Enumerated(s, 0, 3, AcDb::kTextBase));
                break;
            default: break;
        }
    });
    e.setPosition(p);
    e.setAlignmentPoint(hasAlignment ? a : p);
    e.setNormal(n);
}

template <typename T>
void ReadAttributeFields(T& e, const AcDbRawTags& tags, bool definition) {
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (m == "AcDbText" || m == "AcDbEntity") return;
        switch (tag.code) {
            case 2: e.setTag(Wide(tag.value)); break;
            case 70: e.setAttributeFlags(static_cast<int>(Integer(tag.value))); break;
            case 73: e.setFieldLength(static_cast<int>(Integer(tag.value))); break;
            case 3:
                if constexpr (std::is_same_v<T, AcDbAttributeDefinition>)
                    if (definition) e.setPrompt(Wide(tag.value));
                break;
            default: break;
        }
    });
}

AcDbObjectId StyleId(AcDbDatabase& db, AcDbObjectId tableId, const std::wstring& name) {
    AcDbObjectId id;
    if (tableId.isNull() || !tableId.stub()->object) return id;
    if (auto* table = AcDbSymbolTable::cast(tableId.stub()->object.get())) table->getAt(name, id);
    return id;
}

void ReadMText(AcDbMText& e, const AcDbRawTags& tags, AcDbDatabase& db) {
    AcGePoint3d p;
    AcGeVector3d n = AcGeVector3d::kZAxis, d = AcGeVector3d::kXAxis;
    std::string contents, last;
    double rotation = 0.0;
    bool hasDirection = false;
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (m != "AcDbMText" && !m.empty()) return;
        std::string_view s = tag.value;
        switch (tag.code) {
            case 10: case 20: case 30: SetAxis(p, tag.code, 10, Real(s)); break;
            case 11: case 21: case 31: SetAxis(d, tag.code, 11, Real(s)); hasDirection = true; break;
            case 210: case 220: case 230: SetAxis(n, tag.code, 210, Real(s)); break;
            case 40: e.setTextHeight(Real(s)); break;
            case 41: e.setWidth(Real(s)); break;
            case 71: e.setAttachment(Enumerated(s, 1, 9, AcDbMText::kTopLeft)); break;
            case 72: e.setFlowDirection(static_cast<int>(Integer(s))); break;
            case 3: contents += s; break;
            case 1: last = s; break;
            case 7: e.setTextStyle(StyleId(db, db.textStyleTableId(), Wide(s))); break;
            case 44: e.setLineSpacingFactor(Real(s)); break;
            case 50: rotation = Real(s) / kDegrees; break;  // degrees, as for every other angle
            default: break;
        }
    });
    e.setContents(Wide(contents + last));
    e.setLocation(p);
    e.setNormal(n);
    if (hasDirection) e.setDirection(d);
    else if (rotation != 0.0) e.setDirection({std::cos(rotation), std::sin(rotation), 0.0});
}

void ReadLwPolyline(AcDbPolyline& e, const AcDbRawTags& tags) {
    AcGeVector3d n = AcGeVector3d::kZAxis;
    auto& verts = e.vertices();
    double constantWidth = 0.0;
    bool constant = false;
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        double v = Real(tag.value);
        switch (tag.code) {
            case 70:
                e.setClosed((Integer(tag.value) & 1) != 0);
                e.setPlinegen((Integer(tag.value) & 128) != 0);
                break;
            case 43: constant = true; constantWidth = v; break;
            case 38: e.setElevation(v); break;
            case 39: e.setThickness(v); break;
            case 10: verts.push_back({{v, 0.0}, 0.0, 0.0, 0.0}); break;
            case 20: if (!verts.empty()) verts.back().point.y = v; break;
            case 40: if (!verts.empty()) verts.back().startWidth = v; break;
            case 41: if (!verts.empty()) verts.back().endWidth = v; break;
            case 42: if (!verts.empty()) verts.back().bulge = v; break;
            case 210: case 220: case 230: SetAxis(n, tag.code, 210, v); break;
            default: break;
        }
    });
    if (constant) {
        for (auto& v : verts) v.startWidth = v.endWidth = constantWidth;
        e.setConstantWidthTag(true);
    }
    e.setNormal(n);
}

void ReadSpline(AcDbSpline& e, const AcDbRawTags& tags) {
    AcGeVector3d n = AcGeVector3d::kZAxis, st, et;
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        double v = Real(tag.value);
        switch (tag.code) {
            case 210: case 220: case 230: SetAxis(n, tag.code, 210, v); break;
            case 70: {
                int f = static_cast<int>(Integer(tag.value));
                e.setSplineFlags(f);
                e.setClosed(f & 1);
                e.setPeriodic(f & 2);
                e.setPlanar(f & 8);
                break;
            }
            case 71: e.setDegree(static_cast<int>(Integer(tag.value))); break;
            case 42: e.setKnotTolerance(v); break;
            case 43: e.setControlPointTolerance(v); break;
            case 44: e.setFitTolerance(v); break;
            case 12: case 22: case 32: SetAxis(st, tag.code, 12, v); break;
            case 13: case 23: case 33: SetAxis(et, tag.code, 13, v); break;
            case 40: e.knots().push_back(v); break;
            case 41: e.weights().push_back(v); break;
            case 10: e.controlPoints().push_back({v, 0.0, 0.0}); break;
            case 20: if (!e.controlPoints().empty()) e.controlPoints().back().y = v; break;
            case 30: if (!e.controlPoints().empty()) e.controlPoints().back().z = v; break;
            case 11: e.fitPoints().push_back({v, 0.0, 0.0}); break;
            case 21: if (!e.fitPoints().empty()) e.fitPoints().back().y = v; break;
            case 31: if (!e.fitPoints().empty()) e.fitPoints().back().z = v; break;
            default: break;
        }
    });
    e.setNormal(n);
    e.setStartFitTangent(st);
    e.setEndFitTangent(et);
}

void ReadEllipse(AcDbEllipse& e, const AcDbRawTags& tags) {
    AcGePoint3d c;
    AcGeVector3d n = AcGeVector3d::kZAxis, major = AcGeVector3d::kXAxis;
    double ratio = 1.0, start = 0.0, end = 6.283185307179586;
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        double v = Real(tag.value);
        switch (tag.code) {
            case 10: case 20: case 30: SetAxis(c, tag.code, 10, v); break;
            case 11: case 21: case 31: SetAxis(major, tag.code, 11, v); break;
            case 210: case 220: case 230: SetAxis(n, tag.code, 210, v); break;
            case 40: ratio = v; break;
            case 41: start = v; break;
            case 42: end = v; break;
            default: break;
        }
    });
    e.set(c, n, major, ratio, start, end);
    e.setStartParam(start);
    e.setEndParam(end);
}

void ReadBlockReference(AcDbBlockReference& e, const AcDbRawTags& tags, std::wstring& blockName) {
    AcGePoint3d p;
    AcGeVector3d n = AcGeVector3d::kZAxis;
    AcGeScale3d s;
    auto* minsert = AcDbMInsertBlock::cast(&e);
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        double v = Real(tag.value);
        switch (tag.code) {
            case 2: blockName = Wide(tag.value); break;
            case 10: case 20: case 30: SetAxis(p, tag.code, 10, v); break;
            case 210: case 220: case 230: SetAxis(n, tag.code, 210, v); break;
            case 41: s.sx = v; break;
            case 42: s.sy = v; break;
            case 43: s.sz = v; break;
            case 50: e.setRotation(v / kDegrees); break;
            case 70: if (minsert) minsert->setColumns(static_cast<int>(Integer(tag.value))); break;
            case 71: if (minsert) minsert->setRows(static_cast<int>(Integer(tag.value))); break;
            case 44: if (minsert) minsert->setColumnSpacing(v); break;
            case 45: if (minsert) minsert->setRowSpacing(v); break;
            default: break;
        }
    });
    e.setPosition(p);
    e.setScaleFactors(s);
    e.setNormal(n);
}

struct DimensionPoints {
    AcGePoint3d p[7];  // group codes 10 to 16
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    double rotation = 0.0, oblique = 0.0, leader = 0.0;
};

void ReadDimension(AcDbDimension& e, const AcDbRawTags& tags, AcDbDatabase& db,
                   std::wstring& blockName) {
    DimensionPoints d;
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        std::string_view s = tag.value;
        int c = tag.code;
        if (c >= 10 && c <= 36 && c % 10 <= 6) {
            d.p[c % 10][c / 10 - 1] = Real(s);
            return;
        }
        switch (c) {
            case 2: blockName = Wide(s); break;
            case 3: e.setDimensionStyle(StyleId(db, db.dimStyleTableId(), Wide(s))); break;
            case 1: e.setDimensionText(Wide(s)); break;
            case 42: e.setStoredMeasurement(Real(s)); break;
            case 53: e.setTextRotation(Real(s) / kDegrees); break;
            case 50: d.rotation = Real(s) / kDegrees; break;
            case 52: d.oblique = Real(s) / kDegrees; break;
            case 40: d.leader = Real(s); break;
            case 210: case 220: case 230: SetAxis(d.normal, c, 210, Real(s)); break;
            case 70: {
                int f = static_cast<int>(Integer(s));
                e.setDimFlags(f & ~(7 | 64));
                if (f & 128) e.useSetTextPosition();
                if (auto* o = AcDbOrdinateDimension::cast(&e)) (f & 64) ? o->useXAxis() : o->useYAxis();
                break;
            }
            default: break;
        }
    });
    e.setTextPosition(d.p[1]);
    e.setNormal(d.normal);
    if (auto* x = AcDbRotatedDimension::cast(&e)) {
        x->setDimLinePoint(d.p[0]);
        x->setXLine1Point(d.p[3]);
        x->setXLine2Point(d.p[4]);
        x->setRotation(d.rotation);
        x->setOblique(d.oblique);
    } else if (auto* x = AcDbAlignedDimension::cast(&e)) {
        x->setDimLinePoint(d.p[0]);
        x->setXLine1Point(d.p[3]);
        x->setXLine2Point(d.p[4]);
        x->setOblique(d.oblique);
    } else if (auto* x = AcDb2LineAngularDimension::cast(&e)) {
        x->setXLine1Start(d.p[3]);
        x->setXLine1End(d.p[4]);
        x->setXLine2Start(d.p[5]);
        x->setXLine2End(d.p[0]);
        x->setArcPoint(d.p[6]);
    } else if (auto* x = AcDbDiametricDimension::cast(&e)) {
        x->setFarChordPoint(d.p[0]);
        x->setChordPoint(d.p[5]);
        x->setLeaderLength(d.leader);
    } else if (auto* x = AcDbRadialDimension::cast(&e)) {
        x->setCenter(d.p[0]);
        x->setChordPoint(d.p[5]);
        x->setLeaderLength(d.leader);
    } else if (auto* x = AcDbOrdinateDimension::cast(&e)) {
        x->setOrigin(d.p[0]);
        x->setDefiningPoint(d.p[3]);
        x->setLeaderEndPoint(d.p[4]);
    } else {
        e.setDimBlockPosition(d.p[0]);
    }
}

AcDbDimension* NewDimension(const AcDbRawTags& tags) {
    int type = 0;
    ForEachBodyTag(tags, [&](std::string_view, const AcDbRawTag& t) {
        if (t.code == 70) type = static_cast<int>(Integer(t.value)) & 7;
    });
    switch (type) {
        case 0: return new AcDbRotatedDimension();
        case 1: return new AcDbAlignedDimension();
        case 2: return new AcDb2LineAngularDimension();
        case 3: return new AcDbDiametricDimension();
        case 4: return new AcDbRadialDimension();
        case 6: return new AcDbOrdinateDimension();
        default: {
            auto* d = new AcDbCarriedDimension();
            d->setDimType(type);
            return d;
        }
    }
}

void ReadPolyline2d(AcDb2dPolyline& e, const AcDbRawTags& tags) {
    AcGeVector3d n = AcGeVector3d::kZAxis;
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        double v = Real(tag.value);
        switch (tag.code) {
            case 30: e.setElevation(v); break;
            case 39: e.setThickness(v); break;
            case 70: e.setPolylineFlags(static_cast<int>(Integer(tag.value))); e.setClosed(static_cast<int>(Integer(tag.value)) & 1); break;
            case 40: e.setDefaultStartWidth(v); break;
            case 41: e.setDefaultEndWidth(v); break;
            case 75: {
                int t = static_cast<int>(Integer(tag.value));
                e.setPolyType(t == 5 ? AcDb::k2dQuadSplinePoly : t == 6 ? AcDb::k2dCubicSplinePoly
                              : t == 8 ? AcDb::k2dFitCurvePoly : AcDb::k2dSimplePoly);
                break;
            }
            case 210: case 220: case 230: SetAxis(n, tag.code, 210, v); break;
            default: break;
        }
    });
    e.setNormal(n);
}

void ReadPolyline3d(AcDb3dPolyline& e, const AcDbRawTags& tags) {
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        int v = static_cast<int>(Integer(tag.value));
        if (tag.code == 70) {
            e.setPolylineFlags(v);
            e.setClosed(v & 1);
        } else if (tag.code == 75) {
            e.setPolyType(v == 5 ? AcDb::k3dQuadSplinePoly : v == 6 ? AcDb::k3dCubicSplinePoly
                                                                    : AcDb::k3dSimplePoly);
        }
    });
}

template <typename V>
void ReadVertexFields(V& v, const AcDbRawTags& tags) {
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        double d = Real(tag.value);
        switch (tag.code) {
            case 10: case 20: case 30: SetAxis(v.position, tag.code, 10, d); break;
            case 70: v.flags = static_cast<int>(Integer(tag.value)); break;
            default:
                if constexpr (std::is_same_v<V, AcDb2dVertex>) {
                    if (tag.code == 40) v.startWidth = d;
                    else if (tag.code == 41) v.endWidth = d;
                    else if (tag.code == 42) v.bulge = d;
                    else if (tag.code == 50) v.tangent = d / kDegrees;
                }
                break;
        }
    });
}

int PolylineFlags(const AcDbRawTags& tags) {
    int flags = 0;
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& t) {
        if (t.code == 70 && InEntityPart(m)) flags = static_cast<int>(Integer(t.value));
    });
    return flags;
}

AcDbEntity* NewCarried(std::string_view type) {
    static const std::map<std::string_view, AcDbEntity* (*)()> carried = {
        {"LEADER", [] () -> AcDbEntity* { return new AcDbLeader(); }},
        {"MULTILEADER", [] () -> AcDbEntity* { return new AcDbMLeader(); }},
        {"MLEADER", [] () -> AcDbEntity* { return new AcDbMLeader(); }},
        {"REGION", [] () -> AcDbEntity* { return new AcDbRegion(); }},
        {"3DSOLID", [] () -> AcDbEntity* { return new AcDb3dSolid(); }},
        {"BODY", [] () -> AcDbEntity* { return new AcDbBody(); }},
        {"MESH", [] () -> AcDbEntity* { return new AcDbSubDMesh(); }},
        {"TOLERANCE", [] () -> AcDbEntity* { return new AcDbFcf(); }},
        {"HATCH", [] () -> AcDbEntity* { return new AcDbHatch(); }},
        {"SOLID", [] () -> AcDbEntity* { return new AcDbSolid(); }},
        {"3DFACE", [] () -> AcDbEntity* { return new AcDbFace(); }},
        {"TRACE", [] () -> AcDbEntity* { return new AcDbTrace(); }},
        {"VIEWPORT", [] () -> AcDbEntity* { return new AcDbViewport(); }},
        {"IMAGE", [] () -> AcDbEntity* { return new AcDbRasterImage(); }},
        {"WIPEOUT", [] () -> AcDbEntity* { return new AcDbWipeout(); }},
        {"RAY", [] () -> AcDbEntity* { return new AcDbRay(); }},
        {"XLINE", [] () -> AcDbEntity* { return new AcDbXline(); }},
        {"ACAD_TABLE", [] () -> AcDbEntity* { return new AcDbTable(); }},
    };
    auto it = carried.find(type);
    return it != carried.end() ? it->second() : new AcDbUnknownEntity(Wide(type));
}

AcDbEntity* Builder::newEntity(std::string_view type, const AcDbRawTags& tags) {
    if (type == "LINE") return new AcDbLine();
    if (type == "CIRCLE") return new AcDbCircle();
    if (type == "ARC") return new AcDbArc();
    if (type == "POINT") return new AcDbPoint();
    if (type == "TEXT") return new AcDbText();
    if (type == "ATTDEF") return new AcDbAttributeDefinition();
    if (type == "ATTRIB") return new AcDbAttribute();
    if (type == "MTEXT") return new AcDbMText();
    if (type == "LWPOLYLINE") return new AcDbPolyline();
    if (type == "SPLINE") return new AcDbSpline();
    if (type == "ELLIPSE") return new AcDbEllipse();
    if (type == "INSERT") {
        bool array = false;
        ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& t) {
            if (InEntityPart(m) && (t.code == 70 || t.code == 71) && Integer(t.value) > 1) array = true;
        });
        return array ? new AcDbMInsertBlock() : new AcDbBlockReference();
    }
    if (type == "DIMENSION") return NewDimension(tags);
    if (type == "POLYLINE") {
        int flags = PolylineFlags(tags);
        if (flags & 64) return new AcDbPolyFaceMesh();
        if (flags & 16) return new AcDbPolygonMesh();
        if (flags & 8) return new AcDb3dPolyline();
        return new AcDb2dPolyline();
    }
    return NewCarried(type);
}

void Builder::readDimStyleXData(AcDbDimension& d) {
    auto& groups = d.xData();
    for (size_t g = 0; g < groups.size(); ++g) {
        if (groups[g].appName != L"ACAD") continue;
        std::vector<AcDbRawTag> tags(groups[g].tags.begin(), groups[g].tags.end());
        for (size_t i = 0; i + 1 < tags.size(); ++i) {
            if (tags[i].code != 1000 || tags[i].value != "DSTYLE" || tags[i + 1].code != 1002) continue;
            size_t j = i + 2;
            for (; j + 1 < tags.size() && tags[j].code == 1070; j += 2) {
                const auto& v = tags[j + 1];
                AcDbDimVarValue value;
                switch (v.code) {
                    case 1040: value.kind = AcDbDimVarValue::kReal; value.real = Real(v.value); break;
                    case 1000: value.kind = AcDbDimVarValue::kString; value.text = Wide(v.value); break;
                    case 1005: value.kind = AcDbDimVarValue::kHandle; value.id = idOf(v.value); break;
                    default: value.kind = AcDbDimVarValue::kInt; value.integer = static_cast<int>(Integer(v.value));
                }
                d.dimVarOverrides()[static_cast<int>(Integer(tags[j].value))] = value;
            }
            if (j < tags.size() && tags[j].code == 1002) ++j;
            // The group without the overrides, which the dimension now holds.
            AcDbRawTags rest;
            for (size_t k = 0; k < tags.size(); ++k)
                if (k < i || k >= j) rest.push_back(tags[k]);
            groups[g].tags = std::move(rest);
            break;
        }
        if (groups[g].tags.empty()) groups.erase(groups.begin() + static_cast<long>(g));
        return;
    }
}

void Builder::readEntity(AcDbEntity& e) {
    const AcDbRawTags& tags = e.fileTags();
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& t) { ReadCommon(e, m, t); });
    if (auto* x = AcDbLine::cast(&e)) ReadLine(*x, tags);
    else if (auto* x = AcDbArc::cast(&e)) {
        double s = 0.0, t = 0.0;
        ReadRound(*x, tags, &s, &t);
        x->setStartAngle(s);
        x->setEndAngle(t);
    } else if (auto* x = AcDbCircle::cast(&e)) ReadRound(*x, tags, nullptr, nullptr);
    else if (auto* x = AcDbPoint::cast(&e)) ReadPoint(*x, tags);
    else if (auto* x = AcDbAttributeDefinition::cast(&e)) {
        ReadText(*x, tags, m_db, true);
        ReadAttributeFields(*x, tags, true);
    } else if (auto* x = AcDbAttribute::cast(&e)) {
        ReadText(*x, tags, m_db, true);
        ReadAttributeFields(*x, tags, false);
    } else if (auto* x = AcDbText::cast(&e)) ReadText(*x, tags, m_db, false);
    else if (auto* x = AcDbMText::cast(&e)) ReadMText(*x, tags, m_db);
    else if (auto* x = AcDbPolyline::cast(&e)) ReadLwPolyline(*x, tags);
    else if (auto* x = AcDbSpline::cast(&e)) ReadSpline(*x, tags);
    else if (auto* x = AcDbEllipse::cast(&e)) ReadEllipse(*x, tags);
    else if (auto* x = AcDbBlockReference::cast(&e)) {
        std::wstring name;
        ReadBlockReference(*x, tags, name);
        m_insertNames.push_back({x, name});
    } else if (auto* x = AcDbDimension::cast(&e)) {
        std::wstring name;
        ReadDimension(*x, tags, m_db, name);
        if (!name.empty()) m_dimBlockNames.push_back({x, name});
        readDimStyleXData(*x);
    } else if (auto* x = AcDb2dPolyline::cast(&e)) ReadPolyline2d(*x, tags);
    else if (auto* x = AcDb3dPolyline::cast(&e)) ReadPolyline3d(*x, tags);
}

AcDbSymbolTable* NewTable(const std::string& name, AcDbDatabase::TableKind& kind) {
    static const std::map<std::string, std::pair<AcDbDatabase::TableKind, AcDbSymbolTable* (*)()>> tables = {
        {"BLOCK_RECORD", {AcDbDatabase::kBlockTable, [] () -> AcDbSymbolTable* { return new AcDbBlockTable(); }}},
        {"LAYER", {AcDbDatabase::kLayerTable, [] () -> AcDbSymbolTable* { return new AcDbLayerTable(); }}},
        {"STYLE", {AcDbDatabase::kTextStyleTable, [] () -> AcDbSymbolTable* { return new AcDbTextStyleTable(); }}},
        {"LTYPE", {AcDbDatabase::kLinetypeTable, [] () -> AcDbSymbolTable* { return new AcDbLinetypeTable(); }}},
        {"DIMSTYLE", {AcDbDatabase::kDimStyleTable, [] () -> AcDbSymbolTable* { return new AcDbDimStyleTable(); }}},
        {"VIEW", {AcDbDatabase::kViewTable, [] () -> AcDbSymbolTable* { return new AcDbViewTable(); }}},
        {"VPORT", {AcDbDatabase::kViewportTable, [] () -> AcDbSymbolTable* { return new AcDbViewportTable(); }}},
        {"APPID", {AcDbDatabase::kRegAppTable, [] () -> AcDbSymbolTable* { return new AcDbRegAppTable(); }}},
        {"UCS", {AcDbDatabase::kUCSTable, [] () -> AcDbSymbolTable* { return new AcDbUCSTable(); }}},
    };
    auto it = tables.find(name);
    if (it == tables.end()) return nullptr;
    kind = it->second.first;
    return it->second.second();
}

AcDbSymbolTableRecord* NewRecord(std::string_view type) {
    if (type == "LAYER") return new AcDbLayerTableRecord();
    if (type == "STYLE") return new AcDbTextStyleTableRecord();
    if (type == "LTYPE") return new AcDbLinetypeTableRecord();
    if (type == "DIMSTYLE") return new AcDbDimStyleTableRecord();
    if (type == "VIEW") return new AcDbViewTableRecord();
    if (type == "VPORT") return new AcDbViewportTableRecord();
    if (type == "APPID") return new AcDbRegAppTableRecord();
    if (type == "UCS") return new AcDbUCSTableRecord();
    if (type == "BLOCK_RECORD") return new AcDbBlockTableRecord();
    return nullptr;
}

// A table that the file lacks (R12 has no block records) is made on first need.
AcDbSymbolTable* Builder::tableFor(const std::string& name) {
    auto it = m_tables.find(name);
    if (it != m_tables.end()) return it->second;
    AcDbDatabase::TableKind kind;
    AcDbSymbolTable* table = NewTable(name, kind);
    if (!table) return nullptr;
    AcDbObjectId id = add(table, {});
    m_db.setTableId(kind, id);
    m_tables[name] = table;
    return table;
}

AcDbBlockTableRecord* Builder::blockRecordNamed(const std::wstring& name) {
    std::string key = Upper(name);
    auto it = m_blocks.find(key);
    if (it != m_blocks.end()) return it->second;
    auto* record = new AcDbBlockTableRecord();
    record->setName(name);
    AcDbSymbolTable* table = tableFor("BLOCK_RECORD");
    AcDbObjectId id = add(record, {});
    record->setOwnerId(table->objectId());
    table->attachRecord(id);
    m_blocks[key] = record;
    return record;
}

void ReadRecordFields(AcDbSymbolTableRecord& r, const AcDbRawTags& tags,
                      std::vector<std::pair<AcDbLayerTableRecord*, std::wstring>>& linetypes,
                      std::function<AcDbObjectId(std::string_view)> idOf) {
    auto* layer = AcDbLayerTableRecord::cast(&r);
    auto* style = AcDbTextStyleTableRecord::cast(&r);
    auto* ltype = AcDbLinetypeTableRecord::cast(&r);
    auto* dim = AcDbDimStyleTableRecord::cast(&r);
    auto* view = AcDbAbstractViewTableRecord::cast(&r);
    auto* vport = AcDbViewportTableRecord::cast(&r);
    auto* ucs = AcDbUCSTableRecord::cast(&r);
    auto* block = AcDbBlockTableRecord::cast(&r);
    AcGePoint2d center;
    AcGePoint3d target, origin;
    AcGeVector3d direction = AcGeVector3d::kZAxis, xAxis = AcGeVector3d::kXAxis, yAxis = AcGeVector3d::kYAxis;
    double height = 1.0, widthOrAspect = 1.0;
    std::vector<double> dashes;
    ForEachBodyTag(tags, [&](std::string_view, const AcDbRawTag& t) {
        std::string_view s = t.value;
        int c = t.code;
        if (c == 2) { r.setName(Wide(s)); return; }
        if (c == 70 && !block) {
            int f = static_cast<int>(Integer(s));
            if (layer) {
                layer->setIsFrozen(f & 1);
                layer->setVPDFLT(f & 2);
                layer->setIsLocked(f & 4);
                f &= ~7;
            }
            r.setFlagBits(f);
            return;
        }
        if (layer) {
            if (c == 62) {
                long long i = Integer(s);
                AcCmColor col = layer->color();
                col.setColorIndex(static_cast<std::uint16_t>(std::min(std::llabs(i), 256LL)));
                layer->setColor(col);
                layer->setIsOff(i < 0);
            } else if (c == 420) {
                AcCmColor col = layer->color();
                col.setTrueColor(static_cast<std::uint32_t>(Integer(s)));
                layer->setColor(col);
            } else if (c == 6) {
                linetypes.push_back({layer, Wide(s)});
            } else if (c == 290) {
                layer->setIsPlottable(Integer(s) != 0);
            } else if (c == 370) {
                layer->setLineWeight(static_cast<AcDb::LineWeight>(Integer(s)));
            }
        } else if (style) {
            switch (c) {
                case 40: style->setTextSize(Real(s)); break;
                case 41: style->setXScale(Real(s)); break;
                case 50: style->setObliquingAngle(Real(s) / kDegrees); break;
                case 71: style->setTextGenerationFlags(static_cast<int>(Integer(s))); break;
                case 42: style->setPriorSize(Real(s)); break;
                case 3: style->setFileName(Wide(s)); break;
                case 4: style->setBigFontFileName(Wide(s)); break;
                default: break;
            }
        } else if (ltype) {
            if (c == 3) ltype->setComments(Wide(s));
            else if (c == 40) ltype->setPatternLength(Real(s));
            else if (c == 49) dashes.push_back(Real(s));
        } else if (dim) {
            if (c == 105 || c == 5) return;
            AcDbDimVarValue v;
            const AcDbDimVarInfo* info = acdbDimVarByCode(c);
            ValueKind kind = KindOfCode(c);
            if (kind == ValueKind::kHandle) { v.kind = AcDbDimVarValue::kHandle; v.id = idOf(s); }
            else if (kind == ValueKind::kString) { v.kind = AcDbDimVarValue::kString; v.text = Wide(s); }
            else if (kind == ValueKind::kDouble && (!info || info->kind == AcDbDimVarValue::kReal)) {
                v.kind = AcDbDimVarValue::kReal; v.real = Real(s);
            } else { v.kind = AcDbDimVarValue::kInt; v.integer = static_cast<int>(Integer(s)); }
            dim->dimVars()[c] = v;
        } else if (view) {
            bool vp = vport != nullptr;
            double d = Real(s);
            if (vp ? (c == 12) : (c == 10)) center.x = d;
            else if (vp ? (c == 22) : (c == 20)) center.y = d;
            else if (c == 40) height = d;
            else if (c == 41) widthOrAspect = d;
            else if ((vp && (c == 16 || c == 26 || c == 36)) || (!vp && (c == 11 || c == 21 || c == 31)))
                SetAxis(direction, c, vp ? 16 : 11, d);
            else if ((vp && (c == 17 || c == 27 || c == 37)) || (!vp && (c == 12 || c == 22 || c == 32)))
                SetAxis(target, c, vp ? 17 : 12, d);
        } else if (ucs) {
            double d = Real(s);
            if (c == 10 || c == 20 || c == 30) SetAxis(origin, c, 10, d);
            else if (c == 11 || c == 21 || c == 31) SetAxis(xAxis, c, 11, d);
            else if (c == 12 || c == 22 || c == 32) SetAxis(yAxis, c, 12, d);
        } else if (block && c == 340) {
            block->setLayoutId(idOf(s));
        }
    });
    if (ltype) ltype->setDashes(dashes);
    if (view) {
        view->setCenterPoint(center);
        view->setHeight(height);
        view->setWidth(vport ? widthOrAspect * height : widthOrAspect);
        view->setViewDirection(direction);
        view->setTarget(target);
    }
    if (ucs) {
        ucs->setOrigin(origin);
        ucs->setXAxis(xAxis);
        ucs->setYAxis(yAxis);
    }
}

void Builder::readTableRecord(const std::vector<Tag>& record) {
    std::string_view type = record[0].value;
    if (type == "TABLE") {
        m_tableName = record.size() > 1 && record[1].code == 2 ? std::string(record[1].value) : "";
        AcDbDatabase::TableKind kind;
        AcDbSymbolTable* table = NewTable(m_tableName, kind);
        m_table = nullptr;
        if (!table) return;
        toRawTags(record, table->fileTags(), &table->xData());
        readHead(*table);
        AcDbObjectId id = add(table, handleOf(table->fileTags()));
        m_db.setTableId(kind, id);
        m_tables[m_tableName] = table;
        m_table = table;
        return;
    }
    if (type == "ENDTAB" || !m_table) return;
    AcDbSymbolTableRecord* r = NewRecord(type);
    if (!r) return;
    toRawTags(record, r->fileTags(), &r->xData());
    readHead(*r);
    ReadRecordFields(*r, r->fileTags(), m_layerLinetypes, [this](std::string_view s) { return idOf(s); });
    if (r->ownerId().isNull()) r->setOwnerId(m_table->objectId());
    AcDbObjectId id = add(r, handleOf(r->fileTags()));
    m_table->attachRecord(id);
    if (auto* b = AcDbBlockTableRecord::cast(r)) m_blocks[Upper(b->name())] = b;
}

void Builder::attachEntity(AcDbEntity* e, AcDbObjectId id) {
    AcDbBlockTableRecord* owner = m_currentBlock;
    if (!owner) {
        AcDbObjectId declared = e->ownerId();
        AcDbObject* o = declared.isNull() || !declared.stub() ? nullptr : declared.stub()->object.get();
        owner = AcDbBlockTableRecord::cast(o);
        if (!owner) owner = blockRecordNamed(e->inPaperSpace() ? ACDB_PAPER_SPACE : ACDB_MODEL_SPACE);
    }
    e->setOwnerId(owner->objectId());
    owner->attachEntity(id);
}

void Builder::readEntityRecord(const std::vector<Tag>& record) {
    std::string_view type = record[0].value;
    if (type == "SEQEND") {
        AcDbRawTags tags;
        toRawTags(record, tags, nullptr);
        AcDbHandle h = handleOf(tags);
        if (m_openInsert) {
            m_openInsert->setSeqEndHandle(h);
            m_openInsert->seqEndTags() = std::move(tags);
        } else if (auto* p2 = AcDb2dPolyline::cast(m_openPolyline)) {
            p2->setSeqEndHandle(h);
            p2->seqEndTags() = std::move(tags);
        } else if (auto* p3 = AcDb3dPolyline::cast(m_openPolyline)) {
            p3->setSeqEndHandle(h);
            p3->seqEndTags() = std::move(tags);
        } else if (m_openPolyline) {
            m_openPolyline->fileTags().append(tags);
        }
        m_openInsert = nullptr;
        m_openPolyline = nullptr;
        return;
    }
    if (type == "VERTEX" && m_openPolyline) {
        AcDbRawTags tags;
        toRawTags(record, tags, nullptr);
        if (auto* p2 = AcDb2dPolyline::cast(m_openPolyline)) {
            AcDb2dVertex v;
            ReadVertexFields(v, tags);
            v.handle = handleOf(tags);
            v.fileTags = std::move(tags);
            p2->vertices().push_back(std::move(v));
        } else if (auto* p3 = AcDb3dPolyline::cast(m_openPolyline)) {
            AcDb3dPolylineVertex v;
            ReadVertexFields(v, tags);
            v.handle = handleOf(tags);
            v.fileTags = std::move(tags);
            p3->vertices().push_back(std::move(v));
        } else {
            m_openPolyline->fileTags().append(tags);
        }
        return;
    }
    AcDbRawTags tags;
    std::vector<AcDbObject::XDataGroup> xdata;
    toRawTags(record, tags, &xdata);
    AcDbEntity* e = newEntity(type, tags);
    e->fileTags() = std::move(tags);
    e->xData() = std::move(xdata);
    readHead(*e);
    readEntity(*e);
    AcDbObjectId id = add(e, handleOf(e->fileTags()));
    if (type == "ATTRIB" && m_openInsert) {
        e->setOwnerId(m_openInsert->objectId());
        m_openInsert->attachAttribute(id);
    } else {
        attachEntity(e, id);
        m_openInsert = nullptr;
        m_openPolyline = nullptr;
        if (auto* insert = AcDbBlockReference::cast(e)) {
            bool follows = false;
            ForEachBodyTag(e->fileTags(), [&](std::string_view m, const AcDbRawTag& t) {
                if (t.code == 66 && InEntityPart(m) && Integer(t.value) != 0) follows = true;
            });
            if (follows) m_openInsert = insert;
        } else if (type == "POLYLINE") {
            m_openPolyline = e;
        }
    }
}

void Builder::readBlockRecord(const std::vector<Tag>& record) {
    std::string_view type = record[0].value;
    if (type == "BLOCK") {
        AcDbRawTags tags;
        toRawTags(record, tags, nullptr);
        std::wstring name;
        AcGePoint3d origin;
        int flags = 0;
        std::wstring path, comments;
        ForEachBodyTag(tags, [&](std::string_view, const AcDbRawTag& t) {
            switch (t.code) {
                case 2: name = Wide(t.value); break;
                case 70: flags = static_cast<int>(Integer(t.value)); break;
                case 10: case 20: case 30: SetAxis(origin, t.code, 10, Real(t.value)); break;
                case 1: path = Wide(t.value); break;
                case 4: comments = Wide(t.value); break;
                default: break;
            }
        });
        m_currentBlock = blockRecordNamed(name);
        m_currentBlock->setOrigin(origin);
        m_currentBlock->setFlagBits(flags);
        m_currentBlock->setPathName(path);
        m_currentBlock->setComments(comments);
        m_currentBlock->blockBegin().handle = handleOf(tags);
        m_currentBlock->blockBegin().tags = std::move(tags);
        return;
    }
    if (type == "ENDBLK") {
        if (m_currentBlock) {
            AcDbRawTags tags;
            toRawTags(record, tags, nullptr);
            m_currentBlock->blockEnd().handle = handleOf(tags);
            m_currentBlock->blockEnd().tags = std::move(tags);
        }
        m_currentBlock = nullptr;
        return;
    }
    readEntityRecord(record);
}

void Builder::readObjectRecord(const std::vector<Tag>& record) {
    std::string_view type = record[0].value;
    AcDbObject* o = nullptr;
    if (type == "DICTIONARY" || type == "ACDBDICTIONARYWDFLT") o = new AcDbDictionary();
    else o = new AcDbUnknownObject(Wide(type));
    toRawTags(record, o->fileTags(), &o->xData());
    readHead(*o);
    if (auto* d = AcDbDictionary::cast(o)) {
        std::wstring key;
        ForEachBodyTag(o->fileTags(), [&](std::string_view m, const AcDbRawTag& t) {
            if (m != "AcDbDictionary" && !m.empty()) return;
            if (t.code == 3) key = Wide(t.value);
            else if (t.code == 350 || t.code == 360) d->setAtId(key, idOf(t.value));
        });
    }
    AcDbObjectId id = add(o, handleOf(o->fileTags()));
    if (m_firstObject && AcDbDictionary::cast(o)) m_db.setNamedObjectsDictionaryId(id);
    m_firstObject = false;
}

void Builder::readHeader(const std::vector<Tag>& record) {
    // The version and code page first: they decide how the values, these included, read.
    for (size_t i = 2; i + 1 < record.size(); ++i) {
        if (record[i].code != 9) continue;
        std::string_view name = record[i].value;
        const Tag& v = record[i + 1];
        if (name == "$ACADVER" && v.code == 1) m_facts.version = VersionFromName(v.value);
        else if (name == "$DWGCODEPAGE" && v.code == 3) m_facts.codePage = CodePageFromName(v.value);
        else if (name == "$HANDSEED" && v.code == 5) ParseHandle(v.value, m_facts.handseed);
    }
    if (m_facts.version >= AcDb::kDHL_1021) m_facts.codePage = 65001;
    m_nextHandle = std::max(m_nextHandle, m_facts.handseed);
    auto& vars = m_db.headerVars();
    for (size_t i = 2; i < record.size(); ++i) {
        const Tag& t = record[i];
        if (t.code == 9) {
            vars.push_back({std::string(t.value), {}});
            continue;
        }
        if (vars.empty()) continue;
        vars.back().second.push_back({t.code, value(t)});
    }
    // The extents the database keeps, so that a save without a new measure keeps the file's.
    for (const auto& [name, tags] : vars) {
        if (name != "$EXTMIN" && name != "$EXTMAX") continue;
        AcGePoint3d p = name == "$EXTMIN" ? m_db.extmin() : m_db.extmax();
        for (const auto& t : tags)
            if (t.code == 10 || t.code == 20 || t.code == 30) SetAxis(p, t.code, 10, Real(t.value));
        name == "$EXTMIN" ? m_db.setExtmin(p) : m_db.setExtmax(p);
    }
}

void Builder::resolveNames() {
    for (auto& [insert, name] : m_insertNames) {
        auto it = m_blocks.find(Upper(name));
        if (it != m_blocks.end()) insert->setBlockTableRecord(it->second->objectId());
    }
    for (auto& [dim, name] : m_dimBlockNames) {
        auto it = m_blocks.find(Upper(name));
        if (it != m_blocks.end()) dim->setDimBlockId(it->second->objectId());
        dim->markGraphicsCurrent();
    }
    auto* linetypes = AcDbLinetypeTable::cast(m_tables.count("LTYPE") ? m_tables["LTYPE"] : nullptr);
    for (auto& [layer, name] : m_layerLinetypes) {
        AcDbObjectId id;
        if (linetypes && linetypes->getAt(name, id) == Acad::eOk) layer->setLinetypeObjectId(id);
    }
}

ReadError Builder::build(std::string_view text, MappedFile* file) {
    // A record takes some two hundred bytes of a drawing file.
    m_db.reserveObjects(text.size() / 200);
    RecordReader reader(text);
    SectionOrder order;
    std::vector<Tag> record;
    while (reader.next(record)) {
        if (file) file->releaseBefore(record[0].value.data());
        if (ReadError e = order.enter(record); e.error != DxfError::kNone) return e;
        std::string_view type = record[0].value;
        std::string_view section = order.section();
        if (record[0].code != 0 || type == "ENDSEC") continue;
        if (type == "EOF") break;
        if (type == "SECTION") {
            if (section == "HEADER") readHeader(record);
            // The section's own tags after its name belong to what is kept of it.
            if (section == "ACDSDATA")
                toRawTags(std::span<const Tag>(record).subspan(2), m_db.acdsDataSection(), nullptr);
            continue;
        }
        if (section == "CLASSES") toRawTags(record, m_db.classesSection(), nullptr);
        else if (section == "TABLES") readTableRecord(record);
        else if (section == "BLOCKS") readBlockRecord(record);
        else if (section == "ENTITIES") readEntityRecord(record);
        else if (section == "OBJECTS") readObjectRecord(record);
        else if (section == "THUMBNAILIMAGE") toRawTags(record, m_db.thumbnailSection(), nullptr);
        else if (section == "ACDSDATA") toRawTags(record, m_db.acdsDataSection(), nullptr);
    }
    if (reader.error().error != DxfError::kNone) return reader.error();
    if (ReadError e = order.finish(m_facts.version, reader.lastLine()); e.error != DxfError::kNone) return e;
    // Every drawing has its two layout blocks, whatever the file held.
    blockRecordNamed(ACDB_MODEL_SPACE);
    blockRecordNamed(ACDB_PAPER_SPACE);
    resolveNames();
    m_db.setOriginalFileVersion(m_facts.version);
    if (m_db.handseed().value() < m_nextHandle) m_db.setHandseed(AcDbHandle(m_nextHandle));
    return {};
}

}  // namespace

namespace {

// Reads bytes held in memory, or mapped from a file (which is then given back as read).
Acad::ErrorStatus ReadBytes(AcDbDatabase& db, std::string_view bytes, const std::string& name,
                            MappedFile* file) {
    auto fail = [&](DxfError error, int line, const std::string& reason, Acad::ErrorStatus status) {
        char code[16];
        std::snprintf(code, sizeof code, "DXF%03d", static_cast<int>(error));
        db.setLastError(Wide(name + ":" + std::to_string(line) + ": " + code + " " + reason));
        return status;
    };
    auto changed = [file] { return file && file->changed(); };
    const char* kChanged = "the file was changed or cut short while it was being read";
    std::string converted;
    std::string_view text = bytes;
    MappedFile* mapped = file;  // the text the reader goes over, when it is the file's
    if (bytes.substr(0, kBinarySentinel.size()) == kBinarySentinel) {
        std::string error;
        bool whole = BinaryToText(bytes, converted, error);
        if (changed()) return fail(DxfError::kTruncated, 0, kChanged, Acad::eBadDxfFile);
        if (!whole) return fail(DxfError::kTruncated, 0, error, Acad::eBadDxfFile);
        text = converted;
        mapped = nullptr;
    } else if (!LooksLikeDxf(bytes)) {
        return fail(DxfError::kNotDxf, 1, "not a DXF file", Acad::eUnknownDxfFileFormat);
    }
    if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
    ReadError e = Builder(db).build(text, mapped);
    if (changed()) e = {DxfError::kTruncated, 0, kChanged};
    if (e.error != DxfError::kNone) {
        db.discardContents();  // no part of a bad file is used as if it were the drawing
        Acad::ErrorStatus status = e.error == DxfError::kMissingSection ? Acad::eMissingDxfSection
                                   : e.error == DxfError::kBadGroupCode ? Acad::eInvalidDxfCode
                                                                        : Acad::eBadDxfFile;
        return fail(e.error, e.line, e.reason, status);
    }
    db.setLastError(L"");
    return Acad::eOk;
}

}  // namespace

Acad::ErrorStatus ReadDxfBytes(AcDbDatabase& db, std::string_view bytes, const std::string& name) {
    return ReadBytes(db, bytes, name, nullptr);
}

Acad::ErrorStatus ReadDxfFile(AcDbDatabase& db, const std::string& path) {
    MappedFile file;
    if (!file.open(path)) {
        db.setLastError(Wide(path + ":0: DXF001 cannot open the file: " + WhyUnreadable(path)));
        return Acad::eFileNotFound;
    }
    Acad::ErrorStatus es = ReadBytes(db, file.bytes(), path, &file);
    if (es == Acad::eOk) db.setFilename(Wide(path));
    return es;
}

}  // namespace dxf
