// Extended data between the bytes the object data holds and the DXF groups a record ends with.
#include <gtest/gtest.h>

#include "platform/dwg/extended_data.hpp"

namespace {

using dwg::ExtendedData;
using dwg::ExtendedGroup;

const std::unordered_map<std::uint64_t, std::string> kApplications = {{0x12, "ACAD"}, {0xDE, "AcadAnnotative"}};
const std::unordered_map<std::string, std::uint64_t> kApplicationHandles = {{"ACAD", 0x12}, {"ACADANNOTATIVE", 0xDE}};
const std::unordered_map<std::uint64_t, std::string> kLayers = {{0x10, "0"}, {0x2A, "Contour"}};
const std::unordered_map<std::string, std::uint64_t> kLayerHandles = {{"0", 0x10}, {"CONTOUR", 0x2A}};

std::string Bytes(std::initializer_list<int> values) {
    std::string out;
    for (int v : values) out.push_back(static_cast<char>(v));
    return out;
}

std::vector<ExtendedData> Encoded(const std::vector<ExtendedGroup>& groups) {
    return dwg::ExtendedDataOfGroups(groups, kApplicationHandles, kLayerHandles, 30, 1252);
}

// Each kind of item as AutoCAD stores it: the group code less 1000, then the value.
struct ItemCase {
    const char* name;
    std::vector<ExtendedGroup> groups;
    std::string bytes;
};

TEST(DwgExtendedData, each_kind_of_item_has_the_bytes_autocad_stores) {
    const ItemCase cases[] = {
        // A text: its length, the code page's number high byte first, its characters.
        {"text", {{1000, "Arial"}}, Bytes({0, 5, 0, 0x1E, 'A', 'r', 'i', 'a', 'l'})},
        {"braces", {{1002, "{"}, {1002, "}"}}, Bytes({2, 0, 2, 1})},
        {"layer", {{1003, "Contour"}}, Bytes({3, 0, 0, 0, 0, 0, 0, 0, 0x2A})},
        {"chunk", {{1004, "0AFF"}}, Bytes({4, 2, 0x0A, 0xFF})},
        {"entity handle", {{1005, "1A2B"}}, Bytes({5, 0, 0, 0, 0, 0, 0, 0x1A, 0x2B})},
        {"point", {{1010, "1.0"}, {1020, "0.0"}, {1030, "0.0"}},
         Bytes({10, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0})},
        {"real", {{1040, "1.0"}}, Bytes({40, 0, 0, 0, 0, 0, 0, 0xF0, 0x3F})},
        {"short", {{1070, "-2"}}, Bytes({70, 0xFE, 0xFF})},
        {"long", {{1071, "65537"}}, Bytes({71, 1, 0, 1, 0})},
    };
    for (const ItemCase& c : cases) {
        std::vector<ExtendedGroup> groups = {{1001, "ACAD"}};
        groups.insert(groups.end(), c.groups.begin(), c.groups.end());
        const std::vector<ExtendedData> encoded = Encoded(groups);
        ASSERT_EQ(encoded.size(), 1u) << c.name;
        EXPECT_EQ(encoded[0].application, 0x12u) << c.name;
        EXPECT_EQ(encoded[0].bytes, c.bytes) << c.name;
        EXPECT_EQ(dwg::ExtendedGroupsOf(encoded, kApplications, kLayers, 1252), groups) << c.name;
    }
}

TEST(DwgExtendedData, applications_keep_their_order_and_names_match_in_any_case) {
    const std::vector<ExtendedGroup> groups = {{1001, "AcadAnnotative"}, {1070, "1"}, {1001, "acad"}, {1070, "2"}};
    const std::vector<ExtendedData> encoded = Encoded(groups);
    ASSERT_EQ(encoded.size(), 2u);
    EXPECT_EQ(encoded[0].application, 0xDEu);
    EXPECT_EQ(encoded[1].application, 0x12u);
    const std::vector<ExtendedGroup> back = dwg::ExtendedGroupsOf(encoded, kApplications, kLayers, 1252);
    const std::vector<ExtendedGroup> expected = {{1001, "AcadAnnotative"}, {1070, "1"}, {1001, "ACAD"}, {1070, "2"}};
    EXPECT_EQ(back, expected);
}

TEST(DwgExtendedData, groups_before_the_first_application_are_not_extended_data) {
    EXPECT_TRUE(Encoded({{1070, "1"}}).empty());
    EXPECT_EQ(Encoded({{1070, "1"}, {1001, "ACAD"}, {1070, "3"}}).size(), 1u);
}

// What the file cannot name or hold leaves that application's data out, not the others'.
TEST(DwgExtendedData, unknown_application_or_layer_leaves_only_its_data_out) {
    const std::vector<ExtendedData> encoded =
        Encoded({{1001, "OTHER"}, {1070, "1"}, {1001, "ACAD"}, {1003, "Missing"}, {1001, "AcadAnnotative"}, {1070, "5"}});
    ASSERT_EQ(encoded.size(), 1u);
    EXPECT_EQ(encoded[0].application, 0xDEu);
    EXPECT_EQ(encoded[0].bytes, Bytes({70, 5, 0}));
}

TEST(DwgExtendedData, stored_data_that_does_not_decode_is_left_out) {
    const std::vector<ExtendedData> stored = {{0x12, Bytes({70, 1})}, {0x99, Bytes({70, 1, 0})},
                                              {0xDE, Bytes({70, 7, 0})}, {0x12, Bytes({99})}};
    const std::vector<ExtendedGroup> expected = {{1001, "AcadAnnotative"}, {1070, "7"}};
    EXPECT_EQ(dwg::ExtendedGroupsOf(stored, kApplications, kLayers, 1252), expected);
}

TEST(DwgExtendedData, text_is_written_in_the_code_page_and_read_back) {
    const std::vector<ExtendedGroup> groups = {{1001, "ACAD"}, {1000, "轮廓"}};
    const std::vector<ExtendedData> encoded =
        dwg::ExtendedDataOfGroups(groups, kApplicationHandles, kLayerHandles, 0x26, 936);
    ASSERT_EQ(encoded.size(), 1u);
    EXPECT_EQ(encoded[0].bytes.substr(0, 4), Bytes({0, 4, 0, 0x26}));
    EXPECT_EQ(dwg::ExtendedGroupsOf(encoded, kApplications, kLayers, 936), groups);
}

}  // namespace

