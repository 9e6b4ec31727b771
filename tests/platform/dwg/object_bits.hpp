#pragma once
// The objects of a DWG file by handle, as the bytes the file stores for each (after its size,
// before its CRC), and the differences between two files object by object.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "platform/db/database.hpp"
#include "platform/db/object.hpp"
#include "platform/dwg/classes.hpp"
#include "platform/dwg/container.hpp"
#include "platform/dwg/decode.hpp"
#include "platform/dwg/object_map.hpp"
#include "platform/dwg/object_stream.hpp"
#include "platform/dwg/write.hpp"

namespace dwg_test {

struct StoredObject {
    std::int32_t type = 0;
    std::vector<std::uint8_t> bytes;
};

// Opens each object the map of a file lists and gives it to visit with its place and the
// file's sections; nothing when the file does not read.
template <typename Visit>
void ForEachMappedObject(std::span<const std::uint8_t> file, Visit visit) {
    dwg::DwgContainer container;
    dwg::MapError error;
    if (!dwg::ReadDwgContainer(file, container, error)) return;
    const dwg::DwgSections sections = dwg::SectionsOf(container, file);
    std::vector<dwg::ObjectLocation> map;
    if (!dwg::ParseObjectMap(sections.objectMap, map, error)) return;
    for (const dwg::ObjectLocation& at : map) {
        dwg::ObjectStreams object;
        if (dwg::OpenObject(sections.objects, at.offset, sections.version, sections.codePage, object, error))
            visit(at, object, sections);
    }
}

// Every object the map lists, by handle; empty when the file does not read.
inline std::map<std::uint64_t, StoredObject> StoredObjects(std::span<const std::uint8_t> file) {
    std::map<std::uint64_t, StoredObject> out;
    ForEachMappedObject(file, [&](const dwg::ObjectLocation& at, const dwg::ObjectStreams& object,
                                  const dwg::DwgSections& sections) {
        const std::size_t start = static_cast<std::size_t>(at.offset);
        const std::size_t sizeBytes = object.size >= 0x8000 ? 4 : 2;
        const auto bytes = sections.objects.subspan(start + sizeBytes, object.size);
        out[at.handle] = {object.type, {bytes.begin(), bytes.end()}};
    });
    return out;
}

// The object of a handle decoded (a drawing's own kinds kept whole); empty when the file does
// not hold it.
inline dwg::DecodedObject DecodedAt(std::span<const std::uint8_t> file, std::uint64_t handle) {
    dwg::DecodedObject out;
    ForEachMappedObject(file, [&](const dwg::ObjectLocation& at, dwg::ObjectStreams& object,
                                  const dwg::DwgSections&) {
        if (at.handle == handle) dwg::DecodeObject(object, {}, out);
    });
    return out;
}

// The first bit at which two byte strings differ; their shorter length in bits when one is the
// start of the other.
inline std::size_t FirstDifferentBit(const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b) {
    const std::size_t n = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < n; ++i) {
        if (a[i] == b[i]) continue;
        int bit = 0;
        while (((a[i] ^ b[i]) & (0x80 >> bit)) == 0) ++bit;
        return i * 8 + static_cast<std::size_t>(bit);
    }
    return n * 8;
}

// The handle references of an object as stored (after its size, before its CRC) in an AC1018
// file: those of its handle stream, which follows its values, as absolute handles (0 for a null
// reference), with their codes.
inline std::vector<std::pair<std::uint8_t, std::uint64_t>> HandleReferences(const std::vector<std::uint8_t>& bytes) {
    std::vector<std::pair<std::uint8_t, std::uint64_t>> out;
    dwg::BitReader r(bytes, dwg::Version::kR2004);
    r.OT();
    const std::uint32_t valueBits = r.RL();
    const std::uint64_t self = r.H().value;
    r.seekBit(valueBits);
    while (!r.failed() && r.bitEnd() - r.bitPosition() >= 8) {
        const dwg::HandleRef ref = r.H();
        if (r.failed()) break;
        const bool relative = ref.code >= 6;
        out.emplace_back(ref.code, relative ? dwg::BitReader::Absolute(ref, self) : ref.value);
    }
    return out;
}

// The objects of `original` that `written` holds with other bytes, one line each: handle,
// type, both sizes and the first bit that differs. Objects `written` lacks are listed too.
inline std::vector<std::string> ObjectDifferences(const std::map<std::uint64_t, StoredObject>& original,
                                                  const std::map<std::uint64_t, StoredObject>& written) {
    std::vector<std::string> out;
    for (const auto& [handle, object] : original) {
        char line[160];
        const auto it = written.find(handle);
        if (it == written.end()) {
            std::snprintf(line, sizeof line, "%llX type %d: not written",
                          static_cast<unsigned long long>(handle), object.type);
        } else if (it->second.bytes != object.bytes) {
            std::snprintf(line, sizeof line, "%llX type %d: %zu bytes, written %zu, from bit %zu",
                          static_cast<unsigned long long>(handle), object.type, object.bytes.size(),
                          it->second.bytes.size(), FirstDifferentBit(object.bytes, it->second.bytes));
        } else {
            continue;
        }
        out.push_back(line);
    }
    return out;
}

// Erases the database's object of that handle: eOk, or the status of the step that failed.
inline Acad::ErrorStatus EraseObject(AcDbDatabase& db, std::uint64_t handle) {
    AcDbObjectId id;
    Acad::ErrorStatus es = db.getAcDbObjectId(id, false, AcDbHandle(handle));
    if (es != Acad::eOk) return es;
    AcDbObject* object = nullptr;
    es = acdbOpenAcDbObject(object, id, AcDb::kForWrite);
    if (es != Acad::eOk) return es;
    es = object->erase();
    object->close();
    return es;
}

// The DWG file the writer makes of the database in `codePage`.
inline std::vector<std::uint8_t> Rewritten(AcDbDatabase& db, int codePage) {
    std::vector<std::uint8_t> out;
    dwg::DwgWriteReport report;
    EXPECT_EQ(dwg::WriteDwgBytes(db, codePage, out, report), Acad::eOk);
    return out;
}

// The same with the writer's own encoding of every object: the bytes kept from the read dropped.
inline std::vector<std::uint8_t> OwnEncoding(AcDbDatabase& db, int codePage) {
    db.dwgFiledObjects() = {};
    return Rewritten(db, codePage);
}

}  // namespace dwg_test
