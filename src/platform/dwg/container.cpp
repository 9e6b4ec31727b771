#include "platform/dwg/container.hpp"

#include <algorithm>
#include <array>
#include <cstring>
#include <map>

#include "platform/dwg/container_pages.hpp"
#include "platform/dwg/raw_bytes.hpp"
#include "platform/dwg/read.hpp"

namespace dwg {

int WindowsCodePage(int dwgCodePage) {
    static const std::map<int, int> kPages = {
        {1, 20127}, {2, 28591}, {3, 28592}, {4, 28593}, {5, 28594}, {6, 28595}, {7, 28596},
        {8, 28597}, {9, 28598}, {10, 28599}, {11, 437}, {12, 850}, {13, 852}, {14, 855},
        {15, 857}, {16, 860}, {17, 861}, {18, 863}, {19, 864}, {20, 865}, {21, 869},
        {22, 932}, {23, 10000}, {24, 950}, {25, 949}, {26, 1361}, {27, 866}, {28, 1250},
        {29, 1251}, {30, 1252}, {31, 936}, {32, 1253}, {33, 1254}, {34, 1255}, {35, 1256},
        {36, 1257}, {37, 874}, {38, 932}, {39, 936}, {40, 949}, {41, 950}, {42, 1361},
        {44, 1258}};
    const auto it = kPages.find(dwgCodePage);
    return it == kPages.end() ? 0 : it->second;
}

std::string CodePageName(int windowsCodePage) { return "ANSI_" + std::to_string(windowsCodePage); }

namespace {

using Sentinel = std::array<std::uint8_t, 16>;

// A section's closing sentinel is its opening one with every bit flipped.
Sentinel Closing(const Sentinel& opening) {
    Sentinel out{};
    for (std::size_t i = 0; i < out.size(); ++i) out[i] = static_cast<std::uint8_t>(~opening[i]);
    return out;
}

constexpr Sentinel kHeaderSentinel = {0xCF, 0x7B, 0x1F, 0x23, 0xFD, 0xDE, 0x38, 0xA9,
                                      0x5F, 0x7C, 0x68, 0xB8, 0x4E, 0x6D, 0x33, 0x5F};
constexpr Sentinel kClassesSentinel = {0x8D, 0xA1, 0xC4, 0xB8, 0xC4, 0xA9, 0xF8, 0xC5,
                                       0xC0, 0xDC, 0xF4, 0x5F, 0xE7, 0xCF, 0xB6, 0x8A};
constexpr Sentinel kPreviewSentinel = {0x1F, 0x25, 0x6D, 0x07, 0xD4, 0x36, 0x28, 0x28,
                                       0x9D, 0x57, 0xCA, 0x3F, 0x9D, 0x44, 0x10, 0x2B};
// Closes the R13-2000 file header, after its CRC.
constexpr Sentinel kFileHeaderEnd = {0x95, 0xA0, 0x4E, 0x28, 0x99, 0x82, 0x1A, 0xE5,
                                     0x5E, 0x41, 0xE0, 0x5F, 0x9D, 0x3A, 0x4D, 0x00};

constexpr std::size_t kLocatorCountAt = 0x15;
constexpr std::size_t kLocatorsAt = 0x19;
constexpr std::size_t kLocatorSize = 9;  // number, file offset, size

// The section each locator number stands for.
constexpr std::string_view kLocatorNames[] = {kHeaderSection,       kClassesSection,
                                              kHandlesSection,      "AcDb:ObjFreeSpace",
                                              "AcDb:Template",      "AcDb:AuxHeader"};

bool Matches(std::span<const std::uint8_t> file, std::size_t at, const Sentinel& sentinel) {
    return Fits(at, sentinel.size(), file.size()) &&
           std::memcmp(file.data() + at, sentinel.data(), sentinel.size()) == 0;
}

// The file header's CRC is XORed with a constant that depends on the number of locators.
bool LocatorCrcMask(std::uint32_t count, std::uint16_t& mask) {
    static constexpr std::uint16_t kMasks[] = {0xA598, 0x8101, 0x3CC4, 0x8461};
    if (count < 3 || count > 6) return false;
    mask = kMasks[count - 3];
    return true;
}

// A located section that opens and closes with sentinels (header variables, classes): both are
// checked here, where the file offset of a fault is known.
bool CheckSentinels(std::span<const std::uint8_t> file, std::uint32_t seek, std::uint32_t size,
                    std::string_view name, const Sentinel& opening, MapError& error) {
    if (size < 2 * opening.size() || !Matches(file, seek, opening)) {
        error = {seek, std::string(name) + " does not start with its sentinel"};
        return false;
    }
    const std::size_t end = std::size_t{seek} + size - opening.size();
    if (!Matches(file, end, Closing(opening))) {
        error = {end, std::string(name) + " does not end with its sentinel"};
        return false;
    }
    return true;
}

bool ReadLocator(std::span<const std::uint8_t> file, std::size_t at, DwgContainer& out,
                 MapError& error) {
    const std::uint8_t number = file[at];
    const std::uint32_t seek = RawLong(file, at + 1), size = RawLong(file, at + 5);
    if (number >= std::size(kLocatorNames)) {
        error = {at, "unknown section locator " + std::to_string(number)};
        return false;
    }
    const std::string_view name = kLocatorNames[number];
    if (size == 0) return true;  // a section the file does not have
    if (!Fits(seek, size, file.size())) {
        error = {at, std::string(name) + " runs past the end of the file"};
        return false;
    }
    if (name == kHeaderSection && !CheckSentinels(file, seek, size, name, kHeaderSentinel, error))
        return false;
    if (name == kClassesSection && !CheckSentinels(file, seek, size, name, kClassesSentinel, error))
        return false;
    out.sections.push_back({std::string(name), file.subspan(seek, size)});
    return true;
}

// The preview image: sentinel, size, data, closing sentinel. Only a picture of the drawing: a
// damaged one is left out rather than refusing a drawing whose data is whole.
void ReadPreview(std::span<const std::uint8_t> file, std::uint32_t seek, DwgContainer& out) {
    if (seek == 0 || !Matches(file, seek, kPreviewSentinel) || !Fits(seek, 20, file.size())) return;
    const std::uint64_t total = 16 + 4 + std::uint64_t{RawLong(file, seek + 16)} + 16;
    if (!Fits(seek, total, file.size()) ||
        !Matches(file, static_cast<std::size_t>(seek + total - 16), Closing(kPreviewSentinel)))
        return;
    out.sections.push_back({std::string(kPreviewSection), file.subspan(seek, total)});
}

bool HasSection(const DwgContainer& container, std::string_view name) {
    return std::any_of(container.sections.begin(), container.sections.end(),
                       [&](const ContainerSection& s) { return s.name == name; });
}

// R13 to 2000: a table of section locators after the fixed file header, closed by a CRC and a
// sentinel.
bool ReadLocatedContainer(std::span<const std::uint8_t> file, DwgContainer& out,
                          MapError& error) {
    if (file.size() < kLocatorsAt) {
        error = {file.size(), "the file header is truncated"};
        return false;
    }
    const std::uint32_t count = RawLong(file, kLocatorCountAt);
    std::uint16_t mask = 0;
    if (!LocatorCrcMask(count, mask)) {
        error = {kLocatorCountAt,
                 "the file header lists " + std::to_string(count) + " section locators"};
        return false;
    }
    const std::size_t crcAt = kLocatorsAt + kLocatorSize * count;
    if (!Fits(crcAt, 2 + kFileHeaderEnd.size(), file.size())) {
        error = {file.size(), "the file header is truncated"};
        return false;
    }
    if ((Crc16(0, file.first(crcAt)) ^ mask) != RawShort(file, crcAt)) {
        error = {crcAt, "file header CRC mismatch"};
        return false;
    }
    if (!Matches(file, crcAt + 2, kFileHeaderEnd)) {
        error = {crcAt + 2, "the file header does not end with its sentinel"};
        return false;
    }
    for (std::uint32_t i = 0; i < count; ++i) {
        if (!ReadLocator(file, kLocatorsAt + kLocatorSize * i, out, error)) return false;
    }
    for (std::string_view needed : {kHeaderSection, kClassesSection, kHandlesSection}) {
        if (!HasSection(out, needed)) {
            error = {kLocatorsAt, "the file has no " + std::string(needed) + " section"};
            return false;
        }
    }
    ReadPreview(file, RawLong(file, 0x0D), out);
    return true;
}

}  // namespace

bool RequireDrawingSections(const DwgContainer& container, std::size_t offset, MapError& error) {
    for (std::string_view needed : {kHeaderSection, kClassesSection, kHandlesSection, kObjectsSection}) {
        if (FindSection(container, needed).empty()) {
            error = {offset, "the file has no " + std::string(needed) + " section"};
            return false;
        }
    }
    return true;
}

bool ReadDwgContainer(std::span<const std::uint8_t> file, DwgContainer& out, MapError& error) {
    out = DwgContainer();
    if (!VersionFromMagic(file, out.version)) {
        error = {0, "not a DWG version this reader knows"};
        return false;
    }
    if (file.size() < kLocatorsAt) {
        error = {file.size(), "the file header is truncated"};
        return false;
    }
    out.maintenance = file[0x0B];
    out.dwgCodePage = RawShort(file, 0x13);
    if (out.version <= Version::kR2000) return ReadLocatedContainer(file, out, error);
    if (out.version == Version::kR2007) return ReadR2007Container(file, out, error);
    return ReadR2004Container(file, out, error);
}

std::span<const std::uint8_t> FindSection(const DwgContainer& container, std::string_view name) {
    for (const ContainerSection& section : container.sections) {
        if (section.name == name) return section.data;
    }
    return {};
}

DwgSections SectionsOf(const DwgContainer& container, std::span<const std::uint8_t> file) {
    DwgSections out;
    out.version = container.version;
    out.maintenance = container.maintenance;
    const int windows = WindowsCodePage(container.dwgCodePage);
    if (windows != 0) out.codePage = windows;
    out.header = FindSection(container, kHeaderSection);
    out.classes = FindSection(container, kClassesSection);
    out.objectMap = FindSection(container, kHandlesSection);
    out.objects = container.version <= Version::kR2000 ? file
                                                       : FindSection(container, kObjectsSection);
    return out;
}

}  // namespace dwg
