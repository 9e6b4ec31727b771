#pragma once
// The page layer of AC1018 files as a writer builds it: the encrypted file header block, the
// checksums and encrypted headers of pages, and the format's compression. Every check value is
// the one the format's readers verify.
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace dwg {

// The bytes the file header's 0x6C-byte block is XORed with: a linear congruential sequence
// seeded with 1, one byte per step.
std::vector<std::uint8_t> MagicSequence(std::size_t count);

// The plain values of the file header block (offsets 0x18 to 0x64 of the 0x6C bytes).
struct FileHeaderBlock {
    std::uint32_t rootGap = 0, leftGap = 0, rightGap = 0, unknown = 1;
    std::uint32_t lastPageId = 0;
    std::uint64_t lastPageEnd = 0, secondHeaderAddress = 0;
    std::uint32_t gapAmount = 0, pageAmount = 0;
    std::uint32_t pageMapId = 0;
    std::uint64_t pageMapAddress = 0;  // as stored: the file offset less 0x100
    std::uint32_t sectionMapId = 0, pageArraySize = 0, gapArraySize = 0;
};

// The 0x6C bytes as stored at offset 0x80: "AcFssFcAJMB", the values, the CRC-32 of the whole
// block (its own field zero), all XORed with the magic sequence.
std::array<std::uint8_t, 0x6C> EncryptFileHeader(const FileHeaderBlock& block);

// The standard CRC-32 (reflected 0xEDB88320) the header block is checked with.
std::uint32_t Crc32(std::span<const std::uint8_t> bytes);

// The page checksum: two sums modulo 0xFFF1 from a seed, taken in chunks of 0x15B0 bytes.
std::uint32_t PageChecksum(std::uint32_t seed, std::span<const std::uint8_t> bytes);

// A data page's 32-byte header: type 0x4163043B, section number, compressed and page sizes,
// start offset in the section, header checksum (seeded by the data checksum) and data
// checksum, each long XORed with 0x4164536B ^ the page's file offset.
std::array<std::uint8_t, 32> EncryptDataPageHeader(std::uint32_t sectionNumber,
                                                   std::uint32_t compressedSize,
                                                   std::uint32_t pageSize,
                                                   std::uint64_t startOffset,
                                                   std::span<const std::uint8_t> compressed,
                                                   std::uint64_t fileOffset);

// A system page's 20-byte header (page map 0x41630E3B, section map 0x4163003B): its checksum
// covers the header with a zero checksum, then the compressed data.
std::array<std::uint8_t, 20> SystemPageHeader(std::uint32_t type, std::uint32_t dataSize,
                                              std::span<const std::uint8_t> compressed);

// The format's compression as one literal run and the end code: every reader decompresses it.
// A first run cannot be 1 to 3 bytes long: such data gives an empty result (sections are longer:
// their sentinels alone take 16 bytes).
std::vector<std::uint8_t> CompressLiteral(std::span<const std::uint8_t> data);

}  // namespace dwg

namespace dwg {

// One page of a section as the section map lists it.
struct SectionPage {
    std::uint32_t number = 0;
    std::uint32_t dataSize = 0;
    std::uint64_t startOffset = 0;  // in the section's data
};

// One section's description in the section map (the first, unnamed one describes no data).
struct SectionDescription {
    std::uint64_t size = 0;
    std::uint32_t maxPageSize = 0x7400;
    std::uint32_t compressed = 2;  // 1 stored, 2 compressed
    std::uint32_t id = 0;
    std::uint32_t encrypted = 0;
    std::string name;  // at most 63 bytes: "AcDb:Header"...
    std::vector<SectionPage> pages;
};

// The section map's data before compression: the count, 2, 0x7400, 0, the count again, then
// each description (size, page count, sizes, flags, id, name in 64 bytes) with its pages.
std::vector<std::uint8_t> SectionMapBytes(const std::vector<SectionDescription>& sections);

// The page map's data before compression: page number and size of each page, in file order.
std::vector<std::uint8_t> PageMapBytes(
    const std::vector<std::pair<std::int32_t, std::int32_t>>& pages);

}  // namespace dwg
