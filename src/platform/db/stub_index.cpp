#include "platform/db/stub_index.hpp"

#include <algorithm>

#include "platform/db/object.hpp"

namespace {

// Slots for `count` stubs at three in four taken.
std::size_t SlotsFor(std::size_t count) { return std::max<std::size_t>(8, count + count / 3 + 1); }

}  // namespace

std::size_t AcDbStubIndex::home(std::uint64_t handle) const {
    // Handles are mostly consecutive: mixed first, then the high 32 bits mapped onto the slots
    // (fewer than 2^32) by multiplication.
    const std::uint64_t mixed = handle * 0x9E3779B97F4A7C15ull;
    return static_cast<std::size_t>(((mixed >> 32) * m_slots.size()) >> 32);
}

AcDbStub* AcDbStubIndex::find(std::uint64_t handle) const {
    if (m_count == 0) return nullptr;
    for (std::size_t slot = home(handle);; slot = next(slot)) {
        const Slot& s = m_slots[slot];
        if (s.stub == nullptr || s.handle == handle) return s.stub;
    }
}

void AcDbStubIndex::insert(AcDbStub* stub) {
    if (SlotsFor(m_count + 1) > m_slots.size()) rehash(SlotsFor(2 * (m_count + 1)));
    const std::uint64_t handle = stub->handle.value();
    std::size_t slot = home(handle);
    while (m_slots[slot].stub != nullptr) slot = next(slot);
    m_slots[slot] = {handle, stub};
    ++m_count;
}

void AcDbStubIndex::erase(std::uint64_t handle) {
    if (m_count == 0) return;
    std::size_t hole = home(handle);
    while (m_slots[hole].stub != nullptr && m_slots[hole].handle != handle) hole = next(hole);
    if (m_slots[hole].stub == nullptr) return;
    // The stubs after the hole that probed past it move back into it, so that no search stops
    // short of them.
    for (std::size_t slot = next(hole); m_slots[slot].stub != nullptr; slot = next(slot)) {
        const std::size_t want = home(m_slots[slot].handle);
        const bool reachesHole = hole <= slot ? (want <= hole || want > slot) : (want <= hole && want > slot);
        if (reachesHole) {
            m_slots[hole] = m_slots[slot];
            hole = slot;
        }
    }
    m_slots[hole] = {};
    --m_count;
}

void AcDbStubIndex::reserve(std::size_t count) {
    if (SlotsFor(count) > m_slots.size()) rehash(SlotsFor(count));
}

void AcDbStubIndex::clear() {
    m_slots = {};
    m_count = 0;
}

std::uint64_t AcDbStubIndex::largestHandle() const {
    std::uint64_t largest = 0;
    for (const Slot& s : m_slots)
        if (s.stub != nullptr) largest = std::max(largest, s.handle);
    return largest;
}

void AcDbStubIndex::rehash(std::size_t slots) {
    std::vector<Slot> old(slots);
    old.swap(m_slots);
    for (const Slot& s : old) {
        if (s.stub == nullptr) continue;
        std::size_t slot = home(s.handle);
        while (m_slots[slot].stub != nullptr) slot = next(slot);
        m_slots[slot] = s;
    }
}
