#include "platform/dwg/encoded_objects.hpp"

#include <algorithm>

namespace dwg {
namespace {

using Entry = EncodedObjects::Entry;

bool Before(const Entry& e, std::uint64_t handle) { return e.first < handle; }
bool Lower(const Entry& a, const Entry& b) { return a.first < b.first; }

}  // namespace

// A search in each run.
bool EncodedObjects::contains(std::uint64_t handle) const {
    std::size_t begin = 0;
    for (std::size_t k = 0; k <= m_runs.size(); ++k) {
        const std::size_t end = k < m_runs.size() ? m_runs[k] : m_entries.size();
        const auto first = m_entries.begin() + static_cast<std::ptrdiff_t>(begin);
        const auto last = m_entries.begin() + static_cast<std::ptrdiff_t>(end);
        const auto at = std::lower_bound(first, last, handle, Before);
        if (at != last && at->first == handle) return true;
        begin = end;
    }
    return false;
}

EncodedObjects::const_iterator EncodedObjects::find(std::uint64_t handle) const {
    const auto at = std::lower_bound(m_entries.begin(), m_entries.end(), handle, Before);
    return at != m_entries.end() && at->first == handle ? at : m_entries.end();
}

// Neighbouring runs merged in pairs, round after round (a walk over the list a round, as many
// rounds as halvings of the runs). A merge keeps equal handles in the order they came, so the
// last of each is the one kept.
void EncodedObjects::order() {
    if (m_runs.empty()) return;
    std::vector<std::size_t> bounds = {0};
    bounds.insert(bounds.end(), m_runs.begin(), m_runs.end());
    bounds.push_back(m_entries.size());
    const auto at = [this](std::size_t i) { return m_entries.begin() + static_cast<std::ptrdiff_t>(i); };
    while (bounds.size() > 2) {
        std::vector<std::size_t> merged = {0};
        std::size_t k = 0;
        for (; k + 2 < bounds.size(); k += 2) {
            std::inplace_merge(at(bounds[k]), at(bounds[k + 1]), at(bounds[k + 2]), Lower);
            merged.push_back(bounds[k + 2]);
        }
        if (k + 1 < bounds.size()) merged.push_back(bounds[k + 1]);
        bounds = std::move(merged);
    }
    m_runs.clear();
    std::size_t kept = 0;
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        if (kept > 0 && m_entries[kept - 1].first == m_entries[i].first) {
            m_entries[kept - 1].second = std::move(m_entries[i].second);
        } else if (kept != i) {
            m_entries[kept++] = std::move(m_entries[i]);
        } else {
            ++kept;
        }
    }
    m_entries.resize(kept);
}

}  // namespace dwg
