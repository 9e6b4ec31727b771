#include "platform/dwg/objects.hpp"

namespace dwg {

bool ReadDictionary(ObjectStreams& o, DictionaryRecord& out) {
    ReadObjectCommon(o, out.common);
    BitReader& d = o.data;
    const std::int32_t count = d.BL();
    if (count < 0 || static_cast<std::size_t>(count) > o.size * 8) return false;
    if (d.version() == Version::kR14) d.RC();
    if (d.version() >= Version::kR2000) {
        out.cloning = d.BS();
        out.hardOwner = d.RC();
    }
    out.entries.reserve(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count && !d.failed(); ++i) out.entries.emplace_back(o.text().T(), 0);
    for (auto& entry : out.entries) entry.second = ReadHandle(o);
    return !d.failed() && !o.handles.failed() && !o.strings.failed();
}

bool ReadDictionaryWithDefault(ObjectStreams& o, DictionaryRecord& out) {
    if (!ReadDictionary(o, out)) return false;
    out.withDefault = true;
    out.defaultEntry = ReadHandle(o);
    return !o.handles.failed();
}

}  // namespace dwg
