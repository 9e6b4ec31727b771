#include "platform/dwg/dxf_source.hpp"

#include <charconv>

#include "platform/dxf/tagger.hpp"

namespace dwg {

std::uint64_t ParseHandle(std::string_view text) {
    std::uint64_t value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value, 16);
    return value;
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
    for (const auto& [c, v] : tags) {
        if (c != code) continue;
        double value = fallback;
        return dxf::ParseDouble(v, value) ? value : fallback;
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

Point3 SourceRecord::point(int code, Point3 fallback) const {
    if (!has(code)) return fallback;
    return {real(code), real(code + 10), real(code + 20)};
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
    SourceRecord out{type, {}};
    bool inside = false;
    for (const auto& [c, v] : tags) {
        if (c == 100) {
            inside = v == marker;
        } else if (inside) {
            out.tags.emplace_back(c, v);
        }
    }
    return out;
}

const SourceRecord* SourceDrawing::variable(std::string_view name) const {
    for (const auto& [n, r] : header) {
        if (n == name) return &r;
    }
    return nullptr;
}

namespace {

// Splits the tags into records at each 0 tag, each record's list allocated once.
std::vector<SourceRecord> Records(std::span<const SourceTag> tags) {
    std::vector<SourceRecord> out;
    size_t i = 0;
    while (i < tags.size() && tags[i].first != 0) ++i;
    while (i < tags.size()) {
        size_t end = i + 1;
        while (end < tags.size() && tags[end].first != 0) ++end;
        out.push_back({tags[i].second, {tags.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                                        tags.begin() + static_cast<std::ptrdiff_t>(end)}});
        i = end;
    }
    return out;
}

void ReadHeader(const SourceRecord& section, SourceDrawing& out) {
    for (const auto& [code, value] : section.tags) {
        if (code == 9) {
            out.header.push_back({value, {}});
        } else if (code != 2 && !out.header.empty()) {
            out.header.back().second.tags.emplace_back(code, value);
        }
    }
}

}  // namespace

bool ReadSource(std::span<const SourceTag> tags, SourceDrawing& out, std::string& error) {
    std::vector<SourceRecord> records = Records(tags);
    std::string_view section;
    for (SourceRecord& r : records) {
        if (r.type == "SECTION") {
            section = r.text(2);
            if (section == "HEADER") ReadHeader(r, out);
            continue;
        }
        if (r.type == "ENDSEC" || r.type == "EOF") continue;
        if (section == "CLASSES") {
            out.classes.push_back(std::move(r));
        } else if (section == "TABLES") {
            if (r.type == "TABLE") {
                out.tables.push_back({r.text(2), r.handle(5), {}});
            } else if (r.type != "ENDTAB" && !out.tables.empty()) {
                out.tables.back().records.push_back(std::move(r));
            }
        } else if (section == "BLOCKS") {
            if (r.type == "BLOCK") {
                out.blocks.push_back({std::move(r), {}, {}});
            } else if (out.blocks.empty()) {
                continue;
            } else if (r.type == "ENDBLK") {
                out.blocks.back().end = std::move(r);
            } else {
                out.blocks.back().entities.push_back(std::move(r));
            }
        } else if (section == "ENTITIES") {
            out.entities.push_back(std::move(r));
        } else if (section == "OBJECTS") {
            out.objects.push_back(std::move(r));
        }
    }
    if (out.tables.empty()) {
        error = "the drawing has no tables";
        return false;
    }
    return true;
}

}  // namespace dwg
