#include "platform/dwg/r2004_pages.hpp"

#include <algorithm>
#include <bit>
#include <cstring>

namespace dwg {
namespace {

void PutLong(std::uint8_t* out, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) out[i] = static_cast<std::uint8_t>(value >> (8 * i));
}

void PutLongLong(std::uint8_t* out, std::uint64_t value) {
    PutLong(out, static_cast<std::uint32_t>(value));
    PutLong(out + 4, static_cast<std::uint32_t>(value >> 32));
}

}  // namespace

std::vector<std::uint8_t> MagicSequence(std::size_t count) {
    std::vector<std::uint8_t> out(count);
    std::uint32_t seed = 1;
    for (auto& byte : out) {
        seed = seed * 0x343FD + 0x269EC3;
        byte = static_cast<std::uint8_t>(seed >> 16);
    }
    return out;
}

std::uint32_t Crc32(std::span<const std::uint8_t> bytes) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (std::uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ (0xEDB88320 & (0 - (crc & 1)));
    }
    return ~crc;
}

std::array<std::uint8_t, 0x6C> EncryptFileHeader(const FileHeaderBlock& b) {
    std::array<std::uint8_t, 0x6C> out{};
    std::memcpy(out.data(), "AcFssFcAJMB", 12);
    std::uint8_t* p = out.data();
    PutLong(p + 0x0C, 0);
    PutLong(p + 0x10, 0x6C);
    PutLong(p + 0x14, 0x04);
    PutLong(p + 0x18, b.rootGap);
    PutLong(p + 0x1C, b.leftGap);
    PutLong(p + 0x20, b.rightGap);
    PutLong(p + 0x24, b.unknown);
    PutLong(p + 0x28, b.lastPageId);
    PutLongLong(p + 0x2C, b.lastPageEnd);
    PutLongLong(p + 0x34, b.secondHeaderAddress);
    PutLong(p + 0x3C, b.gapAmount);
    PutLong(p + 0x40, b.pageAmount);
    PutLong(p + 0x44, 0x20);
    PutLong(p + 0x48, 0x80);
    PutLong(p + 0x4C, 0x40);
    PutLong(p + 0x50, b.pageMapId);
    PutLongLong(p + 0x54, b.pageMapAddress);
    PutLong(p + 0x5C, b.sectionMapId);
    PutLong(p + 0x60, b.pageArraySize);
    PutLong(p + 0x64, b.gapArraySize);
    PutLong(p + 0x68, Crc32(out));  // over the whole block, its own field still zero
    const auto magic = MagicSequence(out.size());
    for (std::size_t i = 0; i < out.size(); ++i) out[i] ^= magic[i];
    return out;
}

namespace {

// The sums of sixteen bytes read as two little-endian words: the bytes at even places and those
// at odd places of each word spread into four 16-bit lanes, and a multiplication adds the lanes,
// each times its factor, into the top lane (no lane's sum reaches 2^16, so none carries).
constexpr std::uint64_t kLanes = 0x00FF00FF00FF00FF;
constexpr std::uint64_t kOnes = 0x0001000100010001;
// Byte k of the sixteen counts 16 - k times into the second sum: in the first word the even
// bytes 16, 14, 12, 10 times and the odd ones 15, 13, 11, 9 times, in the second 8, 6, 4, 2 and
// 7, 5, 3, 1 times (the lowest lane takes the top factor).
constexpr std::uint64_t kFirstEven = 0x0010000E000C000A, kFirstOdd = 0x000F000D000B0009;
constexpr std::uint64_t kSecondEven = 0x0008000600040002, kSecondOdd = 0x0007000500030001;

std::uint64_t LittleWord(const std::uint8_t* b) {
    std::uint64_t word = 0;
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(&word, b, sizeof word);
    } else {
        for (int k = 0; k < 8; ++k) word |= std::uint64_t{b[k]} << (8 * k);
    }
    return word;
}

}  // namespace

std::uint32_t PageChecksum(std::uint32_t seed, std::span<const std::uint8_t> bytes) {
    std::uint32_t sum1 = seed & 0xFFFF, sum2 = seed >> 16;
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t chunk = std::min<std::size_t>(0x15B0, bytes.size() - at);
        // Sixteen bytes a step: the second sum gains the first sum sixteen times and each byte
        // as many times as bytes follow it in the step, itself included.
        std::size_t i = 0;
        for (; chunk - i >= 16; i += 16) {
            const std::uint64_t first = LittleWord(bytes.data() + at + i);
            const std::uint64_t second = LittleWord(bytes.data() + at + i + 8);
            const std::uint64_t even1 = first & kLanes, odd1 = (first >> 8) & kLanes;
            const std::uint64_t even2 = second & kLanes, odd2 = (second >> 8) & kLanes;
            const std::uint64_t weighted =
                even1 * kFirstEven + odd1 * kFirstOdd + even2 * kSecondEven + odd2 * kSecondOdd;
            sum2 += 16 * sum1 + static_cast<std::uint32_t>(weighted >> 48);
            sum1 += static_cast<std::uint32_t>(((even1 + odd1 + even2 + odd2) * kOnes) >> 48);
        }
        for (; i < chunk; ++i) {
            sum1 += bytes[at + i];
            sum2 += sum1;
        }
        at += chunk;
        sum1 %= 0xFFF1;
        sum2 %= 0xFFF1;
    }
    return (sum2 << 16) | (sum1 & 0xFFFF);
}

