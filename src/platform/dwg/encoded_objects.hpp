#pragma once
// The objects the DWG writer has encoded, by handle, for the objects section and its map.
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace dwg {

// Objects come in runs of rising handles (a drawing's records mostly do, and each kind the
// writer encodes in turn is one run): they are kept in the order they came, the runs marked,
// and put in handle order by merging the runs once. A handle added again keeps its last bytes.
class EncodedObjects {
public:
    using Entry = std::pair<std::uint64_t, std::vector<std::uint8_t>>;
    using iterator = std::vector<Entry>::iterator;
    using const_iterator = std::vector<Entry>::const_iterator;

    void add(std::uint64_t handle, std::vector<std::uint8_t> bytes) {
        if (!m_entries.empty() && handle <= m_entries.back().first) m_runs.push_back(m_entries.size());
        m_entries.emplace_back(handle, std::move(bytes));
    }
    // Whether a handle was added, at any time.
    bool contains(std::uint64_t handle) const;
    // Puts the objects in handle order, each handle once: the walks and find below need it.
    void order();

    bool empty() const { return m_entries.empty(); }
    // Before order(), a handle added twice counts twice.
    std::size_t size() const { return m_entries.size(); }
    iterator begin() { return m_entries.begin(); }
    iterator end() { return m_entries.end(); }
    const_iterator begin() const { return m_entries.begin(); }
    const_iterator end() const { return m_entries.end(); }
    const_iterator find(std::uint64_t handle) const;
    friend bool operator==(const EncodedObjects&, const EncodedObjects&) = default;

private:
    std::vector<Entry> m_entries;
    std::vector<std::size_t> m_runs;  // where each run after the first begins
};

}  // namespace dwg
