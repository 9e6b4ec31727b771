#include "platform/dwg/tables.hpp"

namespace dwg {

void ReadTableEntry(ObjectStreams& o, TableEntry& out) {
    ReadObjectCommon(o, out.common);
    out.name = o.text().T();
    out.referenced = o.data.B();
    // From 2007 the index of the external reference is not stored.
    if (o.data.version() < Version::kR2007) out.xrefIndex = o.data.BS();
    out.xrefDependent = o.data.B();
}

void ReadTableEntryHandles(ObjectStreams& o, TableEntry& out) {
    out.xrefBlock = ReadHandle(o);
}

namespace {

// R13 and R14 give the layer's states as single bits.
void ReadLayerStatesR14(BitReader& d, LayerRecord& out) {
    if (d.B()) out.flags |= 1;
    out.off = !d.B();
    if (d.B()) out.flags |= 4;
    if (d.B()) out.flags |= 8;
}

// From 2000 one short holds the states and the lineweight index.
void ReadLayerStates(BitReader& d, LayerRecord& out) {
    const auto bits = static_cast<std::uint16_t>(d.BS());
    out.flags = static_cast<std::int16_t>(bits & (1 | 4 | 8));
    out.off = (bits & 2) != 0;
    out.plotted = (bits & 16) != 0;
    out.lineweight = LineweightFromIndex(static_cast<std::uint8_t>((bits & 0x03E0) >> 5));
}

}  // namespace

bool ReadLayer(ObjectStreams& o, LayerRecord& out) {
    ReadTableEntry(o, out.entry);
    BitReader& d = o.data;
    const Version v = d.version();
    if (v < Version::kR2000) {
        ReadLayerStatesR14(d, out);
    } else {
        ReadLayerStates(d, out);
    }
    out.color = d.CMC(o.text());
    // An off layer is also stored with a negative colour number.
    if (out.color.index < 0) {
        out.off = true;
        out.color.index = static_cast<std::int16_t>(-out.color.index);
    }
    ReadTableEntryHandles(o, out.entry);
    if (v >= Version::kR2000) out.plotStyle = ReadHandle(o);
    if (v >= Version::kR2007) out.material = ReadHandle(o);
    out.linetype = ReadHandle(o);
    if (v >= Version::kR2013) out.visualStyle = ReadHandle(o);
    return !d.failed() && !o.handles.failed() && !o.strings.failed();
}

}  // namespace dwg
