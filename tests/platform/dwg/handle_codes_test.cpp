// The codes of an object's handle references, as AutoCAD writes them: the owner by its distance
// from the object where that distance is below the owner's handle, dictionary entries as soft
// owners whatever the dictionary's flag, a group's entities and a layout's plot view as hard
// pointers; the rest absolute.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "platform/dwg/encode_annotations.hpp"
#include "platform/dwg/encode_object.hpp"
#include "platform/dwg/encode_symbols.hpp"
#include "platform/dwg/encode_tables.hpp"
#include "platform/dwg/object_stream.hpp"
#include "platform/dwg/objects.hpp"

using namespace dwg;

namespace {

struct OwnerCase {
    const char* name;
    std::uint64_t self, owner;
    HandleRef expected;
};

class DwgOwnerReference : public ::testing::TestWithParam<OwnerCase> {};

TEST_P(DwgOwnerReference, codes_the_owner_as_autocad_does) {
    EXPECT_EQ(OwnerReference(GetParam().self, GetParam().owner), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Distances, DwgOwnerReference,
    ::testing::Values(OwnerCase{"one_back", 0x10, 0x0F, {kOneBack, 0}},
                      OwnerCase{"back_by_less_than_the_owner", 0x63, 0x5E, {kBack, 5}},
                      OwnerCase{"back_by_just_less_than_the_owner", 0x17, 0x0C, {kBack, 0x0B}},
                      OwnerCase{"back_by_the_owner_is_absolute", 0x18, 0x0C, {kSoftPointer, 0x0C}},
                      OwnerCase{"back_by_more_than_the_owner_is_absolute", 0x19, 0x0C, {kSoftPointer, 0x0C}},
                      OwnerCase{"back_to_handle_one_is_absolute", 0x02, 0x01, {kSoftPointer, 0x01}},
                      OwnerCase{"one_ahead", 0x10, 0x11, {kOneAhead, 0}},
                      OwnerCase{"ahead", 0xAE0, 0xAE7, {kAhead, 7}},
                      OwnerCase{"no_owner_is_absolute", 0x10, 0, {kSoftPointer, 0}}),
    [](const auto& info) { return std::string(info.param.name); });

// The handle references of an encoded object, in their order.
std::vector<HandleRef> References(const std::vector<std::uint8_t>& bytes) {
    ObjectStreams o;
    MapError error;
    EXPECT_TRUE(OpenObject(bytes, 0, Version::kR2004, 1252, o, error)) << error.reason;
    std::vector<HandleRef> out;
    // The last byte is filled with set bits: a reference never starts with code 0xF.
    while (o.handles.bitEnd() - o.handles.bitPosition() >= 8) {
        const HandleRef ref = o.handles.H();
        if (o.handles.failed() || ref.code == 0xF) break;
        out.push_back(ref);
    }
    return out;
}

// A dictionary's bytes read back as the reader takes them.
bool ReadBackDictionary(const std::vector<std::uint8_t>& bytes, DictionaryRecord& back) {
    ObjectStreams o;
    MapError error;
    return OpenObject(bytes, 0, Version::kR2004, 1252, o, error) && ReadDictionary(o, back);
}

TEST(DwgHandleCodes, dictionary_entries_are_soft_owners_though_the_dictionary_owns_them_hard) {
    DictionaryRecord d;
    d.common.handle = 0x1A;
    d.common.owner = 0x0C;
    d.hardOwner = 1;
    d.entries = {{"LAYOUT1", 0x1E}, {"MODEL", 0x22}};
    const auto bytes = EncodeDictionary(d, kDictionary, {});
    const std::vector<HandleRef> expected = {{kSoftPointer, 0x0C}, {kSoftOwner, 0x1E}, {kSoftOwner, 0x22}};
    EXPECT_EQ(References(bytes), expected);
    DictionaryRecord back;
    ASSERT_TRUE(ReadBackDictionary(bytes, back));
    EXPECT_EQ(back.hardOwner, 1);
}

TEST(DwgHandleCodes, owner_one_back_has_no_bytes_and_reads_back_absolute) {
    DictionaryRecord d;
    d.common.handle = 0x0D;
    d.common.owner = 0x0C;
    const auto bytes = EncodeDictionary(d, kDictionary, {});
    const std::vector<HandleRef> expected = {{kOneBack, 0}};
    EXPECT_EQ(References(bytes), expected);
    DictionaryRecord back;
    ASSERT_TRUE(ReadBackDictionary(bytes, back));
    EXPECT_EQ(back.common.owner, 0x0Cu);
}

TEST(DwgHandleCodes, group_entities_are_hard_pointers) {
    GroupRecord g;
    g.common.handle = 0x257;
    g.common.owner = 0x0D;
    g.entities = {0x256, 0x250};
    const std::vector<HandleRef> expected = {{kSoftPointer, 0x0D}, {kHardPointer, 0x256}, {kHardPointer, 0x250}};
    EXPECT_EQ(References(EncodeGroup(g, {})), expected);
}

TEST(DwgHandleCodes, plot_view_of_a_layout_and_of_plot_settings_is_a_hard_pointer) {
    LayoutRecord l;
    l.common.handle = 0x51;
    l.common.owner = 0x1A;
    l.block = 0x50;
    l.viewport = 0x84;
    const std::vector<HandleRef> layout = {{kSoftPointer, 0x1A}, {kHardPointer, 0},    {kSoftPointer, 0x50},
                                           {kSoftPointer, 0x84}, {kHardPointer, 0},    {kHardPointer, 0}};
    EXPECT_EQ(References(EncodeLayout(l, {})), layout);
    ObjectCommon common;
    common.handle = 0x90;
    common.owner = 0x8F;
    const std::vector<HandleRef> settings = {{kOneBack, 0}, {kHardPointer, 0}};
    EXPECT_EQ(References(EncodePlotSettings(common, l.plot, 500, {})), settings);
}

}  // namespace
