#include "platform/dwg/dxf_source.hpp"

#include <algorithm>

#include "platform/dxf/angle_text.hpp"
#include "platform/dxf/tagger.hpp"

namespace dwg {

// The hexadecimal digits from the start, up to the first other character; 0 when they do not
// fit in 64 bits.
std::uint64_t ParseHandle(std::string_view text) {
    std::uint64_t value = 0;
    for (const char c : text) {
        unsigned digit;
        if (c >= '0' && c <= '9') {
            digit = static_cast<unsigned>(c - '0');
        } else if ((c | 0x20) >= 'a' && (c | 0x20) <= 'f') {
            digit = static_cast<unsigned>((c | 0x20) - 'a' + 10);
        } else {
            break;
        }
        if (value >> 60 != 0) return 0;
        value = (value << 4) | digit;
    }
    return value;
}

bool TagReal(const SourceTag& tag, double& value) {
    if (!tag.isNumber()) return dxf::ParseDouble(tag.text(), value);
    value = tag.number();
    return true;
}

bool SourceRecord::has(int code) const {
    for (const auto& [c, v] : tags) {
        if (c == code) return true;
    }
    return false;
}

std::string_view SourceRecord::text(int code) const {
    for (const auto& [c, v] : tags) {
        if (c == code) return v;
    }
    return {};
}

double SourceRecord::real(int code, double fallback) const {
    for (const SourceTag& t : tags) {
        if (t.code() != code) continue;
        double value = fallback;
        return TagReal(t, value) ? value : fallback;
    }
    return fallback;
}

double SourceRecord::angle(int code, double fallback) const {
    for (const auto& [c, v] : tags) {
        if (c == code) return dxf::Radians(v);
    }
    return fallback;
}

long long SourceRecord::integer(int code, long long fallback) const {
    for (const auto& [c, v] : tags) {
        if (c != code) continue;
        long long value = fallback;
        return dxf::ParseInteger(v, value) ? value : fallback;
    }
    return fallback;
}

std::uint64_t SourceRecord::handle(int code) const { return ParseHandle(text(code)); }

namespace {

double Number(const SourceTag& tag) {
    double value = 0;
    return TagReal(tag, value) ? value : 0;
}

}  // namespace

// The first tag of each coordinate's code, found in one walk over the tags.
Point3 SourceRecord::point(int code, Point3 fallback) const {
    const SourceTag* x = nullptr;
    const SourceTag* y = nullptr;
    const SourceTag* z = nullptr;
    for (const SourceTag& t : tags) {
        const int c = t.code();
        if (c == code) {
            if (x == nullptr) x = &t;
        } else if (c == code + 10) {
            if (y == nullptr) y = &t;
        } else if (c == code + 20) {
            if (z == nullptr) z = &t;
        }
    }
    if (x == nullptr) return fallback;
    return {Number(*x), y != nullptr ? Number(*y) : 0, z != nullptr ? Number(*z) : 0};
}

Point2 SourceRecord::point2(int code) const { return {real(code), real(code + 10)}; }

std::vector<std::uint64_t> SourceRecord::group(std::string_view name, int code) const {
    std::vector<std::uint64_t> out;
    bool inside = false;
    for (const auto& [c, v] : tags) {
        if (c == 102) {
            inside = v == name;
        } else if (inside && c == code) {
            out.push_back(ParseHandle(v));
        }
    }
    return out;
}

std::uint64_t SourceRecord::owner() const {
    bool inside = false;
    for (const auto& [c, v] : tags) {
        if (c == 100) break;  // the head ends at the first subclass
        if (c == 102) inside = !v.empty() && v.front() == '{';
        if (!inside && c == 330) return ParseHandle(v);
    }
    return 0;
}

SourceRecord SourceRecord::subclass(std::string_view marker) const {
    const auto isMarker = [](const SourceTag& t) { return t.code() == 100; };
    auto begin = std::find_if(tags.begin(), tags.end(),
                              [&](const SourceTag& t) { return t.code() == 100 && t.text() == marker; });
    if (begin != tags.end()) ++begin;
    return {type, {begin, std::find_if(begin, tags.end(), isMarker)}};
}

const SourceRecord* SourceDrawing::variable(std::string_view name) const {
    for (const auto& [n, r] : header) {
        if (n == name) return &r;
    }
    return nullptr;
}

namespace {

// The runs of tags that each start with a tag of the code: the name (its value) and the tags
// after it up to the next run. Tags before the first run belong to none.
template <typename Add>
void Runs(std::span<const SourceTag> tags, int code, Add add) {
    const auto starts = [code](const SourceTag& t) { return t.code() == code; };
    auto at = std::find_if(tags.begin(), tags.end(), starts);
    while (at != tags.end()) {
        const auto end = std::find_if(at + 1, tags.end(), starts);
        add(at->text(), std::span<const SourceTag>(at + 1, end));
        at = end;
    }
}

// The variables of the HEADER section: each a 9 tag with its name and the tags up to the next.
void ReadHeader(const SourceRecord& section, SourceDrawing& out) {
    Runs(section.tags, 9, [&](std::string_view name, std::span<const SourceTag> rest) {
        out.header.push_back({name, {"", rest}});
    });
}

// Files each record in its section as the records come, in their order.
struct Grouping {
    SourceDrawing& out;
    std::string_view section;

    void add(SourceRecord r) {
        if (r.type == "SECTION") {
            section = r.text(2);
            if (section == "HEADER") ReadHeader(r, out);
            return;
        }
        if (r.type == "ENDSEC" || r.type == "EOF") return;
        if (section == "CLASSES") {
            out.classes.push_back(r);
        } else if (section == "TABLES") {
            if (r.type == "TABLE") {
                out.tables.push_back({r.text(2), r.handle(5), {}, r});
            } else if (r.type != "ENDTAB" && !out.tables.empty()) {
                out.tables.back().records.push_back(r);
            }
        } else if (section == "BLOCKS") {
            addToBlock(r);
        } else if (section == "ENTITIES") {
            out.entities.push_back(r);
        } else if (section == "OBJECTS") {
            out.objects.push_back(r);
        }
    }
    void addToBlock(const SourceRecord& r) {
        if (r.type == "BLOCK") {
            out.blocks.push_back({r, {}, {}});
        } else if (out.blocks.empty()) {
            return;
        } else if (r.type == "ENDBLK") {
            out.blocks.back().end = r;
        } else {
            out.blocks.back().entities.push_back(r);
        }
    }
};

}  // namespace

bool ReadSource(std::span<const std::span<const SourceTag>> parts, SourceDrawing& out,
                std::string& error) {
    Grouping grouping{out, {}};
    for (std::span<const SourceTag> part : parts) {
        Runs(part, 0, [&](std::string_view type, std::span<const SourceTag> rest) {
            grouping.add({type, rest});
        });
    }
    if (out.tables.empty()) {
        error = "the drawing has no tables";
        return false;
    }
    return true;
}

bool ReadSource(std::span<const SourceTag> tags, SourceDrawing& out, std::string& error) {
    return ReadSource(std::span<const std::span<const SourceTag>>(&tags, 1), out, error);
}

}  // namespace dwg
