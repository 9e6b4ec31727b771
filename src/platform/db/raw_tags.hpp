#pragma once
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <string>
#include <string_view>

// A group-code/value pair as a drawing file holds it. Values are kept as the text they have in
// an ASCII file (UTF-8 for strings, shortest round-tripping form for numbers), so that what the
// database does not model can be written back unchanged.
struct AcDbRawTag {
    int code = 0;
    std::string_view value;  // into the list the tag was read from
};

// The tags of one record, packed into one buffer, so that a drawing of many records costs one
// allocation per record and little more than the bytes of its values. Per tag: the group code
// (one byte below 255, else 255 and two bytes), the value's length (7 bits a byte, low first)
// and the value's bytes.
class AcDbRawTags {
public:
    class const_iterator {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = AcDbRawTag;
        using difference_type = std::ptrdiff_t;
        using pointer = const AcDbRawTag*;
        using reference = AcDbRawTag;

        const_iterator() = default;
        AcDbRawTag operator*() const { return m_tag; }
        const AcDbRawTag* operator->() const { return &m_tag; }
        const_iterator& operator++() {
            m_pos = m_next;
            decode();
            return *this;
        }
        const_iterator operator++(int) {
            const_iterator old = *this;
            ++*this;
            return old;
        }
        bool operator==(const const_iterator& other) const { return m_pos == other.m_pos; }

    private:
        friend class AcDbRawTags;
        const_iterator(const char* pos, const char* end) : m_pos(pos), m_end(end) { decode(); }
        void decode() {
            if (m_pos == m_end) return;
            auto byte = [](const char* p) { return static_cast<unsigned>(static_cast<unsigned char>(*p)); };
            const char* p = m_pos;
            unsigned code = byte(p++);
            if (code == 255) {
                code = byte(p) | byte(p + 1) << 8;
                p += 2;
            }
            std::size_t length = 0;
            for (int shift = 0;; shift += 7) {
                unsigned b = byte(p++);
                length |= static_cast<std::size_t>(b & 0x7F) << shift;
                if (b < 0x80) break;
            }
            m_tag = {static_cast<int>(code), std::string_view(p, length)};
            m_next = p + length;
        }
        const char* m_pos = nullptr;
        const char* m_next = nullptr;
        const char* m_end = nullptr;
        AcDbRawTag m_tag;
    };

    AcDbRawTags() = default;
    AcDbRawTags(std::initializer_list<AcDbRawTag> tags) {
        for (const auto& t : tags) push_back(t);
    }

    const_iterator begin() const { return {m_bytes.data(), m_bytes.data() + m_bytes.size()}; }
    const_iterator end() const {
        const char* e = m_bytes.data() + m_bytes.size();
        return {e, e};
    }
    bool empty() const { return m_bytes.empty(); }
    AcDbRawTag front() const { return *begin(); }
    std::size_t size() const { return static_cast<std::size_t>(std::distance(begin(), end())); }
    // Bytes the packed tags take.
    std::size_t byteSize() const { return m_bytes.size(); }

    void push_back(const AcDbRawTag& tag) { push_back(tag.code, tag.value); }
    void push_back(int code, std::string_view value) {
        auto c = static_cast<std::uint16_t>(code);
        if (c < 255) {
            m_bytes += static_cast<char>(c);
        } else {
            m_bytes += static_cast<char>(255);
            m_bytes += static_cast<char>(c & 0xFF);
            m_bytes += static_cast<char>(c >> 8);
        }
        std::size_t n = value.size();
        do {
            m_bytes += static_cast<char>((n & 0x7F) | (n > 0x7F ? 0x80 : 0));
            n >>= 7;
        } while (n != 0);
        m_bytes.append(value);
    }
    void append(const AcDbRawTags& other) { m_bytes += other.m_bytes; }
    void clear() { m_bytes.clear(); }
    void swap(AcDbRawTags& other) noexcept { m_bytes.swap(other.m_bytes); }
    void reserve(std::size_t bytes) { m_bytes.reserve(bytes); }
    bool operator==(const AcDbRawTags&) const = default;

private:
    std::string m_bytes;
};
