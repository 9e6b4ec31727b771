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
#include <unordered_map>

#include "platform/db/block_reference.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/carried.hpp"
#include "platform/db/dictionary.hpp"
#include "platform/db/dimension.hpp"
#include "platform/db/polyline_classic.hpp"
#include "platform/dxf/codepage.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/field_text.hpp"
#include "platform/dxf/model.hpp"
#include "platform/dxf/new_records.hpp"
#include "platform/dxf/required_objects.hpp"
#include "platform/dxf/tagger.hpp"
#include "platform/win/faults.hpp"
#include "platform/win/temporaries.hpp"

namespace dxf {

namespace {

// The record type of an object by its class, as an object made in memory is written.
std::string NameOfClass(const AcDbObject& o) {
    if (AcDbDimension::cast(&o)) return "DIMENSION";
    if (AcDb2dPolyline::cast(&o) || AcDb3dPolyline::cast(&o)) return "POLYLINE";
    if (AcDbMInsertBlock::cast(&o) || AcDbBlockReference::cast(&o)) return "INSERT";
    if (AcDbDictionary::cast(&o)) return "DICTIONARY";
    if (AcDbBlockTableRecord::cast(&o)) return "BLOCK_RECORD";
    const wchar_t* name = o.isA()->dxfName();
    return name ? Utf8(name) : std::string();
}

std::string ClassTypeName(const AcDbObject& o) {
    if (auto* u = AcDbUnknownEntity::cast(&o)) return Utf8(u->dxfName());
    if (auto* u = AcDbUnknownObject::cast(&o)) return Utf8(u->dxfName());
    // The other names follow from the class alone: found once a class (the drop check of a
    // read asks for each entity).
    thread_local std::unordered_map<const AcRxClass*, std::string> byClass;
    auto [it, added] = byClass.try_emplace(o.isA());
    if (added) it->second = NameOfClass(o);
    return it->second;
}

}  // namespace

std::string TypeName(const AcDbObject& o) {
    const auto& t = o.fileTags();
    if (!t.empty() && t.front().code == 0) return std::string(t.front().value);
    return ClassTypeName(o);
}

namespace {

// The file's spelling of a text of the record (its code's, that decodes to the value), or the
// value itself when the file gave none: a text changed since the read is written anew.
std::string_view SpelledAs(const AcDbRawTags& spellings, int code, std::string_view value) {
    std::string decoded;
    for (const AcDbRawTag& t : spellings)
        if (t.code == code && DecodeEscapes(t.value, decoded) && decoded == value) return t.value;
    return value;
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

// Output is written through a buffer of this size when it goes to a file.
constexpr size_t kFlushBytes = 256 << 10;

class Writer {
public:
    // The output goes to the file when there is one, to the tags when they are given, and
    // otherwise stays in out.
    Writer(AcDbDatabase& db, const WriteOptions& options, std::string& out, std::FILE* file,
           DrawingTags* tags = nullptr)
        : m_db(db), m_options(options), m_out(out), m_file(file), m_tags(tags) {
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
    bool asNumber(const Field& f) const;
    bool asNumberOver(const Field& f, std::string_view asRead) const;
    void raw(const AcDbRawTags& tags) {
        for (const AcDbRawTag& t : tags) tag(t.code, t.value);
    }
    void flush();
    void object(const AcDbObject& o);
    void merge(const AcDbObject& o, const HeadIds& head, const AcDbRawTags& tmpl, const Model& model);
    const AcDbRawTags* spellingsOf(const Model& model) const;
    void emitRun(int run, std::span<const AcDbRawTag> asRead = {});
    void carriedRecord(std::span<const AcDbRawTag> record, AcDbHandle owner,
                       const std::vector<std::string_view>& subclasses);
    void numberCarriedRecords(AcDbObject& o);
    void mergeOwned(std::span<const AcDbRawTag> rest);
    void xdata(const AcDbObject& o);

    // ---- preparation ----
    AcDbHandle newHandle();
    void prepare();

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
    DrawingTags* m_tags;
    std::string m_value;  // a value formatted for m_tags
    // The texts of the record being written as its file spelled them (from merge on, to the
    // end of its object); null for none.
    const AcDbRawTags* m_spelled = nullptr;
    bool m_numbers = false;  // reals of the model go to m_tags as numbers (entities' records)
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
    const bool text = KindOfCode(code) == ValueKind::kString;
    if (m_spelled != nullptr && text) value = SpelledAs(*m_spelled, code, value);
    const bool encode = m_textCodePage != 65001 && text;
    if (m_tags) {
        if (encode) {
            m_value.clear();
            EncodeText(value, m_textCodePage, m_value);
            value = m_value;
        }
        m_tags->add(code, value);
        return;
    }
    this->code(code);
    if (encode)
        EncodeText(value, m_textCodePage, m_out);
    else
        m_out.append(value);
    m_out += '\n';
}

// A real of an entity's record, for the tags: given as the number the text would be read back
// as (shortest round trip; a zero is written "0.0"). Not angles (kAngle: their text is read
// into radians, with more digits where a double's would not bring them back) nor a NaN (whose
// text does not keep its bits).
bool Writer::asNumber(const Field& f) const {
    return m_numbers && f.kind == Field::Kind::kReal && KindOfCode(f.code) == ValueKind::kDouble &&
           f.real == f.real;
}

// The same where the template has the value as text: a zero whose text is other than "0.0"
// keeps its text, which may carry the sign.
bool Writer::asNumberOver(const Field& f, std::string_view asRead) const {
    return asNumber(f) && (f.real != 0.0 || asRead == "0.0");
}

void Writer::field(const Field& f) {
    if (f.kind == Field::Kind::kText) {
        tag(f.code, f.text);
        return;
    }
    if (m_tags) {
        if (asNumber(f)) {
            m_tags->addNumber(f.code, f.real == 0.0 ? 0.0 : f.real);
            return;
        }
        m_value.clear();
        AppendField(f, m_value);
        m_tags->add(f.code, m_value);
        return;
    }
    code(f.code);
    AppendField(f, m_out);
    m_out += '\n';
}

// The texts of the record the model is of, as its file spelled them; null when it spelled
// none with escapes. The head's first handle is the record's own (5, or 105 of a dimension
// style).
const AcDbRawTags* Writer::spellingsOf(const Model& model) const {
    const auto& spellings = m_db.textSpellings();
    if (spellings.empty() || model.subclasses.empty()) return nullptr;
    for (const Field& f : model.fieldsOf(model.subclasses[0])) {
        if (f.kind != Field::Kind::kHandle) continue;
        auto it = spellings.find(static_cast<std::uint64_t>(f.integer));
        return it == spellings.end() ? nullptr : &it->second;
    }
    return nullptr;
}

void Writer::merge(const AcDbObject& o, const HeadIds& head, const AcDbRawTags& tmpl, const Model& model) {
    m_spelled = spellingsOf(model);
    SegmentMerge& seg = m_segment;
    auto headGroups = [&](bool xdict, bool reactors) { HeadGroups(head, m_r12, xdict, reactors, *this); };
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
        NewRecord(head, model, m_r12, *this);
        return;
    }

    std::vector<AcDbRawTag>& t = m_template;
    t.assign(tmpl.begin(), tmpl.end());
    bool flat = WithoutSubclasses(t);
    if (flat && !m_r12) {
        // A record of R12 has no subclasses: for a later version it is written anew.
        std::vector<std::span<const AcDbRawTag>> records = SplitRecords(t);
        if (Upgradable(o, records, model)) {
            NewRecord(head, model, false, *this, records[0]);
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
            if (m_numbers && asNumberOver(f, asRead[j].value)) {
                field(f);
                continue;
            }
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
            if ((m_numbers && asNumberOver(f, t.value)) || !SameValue(f, t.value)) field(f);
            else tag(f.code, t.value);
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
    merge(o, HeadIdsOf(o), o.fileTags(), m_model);
    xdata(o);
    m_spelled = nullptr;
}

AcDbHandle Writer::newHandle() {
    AcDbHandle h = m_db.handseed();
    m_db.setHandseed(AcDbHandle(h.value() + 1));
    return h;
}

// What a reader needs of every drawing, added when missing; handles for the records that
// objects made in memory have not got yet.
void Writer::prepare() {
    if (m_db.handseed().value() == 0) m_db.setHandseed(AcDbHandle(1));
    // Before 2000 the format has no layouts: a drawing kept in its R12 to R14 version gets none.
    if (m_version >= AcDb::kDHL_1015) AddRequiredObjects(m_db);
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
        merge(*t, HeadIdsOf(*t), t->fileTags(), model);
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
    merge(block, HeadIdsOf(block), m.tags, m_partModel);
}

void Writer::seqEnd(const AcDbEntity& owner, AcDbHandle handle, const AcDbRawTags& tmpl) {
    partModel("SEQEND", handle, owner.getHandle(), tmpl.empty(), owner.layer());
    merge(owner, HeadIdsOf(owner), tmpl, m_partModel);
}

// The head a vertex's record is written with: its polyline's extension dictionary and the
// vertex's own reactors (a vertex has its own, apart from its polyline's).
template <typename V>
HeadIds VertexHead(const V& v, const AcDbEntity& owner) {
    return {owner.extensionDictionary(), &v.reactors};
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
    merge(owner, VertexHead(v, owner), v.fileTags, m_partModel);
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
    m_numbers = m_tags != nullptr;
    for (size_t i = begin; i < end; ++i) {
        auto* e = AcDbEntity::cast(ObjectOf(ids[static_cast<int>(i)]));
        if (e && !e->isErased() && !KeptFromDwg(m_db, *e)) entity(*e);
    }
    m_numbers = false;
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
    if ((!m_file && !m_tags) || helpers == 0 || count < 2 * kEntityBatch) {
        entityBatch(ids, 0, count);
        return;
    }
    std::vector<std::string> texts(helpers);
    std::vector<DrawingTags> tags(helpers);
    for (size_t begin = 0; begin < count;) {
        std::vector<std::thread> threads;
        for (size_t h = 0; h < helpers; ++h) {
            size_t from = std::min(count, begin + (h + 1) * kEntityBatch);
            size_t to = std::min(count, from + kEntityBatch);
            texts[h].clear();
            threads.emplace_back([this, &ids, &text = texts[h], &part = tags[h], from, to] {
                Writer helper(m_db, m_options, text, nullptr, m_tags ? &part : nullptr);
                helper.entityBatch(ids, from, to);
            });
        }
        entityBatch(ids, begin, std::min(count, begin + kEntityBatch));
        for (size_t h = 0; h < helpers; ++h) {
            threads[h].join();
            if (m_tags) {
                m_tags->append(std::move(tags[h]));
                continue;
            }
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
    for (const AcDbStub* stub : m_db.nonEntitiesAdded()) {
        AcDbObject* o = stub->object.get();
        if (o == root || o->isErased() || AcDbSymbolTable::cast(o) || AcDbSymbolTableRecord::cast(o) ||
            KeptFromDwg(m_db, *o))
            continue;
        object(*o);
    }
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

void DrawingTags::add(int code, std::string_view value) {
    // Blocks of 1 MB, or one of its own for a longer value.
    constexpr size_t kBlock = 1 << 20;
    if (value.size() > m_left) {
        const size_t size = std::max(kBlock, value.size());
        m_blocks.push_back(std::make_unique<char[]>(size));
        m_free = m_blocks.back().get();
        m_left = size;
    }
    if (!value.empty()) std::memcpy(m_free, value.data(), value.size());
    push(Entry(code, std::string_view(m_free, value.size())));
    m_free += value.size();
    m_left -= value.size();
}

void DrawingTags::addNumber(int code, double value) { push(Entry::Number(code, value)); }

void DrawingTags::push(const Entry& entry) {
    // A new part is begun at a record that finds the last one full.
    constexpr size_t kPartTags = 1 << 16;
    if (m_parts.empty() || (entry.code() == 0 && m_parts.back().size() >= kPartTags)) {
        m_parts.emplace_back();
        m_parts.back().reserve(kPartTags + kPartTags / 4);
    }
    m_parts.back().push_back(entry);
}

void DrawingTags::append(DrawingTags&& other) {
    for (auto& part : other.m_parts) m_parts.push_back(std::move(part));
    for (auto& block : other.m_blocks) m_blocks.push_back(std::move(block));
    other = DrawingTags();
}

Acad::ErrorStatus WriteDxfTags(AcDbDatabase& db, const WriteOptions& options, DrawingTags& out) {
    out = DrawingTags();
    std::string unused;
    Writer(db, options, unused, nullptr, &out).write();
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
