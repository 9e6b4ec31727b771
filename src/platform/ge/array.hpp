#pragma once
#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <vector>

// The host's dynamic array: std::vector with the host's names. Indices are int, as the host
// has them; growLength is kept for its call shape (the vector grows by its own policy).
template <typename T>
class AcArray {
public:
    AcArray() = default;
    explicit AcArray(int initPhysicalLength, int growLength = 8) : m_growLength(growLength) {
        m_items.reserve(static_cast<std::size_t>(std::max(initPhysicalLength, 0)));
    }
    AcArray(std::initializer_list<T> items) : m_items(items) {}

    int length() const { return static_cast<int>(m_items.size()); }
    int logicalLength() const { return length(); }
    int physicalLength() const { return static_cast<int>(m_items.capacity()); }
    int growLength() const { return m_growLength; }
    bool isEmpty() const { return m_items.empty(); }

    AcArray& append(const T& item) { m_items.push_back(item); return *this; }
    AcArray& append(const AcArray& other) {
        m_items.insert(m_items.end(), other.m_items.begin(), other.m_items.end());
        return *this;
    }
    int appendItem(const T& item) { m_items.push_back(item); return length() - 1; }
    AcArray& insertAt(int index, const T& item) {
        m_items.insert(m_items.begin() + index, item);
        return *this;
    }
    AcArray& removeAt(int index) { m_items.erase(m_items.begin() + index); return *this; }
    AcArray& removeFirst() { return removeAt(0); }
    AcArray& removeLast() { m_items.pop_back(); return *this; }
    AcArray& removeAll() { m_items.clear(); return *this; }
    AcArray& setLogicalLength(int n) { m_items.resize(static_cast<std::size_t>(n)); return *this; }
    AcArray& setPhysicalLength(int n) {
        if (n < length()) m_items.resize(static_cast<std::size_t>(n));
        m_items.reserve(static_cast<std::size_t>(n));
        return *this;
    }
    AcArray& reverse() { std::reverse(m_items.begin(), m_items.end()); return *this; }
    bool contains(const T& item, int start = 0) const { return indexFrom(item, start) >= 0; }
    // Index of the first element equal to item, or -1.
    int find(const T& item) const { return indexFrom(item, 0); }
    bool find(const T& item, int& foundAt, int start = 0) const {
        int index = indexFrom(item, start);
        if (index < 0) return false;
        foundAt = index;
        return true;
    }
    bool remove(const T& item, int start = 0) {
        int index = indexFrom(item, start);
        if (index < 0) return false;
        removeAt(index);
        return true;
    }

    const T& at(int i) const { return m_items.at(static_cast<std::size_t>(i)); }
    T& at(int i) { return m_items.at(static_cast<std::size_t>(i)); }
    const T& operator[](int i) const { return m_items[static_cast<std::size_t>(i)]; }
    T& operator[](int i) { return m_items[static_cast<std::size_t>(i)]; }
    const T& first() const { return m_items.front(); }
    const T& last() const { return m_items.back(); }
    T& first() { return m_items.front(); }
    T& last() { return m_items.back(); }
    const T* asArrayPtr() const { return m_items.data(); }
    T* asArrayPtr() { return m_items.data(); }

    auto begin() { return m_items.begin(); }
    auto end() { return m_items.end(); }
    auto begin() const { return m_items.begin(); }
    auto end() const { return m_items.end(); }
    const std::vector<T>& items() const { return m_items; }
    std::vector<T>& items() { return m_items; }

    bool operator==(const AcArray& other) const { return m_items == other.m_items; }

private:
    int indexFrom(const T& item, int start) const {
        for (int i = start; i < length(); ++i)
            if (m_items[static_cast<std::size_t>(i)] == item) return i;
        return -1;
    }
    std::vector<T> m_items;
    int m_growLength = 8;
};

class AcGePoint2d;
class AcGePoint3d;
class AcGeVector3d;
using AcGePoint3dArray = AcArray<AcGePoint3d>;
using AcGePoint2dArray = AcArray<AcGePoint2d>;
using AcGeDoubleArray = AcArray<double>;
using AcGeIntArray = AcArray<int>;
