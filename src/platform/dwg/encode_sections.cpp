#include "platform/dwg/encode_sections.hpp"

#include "platform/dwg/encode_bits.hpp"
#include "platform/dwg/encode_header.hpp"

namespace dwg {
namespace {

constexpr std::uint8_t kClassesStart[16] = {0x8D, 0xA1, 0xC4, 0xB8, 0xC4, 0xA9, 0xF8, 0xC5,
                                            0xC0, 0xDC, 0xF4, 0x5F, 0xE7, 0xCF, 0xB6, 0x8A};
constexpr std::uint8_t kClassesEnd[16] = {0x72, 0x5E, 0x3B, 0x47, 0x3B, 0x56, 0x07, 0x3A,
                                          0x3F, 0x23, 0x0B, 0xA0, 0x18, 0x30, 0x49, 0x75};
// A page of the map holds at most this many bytes, its size field included.
constexpr std::size_t kMapPageLimit = 2032;

void WriteClass(BitWriter& d, const ClassRecord& c) {
    d.BS(c.number);
    d.BS(c.proxyFlags);
    d.TV(c.application);
    d.TV(c.cppName);
    d.TV(c.dxfName);
    d.B(c.wasZombie);
    d.BS(c.isEntity ? 0x1F2 : 0x1F3);
    if (d.version() < Version::kR2004) return;
    d.BL(c.instanceCount);
    d.BL(0);  // the version of the drawing that made the class: left unsaid
    d.BL(0);
    d.BL(0);
    d.BL(0);
}

// Appends a map page: its size high byte first, the entries, and the CRC high byte first.
void AppendPage(std::vector<std::uint8_t>& out, const std::vector<std::uint8_t>& entries) {
    const std::size_t start = out.size();
    const std::size_t size = entries.size() + 2;
    out.push_back(static_cast<std::uint8_t>(size >> 8));
    out.push_back(static_cast<std::uint8_t>(size & 0xFF));
    out.insert(out.end(), entries.begin(), entries.end());
    const std::uint16_t crc =
        Crc16(0xC0C1, std::span<const std::uint8_t>(out.data() + start, size));
    out.push_back(static_cast<std::uint8_t>(crc >> 8));
    out.push_back(static_cast<std::uint8_t>(crc & 0xFF));
}

constexpr std::uint8_t kPreviewStart[16] = {0x1F, 0x25, 0x6D, 0x07, 0xD4, 0x36, 0x28, 0x28,
                                            0x9D, 0x57, 0xCA, 0x3F, 0x9D, 0x44, 0x10, 0x2B};
constexpr std::uint8_t kPreviewEnd[16] = {0xE0, 0xDA, 0x92, 0xF8, 0x2B, 0xC9, 0xD7, 0xD7,
                                          0x62, 0xA8, 0x35, 0xC0, 0x62, 0xBB, 0xEF, 0xD4};

void AppendLittle(std::vector<std::uint8_t>& out, std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

}  // namespace

std::vector<std::uint8_t> EncodeSummaryInfo() {
    std::vector<std::uint8_t> out;
    // Title, subject, author, keywords, comments, saved by, revision, hyperlink base: empty
    // (each a length that counts the closing zero, then the zero).
    for (int i = 0; i < 8; ++i) {
        AppendLittle(out, 1, 2);
        out.push_back(0);
    }
    for (int i = 0; i < 6; ++i) AppendLittle(out, 0, 4);  // editing time, created, modified
    AppendLittle(out, 0, 2);                             // no custom properties
    AppendLittle(out, 0, 4);
    AppendLittle(out, 0, 4);
    return out;
}

std::vector<std::uint8_t> EncodePreview() {
    std::vector<std::uint8_t> out(kPreviewStart, kPreviewStart + 16);
    AppendLittle(out, 1, 4);  // the size of what follows: the image count
    out.push_back(0);         // no images
    out.insert(out.end(), kPreviewEnd, kPreviewEnd + 16);
    return out;
}

std::vector<std::uint8_t> EncodeRevisionHistory() {
    std::vector<std::uint8_t> out;
    for (int i = 0; i < 3; ++i) AppendLittle(out, 0, 4);
    return out;
}

std::vector<std::uint8_t> EncodeTemplate(int measurement) {
    std::vector<std::uint8_t> out;
    AppendLittle(out, 0, 2);  // no description
    AppendLittle(out, static_cast<std::uint32_t>(measurement), 2);
    return out;
}

namespace {

void AppendDate(std::vector<std::uint8_t>& out, double days) {
    const auto whole = static_cast<std::uint32_t>(days);
    AppendLittle(out, whole, 4);
    AppendLittle(out, static_cast<std::uint32_t>((days - whole) * 86400000.0), 4);
}

}  // namespace

std::vector<std::uint8_t> EncodeAuxHeader(double created, double updated, std::uint64_t handseed) {
    constexpr std::uint32_t kVersion = 25;  // AC1018
    std::vector<std::uint8_t> out = {0xFF, 0x77, 0x01};
    AppendLittle(out, kVersion, 2);
    AppendLittle(out, 0, 2);           // maintenance release
    AppendLittle(out, 1, 4);           // saves
    AppendLittle(out, 0xFFFFFFFF, 4);
    AppendLittle(out, 1, 2);           // saves, first part
    AppendLittle(out, 0, 2);           // saves above 0x7FFF
    AppendLittle(out, 0, 4);
    for (int i = 0; i < 2; ++i) {
        AppendLittle(out, kVersion, 2);  // the version written and the one that wrote it
        AppendLittle(out, 0, 2);
    }
    for (std::uint32_t value : {0x0005u, 0x0893u, 0x0005u, 0x0893u, 0x0000u, 0x0001u}) {
        AppendLittle(out, value, 2);
    }
    for (int i = 0; i < 5; ++i) AppendLittle(out, 0, 4);
    AppendDate(out, created);
    AppendDate(out, updated);
    AppendLittle(out, handseed < 0x7FFFFFFF ? static_cast<std::uint32_t>(handseed) : 0xFFFFFFFF, 4);
    AppendLittle(out, 0, 4);  // educational plot stamp
    AppendLittle(out, 0, 2);
    AppendLittle(out, 1, 2);  // saves, first part less the second
    for (int i = 0; i < 3; ++i) AppendLittle(out, 0, 4);
    AppendLittle(out, 1, 4);  // saves
    for (int i = 0; i < 4; ++i) AppendLittle(out, 0, 4);
    return out;
}

std::vector<std::uint8_t> EncodeClassesSection(const std::vector<ClassRecord>& classes,
                                                Version version, int codePage) {
    BitWriter d(version, codePage);
    if (version >= Version::kR2004) {
        std::int16_t highest = 499;
        for (const ClassRecord& c : classes) highest = std::max(highest, c.number);
        d.BS(highest);
        d.RC(0);
        d.RC(0);
        d.B(true);
    }
    for (const ClassRecord& c : classes) WriteClass(d, c);
    d.alignToByte();
    std::vector<std::uint8_t> out = FrameSection(kClassesStart, kClassesEnd, d.take());
    // From 2004 on eight zero bytes follow the end sentinel, as AutoCAD writes them; LibreCAD's
    // reader takes a section that ends with its sentinel for one read too far.
    if (version >= Version::kR2004) out.insert(out.end(), 8, 0);
    return out;
}

std::vector<std::uint8_t> EncodeObjectMap(const std::vector<ObjectLocation>& locations) {
    std::vector<std::uint8_t> out;
    BitWriter page(Version::kR2000);
    BitWriter entry(Version::kR2000);  // whole bytes, as the page
    std::uint64_t handle = 0;
    std::int64_t offset = 0;
    for (const ObjectLocation& at : locations) {
        entry.clear();
        entry.UMC(at.handle - handle);
        entry.MC(at.offset - offset);
        if (page.bitPosition() / 8 + entry.bitPosition() / 8 + 2 > kMapPageLimit) {
            AppendPage(out, page.take());
            page = BitWriter(Version::kR2000);
            entry.clear();
            entry.UMC(at.handle);
            entry.MC(at.offset);
        }
        const std::span<const std::uint8_t> bytes = entry.written();
        page.bytes(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
        handle = at.handle;
        offset = at.offset;
    }
    if (!page.buffer().empty()) AppendPage(out, page.take());
    AppendPage(out, {});
    return out;
}

}  // namespace dwg
