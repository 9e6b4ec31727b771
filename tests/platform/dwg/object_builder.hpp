#pragma once
// Builds one object of the object data as a given version lays it out: size, (2010 on) size of
// the handle stream, type, (2000 to 2007) size of the values, handle, values, (2007 on) string
// stream with its size and flag, handle stream, CRC.
#include <vector>

#include "platform/dwg/bit_reader.hpp"
#include "platform/dwg/bit_writer.hpp"
#include "platform/dwg/object_map.hpp"

namespace dwg_test {

struct ObjectParts {
    dwg::Version version = dwg::Version::kR2000;
    int type = 0;
    std::uint64_t handle = 0;
    BitWriter values;   // after the handle
    BitWriter strings;  // 2007 on
    BitWriter handles;
};

inline void AppendStrings(BitWriter& w, const BitWriter& strings) {
    if (strings.bit == 0) {
        w.B(false);
        return;
    }
    for (std::size_t i = 0; i < strings.bit; ++i) {
        w.B((strings.bytes[i / 8] >> (7 - i % 8)) & 1);
    }
    if (strings.bit >= 0x8000) {
        w.RS(static_cast<unsigned>(strings.bit >> 15));
        w.RS(static_cast<unsigned>(0x8000 | (strings.bit & 0x7FFF)));
    } else {
        w.RS(static_cast<unsigned>(strings.bit));
    }
    w.B(true);
}

inline void AppendBits(BitWriter& w, const BitWriter& part) {
    for (std::size_t i = 0; i < part.bit; ++i) w.B((part.bytes[i / 8] >> (7 - i % 8)) & 1);
}

inline std::vector<std::uint8_t> BuildObject(const ObjectParts& p) {
    using dwg::Version;
    // The values before the handle references, with a placeholder for their size in bits.
    BitWriter body;
    if (p.version >= Version::kR2010) {
        if (p.type < 256) {
            body.BB(0);
            body.RC(static_cast<unsigned>(p.type));
        } else {
            body.BB(2);
            body.RS(static_cast<unsigned>(p.type));
        }
    } else {
        body.BS(p.type);
    }
    const std::size_t sizeAt = body.bit;
    if (p.version >= Version::kR2000 && p.version < Version::kR2010) body.RL(0);
    body.H(0, p.handle);
    AppendBits(body, p.values);
    if (p.version >= Version::kR2007) AppendStrings(body, p.strings);
    const std::size_t dataBits = body.bit;
    if (p.version >= Version::kR2000 && p.version < Version::kR2010) {
        BitWriter size;
        size.RL(static_cast<std::uint32_t>(dataBits));
        for (int i = 0; i < 32; ++i) {
            const bool bit = (size.bytes[i / 8] >> (7 - i % 8)) & 1;
            auto& byte = body.bytes[(sizeAt + i) / 8];
            const auto mask = static_cast<std::uint8_t>(0x80 >> ((sizeAt + i) % 8));
            byte = bit ? (byte | mask) : (byte & ~mask);
        }
    }
    AppendBits(body, p.handles);
    const std::size_t handleBits = (body.bytes.size() * 8) - dataBits;
    BitWriter head;
    if (p.version >= Version::kR2010) {
        BitWriter umc;
        umc.UMC(handleBits);
        head.MS(static_cast<std::uint32_t>(body.bytes.size()));  // counted after the UMC
        AppendBits(head, umc);
    } else {
        head.MS(static_cast<std::uint32_t>(body.bytes.size()));
    }
    std::vector<std::uint8_t> out = head.bytes;
    out.insert(out.end(), body.bytes.begin(), body.bytes.end());
    const auto crc = dwg::Crc16(0xC0C1, out);
    out.push_back(static_cast<std::uint8_t>(crc));
    out.push_back(static_cast<std::uint8_t>(crc >> 8));
    return out;
}

// The common entity data (2000 on) of an entity in model space on a layer, nothing optional.
inline void WriteEntityCommon(ObjectParts& p, std::uint64_t layer) {
    using dwg::Version;
    BitWriter& w = p.values;
    w.BS(0);      // no extended data
    w.B(false);   // no preview
    w.BB(2);      // model space
    w.BL(0);      // reactors
    if (p.version >= Version::kR2004) w.B(true);   // no extension dictionary
    if (p.version >= Version::kR2013) w.B(false);  // no binary data
    if (p.version < Version::kR2004) w.B(true);    // no links
    w.BS(7);      // colour
    w.BD(1.0);    // linetype scale
    w.BB(0);      // linetype by layer
    w.BB(0);      // plot style by layer
    if (p.version >= Version::kR2007) {
        w.BB(0);
        w.RC(0);
    }
    if (p.version >= Version::kR2010) {
        w.B(false);
        w.B(false);
        w.B(false);
    }
    w.BS(0);  // visible
    w.RC(29);     // lineweight by layer
    p.handles.H(5, layer);
}

}  // namespace dwg_test
