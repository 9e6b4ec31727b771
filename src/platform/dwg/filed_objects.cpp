#include "platform/dwg/filed_objects.hpp"

#include <vector>

#include "platform/dwg/object_map.hpp"
#include "platform/dwg/object_stream.hpp"

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

void KeepFiledObjects(AcDbDatabase& db, const DwgSections& sections) {
    AcDbDatabase::DwgFiledObjects& filed = db.dwgFiledObjects();
    filed = {};
    if (!KeepsFiledObjects(sections)) return;
    std::vector<ObjectLocation> map;
    MapError error;
    if (!ParseObjectMap(sections.objectMap, map, error)) return;
    EncodedDrawing encoded;
    if (EncodeDrawing(db, sections.codePage, encoded) != Acad::eOk) return;
    const auto& objects = encoded.context.objects;
    for (const ObjectLocation& at : map) {
        const auto ours = objects.find(at.handle);
        if (ours == objects.end()) continue;
        std::int32_t storedType = 0, ourType = -1;
        const std::span<const std::uint8_t> stored = StoredObject(sections.objects, at.offset, sections, storedType);
        // A custom kind numbered otherwise by the written classes cannot keep its stored bytes.
        StoredObject(ours->second, 0, sections, ourType);
        if (stored.empty() || storedType != ourType) continue;
        filed.byHandle[at.handle] = {Fingerprint(ours->second), {stored.begin(), stored.end()}};
    }
    filed.codePage = sections.codePage;
}

void PutBackFiledObjects(const AcDbDatabase& db, WriteContext& c) {
    const AcDbDatabase::DwgFiledObjects& filed = db.dwgFiledObjects();
    if (filed.codePage != c.options.codePage) return;
    for (auto& [handle, bytes] : c.objects) {
        const auto it = filed.byHandle.find(handle);
        if (it != filed.byHandle.end() && it->second.fingerprint == Fingerprint(bytes)) bytes = it->second.bytes;
    }
}

}  // namespace dwg
