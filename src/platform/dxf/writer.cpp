// Writing: every object's record as read is the template; the values the database models are
// laid over it in place, and what it does not model is written back as it was.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <unistd.h>

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

namespace dxf {

std::string TypeName(const AcDbObject& o) {
    const auto& t = o.fileTags();
    if (!t.empty() && t[0].code == 0) return t[0].value;
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

namespace {

bool SameValue(int code, const std::string& a, const std::string& b) {
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
    if (kind == ValueKind::kHandle) return strcasecmp(a.c_str(), b.c_str()) == 0;
    return false;
}

class Writer {
public:
    Writer(AcDbDatabase& db, const WriteOptions& options, std::string& out)
        : m_db(db), m_out(out) {
        AcDb::AcDbDwgVersion read = db.originalFileVersion();
        m_version = options.keepVersion || read < AcDb::kDHL_1015 ? read : options.version;
        if (m_version == AcDb::kDHL_Unknown) m_version = AcDb::kDHL_1018;
        m_r12 = m_version <= AcDb::kDHL_1009;
        m_headerCodePage = options.codePage == 65001 ? 1252 : options.codePage;
        m_textCodePage = m_version >= AcDb::kDHL_1021 ? 65001
                         : options.codePage == 65001 ? 20127 : options.codePage;
    }
    void write();

private:
    // ---- output ----
    void tag(int code, std::string_view value);
    void raw(const AcDbRawTags& tags) {
        for (const auto& t : tags) tag(t.code, t.value);
    }
    void object(const AcDbObject& o);
    void merge(const AcDbObject& o, const AcDbRawTags& tmpl, const Model& model);
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
    void seqEnd(const AcDbEntity& owner, AcDbHandle handle, const AcDbRawTags& tmpl);
    void marker(const AcDbBlockTableRecord& block, const AcDbBlockTableRecord::FileMarker& m, bool begin);
    void objects();

    AcDbDatabase& m_db;
    std::string& m_out;
    AcDb::AcDbDwgVersion m_version;
    bool m_r12;
    int m_headerCodePage;
    int m_textCodePage;
    std::string m_encoded;
    Model m_model;
};

void Writer::tag(int code, std::string_view value) {
    char buffer[16];
    int n = std::snprintf(buffer, sizeof buffer, "%3d\n", code);
    m_out.append(buffer, static_cast<size_t>(n));
    ValueKind kind = KindOfCode(code);
    if (kind == ValueKind::kString && m_textCodePage != 65001) {
        m_encoded.clear();
        EncodeText(value, m_textCodePage, m_encoded);
        m_out.append(m_encoded);
    } else {
        m_out.append(value);
    }
    m_out += '\n';
}

// The state of one subclass while its template segment is walked.
struct SegmentMerge {
    const Subclass* model = nullptr;
    std::vector<bool> used;
    std::vector<bool> runDone;
    void start(const Subclass* s) {
        model = s;
        used.assign(s ? s->fields.size() : 0, false);
        runDone.assign(64, false);
    }
};

void Writer::merge(const AcDbObject& o, const AcDbRawTags& tmpl, const Model& model) {
    auto emitRun = [&](SegmentMerge& seg, int run) {
        if (run < 64) seg.runDone[static_cast<size_t>(run)] = true;
        for (size_t i = 0; i < seg.model->fields.size(); ++i)
            if (seg.model->fields[i].run == run) {
                seg.used[i] = true;
                if (!seg.model->fields[i].optional)
                    tag(seg.model->fields[i].code, seg.model->fields[i].text);
            }
    };
    auto headGroups = [&](bool xdict, bool reactors) {
        if (m_r12) return;
        if (xdict && !o.extensionDictionary().isNull()) {
            tag(102, "{ACAD_XDICTIONARY");
            tag(360, HandleText(o.extensionDictionary().handle()));
            tag(102, "}");
        }
        if (reactors && !o.persistentReactors().isEmpty()) {
            tag(102, "{ACAD_REACTORS");
            for (const auto& id : o.persistentReactors()) tag(330, HandleText(id.handle()));
            tag(102, "}");
        }
    };
    auto finish = [&](SegmentMerge& seg, bool head) {
        if (!seg.model) return;
        if (head && m_r12) return;  // R12 records get no handles or owners they did not have
        for (size_t i = 0; i < seg.model->fields.size(); ++i) {
            const Field& f = seg.model->fields[i];
            if (seg.used[i] || (f.optional && f.run == 0)) continue;
            if (m_r12 && (f.code == 5 || f.code == 105 || f.code == 330)) continue;
            if (f.run != 0) emitRun(seg, f.run);
            else tag(f.code, f.text);
        }
        seg.model = nullptr;
    };
    auto writeSubclass = [&](const Subclass& s) {
        if (!m_r12) tag(100, s.marker);
        for (const Field& f : s.fields)
            if (!f.optional) tag(f.code, f.text);
    };

    if (tmpl.empty()) {
        tag(0, model.type);
        const Subclass& head = model.subclasses[0];
        for (const Field& f : head.fields)
            if (f.code != 330) tag(f.code, f.text);
        headGroups(true, true);
        for (const Field& f : head.fields)
            if (f.code == 330 && !m_r12) tag(f.code, f.text);
        for (size_t k = 1; k < model.subclasses.size(); ++k) writeSubclass(model.subclasses[k]);
        return;
    }

    bool flat = true;
    for (const auto& t : tmpl)
        if (t.code == 100) { flat = false; break; }
    Subclass merged;
    if (flat) {
        for (const auto& s : model.subclasses) {
            merged.fields.insert(merged.fields.end(), s.fields.begin(), s.fields.end());
            merged.owned.insert(merged.owned.end(), s.owned.begin(), s.owned.end());
        }
    }
    SegmentMerge seg;
    seg.start(flat ? &merged : &model.subclasses[0]);
    bool inHead = true;
    bool verbatim = false;
    bool xdictDone = false, reactorsDone = false;
    size_t matched = 0;  // the last model subclass given a template segment
    tag(0, tmpl[0].value);
    for (size_t i = 1; i < tmpl.size(); ++i) {
        const AcDbRawTag& t = tmpl[i];
        if (verbatim) {
            tag(t.code, t.value);
            continue;
        }
        if (t.code == 0 || t.code == 101) {
            // Records carried inside this one, or an embedded object: as read from here on.
            finish(seg, inHead && !flat);
            if (inHead && !flat) headGroups(!xdictDone, !reactorsDone);
            verbatim = true;
            tag(t.code, t.value);
            continue;
        }
        if (t.code == 100 && !flat) {
            finish(seg, inHead);
            if (inHead) headGroups(!xdictDone, !reactorsDone);
            inHead = false;
            size_t found = 0;
            for (size_t k = matched + 1; k < model.subclasses.size(); ++k)
                if (model.subclasses[k].marker == t.value) { found = k; break; }
            if (found) {
                for (size_t k = matched + 1; k < found; ++k) writeSubclass(model.subclasses[k]);
                matched = found;
                seg.start(&model.subclasses[found]);
            }
            tag(100, t.value);
            continue;
        }
        if (t.code == 102 && t.value.size() > 1 && t.value[0] == '{') {
            bool reactors = t.value == "{ACAD_REACTORS", xdict = t.value == "{ACAD_XDICTIONARY";
            if ((reactors || xdict) && (inHead || flat)) {
                while (i + 1 < tmpl.size() && tmpl[i + 1].code != 102) ++i;
                ++i;
                headGroups(xdict, reactors);
                (reactors ? reactorsDone : xdictDone) = true;
                continue;
            }
            tag(t.code, t.value);
            for (++i; i < tmpl.size(); ++i) {
                tag(tmpl[i].code, tmpl[i].value);
                if (tmpl[i].code == 102) break;
            }
            continue;
        }
        if (!seg.model || !seg.model->owns(t.code)) {
            tag(t.code, t.value);
            continue;
        }
        bool handled = false;
        for (size_t k = 0; k < seg.model->fields.size(); ++k) {
            const Field& f = seg.model->fields[k];
            if (f.code != t.code || seg.used[k]) continue;
            if (f.run != 0) {
                if (f.run >= 64 || !seg.runDone[static_cast<size_t>(f.run)]) emitRun(seg, f.run);
            } else {
                seg.used[k] = true;
                tag(f.code, SameValue(f.code, t.value, f.text) ? t.value : f.text);
            }
            handled = true;
            break;
        }
        if (!handled) {
            // An owned code without a current value (left out at default, or a run already
            // written) is dropped; a second tag of a single value is kept as read.
            bool single = false;
            for (const Field& f : seg.model->fields)
                if (f.code == t.code && f.run == 0) single = true;
            if (single) tag(t.code, t.value);
        }
    }
    if (!verbatim) {
        finish(seg, inHead && !flat);
        if (inHead && !flat) headGroups(!xdictDone, !reactorsDone);
        if (!flat)
            for (size_t k = matched + 1; k < model.subclasses.size(); ++k)
                writeSubclass(model.subclasses[k]);
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
    m_db.addAcDbObject(id, table);
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
    m_db.addAcDbObject(id, record);
    table->attachRecord(id);
}

AcDbDictionary* EnsureEntry(AcDbDatabase& db, AcDbDictionary& parent, const std::wstring& key) {
    AcDbObjectId id;
    if (parent.getAt(key, id) == Acad::eOk)
        if (auto* d = AcDbDictionary::cast(ObjectOf(id))) return d;
    auto* d = new AcDbDictionary();
    db.addAcDbObject(id, d);
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

// A dimension made in memory gets the anonymous block that readers expect it to name.
void Writer::ensureDimensionBlocks() {
    auto* blocks = AcDbBlockTable::cast(ObjectOf(m_db.blockTableId()));
    if (!blocks) return;
    int next = 1;
    std::vector<AcDbDimension*> missing;
    for (const auto& bid : blocks->recordIds())
        if (auto* b = AcDbBlockTableRecord::cast(ObjectOf(bid)))
            for (const auto& eid : b->entityIds())
                if (auto* d = AcDbDimension::cast(ObjectOf(eid));
                    d && d->dimBlockId().isNull() && d->fileTags().empty())
                    missing.push_back(d);
    for (AcDbDimension* d : missing) {
        std::wstring name;
        do name = L"*D" + std::to_wstring(next++);
        while (blocks->has(name));
        auto* block = new AcDbBlockTableRecord();
        block->setName(name);
        block->setFlagBits(1);
        block->setOwnerId(blocks->objectId());
        AcDbObjectId id;
        m_db.addAcDbObject(id, block);
        blocks->attachRecord(id);
        d->setDimBlockId(id);
    }
}

void Writer::ensureLayouts() {
    auto* root = AcDbDictionary::cast(ObjectOf(m_db.namedObjectsDictionaryId()));
    if (!root) {
        root = new AcDbDictionary();
        AcDbObjectId id;
        m_db.addAcDbObject(id, root);
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
        m_db.addAcDbObject(id, layout);
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
    // Before 2000 the format has no layouts; R13 and R14 drawings are written as they came.
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
            t.push_back({10 * (k + 1), s});
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
                for (auto& old : t)
                    for (const auto& now : tags)
                        if (old.code == now.code && !SameValue(now.code, old.value, now.value))
                            old.value = now.value;
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
    if (t->fileTags().empty()) {
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
        Model model;
        model.type = "TABLE";
        model.subclasses.push_back({"", {{5, HandleText(t->getHandle())}}, {5}});
        model.subclasses.push_back({"AcDbSymbolTable", {{70, std::to_string(count)}}, {70}});
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

void Writer::marker(const AcDbBlockTableRecord& block, const AcDbBlockTableRecord::FileMarker& m,
                    bool begin) {
    Model model;
    model.type = begin ? "BLOCK" : "ENDBLK";
    bool fresh = m.tags.empty();
    model.subclasses.push_back({"", {{5, HandleText(m.handle)}, {330, HandleText(block.getHandle())}}, {5, 330}});
    model.subclasses.push_back({"AcDbEntity", {}, {}});
    if (fresh) model.subclasses.back().fields.push_back({8, "0"});
    if (begin) {
        Subclass s{"AcDbBlockBegin", {}, {2, 70, 10, 20, 30, 3, 1, 4}};
        std::string name = Utf8(block.name());
        std::string x, y, z;
        FormatDouble(block.origin().x, x);
        FormatDouble(block.origin().y, y);
        FormatDouble(block.origin().z, z);
        s.fields = {{2, name}, {70, std::to_string(block.flagBits())}, {10, x}, {20, y}, {30, z},
                    {3, name}, {1, Utf8(block.pathName())}};
        if (!block.comments().empty()) s.fields.push_back({4, Utf8(block.comments())});
        model.subclasses.push_back(std::move(s));
    } else {
        model.subclasses.push_back({"AcDbBlockEnd", {}, {}});
    }
    merge(block, m.tags, model);
}

void Writer::seqEnd(const AcDbEntity& owner, AcDbHandle handle, const AcDbRawTags& tmpl) {
    Model model;
    model.type = "SEQEND";
    model.subclasses.push_back({"", {{5, HandleText(handle)}, {330, HandleText(owner.getHandle())}}, {5, 330}});
    model.subclasses.push_back({"AcDbEntity", {}, {}});
    if (tmpl.empty()) model.subclasses.back().fields.push_back({8, Utf8(owner.layer())});
    merge(owner, tmpl, model);
}

template <typename V>
void VertexModel(const V& v, const AcDbEntity& owner, Model& model) {
    constexpr bool twoD = std::is_same_v<V, AcDb2dVertex>;
    model.type = "VERTEX";
    model.subclasses.clear();
    model.subclasses.push_back({"", {{5, HandleText(v.handle)}, {330, HandleText(owner.getHandle())}}, {5, 330}});
    model.subclasses.push_back({"AcDbEntity", {}, {}});
    if (v.fileTags.empty()) model.subclasses.back().fields.push_back({8, Utf8(owner.layer())});
    model.subclasses.push_back({"AcDbVertex", {}, {}});
    Subclass s{twoD ? "AcDb2dVertex" : "AcDb3dPolylineVertex", {}, {10, 20, 30, 40, 41, 42, 70, 50}};
    for (int k = 0; k < 3; ++k) {
        std::string t;
        FormatDouble(v.position[k], t);
        s.fields.push_back({10 * (k + 1), t});
    }
    if constexpr (twoD) {
        auto real = [&](int code, double d) {
            std::string t;
            FormatDouble(d, t);
            s.fields.push_back({code, t});
        };
        if (v.startWidth != 0.0) real(40, v.startWidth);
        if (v.endWidth != 0.0) real(41, v.endWidth);
        if (v.bulge != 0.0) real(42, v.bulge);
        s.fields.push_back({70, std::to_string(v.flags)});
        if (v.tangent != 0.0) real(50, v.tangent * kDegrees);
    } else {
        s.fields.push_back({70, std::to_string(v.flags | 32)});
    }
    model.subclasses.push_back(std::move(s));
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
        Model model;
        for (const auto& v : p->vertices()) {
            VertexModel(v, e, model);
            merge(e, v.fileTags, model);
        }
        seqEnd(e, p->seqEndHandle(), p->seqEndTags());
    } else if (auto* p3 = AcDb3dPolyline::cast(&e)) {
        Model model;
        for (const auto& v : p3->vertices()) {
            VertexModel(v, e, model);
            merge(e, v.fileTags, model);
        }
        seqEnd(e, p3->seqEndHandle(), p3->seqEndTags());
    }
}

void Writer::blockEntities(const AcDbBlockTableRecord& block) {
    for (const auto& id : block.entityIds()) {
        auto* e = AcDbEntity::cast(ObjectOf(id));
        if (e && !e->isErased()) entity(*e);
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
    for (const auto& stub : m_db.stubs()) {
        AcDbObject* o = stub.object.get();
        if (!o || o == root || o->isErased() || AcDbEntity::cast(o) || AcDbSymbolTable::cast(o) ||
            AcDbSymbolTableRecord::cast(o))
            continue;
        object(*o);
    }
    tag(0, "ENDSEC");
}

void Writer::write() {
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
    if (!m_r12 && !m_db.thumbnailSection().empty()) {
        tag(0, "SECTION");
        tag(2, "THUMBNAILIMAGE");
        raw(m_db.thumbnailSection());
        tag(0, "ENDSEC");
    }
    tag(0, "EOF");
}

}  // namespace

Acad::ErrorStatus WriteDxfText(AcDbDatabase& db, const WriteOptions& options, std::string& out) {
    out.clear();
    Writer writer(db, options, out);
    writer.write();
    return Acad::eOk;
}

Acad::ErrorStatus WriteDxfFile(AcDbDatabase& db, const std::string& path, const WriteOptions& options) {
    std::string text;
    WriteDxfText(db, options, text);
    std::string temp = path + ".tmp" + std::to_string(::getpid());
    auto fail = [&](const std::string& reason) {
        std::remove(temp.c_str());
        db.setLastError(Wide(path + ":0: DXF008 " + reason));
        return Acad::eFileAccessErr;
    };
    {
        std::ofstream out(temp, std::ios::binary | std::ios::trunc);
        if (!out) return fail("cannot create " + temp);
        out.write(text.data(), static_cast<std::streamsize>(text.size()));
        out.flush();
        if (!out) return fail("cannot write " + temp);
    }
    if (std::rename(temp.c_str(), path.c_str()) != 0) return fail("cannot rename into place");
    db.setFilename(Wide(path));
    db.setLastError(L"");
    return Acad::eOk;
}

}  // namespace dxf
