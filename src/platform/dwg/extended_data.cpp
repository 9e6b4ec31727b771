#include "platform/dwg/extended_data.hpp"

#include <charconv>
#include <cstring>

#include "platform/dxf/codepage.hpp"

namespace dwg {
namespace {

// Reads the bytes of one application's data: numbers low byte first, handles high byte first.
class ItemReader {
public:
    explicit ItemReader(const std::string& bytes) : bytes_(bytes) {}
    bool done() const { return at_ >= bytes_.size(); }
    bool has(std::size_t count) const { return bytes_.size() - at_ >= count; }
    std::uint8_t byte() { return static_cast<std::uint8_t>(bytes_[at_++]); }
    std::uint64_t little(std::size_t count) {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < count; ++i) value |= static_cast<std::uint64_t>(byte()) << (8 * i);
        return value;
    }
    std::string take(std::size_t count) {
        std::string out = bytes_.substr(at_, count);
        at_ += count;
        return out;
    }

private:
    const std::string& bytes_;
    std::size_t at_ = 0;
};

std::string Real(double value) {
    char buffer[40];
    auto end = std::to_chars(buffer, buffer + 32, value).ptr;
    if (std::string_view(buffer, end).find_first_of(".eEn") == std::string_view::npos) {
        *end++ = '.';
        *end++ = '0';
    }
    return std::string(buffer, end);
}

std::string Hex(std::uint64_t value) {
    char buffer[20];
    char* end = std::to_chars(buffer, buffer + sizeof buffer, value, 16).ptr;
    for (char* c = buffer; c != end; ++c) *c = static_cast<char>(std::toupper(static_cast<unsigned char>(*c)));
    return std::string(buffer, end);
}

double RealOf(std::uint64_t raw) {
    double value;
    std::memcpy(&value, &raw, sizeof value);
    return value;
}

// One item as its groups (three for a point); false when the bytes do not hold it.
bool ReadItem(ItemReader& in, const std::unordered_map<std::uint64_t, std::string>& layers, int codePage,
              std::vector<ExtendedGroup>& out) {
    const int code = 1000 + in.byte();
    switch (code) {
        case 1000: {
            if (!in.has(3)) return false;
            const std::size_t length = in.byte();
            in.little(2);  // the code page's number (high byte first): the drawing's
            if (!in.has(length)) return false;
            std::string text;
            dxf::DecodeCodePage(in.take(length), codePage, text);
            out.emplace_back(code, std::move(text));
            return true;
        }
        case 1002:
            if (!in.has(1)) return false;
            out.emplace_back(code, in.byte() == 0 ? "{" : "}");
            return true;
        case 1003:
        case 1005: {
            if (!in.has(8)) return false;
            std::uint64_t handle = 0;
            for (int i = 0; i < 8; ++i) handle = (handle << 8) | in.byte();
            if (code == 1005) {
                out.emplace_back(code, Hex(handle));
                return true;
            }
            const auto layer = layers.find(handle);
            if (layer == layers.end()) return false;
            out.emplace_back(code, layer->second);
            return true;
        }
        case 1004: {
            if (!in.has(1)) return false;
            const std::size_t length = in.byte();
            if (!in.has(length)) return false;
            out.emplace_back(code, HexDigits(in.take(length)));
            return true;
        }
        case 1010: case 1011: case 1012: case 1013:
            if (!in.has(24)) return false;
            for (int axis = 0; axis < 3; ++axis) out.emplace_back(code + 10 * axis, Real(RealOf(in.little(8))));
            return true;
        case 1040: case 1041: case 1042:
            if (!in.has(8)) return false;
            out.emplace_back(code, Real(RealOf(in.little(8))));
            return true;
        case 1070:
            if (!in.has(2)) return false;
            out.emplace_back(code, std::to_string(static_cast<std::int16_t>(in.little(2))));
            return true;
        case 1071:
            if (!in.has(4)) return false;
            out.emplace_back(code, std::to_string(static_cast<std::int32_t>(in.little(4))));
            return true;
        default:
            return false;
    }
}

}  // namespace

std::vector<ExtendedGroup> ExtendedGroupsOf(const std::vector<ExtendedData>& extended,
                                            const std::unordered_map<std::uint64_t, std::string>& applications,
                                            const std::unordered_map<std::uint64_t, std::string>& layers,
                                            int codePage) {
    std::vector<ExtendedGroup> out;
    for (const ExtendedData& eed : extended) {
        const auto application = applications.find(eed.application);
        if (application == applications.end()) continue;
        std::vector<ExtendedGroup> items;
        ItemReader in(eed.bytes);
        bool whole = true;
        while (whole && !in.done()) whole = ReadItem(in, layers, codePage, items);
        if (!whole) continue;
        out.emplace_back(1001, application->second);
        out.insert(out.end(), items.begin(), items.end());
    }
    return out;
}

