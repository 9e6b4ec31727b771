#pragma once
// One tag of the records that the DXF writer gives a writer of another format: its group code
// and its value, as text or, for a real number the database models, as the number itself. The
// other writer wants the number: carried as text it would be formatted only to be parsed back.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <tuple>

namespace dxf {

class DrawingTag {
public:
    DrawingTag() = default;
    DrawingTag(int code, std::string_view text)
        : m_text(text.data()), m_size(static_cast<std::uint32_t>(text.size())), m_code(code) {}
    // A tag whose value is the number, with no text.
    static DrawingTag Number(int code, double value) {
        DrawingTag t;
        t.m_size = kNumber;
        t.m_code = code;
        std::memcpy(&t.m_bits, &value, sizeof value);
        return t;
    }

    int code() const { return m_code; }
    bool isNumber() const { return m_size == kNumber; }
    // The value's text; empty for a number.
    std::string_view text() const { return isNumber() ? std::string_view() : std::string_view(m_text, m_size); }
    // The number of a tag made as one.
    double number() const {
        double value;
        std::memcpy(&value, &m_bits, sizeof value);
        return value;
    }

private:
    static constexpr std::uint32_t kNumber = std::numeric_limits<std::uint32_t>::max();
    // The text's first character, or the number's bits (the tags are many: 16 bytes each).
    union {
        const char* m_text = nullptr;
        std::uint64_t m_bits;
    };
    std::uint32_t m_size = 0;
    std::int32_t m_code = 0;
};

// "const auto& [code, text] = tag": the code and the text (empty for a number).
template <std::size_t I>
auto get(const DrawingTag& t) {
    if constexpr (I == 0) return t.code();
    else return t.text();
}

}  // namespace dxf

template <>
struct std::tuple_size<dxf::DrawingTag> : std::integral_constant<std::size_t, 2> {};
template <>
struct std::tuple_element<0, dxf::DrawingTag> {
    using type = int;
};
template <>
struct std::tuple_element<1, dxf::DrawingTag> {
    using type = std::string_view;
};
