// Entities built as each version lays them out decode to the values written.
#include "platform/dwg/entities.hpp"

#include <gtest/gtest.h>

#include "platform/dwg/object_builder.hpp"

using dwg::Version;
using dwg_test::ObjectParts;

namespace {

bool Open(const std::vector<std::uint8_t>& bytes, Version version, dwg::ObjectStreams& o,
          int codePage = 1252) {
    dwg::MapError error;
    return dwg::OpenObject(bytes, 0, version, codePage, o, error);
}

ObjectParts TextParts(Version version, const std::u16string& text) {
    ObjectParts p;
    p.version = version;
    p.type = dwg::kText;
    p.handle = 0x2A;
    dwg_test::WriteEntityCommon(p, 0x10);
    auto& w = p.values;
    w.RC(0x01 | 0x02 | 0x04 | 0x08 | 0x10 | 0x20 | 0x40 | 0x80);  // only the required values
    w.RD(5.0);
    w.RD(6.0);
    w.B(true);   // extrusion (0,0,1)
    w.B(true);   // thickness 0
    w.RD(2.5);   // height
    p.strings.TU(text);
    p.handles.H(5, 0x11);  // style
    return p;
}

class DwgUnicodeText : public ::testing::TestWithParam<Version> {};

TEST_P(DwgUnicodeText, text_comes_from_the_string_stream) {
    const auto bytes = dwg_test::BuildObject(TextParts(GetParam(), u"\u4E2D\u6587 A"));
    dwg::ObjectStreams o;
    ASSERT_TRUE(Open(bytes, GetParam(), o));
    EXPECT_EQ(o.type, dwg::kText);
    EXPECT_EQ(o.handle, 0x2Au);
    dwg::TextRecord r;
    ASSERT_TRUE(dwg::ReadText(o, r));
    EXPECT_EQ(r.text, "\xE4\xB8\xAD\xE6\x96\x87 A");
    EXPECT_EQ(r.insertion.x, 5.0);
    EXPECT_EQ(r.alignment.y, 6.0);  // not stored: the insertion point
    EXPECT_EQ(r.height, 2.5);
    EXPECT_EQ(r.widthFactor, 1.0);
    EXPECT_EQ(r.common.layer, 0x10u);
    EXPECT_EQ(r.style, 0x11u);
    EXPECT_EQ(r.common.mode, 2);
}

INSTANTIATE_TEST_SUITE_P(Versions, DwgUnicodeText,
                         ::testing::Values(Version::kR2007, Version::kR2010, Version::kR2013,
                                           Version::kR2018));

TEST(DwgText, long_string_stream_needs_two_size_words) {
    const std::u16string text(2100, u'x');  // more than 0x7FFF bits of strings
    const auto bytes = dwg_test::BuildObject(TextParts(Version::kR2010, text));
    dwg::ObjectStreams o;
    ASSERT_TRUE(Open(bytes, Version::kR2010, o));
    dwg::TextRecord r;
    ASSERT_TRUE(dwg::ReadText(o, r));
    EXPECT_EQ(r.text.size(), 2100u);
}

TEST(DwgText, code_page_text_before_2007_is_in_the_values) {
    ObjectParts p;
    p.version = Version::kR2004;
    p.type = dwg::kText;
    p.handle = 0x30;
    // The DD codes: 3 is the whole value, 0 the default.
    dwg_test::WriteEntityCommon(p, 0x10);
    auto& v = p.values;
    v.RC(0x01 | 0x04 | 0x08 | 0x10 | 0x20 | 0x40);
    v.RD(1.0);
    v.RD(2.0);
    v.DDFull(9.0);
    v.DDDefault();
    v.B(true);
    v.B(true);
    v.RD(3.0);
    v.TV(std::string("\xB2\xE2\xCA\xD4", 4));
    v.BS(2);
    p.handles.H(5, 0x11);
    const auto bytes = dwg_test::BuildObject(p);
    dwg::ObjectStreams o;
    ASSERT_TRUE(Open(bytes, Version::kR2004, o, 936));
    dwg::TextRecord r;
    ASSERT_TRUE(dwg::ReadText(o, r));
    EXPECT_EQ(r.text, "\xE6\xB5\x8B\xE8\xAF\x95");
    EXPECT_EQ(r.alignment.x, 9.0);
    EXPECT_EQ(r.alignment.y, 2.0);
    EXPECT_EQ(r.vertical, 2);
    EXPECT_EQ(r.horizontal, 0);
}

TEST(DwgLine, end_point_defaults_to_the_start_and_flat_line_has_no_z) {
    ObjectParts p;
    p.version = Version::kR2004;
    p.type = dwg::kLine;
    p.handle = 0x40;
    dwg_test::WriteEntityCommon(p, 0x10);
    auto& w = p.values;
    w.B(true);  // z are zero
    w.RD(1.5);
    w.DDDefault();
    w.RD(-2.0);
    w.DDFull(7.0);
    w.B(false);
    w.BD(0.5);  // thickness
    w.B(true);
    const auto bytes = dwg_test::BuildObject(p);
    dwg::ObjectStreams o;
    ASSERT_TRUE(Open(bytes, Version::kR2004, o));
    dwg::LineRecord r;
    ASSERT_TRUE(dwg::ReadLine(o, r));
    EXPECT_EQ(r.start.x, 1.5);
    EXPECT_EQ(r.end.x, 1.5);
    EXPECT_EQ(r.start.y, -2.0);
    EXPECT_EQ(r.end.y, 7.0);
    EXPECT_EQ(r.start.z, 0.0);
    EXPECT_EQ(r.thickness, 0.5);
    EXPECT_EQ(r.normal.z, 1.0);
}

TEST(DwgEntityCommon, colour_book_owner_reactors_and_dictionary_handles) {
    ObjectParts p;
    p.version = Version::kR2004;
    p.type = dwg::kCircle;
    p.handle = 0x50;
    auto& w = p.values;
    w.BS(0);
    w.B(false);
    w.BB(0);      // owner given by handle
    w.BL(2);      // two reactors
    w.B(false);   // has an extension dictionary
    w.BS(0x8000 | 0x4000 | 1);  // a colour book entry: its values are in the colour object
    w.BD(2.0);
    w.BB(3);      // linetype by handle
    w.BB(3);      // plot style by handle
    w.BS(1);      // invisible
    w.RC(5);
    w.BD3(1, 2, 3);
    w.BD(4);
    w.B(true);
    w.B(true);
    auto& h = p.handles;
    h.H(4, 0x1F);        // owner
    h.H(4, 0x60);        // reactors
    h.H(6, 0);           // the next handle: 0x51
    h.H(3, 0x70);        // extension dictionary
    h.H(5, 0x80);        // colour book entry
    h.H(5, 0x10);        // layer
    h.H(0xC, 0x10);      // linetype: 0x50 - 0x10
    h.H(5, 0x90);        // plot style
    const auto bytes = dwg_test::BuildObject(p);
    dwg::ObjectStreams o;
    ASSERT_TRUE(Open(bytes, Version::kR2004, o));
    dwg::CircleRecord r;
    ASSERT_TRUE(dwg::ReadCircle(o, r));
    const auto& c = r.common;
    EXPECT_EQ(c.owner, 0x1Fu);
    EXPECT_EQ(c.reactors, (std::vector<std::uint64_t>{0x60, 0x51}));
    EXPECT_EQ(c.extensionDictionary, 0x70u);
    EXPECT_EQ(c.colorBook, 0x80u);
    EXPECT_EQ(c.layer, 0x10u);
    EXPECT_EQ(c.linetype, 0x40u);
    EXPECT_EQ(c.plotStyle, 0x90u);
    EXPECT_TRUE(c.color.hasBookHandle);
    EXPECT_EQ(c.linetypeScale, 2.0);
    EXPECT_EQ(c.invisible, 1);
    EXPECT_EQ(dwg::LineweightFromIndex(c.lineweight), 18);
    EXPECT_EQ(r.radius, 4.0);
    EXPECT_EQ(r.center.z, 3.0);
}

TEST(DwgObject, crc_mismatch_names_the_object_offset) {
    auto bytes = dwg_test::BuildObject(TextParts(Version::kR2010, u"a"));
    bytes[4] ^= 0x01;
    std::vector<std::uint8_t> data(3, 0);
    data.insert(data.end(), bytes.begin(), bytes.end());
    dwg::ObjectStreams o;
    dwg::MapError error;
    EXPECT_FALSE(dwg::OpenObject(data, 3, Version::kR2010, 1252, o, error));
    EXPECT_EQ(error.offset, 3u);
    EXPECT_EQ(error.reason, "object CRC mismatch");
}

TEST(DwgObject, object_longer_than_the_data_is_refused) {
    auto bytes = dwg_test::BuildObject(TextParts(Version::kR2000, u""));
    bytes.resize(bytes.size() - 3);
    dwg::ObjectStreams o;
    dwg::MapError error;
    EXPECT_FALSE(dwg::OpenObject(bytes, 0, Version::kR2000, 1252, o, error));
    EXPECT_NE(error.reason.find("runs past the data"), std::string::npos);
}

TEST(DwgObject, offset_outside_the_data_is_refused) {
    const std::vector<std::uint8_t> data(10, 0);
    dwg::ObjectStreams o;
    dwg::MapError error;
    EXPECT_FALSE(dwg::OpenObject(data, 10, Version::kR2000, 1252, o, error));
    EXPECT_FALSE(dwg::OpenObject(data, -1, Version::kR2000, 1252, o, error));
}

TEST(DwgObject, text_without_string_stream_fails_in_2007) {
    auto parts = TextParts(Version::kR2007, u"");
    parts.strings = dwg_test::BitWriter{};
    const auto bytes = dwg_test::BuildObject(parts);
    dwg::ObjectStreams o;
    ASSERT_TRUE(Open(bytes, Version::kR2007, o));
    dwg::TextRecord r;
    EXPECT_FALSE(dwg::ReadText(o, r));
}

}  // namespace
