#include "platform/dwg/entities.hpp"

namespace dwg {
namespace {

bool Ok(const ObjectStreams& o) {
    return !o.data.failed() && !o.handles.failed() && !o.strings.failed();
}

}  // namespace

// From 2000 a line stores each end coordinate as the bytes that differ from the start's.
bool ReadLine(ObjectStreams& o, LineRecord& out) {
    ReadEntityCommon(o, out.common);
    BitReader& d = o.data;
    if (d.version() < Version::kR2000) {
        out.start = d.BD3();
        out.end = d.BD3();
    } else {
        const bool flat = d.B();
        out.start.x = d.RD();
        out.end.x = d.DD(out.start.x);
        out.start.y = d.RD();
        out.end.y = d.DD(out.start.y);
        if (!flat) {
            out.start.z = d.RD();
            out.end.z = d.DD(out.start.z);
        }
    }
    out.thickness = d.BT();
    out.normal = d.BE();
    return Ok(o);
}

namespace {

void ReadCircleValues(BitReader& d, CircleRecord& out) {
    out.center = d.BD3();
    out.radius = d.BD();
    out.thickness = d.BT();
    out.normal = d.BE();
}

}  // namespace

bool ReadCircle(ObjectStreams& o, CircleRecord& out) {
    ReadEntityCommon(o, out.common);
    ReadCircleValues(o.data, out);
    return Ok(o);
}

bool ReadArc(ObjectStreams& o, ArcRecord& out) {
    ReadEntityCommon(o, out.circle.common);
    ReadCircleValues(o.data, out.circle);
    out.startAngle = o.data.BD();
    out.endAngle = o.data.BD();
    return Ok(o);
}

bool ReadPoint(ObjectStreams& o, PointRecord& out) {
    ReadEntityCommon(o, out.common);
    BitReader& d = o.data;
    out.position = d.BD3();
    out.thickness = d.BT();
    out.normal = d.BE();
    out.xAxisAngle = d.BD();
    return Ok(o);
}

namespace {

// R13 and R14 store every value of a text.
void ReadTextValuesR14(ObjectStreams& o, TextRecord& out) {
    BitReader& d = o.data;
    out.elevation = d.BD();
    out.insertion = d.RD2();
    out.alignment = d.RD2();
    out.normal = d.BD3();
    out.thickness = d.BD();
    out.oblique = d.BD();
    out.rotation = d.BD();
    out.height = d.BD();
    out.widthFactor = d.BD();
    out.text = o.text().T();
    out.generation = d.BS();
    out.horizontal = d.BS();
    out.vertical = d.BS();
}

// From 2000 a flag byte says which values are left at their defaults and not stored.
void ReadTextValues(ObjectStreams& o, TextRecord& out) {
    BitReader& d = o.data;
    const std::uint8_t absent = d.RC();
    if (!(absent & 0x01)) out.elevation = d.RD();
    out.insertion = d.RD2();
    out.alignment = out.insertion;
    if (!(absent & 0x02)) out.alignment = d.DD2(out.insertion);
    out.normal = d.BE();
    out.thickness = d.BT();
    if (!(absent & 0x04)) out.oblique = d.RD();
    if (!(absent & 0x08)) out.rotation = d.RD();
    out.height = d.RD();
    if (!(absent & 0x10)) out.widthFactor = d.RD();
    out.text = o.text().T();
    if (!(absent & 0x20)) out.generation = d.BS();
    if (!(absent & 0x40)) out.horizontal = d.BS();
    if (!(absent & 0x80)) out.vertical = d.BS();
}

}  // namespace

void ReadTextBody(ObjectStreams& o, TextRecord& out) {
    ReadEntityCommon(o, out.common);
    if (o.data.version() < Version::kR2000) {
        ReadTextValuesR14(o, out);
    } else {
        ReadTextValues(o, out);
    }
}

bool ReadText(ObjectStreams& o, TextRecord& out) {
    ReadTextBody(o, out);
    out.style = ReadHandle(o);
    return Ok(o);
}

}  // namespace dwg
