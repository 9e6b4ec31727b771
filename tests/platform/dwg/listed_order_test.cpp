#include "platform/dwg/listed_order.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <unordered_map>
#include <vector>

namespace {

// The plain way: each handle's first place by a hash map, then a stable sort by place.
std::vector<std::uint32_t> PlainOrder(std::vector<std::uint32_t> entities, const std::vector<std::uint64_t>& listed,
                                      const std::vector<std::uint64_t>& handles) {
    std::unordered_map<std::uint64_t, std::size_t> place;
    for (std::size_t k = 0; k < listed.size(); ++k) place.emplace(listed[k], k);
    const auto placeOf = [&](std::uint32_t i) {
        const auto it = place.find(handles[i]);
        return it == place.end() ? listed.size() : it->second;
    };
    std::stable_sort(entities.begin(), entities.end(),
                     [&](std::uint32_t a, std::uint32_t b) { return placeOf(a) < placeOf(b); });
    return entities;
}

std::vector<std::uint32_t> Sorted(std::vector<std::uint32_t> entities, const std::vector<std::uint64_t>& listed,
                                  const std::vector<std::uint64_t>& handles) {
    dwg::SortByListedPlace(entities, listed, [&](std::uint32_t i) { return handles[i]; });
    return entities;
}

TEST(DwgListedOrder, entities_follow_the_list_and_the_unlisted_keep_their_order_after) {
    // Items 0..5 of handles 10..15; the list names 13, 11, 15 (and 99, no item's).
    const std::vector<std::uint64_t> handles{10, 11, 12, 13, 14, 15};
    EXPECT_EQ(Sorted({0, 1, 2, 3, 4, 5}, {13, 99, 11, 15}, handles),
              (std::vector<std::uint32_t>{3, 1, 5, 0, 2, 4}));
    // A handle listed twice takes its first place; two items of one handle keep their order.
    const std::vector<std::uint64_t> twice{10, 11, 11, 12};
    EXPECT_EQ(Sorted({3, 2, 1, 0}, {11, 12, 11}, twice), (std::vector<std::uint32_t>{2, 1, 3, 0}));
    EXPECT_EQ(Sorted({}, {1, 2}, handles), std::vector<std::uint32_t>{});
    EXPECT_EQ(Sorted({4, 0}, {}, handles), (std::vector<std::uint32_t>{4, 0}));
}

// Lists in handle order, shuffled, with repeats and handles of no entity, against entities of
// shared and unlisted handles: the order is the plain way's.
TEST(DwgListedOrder, orders_as_a_stable_sort_by_first_place_does) {
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        const std::size_t items = 1 + random() % 300;
        std::vector<std::uint64_t> handles(items);
        for (auto& h : handles) h = 1 + random() % (round % 2 == 0 ? 1000 : 2 * items);
        if (round % 3 == 0) std::sort(handles.begin(), handles.end());
        std::vector<std::uint32_t> entities;
        for (std::uint32_t i = 0; i < items; ++i)
            if (random() % 4 != 0) entities.push_back(i);
        if (round % 5 == 0) std::shuffle(entities.begin(), entities.end(), random);
        std::vector<std::uint64_t> listed;
        for (std::uint32_t i : entities)
            if (random() % 5 != 0) listed.push_back(handles[i]);
        for (std::size_t extra = random() % 20; extra > 0; --extra) listed.push_back(1 + random() % 3000);
        if (round % 4 != 0) std::shuffle(listed.begin(), listed.end(), random);
        if (round % 7 == 0 && !listed.empty()) listed.push_back(listed.front());
        ASSERT_EQ(Sorted(entities, listed, handles), PlainOrder(entities, listed, handles)) << round;
    }
}

}  // namespace
