#include "platform/dwg/kept_objects.hpp"

#include "platform/dwg/bit_reader.hpp"
#include "platform/dwg/decode.hpp"

namespace dwg {

namespace {

bool FitsTheWrittenFile(std::uint64_t handle, const AcDbDatabase::DwgKeptObject& kept,
                        const std::vector<ClassRecord>& classes, const WriteContext& c) {
    BitReader r(kept.data, Version::kR2004);
    const std::int32_t type = r.OT();
    r.RL();
    const std::uint64_t self = r.H().value;
    if (r.failed() || self != handle || IsEntityType(type, classes)) return false;
    // A fixed kind keeps its number; a drawing's own kind needs the number the written classes
    // give its name.
    return type < kFirstClass || c.classNumber(kept.typeName) == type;
}

}  // namespace

void WriteKeptObjects(const std::vector<ClassRecord>& classes, WriteContext& c) {
    BitWriter scratch(Version::kR2004, c.options.codePage);
    for (const auto& [handle, kept] : c.kept) {
        if (c.written(handle) || !FitsTheWrittenFile(handle, *kept, classes, c)) continue;
        c.add(handle, FramedObject(kept->data, scratch));
    }
}

}  // namespace dwg
