#include "platform/dxf/tagger.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

namespace dxf {

namespace {

constexpr ValueKind KindByRange(int code) {
    if (code < 0) return ValueKind::kInvalid;
    if (code <= 9) return ValueKind::kString;
    if (code <= 59) return ValueKind::kDouble;
    if (code <= 79) return code >= 60 ? ValueKind::kInt16 : ValueKind::kInvalid;
    if (code <= 89) return ValueKind::kInvalid;
    if (code <= 99) return ValueKind::kInt32;
    if (code == 100 || code == 101 || code == 102) return ValueKind::kString;
    if (code == 105) return ValueKind::kHandle;
    if (code >= 110 && code <= 149) return ValueKind::kDouble;
    if (code >= 160 && code <= 169) return ValueKind::kInt64;
    if (code >= 170 && code <= 179) return ValueKind::kInt16;
    if (code >= 210 && code <= 239) return ValueKind::kDouble;
    if (code >= 270 && code <= 289) return ValueKind::kInt16;
    if (code >= 290 && code <= 299) return ValueKind::kBool;
    if (code >= 300 && code <= 309) return ValueKind::kString;
    if (code >= 310 && code <= 319) return ValueKind::kBinary;
    if (code >= 320 && code <= 369) return ValueKind::kHandle;
    if (code >= 370 && code <= 389) return ValueKind::kInt16;
    if (code >= 390 && code <= 399) return ValueKind::kHandle;
    if (code >= 400 && code <= 409) return ValueKind::kInt16;
    if (code >= 410 && code <= 419) return ValueKind::kString;
    if (code >= 420 && code <= 429) return ValueKind::kInt32;
    if (code >= 430 && code <= 439) return ValueKind::kString;
    if (code >= 440 && code <= 459) return ValueKind::kInt32;
    if (code >= 460 && code <= 469) return ValueKind::kDouble;
    if (code >= 470 && code <= 479) return ValueKind::kString;
    if (code == 480 || code == 481) return ValueKind::kHandle;
    if (code == 999) return ValueKind::kString;
    if (code >= 1000 && code <= 1003) return ValueKind::kString;
    if (code == 1004) return ValueKind::kBinary;
    if (code >= 1005 && code <= 1009) return code == 1005 ? ValueKind::kHandle : ValueKind::kString;
    if (code >= 1010 && code <= 1059) return ValueKind::kDouble;
    if (code >= 1060 && code <= 1070) return ValueKind::kInt16;
    if (code == 1071) return ValueKind::kInt32;
    return ValueKind::kInvalid;
}

}  // namespace

// Filled when the program is loaded, before any code that may read a tag runs.
constinit const std::array<ValueKind, kGroupCodeCount> kGroupCodeKinds = [] {
    std::array<ValueKind, kGroupCodeCount> table{};
    for (int c = 0; c < kGroupCodeCount; ++c) table[static_cast<size_t>(c)] = KindByRange(c);
    return table;
}();

bool TagCursor::readLine(std::string_view& line) {
    if (m_pos >= m_text.size()) return false;
    // Lines are short: a plain scan beats a library search here.
    const char* start = m_text.data() + m_pos;
    const char* last = m_text.data() + m_text.size();
    const char* nl = start;
    while (nl != last && *nl != '\n') ++nl;
    line = std::string_view(start, static_cast<size_t>(nl - start));
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    m_pos = static_cast<size_t>(nl - m_text.data()) + (nl != last ? 1 : 0);
    ++m_line;
    return true;
}

std::string_view TrimBlanks(std::string_view s) {
    if (s.empty() || (s.front() != ' ' && s.front() != '\t' && s.back() != ' ' && s.back() != '\t'))
        return s;
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
    return s;
}

// A group code of up to four digits, the common case, read without the general conversion.
bool ShortCode(std::string_view t, int& code) {
    if (t.empty() || t.size() > 4) return false;
    code = 0;
    for (char c : t) {
        if (c < '0' || c > '9') return false;
        code = code * 10 + (c - '0');
    }
    return true;
}

bool TagCursor::next(Tag& tag) {
    if (!m_error.empty()) return false;
    std::string_view codeLine;
    if (!readLine(codeLine)) return false;
    tag.line = m_line;
    std::string_view t = TrimBlanks(codeLine);
    int code = 0;
    if (!ShortCode(t, code)) {
        auto [ptr, ec] = std::from_chars(t.data(), t.data() + t.size(), code);
        if (t.empty() || ec != std::errc() || ptr != t.data() + t.size()) {
            m_error = "invalid group code '" + std::string(t.substr(0, 40)) + "'";
            return false;
        }
    }
    std::string_view value;
    if (!readLine(value)) {
        m_error = "file ends after group code " + std::to_string(code);
        return false;
    }
    tag.code = code;
    ValueKind kind = KindOfCode(code);
    tag.value = (kind == ValueKind::kString) ? value : TrimBlanks(value);
    return true;
}

bool IsPlainDecimal(std::string_view text) {
    if (text.empty() || text.size() > 300) return false;  // no range to check below 300 digits
    size_t i = text[0] == '-' ? 1 : 0;
    size_t digits = 0;
    bool point = false;
    for (; i < text.size(); ++i) {
        char c = text[i];
        if (c >= '0' && c <= '9') ++digits;
        else if (c == '.' && !point) point = true;
        else return false;
    }
    return digits > 0;
}

namespace {

// A plain decimal of up to 17 characters whose digits make an integer below 2^53, read exactly:
// the digits and the power of ten are both exact doubles, and one division rounds correctly, so
// the value is the general conversion's. The common case, and much cheaper than that conversion.
bool ParseShortDecimal(std::string_view text, double& value) {
    static constexpr double kPowers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,
                                         1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16};
    if (text.empty() || text.size() > 17) return false;
    const char* p = text.data();
    const char* const end = p + text.size();
    const bool negative = *p == '-';
    if (negative) ++p;
    const char* const first = p;
    const char* point = nullptr;
    std::uint64_t digits = 0;
    for (; p != end; ++p) {
        const auto d = static_cast<unsigned>(*p - '0');
        if (d < 10) {
            digits = digits * 10 + d;
        } else if (*p == '.' && point == nullptr) {
            point = p;
        } else {
            return false;
        }
    }
    const auto decimals = point == nullptr ? 0 : end - point - 1;
    if (end - first == (point == nullptr ? 0 : 1) || digits > (std::uint64_t{1} << 53)) return false;
    const double magnitude = static_cast<double>(digits) / kPowers[decimals];
    value = negative ? -magnitude : magnitude;
    return true;
}

}  // namespace

