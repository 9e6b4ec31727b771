#include "platform/dwg/bit_reader.hpp"

#include <algorithm>
#include <cstring>

#include "platform/dxf/codepage.hpp"

namespace dwg {

void BitReader::seekBit(std::size_t bit) {
    if (bit > bitEnd_) {
        failed_ = true;
        bit_ = bitEnd_;
        return;
    }
    bit_ = bit;
}

void BitReader::setBitEnd(std::size_t bits) {
    if (bits > data_.size() * 8) {
        failed_ = true;
        bits = data_.size() * 8;
    }
    bitEnd_ = bits;
    if (bit_ > bitEnd_) failed_ = true;
}

std::uint8_t BitReader::B3() {
    std::uint8_t value = 0;
    for (int i = 0; i < 3; ++i) {
        const bool bit = B();
        value = static_cast<std::uint8_t>((value << 1) | (bit ? 1 : 0));
        if (!bit) break;
    }
    return value;
}

// Raw values are stored low byte first: the bits read high byte first, byte-swapped. At the
// end of the stream the bytes that are there are still read, one by one.
std::uint16_t BitReader::RS() {
    if (has(16)) return __builtin_bswap16(static_cast<std::uint16_t>(bits(16)));
    const std::uint16_t low = RC();
    return static_cast<std::uint16_t>(low | (RC() << 8));
}

std::uint32_t BitReader::RL() {
    if (has(32)) return __builtin_bswap32(static_cast<std::uint32_t>(bits(32)));
    const std::uint32_t low = RS();
    return low | (static_cast<std::uint32_t>(RS()) << 16);
}

double BitReader::RD() {
    const std::uint64_t low = RL();
    const std::uint64_t raw = low | static_cast<std::uint64_t>(RL()) << 32;
    double value;
    std::memcpy(&value, &raw, sizeof value);
    return value;
}

std::int16_t BitReader::BS() {
    switch (BB()) {
        case 0: return static_cast<std::int16_t>(RS());
        case 1: return RC();
        case 2: return 0;
        default: return 256;
    }
}

std::int32_t BitReader::BL() {
    switch (BB()) {
        case 0: return static_cast<std::int32_t>(RL());
        case 1: return RC();
        case 2: return 0;
        default: failed_ = true; return 0;  // the code 3 is not used by the format
    }
}

std::uint64_t BitReader::BLL() {
    const unsigned count = static_cast<unsigned>(bits(3));
    std::uint64_t value = 0;
    for (unsigned i = 0; i < count; ++i) value |= static_cast<std::uint64_t>(RC()) << (8 * i);
    return value;
}

double BitReader::BD() {
    switch (BB()) {
        case 0: return RD();
        case 1: return 1.0;
        case 2: return 0.0;
        default: failed_ = true; return 0.0;
    }
}

// A double stored as the bytes that differ from a default: the default's low four bytes, or its
// low four and the next two, are replaced by what follows.
double BitReader::DD(double defaultValue) {
    const std::uint8_t code = BB();
    if (code == 0) return defaultValue;
    if (code == 3) return RD();
    unsigned char raw[8];
    std::memcpy(raw, &defaultValue, sizeof raw);
    if (code == 2) {
        raw[4] = RC();
        raw[5] = RC();
    }
    for (int i = 0; i < 4; ++i) raw[i] = RC();
    double value;
    std::memcpy(&value, raw, sizeof value);
    return value;
}

Point2 BitReader::DD2(const Point2& defaults) {
    const double x = DD(defaults.x);
    return {x, DD(defaults.y)};
}

double BitReader::BT() {
    if (version_ >= Version::kR2000 && B()) return 0.0;
    return BD();
}

Point3 BitReader::BE() {
    if (version_ >= Version::kR2000 && B()) return {0, 0, 1};
    return BD3();
}

std::int64_t BitReader::MC() {
    std::uint64_t value = 0;
    unsigned shift = 0;
    for (int i = 0; i < 9; ++i) {
        const std::uint8_t byte = RC();
        if (failed_) return 0;
        if (byte & 0x80) {
            value |= static_cast<std::uint64_t>(byte & 0x7F) << shift;
            shift += 7;
            continue;
        }
        // The last byte holds six value bits and the sign.
        value |= static_cast<std::uint64_t>(byte & 0x3F) << shift;
        const auto magnitude = static_cast<std::int64_t>(value);
        return (byte & 0x40) ? -magnitude : magnitude;
    }
    failed_ = true;
    return 0;
}

std::uint64_t BitReader::UMC() {
    std::uint64_t value = 0;
    for (unsigned shift = 0; shift < 63; shift += 7) {
        const std::uint8_t byte = RC();
        if (failed_) return 0;
        value |= static_cast<std::uint64_t>(byte & 0x7F) << shift;
        if (!(byte & 0x80)) return value;
    }
    failed_ = true;
    return 0;
}

std::uint32_t BitReader::MS() {
    std::uint32_t value = 0;
    for (unsigned shift = 0; shift < 32; shift += 15) {
        const std::uint16_t word = RS();
        if (failed_) return 0;
        if (!(word & 0x8000)) return value | (static_cast<std::uint32_t>(word) << shift);
        value |= static_cast<std::uint32_t>(word & 0x7FFF) << shift;
    }
    failed_ = true;
    return 0;
}

std::int32_t BitReader::OT() {
    if (version_ < Version::kR2010) return static_cast<std::uint16_t>(BS());
    switch (BB()) {
        case 0: return RC();
        case 1: return RC() + 0x1F0;
        default: return RS();
    }
}

HandleRef BitReader::H() {
    HandleRef ref;
    ref.code = static_cast<std::uint8_t>(bits(4));
    const unsigned counter = static_cast<unsigned>(bits(4));
    for (unsigned i = 0; i < counter; ++i) ref.value = (ref.value << 8) | RC();
    return ref;
}

std::uint64_t BitReader::Absolute(const HandleRef& ref, std::uint64_t owner) {
    switch (ref.code) {
        case 6: return owner + 1;
        case 8: return owner - 1;
        case 0xA: return owner + ref.value;
        case 0xC: return owner - ref.value;
        default: return ref.value;
    }
}

std::string BitReader::TV() {
    const auto length = static_cast<std::uint16_t>(BS());
    if (!need(std::size_t{length} * 8)) return {};
    std::string raw = bytes(length);
    // Writers often count the terminating zero.
    while (!raw.empty() && raw.back() == '\0') raw.pop_back();
    std::string text;
    dxf::DecodeCodePage(raw, codePage_, text);
    return text;
}

std::string BitReader::TU() {
    const auto length = static_cast<std::uint16_t>(BS());
    if (!need(std::size_t{length} * 16)) return {};
    std::string text;
    text.reserve(length);
    for (std::uint16_t i = 0; i < length; ++i) {
        unsigned unit = RS();
        if (unit == 0) {
            // A terminator counted in the length: skip what is left of it.
            bit_ += std::size_t{length - i - 1u} * 16;
            break;
        }
        if (unit >= 0xD800 && unit < 0xDC00 && i + 1 < length) {
            const unsigned low = RS();
            ++i;
            if (low >= 0xDC00 && low < 0xE000) {
                unit = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
            } else {
                dxf::AppendUtf8(text, 0xFFFD);
                unit = low;
            }
        }
        dxf::AppendUtf8(text, unit);
    }
    return text;
}

namespace {

std::int16_t IndexOfColorValue(std::uint32_t rgb) {
    switch (rgb >> 24) {
        case 0xC0: return 256;
        case 0xC3: return static_cast<std::int16_t>(rgb & 0xFF);
        default: return 0;  // by block, or a true colour (no index)
    }
}

}  // namespace

Color BitReader::CMC(BitReader& text) {
    Color color;
    color.index = BS();
    if (version_ < Version::kR2004) return color;
    color.rgb = static_cast<std::uint32_t>(BL());
    color.flags = RC();
    // From 2004 the index is stored as 0 and the value says it: by layer, by block, or an index.
    if (color.index == 0) color.index = IndexOfColorValue(color.rgb);
    if (color.flags & 1) color.name = text.T();
    if (color.flags & 2) color.bookName = text.T();
    return color;
}

// An entity's colour from 2004 on: the short carries flags in its top bits that say what follows.
Color BitReader::ENC() {
    Color color;
    const auto value = static_cast<std::uint16_t>(BS());
    if (version_ < Version::kR2004) {
        color.index = static_cast<std::int16_t>(value);
        return color;
    }
    color.index = static_cast<std::int16_t>(value & 0x1FF);
    // A colour of a colour book is a reference to its colour object, whose values are there.
    color.hasBookHandle = (value & 0x4000) != 0;
    if ((value & 0x8000) && !color.hasBookHandle) color.rgb = static_cast<std::uint32_t>(BL());
    if (value & 0x2000) {
        color.hasTransparency = true;
        color.transparency = static_cast<std::uint32_t>(BL());
    }
    return color;
}

std::string BitReader::bytes(std::size_t count) {
    if (!need(count * 8)) return {};
    std::string out(count, '\0');
    if ((bit_ & 7) == 0) {
        std::memcpy(out.data(), data_.data() + bit_ / 8, count);
        bit_ += count * 8;
        return out;
    }
    for (auto& c : out) c = static_cast<char>(RC());
    return out;
}

}  // namespace dwg
