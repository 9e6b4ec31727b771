#include "platform/dwg/object_stream.hpp"

#include <string>

namespace dwg {
namespace {

void LocateStrings(ObjectStreams& o) {
    o.strings = o.data;
    std::size_t stringsStart = 0;
    if (!FindStringStream(o.data, o.dataEnd, o.strings, stringsStart)) {
        o.data.setBitEnd(0);  // marks the object failed for the caller
        o.data.seekBit(1);
        return;
    }
    o.data.setBitEnd(stringsStart);
}

// The head of the object at `start`: its size and, 2010 on, the size of its handle references.
struct Frame {
    std::size_t size = 0;          // bytes of the object, after its head and before its CRC
    std::uint64_t handleBits = 0;  // 2010 on
    std::size_t headBytes = 0;
};

// The head's values, read a byte at a time: an object starts on a byte, and every object's head
// is read, again when the object data is given back as the read goes. A modular short is
// little-endian words of 15 bits, the top bit of each saying another follows (three at most); a
// modular char the same of bytes of 7 bits (nine at most). False, and the value 0, when it runs
// past the data or is longer.
bool ModularShort(std::span<const std::uint8_t> bytes, std::size_t& at, std::uint32_t& value) {
    value = 0;
    for (unsigned shift = 0; shift < 32 && bytes.size() - at >= 2; shift += 15) {
        const auto word = static_cast<std::uint16_t>(bytes[at] | (bytes[at + 1] << 8));
        at += 2;
        if (!(word & 0x8000)) {
            value |= static_cast<std::uint32_t>(word) << shift;
            return true;
        }
        value |= static_cast<std::uint32_t>(word & 0x7FFF) << shift;
    }
    value = 0;
    return false;
}

bool ModularChar(std::span<const std::uint8_t> bytes, std::size_t& at, std::uint64_t& value) {
    value = 0;
    for (unsigned shift = 0; shift < 63 && at < bytes.size(); shift += 7) {
        const std::uint8_t byte = bytes[at++];
        value |= static_cast<std::uint64_t>(byte & 0x7F) << shift;
        if (!(byte & 0x80)) return true;
    }
    value = 0;
    return false;
}

// False when the head does not read or the object and its CRC run past the data.
bool FrameAt(std::span<const std::uint8_t> objects, std::size_t start, Version version, Frame& frame) {
    std::size_t at = start;
    std::uint32_t size = 0;
    bool read = ModularShort(objects, at, size);
    frame.size = size;
    if (read && version >= Version::kR2010) read = ModularChar(objects, at, frame.handleBits);
    frame.headBytes = at - start;
    return read && frame.size <= objects.size() - at && objects.size() - at - frame.size >= 2;
}

}  // namespace

std::size_t StoredExtent(std::span<const std::uint8_t> objects, std::size_t offset, Version version) {
    Frame frame;
    if (offset >= objects.size() || !FrameAt(objects, offset, version, frame)) return 0;
    return frame.headBytes + frame.size + 2;
}

bool OpenObject(std::span<const std::uint8_t> objects, std::int64_t offset, Version version,
                int codePage, ObjectStreams& out, MapError& error, bool checkCrc) {
    const auto start = static_cast<std::size_t>(offset);
    if (offset < 0 || start >= objects.size()) {
        error = {start, "object offset outside the object data"};
        return false;
    }
    // 2010 on, the size of the handle stream follows the size; the object's size counts after it.
    Frame frame;
    const bool fits = FrameAt(objects, start, version, frame);
    out.size = frame.size;
    if (!fits) {
        error = {start, "object of " + std::to_string(out.size) + " bytes runs past the data"};
        return false;
    }
    const std::uint64_t handleBits = frame.handleBits;
    const std::size_t sizeBytes = frame.headBytes;
    const std::size_t dataStart = start + sizeBytes;
    const auto bytes = objects.subspan(dataStart, out.size);
    const std::uint16_t stored = static_cast<std::uint16_t>(objects[dataStart + out.size] |
                                                            (objects[dataStart + out.size + 1] << 8));
    if (kCrcRefuses && checkCrc &&
        Crc16(0xC0C1, objects.subspan(start, sizeBytes + out.size)) != stored) {
        error = {start, "object CRC mismatch"};
        return false;
    }
    out.data = BitReader(bytes, version, codePage);
    out.type = out.data.OT();
    out.dataEnd = out.size * 8;
    if (version >= Version::kR2010) {
        out.dataEnd = handleBits > out.dataEnd ? 0 : out.dataEnd - handleBits;
    } else if (version >= Version::kR2000) {
        out.dataEnd = out.data.RL();
    }
    out.handle = out.data.H().value;
    out.handles = BitReader(bytes, version, codePage);
    if (version >= Version::kR2000) out.handles.seekBit(out.dataEnd);
    if (version >= Version::kR2007) {
        LocateStrings(out);
    } else if (version >= Version::kR2000) {
        out.data.setBitEnd(out.dataEnd);
    }
    if (out.data.failed() || out.handles.failed()) {
        error = {start, "object header does not fit the object"};
        return false;
    }
    return true;
}

// 2007 on, the strings sit at the end of the values, found from the last bit backwards: a flag,
// then their size in bits in one or two 15-bit words.
bool FindStringStream(const BitReader& data, std::size_t endBit, BitReader& strings,
                      std::size_t& stringsStart) {
    strings = data;
    stringsStart = endBit;
    if (endBit < 1) return false;
    BitReader tail = data;
    tail.seekBit(endBit - 1);
    if (!tail.B()) {
        stringsStart = endBit - 1;
        strings.seekBit(0);
        strings.setBitEnd(0);  // no strings: reading one fails the object
        return !tail.failed();
    }
    if (endBit < 17) return false;
    std::size_t sizeAt = endBit - 1 - 16;
    tail.seekBit(sizeAt);
    std::size_t bits = tail.RS();
    if (bits & 0x8000) {
        if (sizeAt < 16) return false;
        sizeAt -= 16;
        tail.seekBit(sizeAt);
        const std::size_t high = tail.RS();
        bits = (bits & 0x7FFF) | (high << 15);
    }
    if (tail.failed() || bits > sizeAt) return false;
    stringsStart = sizeAt - bits;
    strings.seekBit(stringsStart);
    strings.setBitEnd(sizeAt);
    return true;
}

void SeekHandles(ObjectStreams& object, std::uint32_t dataBits) {
    object.dataEnd = dataBits;
    object.handles.seekBit(dataBits);
    object.data.setBitEnd(dataBits);
}

}  // namespace dwg
