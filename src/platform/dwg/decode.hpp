#pragma once
// One object of the object data decoded by its type into the record of its kind. Kinds that
// are not decoded yet stay as their streams (monostate) for the caller to keep as they are.
#include <variant>

#include "platform/dwg/curves.hpp"
#include "platform/dwg/objects.hpp"
#include "platform/dwg/texts.hpp"

namespace dwg {

using DecodedObject =
    std::variant<std::monostate, LineRecord, CircleRecord, ArcRecord, PointRecord, TextRecord,
                 AttributeRecord, MTextRecord, InsertRecord, BlockBeginRecord, EntityCommon,
                 BlockHeaderRecord, LayerRecord, EllipseRecord, LwPolylineRecord,
                 PolylineRecord, VertexRecord, SolidRecord, DictionaryRecord>;

// False when the object's data does not hold what its type needs.
bool DecodeObject(ObjectStreams& o, DecodedObject& out);

}  // namespace dwg
