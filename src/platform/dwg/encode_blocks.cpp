#include "platform/dwg/encode_blocks.hpp"

#include "platform/dwg/encode_tables.hpp"
#include "platform/dwg/entities.hpp"

namespace dwg {
namespace {

// The scale of a reference from 2000: two bits say which factors are 1 or equal to x.
void WriteScale(BitWriter& d, const Point3& s) {
    if (s.x == 1.0 && s.y == 1.0 && s.z == 1.0) {
        d.BB(3);
    } else if (s.x == 1.0) {
        d.BB(1);
        d.DD(s.y, 1.0);
        d.DD(s.z, 1.0);
    } else if (s.y == s.x && s.z == s.x) {
        d.BB(2);
        d.RD(s.x);
    } else {
        d.BB(0);
        d.RD(s.x);
        d.DD(s.y, s.x);
        d.DD(s.z, s.x);
    }
}

}  // namespace

// Owned entities: a first and last handle before 2004, the list from then on (its count is
// among the values).
void WriteOwned(ObjectWriter& o, std::uint64_t first, std::uint64_t last,
                const std::vector<std::uint64_t>& handles) {
    if (o.data.version() < Version::kR2004) {
        WriteHandle(o, kSoftPointer, first);
        WriteHandle(o, kSoftPointer, last);
        return;
    }
    for (std::uint64_t handle : handles) WriteHandle(o, kHardOwner, handle);
}

void WriteOwnedHandles(ObjectWriter& o, const OwnedList& owned) {
    WriteOwned(o, owned.first, owned.last, owned.handles);
    WriteHandle(o, kHardOwner, owned.seqend);
}

std::vector<std::uint8_t> EncodeBlockHeader(const BlockHeaderRecord& b,
                                            const EncodeOptions& options) {
    ObjectWriter o = BeginObject(kBlockHeader, b.entry.common.handle, options.version,
                                 options.codePage);
    WriteTableEntry(o, b.entry);
    BitWriter& d = o.data;
    d.B(b.anonymous);
    d.B(b.hasAttributes);
    d.B(b.isXref);
    d.B(b.isOverlaid);
    d.B(b.loaded);
    const bool ownsEntities = !b.isXref && !b.isOverlaid;
    const bool listed = options.version >= Version::kR2004;
    if (listed && ownsEntities) d.BL(static_cast<std::int32_t>(b.entities.size()));
    d.BD3(b.base);
    d.T(b.xrefPath);
    // One non-zero byte for each reference of the block, then a zero.
    for (std::size_t i = 0; i < b.inserts.size(); ++i) d.RC(1);
    d.RC(0);
    d.T(b.description);
    d.BL(static_cast<std::int32_t>(b.preview.size()));
    d.bytes(b.preview);

    WriteHandle(o, kHardPointer, b.entry.xrefBlock);
    WriteHandle(o, kHardOwner, b.blockEntity);
    if (ownsEntities) WriteOwned(o, b.firstEntity, b.lastEntity, b.entities);
    WriteHandle(o, kHardOwner, b.endBlock);
    for (std::uint64_t insert : b.inserts) WriteHandle(o, kSoftPointer, insert);
    WriteHandle(o, kHardPointer, b.layout);
    return FinishObject(o);
}

std::vector<std::uint8_t> EncodeBlockBegin(const BlockBeginRecord& begin,
                                           const EncodeOptions& options) {
    ObjectWriter o = BeginEntity(kBlock, begin.common, options);
    o.data.T(begin.name);
    return FinishObject(o);
}

std::vector<std::uint8_t> EncodeCommonOnly(const EntityCommon& common, std::int32_t type,
                                           const EncodeOptions& options) {
    ObjectWriter o = BeginEntity(type, common, options);
    return FinishObject(o);
}

std::vector<std::uint8_t> EncodeInsert(const InsertRecord& insert, bool multiple,
                                       const EncodeOptions& options) {
    ObjectWriter o = BeginEntity(multiple ? kMinsert : kInsert, insert.common, options);
    BitWriter& d = o.data;
    d.BD3(insert.position);
    WriteScale(d, insert.scale);
    d.BD(insert.rotation);
    d.BD3(insert.normal);
    d.B(insert.hasAttributes);
    if (options.version >= Version::kR2004 && insert.hasAttributes) {
        d.BL(static_cast<std::int32_t>(insert.attributes.size()));
    }
    if (multiple) {
        d.BS(insert.columns);
        d.BS(insert.rows);
        d.BD(insert.columnSpacing);
        d.BD(insert.rowSpacing);
    }
    WriteHandle(o, kHardPointer, insert.block);
    if (insert.hasAttributes) {
        WriteOwnedHandles(o, {insert.firstAttribute, insert.lastAttribute, insert.attributes,
                              insert.seqend});
    }
    return FinishObject(o);
}

}  // namespace dwg
