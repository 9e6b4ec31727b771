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

}  // namespace

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
    return FrameSection(kClassesStart, kClassesEnd, d.take());
}

std::vector<std::uint8_t> EncodeObjectMap(const std::vector<ObjectLocation>& locations) {
    std::vector<std::uint8_t> out;
    BitWriter page(Version::kR2000);
    std::uint64_t handle = 0;
    std::int64_t offset = 0;
    for (const ObjectLocation& at : locations) {
        BitWriter entry(Version::kR2000);
        entry.UMC(at.handle - handle);
        entry.MC(at.offset - offset);
        if (page.buffer().size() + entry.buffer().size() + 2 > kMapPageLimit) {
            AppendPage(out, page.take());
            page = BitWriter(Version::kR2000);
            entry = BitWriter(Version::kR2000);
            entry.UMC(at.handle);
            entry.MC(at.offset);
        }
        page.bytes(std::string_view(reinterpret_cast<const char*>(entry.buffer().data()),
                                    entry.buffer().size()));
        handle = at.handle;
        offset = at.offset;
    }
    if (!page.buffer().empty()) AppendPage(out, page.take());
    AppendPage(out, {});
    return out;
}

}  // namespace dwg
