// The stubs by handle: finding, adding and removing in any order answers as a plain map of the
// same handles does, through growth and removals that move stubs back along their probes.
#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <map>
#include <random>

#include "platform/db/object.hpp"
#include "platform/db/stub_index.hpp"

namespace {

struct Differential {
    std::deque<AcDbStub> stubs;
    AcDbStubIndex index{stubs};
    std::map<std::uint64_t, AcDbStub*> plain;

    void add(std::uint64_t handle) {
        if (plain.count(handle) != 0) return;
        plain[handle] = &index.add(handle);
    }
    void remove(std::uint64_t handle) {
        index.erase(handle);
        plain.erase(handle);
    }
    void rekey(std::uint64_t from, std::uint64_t to) {
        index.rekey(from, to);
        plain[to] = plain.at(from);
        plain.erase(from);
    }
    // Every handle given found as the plain map finds it.
    void expectSameAt(const std::vector<std::uint64_t>& handles) const {
        ASSERT_EQ(index.size(), plain.size());
        for (std::uint64_t h : handles) {
            const auto it = plain.find(h);
            ASSERT_EQ(index.find(h), it == plain.end() ? nullptr : it->second) << h;
        }
        EXPECT_EQ(index.largestHandle(), plain.empty() ? 0 : plain.rbegin()->first);
    }
    // Every handle up to `last` found as the plain map finds it.
    void expectSame(std::uint64_t last) const {
        ASSERT_EQ(index.size(), plain.size());
        for (std::uint64_t h = 0; h <= last; ++h) {
            const auto it = plain.find(h);
            ASSERT_EQ(index.find(h), it == plain.end() ? nullptr : it->second) << h;
        }
        EXPECT_EQ(index.largestHandle(), plain.empty() ? 0 : plain.rbegin()->first);
    }
};

TEST(StubIndex, empty_index_finds_nothing_and_removing_from_it_does_nothing) {
    std::deque<AcDbStub> stubs;
    AcDbStubIndex index{stubs};
    EXPECT_EQ(index.find(1), nullptr);
    index.erase(1);
    EXPECT_TRUE(index.empty());
    EXPECT_EQ(index.largestHandle(), 0u);
}

// Consecutive handles, as a drawing's, then every third removed and some added again.
TEST(StubIndex, consecutive_handles_grow_and_shrink_as_a_map_does) {
    Differential d;
    for (std::uint64_t h = 1; h <= 5000; ++h) d.add(h);
    d.expectSame(5100);
    for (std::uint64_t h = 1; h <= 5000; h += 3) d.remove(h);
    d.expectSame(5100);
    for (std::uint64_t h = 4; h <= 2000; h += 6) d.add(h);
    d.remove(5000);
    d.expectSame(5100);
}

// Random handles in a small range, so that probes collide and wrap around the slots' end.
TEST(StubIndex, random_adds_and_removes_answer_as_a_map_does) {
    for (unsigned seed = 1; seed <= 4; ++seed) {
        SCOPED_TRACE(seed);
        Differential d;
        std::mt19937_64 random(seed);
        for (int step = 0; step < 20000; ++step) {
            const std::uint64_t handle = 1 + random() % 600;
            if (random() % 3 == 0) d.remove(handle);
            else d.add(handle);
            if (step % 997 == 0) d.expectSame(601);
        }
        d.expectSame(601);
    }
}

// A few handles in few slots: removals move stubs back across the slots' end, where a stub at
// its own slot must stay.
TEST(StubIndex, removals_across_the_end_of_a_small_index_answer_as_a_map_does) {
    for (unsigned seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE(seed);
        Differential d;
        std::mt19937_64 random(seed);
        for (int step = 0; step < 200; ++step) {
            const std::uint64_t handle = 1 + random() % 9;
            if (random() % 2 == 0) d.remove(handle);
            else d.add(handle);
            d.expectSame(10);
            if (HasFatalFailure()) return;
        }
    }
}

// Every order of filling the smallest index with five of nine handles, then each one removed:
// among them the removals at the last slot whose followers wrapped round to the first.
TEST(StubIndex, every_removal_from_every_filling_of_a_small_index_answers_as_a_map_does) {
    const std::vector<std::uint64_t> handles = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    std::vector<std::vector<std::uint64_t>> fillings;
    const auto choose = [&](auto& self, std::vector<std::uint64_t>& chosen) -> void {
        if (chosen.size() == 5) {
            fillings.push_back(chosen);
            return;
        }
        for (std::uint64_t h : handles) {
            if (std::find(chosen.begin(), chosen.end(), h) != chosen.end()) continue;
            chosen.push_back(h);
            self(self, chosen);
            chosen.pop_back();
        }
    };
    std::vector<std::uint64_t> chosen;
    choose(choose, chosen);
    ASSERT_EQ(fillings.size(), 15120u);
    for (const auto& filling : fillings) {
        for (std::uint64_t removed : filling) {
            Differential d;
            for (std::uint64_t h : filling) d.add(h);
            d.remove(removed);
            d.expectSame(10);
            if (HasFatalFailure()) {
                ADD_FAILURE() << "filled with " << testing::PrintToString(filling) << ", removed " << removed;
                return;
            }
        }
    }
}

TEST(StubIndex, reserved_room_keeps_what_it_holds_and_clear_empties_it) {
    Differential d;
    for (std::uint64_t h = 10; h < 40; ++h) d.add(h * 7);
    d.index.reserve(10000);
    d.expectSame(300);
    d.index.reserve(5);  // less than held: nothing changes
    d.expectSame(300);
    d.index.clear();
    EXPECT_TRUE(d.index.empty());
    EXPECT_EQ(d.index.find(70), nullptr);
    d.plain.clear();
    d.add(70);
    d.expectSame(300);
}

// Handles of more than 32 bits whose low bits are those of others held: each finds its own stub,
// before and after the first wide one comes, through growth and removals.
TEST(StubIndex, wide_handles_sharing_low_bits_with_others_find_their_own_stubs) {
    Differential d;
    std::vector<std::uint64_t> asked;
    for (std::uint64_t h = 1; h <= 300; ++h) {
        d.add(h);
        asked.push_back(h);
        asked.push_back(h | (std::uint64_t{1} << 32));
        asked.push_back(h | (std::uint64_t{7} << 40));
    }
    d.expectSameAt(asked);  // no wide handle held: none found by its low bits
    for (std::uint64_t h = 1; h <= 300; h += 2) d.add(h | (std::uint64_t{1} << 32));
    d.expectSameAt(asked);
    for (std::uint64_t h = 1; h <= 300; h += 3) d.remove(h);
    for (std::uint64_t h = 5; h <= 300; h += 10) d.remove(h | (std::uint64_t{1} << 32));
    d.expectSameAt(asked);
    for (std::uint64_t h = 2; h <= 300; h += 4) d.add(h | (std::uint64_t{7} << 40));
    d.expectSameAt(asked);
}

// A stub given another handle is found by it and no longer by the old one, narrow or wide.
TEST(StubIndex, a_rekeyed_stub_is_found_by_its_new_handle_only) {
    Differential d;
    for (std::uint64_t h = 1; h <= 100; ++h) d.add(h);
    d.rekey(10, 500);
    d.rekey(100, 101);
    d.rekey(20, std::uint64_t{3} << 33);
    const std::vector<std::uint64_t> asked{10, 20, 100, 101, 500, std::uint64_t{3} << 33, 50};
    d.expectSameAt(asked);
    EXPECT_EQ(d.index.find(500)->handle.value(), 500u);
    d.index.rekey(999, 1000);  // a handle not held: nothing changes
    d.expectSameAt(asked);
    EXPECT_EQ(d.index.find(1000), nullptr);
}

}  // namespace
