#pragma once
// One object of the object data decoded by its type into the record of its kind. Kinds the
// database does not model are kept whole: their common data, their bytes and every handle
// reference of their handle stream, so that a writer can put them back.
#include <variant>

#include "platform/dwg/annotations.hpp"
#include "platform/dwg/curves.hpp"
#include "platform/dwg/hatch.hpp"
#include "platform/dwg/layout.hpp"
#include "platform/dwg/objects.hpp"
#include "platform/dwg/small_kinds.hpp"
#include "platform/dwg/texts.hpp"
#include "platform/dwg/xrecord.hpp"

namespace dwg {

struct ClassRecord;

struct KeptObject {
    bool entity = false;
    EntityCommon common;  // for an object only its ObjectCommon part is filled
    std::vector<HandleRef> references;  // after the common ones, as stored (codes kept)
    std::vector<std::uint8_t> bytes;    // the whole object, after its size and before its CRC
};

using DecodedObject =
    std::variant<std::monostate, KeptObject, LineRecord, CircleRecord, ArcRecord, PointRecord, TextRecord,
                 AttributeRecord, MTextRecord, InsertRecord, BlockBeginRecord, EntityCommon,
                 BlockHeaderRecord, LayerRecord, EllipseRecord, LwPolylineRecord,
                 PolylineRecord, VertexRecord, SolidRecord, DictionaryRecord,
                 DimensionRecord, SplineRecord, XRecordRecord, LayoutRecord,
                 HatchRecord, FaceRecord, RayRecord, DictionaryVariableRecord, ScaleRecord,
                 GroupRecord, PlaceHolderRecord, MLineStyleRecord>;

// False when the object's data does not hold what its type needs. The classes tell whether a
// drawing's own type (500 and up) is an entity.
bool DecodeObject(ObjectStreams& o, const std::vector<ClassRecord>& classes, DecodedObject& out);

// True for the fixed types DecodeObject always decodes into an entity record of their own
// (never kept whole): lines, circles, texts, inserts, polylines and their vertices, dimensions...
bool DecodesToEntityRecord(std::int32_t type);

// The common data of a decoded object of a modelled kind (not an entity); null for entities and
// kinds kept whole.
const ObjectCommon* ModelledObjectCommonOf(const DecodedObject& decoded);

// The common entity data of a decoded entity; null for objects and undecoded kinds.
const EntityCommon* EntityCommonOf(const DecodedObject& decoded);

// True for the fixed entity types and the classes marked as entities.
bool IsEntityType(std::int32_t type, const std::vector<ClassRecord>& classes);

// True for the kinds whose entities own others, which follow them: block references their
// attributes, polylines (30: a polygon mesh) their vertices, each list closed by a SEQEND.
bool OwnsEntities(std::int32_t type);

}  // namespace dwg
