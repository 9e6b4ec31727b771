#include "platform/dwg/texts.hpp"

namespace dwg {
namespace {

bool Ok(const ObjectStreams& o) {
    return !o.data.failed() && !o.handles.failed() && !o.strings.failed();
}

void ReadBackground(ObjectStreams& o, MTextRecord& out) {
    BitReader& d = o.data;
    out.backgroundFlags = d.BL();
    // 2007 on, the flag 0x10 (use the text frame) also brings the fill values.
    const bool filled = (out.backgroundFlags & 1) ||
                        (d.version() >= Version::kR2007 && (out.backgroundFlags & 0x10));
    if (!filled) return;
    out.backgroundScale = d.BD();
    out.backgroundColor = d.CMC(o.text());
    out.backgroundTransparency = static_cast<std::uint32_t>(d.BL());
}

}  // namespace

bool ReadMText(ObjectStreams& o, MTextRecord& out) {
    ReadEntityCommon(o, out.common);
    BitReader& d = o.data;
    const Version v = d.version();
    out.insertion = d.BD3();
    out.normal = d.BD3();
    out.direction = d.BD3();
    out.width = d.BD();
    if (v >= Version::kR2007) out.rectHeight = d.BD();
    out.height = d.BD();
    out.attachment = d.BS();
    out.flow = d.BS();
    out.extentsHeight = d.BD();
    out.extentsWidth = d.BD();
    out.contents = o.text().T();
    if (v >= Version::kR2000) {
        out.lineSpacingStyle = d.BS();
        out.lineSpacingFactor = d.BD();
        d.B();  // a flag of no known meaning, clear in AutoCAD's files
    }
    if (v >= Version::kR2004) ReadBackground(o, out);
    out.style = ReadHandle(o);
    return Ok(o);
}

bool ReadAttribute(ObjectStreams& o, AttributeRecord& out, bool definition) {
    ReadTextBody(o, out.text);
    BitReader& d = o.data;
    const Version v = d.version();
    if (v >= Version::kR2010) out.version = d.RC();
    if (v >= Version::kR2018) {
        out.kind = d.RC();
        // Multi-line attributes carry an MTEXT after this: not decoded here, kept by the caller.
        if (out.kind != 1) return false;
    }
    out.tag = o.text().T();
    out.fieldLength = d.BS();
    out.flags = d.RC();
    if (v >= Version::kR2007) out.lockPosition = d.B();
    if (definition) {
        if (v >= Version::kR2010) out.version = d.RC();
        out.prompt = o.text().T();
    }
    out.text.style = ReadHandle(o);
    return Ok(o);
}

}  // namespace dwg
