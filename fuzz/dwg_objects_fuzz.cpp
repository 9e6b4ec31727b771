// Feeds arbitrary bytes to the DWG object decoders. The first byte picks the version, the rest
// is the body of one object; the harness frames it with its size and a matching CRC so that the
// decoders, not the CRC check, meet the bytes. The same bytes also go to the object map and
// classes parsers, and framed as a header section to the header variables.
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/dwg/classes.hpp"
#include "platform/dwg/decode.hpp"
#include "platform/dwg/header.hpp"

namespace {

std::vector<std::uint8_t> Frame(std::span<const std::uint8_t> body) {
    std::vector<std::uint8_t> out;
    std::size_t size = body.size();
    // The modular-short size, fifteen bits a word.
    while (size >= 0x8000) {
        out.push_back(static_cast<std::uint8_t>(size));
        out.push_back(static_cast<std::uint8_t>(0x80 | ((size >> 8) & 0x7F)));
        size >>= 15;
    }
    out.push_back(static_cast<std::uint8_t>(size));
    out.push_back(static_cast<std::uint8_t>(size >> 8));
    out.insert(out.end(), body.begin(), body.end());
    const auto crc = dwg::Crc16(0xC0C1, out);
    out.push_back(static_cast<std::uint8_t>(crc));
    out.push_back(static_cast<std::uint8_t>(crc >> 8));
    return out;
}

// The header section's sentinel, size and CRC around the bytes.
std::vector<std::uint8_t> HeaderSection(std::span<const std::uint8_t> body) {
    std::vector<std::uint8_t> out = {0xCF, 0x7B, 0x1F, 0x23, 0xFD, 0xDE, 0x38, 0xA9,
                                     0x5F, 0x7C, 0x68, 0xB8, 0x4E, 0x6D, 0x33, 0x5F};
    const auto size = static_cast<std::uint32_t>(body.size());
    for (int i = 0; i < 4; ++i) out.push_back(static_cast<std::uint8_t>(size >> (8 * i)));
    out.insert(out.end(), body.begin(), body.end());
    const auto crc = dwg::Crc16(0xC0C1, std::span(out).subspan(16));
    out.push_back(static_cast<std::uint8_t>(crc));
    out.push_back(static_cast<std::uint8_t>(crc >> 8));
    return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const auto version = static_cast<dwg::Version>(data[0] % 8);
    const std::span<const std::uint8_t> body(data + 1, size - 1);
    const auto object = Frame(body);
    dwg::ObjectStreams streams;
    dwg::MapError error;
    if (dwg::OpenObject(object, 0, version, 936, streams, error)) {
        dwg::DecodedObject decoded;
        dwg::DecodeObject(streams, {}, decoded);
    }
    std::vector<dwg::ObjectLocation> map;
    dwg::ParseObjectMap(body, map, error);
    std::vector<dwg::ClassRecord> classes;
    dwg::ParseClasses(body, version, 0, 936, classes, error);
    dwg::HeaderVariables header;
    dwg::ParseHeader(HeaderSection(body), version, 0, 936, header, error);
    return 0;
}