bool ParseDouble(std::string_view text, double& value) {
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    if (ParseShortDecimal(text, value)) return true;
    auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    return !text.empty() && ec == std::errc() && ptr == text.data() + text.size();
}

bool ParseInteger(std::string_view text, long long& value) {
    if (!text.empty() && text.front() == '+') text.remove_prefix(1);
    auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    return !text.empty() && ec == std::errc() && ptr == text.data() + text.size();
}

namespace {

// Whole numbers below 1e15 as integer digits and ".0", where that is the shortest form: the
// common case, and much cheaper than the general conversion.
bool FormatWholeNumber(double value, std::string& out) {
    if (value != std::trunc(value) || std::fabs(value) >= 1e15) return false;
    char buffer[24];
    auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, static_cast<long long>(value));
    const char* first = buffer[0] == '-' ? buffer + 1 : buffer;
    auto digits = static_cast<int>(end - first);
    int zeros = 0;
    while (zeros < digits - 1 && end[-1 - zeros] == '0') ++zeros;
    int significant = digits - zeros;
    // The exponent form "d.ddde+XX" is chosen when it is shorter.
    if (digits > significant + (significant > 1 ? 1 : 0) + 4) return false;
    out.append(buffer, end);
    out.append(".0");
    return true;
}

}  // namespace

void FormatDouble(double value, std::string& out) {
    if (value == 0.0) value = 0.0;  // no "-0.0"
    if (FormatWholeNumber(value, out)) return;
    char buffer[32];
    auto [ptr, ec] = std::to_chars(buffer, buffer + sizeof buffer, value);
    std::string_view s(buffer, static_cast<size_t>(ptr - buffer));
    out.append(s);
    if (s.find_first_of(".en") == std::string_view::npos) out.append(".0");
}

