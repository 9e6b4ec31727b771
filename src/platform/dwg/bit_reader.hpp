#pragma once
// The bit stream of DWG data: values packed most significant bit first, with the format's
// compressed codes (bit shorts, bit doubles, modular chars, handle references...). Reading past
// the end never touches memory outside the buffer: it marks the stream failed and gives zeros,
// so a decoder checks failed() once at the end of an object instead of after every value.
#include <bit>
#include <cstddef>
#include <cstring>
#include <cstdint>
#include <span>
#include <string>

namespace dwg {

// The file versions the reader knows, in the order of the format's history.
enum class Version { kR13, kR14, kR2000, kR2004, kR2007, kR2010, kR2013, kR2018 };

struct Point2 {
    double x = 0, y = 0;
};
struct Point3 {
    double x = 0, y = 0, z = 0;
};

// A handle reference: the code says how it refers (2 soft owner, 3 hard owner, 4 soft pointer,
// 5 hard pointer; 6, 8, 0xA, 0xC are relative to the object's own handle).
struct HandleRef {
    std::uint8_t code = 0;
    std::uint64_t value = 0;
    friend bool operator==(const HandleRef&, const HandleRef&) = default;
};

// A colour as the format stores it: an index, and from 2004 on a true colour and book names.
struct Color {
    std::int16_t index = 0;
    std::uint32_t rgb = 0;       // 0xC2RRGGBB style value as stored; 0 when none
    std::uint8_t flags = 0;      // 1: a colour name follows, 2: a book name follows
    std::string name;            // UTF-8
    std::string bookName;        // UTF-8
    std::uint32_t transparency = 0;
    bool hasTransparency = false;
    bool hasBookHandle = false;  // an entity colour refers to a colour object by handle
};

class BitReader {
public:
    BitReader() = default;
    BitReader(std::span<const std::uint8_t> data, Version version, int codePage = 1252)
        : data_(data), bitEnd_(data.size() * 8), version_(version), codePage_(codePage) {}

    Version version() const { return version_; }
    int codePage() const { return codePage_; }
    bool failed() const { return failed_; }
    std::size_t bitPosition() const { return bit_; }
    std::size_t bitEnd() const { return bitEnd_; }
    // Moves to a bit position; a position past the end marks the stream failed.
    void seekBit(std::size_t bit);
    // Limits the stream to its first `bits` bits (an object's data ends before its handles).
    void setBitEnd(std::size_t bits);
    void alignToByte() { bit_ = (bit_ + 7) & ~std::size_t{7}; }
    std::size_t bytePosition() const { return bit_ / 8; }
    std::span<const std::uint8_t> buffer() const { return data_; }

    // Raw values.
    bool B();
    std::uint8_t BB();
    std::uint8_t B3();  // 2007 on: up to three bits, stopping at the first 0
    std::uint8_t RC();
    std::uint16_t RS();
    std::uint32_t RL();
    double RD();
    std::uint64_t bits(unsigned count);  // up to 64 bits, first read is most significant

    // Compressed values.
    std::int16_t BS();
    std::int32_t BL();
    std::uint64_t BLL();
    double BD();
    double DD(double defaultValue);
    double BT();       // thickness: from 2000 a set bit means 0
    Point3 BE();       // extrusion: from 2000 a set bit means (0, 0, 1)
    std::int64_t MC();
    std::uint64_t UMC();
    std::uint32_t MS();
    std::int32_t OT();  // object type: BS before 2010, then a 2-bit coded short
    HandleRef H();
    // The handle a reference stands for, given the handle of the object that holds it.
    static std::uint64_t Absolute(const HandleRef& ref, std::uint64_t owner);

    Point2 RD2() { return {RD(), RD()}; }
    Point3 RD3() { return {RD(), RD(), RD()}; }
    Point2 BD2() { return {BD(), BD()}; }
    Point3 BD3() { return {BD(), BD(), BD()}; }
    Point2 DD2(const Point2& defaults);

    // Text: TV in the file's code page before 2007, TU (UTF-16) from 2007; both as UTF-8, with
    // the \U+ and \M+ escapes the file spells left for the record's reader (which keeps the
    // spelling for a writer).
    std::string TV();
    std::string TU();
    // The version's string: TV before 2007, TU from then on.
    std::string T() { return version_ >= Version::kR2007 ? TU() : TV(); }

    // A colour; from 2004 its names are texts, read from `text` (2007 on: the string stream).
    Color CMC(BitReader& text);
    Color CMC() { return CMC(*this); }
    Color ENC();

    // Bytes copied out (for data kept as it is, such as proxy data).
    std::string bytes(std::size_t count);

private:
    bool has(std::size_t count) const {
        return !failed_ && bit_ <= bitEnd_ && bitEnd_ - bit_ >= count;
    }
    bool need(std::size_t count) {
        if (!has(count)) {
            failed_ = true;
            return false;
        }
        return true;
    }

    std::span<const std::uint8_t> data_;
    std::size_t bit_ = 0;
    std::size_t bitEnd_ = 0;
    Version version_ = Version::kR2000;
    int codePage_ = 1252;
    bool failed_ = false;
};

// Inline, with the readers of a few bits: the decoders read most values a few bits at a time.
inline std::uint64_t BitReader::bits(unsigned count) {
    if (!need(count) || count == 0) return 0;
    if (count > 56) {
        const std::uint64_t high = bits(count - 32);
        return (high << 32) | bits(32);
    }
    // Up to 56 bits come from one eight-byte load at the current byte. Near the end of the
    // buffer the load takes the bytes there are: the zeros after them are never in the value.
    const std::size_t first = bit_ >> 3;
    std::uint64_t word = 0;
    if (data_.size() - first >= sizeof word) {
        std::memcpy(&word, data_.data() + first, sizeof word);
    } else {
        std::memcpy(&word, data_.data() + first, data_.size() - first);
    }
    if constexpr (std::endian::native == std::endian::little) word = __builtin_bswap64(word);
    const std::uint64_t value = (word << (bit_ & 7)) >> (64 - count);
    bit_ += count;
    return value;
}

inline bool BitReader::B() { return bits(1) != 0; }
inline std::uint8_t BitReader::BB() { return static_cast<std::uint8_t>(bits(2)); }
inline std::uint8_t BitReader::RC() { return static_cast<std::uint8_t>(bits(8)); }

}  // namespace dwg
