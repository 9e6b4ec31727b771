#include "platform/db/stub_index.hpp"

std::size_t AcDbStubIndex::slotOf(std::uint64_t handle) const {
    const auto low = static_cast<std::uint32_t>(handle);
    std::size_t slot = home(handle);
    // With wide handles held, equal low bits are checked on the stub.
    while (m_slots[slot].place != 0 &&
           (m_slots[slot].low != low || (m_wide && stubOf(m_slots[slot]).handle.value() != handle)))
        slot = next(slot);
    return slot;
}

AcDbStub* AcDbStubIndex::find(std::uint64_t handle) const {
    if (m_count == 0) return nullptr;
    if (m_wide) {
        const Slot& slot = m_slots[slotOf(handle)];
        return slot.place != 0 ? &stubOf(slot) : nullptr;
    }
    // No wide handle held: the low bits are the handle, and a wide one is not held.
    if (Wide(handle)) return nullptr;
    const auto low = static_cast<std::uint32_t>(handle);
    for (std::size_t at = home(handle);; at = next(at)) {
        const Slot slot = m_slots[at];
        if (slot.place == 0) return nullptr;
        if (slot.low == low) return &stubOf(slot);
    }
}

AcDbStub& AcDbStubIndex::add(std::uint64_t handle) {
    AcDbStub& stub = m_stubs.emplace_back();
    stub.handle = AcDbHandle(handle);
    insert({static_cast<std::uint32_t>(handle), static_cast<std::uint32_t>(m_stubs.size())}, handle);
    return stub;
}

void AcDbStubIndex::erase(std::uint64_t handle) {
    if (find(handle) == nullptr) return;
    std::size_t hole = slotOf(handle);
    // The stubs after the hole that probed past it move back into it, so that no search stops
    // short of them.
    for (std::size_t slot = next(hole); m_slots[slot].place != 0; slot = next(slot)) {
        const std::size_t want = home(handleOf(m_slots[slot]));
        const bool reachesHole = hole <= slot ? (want <= hole || want > slot) : (want <= hole && want > slot);
        if (reachesHole) {
            m_slots[hole] = m_slots[slot];
            hole = slot;
        }
    }
    m_slots[hole] = {};
    --m_count;
}

void AcDbStubIndex::rekey(std::uint64_t from, std::uint64_t to) {
    if (find(from) == nullptr) return;
    const std::uint32_t place = m_slots[slotOf(from)].place;
    erase(from);
    m_stubs[place - 1].handle = AcDbHandle(to);
    insert({static_cast<std::uint32_t>(to), place}, to);
}

void AcDbStubIndex::reserve(std::size_t count) {
    if (SlotsFor(count) > m_slots.size()) rehash(SlotsFor(count));
}

void AcDbStubIndex::clear() {
    m_slots = {};
    m_count = 0;
    m_wide = false;
}

std::uint64_t AcDbStubIndex::largestHandle() const {
    std::uint64_t largest = 0;
    for (const Slot& s : m_slots)
        if (s.place != 0) largest = std::max(largest, handleOf(s));
    return largest;
}

void AcDbStubIndex::rehash(std::size_t slots) {
    std::vector<Slot> old(slots);
    old.swap(m_slots);
    for (const Slot& s : old)
        if (s.place != 0) put(s, handleOf(s));
}
