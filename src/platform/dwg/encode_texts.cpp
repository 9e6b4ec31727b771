#include "platform/dwg/encode_texts.hpp"

namespace dwg {

std::vector<std::uint8_t> EncodeMText(const MTextRecord& m, const EncodeOptions& options) {
    ObjectWriter o = BeginEntity(kMText, m.common, options);
    BitWriter& d = o.data;
    d.BD3(m.insertion);
    d.BD3(m.normal);
    d.BD3(m.direction);
    d.BD(m.width);
    d.BD(m.height);
    d.BS(m.attachment);
    d.BS(m.flow);
    d.BD(m.extentsHeight);
    d.BD(m.extentsWidth);
    d.T(m.contents);
    d.BS(m.lineSpacingStyle);
    d.BD(m.lineSpacingFactor);
    d.B(false);  // a flag AutoCAD leaves clear in every MTEXT it writes
    if (options.version >= Version::kR2004) {
        d.BL(m.backgroundFlags);
        if (m.backgroundFlags & 1) {
            d.BD(m.backgroundScale);
            d.CMC(m.backgroundColor);
            d.BL(static_cast<std::int32_t>(m.backgroundTransparency));
        }
    }
    WriteHandle(o, kHardPointer, m.style);
    return FinishObject(o);
}

std::vector<std::uint8_t> EncodeAttribute(const AttributeRecord& a, bool definition,
                                          const EncodeOptions& options) {
    ObjectWriter o = BeginEntity(definition ? kAttdef : kAttrib, a.text.common, options);
    WriteTextValues(o.data, a.text);
    BitWriter& d = o.data;
    d.T(a.tag);
    d.BS(a.fieldLength);
    d.RC(a.flags);
    if (definition) d.T(a.prompt);
    WriteHandle(o, kHardPointer, a.text.style);
    return FinishObject(o);
}

}  // namespace dwg
