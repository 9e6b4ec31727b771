#pragma once
// The lowest layer of the codec: group-code/value pairs of a drawing file, read in place from
// the file's bytes without copying.
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace dxf {

enum class ValueKind : std::uint8_t { kString, kDouble, kInt16, kInt32, kInt64, kBool, kHandle,
                                      kBinary, kInvalid };
// The kinds of the group codes 0 to 1071 (every tag asks: a table made once).
inline constexpr int kGroupCodeCount = 1072;
extern const std::array<ValueKind, kGroupCodeCount> kGroupCodeKinds;
// The kind of value a group code carries, by the format's group code ranges.
inline ValueKind KindOfCode(int code) {
    return code >= 0 && code < kGroupCodeCount ? kGroupCodeKinds[static_cast<std::size_t>(code)]
                                               : ValueKind::kInvalid;
}
inline bool IsIntegerKind(ValueKind k) {
    return k == ValueKind::kInt16 || k == ValueKind::kInt32 || k == ValueKind::kInt64 ||
           k == ValueKind::kBool;
}

// The value without the blanks (spaces, tabs) around it, as numbers are read.
std::string_view TrimBlanks(std::string_view s);

// How a value's text was made: read from a file, or written by a decoder from an integer, a
// real (FormatDouble's text, "-0.0" for a negative zero) or an angle in radians (FormatAngle's
// text), which gives it in the plain form that needs no check as a number of those kinds, or
// from a handle (upper-case hexadecimal digits, checked as any text is).
enum class Made : std::uint8_t { kText, kInteger, kReal, kAngle, kHandle };

struct Tag {
    int code = 0;
    std::string_view value;  // as the file has it; trimmed for every kind but strings
    int line = 0;            // line of the group code (ASCII text)
    Made made = Made::kText;
    // The real the text was made from (kReal; kAngle: the radians), so that it is compared
    // without reading the text.
    double real = 0.0;
};

// Walks the tags of an ASCII drawing file held in memory.
class TagCursor {
public:
    explicit TagCursor(std::string_view text) : m_text(text) {}
    // False at the end of the text. A malformed group code sets error() and ends the walk.
    bool next(Tag& tag);
    const std::string& error() const { return m_error; }
    int line() const { return m_line; }

private:
    bool readLine(std::string_view& line);
    std::string_view m_text;
    size_t m_pos = 0;
    int m_line = 0;
    std::string m_error;
};

// The sentinel that opens a binary drawing file.
inline constexpr std::string_view kBinarySentinel{"AutoCAD Binary DXF\r\n\x1a\0", 22};
// Turns a binary drawing file into the equivalent ASCII text. False (with the reason and the
// byte offset in error) when the data ends inside a tag.
bool BinaryToText(std::string_view data, std::string& text, std::string& error);

// Number parsing of values; false when the text is not a number of that kind.
bool ParseDouble(std::string_view text, double& value);
// True for a plain decimal ("-12.5", ".5"), which ParseDouble accepts, told by its characters
// alone; false says nothing (exponents, "inf" and so on need ParseDouble).
bool IsPlainDecimal(std::string_view text);
bool ParseInteger(std::string_view text, long long& value);
// Shortest text that reads back as the same double, always with a decimal point.
void FormatDouble(double value, std::string& out);

}  // namespace dxf
