#include "platform/dwg/encoded_objects.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace {

using dwg::EncodedObjects;
using Bytes = std::vector<std::uint8_t>;

std::vector<std::uint64_t> Handles(const EncodedObjects& objects) {
    std::vector<std::uint64_t> out;
    for (const auto& [handle, bytes] : objects) out.push_back(handle);
    return out;
}

TEST(DwgEncodedObjects, objects_added_out_of_order_walk_in_handle_order) {
    EncodedObjects objects;
    for (const std::uint64_t h : {0x10u, 0x20u, 0x30u, 0x5u, 0x25u, 0x40u, 0x1u, 0x26u}) {
        objects.add(h, Bytes{static_cast<std::uint8_t>(h)});
    }
    EXPECT_EQ(objects.size(), 8u);
    objects.order();
    EXPECT_EQ(Handles(objects), (std::vector<std::uint64_t>{0x1, 0x5, 0x10, 0x20, 0x25, 0x26, 0x30, 0x40}));
    for (const auto& [handle, bytes] : objects) EXPECT_EQ(bytes, Bytes{static_cast<std::uint8_t>(handle)});
}

// Whether the handle came in order or after a higher one, and the second time either way.
TEST(DwgEncodedObjects, handle_added_again_keeps_its_last_bytes) {
    EncodedObjects objects;
    objects.add(1, {1});
    objects.add(2, {2});
    objects.add(3, {3});
    objects.add(2, {20});   // after a higher handle
    objects.add(3, {30});   // equal to the highest
    objects.add(2, {200});  // again after a higher handle
    objects.add(4, {4});
    objects.order();
    EXPECT_EQ(Handles(objects), (std::vector<std::uint64_t>{1, 2, 3, 4}));
    EXPECT_EQ(objects.find(2)->second, Bytes{200});
    EXPECT_EQ(objects.find(3)->second, Bytes{30});
    EXPECT_EQ(objects.find(1)->second, Bytes{1});
    EXPECT_EQ(objects.size(), 4u);
}

// Forty runs (an odd number of them in some rounds) merged round after round.
TEST(DwgEncodedObjects, many_runs_order_as_few) {
    EncodedObjects objects;
    std::vector<std::uint64_t> expected;
    for (std::uint64_t run = 0; run < 40; ++run) {
        for (std::uint64_t k = 0; k < 3; ++k) {
            objects.add(1000 - 10 * run + k, Bytes{static_cast<std::uint8_t>(run)});
            expected.push_back(1000 - 10 * run + k);
        }
    }
    objects.add(995, Bytes{99});
    expected.push_back(995);
    objects.add(1001, Bytes{98});
    EXPECT_TRUE(objects.contains(612));
    EXPECT_FALSE(objects.contains(613));
    objects.order();
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(Handles(objects), expected);
    EXPECT_EQ(objects.find(995)->second, Bytes{99});
    EXPECT_EQ(objects.find(990)->second, Bytes{1});
    EXPECT_EQ(objects.find(1000)->second, Bytes{0});
    EXPECT_EQ(objects.find(1001)->second, Bytes{98});
}

TEST(DwgEncodedObjects, handle_added_again_in_many_runs_keeps_its_last_bytes) {
    EncodedObjects objects;
    for (std::uint8_t k = 0; k < 30; ++k) {
        objects.add(5, Bytes{k});
        objects.add(7, Bytes{static_cast<std::uint8_t>(100 + k)});
    }
    objects.order();
    EXPECT_EQ(Handles(objects), (std::vector<std::uint64_t>{5, 7}));
    EXPECT_EQ(objects.find(5)->second, Bytes{29});
    EXPECT_EQ(objects.find(7)->second, Bytes{129});
}

TEST(DwgEncodedObjects, objects_set_aside_are_known_before_the_order) {
    EncodedObjects objects;
    objects.add(0x100, {});
    objects.add(0x7, {});
    EXPECT_TRUE(objects.contains(0x100));
    EXPECT_TRUE(objects.contains(0x7));
    EXPECT_FALSE(objects.contains(0x8));
    EXPECT_FALSE(objects.contains(0x101));
    EXPECT_FALSE(objects.empty());
}

TEST(DwgEncodedObjects, handle_not_added_is_not_found) {
    EncodedObjects objects;
    EXPECT_TRUE(objects.empty());
    EXPECT_FALSE(objects.contains(1));
    EXPECT_EQ(objects.find(1), objects.end());
    objects.add(2, {});
    objects.add(4, {});
    objects.order();
    EXPECT_EQ(objects.find(3), objects.end());
    EXPECT_EQ(objects.find(5), objects.end());
    EXPECT_EQ(objects.find(4)->first, 4u);
}

TEST(DwgEncodedObjects, lists_equal_by_handles_and_bytes) {
    EncodedObjects a, b;
    a.add(1, {1});
    a.add(2, {2});
    b.add(2, {2});
    b.add(1, {1});
    a.order();
    b.order();
    EXPECT_TRUE(a == b);
    b.add(3, {3});
    EXPECT_FALSE(a == b);
}

}  // namespace
