#include "platform/dwg/blocks.hpp"

namespace dwg {
namespace {

bool Ok(const ObjectStreams& o) {
    return !o.data.failed() && !o.handles.failed() && !o.strings.failed();
}

// A count of handles cannot exceed what the object holds (a reference takes a byte at least).
std::int32_t OwnedCount(ObjectStreams& o) {
    const std::int32_t count = o.data.BL();
    if (count < 0 || static_cast<std::size_t>(count) > o.size) {
        o.data.seekBit(o.data.bitEnd() + 1);
        return 0;
    }
    return count;
}

// The scale of a reference from 2000: two bits say which factors are 1 or equal to x.
Point3 ReadScale(BitReader& d) {
    switch (d.BB()) {
        case 3: return {1, 1, 1};
        case 1: {
            const double y = d.DD(1.0);
            return {1.0, y, d.DD(1.0)};
        }
        case 2: {
            const double x = d.RD();
            return {x, x, x};
        }
        default: {
            const double x = d.RD();
            const double y = d.DD(x);
            return {x, y, d.DD(x)};
        }
    }
}

}  // namespace

void ReadOwnedHandles(ObjectStreams& o, std::int32_t count, OwnedList& out) {
    if (o.data.version() < Version::kR2004) {
        out.first = ReadHandle(o);
        out.last = ReadHandle(o);
    } else {
        for (std::int32_t i = 0; i < count && !o.handles.failed(); ++i) {
            out.handles.push_back(ReadHandle(o));
        }
    }
    out.seqend = ReadHandle(o);
}

bool ReadBlockHeader(ObjectStreams& o, BlockHeaderRecord& out) {
    ReadTableEntry(o, out.entry);
    BitReader& d = o.data;
    const Version v = d.version();
    out.anonymous = d.B();
    out.hasAttributes = d.B();
    out.isXref = d.B();
    out.isOverlaid = d.B();
    if (v >= Version::kR2000) out.loaded = d.B();
    std::int32_t owned = 0;
    const bool ownsEntities = !out.isXref && !out.isOverlaid;
    if (v >= Version::kR2004 && ownsEntities) owned = OwnedCount(o);
    out.base = d.BD3();
    out.xrefPath = o.text().T();
    std::size_t insertCount = 0;
    if (v >= Version::kR2000) {
        // One non-zero byte for each reference of the block, then a zero.
        while (d.RC() != 0 && !d.failed()) ++insertCount;
        out.description = o.text().T();
        const std::int32_t previewSize = d.BL();
        if (previewSize < 0 || static_cast<std::size_t>(previewSize) > o.size) return false;
        out.preview = d.bytes(static_cast<std::size_t>(previewSize));
    }
    if (v >= Version::kR2007) {
        out.units = d.BS();
        out.explodable = d.B();
        out.scaling = d.RC();
    }
    ReadTableEntryHandles(o, out.entry);
    out.blockEntity = ReadHandle(o);
    if (ownsEntities) {
        if (v < Version::kR2004) {
            out.firstEntity = ReadHandle(o);
            out.lastEntity = ReadHandle(o);
        } else {
            for (std::int32_t i = 0; i < owned && !o.handles.failed(); ++i) {
                out.entities.push_back(ReadHandle(o));
            }
        }
    }
    out.endBlock = ReadHandle(o);
    for (std::size_t i = 0; i < insertCount && !o.handles.failed(); ++i) {
        out.inserts.push_back(ReadHandle(o));
    }
    if (v >= Version::kR2000) out.layout = ReadHandle(o);
    return Ok(o);
}

bool ReadBlockBegin(ObjectStreams& o, BlockBeginRecord& out) {
    ReadEntityCommon(o, out.common);
    out.name = o.text().T();
    return Ok(o);
}

bool ReadCommonOnly(ObjectStreams& o, EntityCommon& out) {
    ReadEntityCommon(o, out);
    return Ok(o);
}

bool ReadInsert(ObjectStreams& o, InsertRecord& out, bool multiple) {
    ReadEntityCommon(o, out.common);
    BitReader& d = o.data;
    const Version v = d.version();
    out.position = d.BD3();
    out.scale = v >= Version::kR2000 ? ReadScale(d) : d.BD3();
    out.rotation = d.BD();
    out.normal = d.BD3();
    out.hasAttributes = d.B();
    std::int32_t owned = 0;
    if (v >= Version::kR2004 && out.hasAttributes) owned = OwnedCount(o);
    if (multiple) {
        out.columns = d.BS();
        out.rows = d.BS();
        out.columnSpacing = d.BD();
        out.rowSpacing = d.BD();
    }
    out.block = ReadHandle(o);
    if (out.hasAttributes) {
        OwnedList list;
        ReadOwnedHandles(o, owned, list);
        out.firstAttribute = list.first;
        out.lastAttribute = list.last;
        out.attributes = std::move(list.handles);
        out.seqend = list.seqend;
    }
    return Ok(o);
}

}  // namespace dwg
