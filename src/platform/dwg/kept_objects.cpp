#include "platform/dwg/kept_objects.hpp"

#include <algorithm>

#include "platform/dwg/bit_reader.hpp"
#include "platform/dwg/common.hpp"
#include "platform/dwg/decode.hpp"

namespace dwg {

namespace {

bool FitsTheWrittenFile(std::uint64_t handle, const AcDbDatabase::DwgKeptObject& kept, std::int32_t& type,
                        const WriteContext& c) {
    // The data of another version, or with texts of another code page, is not the written file's.
    if (kept.ac1018CodePage != c.options.codePage) return false;
    BitReader r(kept.data, Version::kR2004);
    type = r.OT();
    r.RL();
    const std::uint64_t self = r.H().value;
    if (r.failed() || self != handle) return false;
    // A fixed kind keeps its number; a drawing's own kind needs the number the written classes
    // give its name.
    return type < kFirstClass || c.classNumber(kept.typeName) == type;
}

// The block record that lists an entity: the space its mode names, or its owner.
std::uint64_t BlockOf(const std::vector<std::uint8_t>& framed, const WriteContext& c) {
    ObjectStreams o;
    MapError error;
    if (!OpenObject(framed, 0, Version::kR2004, c.options.codePage, o, error, false)) return 0;
    EntityCommon common;
    ReadEntityCommon(o, common);
    if (o.data.failed() || o.handles.failed()) return 0;
    return common.mode == 1 ? c.paperSpace : common.mode == 2 ? c.modelSpace : common.owner;
}

}  // namespace

void WriteKeptObjects(const std::vector<ClassRecord>& classes, WriteContext& c) {
    BitWriter scratch(Version::kR2004, c.options.codePage);
    for (const auto& [handle, kept] : c.kept) {
        std::int32_t type = 0;
        if (c.written(handle) || !FitsTheWrittenFile(handle, *kept, type, c)) continue;
        std::vector<std::uint8_t> framed = FramedObject(kept->data, scratch);
        if (!IsEntityType(type, classes)) {
            c.add(handle, std::move(framed));
        } else if (const std::uint64_t block = BlockOf(framed, c); block != 0) {
            c.keptEntities[block].emplace_back(handle, std::move(framed));
        } else {
            continue;
        }
        if (kept->listedBy != 0) c.keptListed[kept->listedBy].push_back(handle);
    }
    for (auto& [by, handles] : c.keptListed) std::sort(handles.begin(), handles.end());
}

void AddKeptEntities(std::uint64_t block, std::vector<std::uint64_t>& entities, WriteContext& c) {
    const auto it = c.keptEntities.find(block);
    if (it == c.keptEntities.end()) return;
    for (auto& kept : it->second) {
        const std::uint64_t handle = kept.first;
        const auto after = std::find_if(entities.begin(), entities.end(), [&](std::uint64_t h) { return h > handle; });
        entities.insert(after, handle);
        c.add(handle, std::move(kept.second));
    }
    c.keptEntities.erase(it);
}

}  // namespace dwg
