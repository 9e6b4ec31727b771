#include "platform/dwg/encode_bits.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "platform/dxf/codepage.hpp"

namespace dwg {
namespace {

// The next code point of UTF-8 text; a malformed sequence gives U+FFFD and moves one byte on.
unsigned NextCodePoint(std::string_view text, std::size_t& i) {
    const auto lead = static_cast<unsigned char>(text[i++]);
    if (lead < 0x80) return lead;
    const unsigned length = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : 0;
    if (length == 0 || i + length > text.size()) return 0xFFFD;
    unsigned value = lead & (0x3F >> length);
    for (unsigned k = 0; k < length; ++k) {
        const auto next = static_cast<unsigned char>(text[i + k]);
        if ((next & 0xC0) != 0x80) return 0xFFFD;
        value = (value << 6) | (next & 0x3F);
    }
    i += length;
    return value;
}

}  // namespace

// The bits after the last one written are zeros: padding is moving on.
void BitWriter::alignToByte() { bit_ = (bit_ + 7) & ~std::size_t{7}; }

void BitWriter::grow() {
    bytes_.resize(std::max<std::size_t>({bit_ / 8 + 8, 2 * bytes_.size(), 64}));
}

void BitWriter::longBits(std::uint64_t value, unsigned count) {
    bits(value >> 32, count - 32);
    bits(value & 0xFFFFFFFFu, 32);
}

// In one eight-byte word when the buffer reaches that far (it mostly does: it is kept longer
// than the bytes written); otherwise a byte's share of the bits at a time.
void BitWriter::patchBits(std::size_t position, std::uint64_t value, unsigned count) {
    const std::size_t first = position / 8;
    const auto skip = static_cast<unsigned>(position & 7);
    if (count > 0 && skip + count <= 64 && first + 8 <= bytes_.size()) {
        std::uint64_t word;
        std::memcpy(&word, bytes_.data() + first, sizeof word);
        word = __builtin_bswap64(word);
        const unsigned shift = 64 - skip - count;
        const std::uint64_t ones = (count == 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1) << shift;
        word = (word & ~ones) | ((value << shift) & ones);
        word = __builtin_bswap64(word);
        std::memcpy(bytes_.data() + first, &word, sizeof word);
        return;
    }
    while (count > 0) {
        const unsigned room = 8 - static_cast<unsigned>(position & 7);
        const unsigned take = count < room ? count : room;
        count -= take;
        const unsigned shift = room - take;
        const unsigned ones = (1u << take) - 1;
        std::uint8_t& byte = bytes_[position >> 3];
        byte = static_cast<std::uint8_t>((byte & ~(ones << shift)) | (((value >> count) & ones) << shift));
        position += take;
    }
}

void BitWriter::B3(unsigned value) {
    // Ones up to the value's length, then a zero unless all three bits are ones.
    const unsigned ones = value == 7 ? 3 : value == 6 ? 2 : value == 2 ? 1 : 0;
    for (unsigned i = 0; i < ones; ++i) B(true);
    if (ones < 3) B(false);
}

// The raw values are little-endian: their bytes reversed, written as one value.
void BitWriter::RS(unsigned value) { bits(__builtin_bswap16(static_cast<std::uint16_t>(value)), 16); }

void BitWriter::RL(std::uint32_t value) { bits(__builtin_bswap32(value), 32); }

void BitWriter::RD(double value) {
    std::uint64_t raw;
    std::memcpy(&raw, &value, sizeof raw);
    bits(__builtin_bswap64(raw), 64);
}

void BitWriter::BS(int value) {
    const auto u = static_cast<std::uint16_t>(value);
    if (u == 0) {
        BB(2);
    } else if (u == 256) {
        BB(3);
    } else if (u < 256) {
        BB(1);
        RC(u);
    } else {
        BB(0);
        RS(u);
    }
}

void BitWriter::BL(std::int32_t value) {
    const auto u = static_cast<std::uint32_t>(value);
    if (u == 0) {
        BB(2);
    } else if (u < 256) {
        BB(1);
        RC(u);
    } else {
        BB(0);
        RL(u);
    }
}

void BitWriter::BLL(std::uint64_t value) {
    unsigned count = 0;
    for (std::uint64_t v = value; v; v >>= 8) ++count;
    bits(count, 3);
    for (unsigned i = 0; i < count; ++i) RC(static_cast<unsigned>(value >> (8 * i)));
}

void BitWriter::BD(double value) {
    if (value == 1.0) {
        BB(1);
    } else if (value == 0.0 && !std::signbit(value)) {
        BB(2);
    } else {
        BB(0);
        RD(value);
    }
}

// Only the bytes that differ from the default: none, the low four, the low six, or all eight.
void BitWriter::DD(double value, double defaultValue) {
    unsigned char raw[8], base[8];
    std::memcpy(raw, &value, sizeof raw);
    std::memcpy(base, &defaultValue, sizeof base);
    if (std::memcmp(raw, base, 8) == 0) {
        BB(0);
    } else if (std::memcmp(raw + 4, base + 4, 4) == 0) {
        BB(1);
        for (int i = 0; i < 4; ++i) RC(raw[i]);
    } else if (std::memcmp(raw + 6, base + 6, 2) == 0) {
        BB(2);
        RC(raw[4]);
        RC(raw[5]);
        for (int i = 0; i < 4; ++i) RC(raw[i]);
    } else {
        BB(3);
        RD(value);
    }
}

void BitWriter::BT(double thickness) {
    if (version_ >= Version::kR2000) {
        const bool zero = thickness == 0.0 && !std::signbit(thickness);
        B(zero);
        if (zero) return;
    }
    BD(thickness);
}

void BitWriter::BE(const Point3& extrusion) {
    if (version_ >= Version::kR2000) {
        const bool normal = extrusion.x == 0.0 && extrusion.y == 0.0 && extrusion.z == 1.0 &&
                            !std::signbit(extrusion.x) && !std::signbit(extrusion.y);
        B(normal);
        if (normal) return;
    }
    BD3(extrusion);
}

void BitWriter::MC(std::int64_t value) {
    const bool negative = value < 0;
    auto u = negative ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
    // Seven bits a byte; the last byte has six and the sign.
    while (u >= 0x40) {
        RC(0x80 | (u & 0x7F));
        u >>= 7;
    }
    RC(static_cast<unsigned>(u | (negative ? 0x40 : 0)));
}

void BitWriter::UMC(std::uint64_t value) {
    while (value >= 0x80) {
        RC(0x80 | (value & 0x7F));
        value >>= 7;
    }
    RC(static_cast<unsigned>(value));
}

void BitWriter::MS(std::uint32_t value) {
    while (value >= 0x8000) {
        RS(0x8000 | (value & 0x7FFF));
        value >>= 15;
    }
    RS(value);
}

void BitWriter::OT(std::int32_t type) {
    if (version_ < Version::kR2010) {
        BS(type);
    } else if (type >= 0 && type < 256) {
        BB(0);
        RC(static_cast<unsigned>(type));
    } else if (type >= 0x1F0 && type < 0x1F0 + 256) {
        BB(1);
        RC(static_cast<unsigned>(type - 0x1F0));
    } else {
        BB(2);
        RS(static_cast<unsigned>(type));
    }
}

void BitWriter::H(const HandleRef& ref) {
    unsigned count = 0;
    for (std::uint64_t v = ref.value; v; v >>= 8) ++count;
    bits((static_cast<unsigned>(ref.code & 0xF) << 4) | count, 4 + 4);
    bits(ref.value, 8 * count);
}

// The length counts the terminating zero, as the format's own writers store it.
void BitWriter::TV(std::string_view utf8) {
    if (utf8.empty()) {
        BS(0);
        return;
    }
    std::string raw;
    dxf::EncodeText(utf8, codePage_, raw);
    BS(static_cast<int>(raw.size() + 1));
    bytes(raw);
    RC(0);
}

void BitWriter::TU(std::string_view utf8) {
    std::u16string units;
    for (std::size_t i = 0; i < utf8.size();) {
        const unsigned code = NextCodePoint(utf8, i);
        if (code >= 0x10000) {
            units.push_back(static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10)));
            units.push_back(static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF)));
        } else {
            units.push_back(static_cast<char16_t>(code));
        }
    }
    BS(static_cast<int>(units.size()));
    for (char16_t unit : units) RS(unit);
}

