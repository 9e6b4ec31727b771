#include "platform/dwg/common.hpp"

#include <array>

namespace dwg {

std::string ColorNameText(const Color& color) {
    if ((color.flags & 2) == 0) return (color.flags & 1) ? color.name : std::string();
    return color.bookName + "$" + ((color.flags & 1) ? color.name : std::string());
}

void SetColorName(Color& color, std::string_view text) {
    const std::size_t dollar = text.find('$');
    if (dollar != std::string_view::npos) {
        color.bookName = std::string(text.substr(0, dollar));
        text.remove_prefix(dollar + 1);
        color.flags |= 2;
    }
    color.name = std::string(text);
    if (!color.name.empty()) color.flags |= 1;
}

std::string HexDigits(std::string_view bytes) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(bytes.size() * 2);
    for (unsigned char c : bytes) {
        out += kDigits[c >> 4];
        out += kDigits[c & 15];
    }
    return out;
}
namespace {

void ReadExtendedData(ObjectStreams& o, std::vector<ExtendedData>& out) {
    for (;;) {
        const auto size = static_cast<std::uint16_t>(o.data.BS());
        if (size == 0 || o.data.failed()) return;
        ExtendedData eed;
        eed.application = o.data.H().value;
        eed.bytes = o.data.bytes(size);
        out.push_back(std::move(eed));
    }
}

// R13 and R14 give the size of the values here, after the extended data and preview.
void ReadLateDataSize(ObjectStreams& o) {
    if (o.data.version() < Version::kR2000) SeekHandles(o, o.data.RL());
}

void ReadOwnership(ObjectStreams& o, ObjectCommon& out, std::int32_t reactorCount,
                   bool noExtensionDictionary, bool ownerGiven) {
    if (ownerGiven) out.owner = ReadHandle(o);
    for (std::int32_t i = 0; i < reactorCount && !o.handles.failed(); ++i) {
        out.reactors.push_back(ReadHandle(o));
    }
    if (!noExtensionDictionary) out.extensionDictionary = ReadHandle(o);
}

// The reactor count cannot exceed what the handle stream holds (a reference takes a byte).
std::int32_t ReactorCount(ObjectStreams& o) {
    const std::int32_t count = o.data.BL();
    if (count < 0 || static_cast<std::size_t>(count) > o.size) {
        o.data.seekBit(o.data.bitEnd() + 1);  // fails the stream
        return 0;
    }
    return count;
}

}  // namespace

std::uint64_t ReadHandle(ObjectStreams& o) {
    return BitReader::Absolute(o.handles.H(), o.handle);
}

void ReadObjectCommon(ObjectStreams& o, ObjectCommon& out) {
    out.handle = o.handle;
    ReadExtendedData(o, out.extended);
    ReadLateDataSize(o);
    const std::int32_t reactors = ReactorCount(o);
    const bool noXdict = o.data.version() >= Version::kR2004 && o.data.B();
    if (o.data.version() >= Version::kR2013) out.hasBinaryData = o.data.B();
    ReadOwnership(o, out, reactors, noXdict, true);
}

void ReadEntityCommon(ObjectStreams& o, EntityCommon& out) {
    BitReader& d = o.data;
    const Version v = d.version();
    out.handle = o.handle;
    ReadExtendedData(o, out.extended);
    if (d.B()) {
        const std::uint64_t size = v >= Version::kR2010 ? d.BLL() : d.RL();
        if (size > o.size) {
            d.seekBit(d.bitEnd() + 1);
            return;
        }
        out.preview = d.bytes(static_cast<std::size_t>(size));
    }
    ReadLateDataSize(o);
    out.mode = d.BB();
    const std::int32_t reactors = ReactorCount(o);
    const bool noXdict = v >= Version::kR2004 && d.B();
    if (v >= Version::kR2013) out.hasBinaryData = d.B();
    bool byLayerLinetype = false;
    if (v < Version::kR2000) byLayerLinetype = d.B();
    if (v < Version::kR2004) out.noLinks = d.B();
    out.color = v >= Version::kR2004 ? d.ENC() : d.CMC();
    out.linetypeScale = d.BD();
    if (v >= Version::kR2000) {
        out.linetypeFlags = d.BB();
        out.plotStyleFlags = d.BB();
    } else {
        out.linetypeFlags = byLayerLinetype ? 0 : 3;
    }
    if (v >= Version::kR2007) {
        out.materialFlags = d.BB();
        out.shadowFlags = d.RC();
    }
    if (v >= Version::kR2010) {
        out.hasFullVisualStyle = d.B();
        out.hasFaceVisualStyle = d.B();
        out.hasEdgeVisualStyle = d.B();
    }
    out.invisible = d.BS();
    out.lineweight = v >= Version::kR2000 ? d.RC() : 29;  // R13/R14: by layer

    ReadOwnership(o, out, reactors, noXdict, out.mode == 0);
    if (v < Version::kR2000) {
        out.layer = ReadHandle(o);
        if (!byLayerLinetype) out.linetype = ReadHandle(o);
    }
    if (v < Version::kR2004 && !out.noLinks) {
        out.previous = ReadHandle(o);
        out.next = ReadHandle(o);
    }
    if (v >= Version::kR2004 && out.color.hasBookHandle) out.colorBook = ReadHandle(o);
    if (v >= Version::kR2000) {
        out.layer = ReadHandle(o);
        if (out.linetypeFlags == 3) out.linetype = ReadHandle(o);
    }
    if (v >= Version::kR2007 && out.materialFlags == 3) out.material = ReadHandle(o);
    if (v >= Version::kR2000 && out.plotStyleFlags == 3) out.plotStyle = ReadHandle(o);
    if (out.hasFullVisualStyle) out.fullVisualStyle = ReadHandle(o);
    if (out.hasFaceVisualStyle) out.faceVisualStyle = ReadHandle(o);
    if (out.hasEdgeVisualStyle) out.edgeVisualStyle = ReadHandle(o);
}

int LineweightFromIndex(std::uint8_t index) {
    static constexpr std::array<int, 24> kWeights = {0,  5,  9,  13, 15, 18, 20,  25,
                                                     30, 35, 40, 50, 53, 60, 70,  80,
                                                     90, 100, 106, 120, 140, 158, 200, 211};
    if (index < kWeights.size()) return kWeights[index];
    switch (index) {
        case 29: return -1;
        case 30: return -2;
        case 31: return -3;
        default: return -3;
    }
}

}  // namespace dwg
