// Reading: one pass over the tags that checks them and turns records into objects, each keeping
// its record's tags as the writer's template. When the file turns out bad, what was built is
// discarded: the database is left empty.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <map>
#include <memory>
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
#include "platform/dxf/entity_records.hpp"
#include "platform/dxf/field_values.hpp"
#include "platform/dxf/mapped_file.hpp"
#include "platform/dxf/model.hpp"
#include "platform/dxf/modelled_record.hpp"
#include "platform/dxf/plain_entity.hpp"
#include "platform/dxf/table_records.hpp"
#include "platform/dxf/record_feed.hpp"
#include "platform/dxf/record_walk.hpp"
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

// Where a handle of a record's head (before its first subclass) stands: the owner (the first
// 330 outside the application groups), a persistent reactor, the extension dictionary.
enum class HeadPlace { kOwner, kReactor, kExtensionDictionary };

template <typename Visit>
void ForEachHeadHandle(const AcDbRawTags& tags, Visit visit) {
    if (tags.empty()) return;
    bool ownerSeen = false;
    for (auto it = std::next(tags.begin()), end = tags.end(); it != end && it->code != 100; ++it) {
        if (it->code == 102) {
            const bool reactors = it->value == "{ACAD_REACTORS", xdict = it->value == "{ACAD_XDICTIONARY";
            for (++it; it != end && it->code != 102; ++it) {
                if (reactors && it->code == 330) visit(HeadPlace::kReactor, it->value);
                else if (xdict && it->code == 360) visit(HeadPlace::kExtensionDictionary, it->value);
            }
            if (it == end) break;
        } else if (it->code == 330 && !ownerSeen) {
            ownerSeen = true;
            visit(HeadPlace::kOwner, it->value);
        }
    }
}

class Builder {
public:
    explicit Builder(AcDbDatabase& db) : m_db(db) {}
    // Entities whose records the writer makes the same from the database alone keep none.
    void dropModelledRecords() { m_dropModelled = true; }
    // Reads the records of a whole text.
    ReadError build(std::string_view text, MappedFile* file);
    // Builds from one record (its tags checked); ended() once EOF has been met.
    ReadError take(std::span<const Tag> record);
    bool ended() const { return m_order.ended(); }
    // An entity from its record's values (see RecordFeed::plainEntity); false when it needs the record.
    bool takePlain(const PlainEntity& plain, std::unique_ptr<AcDbEntity> e);
    // After the last record, at the line given: what the drawing lacks, and the names resolved.
    ReadError finish(int lastLine);

private:
    // ---- tags ----
    void toRawTags(std::span<const Tag> record, AcDbRawTags& tags,
                   std::vector<AcDbObject::XDataGroup>* xdata);
    // The same into the buffer kept between records (m_packed) only.
    void pack(std::span<const Tag> record, std::vector<AcDbObject::XDataGroup>* xdata);
    // The value as the database keeps it; a text's escapes decoded, their spelling noted.
    std::string_view value(const Tag& tag);
    // Out of line, as they are seldom called: pack stays small enough to take its pushes inline.
    [[gnu::noinline]] void noteSpelling(int code) { m_spellings.emplace_back(code, m_spelled); }
    [[gnu::noinline]] void keepSpellings();
    AcDbObjectId idOf(std::string_view handleText);
    // The record's own handle (5, or 105 of a dimension style); null when it has none.
    static AcDbHandle handleOf(const AcDbRawTags& tags);

    // ---- sections ----
    void readHeader(std::span<const Tag> record);
    void readTableRecord(std::span<const Tag> record);
    void readBlockRecord(std::span<const Tag> record);
    void readEntityRecord(std::span<const Tag> record);
    void readObjectRecord(std::span<const Tag> record);

    // ---- objects ----
    // Adds an object under its record's handle; one without gets a provisional handle.
    AcDbObjectId add(AcDbObject* object, AcDbHandle handle);
    AcDbHandle provisionalHandle();
    void readHead(AcDbObject& o);
    template <typename V>
    V vertexOf(AcDbRawTags tags);
    void readEntity(AcDbEntity& e);
    void keepRecord(AcDbEntity& e, std::span<const Tag> record);
    void closeInsert();
    AcDbSymbolTable* tableFor(const std::string& name);
    AcDbBlockTableRecord* blockRecordNamed(const std::wstring& name);
    void attachEntity(AcDbEntity* e, AcDbObjectId id);
    void readDimStyleXData(AcDbDimension& d);
    void resolveNames();

