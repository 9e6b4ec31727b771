#pragma once
// Objects of an AC1018 file kept as the file stored them, so that a save puts back the bits of
// every object that has not changed since the read. "Not changed" is judged by the writer's own
// encoding: the fingerprint of the object's encoding right after the read against the one at
// the save. The read keeps the file's sections only, or only the identity of the file it read
// (the file holds the sections, as the drawing file is AutoCAD's source of unchanged objects);
// the save reads the sections again for the encoding right after the read, so that a read that
// is not saved as DWG costs no encoding.
// The writer's encoding of an object need not be AutoCAD's bit for bit (padding bits
// and the choice between absolute and relative handle references differ) for this to hold.
#include <cstdint>
#include <span>
#include <string>

#include "platform/db/database.hpp"
#include "platform/dwg/drawing.hpp"
#include "platform/dwg/write_context.hpp"

namespace dwg {

struct DwgContainer;

// FNV-1a over the bytes.
std::uint64_t Fingerprint(std::span<const std::uint8_t> bytes);

// Whether the objects of the drawing in `sections` are kept as stored: AC1018 files with texts in
// code page 936 or 1252.
bool KeepsFiledObjects(const DwgSections& sections);

// The file at `path` whose bytes are `file`: its size and XXH3 hash.
AcDbDatabase::DwgSourceFile IdentifiedFile(const std::string& path, std::span<const std::uint8_t> file);

// Whether the read keeps the sections themselves in memory for a save: a drawing whose objects
// are kept as stored (KeepsFiledObjects) and that is not read from a file (`file` null), which a
// save could read again. Otherwise the read need not hold any section once it has decoded it.
bool KeepsSectionsInMemory(const DwgSections& sections, const AcDbDatabase::DwgSourceFile* file);

// After an AC1018 file with texts in code page 936 or 1252 has been read into `db`: keeps the
// identity of the file it was read from, given one, or else the sections it was read from. Other
// files keep nothing. Given the container the sections were decoded into, the buffers that hold
// them are moved out of it (the sections then point at nothing) rather than copied.
void KeepFiledObjects(AcDbDatabase& db, const DwgSections& sections, DwgContainer* container = nullptr,
                      const AcDbDatabase::DwgSourceFile* file = nullptr);

// Replaces the writer's encoding of each object whose fingerprint is that of the read (the kept
// sections, or those of the file read again while its size and hash are the ones kept, read and
// encoded) by the bytes the file stored, when the file's code page is the one being written. A
// file gone or changed since the read gives nothing back: the writer's encoding stays whole.
void PutBackFiledObjects(const AcDbDatabase& db, WriteContext& c);

}  // namespace dwg
