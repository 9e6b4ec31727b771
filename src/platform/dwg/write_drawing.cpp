#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <thread>
#include <unistd.h>

#include "platform/dwg/encode_header.hpp"
#include "platform/dwg/encode_sections.hpp"
#include "platform/dwg/filed_objects.hpp"
#include "platform/dwg/kept_objects.hpp"
#include "platform/dwg/r2004_file.hpp"
#include "platform/dwg/write.hpp"
#include "platform/dwg/write_tables.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"

namespace dwg {
namespace {

double Real(const SourceDrawing& s, std::string_view name, int code, double fallback) {
    const SourceRecord* r = s.variable(name);
    return r != nullptr ? r->real(code, fallback) : fallback;
}

std::int16_t Short(const SourceDrawing& s, std::string_view name, std::int16_t fallback) {
    const SourceRecord* r = s.variable(name);
    return r != nullptr ? static_cast<std::int16_t>(r->integer(70, fallback)) : fallback;
}

Point3 PointOf(const SourceDrawing& s, std::string_view name, Point3 fallback) {
    const SourceRecord* r = s.variable(name);
    return r != nullptr ? r->point(10, fallback) : fallback;
}

std::uint64_t NameOf(const SourceDrawing& s, std::string_view name, int code,
                     const std::unordered_map<std::string, std::uint64_t>& table,
                     std::string_view fallback) {
    const SourceRecord* r = s.variable(name);
    const std::uint64_t handle = WriteContext::find(table, r != nullptr ? r->text(code) : fallback);
    return handle != 0 ? handle : WriteContext::find(table, fallback);
}

void SpaceOf(const SourceDrawing& s, const char* prefix, SpaceVariables& out) {
    const std::string p = prefix;
    out.insbase = PointOf(s, "$" + p + "INSBASE", {});
    out.extmin = PointOf(s, "$" + p + "EXTMIN", {1e20, 1e20, 1e20});
    out.extmax = PointOf(s, "$" + p + "EXTMAX", {-1e20, -1e20, -1e20});
    const Point3 limmin = PointOf(s, "$" + p + "LIMMIN", {});
    const Point3 limmax = PointOf(s, "$" + p + "LIMMAX", {420, 297, 0});
    out.limmin = {limmin.x, limmin.y};
    out.limmax = {limmax.x, limmax.y};
    out.ucsxdir = {1, 0, 0};
    out.ucsydir = {0, 1, 0};
}

void DimensionVariablesOf(const SourceDrawing& s, WriteContext& c, DimensionVariables& m) {
    // The dimension style record of the same name holds the same variables; the header's own
    // values are what the DXF header gives.
    const std::pair<const char*, double*> reals[] = {
        {"$DIMSCALE", &m.scale}, {"$DIMASZ", &m.asz}, {"$DIMEXO", &m.exo}, {"$DIMDLI", &m.dli},
        {"$DIMEXE", &m.exe}, {"$DIMRND", &m.rnd}, {"$DIMDLE", &m.dle}, {"$DIMTP", &m.tp},
        {"$DIMTM", &m.tm}, {"$DIMTXT", &m.txt}, {"$DIMCEN", &m.cen}, {"$DIMTSZ", &m.tsz},
        {"$DIMALTF", &m.altf}, {"$DIMLFAC", &m.lfac}, {"$DIMTVP", &m.tvp}, {"$DIMTFAC", &m.tfac},
        {"$DIMGAP", &m.gap}, {"$DIMALTRND", &m.altrnd}};
    for (const auto& [name, value] : reals) *value = Real(s, name, 40, *value);
    const std::pair<const char*, bool*> switches[] = {
        {"$DIMTOL", &m.tol}, {"$DIMLIM", &m.lim}, {"$DIMTIH", &m.tih}, {"$DIMTOH", &m.toh},
        {"$DIMSE1", &m.se1}, {"$DIMSE2", &m.se2}, {"$DIMALT", &m.alt}, {"$DIMTOFL", &m.tofl},
        {"$DIMSAH", &m.sah}, {"$DIMTIX", &m.tix}, {"$DIMSOXD", &m.soxd}, {"$DIMSD1", &m.sd1},
        {"$DIMSD2", &m.sd2}, {"$DIMUPT", &m.upt}};
    for (const auto& [name, value] : switches) *value = Short(s, name, *value) != 0;
    const std::pair<const char*, std::int16_t*> shorts[] = {
        {"$DIMTAD", &m.tad}, {"$DIMZIN", &m.zin}, {"$DIMAZIN", &m.azin}, {"$DIMALTD", &m.altd},
        {"$DIMADEC", &m.adec}, {"$DIMDEC", &m.dec}, {"$DIMTDEC", &m.tdec}, {"$DIMALTU", &m.altu},
        {"$DIMALTTD", &m.alttd}, {"$DIMAUNIT", &m.aunit}, {"$DIMFRAC", &m.frac},
        {"$DIMLUNIT", &m.lunit}, {"$DIMDSEP", &m.dsep}, {"$DIMTMOVE", &m.tmove},
        {"$DIMJUST", &m.just}, {"$DIMTOLJ", &m.tolj}, {"$DIMTZIN", &m.tzin},
        {"$DIMALTZ", &m.altz}, {"$DIMALTTZ", &m.alttz}, {"$DIMATFIT", &m.atfit},
        {"$DIMLWD", &m.lwd}, {"$DIMLWE", &m.lwe}};
    for (const auto& [name, value] : shorts) *value = Short(s, name, *value);
    for (Color* color : {&m.clrd, &m.clre, &m.clrt}) color->rgb = 0xC1000000u;
    m.txsty = NameOf(s, "$DIMTXSTY", 7, c.styles, "STANDARD");
}

HeaderVariables HeaderOf(const SourceDrawing& s, WriteContext& c) {
    HeaderVariables h;
    h.ltscale = Real(s, "$LTSCALE", 40, 1.0);
    h.textsize = Real(s, "$TEXTSIZE", 40, 2.5);
    h.celtscale = Real(s, "$CELTSCALE", 40, 1.0);
    h.pdsize = Real(s, "$PDSIZE", 40, 0.0);
    const SourceRecord* angbase = s.variable("$ANGBASE");
    h.angbase = angbase != nullptr ? angbase->angle(50) : 0;
    h.filletrad = Real(s, "$FILLETRAD", 40, 0.0);
    h.thickness = Real(s, "$THICKNESS", 40, 0.0);
    h.tracewid = Real(s, "$TRACEWID", 40, 1.0);
    h.lunits = Short(s, "$LUNITS", 2);
    h.luprec = Short(s, "$LUPREC", 4);
    h.aunits = Short(s, "$AUNITS", 0);
    h.auprec = Short(s, "$AUPREC", 0);
    h.attmode = Short(s, "$ATTMODE", 1);
    h.pdmode = Short(s, "$PDMODE", 0);
    h.insunits = Short(s, "$INSUNITS", 0);
    h.angdir = Short(s, "$ANGDIR", 0) != 0;
    h.tilemode = Short(s, "$TILEMODE", 1) != 0;
    h.menu = "acad";
    h.tdcreate = Real(s, "$TDCREATE", 40, 0.0);
    h.tdupdate = Real(s, "$TDUPDATE", 40, h.tdcreate);
    h.tdindwg = Real(s, "$TDINDWG", 40, 0.0);
    const SourceRecord* cecolor = s.variable("$CECOLOR");
    h.cecolor.index = static_cast<std::int16_t>(cecolor != nullptr ? cecolor->integer(62, 256) : 256);
    h.cecolor.rgb = h.cecolor.index == 256 ? 0xC0000000u
                                           : 0xC3000000u | static_cast<std::uint32_t>(h.cecolor.index & 0xFF);
    const SourceRecord* celweight = s.variable("$CELWEIGHT");
    h.celweight = static_cast<int>(celweight != nullptr ? celweight->integer(370, -1) : -1);
    h.clayer = NameOf(s, "$CLAYER", 8, c.layers, "0");
    h.textstyle = NameOf(s, "$TEXTSTYLE", 7, c.styles, "STANDARD");
    h.celtype = NameOf(s, "$CELTYPE", 6, c.linetypes, "BYLAYER");
    h.dimstyle = NameOf(s, "$DIMSTYLE", 2, c.dimensionStyles, "STANDARD");
    SpaceOf(s, "P", h.paper);
    SpaceOf(s, "", h.model);
    h.dim = NewDrawingDimensionVariables();
    DimensionVariablesOf(s, c, h.dim);
    h.handles.modelSpace = c.modelSpace;
    h.handles.paperSpace = c.paperSpace;
    h.handles.byLayer = WriteContext::find(c.linetypes, "BYLAYER");
    h.handles.byBlock = WriteContext::find(c.linetypes, "BYBLOCK");
    h.handles.continuous = WriteContext::find(c.linetypes, "CONTINUOUS");
    return h;
}

// The named-object dictionary (the one no object owns) and the dictionaries the header names.
void DictionariesOf(const std::vector<const SourceRecord*>& dictionaries, HeaderVariables& h) {
    for (const SourceRecord* r : dictionaries) {
        if (r->owner() != 0) continue;
        h.handles.namedObjects = r->handle(5);
        std::string_view name;
        for (const auto& [code, value] : r->tags) {
            if (code == 3) {
                name = value;
                continue;
            }
            if (code != 350 && code != 360) continue;
            const std::pair<const char*, std::uint64_t*> slots[] = {
                {"ACAD_GROUP", &h.handles.groupDictionary},
                {"ACAD_MLINESTYLE", &h.handles.mlinestyleDictionary},
                {"ACAD_LAYOUT", &h.handles.layoutDictionary},
                {"ACAD_PLOTSETTINGS", &h.handles.plotSettingsDictionary},
                {"ACAD_PLOTSTYLENAME", &h.handles.plotStyleDictionary},
                {"ACAD_MATERIAL", &h.handles.materialDictionary},
                {"ACAD_COLOR", &h.handles.colorDictionary}};
            for (const auto& [key, slot] : slots) {
                if (name == key) *slot = ParseHandle(value);
            }
        }
        return;
    }
}

// The classes the writer numbers objects by when the drawing's CLASSES section lacks them (a
// drawing made in memory has none): DXF name, C++ name, proxy flags.
struct KnownClass {
    const char* dxfName;
    const char* cppName;
    std::int16_t proxyFlags;
};
constexpr KnownClass kKnownClasses[] = {
    {"ACDBDICTIONARYWDFLT", "AcDbDictionaryWithDefault", 0},
    {"DICTIONARYVAR", "AcDbDictionaryVar", 0},
    {"SCALE", "AcDbScale", 1153},
    {"PLOTSETTINGS", "AcDbPlotSettings", 0}};

// The classes of the DXF's CLASSES section, numbered from 500 in their order, and those of the
// writer's class kinds that the section lacks. Every drawing gets them, used or not, as AutoCAD
// writes them: LibreCAD's reader fails on a classes section without any class.
std::vector<ClassRecord> ClassesOf(const SourceDrawing& s) {
    std::vector<ClassRecord> classes;
    auto add = [&](std::string dxfName, std::string cppName, std::string application,
                   std::int16_t proxyFlags, bool entity) {
        ClassRecord c;
        c.number = static_cast<std::int16_t>(kFirstClass + classes.size());
        c.dxfName = std::move(dxfName);
        c.cppName = std::move(cppName);
        c.application = std::move(application);
        c.proxyFlags = proxyFlags;
        c.isEntity = entity;
        classes.push_back(std::move(c));
    };
    for (const SourceRecord& r : s.classes) {
        add(std::string(r.text(1)), std::string(r.text(2)), std::string(r.text(3)),
            static_cast<std::int16_t>(r.integer(90)), r.integer(281) != 0);
        classes.back().instanceCount = static_cast<std::int32_t>(r.integer(91));
        classes.back().wasZombie = r.integer(280) != 0;
    }
    for (const KnownClass& known : kKnownClasses) {
        const bool listed = std::any_of(classes.begin(), classes.end(),
                                        [&](const ClassRecord& c) { return c.dxfName == known.dxfName; });
        if (!listed) add(known.dxfName, known.cppName, "ObjectDBX Classes", known.proxyFlags, false);
    }
    return classes;
}

std::int32_t ClassNumber(const std::vector<ClassRecord>& classes, std::string_view dxfName) {
    for (const ClassRecord& c : classes) {
        if (c.dxfName == dxfName) return c.number;
    }
    return 0;
}

// The objects section: its marker, then each object; their offsets make the object map.
std::vector<std::uint8_t> ObjectsSection(const WriteContext& c, std::vector<ObjectLocation>& map) {
    std::vector<std::uint8_t> out = {0xCA, 0x0D, 0x00, 0x00};
    // Laid out once: the section holds every object.
    std::size_t size = out.size();
    for (const auto& [handle, bytes] : c.objects) size += bytes.size();
    out.reserve(size);
    map.reserve(map.size() + c.objects.size());
    for (const auto& [handle, bytes] : c.objects) {
        map.push_back({handle, static_cast<std::int64_t>(out.size())});
        out.insert(out.end(), bytes.begin(), bytes.end());
    }
    return out;
}

// The first handle above every handle the records use and the header's seed: objects the
// writer makes (missing layers, SEQENDs) take theirs from it.
std::uint64_t FirstFreeHandle(const SourceDrawing& s) {
    std::uint64_t top = 0;
    // The first 5 and the first 105 tag (a dimension style's handle), in one walk.
    auto note = [&](const SourceRecord& r) {
        std::string_view handle, styleHandle;
        bool seen = false, styleSeen = false;
        for (const auto& [code, value] : r.tags) {
            if (code == 5 && !seen) {
                handle = value;
                seen = true;
            } else if (code == 105 && !styleSeen) {
                styleHandle = value;
                styleSeen = true;
            }
        }
        top = std::max({top, ParseHandle(handle), ParseHandle(styleHandle)});
    };
    for (const SourceTable& t : s.tables) {
        top = std::max(top, t.handle);
        for (const SourceRecord& r : t.records) note(r);
    }
    for (const SourceBlock& b : s.blocks) {
        note(b.begin);
        note(b.end);
        for (const SourceRecord& r : b.entities) note(r);
    }
    for (const SourceRecord& r : s.entities) note(r);
    for (const SourceRecord& r : s.objects) note(r);
    const SourceRecord* seed = s.variable("$HANDSEED");
    return std::max(top + 1, seed != nullptr ? seed->handle(5) : 1);
}

bool IsSubEntity(const SourceRecord& r) {
    return r.type == "ATTRIB" || r.type == "VERTEX" || r.type == "SEQEND";
}

}  // namespace

void EncodeSource(SourceDrawing& source, int codePage, EncodedDrawing& out) {
    WriteContext& c = out.context;
    c.options.version = Version::kR2004;
    c.options.codePage = codePage == 936 ? 936 : 1252;
    c.nextHandle = FirstFreeHandle(source);
    IndexNames(source, c);
    HeaderVariables& header = out.header;
    header = HeaderOf(source, c);
    out.classes = ClassesOf(source);
    const std::vector<ClassRecord>& classes = out.classes;
    for (const ClassRecord& cls : classes) c.classNumbers.emplace(cls.dxfName, cls.number);
    c.dwgCodePage = DwgCodePageNumber(c.options.codePage);
    WriteKeptObjects(classes, c);
    IndexBookColors(source, c);
    WriteTables(source, c, header.handles);
    const BlockInserts inserts = InsertsOf(source, c);
    std::vector<SourceRecord> model, paper;
    bool inPaper = false;
    for (SourceRecord& r : source.entities) {
        // Attributes, vertices and their SEQEND belong to the entity before them, whose space
        // they share whether or not they say so.
        if (!IsSubEntity(r)) inPaper = r.owner() == c.paperSpace || r.integer(67) == 1;
        (inPaper ? paper : model).push_back(std::move(r));
    }
    c.owned[c.modelSpace] = WriteEntities(model, c.modelSpace, c);
    c.owned[c.paperSpace] = WriteEntities(paper, c.paperSpace, c);
    WriteBlocks(source, c, inserts);
    std::vector<const SourceRecord*> dictionaries;
    WriteObjects(source, c, dictionaries);
    const std::int32_t withDefault = ClassNumber(classes, "ACDBDICTIONARYWDFLT");
    WriteDictionaries(dictionaries, c, withDefault);
    DictionariesOf(dictionaries, header);
    c.objects.order();
    header.handseed = std::max(c.nextHandle, c.objects.empty() ? 1 : std::prev(c.objects.end())->first + 1);
    out.measurement = Short(source, "$MEASUREMENT", 0);
}

void NoteKeptObjects(AcDbDatabase& db, EncodedDrawing& out) {
    for (const auto& [handle, kept] : db.dwgKeptObjects()) {
        AcDbObjectId id;
        if (db.getAcDbObjectId(id, false, AcDbHandle(handle)) == Acad::eOk && !id.isErased()) {
            out.context.kept.emplace_back(handle, &kept);
        }
    }
    NoteErasedEntries(db, out.context);
    NoteDimensionStyleColors(db, out.context);
}

Acad::ErrorStatus EncodeDrawing(AcDbDatabase& db, int codePage, EncodedDrawing& out) {
    dxf::WriteOptions options;
    options.version = AcDb::kDHL_1032;  // texts as UTF-8, turned into the code page here
    options.codePage = codePage;
    dxf::DrawingTags tags;
    Acad::ErrorStatus es = dxf::WriteDxfTags(db, options, tags);
    if (es != Acad::eOk) return es;
    const std::vector<std::span<const SourceTag>> parts(tags.parts().begin(), tags.parts().end());
    SourceDrawing source;
    std::string error;
    if (!ReadSource(parts, source, error)) {
        db.setLastError(L"DWG writer: " + dxf::Wide(error));
        return Acad::eInvalidInput;
    }
    NoteKeptObjects(db, out);
    out.context.threads = std::min(std::max(std::thread::hardware_concurrency(), 1u), 4u);
    EncodeSource(source, codePage, out);
    return Acad::eOk;
}

std::vector<std::uint8_t> AssembleDwg(const AcDbDatabase& db, EncodedDrawing& encoded, DwgWriteReport& report) {
    WriteContext& c = encoded.context;
    const HeaderVariables& header = encoded.header;
    const std::vector<ClassRecord>& classes = encoded.classes;
    PutBackFiledObjects(db, c);

    std::vector<ObjectLocation> map;
    std::vector<NamedSection> sections;
    sections.push_back({"AcDb:SummaryInfo", EncodeSummaryInfo()});
    sections.push_back({"AcDb:Preview", EncodePreview()});
    sections.push_back({"AcDb:RevHistory", EncodeRevisionHistory()});
    sections.push_back({"AcDb:Template", EncodeTemplate(encoded.measurement)});
    sections.push_back({"AcDb:AcDbObjects", ObjectsSection(c, map)});
    sections.push_back({"AcDb:Handles", EncodeObjectMap(map)});
    sections.push_back({"AcDb:Classes", EncodeClassesSection(classes, c.options.version, c.options.codePage)});
    sections.push_back({"AcDb:AuxHeader", EncodeAuxHeader(header.tdcreate, header.tdupdate, header.handseed)});
    sections.push_back({"AcDb:Header", EncodeHeaderSection(header, c.options.version, c.options.codePage)});
    std::vector<std::uint8_t> out = AssembleR2004(std::move(sections), DwgCodePageNumber(c.options.codePage));
    report.leftOut = c.leftOut;
    // Every object of the database that the file does not hold, by its record type: the kinds
    // without an encoder, and any object the drawing's records did not carry.
    // The object map lists the written handles in their order; it is asked first, so that the
    // objects written (nearly all) are not visited. The database's objects mostly come in the
    // same order: the entry after the last one found is tried before a search.
    std::size_t next = 0;
    const auto written = [&map, &next](std::uint64_t handle) {
        if (next < map.size() && map[next].handle == handle) {
            ++next;
            return true;
        }
        const auto at = std::lower_bound(map.begin(), map.end(), handle,
                                         [](const ObjectLocation& l, std::uint64_t h) { return l.handle < h; });
        if (at == map.end() || at->handle != handle) return false;
        next = static_cast<std::size_t>(at - map.begin()) + 1;
        return true;
    };
    for (const AcDbStub& stub : db.stubs()) {
        if (!stub.object || written(stub.handle.value()) || stub.object->isErased()) continue;
        ++report.leftOut[dxf::TypeName(*stub.object)];
    }
    return out;
}

Acad::ErrorStatus WriteDwgBytes(AcDbDatabase& db, int codePage, std::vector<std::uint8_t>& out,
                                DwgWriteReport& report) {
    EncodedDrawing encoded;
    Acad::ErrorStatus es = EncodeDrawing(db, codePage, encoded);
    if (es != Acad::eOk) return es;
    out = AssembleDwg(db, encoded, report);
    return Acad::eOk;
}

Acad::ErrorStatus WriteDwgFile(AcDbDatabase& db, const std::string& path, int codePage,
                               DwgWriteReport& report) {
    std::vector<std::uint8_t> bytes;
    Acad::ErrorStatus es = WriteDwgBytes(db, codePage, bytes, report);
    if (es != Acad::eOk) return es;
    const std::string temporary = path + ".tmp" + std::to_string(::getpid());
    {
        std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        if (!file.flush()) {
            std::remove(temporary.c_str());
            db.setLastError(dxf::Wide(path) + L":0: DXF008 cannot write the file");
            return Acad::eFileAccessErr;
        }
    }
    std::error_code code;
    std::filesystem::rename(temporary, path, code);
    if (code) {
        std::remove(temporary.c_str());
        db.setLastError(dxf::Wide(path) + L":0: DXF008 cannot rename into place: " + dxf::Wide(code.message()));
        return Acad::eFileAccessErr;
    }
    return Acad::eOk;
}

}  // namespace dwg
