#include "platform/dwg/encoded_objects.hpp"

#include <algorithm>

namespace dwg {
namespace {

using Entry = EncodedObjects::Entry;

bool Before(const Entry& e, std::uint64_t handle) { return e.first < handle; }
bool Lower(const Entry& a, const Entry& b) { return a.first < b.first; }

// Merging run after run costs a walk over what is merged each time: beyond this many runs, one
// sort is cheaper.
constexpr std::size_t kMergedRuns = 16;

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

// Both the merges and the sort keep equal handles in the order they came, so the last of each
// is the one kept.
void EncodedObjects::order() {
    if (m_runs.empty()) return;
    if (m_runs.size() <= kMergedRuns) {
        for (std::size_t k = 0; k < m_runs.size(); ++k) {
            const std::size_t end = k + 1 < m_runs.size() ? m_runs[k + 1] : m_entries.size();
            std::inplace_merge(m_entries.begin(), m_entries.begin() + static_cast<std::ptrdiff_t>(m_runs[k]),
                               m_entries.begin() + static_cast<std::ptrdiff_t>(end), Lower);
        }
    } else {
        std::stable_sort(m_entries.begin(), m_entries.end(), Lower);
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
