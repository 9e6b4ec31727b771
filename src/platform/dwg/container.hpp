#pragma once
// The file container of a DWG: the version from the first bytes, the file header, and the
// sections it holds (header variables, classes, object map, objects, preview...), each checked
// by the format's sentinels, CRCs and checksums. R13 to 2000 keep their sections as plain byte
// ranges of the file; 2004 on keep them in pages, compressed, and 2007 Reed-Solomon encoded.
// Damage is reported as a status with the file offset and the reason, never by an exception.
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dwg/bit_reader.hpp"
#include "platform/dwg/drawing.hpp"
#include "platform/dwg/object_map.hpp"

namespace dwg {

// The names the sections carry from 2004 on; R13 to 2000 sections are given the same names.
inline constexpr std::string_view kHeaderSection = "AcDb:Header";
inline constexpr std::string_view kClassesSection = "AcDb:Classes";
inline constexpr std::string_view kHandlesSection = "AcDb:Handles";
inline constexpr std::string_view kObjectsSection = "AcDb:AcDbObjects";
inline constexpr std::string_view kPreviewSection = "AcDb:Preview";

struct ContainerSection {
    std::string name;
    // The section's data without page headers or compression: a range of the file (R13 to
    // 2000) or one of the container's own buffers (2004 on).
    std::span<const std::uint8_t> data;
};

// Move-only: the sections of 2004 and later files point into its buffers.
struct DwgContainer {
    Version version = Version::kR2000;
    int maintenance = 0;  // the file header's maintenance release
    int dwgCodePage = 0;  // the file header's code page number (30: ANSI_1252, 39: ANSI_936...)
    std::vector<ContainerSection> sections;  // in the order the file lists them
    std::vector<std::vector<std::uint8_t>> buffers;  // the decoded data of paged sections

    DwgContainer() = default;
    DwgContainer(DwgContainer&&) = default;
    DwgContainer& operator=(DwgContainer&&) = default;
    DwgContainer(const DwgContainer&) = delete;
    DwgContainer& operator=(const DwgContainer&) = delete;
};

// The Windows code page of the file header's code page number (30: 1252, 39: 936 ...); 0 for
// a number the format does not list.
int WindowsCodePage(int dwgCodePage);
// The $DWGCODEPAGE name of a Windows code page ("ANSI_936").
std::string CodePageName(int windowsCodePage);

// Reads the container of a whole DWG file held in memory; `file` must outlive `out`. False with
// the file offset and the reason when the file is not a DWG this reader knows or is damaged;
// `out` is then incomplete.
bool ReadDwgContainer(std::span<const std::uint8_t> file, DwgContainer& out, MapError& error);

// The data of the named section; empty when the file has none.
std::span<const std::uint8_t> FindSection(const DwgContainer& container, std::string_view name);

// The sections the drawing decoders take. R13 to 2000 object map offsets count from the start
// of the file, so their object data is the whole file; 2004 on it is AcDb:AcDbObjects. The
// spans point into `container` and `file`, which must outlive them.
DwgSections SectionsOf(const DwgContainer& container, std::span<const std::uint8_t> file);

}  // namespace dwg
