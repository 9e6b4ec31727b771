#include "platform/dwg/layout.hpp"

namespace dwg {
namespace {

void ReadPlotSettings(ObjectStreams& o, PlotSettings& p) {
    BitReader& d = o.data;
    BitReader& t = o.text();
    const Version v = d.version();
    p.pageSetupName = t.T();
    p.printerName = t.T();
    p.flags = d.BS();
    for (double& m : p.margins) m = d.BD();
    p.paperWidth = d.BD();
    p.paperHeight = d.BD();
    p.paperSize = t.T();
    p.origin = d.BD2();
    p.paperUnits = d.BS();
    p.rotation = d.BS();
    p.plotType = d.BS();
    p.windowMin = d.BD2();
    p.windowMax = d.BD2();
    if (v < Version::kR2004) p.plotViewName = t.T();
    p.realWorldUnits = d.BD();
    p.drawingUnits = d.BD();
    p.styleSheet = t.T();
    p.scaleType = d.BS();
    p.scaleFactor = d.BD();
    p.imageOrigin = d.BD2();
    if (v >= Version::kR2004) {
        p.shadeStored = true;
        p.shadeMode = d.BS();
        p.shadeResolution = d.BS();
        p.shadeDpi = d.BS();
    }
}

}  // namespace

bool ReadLayout(ObjectStreams& o, LayoutRecord& out) {
    ReadObjectCommon(o, out.common);
    ReadPlotSettings(o, out.plot);
    BitReader& d = o.data;
    const Version v = d.version();
    out.name = o.text().T();
    out.tabOrder = d.BS();
    out.flags = d.BS();
    out.ucsOrigin = d.BD3();
    out.limmin = d.RD2();
    out.limmax = d.RD2();
    out.insbase = d.BD3();
    out.ucsX = d.BD3();
    out.ucsY = d.BD3();
    out.elevation = d.BD();
    out.orthoView = d.BS();
    out.extmin = d.BD3();
    out.extmax = d.BD3();
    const std::int32_t viewports = v >= Version::kR2004 ? d.BL() : 0;
    if (viewports < 0 || static_cast<std::size_t>(viewports) > o.size) return false;
    if (v >= Version::kR2004) out.plot.plotView = ReadHandle(o);
    if (v >= Version::kR2007) out.visualStyle = ReadHandle(o);
    out.block = ReadHandle(o);
    out.viewport = ReadHandle(o);
    out.baseUcs = ReadHandle(o);
    out.namedUcs = ReadHandle(o);
    for (std::int32_t i = 0; i < viewports && !o.handles.failed(); ++i) {
        out.viewports.push_back(ReadHandle(o));
    }
    return !d.failed() && !o.handles.failed() && !o.strings.failed();
}

}  // namespace dwg
