#include "platform/dwg/encode_object.hpp"

#include <algorithm>
#include <string_view>

namespace dwg {
namespace {

// The buffers an object begins with: the values and the handles of most objects fit.
constexpr std::size_t kObjectBytes = 96;
constexpr std::size_t kHandleBytes = 16;

void WriteExtendedData(BitWriter& d, const std::vector<ExtendedData>& extended) {
    for (const ExtendedData& eed : extended) {
        d.BS(static_cast<int>(eed.bytes.size()));
        d.H(kHardPointer, eed.application);
        d.bytes(eed.bytes);
    }
    d.BS(0);
}

void WriteOwnership(ObjectWriter& o, const ObjectCommon& common, bool ownerGiven) {
    if (ownerGiven) o.handles.H(OwnerReference(o.handle, common.owner));
    for (std::uint64_t reactor : common.reactors) WriteHandle(o, kSoftPointer, reactor);
    if (common.extensionDictionary != 0) WriteHandle(o, kHardOwner, common.extensionDictionary);
}

// 2004 says with a bit that there is no extension dictionary; earlier files always refer to
// one (a null handle when there is none).
void WriteReactorsAndDictionaryFlag(BitWriter& d, const ObjectCommon& common) {
    d.BL(static_cast<std::int32_t>(common.reactors.size()));
    if (d.version() >= Version::kR2004) d.B(common.extensionDictionary == 0);
}

}  // namespace

HandleRef OwnerReference(std::uint64_t self, std::uint64_t owner) {
    if (owner < self && self - owner < owner) {
        return self - owner == 1 ? HandleRef{kOneBack, 0} : HandleRef{kBack, self - owner};
    }
    if (owner > self) {
        return owner - self == 1 ? HandleRef{kOneAhead, 0} : HandleRef{kAhead, owner - self};
    }
    return {kSoftPointer, owner};
}

ObjectWriter BeginObject(std::int32_t type, std::uint64_t handle, Version version,
                         int codePage) {
    ObjectWriter o{handle, 0, BitWriter(version, codePage), BitWriter(version, codePage)};
    o.data.reserve(kObjectBytes);
    o.handles.reserve(kHandleBytes);
    o.data.OT(type);
    o.dataSizeAt = o.data.bitPosition();
    o.data.RL(0);  // the values' size in bits, known at the end
    o.data.H(0, handle);
    return o;
}

ObjectWriter BeginEntity(std::int32_t type, const EntityCommon& common,
                         const EncodeOptions& options) {
    ObjectWriter o = BeginObject(type, common.handle, options.version, options.codePage);
    WriteEntityCommon(o, common);
    return o;
}

void WriteHandle(ObjectWriter& o, std::uint8_t code, std::uint64_t handle) {
    o.handles.H(code, handle);
}

void WriteObjectCommon(ObjectWriter& o, const ObjectCommon& common) {
    WriteExtendedData(o.data, common.extended);
    WriteReactorsAndDictionaryFlag(o.data, common);
    WriteOwnership(o, common, true);
    if (o.data.version() < Version::kR2004 && common.extensionDictionary == 0) {
        WriteHandle(o, kHardOwner, 0);
    }
}

void WriteEntityCommon(ObjectWriter& o, const EntityCommon& common) {
    BitWriter& d = o.data;
    const Version v = d.version();
    WriteExtendedData(d, common.extended);
    d.B(!common.preview.empty());
    if (!common.preview.empty()) {
        d.RL(static_cast<std::uint32_t>(common.preview.size()));
        d.bytes(common.preview);
    }
    d.BB(common.mode);
    WriteReactorsAndDictionaryFlag(d, common);
    if (v < Version::kR2004) d.B(common.noLinks);
    if (v >= Version::kR2004) {
        d.ENC(common.color);
    } else {
        d.CMC(common.color);
    }
    d.BD(common.linetypeScale);
    d.BB(common.linetypeFlags);
    d.BB(common.plotStyleFlags);
    d.BS(common.invisible);
    d.RC(common.lineweight);

    WriteOwnership(o, common, common.mode == 0);
    if (v < Version::kR2004 && common.extensionDictionary == 0) WriteHandle(o, kHardOwner, 0);
    if (v < Version::kR2004 && !common.noLinks) {
        WriteHandle(o, kSoftPointer, common.previous);
        WriteHandle(o, kSoftPointer, common.next);
    }
    if (v >= Version::kR2004 && common.color.hasBookHandle) {
        WriteHandle(o, kHardPointer, common.colorBook);
    }
    WriteHandle(o, kHardPointer, common.layer);
    if (common.linetypeFlags == 3) WriteHandle(o, kHardPointer, common.linetype);
    if (common.plotStyleFlags == 3) WriteHandle(o, kHardPointer, common.plotStyle);
}

std::vector<std::uint8_t> FinishObject(ObjectWriter& o) {
    BitWriter& d = o.data;
    const std::size_t valueBits = d.bitPosition();
    // Little-endian as RL writes it: the bytes reversed, as one value.
    d.patchBits(o.dataSizeAt, __builtin_bswap32(static_cast<std::uint32_t>(valueBits)), 32);
    // The handles follow the values at once, not at a byte boundary.
    const std::size_t handleBits = o.handles.bitPosition();
    const auto& handles = o.handles.buffer();
    // Seven bytes of them at a time, the most that one call takes.
    for (std::size_t bit = 0; bit < handleBits; bit += 56) {
        const unsigned count = static_cast<unsigned>(std::min<std::size_t>(56, handleBits - bit));
        std::uint64_t word = 0;
        for (std::size_t k = 0; k < (count + 7) / 8; ++k) word = (word << 8) | handles[bit / 8 + k];
        d.bits(word >> ((8 - count % 8) % 8), count);
    }
    // The last byte is filled with set bits, as AutoCAD fills it.
    const unsigned rest = static_cast<unsigned>((8 - d.bitPosition() % 8) % 8);
    d.bits((1u << rest) - 1, rest);
    // The size is coded in the handles' buffer, whose bits are now among the values.
    return FramedObject(d.take(), o.handles);
}

std::vector<std::uint8_t> FramedObject(std::vector<std::uint8_t> out, BitWriter& size) {
    size.clear();
    size.MS(static_cast<std::uint32_t>(out.size()));
    out.reserve(size.buffer().size() + out.size() + 2);
    out.insert(out.begin(), size.buffer().begin(), size.buffer().end());
    const std::uint16_t crc = Crc16(0xC0C1, out);
    out.push_back(static_cast<std::uint8_t>(crc & 0xFF));
    out.push_back(static_cast<std::uint8_t>(crc >> 8));
    return out;
}

}  // namespace dwg