namespace {

template <typename T>
bool ReadRaw(std::string_view data, size_t& pos, T& value) {
    if (pos + sizeof(T) > data.size()) return false;
    std::memcpy(&value, data.data() + pos, sizeof(T));
    pos += sizeof(T);
    return true;
}

// The version named by $ACADVER decides between 1-byte (R12) and 2-byte group codes.
bool HasOneByteCodes(std::string_view data) {
    size_t at = data.substr(0, 2048).find("$ACADVER");
    if (at == std::string_view::npos) return true;
    size_t v = data.find("AC10", at);
    if (v == std::string_view::npos || v > at + 16) return true;
    return data.substr(v, 6) <= "AC1009";
}

void AppendNumber(std::string& text, long long v) {
    char buffer[24];
    auto [ptr, ec] = std::to_chars(buffer, buffer + sizeof buffer, v);
    text.append(buffer, ptr);
}

// Reads one little-endian integer of a binary file and appends it as ASCII text.
template <typename T>
bool CopyBinaryInteger(std::string_view data, size_t& pos, std::string& text) {
    T v = 0;
    if (!ReadRaw(data, pos, v)) return false;
    AppendNumber(text, v);
    return true;
}

}  // namespace

bool BinaryToText(std::string_view data, std::string& text, std::string& error) {
    static const char* hex = "0123456789ABCDEF";
    bool oneByte = HasOneByteCodes(data);
    size_t pos = kBinarySentinel.size();
    text.reserve(data.size() * 2);
    while (pos < data.size()) {
        size_t tagStart = pos;
        int code = 0;
        if (oneByte) {
            std::uint8_t b = 0;
            ReadRaw(data, pos, b);
            code = b;
            if (b == 255) {
                std::uint16_t c = 0;
                if (!ReadRaw(data, pos, c)) break;
                code = c;
            }
        } else {
            std::uint16_t c = 0;
            if (!ReadRaw(data, pos, c)) break;
            code = c;
        }
        AppendNumber(text, code);
        text += '\n';
        bool ok = true;
        switch (KindOfCode(code)) {
            case ValueKind::kDouble: {
                double d = 0;
                ok = ReadRaw(data, pos, d);
                FormatDouble(d, text);
                break;
            }
            case ValueKind::kInt16:
                ok = CopyBinaryInteger<std::int16_t>(data, pos, text);
                break;
            case ValueKind::kInt32:
                ok = CopyBinaryInteger<std::int32_t>(data, pos, text);
                break;
            case ValueKind::kInt64:
                ok = CopyBinaryInteger<std::int64_t>(data, pos, text);
                break;
            case ValueKind::kBool:
                ok = CopyBinaryInteger<std::uint8_t>(data, pos, text);
                break;
            case ValueKind::kBinary: {
                std::uint8_t n = 0;
                ok = ReadRaw(data, pos, n) && pos + n <= data.size();
                for (size_t i = 0; ok && i < n; ++i) {
                    auto b = static_cast<std::uint8_t>(data[pos + i]);
                    text += hex[b >> 4];
                    text += hex[b & 15];
                }
                pos += n;
                break;
            }
            case ValueKind::kInvalid:
                error = "invalid group code " + std::to_string(code) + " at byte " +
                        std::to_string(tagStart);
                return false;
            default: {
                size_t end = data.find('\0', pos);
                ok = end != std::string_view::npos;
                if (ok) {
                    // A line break inside a value cannot stand in ASCII; in texts it is a
                    // paragraph break.
                    for (char c : data.substr(pos, end - pos)) {
                        if (c == '\n') text += "\\P";
                        else if (c != '\r') text += c;
                    }
                    pos = end + 1;
                }
            }
        }
        if (!ok) {
            error = "file ends inside the value of group code " + std::to_string(code) +
                    " at byte " + std::to_string(tagStart);
            return false;
        }
        text += '\n';
    }
    return true;
}

}  // namespace dxf
