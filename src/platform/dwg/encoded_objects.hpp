#pragma once
// The objects the DWG writer has encoded, by handle, for the objects section and its map.
#include <cstdint>
#include <utility>
#include <vector>

namespace dwg {

// Objects mostly come in the order of their handles (a drawing's records are): those are kept
// in a list in that order, and the few that come after a higher handle wait aside until the
// list is put in order. A handle added again keeps its last bytes.
class EncodedObjects {
public:
    using Entry = std::pair<std::uint64_t, std::vector<std::uint8_t>>;
    using iterator = std::vector<Entry>::iterator;
    using const_iterator = std::vector<Entry>::const_iterator;

    void add(std::uint64_t handle, std::vector<std::uint8_t> bytes) {
        if (m_ordered.empty() || handle > m_ordered.back().first) {
            m_ordered.emplace_back(handle, std::move(bytes));
        } else {
            m_aside.emplace_back(handle, std::move(bytes));
        }
    }
    // Whether a handle was added, at any time.
    bool contains(std::uint64_t handle) const;
    // Puts the objects set aside in their places: the walks and find below see them after it.
    void order();

    bool empty() const { return m_ordered.empty() && m_aside.empty(); }
    std::size_t size() const { return m_ordered.size() + m_aside.size(); }
    iterator begin() { return m_ordered.begin(); }
    iterator end() { return m_ordered.end(); }
    const_iterator begin() const { return m_ordered.begin(); }
    const_iterator end() const { return m_ordered.end(); }
    const_iterator find(std::uint64_t handle) const;
    friend bool operator==(const EncodedObjects&, const EncodedObjects&) = default;

private:
    std::vector<Entry> m_ordered;  // strictly rising handles
    std::vector<Entry> m_aside;    // in the order they came
};

}  // namespace dwg
