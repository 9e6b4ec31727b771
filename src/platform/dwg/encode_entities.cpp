#include "platform/dwg/encode_entities.hpp"

namespace dwg {
namespace {

void WriteCircleValues(BitWriter& d, const CircleRecord& circle) {
    d.BD3(circle.center);
    d.BD(circle.radius);
    d.BT(circle.thickness);
    d.BE(circle.normal);
}

// Each value is left out when it has its default: a bit of the first byte says so.
std::uint8_t AbsentTextValues(const TextRecord& t) {
    std::uint8_t absent = 0;
    if (t.elevation == 0.0) absent |= 0x01;
    if (t.alignment.x == t.insertion.x && t.alignment.y == t.insertion.y) absent |= 0x02;
    if (t.oblique == 0.0) absent |= 0x04;
    if (t.rotation == 0.0) absent |= 0x08;
    if (t.widthFactor == 1.0) absent |= 0x10;
    if (t.generation == 0) absent |= 0x20;
    if (t.horizontal == 0) absent |= 0x40;
    if (t.vertical == 0) absent |= 0x80;
    return absent;
}

}  // namespace

// From 2000 a line stores each end coordinate as the bytes that differ from the start's.
std::vector<std::uint8_t> EncodeLine(const LineRecord& line, const EncodeOptions& options) {
    ObjectWriter o = BeginEntity(kLine, line.common, options);
    BitWriter& d = o.data;
    const bool flat = line.start.z == 0.0 && line.end.z == 0.0;
    d.B(flat);
    d.RD(line.start.x);
    d.DD(line.end.x, line.start.x);
    d.RD(line.start.y);
    d.DD(line.end.y, line.start.y);
    if (!flat) {
        d.RD(line.start.z);
        d.DD(line.end.z, line.start.z);
    }
    d.BT(line.thickness);
    d.BE(line.normal);
    return FinishObject(o);
}

std::vector<std::uint8_t> EncodeCircle(const CircleRecord& circle, const EncodeOptions& options) {
    ObjectWriter o = BeginEntity(kCircle, circle.common, options);
    WriteCircleValues(o.data, circle);
    return FinishObject(o);
}

std::vector<std::uint8_t> EncodeArc(const ArcRecord& arc, const EncodeOptions& options) {
    ObjectWriter o = BeginEntity(kArc, arc.circle.common, options);
    WriteCircleValues(o.data, arc.circle);
    o.data.BD(arc.startAngle);
    o.data.BD(arc.endAngle);
    return FinishObject(o);
}

std::vector<std::uint8_t> EncodePoint(const PointRecord& point, const EncodeOptions& options) {
    ObjectWriter o = BeginEntity(kPoint, point.common, options);
    BitWriter& d = o.data;
    d.BD3(point.position);
    d.BT(point.thickness);
    d.BE(point.normal);
    d.BD(point.xAxisAngle);
    return FinishObject(o);
}

void WriteTextValues(BitWriter& d, const TextRecord& t) {
    const std::uint8_t absent = AbsentTextValues(t);
    d.RC(absent);
    if (!(absent & 0x01)) d.RD(t.elevation);
    d.RD2(t.insertion);
    if (!(absent & 0x02)) d.DD2(t.alignment, t.insertion);
    d.BE(t.normal);
    d.BT(t.thickness);
    if (!(absent & 0x04)) d.RD(t.oblique);
    if (!(absent & 0x08)) d.RD(t.rotation);
    d.RD(t.height);
    if (!(absent & 0x10)) d.RD(t.widthFactor);
    d.T(t.text);
    if (!(absent & 0x20)) d.BS(t.generation);
    if (!(absent & 0x40)) d.BS(t.horizontal);
    if (!(absent & 0x80)) d.BS(t.vertical);
}

std::vector<std::uint8_t> EncodeText(const TextRecord& t, const EncodeOptions& options) {
    ObjectWriter o = BeginEntity(kText, t.common, options);
    WriteTextValues(o.data, t);
    WriteHandle(o, kHardPointer, t.style);
    return FinishObject(o);
}

}  // namespace dwg
