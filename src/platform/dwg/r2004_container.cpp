// The page container of AC1018 and of 2010 to 2018: after the plain file header, a 0x6C-byte
// block XORed with the magic sequence and checked by CRC-32 says where the page map is. The
// page map gives every page's number and size (pages follow each other from 0x100); the section
// map, a page of its own, gives each section's pages. Data pages have a 32-byte header XORed
// with a mask of their address, and two checksums.
#include <algorithm>
#include <array>
#include <cstring>
#include <unordered_map>

#include "platform/dwg/container_pages.hpp"
#include "platform/dwg/decompress.hpp"
#include "platform/dwg/r2004_pages.hpp"
#include "platform/dwg/raw_bytes.hpp"

namespace dwg {
namespace {

constexpr std::size_t kHeaderBlockAt = 0x80;
constexpr std::size_t kHeaderBlockSize = 0x6C;
constexpr std::uint64_t kFirstPage = 0x100;
constexpr std::uint32_t kPageMapType = 0x41630E3B;
constexpr std::uint32_t kSectionMapType = 0x4163003B;
constexpr std::uint32_t kDataPageType = 0x4163043B;
constexpr std::size_t kSystemPageHeader = 20;
constexpr std::size_t kDataPageHeader = 32;
constexpr std::uint32_t kCompressed = 2;

struct PageLocation {
    std::uint64_t address = 0;
    std::uint32_t size = 0;
};
using PageTable = std::unordered_map<std::int32_t, PageLocation>;

bool Fail(MapError& error, std::size_t offset, std::string reason) {
    error = {offset, std::move(reason)};
    return false;
}

std::string Hex(std::uint32_t value) {
    static const char kDigits[] = "0123456789ABCDEF";
    std::string out = "0x";
    for (int shift = 28; shift >= 0; shift -= 4) out += kDigits[(value >> shift) & 0xF];
    return out;
}

// The block at 0x80, decrypted and checked: its signature and its CRC-32, taken with the CRC
// field zero.
bool ReadHeaderBlock(std::span<const std::uint8_t> file, FileHeaderBlock& block,
                     MapError& error) {
    if (!Fits(kHeaderBlockAt, kHeaderBlockSize, file.size()))
        return Fail(error, file.size(), "the file header is truncated");
    std::vector<std::uint8_t> plain(file.begin() + kHeaderBlockAt,
                                    file.begin() + kHeaderBlockAt + kHeaderBlockSize);
    const std::vector<std::uint8_t> magic = MagicSequence(plain.size());
    for (std::size_t i = 0; i < plain.size(); ++i) plain[i] ^= magic[i];
    if (std::memcmp(plain.data(), "AcFssFcAJMB", 12) != 0)
        return Fail(error, kHeaderBlockAt, "the file header block does not decrypt to its signature");
    const std::uint32_t stored = RawLong(plain, 0x68);
    std::memset(plain.data() + 0x68, 0, 4);
    if (Crc32(plain) != stored) return Fail(error, kHeaderBlockAt + 0x68, "file header CRC-32 mismatch");
    block.lastPageId = RawLong(plain, 0x28);
    block.pageAmount = RawLong(plain, 0x40);
    block.pageMapId = RawLong(plain, 0x50);
    block.pageMapAddress = RawLongLong(plain, 0x54);
    block.sectionMapId = RawLong(plain, 0x5C);
    return true;
}

// A page map or section map page: a 20-byte header (type, decompressed and compressed sizes,
// compression, checksum over the header with a zero checksum and then the data).
bool ReadSystemPage(std::span<const std::uint8_t> file, std::uint64_t address,
                    std::uint32_t type, const std::string& what, std::vector<std::uint8_t>& out,
                    MapError& error) {
    if (!Fits(address, kSystemPageHeader, file.size()))
        return Fail(error, address, "the " + what + " page lies past the end of the file");
    const std::size_t at = static_cast<std::size_t>(address);
    const std::span<const std::uint8_t> header = file.subspan(at, kSystemPageHeader);
    if (RawLong(header, 0) != type)
        return Fail(error, at, "the " + what + " page has type " + Hex(RawLong(header, 0)));
    const std::uint32_t dataSize = RawLong(header, 4), compressedSize = RawLong(header, 8);
    if (!Fits(at + kSystemPageHeader, compressedSize, file.size()))
        return Fail(error, at, "the " + what + " page runs past the end of the file");
    const std::span<const std::uint8_t> data = file.subspan(at + kSystemPageHeader, compressedSize);
    std::uint8_t zeroed[kSystemPageHeader];
    std::memcpy(zeroed, header.data(), 16);
    std::memset(zeroed + 16, 0, 4);
    if (PageChecksum(PageChecksum(0, zeroed), data) != RawLong(header, 16))
        return Fail(error, at, "the " + what + " page checksum does not match");
    if (RawLong(header, 12) != kCompressed) {
        out.assign(data.begin(), data.end());
    } else {
        DecompressError bad;
        if (!Decompress2004(data, dataSize, out, bad))
            return Fail(error, at + kSystemPageHeader + bad.offset,
                        "bad compressed data in the " + what + ": " + bad.reason);
    }
    if (out.size() != dataSize)
        return Fail(error, at, "the " + what + " holds " + std::to_string(out.size()) +
                                   " bytes, not " + std::to_string(dataSize));
    return true;
}

// Page numbers and sizes in file order; a negative number is a gap, with four more values.
bool ReadPageMap(std::span<const std::uint8_t> file, const FileHeaderBlock& block,
                 PageTable& pages, MapError& error) {
    const std::uint64_t address = block.pageMapAddress + kFirstPage;
    std::vector<std::uint8_t> data;
    if (!ReadSystemPage(file, address, kPageMapType, "page map", data, error)) return false;
    std::uint64_t next = kFirstPage;
    for (std::size_t at = 0; at < data.size();) {
        if (!Fits(at, 8, data.size())) return Fail(error, address, "the page map data is truncated");
        const auto number = static_cast<std::int32_t>(RawLong(data, at));
        const std::uint32_t size = RawLong(data, at + 4);
        at += number < 0 ? 24 : 8;
        if (number >= 0) pages[number] = {next, size};
        next += size;
    }
    return true;
}

// The section map's descriptions: sizes, compression, id and name, then the pages.
bool ParseSectionMap(std::span<const std::uint8_t> data, std::uint64_t address,
                     std::vector<SectionDescription>& out, MapError& error) {
    const auto truncated = [&] { return Fail(error, address, "the section map data is truncated"); };
    if (data.size() < 20) return truncated();
    const std::uint32_t count = RawLong(data, 0);
    std::size_t at = 20;
    for (std::uint32_t i = 0; i < count; ++i) {
        if (!Fits(at, 96, data.size())) return truncated();
        SectionDescription s;
        s.size = RawLongLong(data, at);
        const std::uint32_t pageCount = RawLong(data, at + 8);
        s.maxPageSize = RawLong(data, at + 12);
        s.compressed = RawLong(data, at + 20);
        s.id = RawLong(data, at + 24);
        s.encrypted = RawLong(data, at + 28);
        const auto* name = reinterpret_cast<const char*>(data.data() + at + 32);
        s.name.assign(name, strnlen(name, 64));
        at += 96;
        if (pageCount > (data.size() - at) / 16) return truncated();
        for (std::uint32_t p = 0; p < pageCount; ++p, at += 16) {
            s.pages.push_back({RawLong(data, at), RawLong(data, at + 4), RawLongLong(data, at + 8)});
        }
        out.push_back(std::move(s));
    }
    return true;
}

// A data page's header, decrypted: type, section, compressed size, page size, start offset,
// header checksum, data checksum.
struct DataPageHeader {
    std::array<std::uint8_t, kDataPageHeader> plain{};
    std::uint32_t type() const { return RawLong(plain, 0); }
    std::uint32_t section() const { return RawLong(plain, 4); }
    std::uint32_t compressedSize() const { return RawLong(plain, 8); }
    std::uint64_t startOffset() const { return RawLongLong(plain, 16); }
    std::uint32_t headerChecksum() const { return RawLong(plain, 24); }
    std::uint32_t dataChecksum() const { return RawLong(plain, 28); }
};

DataPageHeader DecryptPageHeader(std::span<const std::uint8_t> file, std::size_t at) {
    DataPageHeader header;
    const auto mask = static_cast<std::uint32_t>(0x4164536B ^ at);
    for (std::size_t i = 0; i < kDataPageHeader; i += 4) {
        const std::uint32_t value = RawLong(file, at + i) ^ mask;
        for (int k = 0; k < 4; ++k) header.plain[i + k] = static_cast<std::uint8_t>(value >> (8 * k));
    }
    return header;
}

// One page of a section, checked and decompressed, appended to the section's data.
bool ReadDataPage(std::span<const std::uint8_t> file, const PageTable& pages,
                  const SectionDescription& section, const SectionPage& page,
                  std::vector<std::uint8_t>& data, std::size_t& budget, MapError& error) {
    const auto found = pages.find(static_cast<std::int32_t>(page.number));
    if (found == pages.end())
        return Fail(error, kHeaderBlockAt, section.name + " page " + std::to_string(page.number) +
                                               " is not in the page map");
    const std::uint64_t address = found->second.address;
    if (!Fits(address, kDataPageHeader, file.size()))
        return Fail(error, address, section.name + " page lies past the end of the file");
    const auto at = static_cast<std::size_t>(address);
    const DataPageHeader header = DecryptPageHeader(file, at);
    if (header.type() != kDataPageType || header.section() != section.id)
        return Fail(error, at, "the page at this offset is no data page of " + section.name);
    if (!Fits(at + kDataPageHeader, header.compressedSize(), file.size()))
        return Fail(error, at, section.name + " page runs past the end of the file");
    const auto stored = file.subspan(at + kDataPageHeader, header.compressedSize());
    if (PageChecksum(0, stored) != header.dataChecksum())
        return Fail(error, at, section.name + " page data checksum does not match");
    DataPageHeader zeroed = header;
    std::memset(zeroed.plain.data() + 24, 0, 4);
    if (PageChecksum(header.dataChecksum(), zeroed.plain) != header.headerChecksum())
        return Fail(error, at, section.name + " page header checksum does not match");
    if (header.startOffset() != data.size() || page.startOffset != data.size())
        return Fail(error, at, section.name + " page does not start where the data before it ends");
    std::vector<std::uint8_t> plain;
    if (section.compressed == kCompressed) {
        DecompressError bad;
        if (!Decompress2004(stored, std::min<std::size_t>(section.maxPageSize, budget), plain, bad))
            return Fail(error, at + kDataPageHeader + bad.offset,
                        "bad compressed data in " + section.name + ": " + bad.reason);
    } else {
        plain.assign(stored.begin(), stored.end());
    }
    // The last page is padded to the page size: only the section's size is its data.
    const std::size_t keep = std::min<std::uint64_t>(plain.size(), section.size - data.size());
    data.insert(data.end(), plain.begin(), plain.begin() + static_cast<std::ptrdiff_t>(keep));
    budget -= std::min(budget, plain.size());
    return true;
}

bool ReadSection(std::span<const std::uint8_t> file, const PageTable& pages,
                 const SectionDescription& section, std::vector<std::uint8_t>& data,
                 std::size_t& budget, MapError& error) {
    if (section.encrypted == 1)
        return Fail(error, kHeaderBlockAt, section.name + " is encrypted (a password-protected drawing)");
    // The data grows once, to the size the section gives (no more than decoding may make).
    data.reserve(static_cast<std::size_t>(std::min<std::uint64_t>(section.size, budget)));
    for (const SectionPage& page : section.pages) {
        if (data.size() >= section.size) break;
        if (!ReadDataPage(file, pages, section, page, data, budget, error)) return false;
    }
    // A writer may list a section with a size but no pages (the 4-byte AcDb:Template of some
    // AC1018 files): nothing of it is stored, so it is kept empty.
    if (data.size() != section.size && !section.pages.empty())
        return Fail(error, kHeaderBlockAt, section.name + " holds " + std::to_string(data.size()) +
                                               " bytes, not " + std::to_string(section.size));
    return true;
}

}  // namespace

bool ReadR2004Container(std::span<const std::uint8_t> file, DwgContainer& out, MapError& error) {
    FileHeaderBlock block;
    if (!ReadHeaderBlock(file, block, error)) return false;
    PageTable pages;
    if (!ReadPageMap(file, block, pages, error)) return false;
    const auto sectionMap = pages.find(static_cast<std::int32_t>(block.sectionMapId));
    if (sectionMap == pages.end())
        return Fail(error, kHeaderBlockAt, "the section map page is not in the page map");
    std::vector<std::uint8_t> mapData;
    if (!ReadSystemPage(file, sectionMap->second.address, kSectionMapType, "section map", mapData,
                        error))
        return false;
    std::vector<SectionDescription> sections;
    if (!ParseSectionMap(mapData, sectionMap->second.address, sections, error)) return false;
    std::size_t budget = DecodeBudget(file.size());
    for (const SectionDescription& section : sections) {
        if (section.name.empty()) continue;  // the first description stands for no data
        std::vector<std::uint8_t> data;
        if (!ReadSection(file, pages, section, data, budget, error)) return false;
        out.buffers.push_back(std::move(data));
        out.sections.push_back({section.name, out.buffers.back()});
    }
    return RequireDrawingSections(out, sectionMap->second.address, error);
}

}  // namespace dwg
