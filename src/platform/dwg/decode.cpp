#include "platform/dwg/decode.hpp"

namespace dwg {
namespace {

template <typename Record, typename Reader>
bool Decode(ObjectStreams& o, DecodedObject& out, Reader read) {
    Record& record = out.emplace<Record>();
    return read(o, record);
}

}  // namespace

bool DecodeObject(ObjectStreams& o, DecodedObject& out) {
    switch (o.type) {
        case kLine: return Decode<LineRecord>(o, out, ReadLine);
        case kCircle: return Decode<CircleRecord>(o, out, ReadCircle);
        case kArc: return Decode<ArcRecord>(o, out, ReadArc);
        case kPoint: return Decode<PointRecord>(o, out, ReadPoint);
        case kText: return Decode<TextRecord>(o, out, ReadText);
        case kAttrib:
        case kAttdef: {
            auto& r = out.emplace<AttributeRecord>();
            return ReadAttribute(o, r, o.type == kAttdef);
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
        default: out.emplace<std::monostate>(); return true;
    }
}

}  // namespace dwg
