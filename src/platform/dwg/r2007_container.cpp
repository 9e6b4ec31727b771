// The page container of AC1021 (2007). At 0x80, three Reed-Solomon blocks hold the file header
// (compressed): where the page map and the section map are, and how they are coded. The page
// map gives every page's id and size (pages follow each other from 0x480); the section map,
// with UTF-16 names, gives each section's pages with their sizes. System pages are Reed-Solomon
// coded with 239 data bytes a block, data pages of coding 4 with 251; all pages may be
// compressed by the 2007 compression.
#include <algorithm>
#include <unordered_map>

#include "platform/dwg/container_pages.hpp"
#include "platform/dwg/decompress.hpp"
#include "platform/dwg/raw_bytes.hpp"
#include "platform/dwg/reed_solomon.hpp"

namespace dwg {
namespace {

constexpr std::size_t kHeaderAt = 0x80;
constexpr std::size_t kHeaderBlocks = 3;
constexpr std::size_t kHeaderDataSize = 0x110;  // the decoded file header: 34 64-bit values
constexpr std::uint64_t kFirstPage = 0x480;
constexpr std::size_t kBlockSize = 255;
constexpr std::uint64_t kStored = 1, kCodedAndCompressed = 4;

struct PageLocation {
    std::uint64_t address = 0, size = 0;
};
using PageTable = std::unordered_map<std::int64_t, PageLocation>;

// A system page as the file header describes it.
struct SystemPage {
    std::uint64_t compressedSize = 0, size = 0, correction = 0;
};

// The file header values this reader uses, by their index among the 64-bit values.
struct FileHeader {
    SystemPage pageMap, sectionMap;
    std::uint64_t pageMapOffset = 0;  // from 0x480
    std::uint64_t sectionMapId = 0;
};

bool Fail(MapError& error, std::uint64_t offset, std::string reason) {
    error = {static_cast<std::size_t>(offset), std::move(reason)};
    return false;
}

std::uint64_t Align8(std::uint64_t size) { return (size + 7) & ~std::uint64_t{7}; }

// Decompresses the data of the page at `pageAt` into exactly `size` bytes, or keeps it when it
// is stored. The data is interleaved in the file: a fault is told by its place in the data.
bool Expand(std::span<const std::uint8_t> data, std::uint64_t size, std::uint64_t pageAt,
            const std::string& what, std::vector<std::uint8_t>& out, MapError& error) {
    if (data.size() >= size) {
        out.assign(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(size));
        return true;
    }
    DecompressError bad;
    if (!Decompress2007(data, static_cast<std::size_t>(size), out, bad))
        return Fail(error, pageAt, "bad compressed data in " + what + " (byte " +
                                       std::to_string(bad.offset) + " of its data): " + bad.reason);
    if (out.size() != size)
        return Fail(error, pageAt, what + " decompresses to " + std::to_string(out.size()) +
                                       " bytes, not " + std::to_string(size));
    return true;
}

bool ReadFileHeader(std::span<const std::uint8_t> file, FileHeader& out, MapError& error) {
    if (!Fits(kHeaderAt, kBlockSize * kHeaderBlocks, file.size()))
        return Fail(error, file.size(), "the file header is truncated");
    std::vector<std::uint8_t> coded;
    const std::size_t bad = DecodeInterleaved(file.subspan(kHeaderAt), kHeaderBlocks,
                                              kSystemPageCode, coded);
    if (bad != kHeaderBlocks)
        return Fail(error, kHeaderAt, "the file header fails its Reed-Solomon check (block " +
                                          std::to_string(bad) + ")");
    // A CRC, a key and the data's CRC (64 bits each), then the compressed size: negative when
    // the data is stored.
    const auto length = static_cast<std::int32_t>(RawLong(coded, 24));
    const std::uint64_t stored =
        static_cast<std::uint64_t>(length < 0 ? -static_cast<std::int64_t>(length) : length);
    if (stored > coded.size() - 32)
        return Fail(error, kHeaderAt, "the file header's data size " + std::to_string(length) +
                                          " does not fit its blocks");
    std::vector<std::uint8_t> plain;
    const auto data = std::span<const std::uint8_t>(coded).subspan(32, stored);
    if (length < 0) {
        plain.assign(data.begin(), data.end());
        if (plain.size() < kHeaderDataSize) return Fail(error, kHeaderAt, "the file header is truncated");
    } else if (!Expand(data, kHeaderDataSize, kHeaderAt, "the file header", plain, error)) {
        return false;
    }
    const auto value = [&](std::size_t index) { return RawLongLong(plain, 8 * index); };
    out.pageMap = {value(10), value(11), value(3)};
    out.pageMapOffset = value(7);
    out.sectionMap = {value(22), value(25), value(27)};
    out.sectionMapId = value(24);
    return true;
}

// A system page: Reed-Solomon blocks enough for the compressed data (rounded to 8 bytes)
// times the correction factor, then the data decompressed when it is smaller than its size.
bool ReadSystemPage(std::span<const std::uint8_t> file, std::uint64_t address,
                    const SystemPage& page, const std::string& what,
                    std::vector<std::uint8_t>& out, MapError& error) {
    if (page.correction == 0 || page.compressedSize > file.size() || page.correction > 0xFFFF ||
        page.size > DecodeBudget(file.size()))
        return Fail(error, kHeaderAt, "the file header gives " + what + " impossible sizes");
    const std::uint64_t blocks = (Align8(page.compressedSize) * page.correction + 238) / 239;
    if (!Fits(address, blocks * kBlockSize, file.size()))
        return Fail(error, address, "the " + what + " page runs past the end of the file");
    std::vector<std::uint8_t> coded;
    const std::size_t bad = DecodeInterleaved(file.subspan(static_cast<std::size_t>(address)),
                                              blocks, kSystemPageCode, coded);
    if (bad != blocks)
        return Fail(error, address, "the " + what + " page fails its Reed-Solomon check (block " +
                                        std::to_string(bad) + ")");
    return Expand(std::span<const std::uint8_t>(coded).first(page.compressedSize), page.size,
                  address, "the " + what, out, error);
}

// Page sizes and ids in file order; a negative id is free space, which takes its room too.
bool ReadPageMap(std::span<const std::uint8_t> file, const FileHeader& header, PageTable& pages,
                 MapError& error) {
    const std::uint64_t address = kFirstPage + header.pageMapOffset;
    if (header.pageMapOffset > file.size())
        return Fail(error, kHeaderAt, "the page map lies past the end of the file");
    std::vector<std::uint8_t> data;
    if (!ReadSystemPage(file, address, header.pageMap, "page map", data, error)) return false;
    if (data.size() % 16 != 0) return Fail(error, address, "the page map data is truncated");
    std::uint64_t next = kFirstPage;
    for (std::size_t at = 0; at < data.size(); at += 16) {
        const std::uint64_t size = RawLongLong(data, at);
        const auto id = static_cast<std::int64_t>(RawLongLong(data, at + 8));
        if (id >= 0) pages[id] = {next, size};
        if (size > file.size()) return Fail(error, address, "the page map gives a page larger than the file");
        next += size;
    }
    return true;
}

// One section of the section map: eight 64-bit values, the UTF-16 name, then seven values a page.
struct SectionEntry {
    std::uint64_t size = 0, encryption = 0, nameBytes = 0, coding = 0, pageCount = 0;
    std::string name;
    struct Page {
        std::uint64_t offset = 0, id = 0, size = 0, compressedSize = 0;
    };
    std::vector<Page> pages;
};

// Section names are ASCII ("AcDb:Header") written as UTF-16 with a closing zero.
std::string NameOf(std::span<const std::uint8_t> utf16) {
    std::string name;
    for (std::size_t i = 0; i + 1 < utf16.size(); i += 2) {
        const unsigned unit = utf16[i] | (utf16[i + 1] << 8);
        if (unit == 0) break;
        name += unit < 0x80 ? static_cast<char>(unit) : '?';
    }
    return name;
}

bool ParseSectionMap(std::span<const std::uint8_t> data, std::uint64_t address,
                     std::vector<SectionEntry>& out, MapError& error) {
    const auto truncated = [&] { return Fail(error, address, "the section map data is truncated"); };
    for (std::size_t at = 0; at < data.size();) {
        if (!Fits(at, 64, data.size())) return truncated();
        SectionEntry s;
        s.size = RawLongLong(data, at);
        s.encryption = RawLongLong(data, at + 16);
        s.nameBytes = RawLongLong(data, at + 32);
        s.coding = RawLongLong(data, at + 48);
        s.pageCount = RawLongLong(data, at + 56);
        at += 64;
        if (!Fits(at, s.nameBytes, data.size())) return truncated();
        s.name = NameOf(data.subspan(at, static_cast<std::size_t>(s.nameBytes)));
        at += static_cast<std::size_t>(s.nameBytes);
        if (s.pageCount > (data.size() - at) / 56) return truncated();
        for (std::uint64_t p = 0; p < s.pageCount; ++p, at += 56) {
            s.pages.push_back({RawLongLong(data, at), RawLongLong(data, at + 16),
                               RawLongLong(data, at + 24), RawLongLong(data, at + 32)});
        }
        out.push_back(std::move(s));
    }
    return true;
}

// One page of a section, checked and decoded, appended to the section's data.
bool ReadDataPage(std::span<const std::uint8_t> file, const PageTable& pages,
                  const SectionEntry& section, const SectionEntry::Page& page,
                  std::vector<std::uint8_t>& data, std::size_t& budget, MapError& error) {
    const auto found = pages.find(static_cast<std::int64_t>(page.id));
    if (found == pages.end())
        return Fail(error, kHeaderAt, section.name + " page " + std::to_string(page.id) +
                                          " is not in the page map");
    const PageLocation where = found->second;
    if (!Fits(where.address, where.size, file.size()))
        return Fail(error, where.address, section.name + " page runs past the end of the file");
    if (page.offset != data.size())
        return Fail(error, where.address, section.name + " page does not start where the data before it ends");
    if (page.compressedSize > where.size || page.size > budget)
        return Fail(error, where.address, section.name + " page gives impossible sizes");
    const auto stored = file.subspan(static_cast<std::size_t>(where.address),
                                     static_cast<std::size_t>(where.size));
    std::vector<std::uint8_t> coded;
    if (section.coding == kCodedAndCompressed) {
        const std::uint64_t blocks = (Align8(page.compressedSize) + 250) / 251;
        if (blocks * kBlockSize > where.size)
            return Fail(error, where.address, section.name + " page is smaller than its blocks");
        const std::size_t bad = DecodeInterleaved(stored, blocks, kDataPageCode, coded);
        if (bad != blocks)
            return Fail(error, where.address, section.name + " page fails its Reed-Solomon check (block " +
                                                  std::to_string(bad) + ")");
    } else {
        coded.assign(stored.begin(), stored.end());
    }
    std::vector<std::uint8_t> plain;
    if (!Expand(std::span<const std::uint8_t>(coded).first(page.compressedSize), page.size,
                where.address, section.name, plain, error))
        return false;
    data.insert(data.end(), plain.begin(), plain.end());
    budget -= plain.size();
    return true;
}

bool ReadSection(std::span<const std::uint8_t> file, const PageTable& pages,
                 const SectionEntry& section, std::vector<std::uint8_t>& data, std::size_t& budget,
                 MapError& error) {
    if (section.encryption == 1)  // 0 plain, 2 "unknown" (stored plain)
        return Fail(error, kHeaderAt, section.name + " is encrypted (a password-protected drawing)");
    if (section.coding != kStored && section.coding != kCodedAndCompressed)
        return Fail(error, kHeaderAt, section.name + " has the unknown coding " + std::to_string(section.coding));
    for (const SectionEntry::Page& page : section.pages) {
        if (!ReadDataPage(file, pages, section, page, data, budget, error)) return false;
    }
    if (data.size() != section.size)
        return Fail(error, kHeaderAt, section.name + " holds " + std::to_string(data.size()) +
                                          " bytes, not " + std::to_string(section.size));
    return true;
}

}  // namespace

bool ReadR2007Container(std::span<const std::uint8_t> file, DwgContainer& out, MapError& error) {
    FileHeader header;
    if (!ReadFileHeader(file, header, error)) return false;
    PageTable pages;
    if (!ReadPageMap(file, header, pages, error)) return false;
    const auto sectionMap = pages.find(static_cast<std::int64_t>(header.sectionMapId));
    if (sectionMap == pages.end())
        return Fail(error, kHeaderAt, "the section map page is not in the page map");
    std::vector<std::uint8_t> mapData;
    if (!ReadSystemPage(file, sectionMap->second.address, header.sectionMap, "section map",
                        mapData, error))
        return false;
    std::vector<SectionEntry> sections;
    if (!ParseSectionMap(mapData, sectionMap->second.address, sections, error)) return false;
    std::size_t budget = DecodeBudget(file.size());
    for (const SectionEntry& section : sections) {
        if (section.name.empty()) continue;  // the closing entry stands for no data
        std::vector<std::uint8_t> data;
        if (!ReadSection(file, pages, section, data, budget, error)) return false;
        out.buffers.push_back(std::move(data));
        out.sections.push_back({section.name, out.buffers.back()});
    }
    return RequireDrawingSections(out, sectionMap->second.address, error);
}

}  // namespace dwg
