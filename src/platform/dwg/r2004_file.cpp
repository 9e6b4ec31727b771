#include "platform/dwg/r2004_file.hpp"

#include <cstring>

#include "platform/dwg/container.hpp"
#include "platform/dwg/r2004_pages.hpp"

namespace dwg {
namespace {

constexpr std::size_t kPageData = 0x7400;
constexpr std::uint64_t kFirstPage = 0x100;
constexpr std::uint32_t kPageMapType = 0x41630E3B;
constexpr std::uint32_t kSectionMapType = 0x4163003B;

void PutLong(std::vector<std::uint8_t>& out, std::size_t at, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) out[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
}

// Pages are laid on 32-byte boundaries, as the format's writer lays them.
void PadPage(std::vector<std::uint8_t>& file) {
    while (file.size() % 0x20 != 0) file.push_back(0);
}

// Readers take every page but the last to hold a full 0x7400 bytes, and a literal run cannot
// be 1 to 3 bytes long: a section whose last page would be that short gets zero bytes more,
// which every section's own framing leaves unread.
void PadSection(std::vector<std::uint8_t>& data) {
    const std::size_t rest = data.size() % kPageData;
    if (rest >= 1 && rest <= 3) data.resize(data.size() + 4 - rest, 0);
}

struct Layout {
    std::vector<std::uint8_t> file;
    std::vector<std::pair<std::int32_t, std::int32_t>> pages;  // page map: number, size
    std::int32_t nextPage = 1;

    std::uint64_t address() const { return file.size(); }
    std::int32_t addDataPage(std::uint32_t section, std::span<const std::uint8_t> data,
                             std::uint64_t startOffset, std::uint32_t& compressedSize) {
        const std::vector<std::uint8_t> compressed = CompressLiteral(data);
        compressedSize = static_cast<std::uint32_t>(compressed.size());
        const std::uint64_t at = address();
        const auto header = EncryptDataPageHeader(section, compressedSize,
                                                  static_cast<std::uint32_t>(data.size()),
                                                  startOffset, compressed, at);
        file.insert(file.end(), header.begin(), header.end());
        file.insert(file.end(), compressed.begin(), compressed.end());
        PadPage(file);
        pages.emplace_back(nextPage, static_cast<std::int32_t>(file.size() - at));
        return nextPage++;
    }
    std::int32_t addSystemPage(std::uint32_t type, const std::vector<std::uint8_t>& data) {
        const std::vector<std::uint8_t> compressed = CompressLiteral(data);
        const std::uint64_t at = address();
        const auto header =
            SystemPageHeader(type, static_cast<std::uint32_t>(data.size()), compressed);
        file.insert(file.end(), header.begin(), header.end());
        file.insert(file.end(), compressed.begin(), compressed.end());
        PadPage(file);
        pages.emplace_back(nextPage, static_cast<std::int32_t>(file.size() - at));
        return nextPage++;
    }
};

}  // namespace

int DwgCodePageNumber(int windowsCodePage) {
    // The highest number first: the ANSI_ numbers (28 on) are the ones the format's writers
    // use, and 936 is both GB2312 (31) and ANSI_936 (39).
    for (int number = 44; number >= 1; --number) {
        if (WindowsCodePage(number) == windowsCodePage) return number;
    }
    return 30;
}

std::vector<std::uint8_t> AssembleR2004(std::vector<NamedSection> sections, int dwgCodePage) {
    Layout layout;
    layout.file.assign(kFirstPage, 0);
    std::vector<SectionDescription> descriptions;
    std::uint32_t id = 1;
    for (NamedSection& section : sections) {
        PadSection(section.data);
        SectionDescription d;
        d.size = section.data.size();
        d.id = id++;
        d.name = section.name;
        for (std::size_t at = 0; at < section.data.size(); at += kPageData) {
            const std::size_t count = std::min(kPageData, section.data.size() - at);
            std::uint32_t compressedSize = 0;
            const std::int32_t number = layout.addDataPage(
                d.id, std::span<const std::uint8_t>(section.data.data() + at, count), at,
                compressedSize);
            d.pages.push_back({static_cast<std::uint32_t>(number), compressedSize, at});
        }
        descriptions.push_back(std::move(d));
    }
    const std::int32_t sectionMapId = layout.addSystemPage(kSectionMapType,
                                                           SectionMapBytes(descriptions));
    // The page map lists itself: its own entry is known before its bytes are.
    const std::uint64_t pageMapAt = layout.address();
    const std::int32_t pageMapId = layout.nextPage;
    std::vector<std::pair<std::int32_t, std::int32_t>> entries = layout.pages;
    entries.emplace_back(pageMapId, 0);
    {
        const std::vector<std::uint8_t> probe = CompressLiteral(PageMapBytes(entries));
        std::size_t size = 20 + probe.size();
        size = (size + 0x1F) & ~std::size_t{0x1F};
        entries.back().second = static_cast<std::int32_t>(size);
    }
    layout.pages = entries;
    layout.pages.pop_back();
    layout.addSystemPage(kPageMapType, PageMapBytes(entries));

    FileHeaderBlock block;
    block.lastPageId = static_cast<std::uint32_t>(pageMapId);
    block.lastPageEnd = layout.address();
    block.secondHeaderAddress = layout.address();
    block.pageAmount = static_cast<std::uint32_t>(pageMapId);
    block.pageMapId = static_cast<std::uint32_t>(pageMapId);
    block.pageMapAddress = pageMapAt - kFirstPage;
    block.sectionMapId = static_cast<std::uint32_t>(sectionMapId);
    block.pageArraySize = static_cast<std::uint32_t>(pageMapId);
    const auto encrypted = EncryptFileHeader(block);

    std::vector<std::uint8_t>& file = layout.file;
    std::memcpy(file.data(), "AC1018", 6);
    file[0x0C] = 3;
    file[0x11] = 0x19;  // the application that wrote the file: 2004
    file[0x13] = static_cast<std::uint8_t>(dwgCodePage & 0xFF);
    file[0x14] = static_cast<std::uint8_t>(dwgCodePage >> 8);
    PutLong(file, 0x28, 0x80);
    std::memcpy(file.data() + 0x80, encrypted.data(), encrypted.size());
    // The format's writer keeps a second copy of the block at the end of the file.
    file.insert(file.end(), encrypted.begin(), encrypted.end());
    return std::move(layout.file);
}

}  // namespace dwg
