#pragma once
// Drawings of the shared corpus for the DWG tests, and the sections of an uncompressed file
// (R13 to 2000), which are byte ranges of the file.
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dwg/container.hpp"
#include "shared_folder.hpp"

namespace dwg_test {

inline std::string CorpusPath(const std::string& name) {
    return SharedFile("corpus/dwg/" + name).string();
}

inline std::vector<std::uint8_t> ReadFileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// A section of an R13-2000 drawing as the file container finds it: a byte range of the file.
// Empty when the container does not read or the file is a paged (2004 and later) one.
inline std::span<const std::uint8_t> FileSection(const std::vector<std::uint8_t>& file,
                                                 std::string_view name) {
    dwg::DwgContainer container;
    dwg::MapError error;
    if (!dwg::ReadDwgContainer(file, container, error) || container.version > dwg::Version::kR2000)
        return {};
    return dwg::FindSection(container, name);
}

// The sections of an R13-2000 drawing the decoders take, all within the file.
inline dwg::DwgSections FileSections(const std::vector<std::uint8_t>& file) {
    dwg::DwgContainer container;
    dwg::MapError error;
    if (!dwg::ReadDwgContainer(file, container, error) || container.version > dwg::Version::kR2000)
        return {};
    return dwg::SectionsOf(container, file);
}

}  // namespace dwg_test
