#include "platform/dwg/encode_tables.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "platform/dwg/entities.hpp"
#include "platform/dwg/object_stream.hpp"

using namespace dwg;

namespace {

// The streams refer to the bytes: the caller keeps them.
ObjectStreams Open(const std::vector<std::uint8_t>& bytes, const EncodeOptions& options) {
    ObjectStreams o;
    MapError error;
    EXPECT_TRUE(OpenObject(bytes, 0, options.version, options.codePage, o, error)) << error.reason;
    return o;
}

LayerRecord SampleLayer() {
    LayerRecord layer;
    layer.entry.common.handle = 0x70;
    layer.entry.common.owner = 0x02;
    layer.entry.name = "轮廓";
    layer.entry.referenced = true;
    layer.flags = 1 | 8;
    layer.plotted = false;
    layer.lineweight = 35;
    layer.color.index = 4;
    layer.plotStyle = 0x0F;
    layer.linetype = 0x16;
    return layer;
}

TEST(DwgEncodeTables, layer_round_trips_with_its_states_in_gbk) {
    const EncodeOptions options{Version::kR2004, 936};
    const LayerRecord layer = SampleLayer();
    const auto bytes = EncodeLayer(layer, options);
    ObjectStreams o = Open(bytes, options);
    EXPECT_EQ(o.type, kLayer);
    LayerRecord back;
    ASSERT_TRUE(ReadLayer(o, back));
    EXPECT_EQ(back.entry.common.handle, 0x70u);
    EXPECT_EQ(back.entry.common.owner, 0x02u);
    EXPECT_EQ(back.entry.name, "轮廓");
    EXPECT_TRUE(back.entry.referenced);
    EXPECT_EQ(back.flags, 1 | 8);
    EXPECT_FALSE(back.off);
    EXPECT_FALSE(back.plotted);
    EXPECT_EQ(back.lineweight, 35);
    EXPECT_EQ(back.color.index, 4);
    EXPECT_EQ(back.plotStyle, 0x0Fu);
    EXPECT_EQ(back.linetype, 0x16u);
    EXPECT_EQ(o.data.bitPosition(), o.dataEnd);
}

// Before 2004 an off layer also has a negative colour number; from 2004 the index is not stored
// (the colour value holds it) and the states say the layer is off.
TEST(DwgEncodeTables, off_layer_is_stored_with_a_negative_colour) {
    LayerRecord layer = SampleLayer();
    layer.off = true;
    const EncodeOptions r2000{Version::kR2000, 1252};
    const auto bytes = EncodeLayer(layer, r2000);
    ObjectStreams o = Open(bytes, r2000);
    LayerRecord back;
    ASSERT_TRUE(ReadLayer(o, back));
    EXPECT_TRUE(back.off);
    EXPECT_EQ(back.color.index, 4);
    // The colour as stored, read without the layer decoder's correction.
    ObjectStreams raw = Open(bytes, r2000);
    TableEntry entry;
    ReadTableEntry(raw, entry);
    raw.data.BS();
    EXPECT_EQ(raw.data.CMC().index, -4);

    const auto current = EncodeLayer(layer, {});
    ObjectStreams o2004 = Open(current, {});
    LayerRecord back2004;
    ASSERT_TRUE(ReadLayer(o2004, back2004));
    EXPECT_TRUE(back2004.off);
    EXPECT_EQ(back2004.color.index, 4);
}

struct WeightCase {
    int lineweight;
    std::uint8_t index;
};
class DwgLineweightIndex : public testing::TestWithParam<WeightCase> {};

TEST_P(DwgLineweightIndex, weight_maps_to_its_stored_index) {
    EXPECT_EQ(LineweightIndex(GetParam().lineweight), GetParam().index);
}
INSTANTIATE_TEST_SUITE_P(Weights, DwgLineweightIndex,
                         testing::Values(WeightCase{0, 0}, WeightCase{5, 1}, WeightCase{8, 1},
                                         WeightCase{9, 2}, WeightCase{211, 23},
                                         WeightCase{300, 23}, WeightCase{-1, 29},
                                         WeightCase{-2, 30}, WeightCase{-3, 31}));

TEST(DwgEncodeTables, every_lineweight_survives_the_layer_states) {
    for (std::uint8_t i = 0; i < 24; ++i) {
        LayerRecord layer = SampleLayer();
        layer.lineweight = LineweightFromIndex(i);
        const auto bytes = EncodeLayer(layer, {});
        ObjectStreams o = Open(bytes, {});
        LayerRecord back;
        ASSERT_TRUE(ReadLayer(o, back));
        EXPECT_EQ(back.lineweight, layer.lineweight);
    }
}

DictionaryRecord SampleDictionary() {
    DictionaryRecord d;
    d.common.handle = 0x0C;
    d.common.owner = 0;
    d.cloning = 1;
    d.hardOwner = 1;
    d.entries = {{"ACAD_GROUP", 0x0D}, {"ACAD_LAYOUT", 0x1A}, {"模板", 0x80}};
    return d;
}

TEST(DwgEncodeTables, dictionary_round_trips_its_entries_in_order) {
    const EncodeOptions options{Version::kR2004, 936};
    const DictionaryRecord d = SampleDictionary();
    const auto bytes = EncodeDictionary(d, kDictionary, options);
    ObjectStreams o = Open(bytes, options);
    EXPECT_EQ(o.type, kDictionary);
    DictionaryRecord back;
    ASSERT_TRUE(ReadDictionary(o, back));
    EXPECT_EQ(back.entries, d.entries);
    EXPECT_EQ(back.cloning, 1);
    EXPECT_EQ(back.hardOwner, 1);
    EXPECT_FALSE(back.withDefault);
}

TEST(DwgEncodeTables, dictionary_with_default_stores_it_after_the_entries) {
    DictionaryRecord d = SampleDictionary();
    d.withDefault = true;
    d.defaultEntry = 0x0F;
    d.common.reactors = {0x0C};
    const auto bytes = EncodeDictionary(d, 500, {});
    ObjectStreams o = Open(bytes, {});
    EXPECT_EQ(o.type, 500);
    DictionaryRecord back;
    ASSERT_TRUE(ReadDictionaryWithDefault(o, back));
    EXPECT_TRUE(back.withDefault);
    EXPECT_EQ(back.defaultEntry, 0x0Fu);
    EXPECT_EQ(back.common.reactors, d.common.reactors);
    EXPECT_EQ(back.entries.size(), 3u);
}

}  // namespace

namespace {

// Before 2004 an object without extension dictionary still stores a null reference to one.
TEST(DwgEncodeTables, dictionary_in_2000_refers_to_a_null_extension_dictionary) {
    const EncodeOptions options{Version::kR2000, 1252};
    DictionaryRecord d = SampleDictionary();
    d.entries.pop_back();
    const auto bytes = EncodeDictionary(d, kDictionary, options);
    ObjectStreams o = Open(bytes, options);
    DictionaryRecord back;
    ASSERT_TRUE(ReadDictionary(o, back));
    EXPECT_EQ(back.common.extensionDictionary, 0u);
    EXPECT_EQ(back.entries, d.entries);
    // Every handle read: the stream ends in the object's last byte.
    EXPECT_LE(o.handles.bitPosition(), o.size * 8);
    EXPECT_GT(o.handles.bitPosition() + 8, o.size * 8);
}

}  // namespace
