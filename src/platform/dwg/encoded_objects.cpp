#include "platform/dwg/encoded_objects.hpp"

#include <algorithm>

namespace dwg {
namespace {

bool Before(const EncodedObjects::Entry& e, std::uint64_t handle) { return e.first < handle; }

}  // namespace

bool EncodedObjects::contains(std::uint64_t handle) const {
    const auto at = std::lower_bound(m_ordered.begin(), m_ordered.end(), handle, Before);
    if (at != m_ordered.end() && at->first == handle) return true;
    return std::any_of(m_aside.begin(), m_aside.end(), [handle](const Entry& e) { return e.first == handle; });
}

EncodedObjects::const_iterator EncodedObjects::find(std::uint64_t handle) const {
    const auto at = std::lower_bound(m_ordered.begin(), m_ordered.end(), handle, Before);
    return at != m_ordered.end() && at->first == handle ? at : m_ordered.end();
}

// One merge of the two lists; of equal handles the one set aside came later and is kept.
void EncodedObjects::order() {
    if (m_aside.empty()) return;
    std::stable_sort(m_aside.begin(), m_aside.end(),
                     [](const Entry& a, const Entry& b) { return a.first < b.first; });
    std::vector<Entry> merged;
    merged.reserve(m_ordered.size() + m_aside.size());
    const auto keep = [&merged](Entry& e) {
        if (!merged.empty() && merged.back().first == e.first) {
            merged.back().second = std::move(e.second);
        } else {
            merged.push_back(std::move(e));
        }
    };
    auto a = m_ordered.begin();
    auto b = m_aside.begin();
    while (a != m_ordered.end() || b != m_aside.end()) {
        const bool fromOrdered = b == m_aside.end() || (a != m_ordered.end() && a->first <= b->first);
        keep(fromOrdered ? *a++ : *b++);
    }
    m_ordered = std::move(merged);
    m_aside.clear();
}

}  // namespace dwg
