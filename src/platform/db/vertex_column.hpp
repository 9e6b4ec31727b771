#pragma once
// One value for each vertex of a polyline (its bulge, its widths), held only once some vertex has
// one that is not all +0.0 bit for bit: most polylines of a drawing have no widths, many no
// bulges, and a column of none costs an empty vector. A -0.0 is a value, kept as given.
#include <cstddef>
#include <cstring>
#include <vector>

template <typename T>
class AcDbVertexColumn {
public:
    T at(std::size_t index) const { return m_values.empty() ? T{} : m_values[index]; }
    // Sets the value of vertex `index` of `count`. The first value held takes `room` (the room
    // of the vertices) at once, so that a polyline read with its count holds no spare capacity.
    void set(std::size_t index, const T& value, std::size_t count, std::size_t room) {
        if (m_values.empty()) {
            if (IsNone(value)) return;
            m_values.reserve(room);
            m_values.resize(count);
        }
        m_values[index] = value;
    }
    // The value of a vertex appended to `count` others.
    void append(const T& value, std::size_t count, std::size_t room) {
        if (!m_values.empty()) m_values.push_back(value);
        else set(count, value, count + 1, room);
    }
    // A vertex of no value before `index` (index == count appends).
    void insertNone(std::size_t index) {
        if (!m_values.empty()) m_values.insert(m_values.begin() + static_cast<std::ptrdiff_t>(index), T{});
    }
    void erase(std::size_t index) {
        if (!m_values.empty()) m_values.erase(m_values.begin() + static_cast<std::ptrdiff_t>(index));
    }
    void reserve(std::size_t room) {
        if (!m_values.empty()) m_values.reserve(room);
    }
    // One value a vertex, or none at all while no vertex has one.
    const std::vector<T>& held() const { return m_values; }

private:
    static bool IsNone(const T& value) {
        static constexpr T kNone{};
        return std::memcmp(&value, &kNone, sizeof(T)) == 0;
    }
    std::vector<T> m_values;
};