    AcDbDatabase& m_db;
    SectionOrder m_order;
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
    std::string m_spelled;    // a text as the file spells it (scratch of value)
    std::vector<std::pair<int, std::string>> m_spellings;  // of the record being packed
    AcDbRawTags m_packed;
    bool m_dropModelled = false;
    Model m_model;  // scratch of DropModelledRecord
};

// The value as the database keeps it: strings in UTF-8, integers without a plus sign or a
// fraction. Most values are kept as the file has them.
std::string_view Builder::value(const Tag& tag) {
    // A decoder's integer or handle is in its plain form already: ASCII digits.
    if (tag.made == Made::kInteger || tag.made == Made::kHandle) return tag.value;
    ValueKind kind = KindOfCode(tag.code);
    if (kind == ValueKind::kString) {
        if (DecodesUnchanged(tag.value, m_facts.codePage)) return tag.value;
        DecodeCodePage(tag.value, m_facts.codePage, m_spelled);
        if (!DecodeEscapes(m_spelled, m_scratch)) return m_spelled;
        noteSpelling(tag.code);
        return m_scratch;
    }
    if (IsIntegerKind(kind) && tag.made != Made::kInteger) {
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
    pack(record, xdata);
    tags.append(m_packed);
}

void Builder::pack(std::span<const Tag> record, std::vector<AcDbObject::XDataGroup>* xdata) {
    m_packed.clear();
    m_spellings.clear();
    AcDbRawTags* into = &m_packed;
    for (const Tag& t : record) {
        if (xdata && t.code == 1001) {
            xdata->push_back({Wide(value(t)), {}});
            into = &xdata->back().tags;
            continue;
        }
        into->push_back(t.code, value(t));
    }
    if (!m_spellings.empty()) keepSpellings();
}

// The record's texts that the file spelled with escapes, under its handle: a record without
// one has nothing a writer could match them to.
void Builder::keepSpellings() {
    AcDbHandle handle = handleOf(m_packed);
    if (handle.isNull()) return;
    for (const auto& [code, spelling] : m_spellings) m_db.addTextSpelling(handle, code, spelling);
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
    // The reader fills the object's fields directly: it is added closed, as a read leaves it.
    if (m_db.addClosedAcDbObjectWithHandle(id, object, handle) != Acad::eOk) {
        AcDbObjectId earlier;
        if (m_provisional.erase(handle.value()) != 0 &&
            m_db.getAcDbObjectId(earlier, false, handle) == Acad::eOk &&
            m_db.moveToHandle(earlier, provisionalHandle()) == Acad::eOk) {
            m_db.addClosedAcDbObjectWithHandle(id, object, handle);
        } else {
            // A handle used twice: the later object takes a fresh one.
            m_db.addClosedAcDbObjectWithHandle(id, object, provisionalHandle());
        }
    }
    return id;
}

// The record's head: owner, reactors and extension dictionary.
void Builder::readHead(AcDbObject& o) {
    ForEachHeadHandle(o.fileTags(), [&](HeadPlace place, std::string_view handle) {
        if (place == HeadPlace::kOwner) {
            o.setOwnerId(idOf(handle));
        } else if (place == HeadPlace::kExtensionDictionary) {
            o.setExtensionDictionary(idOf(handle));
        } else if (AcDbObjectId id = idOf(handle); !id.isNull()) {
            o.persistentReactors().append(id);
        }
    });
}

// A vertex from its record: its values, handle and own reactors, the record kept.
template <typename V>
V Builder::vertexOf(AcDbRawTags tags) {
    V v;
    ReadVertexFields(v, tags);
    v.handle = handleOf(tags);
    ForEachHeadHandle(tags, [&](HeadPlace place, std::string_view handle) {
        if (place != HeadPlace::kReactor) return;
        if (AcDbObjectId id = idOf(handle); !id.isNull()) v.reactors.append(id);
    });
    v.fileTags = std::move(tags);
    return v;
}

void Builder::readEntity(AcDbEntity& e) {
    std::wstring blockName = ReadEntityFields(e, m_db);
    if (auto* x = AcDbBlockReference::cast(&e)) {
        // A block the file has named already is the insert's at once, so that its record can be
        // told from its model as it is read; the others are looked for once every block is read.
        auto block = m_blocks.find(Upper(blockName));
        if (block != m_blocks.end()) x->setBlockTableRecord(block->second->objectId());
        else m_insertNames.push_back({x, blockName});
    } else if (auto* x = AcDbDimension::cast(&e)) {
        if (!blockName.empty()) m_dimBlockNames.push_back({x, blockName});
        readDimStyleXData(*x);
    }
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

void Builder::readTableRecord(std::span<const Tag> record) {
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

void Builder::readEntityRecord(std::span<const Tag> record) {
    std::string_view type = record[0].value;
    if (type == "SEQEND") {
        AcDbRawTags tags;
        toRawTags(record, tags, nullptr);
        AcDbHandle h = handleOf(tags);
        if (m_openInsert) {
            m_openInsert->setSeqEndHandle(h);
            m_openInsert->seqEndTags() = std::move(tags);
            closeInsert();
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
            p2->vertices().push_back(vertexOf<AcDb2dVertex>(std::move(tags)));
        } else if (auto* p3 = AcDb3dPolyline::cast(m_openPolyline)) {
            p3->vertices().push_back(vertexOf<AcDb3dPolylineVertex>(std::move(tags)));
        } else {
            m_openPolyline->fileTags().append(tags);
        }
        return;
    }
    std::vector<AcDbObject::XDataGroup> xdata;
    pack(record, &xdata);
    AcDbEntity* e = NewEntity(type, m_packed);
    // The entity is read from the packing buffer itself; what it keeps of it is settled last.
    e->fileTags().swap(m_packed);
    if (!xdata.empty()) e->xData() = std::move(xdata);
    readHead(*e);
    readEntity(*e);
    AcDbObjectId id = add(e, handleOf(e->fileTags()));
    if (type == "ATTRIB" && m_openInsert) {
        e->setOwnerId(m_openInsert->objectId());
        m_openInsert->attachAttribute(id);
    } else {
        attachEntity(e, id);
        closeInsert();
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
    keepRecord(*e, record);
}

// As readEntityRecord reads the record: the owner the record names, which must be the block the
// entity goes to (the writer gives that one), the values, the handle. The record is needed when
// the entity does not make it again, or it goes elsewhere.
bool Builder::takePlain(const PlainEntity& plain, std::unique_ptr<AcDbEntity> e) {
    if (!e) return false;
    const std::string_view section = m_order.section();
    if (section != "ENTITIES" && section != "BLOCKS") return false;
    AcDbObjectId declared;
    if (m_db.getAcDbObjectId(declared, false, AcDbHandle(plain.owner)) != Acad::eOk) return false;
    const AcDbBlockTableRecord* owner =
        m_currentBlock ? m_currentBlock : AcDbBlockTableRecord::cast(declared.stub()->object.get());
    if (owner == nullptr || owner->getHandle().value() != plain.owner) return false;
    e->setOwnerId(declared);
    AcDbEntity* added = e.release();
    attachEntity(added, add(added, AcDbHandle(plain.handle)));
    closeInsert();
    m_openPolyline = nullptr;
    return true;
}

// An entity read from the packing buffer keeps its record in a buffer of its own size, unless
// it needs none; the packing buffer goes back to packing. An insert whose attributes follow is
// told from its model once they are attached (see closeInsert).
void Builder::keepRecord(AcDbEntity& e, std::span<const Tag> record) {
    if (m_dropModelled && &e != m_openInsert && DropModelledRecord(e, m_model, m_packed, record)) {
        e.releaseEmptyParts();
        return;
    }
    m_packed.swap(e.fileTags());
    e.fileTags().append(m_packed);
}

// The insert whose attributes were being read has them all: it keeps its record only when its
// model, attributes attached, does not give that record.
void Builder::closeInsert() {
    if (m_openInsert == nullptr) return;
    AcDbRawTags dropped;
    if (m_dropModelled && DropModelledRecord(*m_openInsert, m_model, dropped)) m_openInsert->releaseEmptyParts();
    m_openInsert = nullptr;
}

void Builder::readBlockRecord(std::span<const Tag> record) {
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

void Builder::readObjectRecord(std::span<const Tag> record) {
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

void Builder::readHeader(std::span<const Tag> record) {
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

ReadError Builder::take(std::span<const Tag> record) {
    if (ReadError e = m_order.enter(record); e.error != DxfError::kNone) return e;
    std::string_view type = record[0].value;
    std::string_view section = m_order.section();
    if (record[0].code != 0 || type == "ENDSEC" || type == "EOF") return {};
    if (type == "SECTION") {
        if (section == "HEADER") readHeader(record);
        // The section's own tags after its name belong to what is kept of it.
        if (section == "ACDSDATA") toRawTags(record.subspan(2), m_db.acdsDataSection(), nullptr);
        return {};
    }
    if (section == "CLASSES") toRawTags(record, m_db.classesSection(), nullptr);
    else if (section == "TABLES") readTableRecord(record);
    else if (section == "BLOCKS") readBlockRecord(record);
    else if (section == "ENTITIES") readEntityRecord(record);
    else if (section == "OBJECTS") readObjectRecord(record);
    else if (section == "THUMBNAILIMAGE") toRawTags(record, m_db.thumbnailSection(), nullptr);
    else if (section == "ACDSDATA") toRawTags(record, m_db.acdsDataSection(), nullptr);
    return {};
}

ReadError Builder::finish(int lastLine) {
    if (ReadError e = m_order.finish(m_facts.version, lastLine); e.error != DxfError::kNone) return e;
    // Every drawing has its two layout blocks, whatever the file held.
    blockRecordNamed(ACDB_MODEL_SPACE);
    blockRecordNamed(ACDB_PAPER_SPACE);
    resolveNames();
    m_db.setOriginalFileVersion(m_facts.version);
    if (m_db.handseed().value() < m_nextHandle) m_db.setHandseed(AcDbHandle(m_nextHandle));
    return {};
}

ReadError Builder::build(std::string_view text, MappedFile* file) {
    // A record takes some two hundred bytes of a drawing file.
    m_db.reserveObjects(text.size() / 200);
    RecordReader reader(text);
    std::vector<Tag> record;
    while (!ended() && reader.next(record)) {
        if (file) file->releaseBefore(record[0].value.data());
        if (ReadError e = take(record); e.error != DxfError::kNone) return e;
    }
    if (reader.error().error != DxfError::kNone) return reader.error();
    return finish(reader.lastLine());
}

// The database of a read that ended with `e`: emptied, with the reason said, when e is an error.
Acad::ErrorStatus Conclude(AcDbDatabase& db, const std::string& name, const ReadError& e) {
    if (e.error == DxfError::kNone) {
        db.setLastError(L"");
        return Acad::eOk;
    }
    db.discardContents();  // no part of a bad file is used as if it were the drawing
    char code[16];
    std::snprintf(code, sizeof code, "DXF%03d", static_cast<int>(e.error));
    db.setLastError(Wide(name + ":" + std::to_string(e.line) + ": " + code + " " + e.reason));
    return e.error == DxfError::kMissingSection ? Acad::eMissingDxfSection
           : e.error == DxfError::kBadGroupCode ? Acad::eInvalidDxfCode
                                                : Acad::eBadDxfFile;
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
    return Conclude(db, name, e);
}

}  // namespace

struct RecordFeed::State {
    State(AcDbDatabase& d, std::string n) : db(d), name(std::move(n)), builder(d) {
        builder.dropModelledRecords();
    }
    AcDbDatabase& db;
    std::string name;
    Builder builder;
    std::vector<Tag> tags;  // the record's, without comments
    ReadError error;
    int line = 0;  // of the last value
};

RecordFeed::RecordFeed(AcDbDatabase& db, std::string name)
    : m_state(std::make_unique<State>(db, std::move(name))) {}

void RecordFeed::reserve(std::size_t objects) { m_state->db.reserveObjects(objects); }

RecordFeed::~RecordFeed() = default;

void RecordFeed::record(std::span<const Tag> tags) {
    State& s = *m_state;
    if (s.error.error != DxfError::kNone || s.builder.ended()) return;
    s.tags.clear();
    for (Tag tag : tags) {
        tag.line = s.line + 1;
        s.line += 2;
        if (!MadeNumberFits(tag)) {
            if (KindOfCode(tag.code) != ValueKind::kString) tag.value = TrimBlanks(tag.value);
            if ((s.error = CheckTag(tag)).error != DxfError::kNone) return;
        }
        if (tag.code != 999) s.tags.push_back(tag);
    }
    if (!s.tags.empty()) s.error = s.builder.take(s.tags);
}

bool RecordFeed::plainEntity(const PlainEntity& plain, std::unique_ptr<AcDbEntity> built) {
    State& s = *m_state;
    if (s.error.error != DxfError::kNone || s.builder.ended()) return true;  // ignored, as records are
    if (!s.builder.takePlain(plain, std::move(built))) return false;
    s.line += 2 * PlainRecordTags(plain);
    return true;
}

Acad::ErrorStatus RecordFeed::finish() {
    State& s = *m_state;
    return Conclude(s.db, s.name, s.error.error != DxfError::kNone ? s.error : s.builder.finish(s.line - 1));
}

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
