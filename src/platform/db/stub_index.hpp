#pragma once
// A database's stubs by handle: open addressing with linear probing, at most three slots in four
// taken. A slot is 8 bytes, the low 32 bits of the handle and the stub's place in the database's
// stubs: a drawing of a hundred thousand objects finds its stubs in 1.1 MB, and a search reads
// the handles in a row, not the stubs. While no handle held needs more than 32 bits (as in
// drawings of any usual size), the low bits are the handle; otherwise a match is checked on the
// stub.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

#include "platform/db/object.hpp"

class AcDbStubIndex {
public:
    // An index of stubs of `stubs`, which outlives it and where stubs are only ever appended.
    explicit AcDbStubIndex(std::deque<AcDbStub>& stubs) : m_stubs(stubs) {}
    AcDbStubIndex(const AcDbStubIndex&) = delete;
    AcDbStubIndex& operator=(const AcDbStubIndex&) = delete;

    // The stub of the handle, or null.
    AcDbStub* find(std::uint64_t handle) const;
    // Appends a stub of the handle, which the index does not hold yet, to the stubs.
    AcDbStub& add(std::uint64_t handle);
    // Removes the stub of the handle, when there is one.
    void erase(std::uint64_t handle);
    // Gives the stub of handle `from` the handle `to`, which the index does not hold yet.
    void rekey(std::uint64_t from, std::uint64_t to);
    // Room for `count` stubs in all, without growing again.
    void reserve(std::size_t count);
    void clear();
    std::size_t size() const { return m_count; }
    bool empty() const { return m_count == 0; }
    // The largest handle held; 0 when empty.
    std::uint64_t largestHandle() const;

private:
    struct Slot {
        std::uint32_t low = 0;    // the handle's low 32 bits
        std::uint32_t place = 0;  // 1 + the stub's place in the stubs; 0 for a free slot
    };
    std::size_t home(std::uint64_t handle) const {
        // Handles are mostly consecutive: mixed first, then the high 32 bits mapped onto the
        // slots (fewer than 2^32) by multiplication.
        const std::uint64_t mixed = handle * 0x9E3779B97F4A7C15ull;
        return static_cast<std::size_t>(((mixed >> 32) * m_slots.size()) >> 32);
    }
    std::size_t next(std::size_t slot) const { return slot + 1 == m_slots.size() ? 0 : slot + 1; }
    AcDbStub& stubOf(const Slot& slot) const { return m_stubs[slot.place - 1]; }
    std::uint64_t handleOf(const Slot& slot) const {
        return m_wide ? stubOf(slot).handle.value() : slot.low;
    }
    // The slot of the handle, or the free slot where its search ends.
    std::size_t slotOf(std::uint64_t handle) const;
    static bool Wide(std::uint64_t handle) { return (handle >> 32) != 0; }
    // Adds the slot of a stub of the handle.
    void insert(Slot slot, std::uint64_t handle) {
        if (SlotsFor(m_count + 1) > m_slots.size()) rehash(SlotsFor(2 * (m_count + 1)));
        m_wide = m_wide || Wide(handle);
        put(slot, handle);
        ++m_count;
    }
    void put(Slot slot, std::uint64_t handle) {
        std::size_t at = home(handle);
        while (m_slots[at].place != 0) at = next(at);
        m_slots[at] = slot;
    }
    // Slots for `count` stubs at three in four taken.
    static std::size_t SlotsFor(std::size_t count) { return std::max<std::size_t>(8, count + count / 3 + 1); }
    void rehash(std::size_t slots);

    std::deque<AcDbStub>& m_stubs;
    std::vector<Slot> m_slots;
    std::size_t m_count = 0;
    bool m_wide = false;  // some handle held has more than 32 bits
};
