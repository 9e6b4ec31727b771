#include "platform/dwg/small_kinds.hpp"

#include <algorithm>
#include <cctype>

namespace dwg {
namespace {

bool Ok(const ObjectStreams& o) {
    return !o.data.failed() && !o.handles.failed() && !o.strings.failed();
}

}  // namespace

bool ReadFace(ObjectStreams& o, FaceRecord& out) {
    ReadEntityCommon(o, out.common);
    BitReader& d = o.data;
    if (d.version() < Version::kR2000) {
        for (auto& c : out.corners) c = d.BD3();
        out.invisibleEdges = d.BS();
        return Ok(o);
    }
    // 2000 on: flags say what is left out, and each corner is stored against the one before.
    const bool noFlags = d.B();
    const bool flat = d.B();
    Point3& first = out.corners[0];
    first.x = d.RD();
    first.y = d.RD();
    first.z = flat ? 0.0 : d.RD();
    for (int i = 1; i < 4; ++i) {
        const Point3& before = out.corners[i - 1];
        out.corners[i] = {d.DD(before.x), d.DD(before.y), d.DD(before.z)};
    }
    if (!noFlags) out.invisibleEdges = d.BS();
    return Ok(o);
}

bool ReadRay(ObjectStreams& o, RayRecord& out) {
    ReadEntityCommon(o, out.common);
    out.point = o.data.BD3();
    out.direction = o.data.BD3();
    return Ok(o);
}

bool ReadDictionaryVariable(ObjectStreams& o, DictionaryVariableRecord& out) {
    ReadObjectCommon(o, out.common);
    out.schema = o.data.RC();
    out.value = o.text().T();
    return Ok(o);
}

bool ReadScale(ObjectStreams& o, ScaleRecord& out) {
    ReadObjectCommon(o, out.common);
    BitReader& d = o.data;
    out.flags = d.BS();
    out.name = o.text().T();
    out.paperUnits = d.BD();
    out.drawingUnits = d.BD();
    out.unitScale = d.B();
    return Ok(o);
}

bool ReadGroup(ObjectStreams& o, GroupRecord& out) {
    ReadObjectCommon(o, out.common);
    BitReader& d = o.data;
    out.description = o.text().T();
    out.unnamed = d.BS();
    out.selectable = d.BS();
    const std::int32_t count = d.BL();
    if (count < 0 || static_cast<std::size_t>(count) > o.size * 8) return false;
    for (std::int32_t i = 0; i < count && !o.handles.failed(); ++i) {
        out.entities.push_back(ReadHandle(o));
    }
    return Ok(o);
}

bool ReadMLineStyle(ObjectStreams& o, MLineStyleRecord& out) {
    ReadObjectCommon(o, out.common);
    BitReader& d = o.data;
    out.name = o.text().T();
    out.description = o.text().T();
    out.flags = d.BS();
    out.fill = d.CMC(o.text());
    out.startAngle = d.BD();
    out.endAngle = d.BD();
    const unsigned count = d.RC();
    for (unsigned i = 0; i < count && !d.failed(); ++i) {
        MLineStyleLine& line = out.lines.emplace_back();
        line.offset = d.BD();
        line.color = d.CMC(o.text());
        if (d.version() >= Version::kR2018) line.linetype = ReadHandle(o);
        else line.linetypeIndex = d.BS();
    }
    return Ok(o);
}

bool MLineStyleInDxfTerms(const MLineStyleRecord& style) {
    auto plain = [](const Color& c) { return (c.rgb >> 24) != 0xC2 && c.flags == 0; };
    return plain(style.fill) && std::all_of(style.lines.begin(), style.lines.end(), [&](const MLineStyleLine& line) {
               return plain(line.color) && (line.linetype != 0 || line.linetypeIndex == kLinetypeIndexByLayer);
           });
}

bool SameAsciiNoCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
    });
}

bool ReadPlaceHolder(ObjectStreams& o, PlaceHolderRecord& out) {
    ReadObjectCommon(o, out.common);
    return Ok(o);
}

}  // namespace dwg
