#pragma once
// Writes objects of the object data: the mirror of OpenObject and the common readers. An object
// is built as two streams, its values and its handle references, then framed as the file stores
// it: its size, the values, the handles, and the CRC. Files of 2000 and 2004 are written (the
// object layout the two share; 2007's string stream is not written).
#include <cstdint>
#include <vector>

#include "platform/dwg/common.hpp"
#include "platform/dwg/encode_bits.hpp"

namespace dwg {

// Handle reference codes a writer uses: absolute handles, and for an object's owner the
// distance from the object's own handle (one ahead, one back, ahead by, back by).
enum HandleCode : std::uint8_t {
    kSoftOwner = 2, kHardOwner = 3, kSoftPointer = 4, kHardPointer = 5,
    kOneAhead = 6, kOneBack = 8, kAhead = 0xA, kBack = 0xC
};

struct EncodeOptions {
    Version version = Version::kR2004;
    int codePage = 1252;
};

struct ObjectWriter {
    std::uint64_t handle = 0;
    std::size_t dataSizeAt = 0;  // bit of the values' size, written when the object ends
    BitWriter data;
    BitWriter handles;
};

// Starts an object of a type: its type, the place of its data size, and its handle.
ObjectWriter BeginObject(std::int32_t type, std::uint64_t handle, Version version,
                         int codePage);
// Starts an entity: BeginObject and the common entity data.
ObjectWriter BeginEntity(std::int32_t type, const EntityCommon& common,
                         const EncodeOptions& options);
void WriteHandle(ObjectWriter& o, std::uint8_t code, std::uint64_t handle);
// The reference to an object's owner as AutoCAD codes it: by its distance from the object's
// handle (ahead or back) where that distance is below the owner's handle, otherwise by the
// owner's handle. The object's other references are absolute.
HandleRef OwnerReference(std::uint64_t self, std::uint64_t owner);
void WriteObjectCommon(ObjectWriter& o, const ObjectCommon& common);
void WriteEntityCommon(ObjectWriter& o, const EntityCommon& common);
// The object as the object data holds it: size (MS), values, handles, CRC.
std::vector<std::uint8_t> FinishObject(ObjectWriter& o);
// An object's bytes (its values and handles) framed as the file stores them: its size before
// them, its CRC after; scratch is a buffer to code the size in.
std::vector<std::uint8_t> FramedObject(std::vector<std::uint8_t> bytes, BitWriter& scratch);

}  // namespace dwg
