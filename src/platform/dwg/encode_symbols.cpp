#include "platform/dwg/encode_symbols.hpp"

#include <algorithm>

#include "platform/dwg/encode_header.hpp"
#include "platform/dwg/encode_tables.hpp"
#include "platform/dwg/entities.hpp"
#include "platform/dxf/angle_text.hpp"
#include "platform/dxf/codepage.hpp"
#include "platform/dxf/tagger.hpp"

namespace dwg {
namespace {

constexpr std::int32_t kDimStyleControl = 68;

void WriteStyle(BitWriter& d, const SymbolRecord& r) {
    d.B(r.vertical);
    d.B(r.shapeFile);
    d.BD(r.fixedHeight);
    d.BD(r.widthFactor);
    d.BD(r.oblique);
    d.RC(r.generation);
    d.BD(r.lastHeight);
    d.T(r.font);
    d.T(r.bigFont);
}

// The dashes keep their lengths; shapes and texts of complex linetypes are not modelled, so
// each dash is plain and the text area is empty.
void WriteLinetype(BitWriter& d, const SymbolRecord& r) {
    d.T(r.description);
    d.BD(r.patternLength);
    d.RC('A');
    d.RC(static_cast<unsigned>(r.dashes.size()));
    for (double dash : r.dashes) {
        d.BD(dash);
        d.BS(0);
        d.RD(0);
        d.RD(0);
        d.BD(1);
        d.BD(0);
        d.BS(0);
    }
    d.bytes(std::string(256, '\0'));
}

void WriteViewValues(BitWriter& d, const SymbolRecord& r) {
    d.BD(r.height);
    d.BD(r.width);
    d.RD2(r.center);
    d.BD3(r.target);
    d.BD3(r.direction);
    d.BD(r.twist);
    d.BD(r.lensLength);
    d.BD(r.frontClip);
    d.BD(r.backClip);
    d.B(r.viewMode & 1);
    d.B(r.viewMode & 2);
    d.B(r.viewMode & 4);
    d.B(!(r.viewMode & 16));
    d.RC(r.renderMode);
}

void WriteViewport(BitWriter& d, const SymbolRecord& r) {
    WriteViewValues(d, r);
    d.RD2(r.lowerLeft);
    d.RD2(r.upperRight);
    d.B(r.ucsFollow);
    d.BS(r.circleZoom);
    d.B(r.fastZoom);
    d.bits(r.ucsIcon, 2);
    d.B(r.gridOn);
    d.RD2(r.gridSpacing);
    d.B(r.snapOn);
    d.B(r.snapStyle);
    d.BS(r.snapIsoPair);
    d.BD(r.snapRotation);
    d.RD2(r.snapBase);
    d.RD2(r.snapSpacing);
    d.B(false);
    d.B(r.hasUcs);
    d.BD3(r.origin);
    d.BD3(r.xAxis);
    d.BD3(r.yAxis);
    d.BD(r.elevation);
    d.BS(r.orthoType);
}

void WritePlotSettings(BitWriter& d, const PlotSettings& p) {
    d.T(p.pageSetupName);
    d.T(p.printerName);
    d.BS(p.flags);
    for (double m : p.margins) d.BD(m);
    d.BD(p.paperWidth);
    d.BD(p.paperHeight);
    d.T(p.paperSize);
    d.BD2(p.origin);
    d.BS(p.paperUnits);
    d.BS(p.rotation);
    d.BS(p.plotType);
    d.BD2(p.windowMin);
    d.BD2(p.windowMax);
    if (d.version() < Version::kR2004) d.T(p.plotViewName);
    d.BD(p.realWorldUnits);
    d.BD(p.drawingUnits);
    d.T(p.styleSheet);
    d.BS(p.scaleType);
    d.BD(p.scaleFactor);
    d.BD2(p.imageOrigin);
    if (d.version() >= Version::kR2004) {
        d.BS(p.shadeMode);
        d.BS(p.shadeResolution);
        d.BS(p.shadeDpi);
    }
}

}  // namespace

std::vector<std::uint8_t> EncodeControl(const ControlRecord& control,
                                        const EncodeOptions& options) {
    ObjectWriter o = BeginObject(control.type, control.common.handle, options.version,
                                 options.codePage);
    WriteObjectCommon(o, control.common);
    o.data.BL(static_cast<std::int32_t>(control.entries.size()));
    // The dimension style table refers to its styles once more, by hard pointers after the
    // entries, as AutoCAD writes it: their count, then them.
    const std::size_t styles = std::min<std::size_t>(control.styles.size(), 255);
    if (control.type == kDimStyleControl) o.data.RC(static_cast<std::uint8_t>(styles));
    for (std::uint64_t entry : control.entries) WriteHandle(o, kSoftOwner, entry);
    for (std::uint64_t apart : control.apart) WriteHandle(o, kHardOwner, apart);
    for (std::size_t i = 0; control.type == kDimStyleControl && i < styles; ++i) {
        WriteHandle(o, kHardPointer, control.styles[i]);
    }
    return FinishObject(o);
}

std::vector<std::uint8_t> EncodeSymbolRecord(const SymbolRecord& r, std::int32_t type,
                                             const EncodeOptions& options) {
    ObjectWriter o = BeginObject(type, r.entry.common.handle, options.version, options.codePage);
    WriteTableEntry(o, r.entry);
    switch (type) {
        case kStyle: WriteStyle(o.data, r); break;
        case kLinetype: WriteLinetype(o.data, r); break;
        case kViewport: WriteViewport(o.data, r); break;
        case kAppId: o.data.RC(0); break;
        default: break;
    }
    WriteHandle(o, kHardPointer, r.entry.xrefBlock);
    if (type == kLinetype) {
        for (std::size_t i = 0; i < r.dashes.size(); ++i) WriteHandle(o, kHardPointer, 0);
    }
    if (type == kViewport) {
        WriteHandle(o, kHardPointer, 0);  // named UCS
        WriteHandle(o, kHardPointer, 0);  // base UCS
    }
    if (type == kDimensionStyle) {
        WriteDimensionVariables(o.data, o.handles, r.dim);
        o.data.B(false);
    }
    return FinishObject(o);
}

std::vector<std::uint8_t> EncodeLayout(const LayoutRecord& l, const EncodeOptions& options) {
    ObjectWriter o = BeginObject(kLayout, l.common.handle, options.version, options.codePage);
    WriteObjectCommon(o, l.common);
    WritePlotSettings(o.data, l.plot);
    BitWriter& d = o.data;
    d.T(l.name);
    d.BS(l.tabOrder);
    d.BS(l.flags);
    d.BD3(l.ucsOrigin);
    d.RD2(l.limmin);
    d.RD2(l.limmax);
    d.BD3(l.insbase);
    d.BD3(l.ucsX);
    d.BD3(l.ucsY);
    d.BD(l.elevation);
    d.BS(l.orthoView);
    d.BD3(l.extmin);
    d.BD3(l.extmax);
    if (options.version >= Version::kR2004) {
        d.BL(static_cast<std::int32_t>(l.viewports.size()));
        WriteHandle(o, kHardPointer, l.plot.plotView);
    }
    WriteHandle(o, kSoftPointer, l.block);
    WriteHandle(o, kSoftPointer, l.viewport);
    WriteHandle(o, kHardPointer, l.baseUcs);
    WriteHandle(o, kHardPointer, l.namedUcs);
    for (std::uint64_t viewport : l.viewports) WriteHandle(o, kSoftPointer, viewport);
    return FinishObject(o);
}

std::vector<std::uint8_t> EncodeMLineStyle(const MLineStyleRecord& s,
                                           const EncodeOptions& options) {
    ObjectWriter o = BeginObject(kMLineStyle, s.common.handle, options.version, options.codePage);
    WriteObjectCommon(o, s.common);
    BitWriter& d = o.data;
    d.T(s.name);
    d.T(s.description);
    d.BS(s.flags);
    d.CMC(s.fill);
    d.BD(s.startAngle);
    d.BD(s.endAngle);
    d.RC(static_cast<unsigned>(s.lines.size()));
    for (const MLineStyleLine& line : s.lines) {
        d.BD(line.offset);
        d.CMC(line.color);
        d.BS(line.linetypeIndex);
    }
    return FinishObject(o);
}

std::vector<std::uint8_t> EncodePlotSettings(const ObjectCommon& common, const PlotSettings& plot,
                                             std::int32_t type, const EncodeOptions& options) {
    ObjectWriter o = BeginObject(type, common.handle, options.version, options.codePage);
    WriteObjectCommon(o, common);
    WritePlotSettings(o.data, plot);
    if (options.version >= Version::kR2004) WriteHandle(o, kHardPointer, plot.plotView);
    return FinishObject(o);
}

namespace {

double Number(const std::string& text) {
    double value = 0;
    dxf::ParseDouble(text, value);
    return value;
}

long long Integer(const std::string& text) {
    long long value = 0;
    dxf::ParseInteger(text, value);
    return value;
}

void WriteLongLong(BitWriter& d, std::uint64_t value) {
    d.RL(static_cast<std::uint32_t>(value));
    d.RL(static_cast<std::uint32_t>(value >> 32));
}

std::string Unhex(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
        out.push_back(static_cast<char>(std::stoi(text.substr(i, 2), nullptr, 16)));
    }
    return out;
}

// One group from the list at i; the index past it (a point takes up to three).
std::size_t WriteDataGroup(BitWriter& d, const std::vector<std::pair<int, std::string>>& groups,
                           std::size_t i, int dwgCodePage) {
    const auto& [code, value] = groups[i];
    d.RS(static_cast<unsigned>(code));
    switch (DataKindOf(code)) {
        case DataKind::kPoint: {
            double xyz[3] = {Number(value), 0, 0};
            std::size_t next = i + 1;
            for (int k = 1; k < 3 && next < groups.size() && groups[next].first == code + 10 * k; ++k) {
                xyz[k] = Number(groups[next++].second);
            }
            for (double v : xyz) d.RD(v);
            return next;
        }
        case DataKind::kReal: {
            const double number = Number(value);
            d.RD(code >= 50 && code <= 58 ? dxf::Radians(value) : number);
            break;
        }
        case DataKind::kShort: d.RS(static_cast<unsigned>(Integer(value)) & 0xFFFF); break;
        case DataKind::kLong: d.RL(static_cast<std::uint32_t>(Integer(value))); break;
        case DataKind::kLongLong: WriteLongLong(d, static_cast<std::uint64_t>(Integer(value))); break;
        case DataKind::kChar: d.RC(static_cast<unsigned>(Integer(value)) & 0xFF); break;
        case DataKind::kBinary: {
            const std::string bytes = Unhex(value);
            d.RC(static_cast<unsigned>(bytes.size()));
            d.bytes(bytes);
            break;
        }
        case DataKind::kHandle: WriteLongLong(d, std::stoull(value.empty() ? "0" : value, nullptr, 16)); break;
        case DataKind::kString: {
            std::string raw;
            dxf::EncodeText(value, d.codePage(), raw);
            d.RS(static_cast<unsigned>(raw.size()));
            d.RC(static_cast<unsigned>(dwgCodePage));
            d.bytes(raw);
            break;
        }
    }
    return i + 1;
}

}  // namespace

std::vector<std::uint8_t> EncodeXRecord(const XRecordRecord& x, int dwgCodePage,
                                        const EncodeOptions& options) {
    ObjectWriter o = BeginObject(kXRecord, x.common.handle, options.version, options.codePage);
    WriteObjectCommon(o, x.common);
    BitWriter groups(options.version, options.codePage);
    for (std::size_t i = 0; i < x.groups.size();) i = WriteDataGroup(groups, x.groups, i, dwgCodePage);
    o.data.BL(static_cast<std::int32_t>(groups.buffer().size()));
    o.data.bytes(std::string_view(reinterpret_cast<const char*>(groups.buffer().data()),
                                  groups.buffer().size()));
    o.data.BS(x.cloning);
    for (std::uint64_t reference : x.references) WriteHandle(o, kSoftPointer, reference);
    return FinishObject(o);
}

std::vector<std::uint8_t> EncodePlaceHolder(const ObjectCommon& common,
                                            const EncodeOptions& options) {
    ObjectWriter o = BeginObject(kPlaceHolder, common.handle, options.version, options.codePage);
    WriteObjectCommon(o, common);
    return FinishObject(o);
}

}  // namespace dwg
