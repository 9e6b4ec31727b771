#pragma once
// Reading a DWG file into a database: the version from the file's first bytes, its sections
// from the file container, the objects decoded and handed to the DXF reader as DXF records, so
// that the database holds what the same drawing read from DXF holds.
#include <cstdint>
#include <istream>
#include <span>
#include <string>
#include <vector>

#include "platform/db/database.hpp"
#include "platform/dwg/drawing.hpp"

namespace dwg {

struct DwgContainer;

// True when the bytes open with the version string of a DWG ("AC1015"), whatever the version.
bool LooksLikeDwg(std::span<const std::uint8_t> head);
// The version the file's first six bytes name; false for one this reader does not know.
bool VersionFromMagic(std::span<const std::uint8_t> file, Version& out);
// The version as the database and the DXF header name it.
AcDb::AcDbDwgVersion DatabaseVersion(Version version);

// Whether the read gives the objects section's memory back as it goes (see DwgToRecords): when
// the section is one of the container's own buffers (2004 on; R13 to 2000 sections are ranges of
// the caller's file) and the read does not keep it (see KeepsSectionsInMemory; `file` is the file
// the sections were read from, if any).
bool GivesBackObjects(const DwgSections& sections, const DwgContainer* container,
                      const AcDbDatabase::DwgSourceFile* file = nullptr);

// Reads decoded sections into an empty database. On failure the database stays empty and
// lastError() says "name: offset N: reason".
Acad::ErrorStatus ReadDwgSections(AcDbDatabase& db, const DwgSections& sections,
                                  const std::string& name);

// The bytes of a stream from where it stands to its end, read in one go when its size is known.
std::vector<std::uint8_t> StreamBytes(std::istream& in);
// The bytes of the file at `path`; none when it cannot be read.
std::vector<std::uint8_t> FileBytes(const std::string& path);

// Reads a whole DWG file held in memory. plainEntities false reads every entity through its
// record (see DwgToRecords).
Acad::ErrorStatus ReadDwgBytes(AcDbDatabase& db, std::span<const std::uint8_t> file,
                               const std::string& name, bool plainEntities = true);
// The same, taking the file's bytes: a file of 2004 or later is given back once its sections
// are decoded, before the database fills.
Acad::ErrorStatus ReadDwgBytes(AcDbDatabase& db, std::vector<std::uint8_t>&& file, const std::string& name);
// The same, reading the DWG file at `path`: the drawing keeps what identifies the file rather
// than its sections, which a DWG save reads again from the file (see KeepFiledObjects).
Acad::ErrorStatus ReadDwgFile(AcDbDatabase& db, const std::string& path);

}  // namespace dwg
