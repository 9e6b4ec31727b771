#include "platform/dwg/decode.hpp"

#include <type_traits>

#include "platform/dwg/classes.hpp"

namespace dwg {
namespace {

template <typename Record, typename Reader>
bool Decode(ObjectStreams& o, DecodedObject& out, Reader read) {
    Record& record = out.emplace<Record>();
    return read(o, record);
}

bool Keep(ObjectStreams& o, bool entity, std::span<const std::uint8_t> bytes, DecodedObject& out) {
    auto& kept = out.emplace<KeptObject>();
    kept.entity = entity;
    kept.bytes.assign(bytes.begin(), bytes.end());
    if (entity) {
        ReadEntityCommon(o, kept.common);
    } else {
        ReadObjectCommon(o, kept.common);
    }
    // The handle stream holds nothing but references: read them to its end.
    while (o.handles.bitEnd() - o.handles.bitPosition() >= 8 && !o.handles.failed()) {
        kept.references.push_back(o.handles.H());
    }
    return !o.data.failed() && !o.handles.failed();
}

}  // namespace

const ObjectCommon* ModelledObjectCommonOf(const DecodedObject& decoded) {
    return std::visit(
        [](const auto& r) -> const ObjectCommon* {
            using R = std::decay_t<decltype(r)>;
            if constexpr (std::is_same_v<R, KeptObject> || std::is_same_v<R, EntityCommon>) {
                return nullptr;
            } else if constexpr (requires { r.common.mode; }) {
                return nullptr;
            } else if constexpr (requires { r.common.handle; }) {
                return &r.common;
            } else if constexpr (requires { r.entry.common.handle; }) {
                return &r.entry.common;
            } else {
                return nullptr;
            }
        },
        decoded);
}

const EntityCommon* EntityCommonOf(const DecodedObject& decoded) {
    return std::visit(
        [](const auto& r) -> const EntityCommon* {
            using R = std::decay_t<decltype(r)>;
            if constexpr (std::is_same_v<R, EntityCommon>) {
                return &r;
            } else if constexpr (std::is_same_v<R, KeptObject>) {
                return r.entity ? &r.common : nullptr;
            } else if constexpr (std::is_same_v<R, ArcRecord>) {
                return &r.circle.common;
            } else if constexpr (std::is_same_v<R, AttributeRecord>) {
                return &r.text.common;
            } else if constexpr (requires { r.common.mode; }) {
                return &r.common;
            } else {
                return nullptr;
            }
        },
        decoded);
}

bool DecodesToEntityRecord(std::int32_t type) {
    switch (type) {
        case kLine: case kCircle: case kArc: case kPoint: case kText: case kMText: case kInsert:
        case kMinsert: case kSeqend: case kEllipse: case kLwPolyline: case kPolyline2d:
        case kPolyline3d: case kPolylinePface: case kVertex2d: case kVertex3d: case kVertexMesh:
        case kVertexPface: case kVertexPfaceFace: case kSolid: case kTrace: case kSpline:
        case kDimensionOrdinate: case kDimensionLinear: case kDimensionAligned:
        case kDimensionAngular3Pt: case kDimensionAngular2Ln: case kDimensionRadius:
        case kDimensionDiameter: case kHatch: case kFace3d: case kRay: case kXLine: return true;
        default: return false;
    }
}

bool OwnsEntities(std::int32_t type) {
    return type == kInsert || type == kMinsert || type == kPolyline2d || type == kPolyline3d ||
           type == kPolylinePface || type == 30;
}

bool IsEntityType(std::int32_t type, const std::vector<ClassRecord>& classes) {
    if (type == kProxyEntity) return true;
    if (type >= 500) {
        for (const auto& c : classes) {
            if (c.number == type) return c.isEntity;
        }
        return false;
    }
    // The fixed types below 42 are entities, as are MTEXT to MLINE, OLE2FRAME, LWPOLYLINE
    // and HATCH.
    return (type >= 1 && type <= 41) || (type >= 43 && type <= 47) || type == 74 ||
           type == 77 || type == 78;
}

bool DecodeObject(ObjectStreams& o, const std::vector<ClassRecord>& classes, DecodedObject& out) {
    switch (o.type) {
        case kLine: return Decode<LineRecord>(o, out, ReadLine);
        case kCircle: return Decode<CircleRecord>(o, out, ReadCircle);
        case kArc: return Decode<ArcRecord>(o, out, ReadArc);
        case kPoint: return Decode<PointRecord>(o, out, ReadPoint);
        case kText: return Decode<TextRecord>(o, out, ReadText);
        case kAttrib:
        case kAttdef: {
            const ObjectStreams start = o;
            auto& r = out.emplace<AttributeRecord>();
            if (ReadAttribute(o, r, o.type == kAttdef)) return true;
            if (r.kind == 1) return false;
            // Multi-line attributes of 2018 embed an MTEXT: kept whole.
            o = start;
            return Keep(o, true, o.data.buffer(), out);
        }
        case kMText: return Decode<MTextRecord>(o, out, ReadMText);
        case kInsert:
        case kMinsert: {
            auto& r = out.emplace<InsertRecord>();
            return ReadInsert(o, r, o.type == kMinsert);
        }
        case kBlock: return Decode<BlockBeginRecord>(o, out, ReadBlockBegin);
        case kEndblk:
        case kSeqend: return Decode<EntityCommon>(o, out, ReadCommonOnly);
        case kBlockHeader: return Decode<BlockHeaderRecord>(o, out, ReadBlockHeader);
        case kLayer: return Decode<LayerRecord>(o, out, ReadLayer);
        case kEllipse: return Decode<EllipseRecord>(o, out, ReadEllipse);
        case kLwPolyline: return Decode<LwPolylineRecord>(o, out, ReadLwPolyline);
        case kPolyline2d:
        case kPolyline3d:
        case kPolylinePface: return Decode<PolylineRecord>(o, out, ReadPolyline);
        case kVertex2d:
        case kVertex3d:
        case kVertexMesh:
        case kVertexPface:
        case kVertexPfaceFace: return Decode<VertexRecord>(o, out, ReadVertex);
        case kSolid:
        case kTrace: return Decode<SolidRecord>(o, out, ReadSolid);
        case kDictionary: return Decode<DictionaryRecord>(o, out, ReadDictionary);
        case kSpline: return Decode<SplineRecord>(o, out, ReadSpline);
        case kXRecord: return Decode<XRecordRecord>(o, out, ReadXRecord);
        case kDimensionOrdinate:
        case kDimensionLinear:
        case kDimensionAligned:
        case kDimensionAngular3Pt:
        case kDimensionAngular2Ln:
        case kDimensionRadius:
        case kDimensionDiameter: return Decode<DimensionRecord>(o, out, ReadDimension);
        case kLayout: return Decode<LayoutRecord>(o, out, ReadLayout);
        case kHatch: return Decode<HatchRecord>(o, out, ReadHatch);
        case kFace3d: return Decode<FaceRecord>(o, out, ReadFace);
        case kRay:
        case kXLine: return Decode<RayRecord>(o, out, ReadRay);
        case kGroup: return Decode<GroupRecord>(o, out, ReadGroup);
        case kPlaceHolder: return Decode<PlaceHolderRecord>(o, out, ReadPlaceHolder);
        case kMLineStyle: {
            const ObjectStreams start = o;
            auto& r = out.emplace<MLineStyleRecord>();
            if (!ReadMLineStyle(o, r)) return false;
            if (MLineStyleInDxfTerms(r)) return true;
            o = start;
            return Keep(o, false, o.data.buffer(), out);
        }
        default: break;
    }
    // Kinds numbered per drawing are told by their class name.
    const std::string name = o.type >= 500 ? TypeName(o.type, classes) : std::string();
    if (name == "LAYOUT") return Decode<LayoutRecord>(o, out, ReadLayout);
    if (name == "XRECORD") return Decode<XRecordRecord>(o, out, ReadXRecord);
    if (name == "HATCH") return Decode<HatchRecord>(o, out, ReadHatch);
    if (name == "LWPOLYLINE") return Decode<LwPolylineRecord>(o, out, ReadLwPolyline);
    if (name == "DICTIONARYVAR") {
        return Decode<DictionaryVariableRecord>(o, out, ReadDictionaryVariable);
    }
    if (name == "SCALE") return Decode<ScaleRecord>(o, out, ReadScale);
    if (name == "ACDBPLACEHOLDER") return Decode<PlaceHolderRecord>(o, out, ReadPlaceHolder);
    // R14 stores more in it than the format documents say: kept whole there.
    if (name == "ACDBDICTIONARYWDFLT" && o.data.version() >= Version::kR2000) {
        return Decode<DictionaryRecord>(o, out, ReadDictionaryWithDefault);
    }
    return Keep(o, IsEntityType(o.type, classes), o.data.buffer(), out);
}

}  // namespace dwg
