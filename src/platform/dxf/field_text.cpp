#include "platform/dxf/field_text.hpp"

#include <cctype>
#include <charconv>

#include "platform/dxf/angle_text.hpp"
#include "platform/dxf/tagger.hpp"

namespace dxf {

namespace {

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (std::toupper(static_cast<unsigned char>(a[i])) != std::toupper(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

}  // namespace

// True when two texts of a group code's value stand for the same value.
bool SameText(int code, std::string_view a, std::string_view b) {
    if (a == b) return true;
    ValueKind kind = KindOfCode(code);
    if (kind == ValueKind::kDouble) {
        double x, y;
        return ParseDouble(a, x) && ParseDouble(b, y) && x == y;
    }
    if (IsIntegerKind(kind)) {
        long long x, y;
        return ParseInteger(a, x) && ParseInteger(b, y) && x == y;
    }
    if (kind == ValueKind::kHandle) return EqualIgnoringCase(a, b);
    return false;
}

namespace {

void AppendInteger(long long value, std::string& out) {
    char buffer[24];
    auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value);
    out.append(buffer, end);
}

}  // namespace

// Appends the text of a field's value.
void AppendField(const Field& f, std::string& out) {
    switch (f.kind) {
        case Field::Kind::kText: out += f.text; break;
        case Field::Kind::kReal: FormatDouble(f.real, out); break;
        case Field::Kind::kAngle: FormatAngle(f.real, out); break;
        case Field::Kind::kInteger: AppendInteger(f.integer, out); break;
        case Field::Kind::kHandle: AppendHex(static_cast<std::uint64_t>(f.integer), out); break;
    }
}

// True when the template's text stands for the field's value, so that the text is kept as read.
// Numbers of their own kind compare without formatting the field.
bool SameValue(const Field& f, std::string_view text) {
    ValueKind kind = KindOfCode(f.code);
    if (f.kind == Field::Kind::kReal && kind == ValueKind::kDouble) {
        double x;
        return ParseDouble(text, x) && x == f.real;
    }
    if (f.kind == Field::Kind::kAngle && kind == ValueKind::kDouble) return Radians(text) == f.real;
    if (f.kind == Field::Kind::kInteger && IsIntegerKind(kind)) {
        long long x;
        return ParseInteger(text, x) && x == f.integer;
    }
    if (f.kind == Field::Kind::kText && kind == ValueKind::kString) return text == f.text;
    std::string own;
    AppendField(f, own);
    return SameText(f.code, text, own);
}

}  // namespace dxf