namespace {

// Groups the format cannot hold leave their application's data out.
TEST(DwgExtendedData, groups_the_format_cannot_hold_leave_their_application_out) {
    const std::vector<std::vector<ExtendedGroup>> cases = {
        {{1004, "0AF"}},                                  // half a byte
        {{1004, std::string(512, 'A')}},                  // a chunk over 255 bytes
        {{1010, "1.0"}, {1030, "0.0"}, {1020, "0.0"}},    // a point's axes out of order
        {{1070, "abc"}},                                  // not a number
        {{1040, "1.0x"}},
        {{1005, "XYZ"}},                                  // not a handle
        {{1006, "1"}},                                    // no such group
        {{1010, "1.0"}, {1020, "0.0"}},                   // a point cut short
    };
    for (const auto& items : cases) {
        // After an item that is well formed: the whole application goes.
        std::vector<ExtendedGroup> groups = {{1001, "ACAD"}, {1070, "1"}};
        groups.insert(groups.end(), items.begin(), items.end());
        EXPECT_TRUE(Encoded(groups).empty()) << items.front().first << " " << items.front().second.substr(0, 8);
    }
}

TEST(DwgExtendedData, empty_chunk_at_the_end_round_trips) {
    const std::vector<ExtendedGroup> groups = {{1001, "ACAD"}, {1070, "1"}, {1004, ""}};
    const std::vector<ExtendedData> encoded = Encoded(groups);
    ASSERT_EQ(encoded.size(), 1u);
    EXPECT_EQ(encoded[0].bytes, Bytes({70, 1, 0, 4, 0}));
    EXPECT_EQ(dwg::ExtendedGroupsOf(encoded, kApplications, kLayers, 1252), groups);
}

// An item that runs past its application's bytes leaves that application out.
TEST(DwgExtendedData, item_cut_short_leaves_its_application_out) {
    const std::string cut[] = {Bytes({0, 5, 0, 0x1E, 'A', 'r'}), Bytes({71, 1, 0, 1}), Bytes({70, 1}),
                               Bytes({40, 0, 0, 0}), Bytes({10, 0, 0, 0}), Bytes({5, 0, 0}), Bytes({4, 3, 1}),
                               Bytes({2}), Bytes({4}),
                               // cut short before bytes that would read as an item
                               Bytes({0, 5, 0, 0x1E, 70, 1, 0}), Bytes({71, 70, 1, 0})};
    for (const std::string& bytes : cut) {
        const std::vector<ExtendedData> stored = {{0x12, Bytes({70, 9, 0}) + bytes}};
        EXPECT_TRUE(dwg::ExtendedGroupsOf(stored, kApplications, kLayers, 1252).empty()) << bytes.size();
    }
}

}  // namespace