// From 2004 the index is stored as 0: the colour value holds it (by layer, by block, an index
// or a true colour); a colour given by its index alone gets the value of that index.
void BitWriter::CMC(const Color& color) {
    if (version_ < Version::kR2004) {
        BS(color.index);
        return;
    }
    BS(0);
    std::uint32_t value = color.rgb;
    if (value == 0) {
        value = color.index == 256 ? 0xC0000000u
                : color.index == 0 ? 0xC1000000u
                                   : 0xC3000000u | static_cast<std::uint32_t>(color.index & 0xFF);
    }
    BL(static_cast<std::int32_t>(value));
    RC(color.flags);
    if (color.flags & 1) T(color.name);
    if (color.flags & 2) T(color.bookName);
}

// From 2004 on the short's top bits say what follows: a true colour, a colour object's handle,
// a transparency.
void BitWriter::ENC(const Color& color) {
    if (version_ < Version::kR2004) {
        BS(color.index);
        return;
    }
    unsigned value = static_cast<unsigned>(color.index) & 0x1FF;
    // A colour of a colour book is its reference: the true colour lives in the colour object.
    const bool trueColor = color.rgb != 0 && !color.hasBookHandle;
    if (color.rgb != 0 || color.hasBookHandle) value |= 0x8000;
    if (color.hasBookHandle) value |= 0x4000;
    if (color.hasTransparency) value |= 0x2000;
    BS(static_cast<int>(value));
    if (trueColor) BL(static_cast<std::int32_t>(color.rgb));
    if (color.hasTransparency) BL(static_cast<std::int32_t>(color.transparency));
}

void BitWriter::bytes(std::string_view raw) {
    if ((bit_ & 7) == 0) {
        if (bytes_.size() < bit_ / 8 + raw.size() + 8) bytes_.resize(bit_ / 8 + raw.size() + 8);
        if (!raw.empty()) std::memcpy(bytes_.data() + bit_ / 8, raw.data(), raw.size());
        bit_ += raw.size() * 8;
        return;
    }
    for (unsigned char c : raw) RC(c);
}

}  // namespace dwg
