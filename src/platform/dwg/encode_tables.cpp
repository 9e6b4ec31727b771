#include "platform/dwg/encode_tables.hpp"

#include "platform/dwg/entities.hpp"

namespace dwg {

void WriteTableEntry(ObjectWriter& o, const TableEntry& entry) {
    WriteObjectCommon(o, entry.common);
    o.data.T(entry.name);
    o.data.B(entry.referenced);
    o.data.BS(entry.xrefIndex);
    o.data.B(entry.xrefDependent);
}

std::uint8_t LineweightIndex(int lineweight) {
    switch (lineweight) {
        case -1: return 29;
        case -2: return 30;
        case -3: return 31;
        default: break;
    }
    std::uint8_t index = 0;
    for (std::uint8_t i = 0; i < 24; ++i) {
        if (LineweightFromIndex(i) <= lineweight) index = i;
    }
    return index;
}

namespace {

// From 2000 one short holds the states and the lineweight index.
unsigned LayerStates(const LayerRecord& layer) {
    unsigned bits = static_cast<unsigned>(layer.flags) & (1 | 4 | 8);
    if (layer.off) bits |= 2;
    if (layer.plotted) bits |= 16;
    return bits | (static_cast<unsigned>(LineweightIndex(layer.lineweight)) << 5);
}

}  // namespace

// Before 2004 an off layer is also stored with a negative colour number, as readers before 2000
// expect; from 2004 the colour value holds the index and the states say the layer is off.
std::vector<std::uint8_t> EncodeLayer(const LayerRecord& layer, const EncodeOptions& options) {
    ObjectWriter o = BeginObject(kLayer, layer.entry.common.handle, options.version,
                                 options.codePage);
    WriteTableEntry(o, layer.entry);
    o.data.BS(static_cast<int>(LayerStates(layer)));
    Color color = layer.color;
    if (layer.off && color.index > 0 && options.version < Version::kR2004) color.index = static_cast<std::int16_t>(-color.index);
    o.data.CMC(color);
    WriteHandle(o, kHardPointer, layer.entry.xrefBlock);
    WriteHandle(o, kHardPointer, layer.plotStyle);
    WriteHandle(o, kHardPointer, layer.linetype);
    return FinishObject(o);
}

std::vector<std::uint8_t> EncodeDictionary(const DictionaryRecord& dictionary, std::int32_t type,
                                           const EncodeOptions& options) {
    ObjectWriter o = BeginObject(type, dictionary.common.handle, options.version,
                                 options.codePage);
    WriteObjectCommon(o, dictionary.common);
    BitWriter& d = o.data;
    d.BL(static_cast<std::int32_t>(dictionary.entries.size()));
    d.BS(dictionary.cloning);
    d.RC(dictionary.hardOwner);
    for (const auto& [name, handle] : dictionary.entries) {
        d.T(name);
        // Whatever the dictionary's flag says, AutoCAD refers to its entries as soft owner.
        WriteHandle(o, kSoftOwner, handle);
    }
    if (dictionary.withDefault) WriteHandle(o, kHardPointer, dictionary.defaultEntry);
    return FinishObject(o);
}

}  // namespace dwg