namespace {

void PutLittle(std::string& out, std::uint64_t value, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) out.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
}

bool ParseNumber(const std::string& text, double& value) {
    const char* end = text.data() + text.size();
    return std::from_chars(text.data(), end, value).ptr == end;
}

bool ParseWhole(const std::string& text, long long& value) {
    const char* end = text.data() + text.size();
    return std::from_chars(text.data(), end, value).ptr == end;
}

// Appends the bytes of the group at `i` (and of the two that follow a point's first); false
// when the format cannot hold it.
bool PutItem(const std::vector<ExtendedGroup>& groups, std::size_t& i,
             const std::unordered_map<std::string, std::uint64_t>& layers, int dwgCodePage, int codePage,
             std::string& out) {
    const auto& [code, value] = groups[i];
    const auto marker = static_cast<char>(code - 1000);
    if (code == 1000) {
        std::string text;
        dxf::EncodeText(value, codePage, text);
        if (text.size() > 255) return false;
        out.push_back(marker);
        out.push_back(static_cast<char>(text.size()));
        // The code page number is stored high byte first.
        out.push_back(static_cast<char>((dwgCodePage >> 8) & 0xFF));
        out.push_back(static_cast<char>(dwgCodePage & 0xFF));
        out += text;
    } else if (code == 1002) {
        out.push_back(marker);
        out.push_back(value == "}" ? 1 : 0);
    } else if (code == 1003 || code == 1005) {
        std::uint64_t handle = 0;
        if (code == 1003) {
            std::string key = value;
            for (char& ch : key) ch = static_cast<char>(std::toupper(static_cast<unsigned char>(ch)));
            const auto layer = layers.find(key);
            if (layer == layers.end()) return false;
            handle = layer->second;
        } else if (std::from_chars(value.data(), value.data() + value.size(), handle, 16).ptr !=
                   value.data() + value.size()) {
            return false;
        }
        out.push_back(marker);
        for (int shift = 56; shift >= 0; shift -= 8) out.push_back(static_cast<char>((handle >> shift) & 0xFF));
    } else if (code == 1004) {
        if (value.size() % 2 != 0 || value.size() > 510) return false;
        out.push_back(marker);
        out.push_back(static_cast<char>(value.size() / 2));
        for (std::size_t k = 0; k < value.size(); k += 2) {
            unsigned byte = 0;
            if (std::from_chars(value.data() + k, value.data() + k + 2, byte, 16).ptr != value.data() + k + 2) return false;
            out.push_back(static_cast<char>(byte));
        }
    } else if (code >= 1010 && code <= 1013) {
        out.push_back(marker);
        for (int axis = 0; axis < 3; ++axis) {
            double coordinate = 0;
            if (axis > 0) {
                if (i + 1 >= groups.size() || groups[i + 1].first != code + 10 * axis) return false;
                ++i;
            }
            if (!ParseNumber(groups[i].second, coordinate)) return false;
            std::uint64_t raw;
            std::memcpy(&raw, &coordinate, sizeof raw);
            PutLittle(out, raw, 8);
        }
    } else if (code >= 1040 && code <= 1042) {
        double number = 0;
        if (!ParseNumber(value, number)) return false;
        std::uint64_t raw;
        std::memcpy(&raw, &number, sizeof raw);
        out.push_back(marker);
        PutLittle(out, raw, 8);
    } else if (code == 1070 || code == 1071) {
        long long number = 0;
        if (!ParseWhole(value, number)) return false;
        out.push_back(marker);
        PutLittle(out, static_cast<std::uint64_t>(number), code == 1070 ? 2 : 4);
    } else {
        return false;
    }
    return true;
}

}  // namespace

std::vector<ExtendedData> ExtendedDataOfGroups(const std::vector<ExtendedGroup>& groups,
                                               const std::unordered_map<std::string, std::uint64_t>& applications,
                                               const std::unordered_map<std::string, std::uint64_t>& layers,
                                               int dwgCodePage, int codePage) {
    std::vector<ExtendedData> out;
    std::size_t i = 0;
    while (i < groups.size() && groups[i].first != 1001) ++i;
    while (i < groups.size()) {
        std::string key = groups[i].second;
        for (char& ch : key) ch = static_cast<char>(std::toupper(static_cast<unsigned char>(ch)));
        const auto application = applications.find(key);
        ExtendedData eed;
        eed.application = application == applications.end() ? 0 : application->second;
        bool whole = eed.application != 0;
        for (++i; i < groups.size() && groups[i].first != 1001; ++i) {
            if (whole) whole = PutItem(groups, i, layers, dwgCodePage, codePage, eed.bytes);
        }
        if (whole && !eed.bytes.empty()) out.push_back(std::move(eed));
    }
    return out;
}

}  // namespace dwg
