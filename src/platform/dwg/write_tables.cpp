// The symbol tables and the non-graphical objects from their DXF records: table records with
// their control objects, block records with their BLOCK and ENDBLK, dictionaries, layouts and
// multiline styles.
#include "platform/dwg/write_tables.hpp"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <unordered_set>

#include "platform/dwg/encode_annotations.hpp"
#include "platform/dwg/encode_blocks.hpp"
#include "platform/dwg/encode_symbols.hpp"
#include "platform/dwg/encode_tables.hpp"
#include "platform/dwg/entities.hpp"
#include "platform/dwg/kept_objects.hpp"
#include "platform/dxf/required_objects.hpp"
#include "platform/dxf/tagger.hpp"

namespace dwg {
namespace {

TableEntry EntryOf(const SourceRecord& r, WriteContext& c, int handleCode = 5) {
    TableEntry e;
    e.common = ObjectCommonOf(r, c, handleCode);
    e.name = std::string(r.text(2));
    const long long flags = r.integer(70);
    e.referenced = (flags & 64) != 0;
    e.xrefDependent = (flags & 16) != 0;
    return e;
}

// A colour as CMC stores it from 2004: the index, and the same index in the colour value that
// readers of the value take.
Color CmcColor(long long index, const SourceRecord& r, int trueColorCode) {
    Color color;
    color.index = static_cast<std::int16_t>(index);
    if (r.has(trueColorCode)) {
        color.rgb = 0xC2000000u | (static_cast<std::uint32_t>(r.integer(trueColorCode)) & 0xFFFFFF);
    } else if (index == 256) {
        color.rgb = 0xC0000000u;
    } else if (index == 0) {
        color.rgb = 0xC1000000u;
    } else {
        color.rgb = 0xC3000000u | static_cast<std::uint32_t>(index & 0xFF);
    }
    return color;
}

LayerRecord LayerOf(const SourceRecord& r, WriteContext& c) {
    LayerRecord l;
    l.entry = EntryOf(r, c);
    l.flags = static_cast<std::int16_t>(r.integer(70) & (1 | 4 | 8));
    const long long color = r.integer(62, 7);
    l.off = color < 0;
    l.color = CmcColor(color < 0 ? -color : color, r, 420);
    SetColorName(l.color, r.text(430));
    l.plotted = r.integer(290, 1) != 0;
    l.lineweight = static_cast<int>(r.integer(370, -3));
    l.plotStyle = r.handle(390);
    l.linetype = WriteContext::find(c.linetypes, r.has(6) ? r.text(6) : "CONTINUOUS");
    return l;
}

void DimensionVariablesOf(const SourceRecord& r, WriteContext& c, DimensionVariables& m) {
    m.post = std::string(r.text(3));
    m.apost = std::string(r.text(4));
    const std::pair<int, double*> reals[] = {
        {40, &m.scale}, {41, &m.asz}, {42, &m.exo}, {43, &m.dli}, {44, &m.exe}, {45, &m.rnd},
        {46, &m.dle}, {47, &m.tp}, {48, &m.tm}, {140, &m.txt}, {141, &m.cen}, {142, &m.tsz},
        {143, &m.altf}, {144, &m.lfac}, {145, &m.tvp}, {146, &m.tfac}, {147, &m.gap},
        {148, &m.altrnd}};
    for (const auto& [code, value] : reals) *value = r.real(code, *value);
    const std::pair<int, bool*> switches[] = {
        {71, &m.tol}, {72, &m.lim}, {73, &m.tih}, {74, &m.toh}, {75, &m.se1}, {76, &m.se2},
        {170, &m.alt}, {172, &m.tofl}, {173, &m.sah}, {174, &m.tix}, {175, &m.soxd},
        {281, &m.sd1}, {282, &m.sd2}, {288, &m.upt}};
    for (const auto& [code, value] : switches) *value = r.integer(code, *value) != 0;
    const std::pair<int, std::int16_t*> shorts[] = {
        {77, &m.tad}, {78, &m.zin}, {79, &m.azin}, {171, &m.altd}, {179, &m.adec},
        {271, &m.dec}, {272, &m.tdec}, {273, &m.altu}, {274, &m.alttd}, {275, &m.aunit},
        {276, &m.frac}, {277, &m.lunit}, {278, &m.dsep}, {279, &m.tmove}, {280, &m.just},
        {283, &m.tolj}, {284, &m.tzin}, {285, &m.altz}, {286, &m.alttz}, {289, &m.atfit},
        {371, &m.lwd}, {372, &m.lwe}};
    for (const auto& [code, value] : shorts) *value = static_cast<std::int16_t>(r.integer(code, *value));
    m.clrd = CmcColor(r.integer(176, 0), r, -1);
    m.clre = CmcColor(r.integer(177, 0), r, -1);
    m.clrt = CmcColor(r.integer(178, 0), r, -1);
    m.txsty = r.has(340) ? r.handle(340) : WriteContext::find(c.styles, "STANDARD");
    m.ldrblk = r.handle(341);
    m.blkHandle = r.handle(342);
    m.blk1Handle = r.handle(343);
    m.blk2Handle = r.handle(344);
}

// The dimension style's variables that an AC1018 record has no place for (those of R12 to R14
// and of 2007 on) are named in the report: the save leaves them out.
void NoteUnstoredDimensionVariables(const SourceRecord& r, WriteContext& c) {
    static constexpr int kStored[] = {2,   3,   4,   40,  41,  42,  43,  44,  45,  46,  47,
                                      48,  70,  71,  72,  73,  74,  75,  76,  77,  78,  79,
                                      140, 141, 142, 143, 144, 145, 146, 147, 148, 170, 171,
                                      172, 173, 174, 175, 176, 177, 178, 179, 271, 272, 273,
                                      274, 275, 276, 277, 278, 279, 280, 281, 282, 283, 284,
                                      285, 286, 288, 289, 340, 341, 342, 343, 344, 371, 372};
    bool head = true;
    for (const auto& [code, value] : r.tags) {
        if (code == 100) head = false;
        if (head || code == 100 || code == 105 || code == 102 || code == 330 || code == 360) continue;
        // A handle variable given empty or by a name refers to nothing the file can hold.
        const bool emptyReference = code >= 340 && code <= 344 &&
                                    (value.empty() || value.find_first_not_of("0123456789ABCDEFabcdef") !=
                                                          std::string_view::npos);
        if (emptyReference ||
            std::find(std::begin(kStored), std::end(kStored), code) == std::end(kStored)) {
            ++c.leftOut["DIMSTYLE variable " + std::to_string(code)];
        }
    }
}

SymbolRecord SymbolOf(const SourceRecord& r, std::string_view table, WriteContext& c) {
    SymbolRecord s;
    s.entry = EntryOf(r, c, table == "DIMSTYLE" ? 105 : 5);
    const long long flags = r.integer(70);
    if (table == "STYLE") {
        s.shapeFile = (flags & 1) != 0;
        s.vertical = (flags & 4) != 0;
        s.fixedHeight = r.real(40);
        s.widthFactor = r.real(41, 1.0);
        s.oblique = r.angle(50);
        s.generation = static_cast<std::uint8_t>(r.integer(71));
        s.lastHeight = r.real(42);
        s.font = std::string(r.text(3));
        s.bigFont = std::string(r.text(4));
    } else if (table == "LTYPE") {
        s.description = std::string(r.text(3));
        s.patternLength = r.real(40);
        for (const auto& [code, value] : r.tags) {
            double dash = 0;
            if (code == 49 && dxf::ParseDouble(value, dash)) s.dashes.push_back(dash);
        }
    } else if (table == "DIMSTYLE") {
        s.dim = NewDrawingDimensionVariables();
        DimensionVariablesOf(r, c, s.dim);
        // The true colours the database has beside the record's indexes.
        const auto trueColors = c.dimensionStyleColors.find(s.entry.common.handle);
        if (trueColors != c.dimensionStyleColors.end()) {
            for (const auto& [code, color] : trueColors->second)
                (code == 176 ? s.dim.clrd : code == 177 ? s.dim.clre : s.dim.clrt) = color;
        }
        NoteUnstoredDimensionVariables(r, c);
    } else if (table == "VPORT") {
        s.lowerLeft = r.point2(10);
        s.upperRight = r.has(11) ? r.point2(11) : Point2{1, 1};
        s.center = r.point2(12);
        s.snapBase = r.point2(13);
        s.snapSpacing = r.point2(14);
        s.gridSpacing = r.point2(15);
        s.direction = r.point(16, {0, 0, 1});
        s.target = r.point(17);
        s.height = r.real(40);
        s.width = r.real(41, 1.0) * s.height;  // DXF gives the aspect ratio
        s.lensLength = r.real(42, 50.0);
        s.frontClip = r.real(43);
        s.backClip = r.real(44);
        s.snapRotation = r.angle(50);
        s.twist = r.angle(51);
        s.viewMode = static_cast<std::uint8_t>(r.integer(71));
        s.circleZoom = static_cast<std::int16_t>(r.integer(72, 1000));
        s.fastZoom = r.integer(73, 1) != 0;
        s.ucsIcon = static_cast<std::uint8_t>(r.integer(74, 3));
        s.snapOn = r.integer(75) != 0;
        s.gridOn = r.integer(76) != 0;
        s.snapStyle = r.integer(77) != 0;
        s.snapIsoPair = static_cast<std::int16_t>(r.integer(78));
        s.renderMode = static_cast<std::uint8_t>(r.integer(281));
        s.hasUcs = r.integer(65, 1) != 0;
        s.origin = r.point(110);
        s.xAxis = r.point(111, {1, 0, 0});
        s.yAxis = r.point(112, {0, 1, 0});
        s.orthoType = static_cast<std::int16_t>(r.integer(79));
        s.elevation = r.real(146);
    }
    return s;
}

struct TableKind {
    std::string_view name;
    std::int32_t control, record;
};
constexpr TableKind kTables[] = {
    {"BLOCK_RECORD", kBlockControl, kBlockHeader}, {"LAYER", kLayerControl, kLayer},
    {"STYLE", kStyleControl, kStyle},            {"LTYPE", kLinetypeControl, kLinetype},
    {"VIEW", 60, kView},                         {"UCS", 62, kUcs},
    {"VPORT", 64, kViewport},                    {"APPID", 66, kAppId},
    {"DIMSTYLE", 68, kDimensionStyle}};

}  // namespace

DimensionVariables NewDrawingDimensionVariables() {
    DimensionVariables m;
    m.asz = 0.18;
    m.exo = 0.0625;
    m.dli = 0.38;
    m.exe = 0.18;
    m.txt = 0.18;
    m.cen = 0.09;
    m.altf = 25.4;
    m.gap = 0.09;
    m.tih = true;
    m.toh = true;
    m.altd = 2;
    m.dec = 4;
    m.tdec = 4;
    m.altu = 2;
    m.alttd = 2;
    m.lunit = 2;
    m.dsep = '.';
    m.atfit = 3;
    m.lwd = -2;
    m.lwe = -2;
    m.tolj = 1;
    return m;
}

void IndexNames(const SourceDrawing& source, WriteContext& c) {
    for (const SourceTable& table : source.tables) {
        std::unordered_map<std::string, std::uint64_t>* names =
            table.name == "LAYER"          ? &c.layers
            : table.name == "LTYPE"        ? &c.linetypes
            : table.name == "STYLE"        ? &c.styles
            : table.name == "BLOCK_RECORD" ? &c.blocks
            : table.name == "DIMSTYLE"     ? &c.dimensionStyles
            : table.name == "APPID"        ? &c.applications
                                           : nullptr;
        if (names == nullptr) continue;
        for (const SourceRecord& r : table.records) {
            const std::uint64_t handle = r.handle(table.name == "DIMSTYLE" ? 105 : 5);
            (*names)[NameKey(r.text(2))] = handle;
        }
    }
    c.modelSpace = WriteContext::find(c.blocks, "*MODEL_SPACE");
    c.paperSpace = WriteContext::find(c.blocks, "*PAPER_SPACE");
}

void IndexBookColors(const SourceDrawing& source, WriteContext& c) {
    for (const SourceRecord& r : source.objects) {
        if (r.type != "DICTIONARY") continue;
        std::string_view name;
        for (const auto& [code, value] : r.tags) {
            if (code == 3) name = value;
            const std::uint64_t entry = code == 350 ? ParseHandle(value) : 0;
            if (name.find('$') != std::string_view::npos && c.written(entry)) c.bookColors.emplace(name, entry);
        }
    }
}

namespace {

// Notes a name that a record gives in `code` and the table lacks, with a new handle for it.
void NoteName(const SourceRecord& r, int code, std::unordered_map<std::string, std::uint64_t>& table,
              WriteContext& c, std::vector<std::string>& missing) {
    std::string_view name = r.text(code);
    if (code == 8 && name.empty()) name = "0";
    const std::string key = NameKey(name);
    if (key.empty() || key == "BYLAYER" || key == "BYBLOCK" || table.count(key) != 0) return;
    table[key] = c.nextHandle++;
    missing.emplace_back(name);
}

// Layers (code 8) and linetypes (code 6) that entities name and the table lacks (a DXF may
// leave them out) are made, as the format's readers make them: a DWG entity refers to them by
// handle. The names in the order the entities give them.
std::vector<std::string> MissingNames(const SourceDrawing& source, int code,
                                      std::unordered_map<std::string, std::uint64_t>& table,
                                      WriteContext& c) {
    std::vector<std::string> missing;
    // Entities mostly name a few layers and linetypes: a name is looked up the first time it
    // comes, while there are few names to remember.
    constexpr std::size_t kRemembered = 32;
    std::vector<std::string_view> seen;
    auto note = [&](const SourceRecord& r) {
        const std::string_view name = r.text(code);
        if (std::find(seen.begin(), seen.end(), name) != seen.end()) return;
        NoteName(r, code, table, c, missing);
        if (seen.size() < kRemembered) seen.push_back(name);
    };
    for (const SourceRecord& r : source.entities) note(r);
    for (const SourceBlock& block : source.blocks) {
        for (const SourceRecord& r : block.entities) note(r);
    }
    return missing;
}

std::vector<LayerRecord> MissingLayers(const SourceDrawing& source, std::uint64_t control,
                                       WriteContext& c) {
    std::vector<LayerRecord> out;
    for (const std::string& name : MissingNames(source, 8, c.layers, c)) {
        LayerRecord layer;
        layer.entry.common.handle = c.layers[NameKey(name)];
        layer.entry.common.owner = control;
        layer.entry.name = name;
        layer.color.index = 7;
        layer.color.rgb = 0xC3000007u;
        layer.linetype = WriteContext::find(c.linetypes, "CONTINUOUS");
        out.push_back(std::move(layer));
    }
    return out;
}

// A linetype made for a name alone has no dashes: it draws as a continuous line.
std::vector<SymbolRecord> MissingLinetypes(const SourceDrawing& source, std::uint64_t control,
                                           WriteContext& c) {
    std::vector<SymbolRecord> out;
    for (const std::string& name : MissingNames(source, 6, c.linetypes, c)) {
        SymbolRecord linetype;
        linetype.entry.common.handle = c.linetypes[NameKey(name)];
        linetype.entry.common.owner = control;
        linetype.entry.name = name;
        out.push_back(std::move(linetype));
    }
    return out;
}

}  // namespace

namespace {

// The dimension style table's second list: the styles its record lists (340) that the table
// holds, in their order, then the others in the table's.
std::vector<std::uint64_t> StyleList(const SourceRecord& head, const std::vector<std::uint64_t>& entries) {
    std::vector<std::uint64_t> out;
    for (const auto& [code, value] : head.subclass("AcDbDimStyleTable").tags) {
        const std::uint64_t style = code == 340 ? ParseHandle(value) : 0;
        if (std::find(entries.begin(), entries.end(), style) != entries.end() &&
            std::find(out.begin(), out.end(), style) == out.end()) {
            out.push_back(style);
        }
    }
    for (std::uint64_t entry : entries) {
        if (std::find(out.begin(), out.end(), entry) == out.end()) out.push_back(entry);
    }
    return out;
}

// The null entries go back to their places, in the order of the places, so that each place
// counts the nulls before it; a place beyond the list (records erased since the read) goes to
// its end.
void ListErasedEntries(const std::unordered_map<std::uint64_t, std::vector<int>>& erased,
                       ControlRecord& control) {
    const auto it = erased.find(control.common.handle);
    if (it == erased.end()) return;
    for (int place : it->second) {
        const auto at = std::min(static_cast<std::size_t>(place), control.entries.size());
        control.entries.insert(control.entries.begin() + static_cast<std::ptrdiff_t>(at), 0);
    }
}

}  // namespace

void NoteErasedEntries(const AcDbDatabase& db, WriteContext& c) {
    for (int kind = 0; kind < AcDbDatabase::kTableCount; ++kind) {
        const AcDbObjectId id = db.tableId(static_cast<AcDbDatabase::TableKind>(kind));
        if (const auto* table = AcDbSymbolTable::cast(dxf::ObjectOf(id))) {
            c.erasedEntries[id.handle().value()] = table->erasedEntryPlaces();
        }
    }
}

void NoteDimensionStyleColors(const AcDbDatabase& db, WriteContext& c) {
    const auto* table = AcDbSymbolTable::cast(dxf::ObjectOf(db.dimStyleTableId()));
    if (table == nullptr) return;
    for (const AcDbObjectId& id : table->recordIds()) {
        const auto* style = AcDbDimStyleTableRecord::cast(dxf::ObjectOf(id));
        if (style == nullptr || style->isErased()) continue;
        std::vector<std::pair<int, Color>> colors;
        for (const int code : {176, 177, 178}) {
            const AcCmColor color = style->colorVar(code);
            if (!color.hasTrueColor()) continue;
            Color stored;
            stored.index = static_cast<std::int16_t>(color.colorIndex());
            stored.rgb = 0xC2000000u | color.trueColor();
            colors.emplace_back(code, stored);
        }
        if (!colors.empty()) c.dimensionStyleColors[id.handle().value()] = std::move(colors);
    }
}

void WriteTables(const SourceDrawing& source, WriteContext& c, HeaderHandles& handles) {
    for (const SourceTable& table : source.tables) {
        const TableKind* kind = nullptr;
        for (const TableKind& k : kTables) {
            if (k.name == table.name) kind = &k;
        }
        if (kind == nullptr) continue;
        ControlRecord control;
        control.type = kind->control;
        control.common.handle = table.handle != 0 ? table.handle : c.nextHandle++;
        const auto dictionaries = table.head.group("{ACAD_XDICTIONARY", 360);
        if (!dictionaries.empty()) control.common.extensionDictionary = dictionaries.front();
        control.common.extended = ExtendedDataOf(table.head, c);
        for (const SourceRecord& r : table.records) {
            const std::string key = NameKey(r.text(2));
            std::uint64_t handle = 0;
            if (table.name == "LAYER") {
                LayerRecord layer = LayerOf(r, c);
                handle = layer.entry.common.handle;
                c.add(handle, EncodeLayer(layer, c.options));
            } else if (table.name == "BLOCK_RECORD") {
                handle = r.handle(5);  // written with its block
            } else if (table.name == "VIEW" || table.name == "UCS") {
                continue;  // not written: the report counts them among the objects left out
            } else {
                SymbolRecord symbol = SymbolOf(r, table.name, c);
                handle = symbol.entry.common.handle;
                c.add(handle, EncodeSymbolRecord(symbol, kind->record, c.options));
            }
            // The model and paper space blocks, ByBlock and ByLayer are held apart.
            if (key == "*MODEL_SPACE" || key == "BYBLOCK") {
                control.apart.insert(control.apart.begin(), handle);
            } else if (key == "*PAPER_SPACE" || key == "BYLAYER") {
                control.apart.push_back(handle);
            } else {
                control.entries.push_back(handle);
            }
        }
        if (table.name == "LAYER") {
            for (const LayerRecord& layer : MissingLayers(source, control.common.handle, c)) {
                c.add(layer.entry.common.handle, EncodeLayer(layer, c.options));
                control.entries.push_back(layer.entry.common.handle);
            }
        }
        if (table.name == "LTYPE") {
            for (const SymbolRecord& linetype : MissingLinetypes(source, control.common.handle, c)) {
                c.add(linetype.entry.common.handle, EncodeSymbolRecord(linetype, kLinetype, c.options));
                control.entries.push_back(linetype.entry.common.handle);
            }
        }
        if (table.name == "DIMSTYLE") control.styles = StyleList(table.head, control.entries);
        ListErasedEntries(c.erasedEntries, control);
        c.add(control.common.handle, EncodeControl(control, c.options));
        std::uint64_t* slot = nullptr;
        switch (kind->control) {
            case kBlockControl: slot = &handles.blockControl; break;
            case kLayerControl: slot = &handles.layerControl; break;
            case kStyleControl: slot = &handles.styleControl; break;
            case kLinetypeControl: slot = &handles.linetypeControl; break;
            case 60: slot = &handles.viewControl; break;
            case 62: slot = &handles.ucsControl; break;
            case 64: slot = &handles.vportControl; break;
            case 66: slot = &handles.appidControl; break;
            default: slot = &handles.dimstyleControl; break;
        }
        *slot = control.common.handle;
    }
}

namespace {

const SourceRecord* BlockRecordOf(const SourceDrawing& source, std::uint64_t handle) {
    for (const SourceTable& table : source.tables) {
        if (table.name != "BLOCK_RECORD") continue;
        for (const SourceRecord& r : table.records) {
            if (r.handle(5) == handle) return &r;
        }
    }
    return nullptr;
}

}  // namespace

namespace {

// The name a block record stores: an anonymous block's kind ("*D" of "*D4", a star, a letter
// and a number) and "*Paper_Space" for the paper spaces beyond the first ("*Paper_Space0"), as
// AutoCAD stores them; the BLOCK entity has the whole name. Other names are stored whole.
std::string StoredBlockName(const std::string& name, bool anonymous, bool firstPaperSpace) {
    const bool numberedKind = name.size() > 2 && name[0] == '*' &&
                              std::isalpha(static_cast<unsigned char>(name[1])) &&
                              name.find_first_not_of("0123456789", 2) == std::string::npos;
    if (anonymous) return numberedKind ? name.substr(0, 2) : name;
    constexpr std::string_view kPaperSpace = "*PAPER_SPACE";
    if (!firstPaperSpace && name.size() > kPaperSpace.size() &&
        NameKey(name.substr(0, kPaperSpace.size())) == kPaperSpace &&
        name.find_first_not_of("0123456789", kPaperSpace.size()) == std::string::npos) {
        return name.substr(0, kPaperSpace.size());
    }
    return name;
}

// The bytes of a record's binary groups of one code, in their order.
std::string BinaryOf(const SourceRecord& r, int code) {
    std::string out;
    for (const auto& [tagCode, value] : r.tags) {
        if (tagCode != code) continue;
        for (std::size_t i = 0; i + 1 < value.size(); i += 2) {
            out.push_back(static_cast<char>(std::stoi(std::string(value.substr(i, 2)), nullptr, 16)));
        }
    }
    return out;
}

}  // namespace

BlockInserts InsertsOf(const SourceDrawing& source, const WriteContext& c) {
    BlockInserts out;
    auto note = [&](const SourceRecord& r) {
        if (r.type != "INSERT") return;
        const std::uint64_t block = WriteContext::find(c.blocks, r.text(2));
        const std::uint64_t handle = r.handle(5);
        if (block != 0 && handle != 0) out[block].push_back(handle);
    };
    for (const SourceRecord& r : source.entities) note(r);
    for (const SourceBlock& b : source.blocks) {
        for (const SourceRecord& r : b.entities) note(r);
    }
    // Entities kept whole that draw a block (ACAD_TABLE) are among its references too.
    for (const auto& [name, block] : c.blocks) {
        const auto kept = c.keptListed.find(block);
        if (kept != c.keptListed.end()) out[block].insert(out[block].end(), kept->second.begin(), kept->second.end());
    }
    for (auto& [block, handles] : out) std::sort(handles.begin(), handles.end());
    return out;
}

void WriteBlocks(const SourceDrawing& source, WriteContext& c, const BlockInserts& inserts) {
    for (const SourceBlock& block : source.blocks) {
        const std::uint64_t recordHandle = block.begin.owner();
        const SourceRecord* record = BlockRecordOf(source, recordHandle);
        if (record == nullptr) continue;  // a block without its record is not written
        BlockHeaderRecord b;
        b.entry = EntryOf(*record, c);
        const std::string name(block.begin.text(2));
        const long long flags = block.begin.integer(70);
        b.entry.name = StoredBlockName(name, (flags & 1) != 0, recordHandle == c.paperSpace);
        b.entry.referenced = true;  // as AutoCAD marks every block record
        b.anonymous = (flags & 1) != 0;
        b.hasAttributes = (flags & 2) != 0;
        b.isXref = (flags & 4) != 0;
        b.isOverlaid = (flags & 8) != 0;
        b.base = block.begin.point(10);
        b.xrefPath = std::string(block.begin.text(1));
        b.description = std::string(block.begin.text(4));
        b.units = static_cast<std::int16_t>(record->integer(70));
        b.explodable = record->integer(280, 1) != 0;
        b.scaling = static_cast<std::uint8_t>(record->integer(281));
        b.layout = record->handle(340);
        b.preview = BinaryOf(*record, 310);
        const auto referring = inserts.find(recordHandle);
        if (referring != inserts.end()) b.inserts = referring->second;

        BlockBeginRecord begin;
        begin.common = PartCommonOf(block.begin, recordHandle, c);
        begin.name = name;
        b.blockEntity = begin.common.handle;
        c.add(begin.common.handle, EncodeBlockBegin(begin, c.options));
        const EntityCommon end = PartCommonOf(block.end, recordHandle, c);
        b.endBlock = end.handle;
        c.add(end.handle, EncodeCommonOnly(end, kEndblk, c.options));

        // The model and paper space entities of the ENTITIES section come first; a block's own
        // entities (those of every space included) follow.
        b.entities = c.owned[recordHandle];
        for (std::uint64_t h : WriteEntities(block.entities, recordHandle, c)) b.entities.push_back(h);
        AddKeptEntities(recordHandle, b.entities, c);
        c.add(b.entry.common.handle, EncodeBlockHeader(b, c.options));
    }
}

namespace {

PlotSettings PlotSettingsOf(const SourceRecord& r) {
    const SourceRecord p = r.subclass("AcDbPlotSettings");
    PlotSettings s;
    s.pageSetupName = std::string(p.text(1));
    s.printerName = std::string(p.text(2));
    s.paperSize = std::string(p.text(4));
    s.plotViewName = std::string(p.text(6));
    for (int i = 0; i < 4; ++i) s.margins[i] = p.real(40 + i);
    s.paperWidth = p.real(44);
    s.paperHeight = p.real(45);
    s.origin = {p.real(46), p.real(47)};
    s.windowMin = {p.real(48), p.real(49)};
    s.windowMax = {p.real(140), p.real(141)};
    s.realWorldUnits = p.real(142, 1.0);
    s.drawingUnits = p.real(143, 1.0);
    s.flags = static_cast<std::int16_t>(p.integer(70));
    s.paperUnits = static_cast<std::int16_t>(p.integer(72));
    s.rotation = static_cast<std::int16_t>(p.integer(73));
    s.plotType = static_cast<std::int16_t>(p.integer(74));
    s.styleSheet = std::string(p.text(7));
    s.scaleType = static_cast<std::int16_t>(p.integer(75));
    s.shadeStored = true;
    s.shadeMode = static_cast<std::int16_t>(p.integer(76));
    s.shadeResolution = static_cast<std::int16_t>(p.integer(77, 2));
    s.shadeDpi = static_cast<std::int16_t>(p.integer(78, 300));
    s.scaleFactor = p.real(147, 1.0);
    s.imageOrigin = {p.real(148), p.real(149)};
    s.plotView = p.handle(333);
    return s;
}

LayoutRecord LayoutOf(const SourceRecord& r, WriteContext& c) {
    LayoutRecord l;
    l.common = ObjectCommonOf(r, c);
    l.plot = PlotSettingsOf(r);
    const SourceRecord a = r.subclass("AcDbLayout");
    l.name = std::string(a.text(1));
    l.flags = static_cast<std::int16_t>(a.integer(70));
    l.tabOrder = static_cast<std::int16_t>(a.integer(71));
    l.limmin = a.point2(10);
    l.limmax = a.point2(11);
    l.insbase = a.point(12);
    l.extmin = a.point(14);
    l.extmax = a.point(15);
    l.elevation = a.real(146);
    l.ucsOrigin = a.point(13);
    l.ucsX = a.point(16, {1, 0, 0});
    l.ucsY = a.point(17, {0, 1, 0});
    l.orthoView = static_cast<std::int16_t>(a.integer(76));
    l.block = a.handle(330);
    l.viewport = a.handle(331);
    l.namedUcs = a.handle(345);
    l.baseUcs = a.handle(346);
    // Its viewports, which the database keeps whole.
    const auto viewports = c.keptListed.find(l.common.handle);
    if (viewports != c.keptListed.end()) l.viewports = viewports->second;
    return l;
}

MLineStyleRecord MLineStyleOf(const SourceRecord& r, WriteContext& c) {
    MLineStyleRecord s;
    s.common = ObjectCommonOf(r, c);
    s.name = std::string(r.text(2));
    s.description = std::string(r.text(3));
    s.flags = static_cast<std::int16_t>(r.integer(70));
    s.fill = CmcColor(r.integer(62, 256), r, -1);
    s.startAngle = r.angle(51, 90 * kRadians);
    s.endAngle = r.angle(52, 90 * kRadians);
    bool first = true;  // the first 62 is the fill colour, the others the lines'
    for (const auto& [code, value] : r.tags) {
        double number = 0;
        if (code == 49 && dxf::ParseDouble(value, number)) {
            s.lines.push_back({number, {}, 0});
        } else if (code == 62 && !first && !s.lines.empty()) {
            long long index = 256;
            dxf::ParseInteger(value, index);
            SourceRecord one{r.type, {}};
            s.lines.back().color = CmcColor(index, one, -1);
        } else if (code == 62) {
            first = false;
        } else if (code == 6 && !s.lines.empty() && SameAsciiNoCase(value, "BYLAYER")) {
            // By layer, as AutoCAD stores it; what index another linetype takes is not known here.
            s.lines.back().linetypeIndex = kLinetypeIndexByLayer;
        }
    }
    return s;
}

XRecordRecord XRecordOf(const SourceRecord& r, WriteContext& c) {
    XRecordRecord x;
    x.common = ObjectCommonOf(r, c);
    const SourceRecord body = r.subclass("AcDbXrecord");
    std::size_t first = 0;
    if (!body.tags.empty() && body.tags.front().code() == 280) {
        long long cloning = 1;
        dxf::ParseInteger(body.tags.front().text(), cloning);
        x.cloning = static_cast<std::int16_t>(cloning);
        first = 1;
    }
    // The groups up to the extended data, which ends the record.
    for (std::size_t i = first; i < body.tags.size() && body.tags[i].code() != 1001; ++i) {
        x.groups.emplace_back(body.tags[i].code(), std::string(body.tags[i].text()));
    }
    return x;
}

GroupRecord GroupOf(const SourceRecord& r, WriteContext& c) {
    GroupRecord g;
    g.common = ObjectCommonOf(r, c);
    g.description = std::string(r.text(300));
    g.unnamed = static_cast<std::int16_t>(r.integer(70));
    g.selectable = static_cast<std::int16_t>(r.integer(71, 1));
    for (const auto& [code, value] : r.tags) {
        if (code == 340) g.entities.push_back(ParseHandle(value));
    }
    return g;
}

// The kinds numbered by the drawing's classes.
bool WriteClassObject(const SourceRecord& r, WriteContext& c) {
    const std::int32_t type = c.classNumber(r.type);
    if (type == 0) return false;
    if (r.type == "DICTIONARYVAR") {
        DictionaryVariableRecord v{ObjectCommonOf(r, c), static_cast<std::uint8_t>(r.integer(280)),
                                   std::string(r.text(1))};
        c.add(v.common.handle, EncodeDictionaryVariable(v, type, c.options));
    } else if (r.type == "SCALE") {
        ScaleRecord s{ObjectCommonOf(r, c), static_cast<std::int16_t>(r.integer(70)),
                      std::string(r.text(300)), r.real(140, 1.0), r.real(141, 1.0),
                      r.integer(290) != 0};
        c.add(s.common.handle, EncodeScale(s, type, c.options));
    } else if (r.type == "PLOTSETTINGS") {
        const ObjectCommon common = ObjectCommonOf(r, c);
        c.add(common.handle, EncodePlotSettings(common, PlotSettingsOf(r), type, c.options));
    } else {
        return false;
    }
    return true;
}

}  // namespace

void WriteObjects(const SourceDrawing& source, WriteContext& c,
                  std::vector<const SourceRecord*>& dictionaries) {
    for (const SourceRecord& r : source.objects) {
        if (r.type == "DICTIONARY" || r.type == "ACDBDICTIONARYWDFLT") {
            dictionaries.push_back(&r);
        } else if (r.type == "LAYOUT") {
            LayoutRecord layout = LayoutOf(r, c);
            c.add(layout.common.handle, EncodeLayout(layout, c.options));
        } else if (r.type == "MLINESTYLE") {
            MLineStyleRecord style = MLineStyleOf(r, c);
            c.add(style.common.handle, EncodeMLineStyle(style, c.options));
        } else if (r.type == "ACDBPLACEHOLDER") {
            const ObjectCommon common = ObjectCommonOf(r, c);
            c.add(common.handle, EncodePlaceHolder(common, c.options));
        } else if (r.type == "XRECORD") {
            const XRecordRecord x = XRecordOf(r, c);
            c.add(x.common.handle, EncodeXRecord(x, c.dwgCodePage, c.options));
        } else if (r.type == "GROUP") {
            const GroupRecord g = GroupOf(r, c);
            c.add(g.common.handle, EncodeGroup(g, c.options));
        } else {
            WriteClassObject(r, c);  // or not written: the report counts it
        }
    }
}

void WriteDictionaries(const std::vector<const SourceRecord*>& dictionaries, WriteContext& c,
                       std::int32_t dictionaryWithDefault) {
    // Dictionaries name one another: an entry is kept when its object is written or is one of
    // the dictionaries written here, in whatever order they come.
    std::unordered_set<std::uint64_t> listed;
    for (const SourceRecord* r : dictionaries) listed.insert(r->handle(5));
    for (const SourceRecord* r : dictionaries) {
        DictionaryRecord d;
        d.common = ObjectCommonOf(*r, c);
        d.hardOwner = static_cast<std::uint8_t>(r->integer(280));
        d.cloning = static_cast<std::int16_t>(r->integer(281, 1));
        std::string_view name;
        for (const auto& [code, value] : r->tags) {
            if (code == 3) {
                name = value;
            } else if ((code == 350 || code == 360) && !name.empty()) {
                const std::uint64_t entry = ParseHandle(value);
                // An entry whose object is not written would name nothing.
                if (c.written(entry) || listed.count(entry) != 0) d.entries.emplace_back(std::string(name), entry);
                name = {};
            }
        }
        d.withDefault = r->type == "ACDBDICTIONARYWDFLT";
        d.defaultEntry = r->handle(340);
        const std::int32_t type = d.withDefault ? dictionaryWithDefault : kDictionary;
        c.add(d.common.handle, EncodeDictionary(d, type, c.options));
    }
}

}  // namespace dwg