std::array<std::uint8_t, 32> EncryptDataPageHeader(std::uint32_t sectionNumber,
                                                   std::uint32_t compressedSize,
                                                   std::uint32_t pageSize,
                                                   std::uint64_t startOffset,
                                                   std::span<const std::uint8_t> compressed,
                                                   std::uint64_t fileOffset) {
    std::array<std::uint8_t, 32> out{};
    std::uint8_t* p = out.data();
    const std::uint32_t dataChecksum = PageChecksum(0, compressed);
    PutLong(p, 0x4163043B);
    PutLong(p + 4, sectionNumber);
    PutLong(p + 8, compressedSize);
    PutLong(p + 12, pageSize);
    PutLongLong(p + 16, startOffset);
    PutLong(p + 28, dataChecksum);
    PutLong(p + 24, PageChecksum(dataChecksum, out));
    const auto mask = static_cast<std::uint32_t>(0x4164536B ^ fileOffset);
    for (std::size_t i = 0; i < out.size(); i += 4) {
        std::uint32_t value = 0;
        for (int k = 0; k < 4; ++k) value |= static_cast<std::uint32_t>(out[i + k]) << (8 * k);
        PutLong(p + i, value ^ mask);
    }
    return out;
}

std::array<std::uint8_t, 20> SystemPageHeader(std::uint32_t type, std::uint32_t dataSize,
                                              std::span<const std::uint8_t> compressed) {
    std::array<std::uint8_t, 20> out{};
    std::uint8_t* p = out.data();
    PutLong(p, type);
    PutLong(p + 4, dataSize);
    PutLong(p + 8, static_cast<std::uint32_t>(compressed.size()));
    PutLong(p + 12, 2);  // compression type: compressed
    PutLong(p + 16, PageChecksum(PageChecksum(0, out), compressed));
    return out;
}

// The first literal run's length: 4 to 18 in one byte (length - 3); longer runs start with a
// zero byte (15), add 255 for each zero byte that follows and end with a byte of the rest.
std::vector<std::uint8_t> CompressLiteral(std::span<const std::uint8_t> data) {
    std::vector<std::uint8_t> out;
    if (data.size() >= 1 && data.size() <= 3) return out;
    out.reserve(data.size() + data.size() / 255 + 8);
    const std::size_t length = data.size();
    if (length >= 4 && length <= 0x12) {
        out.push_back(static_cast<std::uint8_t>(length - 3));
    } else if (length > 0x12) {
        out.push_back(0);
        std::size_t rest = length - 0x12;
        while (rest > 0xFF) {
            out.push_back(0);
            rest -= 0xFF;
        }
        out.push_back(static_cast<std::uint8_t>(rest));
    }
    out.insert(out.end(), data.begin(), data.end());
    // The end code, followed by two zero bytes as the format's own writer leaves them.
    out.push_back(0x11);
    out.push_back(0);
    out.push_back(0);
    return out;
}

}  // namespace dwg

namespace dwg {
namespace {

void AppendLong(std::vector<std::uint8_t>& out, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

void AppendLongLong(std::vector<std::uint8_t>& out, std::uint64_t value) {
    AppendLong(out, static_cast<std::uint32_t>(value));
    AppendLong(out, static_cast<std::uint32_t>(value >> 32));
}

}  // namespace

std::vector<std::uint8_t> SectionMapBytes(const std::vector<SectionDescription>& sections) {
    std::vector<std::uint8_t> out;
    const auto count = static_cast<std::uint32_t>(sections.size());
    AppendLong(out, count);
    AppendLong(out, 2);
    AppendLong(out, 0x7400);
    AppendLong(out, 0);
    AppendLong(out, count);
    for (const SectionDescription& s : sections) {
        AppendLongLong(out, s.size);
        AppendLong(out, static_cast<std::uint32_t>(s.pages.size()));
        AppendLong(out, s.maxPageSize);
        AppendLong(out, 1);
        AppendLong(out, s.compressed);
        AppendLong(out, s.id);
        AppendLong(out, s.encrypted);
        std::uint8_t name[64] = {};
        std::memcpy(name, s.name.data(), std::min<std::size_t>(s.name.size(), 63));
        out.insert(out.end(), name, name + 64);
        for (const SectionPage& page : s.pages) {
            AppendLong(out, page.number);
            AppendLong(out, page.dataSize);
            AppendLongLong(out, page.startOffset);
        }
    }
    return out;
}

std::vector<std::uint8_t> PageMapBytes(
    const std::vector<std::pair<std::int32_t, std::int32_t>>& pages) {
    std::vector<std::uint8_t> out;
    out.reserve(pages.size() * 8);
    for (const auto& [number, size] : pages) {
        AppendLong(out, static_cast<std::uint32_t>(number));
        AppendLong(out, static_cast<std::uint32_t>(size));
    }
    return out;
}

}  // namespace dwg
