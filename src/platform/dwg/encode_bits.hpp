#pragma once
// Writes DWG bit streams: the mirror of BitReader. Every value goes in the format's coding, most
// significant bit first; the compressed codes take their shortest form, as the format's writers
// do, so what BitReader reads back is the value given.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dwg/bit_reader.hpp"

namespace dwg {

class BitWriter {
public:
    explicit BitWriter(Version version = Version::kR2004, int codePage = 1252)
        : version_(version), codePage_(codePage) {}

    Version version() const { return version_; }
    int codePage() const { return codePage_; }
    std::size_t bitPosition() const { return bit_; }
    // The bytes written: up to the one that holds the last bit.
    const std::vector<std::uint8_t>& buffer() const {
        bytes_.resize(byteLength());
        return bytes_;
    }
    // The same without cutting the buffer: valid up to the next value written.
    std::span<const std::uint8_t> written() const { return {bytes_.data(), byteLength()}; }
    std::vector<std::uint8_t> take() {
        bytes_.resize(byteLength());
        return std::move(bytes_);
    }
    // Room for this many bytes before the buffer grows.
    void reserve(std::size_t bytes) {
        if (bytes_.size() < bytes) bytes_.resize(bytes);
    }
    // Empty again, keeping the buffer's room.
    void clear() { bit_ = 0; }
    // Pads with zero bits to the next byte.
    void alignToByte();
    // Overwrites `count` bits at a bit position already written (sizes known only afterwards).
    void patchBits(std::size_t position, std::uint64_t value, unsigned count);

    // Raw values.
    // First written is most significant. The bits of the byte begun and the new ones are put
    // together in one word, stored most significant byte first over that byte and the seven
    // after it (zeros past the value, as the buffer keeps them). Values are many: written here,
    // where the values' coding sees it, rather than a call and a step per byte.
    void bits(std::uint64_t value, unsigned count) {
        if (count > 56) {
            longBits(value, count);
            return;
        }
        if (count == 0) return;
        room();
        std::uint8_t* at = bytes_.data() + bit_ / 8;
        const auto used = static_cast<unsigned>(bit_ & 7);
        bit_ += count;
        const std::uint64_t word = (static_cast<std::uint64_t>(*at >> (8 - used)) << count) |
                                   (value & ((std::uint64_t{1} << count) - 1));
        const std::uint64_t stored = __builtin_bswap64(word << (64 - used - count));
        std::memcpy(at, &stored, sizeof stored);
    }
    void B(bool value) { bits(value ? 1 : 0, 1); }
    void BB(unsigned value) { bits(value & 3, 2); }
    void B3(unsigned value);  // 2007 on: 0, 2 (10), 6 (110) or 7 (111)
    void RC(unsigned value) { bits(value & 0xFF, 8); }
    void RS(unsigned value);
    void RL(std::uint32_t value);
    void RD(double value);

    // Compressed values.
    void BS(int value);
    void BL(std::int32_t value);
    void BLL(std::uint64_t value);  // a three-bit byte count: values below 2^56
    void BD(double value);
    void DD(double value, double defaultValue);
    void BT(double thickness);
    void BE(const Point3& extrusion);
    void MC(std::int64_t value);
    void UMC(std::uint64_t value);
    void MS(std::uint32_t value);
    void OT(std::int32_t type);
    void H(const HandleRef& ref);
    void H(std::uint8_t code, std::uint64_t value) { H(HandleRef{code, value}); }

    void RD2(const Point2& p) { RD(p.x); RD(p.y); }
    void RD3(const Point3& p) { RD(p.x); RD(p.y); RD(p.z); }
    void BD2(const Point2& p) { BD(p.x); BD(p.y); }
    void BD3(const Point3& p) { BD(p.x); BD(p.y); BD(p.z); }
    void DD2(const Point2& p, const Point2& defaults) { DD(p.x, defaults.x); DD(p.y, defaults.y); }

    // Text from UTF-8: TV in the writer's code page, TU as UTF-16.
    void TV(std::string_view utf8);
    void TU(std::string_view utf8);
    void T(std::string_view utf8) { version_ >= Version::kR2007 ? TU(utf8) : TV(utf8); }

    void CMC(const Color& color);
    void ENC(const Color& color);

    void bytes(std::string_view raw);

private:
    std::size_t byteLength() const { return (bit_ + 7) / 8; }
    // Room for eight bytes from the byte that holds the next bit.
    void room() {
        if (bytes_.size() < bit_ / 8 + 8) grow();
    }
    void grow();
    void longBits(std::uint64_t value, unsigned count);  // more than 56 bits

    // Longer than the bytes written while they are being written, by zeros: a value's bytes go
    // in with one eight-byte store. buffer() cuts it to the bytes written.
    mutable std::vector<std::uint8_t> bytes_;
    std::size_t bit_ = 0;
    Version version_;
    int codePage_;
};

}  // namespace dwg
