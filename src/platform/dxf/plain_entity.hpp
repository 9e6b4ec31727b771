#pragma once
// An entity of the simplest kinds (LINE, CIRCLE, ARC, POINT, LWPOLYLINE) given by the values of its record,
// as a decoder has them: the reader builds it from the values without the record being made,
// when the entity alone makes that record again (so that none of it would be kept).
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/db/entity.hpp"
#include "platform/db/polyline.hpp"
#include "platform/ge/point3d.hpp"

namespace dxf {

// The record it stands for: 0 kind, 5 handle, 330 owner, 100 AcDbEntity, 8 layer, 62 colour when
// not 256, 370 lineweight when not -1, 48 linetype scale when not 1, then the kind's subclasses
// and values as the DWG reader's records give them: 39 thickness when not 0, the point or points,
// 40 radius, 50 and 51 angles (a point's 50 when not 0); a polyline's 90 count, 70 flags, 43
// constant width when it has one, 38 elevation when not 0, then each vertex's 10/20 point, 40/41
// widths for the first `widthsGiven` vertices and 42 bulge when not 0; the normal the z axis (no
// 210). Nothing
// else: no reactors, extension dictionary, extended data, linetype, paper space, true colour,
// colour book, transparency, plot style nor invisibility.
struct PlainEntity {
    enum class Kind { kLine, kCircle, kArc, kPoint, kLwPolyline };
    Kind kind = Kind::kLine;
    std::uint64_t handle = 0;
    std::uint64_t owner = 0;
    std::string_view layer;  // ASCII without control characters nor backslashes
    int colorIndex = 256;
    int lineweight = -1;
    double linetypeScale = 1.0;
    double thickness = 0.0;
    AcGePoint3d first;   // a line's start, a circle's or arc's centre (object coordinates), a point
    AcGePoint3d second;  // a line's end
    double radius = 0.0;
    double startAngle = 0.0, endAngle = 0.0;  // radians; a point's x axis angle is its start
    // A polyline's values.
    bool closed = false, plinegen = false, constant = false;
    double constantWidth = 0.0, elevation = 0.0;
    std::vector<AcDbPolyline::Vertex> vertices;  // with the widths the record gives
    std::size_t widthsGiven = 0;
};

// The record's type name.
std::string_view PlainTypeName(PlainEntity::Kind kind);
// How many tags the record holds.
int PlainRecordTags(const PlainEntity& plain);

// The entity as the reader builds it from the record (new, owned by the caller); no owner yet.
AcDbEntity* NewPlainEntity(const PlainEntity& plain);

// Whether the writer makes the record again from the entity built from it (see
// DropModelledRecord): when not, the record is read as any other, to be kept.
bool ModelGivesPlainRecord(const AcDbEntity& entity, const PlainEntity& plain);

// The entity built from the values, when the writer makes the record again from it; null when
// not (the record is then needed). No database is touched: a decoder's thread may build it.
std::unique_ptr<AcDbEntity> BuildPlainEntity(const PlainEntity& plain);

}  // namespace dxf
