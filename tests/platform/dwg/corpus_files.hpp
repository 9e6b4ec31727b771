#pragma once
// Drawings of the shared corpus for the DWG tests, and the sections of an uncompressed file
// (R13 to 2000), whose section locators sit in the file header.
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <vector>

namespace dwg_test {

inline std::string CorpusPath(const std::string& name) {
    return "/work/shared/corpus/dwg/" + name;
}

inline std::vector<std::uint8_t> ReadFileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// The bytes of locator record `number` (0 header, 1 classes, 2 object map) of an R13-2000 file.
inline std::span<const std::uint8_t> LocatedSection(const std::vector<std::uint8_t>& file,
                                                    unsigned number) {
    std::uint32_t count;
    std::memcpy(&count, file.data() + 0x15, 4);
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint8_t* rec = file.data() + 0x19 + 9 * i;
        std::uint32_t seek, size;
        std::memcpy(&seek, rec + 1, 4);
        std::memcpy(&size, rec + 5, 4);
        if (rec[0] == number) return std::span<const std::uint8_t>(file).subspan(seek, size);
    }
    return {};
}

}  // namespace dwg_test
