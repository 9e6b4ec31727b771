#include "platform/dwg/xrecord.hpp"

#include <charconv>
#include <cstdio>

#include "platform/dxf/angle_text.hpp"
#include "platform/dxf/codepage.hpp"

namespace dwg {
namespace {

using Kind = DataKind;

bool Within(int code, int low, int high) { return code >= low && code <= high; }

}  // namespace

DataKind DataKindOf(int code) {
    if (Within(code, 10, 17) || Within(code, 110, 112) || code == 210 || Within(code, 1010, 1013)) {
        return Kind::kPoint;
    }
    if (Within(code, 18, 59) || Within(code, 113, 149) || Within(code, 211, 239) ||
        Within(code, 460, 469) || Within(code, 1014, 1059)) {
        return Kind::kReal;
    }
    if (Within(code, 60, 79) || Within(code, 170, 179) || Within(code, 270, 279) ||
        Within(code, 370, 389) || Within(code, 400, 409) || Within(code, 1060, 1070)) {
        return Kind::kShort;
    }
    if (Within(code, 90, 99) || Within(code, 420, 429) || Within(code, 440, 459) ||
        code == 1071) {
        return Kind::kLong;
    }
    if (Within(code, 160, 169)) return Kind::kLongLong;
    if (Within(code, 280, 299)) return Kind::kChar;
    if (Within(code, 310, 319) || code == 1004) return Kind::kBinary;
    if (Within(code, 320, 369) || Within(code, 390, 399) || Within(code, 480, 481)) {
        return Kind::kHandle;
    }
    return Kind::kString;
}

namespace {

std::string Real(double value) {
    char buffer[32];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
    std::string text(buffer, end);
    if (text.find_first_of(".eEn") == std::string::npos) text += ".0";
    return text;
}

std::string String(BitReader& d) {
    const unsigned length = d.RS();
    if (d.version() >= Version::kR2007) {
        std::string text;
        for (unsigned i = 0; i < length && !d.failed(); ++i) {
            const unsigned unit = d.RS();
            if (unit != 0) dxf::AppendUtf8(text, unit);
        }
        return text;
    }
    d.RC();  // the code page, the drawing's own
    std::string raw = d.bytes(length);
    while (!raw.empty() && raw.back() == '\0') raw.pop_back();
    std::string text;
    dxf::DecodeCodePage(raw, d.codePage(), text);
    return text;
}

}  // namespace

bool ReadDataGroup(BitReader& d, std::vector<std::pair<int, std::string>>& out) {
    const int code = d.RS();
    switch (DataKindOf(code)) {
        case Kind::kPoint: {
            const double x = d.RD(), y = d.RD(), z = d.RD();
            out.emplace_back(code, Real(x));
            out.emplace_back(code + 10, Real(y));
            out.emplace_back(code + 20, Real(z));
            break;
        }
        case Kind::kReal: {
            // Angles (50 to 58) are stored in radians and written in degrees.
            const double value = d.RD();
            if (Within(code, 50, 58)) {
                std::string degrees;
                dxf::FormatAngle(value, degrees);
                out.emplace_back(code, std::move(degrees));
            } else {
                out.emplace_back(code, Real(value));
            }
            break;
        }
        case Kind::kShort: out.emplace_back(code, std::to_string(static_cast<std::int16_t>(d.RS()))); break;
        case Kind::kLong: out.emplace_back(code, std::to_string(static_cast<std::int32_t>(d.RL()))); break;
        case Kind::kLongLong: {
            const std::uint64_t low = d.RL();
            out.emplace_back(code, std::to_string(low | (std::uint64_t{d.RL()} << 32)));
            break;
        }
        case Kind::kChar: out.emplace_back(code, std::to_string(d.RC())); break;
        case Kind::kBinary: out.emplace_back(code, HexDigits(d.bytes(d.RC()))); break;
        case Kind::kHandle: {
            const std::uint64_t low = d.RL();
            const std::uint64_t value = low | (std::uint64_t{d.RL()} << 32);
            char buffer[20];
            std::snprintf(buffer, sizeof buffer, "%llX", static_cast<unsigned long long>(value));
            out.emplace_back(code, buffer);
            break;
        }
        case Kind::kString: out.emplace_back(code, String(d)); break;
    }
    return !d.failed();
}

bool ReadXRecord(ObjectStreams& o, XRecordRecord& out) {
    ReadObjectCommon(o, out.common);
    BitReader& d = o.data;
    const std::int32_t size = d.BL();
    if (size < 0 || static_cast<std::size_t>(size) > o.size) return false;
    // The groups fill a run of bytes of their own.
    const std::string bytes = d.bytes(static_cast<std::size_t>(size));
    BitReader groups(std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()),
                     d.version(), d.codePage());
    while (groups.bitPosition() < groups.bitEnd() && ReadDataGroup(groups, out.groups)) {
    }
    if (groups.failed()) return false;
    if (d.version() >= Version::kR2000) out.cloning = d.BS();
    while (o.handles.bitEnd() - o.handles.bitPosition() >= 8 && !o.handles.failed()) {
        out.references.push_back(ReadHandle(o));
    }
    return !d.failed() && !o.handles.failed();
}

}  // namespace dwg
