#pragma once
// The page containers of 2004 and later files, read into the sections of a DwgContainer whose
// version, maintenance release and code page are already set.
#include <cstdint>
#include <span>

#include "platform/dwg/container.hpp"

namespace dwg {

// The most a file's sections may decode to: far beyond what real drawings compress by, so that
// damaged maps cannot ask for unbounded memory.
inline std::size_t DecodeBudget(std::size_t fileSize) { return 256 * fileSize + (1u << 20); }

// False, with the offset given, when the container lacks a section the drawing needs.
bool RequireDrawingSections(const DwgContainer& container, std::size_t offset, MapError& error);

// AC1018, AC1024, AC1027 and AC1032: the encrypted file header, the page and section maps, the
// data pages with their checksums, decompressed.
bool ReadR2004Container(std::span<const std::uint8_t> file, DwgContainer& out, MapError& error);

// AC1021: the Reed-Solomon encoded file header and pages, the 2007 compression.
bool ReadR2007Container(std::span<const std::uint8_t> file, DwgContainer& out, MapError& error);

}  // namespace dwg
