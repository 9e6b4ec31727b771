#pragma once
// Values of a record's tags as the reader takes them, and the walk over a record's body that
// the entity and table readers share.
#include <cctype>
#include <cmath>
#include <iterator>
#include <string>
#include <string_view>

#include "platform/db/database.hpp"
#include "platform/dxf/angle_text.hpp"
#include "platform/dxf/model.hpp"
#include "platform/dxf/tagger.hpp"

namespace dxf {

inline double Real(std::string_view v) {
    double d = 0.0;
    ParseDouble(v, d);
    return d;
}

inline long long Integer(std::string_view v) {
    long long i = 0;
    if (ParseInteger(v, i)) return i;
    double d = Real(v);
    return std::fabs(d) < 9.2e18 ? static_cast<long long>(d) : 0;
}

// An enumerated value of the file, kept within the enumeration's range.
template <typename E>
E Enumerated(std::string_view v, int low, int high, E fallback) {
    long long i = Integer(v);
    return i < low || i > high ? fallback : static_cast<E>(i);
}

inline std::string Upper(std::wstring_view s) {
    std::string out = Utf8(s);
    for (auto& c : out) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return out;
}

// Sets coordinate `axis` (0 x, 1 y, 2 z) of a point from a group code of base+10*axis.
inline void SetAxis(AcGePoint3d& p, int code, int base, double v) { p[(code - base) / 10] = v; }
inline void SetAxis(AcGeVector3d& p, int code, int base, double v) {
    if (code == base) p.x = v;
    else if (code == base + 10) p.y = v;
    else p.z = v;
}

// Calls fn(marker, tag) for the tags of the record after its head, skipping application
// groups and stopping at an embedded object.
template <typename Fn>
void ForEachBodyTag(const AcDbRawTags& tags, Fn fn) {
    if (tags.empty()) return;
    std::string_view marker;
    for (auto it = std::next(tags.begin()), end = tags.end(); it != end; ++it) {
        AcDbRawTag t = *it;
        if (t.code == 101) return;
        if (t.code == 100) {
            marker = t.value;
            continue;
        }
        if (t.code == 102) {
            do ++it;
            while (it != end && it->code != 102);
            if (it == end) return;
            continue;
        }
        if (marker.empty() && (t.code == 5 || t.code == 105 || t.code == 330)) continue;
        fn(marker, t);
    }
}

// False for the tags of the AcDbEntity subclass, which every entity shares.
inline bool InEntityPart(std::string_view marker) { return marker != "AcDbEntity"; }

}  // namespace dxf
