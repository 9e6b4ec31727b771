#include "platform/dwg/encode_entities.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "platform/dwg/object_stream.hpp"

using namespace dwg;

namespace {

// Opens the one object of the bytes as the reader of the object data would.
// The streams refer to the bytes: the caller keeps them.
ObjectStreams Open(const std::vector<std::uint8_t>& bytes, const EncodeOptions& options) {
    ObjectStreams o;
    MapError error;
    EXPECT_TRUE(OpenObject(bytes, 0, options.version, options.codePage, o, error)) << error.reason;
    return o;
}

EntityCommon SampleCommon(std::uint64_t handle) {
    EntityCommon c;
    c.handle = handle;
    c.owner = 0x1F;
    c.layer = 0x10;
    c.color.index = 3;
    c.linetypeScale = 2.5;
    c.lineweight = 13;
    c.reactors = {0x40, 0x41};
    c.extensionDictionary = 0x42;
    c.extended.push_back({0x12, std::string("\x01\x02\x03", 3)});
    return c;
}

void ExpectSameCommon(const EntityCommon& got, const EntityCommon& want) {
    EXPECT_EQ(got.handle, want.handle);
    EXPECT_EQ(got.mode, want.mode);
    EXPECT_EQ(got.owner, want.owner);
    EXPECT_EQ(got.layer, want.layer);
    EXPECT_EQ(got.linetype, want.linetype);
    EXPECT_EQ(got.plotStyle, want.plotStyle);
    EXPECT_EQ(got.linetypeFlags, want.linetypeFlags);
    EXPECT_EQ(got.plotStyleFlags, want.plotStyleFlags);
    EXPECT_EQ(got.color.index, want.color.index);
    EXPECT_EQ(got.color.rgb, want.color.rgb);
    EXPECT_EQ(got.linetypeScale, want.linetypeScale);
    EXPECT_EQ(got.lineweight, want.lineweight);
    EXPECT_EQ(got.invisible, want.invisible);
    EXPECT_EQ(got.reactors, want.reactors);
    EXPECT_EQ(got.extensionDictionary, want.extensionDictionary);
    ASSERT_EQ(got.extended.size(), want.extended.size());
    for (std::size_t i = 0; i < got.extended.size(); ++i) {
        EXPECT_EQ(got.extended[i].application, want.extended[i].application);
        EXPECT_EQ(got.extended[i].bytes, want.extended[i].bytes);
    }
    EXPECT_EQ(got.previous, want.previous);
    EXPECT_EQ(got.next, want.next);
}

void ExpectPoint(const Point3& got, const Point3& want) {
    EXPECT_EQ(got.x, want.x);
    EXPECT_EQ(got.y, want.y);
    EXPECT_EQ(got.z, want.z);
}

class DwgEncodeByVersion : public testing::TestWithParam<Version> {
protected:
    EncodeOptions options() const { return {GetParam(), 1252}; }
};

TEST_P(DwgEncodeByVersion, line_round_trips_with_its_common_data) {
    LineRecord line;
    line.common = SampleCommon(0x2A);
    line.start = {1.5, -2, 0};
    line.end = {1.5, 7.25, 3};
    line.thickness = 0.5;
    line.normal = {0, 1, 0};
    const auto bytes = EncodeLine(line, options());
    ObjectStreams o = Open(bytes, options());
    EXPECT_EQ(o.type, kLine);
    EXPECT_EQ(o.handle, 0x2Au);
    LineRecord back;
    ASSERT_TRUE(ReadLine(o, back));
    ExpectSameCommon(back.common, line.common);
    ExpectPoint(back.start, line.start);
    ExpectPoint(back.end, line.end);
    EXPECT_EQ(back.thickness, 0.5);
    ExpectPoint(back.normal, line.normal);
    EXPECT_EQ(o.data.bitPosition(), o.dataEnd);  // every value read, none left over
}

// An owner far ahead of the entity is referred to by its distance; the entity's own graphic
// (a preview) is stored whole.
TEST_P(DwgEncodeByVersion, entity_with_a_preview_and_an_owner_far_ahead_round_trips) {
    LineRecord line;
    line.common = SampleCommon(0x2A);
    line.common.owner = 0x95;
    line.common.preview = std::string("\x05\x06\x07\x08\x09", 5);
    line.end = {1, 1, 0};
    const auto bytes = EncodeLine(line, options());
    ObjectStreams o = Open(bytes, options());
    LineRecord back;
    ASSERT_TRUE(ReadLine(o, back));
    ExpectSameCommon(back.common, line.common);
    EXPECT_EQ(back.common.preview, line.common.preview);
    ExpectPoint(back.end, line.end);
}

TEST_P(DwgEncodeByVersion, flat_line_leaves_out_its_heights) {
    LineRecord flat;
    flat.common = SampleCommon(0x2B);
    flat.start = {1, 2, 0};
    flat.end = {3, 4, 0};
    LineRecord raised = flat;
    raised.start.z = 1;
    raised.end.z = 1;
    // The heights take a raw double and a two-bit default double: 66 bits.
    const auto raisedBytes = EncodeLine(raised, options());
    const auto flatBytes = EncodeLine(flat, options());
    ObjectStreams r = Open(raisedBytes, options());
    ObjectStreams f = Open(flatBytes, options());
    EXPECT_EQ(r.dataEnd - f.dataEnd, 66u);
    const auto bytes1 = EncodeLine(flat, options());
    ObjectStreams o = Open(bytes1, options());
    LineRecord back;
    ASSERT_TRUE(ReadLine(o, back));
    ExpectPoint(back.end, flat.end);
}

TEST_P(DwgEncodeByVersion, circle_and_arc_round_trip) {
    ArcRecord arc;
    arc.circle.common = SampleCommon(0x30);
    arc.circle.common.mode = 2;  // model space: no owner stored
    arc.circle.common.owner = 0;
    arc.circle.common.linetypeFlags = 3;
    arc.circle.common.linetype = 0x16;
    arc.circle.common.plotStyleFlags = 3;
    arc.circle.common.plotStyle = 0x0E;
    arc.circle.center = {10, 20, 1};
    arc.circle.radius = 4;
    arc.startAngle = 0.25;
    arc.endAngle = 3;
    const auto bytes2 = EncodeArc(arc, options());
    ObjectStreams o = Open(bytes2, options());
    EXPECT_EQ(o.type, kArc);
    ArcRecord back;
    ASSERT_TRUE(ReadArc(o, back));
    ExpectSameCommon(back.circle.common, arc.circle.common);
    ExpectPoint(back.circle.center, arc.circle.center);
    EXPECT_EQ(back.circle.radius, 4);
    EXPECT_EQ(back.startAngle, 0.25);
    EXPECT_EQ(back.endAngle, 3);

    const auto bytes3 = EncodeCircle(arc.circle, options());
    ObjectStreams c = Open(bytes3, options());
    EXPECT_EQ(c.type, kCircle);
    CircleRecord circle;
    ASSERT_TRUE(ReadCircle(c, circle));
    EXPECT_EQ(circle.radius, 4);
    ExpectSameCommon(circle.common, arc.circle.common);
}

TEST_P(DwgEncodeByVersion, point_round_trips) {
    PointRecord p;
    p.common = SampleCommon(0x31);
    p.common.extensionDictionary = 0;
    p.position = {1, 2, 3};
    p.thickness = -1;
    p.xAxisAngle = 0.5;
    const auto bytes4 = EncodePoint(p, options());
    ObjectStreams o = Open(bytes4, options());
    PointRecord back;
    ASSERT_TRUE(ReadPoint(o, back));
    ExpectSameCommon(back.common, p.common);
    ExpectPoint(back.position, p.position);
    EXPECT_EQ(back.thickness, -1);
    EXPECT_EQ(back.xAxisAngle, 0.5);
}

TEST_P(DwgEncodeByVersion, text_with_every_value_set_round_trips) {
    TextRecord t;
    t.common = SampleCommon(0x32);
    t.elevation = 1;
    t.insertion = {5, 6};
    t.alignment = {7, 8};
    t.oblique = 0.1;
    t.rotation = 0.2;
    t.height = 2.5;
    t.widthFactor = 0.8;
    t.text = "Plate A-1";
    t.generation = 2;
    t.horizontal = 1;
    t.vertical = 3;
    t.style = 0x11;
    const auto bytes5 = EncodeText(t, options());
    ObjectStreams o = Open(bytes5, options());
    TextRecord back;
    ASSERT_TRUE(ReadText(o, back));
    ExpectSameCommon(back.common, t.common);
    EXPECT_EQ(back.elevation, 1);
    EXPECT_EQ(back.alignment.x, 7);
    EXPECT_EQ(back.alignment.y, 8);
    EXPECT_EQ(back.oblique, 0.1);
    EXPECT_EQ(back.rotation, 0.2);
    EXPECT_EQ(back.height, 2.5);
    EXPECT_EQ(back.widthFactor, 0.8);
    EXPECT_EQ(back.text, "Plate A-1");
    EXPECT_EQ(back.generation, 2);
    EXPECT_EQ(back.horizontal, 1);
    EXPECT_EQ(back.vertical, 3);
    EXPECT_EQ(back.style, 0x11u);
}

INSTANTIATE_TEST_SUITE_P(Versions, DwgEncodeByVersion,
                         testing::Values(Version::kR2000, Version::kR2004));

// Each default left out saves its value: a text of defaults is the smallest.
TEST(DwgEncode, text_of_defaults_stores_only_insertion_height_and_string) {
    TextRecord plain;
    plain.common = SampleCommon(0x33);
    plain.insertion = {5, 6};
    plain.alignment = plain.insertion;
    plain.height = 2.5;
    plain.text = "x";
    const EncodeOptions options{};
    const std::size_t plainSize = EncodeText(plain, options).size();
    TextRecord rotated = plain;
    rotated.rotation = 0.5;
    EXPECT_EQ(EncodeText(rotated, options).size(), plainSize + 8);
    const auto bytes11 = EncodeText(plain, options);
    ObjectStreams o = Open(bytes11, options);
    TextRecord back;
    ASSERT_TRUE(ReadText(o, back));
    EXPECT_EQ(back.alignment.x, 5);
    EXPECT_EQ(back.widthFactor, 1);
    EXPECT_EQ(o.data.bitPosition(), o.dataEnd);
}

TEST(DwgEncode, gbk_text_and_true_colour_in_2004) {
    TextRecord t;
    t.common = SampleCommon(0x34);
    t.common.color.rgb = 0xC2FF8000;
    t.common.color.hasTransparency = true;
    t.common.color.transparency = 0x02000080;
    t.height = 1;
    t.text = "模板 编号";
    const EncodeOptions options{Version::kR2004, 936};
    const auto bytes12 = EncodeText(t, options);
    ObjectStreams o = Open(bytes12, options);
    TextRecord back;
    ASSERT_TRUE(ReadText(o, back));
    EXPECT_EQ(back.text, "模板 编号");
    EXPECT_EQ(back.common.color.rgb, 0xC2FF8000u);
    EXPECT_EQ(back.common.color.transparency, 0x02000080u);
}

TEST(DwgEncode, linked_entities_in_2000_keep_previous_and_next) {
    PointRecord p;
    p.common = SampleCommon(0x35);
    p.common.noLinks = false;
    p.common.previous = 0x50;
    p.common.next = 0x52;
    const EncodeOptions options{Version::kR2000, 1252};
    const auto bytes13 = EncodePoint(p, options);
    ObjectStreams o = Open(bytes13, options);
    PointRecord back;
    ASSERT_TRUE(ReadPoint(o, back));
    EXPECT_FALSE(back.common.noLinks);
    ExpectSameCommon(back.common, p.common);
}

TEST(DwgEncode, object_crc_is_checked_by_the_reader) {
    LineRecord line;
    line.common = SampleCommon(0x36);
    auto bytes = EncodeLine(line, {});
    bytes[5] ^= 0x10;
    ObjectStreams o;
    MapError error;
    EXPECT_FALSE(OpenObject(bytes, 0, Version::kR2004, 1252, o, error));
    EXPECT_EQ(error.reason, "object CRC mismatch");
}

TEST(DwgEncode, object_size_counts_the_bytes_between_size_and_crc) {
    LineRecord line;
    line.common = SampleCommon(0x37);
    const auto bytes = EncodeLine(line, {});
    ObjectStreams o = Open(bytes, {});
    EXPECT_EQ(o.size + 2 + 2, bytes.size());  // a word of size, two bytes of CRC
}

}  // namespace

namespace {

// The alignment point is stored unless both its coordinates equal the insertion's.
TEST(DwgEncode, text_alignment_differing_in_one_coordinate_is_stored) {
    for (const Point2 alignment : {Point2{5, 9}, Point2{9, 6}}) {
        TextRecord t;
        t.common = SampleCommon(0x38);
        t.insertion = {5, 6};
        t.alignment = alignment;
        t.height = 1;
        const auto bytes = EncodeText(t, {});
        ObjectStreams o = Open(bytes, {});
        TextRecord back;
        ASSERT_TRUE(ReadText(o, back));
        EXPECT_EQ(back.alignment.x, alignment.x);
        EXPECT_EQ(back.alignment.y, alignment.y);
    }
}

}  // namespace
