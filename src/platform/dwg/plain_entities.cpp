#include "platform/dwg/plain_entities.hpp"

#include <algorithm>

#include "platform/dwg/curves.hpp"
#include "platform/dwg/entities.hpp"

namespace dwg {

namespace {

bool IsUpright(const Point3& n) { return n.x == 0 && n.y == 0 && n.z == 1; }

AcGePoint3d PointOf(const Point3& p) { return {p.x, p.y, p.z}; }

// A name the record gives as it is: ASCII without control characters (DxfText writes those
// otherwise, and the reader decodes the others) nor backslashes (which may start an escape
// the reader decodes).
bool IsPlainName(std::string_view name) {
    return std::all_of(name.begin(), name.end(), [](char c) { return c >= 0x20 && c < 0x7F && c != '\\'; });
}

// The common part of the record as EntityProperties writes it, when it holds no more than a
// plain record does: no reactors, extension dictionary, extended data, paper space, linetype,
// true colour, colour book, transparency, plot style nor invisibility.
bool PlainCommon(const EntityCommon& c, std::uint64_t owner, const NameIndex& names, dxf::PlainEntity& plain) {
    if (!c.reactors.empty() || c.extensionDictionary != 0 || !c.extended.empty()) return false;
    if (c.mode == 1 || (owner != 0 && owner == names.paperSpace)) return false;
    if (c.linetypeFlags != 0 || c.plotStyleFlags != 0 || (c.invisible & 1) != 0) return false;
    if (c.color.index < 0 || c.color.index > 256 || (c.color.rgb >> 24) == 0xC2 || c.color.hasBookHandle ||
        c.color.hasTransparency) {
        return false;
    }
    plain.layer = names.name(names.layers, c.layer);
    if (!IsPlainName(plain.layer)) return false;
    plain.handle = c.handle;
    plain.owner = owner;
    plain.colorIndex = c.color.index;
    plain.lineweight = LineweightFromIndex(c.lineweight);
    plain.linetypeScale = c.linetypeScale;
    return true;
}

bool PlainRound(const CircleRecord& r, dxf::PlainEntity& plain) {
    plain.thickness = r.thickness;
    plain.first = PointOf(r.center);
    plain.radius = r.radius;
    return IsUpright(r.normal);
}

// The values the record gives (see the LWPOLYLINE Body of dxf_records.cpp).
bool PlainLwPolyline(const LwPolylineRecord& r, dxf::PlainEntity& plain) {
    plain.kind = dxf::PlainEntity::Kind::kLwPolyline;
    plain.closed = r.closed();
    plain.plinegen = (r.flags & 256) != 0;
    plain.constant = (r.flags & 4) != 0;
    plain.constantWidth = r.constantWidth;
    plain.elevation = r.elevation;
    plain.thickness = r.thickness;
    plain.widthsGiven = std::min(r.widths.size(), r.points.size());
    plain.vertices.resize(r.points.size());
    for (std::size_t k = 0; k < r.points.size(); ++k) {
        AcDbPolyline::Vertex& v = plain.vertices[k];
        v.point = {r.points[k].x, r.points[k].y};
        if (k < plain.widthsGiven) {
            v.startWidth = r.widths[k].x;
            v.endWidth = r.widths[k].y;
        }
        if (k < r.bulges.size()) v.bulge = r.bulges[k];
    }
    return IsUpright(r.normal);
}

bool PlainBody(const DecodedObject& decoded, dxf::PlainEntity& plain) {
    if (const auto* r = std::get_if<LineRecord>(&decoded)) {
        plain.kind = dxf::PlainEntity::Kind::kLine;
        plain.thickness = r->thickness;
        plain.first = PointOf(r->start);
        plain.second = PointOf(r->end);
        return IsUpright(r->normal);
    }
    if (const auto* r = std::get_if<CircleRecord>(&decoded)) {
        plain.kind = dxf::PlainEntity::Kind::kCircle;
        return PlainRound(*r, plain);
    }
    if (const auto* r = std::get_if<ArcRecord>(&decoded)) {
        plain.kind = dxf::PlainEntity::Kind::kArc;
        plain.startAngle = r->startAngle;
        plain.endAngle = r->endAngle;
        return PlainRound(r->circle, plain);
    }
    if (const auto* r = std::get_if<PointRecord>(&decoded)) {
        plain.kind = dxf::PlainEntity::Kind::kPoint;
        plain.thickness = r->thickness;
        plain.first = PointOf(r->position);
        plain.startAngle = r->xAxisAngle;
        return IsUpright(r->normal);
    }
    if (const auto* r = std::get_if<LwPolylineRecord>(&decoded)) return PlainLwPolyline(*r, plain);
    return false;
}

}  // namespace

bool PlainEntityOf(const DecodedObject& decoded, std::string_view typeName, std::uint64_t owner,
                   const NameIndex& names, dxf::PlainEntity& plain) {
    const EntityCommon* common = EntityCommonOf(decoded);
    return common != nullptr && PlainBody(decoded, plain) && typeName == dxf::PlainTypeName(plain.kind) &&
           PlainCommon(*common, owner, names, plain);
}

}  // namespace dwg
