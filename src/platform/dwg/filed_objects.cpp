#include "platform/dwg/filed_objects.hpp"

#include <xxhash.h>

#include <filesystem>
#include <unordered_map>
#include <vector>

#include "platform/dwg/container.hpp"
#include "platform/dwg/object_map.hpp"
#include "platform/dwg/object_stream.hpp"
#include "platform/dwg/read.hpp"

namespace dwg {

std::uint64_t Fingerprint(std::span<const std::uint8_t> bytes) {
    std::uint64_t hash = 0xCBF29CE484222325ull;
    for (std::uint8_t b : bytes) hash = (hash ^ b) * 0x100000001B3ull;
    return hash;
}

namespace {

// The object at `offset` as the file stores it: its size, data and CRC, and its type. Empty
// when it does not frame (the reader has refused such a file already).
std::span<const std::uint8_t> StoredObject(std::span<const std::uint8_t> objects, std::int64_t offset,
                                           const DwgSections& sections, std::int32_t& type) {
    ObjectStreams object;
    MapError error;
    if (!OpenObject(objects, offset, sections.version, sections.codePage, object, error)) return {};
    type = object.type;
    const std::size_t sizeBytes = object.size >= 0x8000 ? 4 : 2;
    return objects.subspan(static_cast<std::size_t>(offset), sizeBytes + object.size + 2);
}

}  // namespace

bool KeepsFiledObjects(const DwgSections& sections) {
    return sections.version == Version::kR2004 && (sections.codePage == 936 || sections.codePage == 1252);
}

namespace {

// The section's bytes: the container's buffer that holds exactly them, moved out of it, or a copy.
std::vector<std::uint8_t> Taken(std::span<const std::uint8_t> section, DwgContainer* container) {
    if (container != nullptr && !section.empty()) {
        for (std::vector<std::uint8_t>& buffer : container->buffers) {
            if (buffer.data() == section.data() && buffer.size() == section.size()) {
                return std::move(buffer);
            }
        }
    }
    return {section.begin(), section.end()};
}

}  // namespace

AcDbDatabase::DwgSourceFile IdentifiedFile(const std::string& path, std::span<const std::uint8_t> file) {
    return {path, file.size(), XXH3_64bits(file.data(), file.size())};
}

bool KeepsSectionsInMemory(const DwgSections& sections, const AcDbDatabase::DwgSourceFile* file) {
    return file == nullptr && KeepsFiledObjects(sections);
}

void KeepFiledObjects(AcDbDatabase& db, const DwgSections& sections, DwgContainer* container,
                      const AcDbDatabase::DwgSourceFile* file) {
    AcDbDatabase::DwgFiledObjects& filed = db.dwgFiledObjects();
    filed = {};
    if (!KeepsFiledObjects(sections)) return;
    filed.codePage = sections.codePage;
    filed.maintenance = sections.maintenance;
    if (!KeepsSectionsInMemory(sections, file)) {
        filed.file = *file;
        return;
    }
    filed.header = Taken(sections.header, container);
    filed.classes = Taken(sections.classes, container);
    filed.objectMap = Taken(sections.objectMap, container);
    filed.objects = Taken(sections.objects, container);
}

namespace {

struct Filed {
    std::uint64_t fingerprint = 0;       // of the writer's encoding right after the read
    std::span<const std::uint8_t> bytes;  // as the file stored them
};

// The sections of the file read again into `container`, while the file at the kept path is the
// one read: of the size and hash kept. Being that AC1018 file, its sections are the container's
// own buffers. None (empty sections) when it is gone, unreadable or changed.
DwgSections SectionsOfUnchangedFile(const AcDbDatabase::DwgSourceFile& kept, DwgContainer& container) {
    // Whatever is not a file of the size read (a folder, nothing: size -1) is not read.
    std::error_code gone;
    if (std::filesystem::file_size(kept.path, gone) != kept.size) return {};
    const std::vector<std::uint8_t> file = FileBytes(kept.path);
    MapError error;
    if (XXH3_64bits(file.data(), file.size()) != kept.hash || !ReadDwgContainer(file, container, error)) {
        return {};
    }
    return SectionsOf(container, file);
}

// The sections the objects are put back from: those kept in memory, or else those of the file
// read, read again into `container`.
DwgSections FiledSections(const AcDbDatabase::DwgFiledObjects& filed, DwgContainer& container) {
    if (!filed.file.path.empty()) return SectionsOfUnchangedFile(filed.file, container);
    return {Version::kR2004, filed.maintenance, filed.codePage, filed.header,
            filed.classes,    filed.objectMap,   filed.objects};
}

// Each object of the filed sections read again, by handle: the fingerprint of the writer's
// encoding of it and its stored bytes. The read is the one the database was filled by, so the
// encoding is the one the writer gave the object right after it; the database need not be
// encoded at every read for it. None for sections that do not read, such as the empty ones of
// a file gone or changed.
std::unordered_map<std::uint64_t, Filed> FiledAtRead(const DwgSections& sections) {
    std::unordered_map<std::uint64_t, Filed> out;
    std::vector<ObjectLocation> map;
    MapError error;
    AcDbDatabase read(false, true);
    EncodedDrawing encoded;
    if (!ParseObjectMap(sections.objectMap, map, error) || ReadDwgSections(read, sections, "") != Acad::eOk ||
        EncodeDrawing(read, sections.codePage, encoded) != Acad::eOk) {
        return out;
    }
    const auto& objects = encoded.context.objects;
    for (const ObjectLocation& at : map) {
        const auto ours = objects.find(at.handle);
        if (ours == objects.end()) continue;
        std::int32_t storedType = 0, ourType = -1;
        const std::span<const std::uint8_t> stored = StoredObject(sections.objects, at.offset, sections, storedType);
        // A custom kind numbered otherwise by the written classes cannot keep its stored bytes.
        StoredObject(ours->second, 0, sections, ourType);
        if (stored.empty() || storedType != ourType) continue;
        out[at.handle] = {Fingerprint(ours->second), stored};
    }
    return out;
}

}  // namespace

void PutBackFiledObjects(const AcDbDatabase& db, WriteContext& c) {
    const AcDbDatabase::DwgFiledObjects& filed = db.dwgFiledObjects();
    if (filed.codePage != c.options.codePage) return;
    DwgContainer container;  // the file's, when the sections are read from it again
    const std::unordered_map<std::uint64_t, Filed> atRead = FiledAtRead(FiledSections(filed, container));
    for (auto& [handle, bytes] : c.objects) {
        const auto it = atRead.find(handle);
        if (it != atRead.end() && it->second.fingerprint == Fingerprint(bytes)) {
            bytes.assign(it->second.bytes.begin(), it->second.bytes.end());
        }
    }
}

}  // namespace dwg
