#include "platform/dwg/symbols.hpp"

#include "platform/dwg/entities.hpp"

namespace dwg {
namespace {

void ReadStyle(ObjectStreams& o, SymbolRecord& out) {
    BitReader& d = o.data;
    out.vertical = d.B();
    out.shapeFile = d.B();
    out.fixedHeight = d.BD();
    out.widthFactor = d.BD();
    out.oblique = d.BD();
    out.generation = d.RC();
    out.lastHeight = d.BD();
    out.font = o.text().T();
    out.bigFont = o.text().T();
}

void ReadLinetype(ObjectStreams& o, SymbolRecord& out) {
    BitReader& d = o.data;
    out.description = o.text().T();
    out.patternLength = d.BD();
    d.RC();  // alignment, always 'A'
    const int count = d.RC();
    bool texts = false;
    for (int i = 0; i < count && !d.failed(); ++i) {
        out.dashes.push_back(d.BD());
        d.BS();  // shape number or text index
        d.RD();  // offsets
        d.RD();
        d.BD();  // scale
        d.BD();  // rotation
        texts = texts || (d.BS() & 2);
    }
    // The texts of complex linetypes: a fixed area before 2007, and only when used after.
    if (d.version() < Version::kR2007) {
        d.bytes(256);
    } else if (texts) {
        d.bytes(512);
    }
}

// The view that VIEW and VPORT records share, from the height to the render mode.
void ReadViewValues(BitReader& d, SymbolRecord& out) {
    out.height = d.BD();
    out.width = d.BD();
    out.center = d.RD2();
    out.target = d.BD3();
    out.direction = d.BD3();
    out.twist = d.BD();
    out.lensLength = d.BD();
    out.frontClip = d.BD();
    out.backClip = d.BD();
    // Perspective, front clip, back clip, then front clip at the eye, which DXF's 16 denies.
    const bool perspective = d.B(), front = d.B(), back = d.B(), atEye = d.B();
    out.viewMode = static_cast<std::uint8_t>((perspective ? 1 : 0) | (front ? 2 : 0) |
                                             (back ? 4 : 0) | (atEye ? 0 : 16));
    if (d.version() >= Version::kR2000) out.renderMode = d.RC();
    if (d.version() >= Version::kR2007) {
        d.B();   // default lights
        d.RC();  // default lighting type
        d.BD();  // brightness
        d.BD();  // contrast
        d.CMC();  // ambient colour
    }
}

void ReadUcsValues(BitReader& d, SymbolRecord& out) {
    out.hasUcs = true;
    out.origin = d.BD3();
    out.xAxis = d.BD3();
    out.yAxis = d.BD3();
    out.elevation = d.BD();
    out.orthoType = d.BS();
}

void ReadView(ObjectStreams& o, SymbolRecord& out) {
    BitReader& d = o.data;
    ReadViewValues(d, out);
    out.paperSpace = d.B();
    if (d.version() >= Version::kR2000 && d.B()) ReadUcsValues(d, out);
    if (d.version() >= Version::kR2007) d.B();  // camera plottable
}

void ReadViewport(ObjectStreams& o, SymbolRecord& out) {
    BitReader& d = o.data;
    ReadViewValues(d, out);
    out.lowerLeft = d.RD2();
    out.upperRight = d.RD2();
    out.ucsFollow = d.B();
    out.circleZoom = d.BS();
    out.fastZoom = d.B();
    out.ucsIcon = static_cast<std::uint8_t>(d.bits(2));
    out.gridOn = d.B();
    out.gridSpacing = d.RD2();
    out.snapOn = d.B();
    out.snapStyle = d.B();
    out.snapIsoPair = d.BS();
    out.snapRotation = d.BD();
    out.snapBase = d.RD2();
    out.snapSpacing = d.RD2();
    if (d.version() >= Version::kR2000) {
        d.B();
        out.hasUcs = d.B();  // a UCS of its own
        const bool own = out.hasUcs;
        ReadUcsValues(d, out);
        out.hasUcs = own;
    }
    if (d.version() >= Version::kR2007) {
        d.BS();  // grid flags
        d.BS();  // grid major lines
    }
}

void ReadUcs(ObjectStreams& o, SymbolRecord& out) {
    BitReader& d = o.data;
    out.hasUcs = true;
    out.origin = d.BD3();
    out.xAxis = d.BD3();
    out.yAxis = d.BD3();
    if (d.version() < Version::kR2000) return;
    out.elevation = d.BD();
    out.orthoType = d.BS();
    const int views = static_cast<std::uint16_t>(d.BS());
    for (int i = 0; i < views && !d.failed(); ++i) {
        d.BS();
        d.BD3();
    }
}

// DXF 70 of a table record: 16 xref dependent, 64 referenced.
int EntryFlags(const TableEntry& e, int own = 0) {
    return own | (e.xrefDependent ? 16 : 0) | (e.referenced ? 64 : 0);
}

void RecordHead(DxfText& out, const std::string& type, const TableEntry& e, const char* subclass) {
    WriteHead(out, type, e.common, e.common.owner, type == "DIMSTYLE" ? 105 : 5);
    out.tag(100, "AcDbSymbolTableRecord");
    out.tag(100, subclass);
    out.tag(2, e.name);
}

void WriteDimensionVariables(DxfText& out, const DimensionVariables& m) {
    out.tag(3, m.post);
    out.tag(4, m.apost);
    const std::pair<int, double> reals[] = {
        {40, m.scale}, {41, m.asz}, {42, m.exo}, {43, m.dli}, {44, m.exe}, {45, m.rnd},
        {46, m.dle}, {47, m.tp}, {48, m.tm}, {140, m.txt}, {141, m.cen}, {142, m.tsz},
        {143, m.altf}, {144, m.lfac}, {145, m.tvp}, {146, m.tfac}, {147, m.gap}, {148, m.altrnd}};
    for (const auto& [code, value] : reals) out.tag(code, value);
    const std::pair<int, int> shorts[] = {
        {71, m.tol}, {72, m.lim}, {73, m.tih}, {74, m.toh}, {75, m.se1}, {76, m.se2},
        {77, m.tad}, {78, m.zin}, {79, m.azin}, {170, m.alt}, {171, m.altd}, {172, m.tofl},
        {173, m.sah}, {174, m.tix}, {175, m.soxd}, {176, m.clrd.index}, {177, m.clre.index},
        {178, m.clrt.index}, {179, m.adec}, {271, m.dec}, {272, m.tdec}, {273, m.altu},
        {274, m.alttd}, {275, m.aunit}, {276, m.frac}, {277, m.lunit}, {278, m.dsep},
        {279, m.tmove}, {280, m.just}, {281, m.sd1}, {282, m.sd2}, {283, m.tolj},
        {284, m.tzin}, {285, m.altz}, {286, m.alttz}, {288, m.upt}, {289, m.atfit},
        {371, m.lwd}, {372, m.lwe}};
    for (const auto& [code, value] : shorts) out.integer(code, value);
    const std::pair<int, std::uint64_t> handles[] = {
        {340, m.txsty}, {341, m.ldrblk}, {342, m.blkHandle}, {343, m.blk1Handle},
        {344, m.blk2Handle}};
    for (const auto& [code, value] : handles) {
        if (value != 0) out.handle(code, value);
    }
}

void WriteViewport(DxfText& out, const SymbolRecord& r) {
    out.point(10, r.lowerLeft);
    out.point(11, r.upperRight);
    out.point(12, r.center);
    out.point(13, r.snapBase);
    out.point(14, r.snapSpacing);
    out.point(15, r.gridSpacing);
    out.point(16, r.direction);
    out.point(17, r.target);
    out.tag(40, r.height);
    out.tag(41, r.height != 0 ? r.width / r.height : 1.0);  // DXF gives the aspect ratio
    out.tag(42, r.lensLength);
    out.tag(43, r.frontClip);
    out.tag(44, r.backClip);
    out.angle(50, r.snapRotation);
    out.angle(51, r.twist);
    out.integer(71, r.viewMode);
    out.integer(72, r.circleZoom);
    out.integer(73, r.fastZoom ? 1 : 0);
    out.integer(74, r.ucsIcon);
    out.integer(75, r.snapOn ? 1 : 0);
    out.integer(76, r.gridOn ? 1 : 0);
    out.integer(77, r.snapStyle ? 1 : 0);
    out.integer(78, r.snapIsoPair);
    out.integer(281, r.renderMode);
    out.integer(65, r.hasUcs ? 1 : 0);
    out.point(110, r.origin);
    out.point(111, r.xAxis);
    out.point(112, r.yAxis);
    out.integer(79, r.orthoType);
    out.tag(146, r.elevation);
}

void WriteView(DxfText& out, const SymbolRecord& r) {
    out.tag(40, r.height);
    out.point(10, r.center);
    out.tag(41, r.width);
    out.point(11, r.direction);
    out.point(12, r.target);
    out.tag(42, r.lensLength);
    out.tag(43, r.frontClip);
    out.tag(44, r.backClip);
    out.angle(50, r.twist);
    out.integer(71, r.viewMode);
    out.integer(281, r.renderMode);
    out.integer(72, r.hasUcs ? 1 : 0);
    if (!r.hasUcs) return;
    out.point(110, r.origin);
    out.point(111, r.xAxis);
    out.point(112, r.yAxis);
    out.integer(79, r.orthoType);
    out.tag(146, r.elevation);
}

}  // namespace

bool ReadSymbolRecord(ObjectStreams& o, SymbolRecord& out) {
    ReadTableEntry(o, out.entry);
    if (o.type == kStyle) ReadStyle(o, out);
    if (o.type == kLinetype) ReadLinetype(o, out);
    if (o.type == kView) ReadView(o, out);
    if (o.type == kViewport) ReadViewport(o, out);
    if (o.type == kUcs) ReadUcs(o, out);
    ReadTableEntryHandles(o, out.entry);
    if (o.type == kDimensionStyle) {
        ReadDimensionVariables(o.data, o.text(), o.handles, out.dim);
        o.data.B();
    }
    return !o.data.failed() && !o.strings.failed() && !o.handles.failed();
}

void WriteSymbolRecord(DxfText& out, const std::string& table, const SymbolRecord& r) {
    static const std::pair<const char*, const char*> kSubclasses[] = {
        {"VPORT", "AcDbViewportTableRecord"}, {"LTYPE", "AcDbLinetypeTableRecord"},
        {"STYLE", "AcDbTextStyleTableRecord"}, {"VIEW", "AcDbViewTableRecord"},
        {"UCS", "AcDbUCSTableRecord"}, {"APPID", "AcDbRegAppTableRecord"},
        {"DIMSTYLE", "AcDbDimStyleTableRecord"}};
    const char* subclass = "AcDbSymbolTableRecord";
    for (const auto& [name, cls] : kSubclasses) {
        if (table == name) subclass = cls;
    }
    RecordHead(out, table, r.entry, subclass);
    if (table == "STYLE") {
        out.integer(70, EntryFlags(r.entry, (r.shapeFile ? 1 : 0) | (r.vertical ? 4 : 0)));
        out.tag(40, r.fixedHeight);
        out.tag(41, r.widthFactor);
        out.angle(50, r.oblique);
        out.integer(71, r.generation);
        out.tag(42, r.lastHeight);
        out.tag(3, r.font);
        out.tag(4, r.bigFont);
        return;
    }
    out.integer(70, EntryFlags(r.entry));
    if (table == "DIMSTYLE") WriteDimensionVariables(out, r.dim);
    if (table == "VPORT") WriteViewport(out, r);
    if (table == "VIEW") WriteView(out, r);
    if (table == "UCS") {
        out.point(10, r.origin);
        out.point(11, r.xAxis);
        out.point(12, r.yAxis);
        out.integer(79, r.orthoType);
        out.tag(146, r.elevation);
    }
    if (table == "LTYPE") {
        out.tag(3, r.description);
        out.integer(72, 65);
        out.integer(73, static_cast<long long>(r.dashes.size()));
        out.tag(40, r.patternLength);
        for (double dash : r.dashes) {
            out.tag(49, dash);
            out.integer(74, 0);
        }
    }
}

void WriteLayer(DxfText& out, const LayerRecord& r, const NameIndex& names) {
    RecordHead(out, "LAYER", r.entry, "AcDbLayerTableRecord");
    out.integer(70, EntryFlags(r.entry, r.flags));
    out.integer(62, r.off ? -r.color.index : r.color.index);
    if ((r.color.rgb >> 24) == 0xC2) out.integer(420, r.color.rgb & 0xFFFFFF);
    if (r.color.flags & 3) out.tag(430, ColorNameText(r.color));
    out.tag(6, names.name(names.linetypes, r.linetype));
    if (!r.plotted) out.integer(290, 0);
    out.integer(370, r.lineweight);
    if (r.plotStyle != 0) out.handle(390, r.plotStyle);
}

void WriteBlockRecord(DxfText& out, const BlockHeaderRecord& r, const std::string& name) {
    TableEntry entry = r.entry;
    entry.name = name;
    RecordHead(out, "BLOCK_RECORD", entry, "AcDbBlockTableRecord");
    if (r.layout != 0) out.handle(340, r.layout);
    if (r.units != 0) out.integer(70, r.units);
    out.integer(280, r.explodable ? 1 : 0);
    out.integer(281, r.scaling);
    // The preview image, in lines of 127 bytes as hexadecimal digits.
    const std::string_view preview = r.preview;
    for (std::size_t at = 0; at < preview.size(); at += 127) out.tag(310, HexDigits(preview.substr(at, 127)));
}

void WriteBlockBegin(DxfText& out, const BlockHeaderRecord& r, const std::string& name,
                     const BlockBeginRecord* begin, std::uint64_t record, const NameIndex& names) {
    out.tag(0, "BLOCK");
    out.handle(5, r.blockEntity);
    out.handle(330, record);
    out.tag(100, "AcDbEntity");
    if (record == names.paperSpace) out.integer(67, 1);
    out.tag(8, begin ? names.name(names.layers, begin->common.layer) : "0");
    out.tag(100, "AcDbBlockBegin");
    out.tag(2, name);
    const int flags = (r.anonymous ? 1 : 0) | (r.hasAttributes ? 2 : 0) | (r.isXref ? 4 : 0) |
                      (r.isOverlaid ? 8 : 0) | (r.entry.xrefDependent ? 16 : 0);
    out.integer(70, flags);
    out.point(10, r.base);
    out.tag(3, name);
    out.tag(1, r.xrefPath);
    if (!r.description.empty()) out.tag(4, r.description);
}

void WriteBlockEnd(DxfText& out, const EntityCommon* end, std::uint64_t record,
                   const NameIndex& names) {
    out.tag(0, "ENDBLK");
    if (end != nullptr) out.handle(5, end->handle);
    out.handle(330, record);
    out.tag(100, "AcDbEntity");
    if (record == names.paperSpace) out.integer(67, 1);
    out.tag(8, end ? names.name(names.layers, end->layer) : "0");
    out.tag(100, "AcDbBlockEnd");
}

}  // namespace dwg
