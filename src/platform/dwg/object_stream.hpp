#pragma once
// One object of the object data cut into its streams: the values, the strings (a stream of its
// own from 2007 on) and the handle references, which follow the values.
#include <cstdint>
#include <span>

#include "platform/dwg/bit_reader.hpp"
#include "platform/dwg/object_map.hpp"

namespace dwg {

struct ObjectStreams {
    std::int32_t type = 0;
    std::uint64_t handle = 0;
    std::size_t size = 0;     // bytes of the object, after its size and before its CRC
    std::size_t dataEnd = 0;  // bit where the values end and the handle references begin
    BitReader data;           // at the value after the handle (the extended data)
    BitReader strings;        // 2007 on: the string stream
    BitReader handles;        // at the first handle reference (R13/R14: set by SeekHandles)

    // The stream the object's texts are read from.
    BitReader& text() { return data.version() >= Version::kR2007 ? strings : data; }
};

// Frames the object at a byte offset of the object data and checks its CRC (unless checkCrc is
// false: an object opened again). False with the offset and reason when the object runs past
// the data or its CRC does not match.
bool OpenObject(std::span<const std::uint8_t> objects, std::int64_t offset, Version version,
                int codePage, ObjectStreams& out, MapError& error, bool checkCrc = true);

// The bytes the object at a byte offset of the object data takes there, as OpenObject frames
// it: its size (2010 on, and the size of its handle references), its data and its CRC. 0 when it
// runs past the data.
std::size_t StoredExtent(std::span<const std::uint8_t> objects, std::size_t offset, Version version);

// 2007 on: the string stream of values that end at endBit; stringsStart is where the values
// give way to the strings. False when the stored size does not fit.
bool FindStringStream(const BitReader& data, std::size_t endBit, BitReader& strings,
                      std::size_t& stringsStart);

// R13 and R14 give the size of the values late in the object (after the extended data and the
// preview): the reader calls this when it meets that size.
void SeekHandles(ObjectStreams& object, std::uint32_t dataBits);

}  // namespace dwg
