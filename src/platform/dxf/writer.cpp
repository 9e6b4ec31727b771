// Writing: an object's record as read is the template; the values the database models are
// laid over it in place, and what it does not model is written back as it was. Objects without
// a template (made in memory) are written from the model alone.
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <thread>

#include "platform/db/block_reference.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/carried.hpp"
#include "platform/db/dictionary.hpp"
#include "platform/db/dimension.hpp"
#include "platform/db/polyline_classic.hpp"
#include "platform/dxf/codepage.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"
#include "platform/dxf/tagger.hpp"
#include "platform/win/faults.hpp"
#include "platform/win/temporaries.hpp"

namespace dxf {

namespace {

// The record type of an object by its class, as an object made in memory is written.
std::string ClassTypeName(const AcDbObject& o) {
    if (auto* u = AcDbUnknownEntity::cast(&o)) return Utf8(u->dxfName());
    if (auto* u = AcDbUnknownObject::cast(&o)) return Utf8(u->dxfName());
    if (AcDbDimension::cast(&o)) return "DIMENSION";
    if (AcDb2dPolyline::cast(&o) || AcDb3dPolyline::cast(&o)) return "POLYLINE";
    if (AcDbMInsertBlock::cast(&o) || AcDbBlockReference::cast(&o)) return "INSERT";
    if (AcDbDictionary::cast(&o)) return "DICTIONARY";
    if (AcDbBlockTableRecord::cast(&o)) return "BLOCK_RECORD";
    const wchar_t* name = o.isA()->dxfName();
    return name ? Utf8(name) : std::string();
}

}  // namespace

std::string TypeName(const AcDbObject& o) {
    const auto& t = o.fileTags();
    if (!t.empty() && t.front().code == 0) return std::string(t.front().value);
    return ClassTypeName(o);
}

namespace {

// Adds an object that the writer needs and the drawing lacks; it is not left open, so that
// the drawing can still be opened after the save.
void AddClosed(AcDbDatabase& db, AcDbObjectId& id, AcDbObject* object) {
    db.addAcDbObject(id, object);
    object->close();
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (std::toupper(static_cast<unsigned char>(a[i])) != std::toupper(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

// True when two texts of a group code's value stand for the same value.
bool SameText(int code, std::string_view a, std::string_view b) {
    if (a == b) return true;
    ValueKind kind = KindOfCode(code);
    if (kind == ValueKind::kDouble) {
        double x, y;
        return ParseDouble(a, x) && ParseDouble(b, y) && x == y;
    }
    if (IsIntegerKind(kind)) {
        long long x, y;
        return ParseInteger(a, x) && ParseInteger(b, y) && x == y;
    }
    if (kind == ValueKind::kHandle) return EqualIgnoringCase(a, b);
    return false;
}

void AppendInteger(long long value, std::string& out) {
    char buffer[24];
    auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value);
    out.append(buffer, end);
}

// Appends the text of a field's value.
void AppendField(const Field& f, std::string& out) {
    switch (f.kind) {
        case Field::Kind::kText: out += f.text; break;
        case Field::Kind::kReal: FormatDouble(f.real, out); break;
        case Field::Kind::kInteger: AppendInteger(f.integer, out); break;
        case Field::Kind::kHandle: AppendHex(static_cast<std::uint64_t>(f.integer), out); break;
    }
}

// True when the template's text stands for the field's value, so that the text is kept as read.
// Numbers of their own kind compare without formatting the field.
bool SameValue(const Field& f, std::string_view text) {
    ValueKind kind = KindOfCode(f.code);
    if (f.kind == Field::Kind::kReal && kind == ValueKind::kDouble) {
        double x;
        return ParseDouble(text, x) && x == f.real;
    }
    if (f.kind == Field::Kind::kInteger && IsIntegerKind(kind)) {
        long long x;
        return ParseInteger(text, x) && x == f.integer;
    }
    if (f.kind == Field::Kind::kText && kind == ValueKind::kString) return text == f.text;
    std::string own;
    AppendField(f, own);
    return SameText(f.code, text, own);
}

// The state of one subclass while its template segment is walked.
struct SegmentMerge {
    bool active = false;
    Subclass subclass;
    std::span<const Field> fields;
    std::vector<char> used;
    void start(const Model& model, const Subclass& s) {
        active = true;
        subclass = s;
        fields = model.fieldsOf(s);
        used.assign(fields.size(), 0);
    }
};

// The application groups of a record's head: extension dictionary and persistent reactors.
template <typename Sink>
void HeadGroups(const AcDbObject& o, bool r12, bool xdict, bool reactors, Sink& sink) {
    if (r12) return;
    if (xdict && !o.extensionDictionary().isNull()) {
        sink.tag(102, "{ACAD_XDICTIONARY");
        sink.tag(360, HandleText(o.extensionDictionary().handle()));
        sink.tag(102, "}");
    }
    if (reactors && !o.persistentReactors().isEmpty()) {
        sink.tag(102, "{ACAD_REACTORS");
        for (const auto& id : o.persistentReactors()) sink.tag(330, HandleText(id.handle()));
        sink.tag(102, "}");
    }
}

// True when a record as read has a tag of the code.
bool HasCode(std::span<const AcDbRawTag> tags, int code) {
    return std::any_of(tags.begin(), tags.end(), [code](const AcDbRawTag& t) { return t.code == code; });
}

// True for a record as R12 writes them, without subclass markers.
template <typename Tags>
bool WithoutSubclasses(const Tags& tags) {
    return std::none_of(tags.begin(), tags.end(), [](const AcDbRawTag& t) { return t.code == 100; });
}

// The properties every entity has, which a record with subclasses keeps in AcDbEntity.
bool IsEntityPropertyCode(int code) {
    switch (code) {
        case 6: case 8: case 48: case 60: case 62: case 67: case 284: case 347: case 370:
        case 390: case 420: case 430: case 440: return true;
        default: return false;
    }
}

// A record as read, and the records it carries inside it (the vertices and SEQEND of a mesh),
// each from its 0 tag.
std::vector<std::span<const AcDbRawTag>> SplitRecords(std::span<const AcDbRawTag> tags) {
    std::vector<std::span<const AcDbRawTag>> records;
    size_t begin = 0;
    for (size_t i = 1; i <= tags.size(); ++i)
        if (i == tags.size() || tags[i].code == 0) {
            records.push_back(tags.subspan(begin, i - begin));
            begin = i;
        }
    return records;
}

bool IsMesh(const AcDbObject& o) { return AcDbPolyFaceMesh::cast(&o) || AcDbPolygonMesh::cast(&o); }

// True when a record of R12 can be written anew for a later version: its tags find their
// subclasses in the model, and what it carries inside it is a mesh's vertices. Entities the
// database carries without knowing their subclass stay as read.
bool Upgradable(const AcDbObject& o, const std::vector<std::span<const AcDbRawTag>>& records,
                const Model& model) {
    if (records.size() > 1 && !IsMesh(o)) return false;
    return !AcDbCarriedEntity::cast(&o) || model.subclasses.back().marker != "AcDbEntity";
}

// The subclasses of a vertex of a mesh, by the mesh and the vertex's flags (group code 70).
std::vector<std::string_view> MeshVertexSubclasses(const AcDbObject& mesh, std::span<const AcDbRawTag> vertex) {
    long long flags = 0;
    for (const AcDbRawTag& t : vertex)
        if (t.code == 70) ParseInteger(t.value, flags);
    if (AcDbPolygonMesh::cast(&mesh)) return {"AcDbVertex", "AcDbPolygonMeshVertex"};
    if ((flags & 64) == 0) return {"AcDbFaceRecord"};
    return {"AcDbVertex", "AcDbPolyFaceMeshVertex"};
}

// A subclass the template lacks: its marker and the values not at their default, and those at
// their default that `asRead` has (a record written anew in place of one as read).
template <typename Sink>
void NewSubclass(const Model& model, const Subclass& s, bool r12, Sink& sink,
                 std::span<const AcDbRawTag> asRead = {}) {
    if (!r12) sink.tag(100, s.marker);
    for (const Field& f : model.fieldsOf(s))
        if (!f.optional || HasCode(asRead, f.code)) sink.field(f);
}

// A record from the model alone, in its order. When it stands in for a record as read without
// subclasses (`asRead`, of R12), the tags of that record the model does not own go where a
// record with subclasses has them: entity properties in AcDbEntity, the rest in the last
// subclass.
template <typename Sink>
void NewRecord(const AcDbObject& o, const Model& model, bool r12, Sink& sink,
               std::span<const AcDbRawTag> asRead = {}) {
    sink.tag(0, model.type);
    std::span<const Field> head = model.fieldsOf(model.subclasses[0]);
    for (const Field& f : head)
        if (f.code != 330) sink.field(f);
    HeadGroups(o, r12, true, true, sink);
    for (const Field& f : head)
        if (f.code == 330 && !r12) sink.field(f);
    bool entity = std::any_of(model.subclasses.begin(), model.subclasses.end(),
                              [](const Subclass& s) { return s.marker == "AcDbEntity"; });
    for (size_t k = 1; k < model.subclasses.size(); ++k) {
        const Subclass& s = model.subclasses[k];
        NewSubclass(model, s, r12, sink, asRead);
        bool properties = s.marker == "AcDbEntity", last = k + 1 == model.subclasses.size();
        for (const AcDbRawTag& t : asRead.subspan(std::min<size_t>(asRead.size(), 1))) {
            if (model.owns(model.whole(), t.code)) continue;
            bool property = entity && IsEntityPropertyCode(t.code);
            if (properties ? property : last && !property) sink.tag(t.code, t.value);
        }
    }
}

// Output is written through a buffer of this size when it goes to a file.
constexpr size_t kFlushBytes = 256 << 10;

class Writer {
public:
    Writer(AcDbDatabase& db, const WriteOptions& options, std::string& out, std::FILE* file)
        : m_db(db), m_options(options), m_out(out), m_file(file) {
        AcDb::AcDbDwgVersion read = db.originalFileVersion();
        m_version = options.keepVersion ? read : options.version;
        if (m_version == AcDb::kDHL_Unknown) m_version = AcDb::kDHL_1018;
        m_r12 = m_version <= AcDb::kDHL_1009;
        m_headerCodePage = options.codePage == 65001 ? 1252 : options.codePage;
        m_textCodePage = m_version >= AcDb::kDHL_1021 ? 65001
                         : options.codePage == 65001 ? 20127 : options.codePage;
    }
    // False when the file could not be written.
    bool write();

    // ---- output ----
    void tag(int code, std::string_view value);
    void field(const Field& f);

private:
    void code(int code);
    void raw(const AcDbRawTags& tags) {
        for (const AcDbRawTag& t : tags) tag(t.code, t.value);
    }
    void flush();
    void object(const AcDbObject& o);
    void merge(const AcDbObject& o, const AcDbRawTags& tmpl, const Model& model);
    void emitRun(int run, std::span<const AcDbRawTag> asRead = {});
    void carriedRecord(std::span<const AcDbRawTag> record, AcDbHandle owner,
                       const std::vector<std::string_view>& subclasses);
    void numberCarriedRecords(AcDbObject& o);
    void mergeOwned(std::span<const AcDbRawTag> rest);
    void xdata(const AcDbObject& o);

    // ---- preparation ----
    AcDbHandle newHandle();
    void prepare();
    AcDbSymbolTable* ensureTable(AcDbDatabase::TableKind kind);
    void ensureRecord(AcDbDatabase::TableKind kind, const std::wstring& name, AcDbSymbolTableRecord* record);
    void ensureLayouts();
    void ensureDimensionBlocks();

    // ---- sections ----
    void header();
    void tables();
    void table(AcDbDatabase::TableKind kind, const char* name);
    void blocks();
    void blockEntities(const AcDbBlockTableRecord& block);
    void entity(const AcDbEntity& e);
    ModelWriter partModel(std::string_view type, AcDbHandle handle, AcDbHandle owner, bool fresh,
                          const std::wstring& layer);
    void seqEnd(const AcDbEntity& owner, AcDbHandle handle, const AcDbRawTags& tmpl);
    template <typename V>
    void vertex(const V& v, const AcDbEntity& owner);
    void marker(const AcDbBlockTableRecord& block, const AcDbBlockTableRecord::FileMarker& m, bool begin);
    void objects();

    void entityBatch(const AcDbObjectIdArray& ids, size_t begin, size_t end);

    AcDbDatabase& m_db;
    const WriteOptions& m_options;
    std::string& m_out;
    std::FILE* m_file;  // null when the text stays in m_out
    bool m_failed = false;
    AcDb::AcDbDwgVersion m_version;
    bool m_r12;
    int m_headerCodePage;
    int m_textCodePage;
    // Kept from one record to the next, for their storage.
    Model m_model;
    Model m_partModel;  // of the records that belong to an object (vertices, markers)
    std::vector<AcDbRawTag> m_template;
    SegmentMerge m_segment;
};

void Writer::flush() {
    if (!m_file) return;
    if (std::fwrite(m_out.data(), 1, m_out.size(), m_file) != m_out.size()) m_failed = true;
    m_out.clear();
}

// The group code line, right-aligned in three columns as the format's writers do.
void Writer::code(int code) {
    if (m_file && m_out.size() >= kFlushBytes) flush();
    if (code >= 0 && code < 1000) {
        char line[4] = {' ', ' ', ' ', '\n'};
        int i = 2;
        do line[i--] = static_cast<char>('0' + code % 10);
        while ((code /= 10) != 0);
        m_out.append(line, 4);
        return;
    }
    char buffer[16];
    auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, code);
    m_out.append(buffer, end);
    m_out += '\n';
}

void Writer::tag(int code, std::string_view value) {
    this->code(code);
    if (m_textCodePage != 65001 && KindOfCode(code) == ValueKind::kString)
        EncodeText(value, m_textCodePage, m_out);
    else
        m_out.append(value);
    m_out += '\n';
}

void Writer::field(const Field& f) {
    if (f.kind == Field::Kind::kText) {
        tag(f.code, f.text);
        return;
    }
    code(f.code);
    AppendField(f, m_out);
    m_out += '\n';
}

void Writer::merge(const AcDbObject& o, const AcDbRawTags& tmpl, const Model& model) {
    SegmentMerge& seg = m_segment;
    auto headGroups = [&](bool xdict, bool reactors) { HeadGroups(o, m_r12, xdict, reactors, *this); };
    auto finish = [&](bool head) {
        if (!seg.active) return;
        seg.active = false;
        if (head && m_r12) return;  // R12 records get no handles or owners they did not have
        for (size_t i = 0; i < seg.fields.size(); ++i) {
            const Field& f = seg.fields[i];
            if (seg.used[i] || (f.optional && f.run == 0)) continue;
            if (m_r12 && (f.code == 5 || f.code == 105 || f.code == 330)) continue;
            if (f.run != 0) emitRun(f.run);
            else field(f);
        }
    };
    auto writeSubclass = [&](const Subclass& s) { NewSubclass(model, s, m_r12, *this); };

    if (tmpl.empty()) {
        NewRecord(o, model, m_r12, *this);
        return;
    }

    std::vector<AcDbRawTag>& t = m_template;
    t.assign(tmpl.begin(), tmpl.end());
    bool flat = WithoutSubclasses(t);
    if (flat && !m_r12) {
        // A record of R12 has no subclasses: for a later version it is written anew.
        std::vector<std::span<const AcDbRawTag>> records = SplitRecords(t);
        if (Upgradable(o, records, model)) {
            NewRecord(o, model, false, *this, records[0]);
            for (size_t k = 1; k < records.size(); ++k) {
                bool seqEnd = records[k][0].value == "SEQEND";
                carriedRecord(records[k], o.objectId().handle(),
                              seqEnd ? std::vector<std::string_view>{} : MeshVertexSubclasses(o, records[k]));
            }
            return;
        }
    }
    seg.start(model, flat ? model.whole() : model.subclasses[0]);
    bool inHead = true;
    bool verbatim = false;
    bool xdictDone = false, reactorsDone = false;
    size_t matched = 0;  // the last model subclass given a template segment
    tag(0, t[0].value);
    for (size_t i = 1; i < t.size(); ++i) {
        if (verbatim) {
            tag(t[i].code, t[i].value);
            continue;
        }
        if (t[i].code == 0 || t[i].code == 101) {
            // Records carried inside this one, or an embedded object: as read from here on.
            finish(inHead && !flat);
            if (inHead && !flat) headGroups(!xdictDone, !reactorsDone);
            verbatim = true;
            tag(t[i].code, t[i].value);
            continue;
        }
        if (t[i].code == 100 && !flat) {
            finish(inHead);
            if (inHead) headGroups(!xdictDone, !reactorsDone);
            inHead = false;
            size_t found = 0;
            for (size_t k = matched + 1; k < model.subclasses.size(); ++k)
                if (model.subclasses[k].marker == t[i].value) { found = k; break; }
            if (found) {
                for (size_t k = matched + 1; k < found; ++k) writeSubclass(model.subclasses[k]);
                matched = found;
                seg.start(model, model.subclasses[found]);
            }
            tag(100, t[i].value);
            continue;
        }
        if (t[i].code == 102 && t[i].value.size() > 1 && t[i].value[0] == '{') {
            bool reactors = t[i].value == "{ACAD_REACTORS", xdict = t[i].value == "{ACAD_XDICTIONARY";
            if ((reactors || xdict) && (inHead || flat)) {
                while (i + 1 < t.size() && t[i + 1].code != 102) ++i;
                ++i;
                headGroups(xdict, reactors);
                (reactors ? reactorsDone : xdictDone) = true;
                continue;
            }
            tag(t[i].code, t[i].value);
            for (++i; i < t.size(); ++i) {
                tag(t[i].code, t[i].value);
                if (t[i].code == 102) break;
            }
            continue;
        }
        if (!seg.active || !model.owns(seg.subclass, t[i].code)) {
            tag(t[i].code, t[i].value);
            continue;
        }
        mergeOwned(std::span<const AcDbRawTag>(t).subspan(i));
    }
    if (!verbatim) {
        finish(inHead && !flat);
        if (inHead && !flat) headGroups(!xdictDone, !reactorsDone);
        if (!flat)
            for (size_t k = matched + 1; k < model.subclasses.size(); ++k)
                writeSubclass(model.subclasses[k]);
    }
}

// The fields of a repeating block, all at once where the template's block begins.
// A record of R12 that a mesh carries (a vertex or its SEQEND), written with its handle, owner
// and subclasses: the entity properties under AcDbEntity, the rest under the last subclass.
void Writer::carriedRecord(std::span<const AcDbRawTag> record, AcDbHandle owner,
                           const std::vector<std::string_view>& subclasses) {
    tag(0, record[0].value);
    std::span<const AcDbRawTag> rest = record.subspan(1);
    for (const AcDbRawTag& t : rest)
        if (t.code == 5) tag(5, t.value);
    tag(330, HandleText(owner));
    tag(100, "AcDbEntity");
    for (const AcDbRawTag& t : rest)
        if (IsEntityPropertyCode(t.code)) tag(t.code, t.value);
    for (std::string_view marker : subclasses) tag(100, marker);
    for (const AcDbRawTag& t : rest)
        if (t.code != 5 && t.code != 330 && !IsEntityPropertyCode(t.code)) tag(t.code, t.value);
}

// Gives the records that a mesh of R12 carries the handles they lack: written for a later
// version, every record has one.
void Writer::numberCarriedRecords(AcDbObject& o) {
    std::vector<AcDbRawTag> tags(o.fileTags().begin(), o.fileTags().end());
    std::vector<std::span<const AcDbRawTag>> records = SplitRecords(tags);
    if (records.size() < 2 ||
        std::all_of(records.begin() + 1, records.end(), [](auto r) { return HasCode(r, 5); }))
        return;
    AcDbRawTags numbered;
    for (size_t k = 0; k < records.size(); ++k) {
        numbered.push_back(records[k][0].code, records[k][0].value);
        if (k > 0 && !HasCode(records[k], 5)) numbered.push_back(5, HandleText(newHandle()));
        for (const AcDbRawTag& t : records[k].subspan(1)) numbered.push_back(t.code, t.value);
    }
    o.fileTags() = std::move(numbered);
}

// Writes a repeating block of the model whole. Where the template's block (asRead, from its
// first tag on) has a field's code close ahead with the same value, its text is kept.
void Writer::emitRun(int run, std::span<const AcDbRawTag> asRead) {
    constexpr size_t kLookAhead = 8;
    SegmentMerge& seg = m_segment;
    size_t at = 0;
    for (size_t i = 0; i < seg.fields.size(); ++i) {
        const Field& f = seg.fields[i];
        if (f.run != run) continue;
        seg.used[i] = 1;
        if (f.optional) continue;
        size_t j = at;
        while (j < asRead.size() && j < at + kLookAhead && asRead[j].code != f.code) ++j;
        if (j < asRead.size() && asRead[j].code == f.code) {
            at = j + 1;
            if (SameValue(f, asRead[j].value)) {
                tag(f.code, asRead[j].value);
                continue;
            }
        }
        field(f);
    }
}

// A template tag of a code the current subclass models (the first of rest): the model's value
// in its place.
void Writer::mergeOwned(std::span<const AcDbRawTag> rest) {
    const AcDbRawTag& t = rest[0];
    SegmentMerge& seg = m_segment;
    for (size_t k = 0; k < seg.fields.size(); ++k) {
        const Field& f = seg.fields[k];
        if (f.code != t.code || seg.used[k]) continue;
        if (f.run != 0) {
            emitRun(f.run, rest);
        } else {
            seg.used[k] = 1;
            if (SameValue(f, t.value)) tag(f.code, t.value);
            else field(f);
        }
        return;
    }
    // An owned code without a current value (left out at default, or a run already written)
    // is dropped; a second tag of a single value is kept as read.
    for (const Field& f : seg.fields)
        if (f.code == t.code && f.run == 0) {
            tag(t.code, t.value);
            return;
        }
}

void Writer::xdata(const AcDbObject& o) {
    const auto* dim = AcDbDimension::cast(&o);
    bool dstyle = dim && !dim->dimVarOverrides().empty();
    bool acadWritten = false;
    auto writeAcad = [&](const AcDbRawTags* rest) {
        tag(1001, "ACAD");
        AcDbRawTags tags;
        DimVarsToXData(dim->dimVarOverrides(), tags);
        raw(tags);
        if (rest) raw(*rest);
        acadWritten = true;
    };
    if (dstyle && std::none_of(o.xData().begin(), o.xData().end(),
                               [](const auto& g) { return g.appName == L"ACAD"; }))
        writeAcad(nullptr);
    for (const auto& g : o.xData()) {
        if (dstyle && !acadWritten && g.appName == L"ACAD") {
            writeAcad(&g.tags);
            continue;
        }
        tag(1001, Utf8(g.appName));
        raw(g.tags);
    }
}

void Writer::object(const AcDbObject& o) {
    BuildModel(o, !o.fileTags().empty(), m_model);
    merge(o, o.fileTags(), m_model);
    xdata(o);
}

AcDbHandle Writer::newHandle() {
    AcDbHandle h = m_db.handseed();
    m_db.setHandseed(AcDbHandle(h.value() + 1));
    return h;
}

AcDbObject* ObjectOf(AcDbObjectId id) {
    return id.isNull() || !id.stub() ? nullptr : id.stub()->object.get();
}

AcDbSymbolTable* NewTableOf(AcDbDatabase::TableKind kind) {
    switch (kind) {
        case AcDbDatabase::kBlockTable: return new AcDbBlockTable();
        case AcDbDatabase::kLayerTable: return new AcDbLayerTable();
        case AcDbDatabase::kTextStyleTable: return new AcDbTextStyleTable();
        case AcDbDatabase::kLinetypeTable: return new AcDbLinetypeTable();
        case AcDbDatabase::kDimStyleTable: return new AcDbDimStyleTable();
        case AcDbDatabase::kViewTable: return new AcDbViewTable();
        case AcDbDatabase::kViewportTable: return new AcDbViewportTable();
        case AcDbDatabase::kRegAppTable: return new AcDbRegAppTable();
        default: return new AcDbUCSTable();
    }
}

AcDbSymbolTable* Writer::ensureTable(AcDbDatabase::TableKind kind) {
    if (auto* t = AcDbSymbolTable::cast(ObjectOf(m_db.tableId(kind)))) return t;
    AcDbSymbolTable* table = NewTableOf(kind);
    AcDbObjectId id;
    AddClosed(m_db, id, table);
    m_db.setTableId(kind, id);
    return table;
}

void Writer::ensureRecord(AcDbDatabase::TableKind kind, const std::wstring& name,
                          AcDbSymbolTableRecord* record) {
    AcDbSymbolTable* table = ensureTable(kind);
    if (table->has(name)) {
        delete record;
        return;
    }
    record->setName(name);
    record->setOwnerId(table->objectId());
    AcDbObjectId id;
    AddClosed(m_db, id, record);
    table->attachRecord(id);
}

AcDbDictionary* EnsureEntry(AcDbDatabase& db, AcDbDictionary& parent, const std::wstring& key) {
    AcDbObjectId id;
    if (parent.getAt(key, id) == Acad::eOk)
        if (auto* d = AcDbDictionary::cast(ObjectOf(id))) return d;
    auto* d = new AcDbDictionary();
    AddClosed(db, id, d);
    d->setOwnerId(parent.objectId());
    parent.setAtId(key, id);
    return d;
}

// A layout's record: plot settings of an unconfigured device and the layout proper.
AcDbRawTags LayoutTags(const std::string& name, int tab, AcDbHandle block) {
    AcDbRawTags t = {
        {0, "LAYOUT"}, {5, "0"}, {330, "0"}, {100, "AcDbPlotSettings"}, {1, ""},
        {2, "none_device"}, {4, ""}, {6, ""}, {40, "0.0"}, {41, "0.0"}, {42, "0.0"},
        {43, "0.0"}, {44, "0.0"}, {45, "0.0"}, {46, "0.0"}, {47, "0.0"}, {48, "0.0"},
        {49, "0.0"}, {140, "0.0"}, {141, "0.0"}, {142, "1.0"}, {143, "1.0"}, {70, "688"},
        {72, "0"}, {73, "0"}, {74, "5"}, {7, ""}, {75, "16"}, {147, "1.0"}, {148, "0.0"},
        {149, "0.0"}, {100, "AcDbLayout"}, {1, name}, {70, "1"}, {71, std::to_string(tab)},
        {10, "0.0"}, {20, "0.0"}, {11, "420.0"}, {21, "297.0"}, {12, "0.0"}, {22, "0.0"},
        {32, "0.0"}, {14, "0.0"}, {24, "0.0"}, {34, "0.0"}, {15, "0.0"}, {25, "0.0"},
        {35, "0.0"}, {146, "0.0"}, {13, "0.0"}, {23, "0.0"}, {33, "0.0"}, {16, "1.0"},
        {26, "0.0"}, {36, "0.0"}, {17, "0.0"}, {27, "1.0"}, {37, "0.0"}, {76, "0"},
        {330, HandleText(block)}};
    return t;
}

// A dimension made in memory gets the anonymous block that readers expect it to name, with its
// picture in it.
void Writer::ensureDimensionBlocks() {
    auto* blocks = AcDbBlockTable::cast(ObjectOf(m_db.blockTableId()));
    if (!blocks) return;
    std::vector<AcDbDimension*> missing;
    for (const auto& bid : blocks->recordIds())
        if (auto* b = AcDbBlockTableRecord::cast(ObjectOf(bid)))
            for (const auto& eid : b->entityIds())
                if (auto* d = AcDbDimension::cast(ObjectOf(eid));
                    d && d->dimBlockId().isNull() && d->fileTags().empty())
                    missing.push_back(d);
    for (AcDbDimension* d : missing) {
        d->recomputeDimBlock();
        if (!d->dimBlockId().isNull()) continue;
        // A kind the platform does not draw: an empty block.
        std::wstring name;
        int next = 1;
        do name = L"*D" + std::to_wstring(next++);
        while (blocks->has(name));
        auto* block = new AcDbBlockTableRecord();
        block->setName(name);
        block->setFlagBits(1);
        block->setOwnerId(blocks->objectId());
        AcDbObjectId id;
        AddClosed(m_db, id, block);
        blocks->attachRecord(id);
        d->setDimBlockId(id);
    }
}

void Writer::ensureLayouts() {
    auto* root = AcDbDictionary::cast(ObjectOf(m_db.namedObjectsDictionaryId()));
    if (!root) {
        root = new AcDbDictionary();
        AcDbObjectId id;
        AddClosed(m_db, id, root);
        m_db.setNamedObjectsDictionaryId(id);
    }
    EnsureEntry(m_db, *root, L"ACAD_GROUP");
    AcDbDictionary* layouts = EnsureEntry(m_db, *root, L"ACAD_LAYOUT");
    int tab = 0;
    for (const wchar_t* name : {ACDB_MODEL_SPACE, ACDB_PAPER_SPACE}) {
        auto* block = AcDbBlockTableRecord::cast(ObjectOf(m_db.blockId(name)));
        if (!block || !block->getLayoutId().isNull()) {
            ++tab;
            continue;
        }
        std::string layoutName = tab == 0 ? "Model" : "Layout1";
        auto* layout = new AcDbUnknownObject(L"LAYOUT");
        AcDbObjectId id;
        AddClosed(m_db, id, layout);
        layout->fileTags() = LayoutTags(layoutName, tab, block->objectId().handle());
        layout->setOwnerId(layouts->objectId());
        layouts->setAtId(Wide(layoutName), id);
        block->setLayoutId(id);
        ++tab;
    }
}

// What a reader needs of every drawing, added when missing; handles for the records that
// objects made in memory have not got yet.
void Writer::prepare() {
    if (m_db.handseed().value() == 0) m_db.setHandseed(AcDbHandle(1));
    // Before 2000 the format has no layouts: a drawing kept in its R12 to R14 version gets none.
    if (m_version >= AcDb::kDHL_1015) {
        for (int k = 0; k < AcDbDatabase::kTableCount; ++k)
            ensureTable(static_cast<AcDbDatabase::TableKind>(k));
        ensureRecord(AcDbDatabase::kLayerTable, L"0", new AcDbLayerTableRecord());
        for (const wchar_t* lt : {L"ByBlock", L"ByLayer", L"Continuous"})
            ensureRecord(AcDbDatabase::kLinetypeTable, lt, new AcDbLinetypeTableRecord());
        ensureRecord(AcDbDatabase::kTextStyleTable, L"Standard", new AcDbTextStyleTableRecord());
        ensureRecord(AcDbDatabase::kRegAppTable, L"ACAD", new AcDbRegAppTableRecord());
        ensureRecord(AcDbDatabase::kDimStyleTable, L"Standard", new AcDbDimStyleTableRecord());
        ensureRecord(AcDbDatabase::kViewportTable, L"*Active", new AcDbViewportTableRecord());
        ensureRecord(AcDbDatabase::kBlockTable, ACDB_MODEL_SPACE, new AcDbBlockTableRecord());
        ensureRecord(AcDbDatabase::kBlockTable, ACDB_PAPER_SPACE, new AcDbBlockTableRecord());
        ensureLayouts();
        ensureDimensionBlocks();
    }
    auto* blocks = AcDbBlockTable::cast(ObjectOf(m_db.blockTableId()));
    if (!blocks) return;
    for (const auto& bid : blocks->recordIds()) {
        auto* b = AcDbBlockTableRecord::cast(ObjectOf(bid));
        if (!b) continue;
        if (b->blockBegin().handle.isNull()) b->blockBegin().handle = newHandle();
        if (b->blockEnd().handle.isNull()) b->blockEnd().handle = newHandle();
        for (const auto& eid : b->entityIds()) {
            AcDbObject* o = ObjectOf(eid);
            if (o && !m_r12 && IsMesh(*o) && WithoutSubclasses(o->fileTags())) numberCarriedRecords(*o);
            if (auto* r = AcDbBlockReference::cast(o)) {
                if (!r->attributeIds().isEmpty() && r->seqEndHandle().isNull())
                    r->setSeqEndHandle(newHandle());
            } else if (auto* p = AcDb2dPolyline::cast(o)) {
                for (auto& v : p->vertices())
                    if (v.handle.isNull()) v.handle = newHandle();
                if (p->seqEndHandle().isNull()) p->setSeqEndHandle(newHandle());
            } else if (auto* p3 = AcDb3dPolyline::cast(o)) {
                for (auto& v : p3->vertices())
                    if (v.handle.isNull()) v.handle = newHandle();
                if (p3->seqEndHandle().isNull()) p3->setSeqEndHandle(newHandle());
            }
        }
    }
}

// A header variable's tags, with the values that differ from the database's replaced.
AcDbRawTags Updated(const AcDbRawTags& old, const AcDbRawTags& now) {
    AcDbRawTags out;
    for (AcDbRawTag t : old) {
        for (const AcDbRawTag& n : now)
            if (t.code == n.code && !SameText(n.code, t.value, n.value)) t.value = n.value;
        out.push_back(t);
    }
    return out;
}

void Writer::header() {
    tag(0, "SECTION");
    tag(2, "HEADER");
    std::string handseed = HandleText(m_db.handseed());
    std::string version = VersionName(m_version);
    std::string codePage = CodePageName(m_headerCodePage);
    auto point = [](const AcGePoint3d& p) {
        AcDbRawTags t;
        for (int k = 0; k < 3; ++k) {
            std::string s;
            FormatDouble(p[k], s);
            t.push_back(10 * (k + 1), s);
        }
        return t;
    };
    // Values the database keeps, by variable.
    std::vector<std::pair<std::string, AcDbRawTags>> current = {
        {"$ACADVER", {{1, version}}},
        {"$DWGCODEPAGE", {{3, codePage}}},
        {"$HANDSEED", {{5, handseed}}},
        {"$EXTMIN", point(m_db.extmin())},
        {"$EXTMAX", point(m_db.extmax())},
    };
    auto& vars = m_db.headerVars();
    bool fromScratch = vars.empty();
    for (auto& [name, tags] : current) {
        bool present = false;
        for (auto& [n, t] : vars)
            if (n == name) {
                present = true;
                t = Updated(t, tags);
            }
        if (!present && (fromScratch || name == "$DWGCODEPAGE" || name == "$ACADVER") &&
            !(m_r12 && name == "$HANDSEED"))
            vars.insert(name == "$ACADVER" ? vars.begin() : vars.begin() + (vars.empty() ? 0 : 1),
                        {name, tags});
    }
    for (const auto& [name, tags] : vars) {
        tag(9, name);
        raw(tags);
    }
    tag(0, "ENDSEC");
}

void Writer::table(AcDbDatabase::TableKind kind, const char* name) {
    auto* t = AcDbSymbolTable::cast(ObjectOf(m_db.tableId(kind)));
    if (!t) return;
    int count = 0;
    for (const auto& id : t->recordIds())
        if (ObjectOf(id) && !id.isErased()) ++count;
    // The head of an R12 table holds nothing but its name and count: a later version gets a
    // new one.
    if (t->fileTags().empty() || (WithoutSubclasses(t->fileTags()) && !m_r12)) {
        tag(0, "TABLE");
        tag(2, name);
        if (!m_r12) {
            tag(5, HandleText(t->getHandle()));
            tag(330, "0");
            tag(100, "AcDbSymbolTable");
        }
        tag(70, std::to_string(count));
        if (kind == AcDbDatabase::kDimStyleTable && !m_r12) tag(100, "AcDbDimStyleTable");
        xdata(*t);
    } else {
        Model& model = m_partModel;
        model.clear();
        model.type = "TABLE";
        ModelWriter w(model, true);
        w.subclass("");
        w.handle(5, t->getHandle());
        w.subclass("AcDbSymbolTable");
        w.integer(70, count);
        merge(*t, t->fileTags(), model);
        xdata(*t);
    }
    for (const auto& id : t->recordIds()) {
        AcDbObject* r = ObjectOf(id);
        if (r && !r->isErased()) object(*r);
    }
    tag(0, "ENDTAB");
}

void Writer::tables() {
    if (m_r12 && m_db.layerTableId().isNull() && m_db.linetypeTableId().isNull() &&
        m_db.textStyleTableId().isNull())
        return;  // an R12 file may hold its entities alone
    tag(0, "SECTION");
    tag(2, "TABLES");
    table(AcDbDatabase::kViewportTable, "VPORT");
    table(AcDbDatabase::kLinetypeTable, "LTYPE");
    table(AcDbDatabase::kLayerTable, "LAYER");
    table(AcDbDatabase::kTextStyleTable, "STYLE");
    table(AcDbDatabase::kViewTable, "VIEW");
    table(AcDbDatabase::kUCSTable, "UCS");
    table(AcDbDatabase::kRegAppTable, "APPID");
    table(AcDbDatabase::kDimStyleTable, "DIMSTYLE");
    if (!m_r12) table(AcDbDatabase::kBlockTable, "BLOCK_RECORD");
    tag(0, "ENDSEC");
}

// Starts the model of a record that belongs to another object (block markers, vertices,
// sequence ends): its handle, its owner, and the layer that a new record needs.
ModelWriter Writer::partModel(std::string_view type, AcDbHandle handle, AcDbHandle owner,
                              bool fresh, const std::wstring& layer) {
    m_partModel.clear();
    m_partModel.type = type;
    ModelWriter w(m_partModel, !fresh);
    w.subclass("");
    w.handle(5, handle);
    w.handle(330, owner);
    w.subclass("AcDbEntity");
    if (fresh) w.wide(8, layer);
    return w;
}

void Writer::marker(const AcDbBlockTableRecord& block, const AcDbBlockTableRecord::FileMarker& m,
                    bool begin) {
    ModelWriter w = partModel(begin ? "BLOCK" : "ENDBLK", m.handle, block.getHandle(),
                              m.tags.empty(), L"0");
    if (begin) {
        w.subclass("AcDbBlockBegin");
        w.own({4});
        w.wide(2, block.name());
        w.integer(70, block.flagBits());
        w.point(10, block.origin());
        w.wide(3, block.name());
        w.wide(1, block.pathName());
        if (!block.comments().empty()) w.wide(4, block.comments());
    } else {
        w.subclass("AcDbBlockEnd");
    }
    merge(block, m.tags, m_partModel);
}

void Writer::seqEnd(const AcDbEntity& owner, AcDbHandle handle, const AcDbRawTags& tmpl) {
    partModel("SEQEND", handle, owner.getHandle(), tmpl.empty(), owner.layer());
    merge(owner, tmpl, m_partModel);
}

template <typename V>
void Writer::vertex(const V& v, const AcDbEntity& owner) {
    constexpr bool twoD = std::is_same_v<V, AcDb2dVertex>;
    ModelWriter w = partModel("VERTEX", v.handle, owner.getHandle(), v.fileTags.empty(), owner.layer());
    w.subclass("AcDbVertex");
    w.subclass(twoD ? "AcDb2dVertex" : "AcDb3dPolylineVertex");
    w.own({10, 20, 30, 40, 41, 42, 70, 50});
    w.point(10, v.position);
    if constexpr (twoD) {
        if (v.startWidth != 0.0) w.real(40, v.startWidth);
        if (v.endWidth != 0.0) w.real(41, v.endWidth);
        if (v.bulge != 0.0) w.real(42, v.bulge);
        w.integer(70, v.flags);
        if (v.tangent != 0.0) w.angle(50, v.tangent);
    } else {
        w.integer(70, v.flags | 32);
    }
    merge(owner, v.fileTags, m_partModel);
}

void Writer::entity(const AcDbEntity& e) {
    object(e);
    if (auto* r = AcDbBlockReference::cast(&e)) {
        bool any = false;
        for (const auto& id : r->attributeIds()) {
            AcDbObject* a = ObjectOf(id);
            if (!a || a->isErased()) continue;
            object(*a);
            any = true;
        }
        if (any) seqEnd(e, r->seqEndHandle(), r->seqEndTags());
    } else if (auto* p = AcDb2dPolyline::cast(&e)) {
        for (const auto& v : p->vertices()) vertex(v, e);
        seqEnd(e, p->seqEndHandle(), p->seqEndTags());
    } else if (auto* p3 = AcDb3dPolyline::cast(&e)) {
        for (const auto& v : p3->vertices()) vertex(v, e);
        seqEnd(e, p3->seqEndHandle(), p3->seqEndTags());
    }
}

// An object read from DWG that the database keeps whole has no complete DXF record.
bool KeptFromDwg(const AcDbDatabase& db, const AcDbObject& o) {
    const auto& kept = db.dwgKeptObjects();
    return !kept.empty() && kept.count(o.getHandle().value()) != 0;
}

void Writer::entityBatch(const AcDbObjectIdArray& ids, size_t begin, size_t end) {
    for (size_t i = begin; i < end; ++i) {
        auto* e = AcDbEntity::cast(ObjectOf(ids[static_cast<int>(i)]));
        if (e && !e->isErased() && !KeptFromDwg(m_db, *e)) entity(*e);
    }
}

// Entities of one batch formatted on a helper thread.
constexpr size_t kEntityBatch = 4096;

// A large block's entities are formatted a batch per thread, the writer's own thread taking the
// first of each round; the batches go out in their order, so the file is the one a single thread
// writes. Formatting only reads the database (handles were all given by prepare()).
void Writer::blockEntities(const AcDbBlockTableRecord& block) {
    const AcDbObjectIdArray& ids = block.entityIds();
    size_t count = static_cast<size_t>(ids.length());
    size_t helpers = std::min<size_t>(std::max(std::thread::hardware_concurrency(), 1u), 4) - 1;
    if (!m_file || helpers == 0 || count < 2 * kEntityBatch) {
        entityBatch(ids, 0, count);
        return;
    }
    std::vector<std::string> texts(helpers);
    for (size_t begin = 0; begin < count;) {
        std::vector<std::thread> threads;
        for (size_t h = 0; h < helpers; ++h) {
            size_t from = std::min(count, begin + (h + 1) * kEntityBatch);
            size_t to = std::min(count, from + kEntityBatch);
            texts[h].clear();
            threads.emplace_back([this, &ids, &text = texts[h], from, to] {
                Writer helper(m_db, m_options, text, nullptr);
                helper.entityBatch(ids, from, to);
            });
        }
        entityBatch(ids, begin, std::min(count, begin + kEntityBatch));
        for (size_t h = 0; h < helpers; ++h) {
            threads[h].join();
            if (m_out.size() >= kFlushBytes) flush();
            m_out += texts[h];
        }
        begin = std::min(count, begin + (helpers + 1) * kEntityBatch);
    }
}

bool IsLayoutName(const std::wstring& name, const wchar_t* layout) {
    if (name.size() != std::wcslen(layout)) return false;
    for (size_t i = 0; i < name.size(); ++i)
        if (std::towupper(name[i]) != std::towupper(layout[i])) return false;
    return true;
}

bool IsLayoutBlock(const AcDbBlockTableRecord& b) {
    return IsLayoutName(b.name(), ACDB_MODEL_SPACE) || IsLayoutName(b.name(), ACDB_PAPER_SPACE);
}

void Writer::blocks() {
    auto* table = AcDbBlockTable::cast(ObjectOf(m_db.blockTableId()));
    std::vector<AcDbBlockTableRecord*> written;
    for (const auto& id : table ? table->recordIds() : AcDbObjectIdArray()) {
        auto* b = AcDbBlockTableRecord::cast(ObjectOf(id));
        // R12 has no layout blocks of its own unless the file gave them.
        if (b && !b->isErased() && !(m_r12 && IsLayoutBlock(*b) && b->blockBegin().tags.empty()))
            written.push_back(b);
    }
    if (m_r12 && written.empty()) return;
    tag(0, "SECTION");
    tag(2, "BLOCKS");
    for (AcDbBlockTableRecord* b : written) {
        bool layout = IsLayoutBlock(*b);
        marker(*b, b->blockBegin(), true);
        if (!layout) blockEntities(*b);
        marker(*b, b->blockEnd(), false);
    }
    tag(0, "ENDSEC");
}

void Writer::objects() {
    tag(0, "SECTION");
    tag(2, "OBJECTS");
    AcDbObject* root = ObjectOf(m_db.namedObjectsDictionaryId());
    if (root) object(*root);
    // In the order they were added: a drawing read keeps its file's order.
    std::vector<const AcDbStub*> others;
    for (const auto& stub : m_db.stubs()) {
        AcDbObject* o = stub.object.get();
        if (!o || o == root || o->isErased() || AcDbEntity::cast(o) || AcDbSymbolTable::cast(o) ||
            AcDbSymbolTableRecord::cast(o) || KeptFromDwg(m_db, *o))
            continue;
        others.push_back(&stub);
    }
    std::sort(others.begin(), others.end(), [](const AcDbStub* a, const AcDbStub* b) { return a->added < b->added; });
    for (const AcDbStub* stub : others) object(*stub->object);
    tag(0, "ENDSEC");
}

bool Writer::write() {
    prepare();
    header();
    if (!m_r12) {
        tag(0, "SECTION");
        tag(2, "CLASSES");
        raw(m_db.classesSection());
        tag(0, "ENDSEC");
    }
    tables();
    blocks();
    tag(0, "SECTION");
    tag(2, "ENTITIES");
    for (const wchar_t* name : {ACDB_MODEL_SPACE, ACDB_PAPER_SPACE})
        if (auto* b = AcDbBlockTableRecord::cast(ObjectOf(m_db.blockId(name)))) blockEntities(*b);
    tag(0, "ENDSEC");
    if (!m_r12) objects();
    if (!m_r12 && !m_db.acdsDataSection().empty()) {
        tag(0, "SECTION");
        tag(2, "ACDSDATA");
        raw(m_db.acdsDataSection());
        tag(0, "ENDSEC");
    }
    if (!m_r12 && !m_db.thumbnailSection().empty()) {
        tag(0, "SECTION");
        tag(2, "THUMBNAILIMAGE");
        raw(m_db.thumbnailSection());
        tag(0, "ENDSEC");
    }
    tag(0, "EOF");
    flush();
    return !m_failed;
}

}  // namespace

std::map<std::string, int> LeftOutOfDxf(const AcDbDatabase& db) {
    std::map<std::string, int> left;
    const auto& kept = db.dwgKeptObjects();
    if (kept.empty()) return left;
    for (const auto& stub : db.stubs()) {
        if (!stub.object || stub.object->isErased()) continue;
        if (const auto it = kept.find(stub.handle.value()); it != kept.end()) ++left[it->second.typeName];
    }
    return left;
}

Acad::ErrorStatus WriteDxfText(AcDbDatabase& db, const WriteOptions& options, std::string& out) {
    out.clear();
    Writer writer(db, options, out, nullptr);
    writer.write();
    return Acad::eOk;
}

Acad::ErrorStatus WriteDxfFile(AcDbDatabase& db, const std::string& path, const WriteOptions& options) {
    RemoveStaleTemporaries(path);
    std::string temp = TemporaryName(path, ::getpid());
    auto fail = [&](const std::string& reason) {
        std::string why = std::strerror(errno);
        std::remove(temp.c_str());
        db.setLastError(Wide(path + ":0: DXF008 " + reason + ": " + why));
        return Acad::eFileAccessErr;
    };
    errno = 0;
    std::FILE* file = std::fopen(temp.c_str(), "wb");
    if (!file) return fail("cannot create " + temp);
    KillPoint("save");
    // The text goes out in pieces: a large drawing is never held whole in memory.
    std::string buffer;
    bool written = Writer(db, options, buffer, file).write();
    if (!written) {
        std::fclose(file);
        return fail("cannot write " + temp);
    }
    if (std::fclose(file) != 0) return fail("cannot write " + temp);
    KillPoint("save written");
    if (std::rename(temp.c_str(), path.c_str()) != 0) return fail("cannot rename " + temp + " into place");
    db.setFilename(Wide(path));
    db.setLastError(L"");
    return Acad::eOk;
}

}  // namespace dxf
