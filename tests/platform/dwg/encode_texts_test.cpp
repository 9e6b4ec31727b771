#include "platform/dwg/encode_texts.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

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

EntityCommon Common(std::uint64_t handle) {
    EntityCommon c;
    c.handle = handle;
    c.owner = 0x1F;
    c.layer = 0x10;
    return c;
}

MTextRecord SampleMText() {
    MTextRecord m;
    m.common = Common(0x80);
    m.insertion = {1, 2, 0};
    m.direction = {0, 1, 0};
    m.width = 40;
    m.height = 3.5;
    m.attachment = 5;
    m.flow = 1;
    m.extentsHeight = 7;
    m.extentsWidth = 30;
    m.contents = "{\\f宋体;模板}\\P第二行";
    m.lineSpacingStyle = 2;
    m.lineSpacingFactor = 1.25;
    m.style = 0x11;
    return m;
}

TEST(DwgEncodeTexts, mtext_round_trips_in_gbk) {
    const EncodeOptions options{Version::kR2004, 936};
    const MTextRecord m = SampleMText();
    const auto bytes = EncodeMText(m, options);
    ObjectStreams o = Open(bytes, options);
    EXPECT_EQ(o.type, kMText);
    MTextRecord back;
    ASSERT_TRUE(ReadMText(o, back));
    EXPECT_EQ(back.contents, m.contents);
    EXPECT_EQ(back.direction.y, 1);
    EXPECT_EQ(back.width, 40);
    EXPECT_EQ(back.height, 3.5);
    EXPECT_EQ(back.attachment, 5);
    EXPECT_EQ(back.extentsHeight, 7);
    EXPECT_EQ(back.extentsWidth, 30);
    EXPECT_EQ(back.lineSpacingStyle, 2);
    EXPECT_EQ(back.lineSpacingFactor, 1.25);
    EXPECT_EQ(back.backgroundFlags, 0);
    EXPECT_EQ(back.style, 0x11u);
    EXPECT_EQ(o.data.bitPosition(), o.dataEnd);
}

TEST(DwgEncodeTexts, mtext_background_fill_is_stored_only_when_filled) {
    MTextRecord m = SampleMText();
    m.backgroundFlags = 1;
    m.backgroundScale = 2;
    m.backgroundColor.index = 2;
    m.backgroundTransparency = 0x5;
    const auto bytes = EncodeMText(m, {});
    ObjectStreams o = Open(bytes, {});
    MTextRecord back;
    ASSERT_TRUE(ReadMText(o, back));
    EXPECT_EQ(back.backgroundFlags, 1);
    EXPECT_EQ(back.backgroundScale, 2);
    EXPECT_EQ(back.backgroundColor.index, 2);
    EXPECT_EQ(back.backgroundTransparency, 5u);

    const auto plain = EncodeMText(SampleMText(), {});
    EXPECT_LT(plain.size(), bytes.size());
}

TEST(DwgEncodeTexts, mtext_in_2000_has_no_background) {
    const EncodeOptions options{Version::kR2000, 1252};
    MTextRecord m = SampleMText();
    m.contents = "plain";
    const auto bytes = EncodeMText(m, options);
    ObjectStreams o = Open(bytes, options);
    MTextRecord back;
    ASSERT_TRUE(ReadMText(o, back));
    EXPECT_EQ(back.contents, "plain");
    EXPECT_EQ(back.style, 0x11u);
    EXPECT_EQ(o.data.bitPosition(), o.dataEnd);
}

AttributeRecord SampleAttribute() {
    AttributeRecord a;
    a.text.common = Common(0x81);
    a.text.insertion = {3, 4};
    a.text.alignment = a.text.insertion;
    a.text.height = 2;
    a.text.text = "P-01";
    a.text.style = 0x11;
    a.tag = "编号";
    a.prompt = "输入编号";
    a.fieldLength = 0;
    a.flags = 8;
    return a;
}

TEST(DwgEncodeTexts, attribute_and_definition_round_trip) {
    const EncodeOptions options{Version::kR2004, 936};
    const AttributeRecord a = SampleAttribute();
    for (bool definition : {false, true}) {
        const auto bytes = EncodeAttribute(a, definition, options);
        ObjectStreams o = Open(bytes, options);
        EXPECT_EQ(o.type, definition ? kAttdef : kAttrib);
        AttributeRecord back;
        ASSERT_TRUE(ReadAttribute(o, back, definition));
        EXPECT_EQ(back.text.text, "P-01");
        EXPECT_EQ(back.text.height, 2);
        EXPECT_EQ(back.tag, "编号");
        EXPECT_EQ(back.flags, 8);
        EXPECT_EQ(back.prompt, definition ? "输入编号" : "");
        EXPECT_EQ(back.text.style, 0x11u);
        EXPECT_EQ(o.data.bitPosition(), o.dataEnd);
    }
}

}  // namespace
