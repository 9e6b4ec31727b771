// Multiline styles: decoded as their encoder stores them, and written as DXF records when the
// record says all they hold; a style whose record would not is kept whole.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdint>
#include <numbers>
#include <string>
#include <vector>

#include "platform/dwg/classes.hpp"
#include "platform/dwg/decode.hpp"
#include "platform/dwg/dxf_records.hpp"
#include "platform/dwg/encode_symbols.hpp"
#include "platform/dwg/entities.hpp"
#include "platform/dwg/object_stream.hpp"

using namespace dwg;

namespace {

constexpr std::uint64_t kDashed = 0x16;

MLineStyleRecord SampleStyle() {
    MLineStyleRecord s;
    s.common.handle = 0x18;
    s.common.owner = 0x17;
    s.common.reactors = {0x17};
    s.name = "WALL";
    s.description = "two lines";
    s.flags = 16;
    s.fill.index = 256;
    s.fill.rgb = 0xC0000000u;
    s.startAngle = std::numbers::pi / 2;
    s.endAngle = std::numbers::pi * 0.75;
    for (double offset : {0.5, -0.25}) {
        MLineStyleLine& line = s.lines.emplace_back();
        line.offset = offset;
        line.color.index = offset > 0 ? 1 : 256;
        line.color.rgb = offset > 0 ? 0xC3000001u : 0xC0000000u;
        line.linetypeIndex = kLinetypeIndexByLayer;
    }
    return s;
}

// The object decoded from the encoder's bytes; the caller keeps the bytes.
DecodedObject Decoded(const std::vector<std::uint8_t>& bytes, Version version) {
    ObjectStreams o;
    MapError error;
    EXPECT_TRUE(OpenObject(bytes, 0, version, 1252, o, error)) << error.reason;
    EXPECT_EQ(o.type, kMLineStyle);
    DecodedObject out;
    EXPECT_TRUE(DecodeObject(o, {}, out));
    return out;
}

std::string Record(const DecodedObject& decoded, const NameIndex& names = {}) {
    DxfText out;
    WriteObject(out, decoded, "MLINESTYLE", 0x18, names);
    return out.text();
}

TEST(DwgMLineStyle, style_decodes_to_what_its_encoder_stored) {
    for (Version version : {Version::kR2000, Version::kR2004}) {
        const MLineStyleRecord s = SampleStyle();
        const DecodedObject decoded = Decoded(EncodeMLineStyle(s, {version, 1252}), version);
        const auto* back = std::get_if<MLineStyleRecord>(&decoded);
        ASSERT_NE(back, nullptr);
        EXPECT_EQ(back->common.handle, 0x18u);
        EXPECT_EQ(back->common.owner, 0x17u);
        EXPECT_EQ(back->name, "WALL");
        EXPECT_EQ(back->description, "two lines");
        EXPECT_EQ(back->flags, 16);
        EXPECT_EQ(back->fill.index, 256);
        EXPECT_EQ(back->startAngle, std::numbers::pi / 2);
        EXPECT_EQ(back->endAngle, std::numbers::pi * 0.75);
        ASSERT_EQ(back->lines.size(), 2u);
        EXPECT_EQ(back->lines[0].offset, 0.5);
        EXPECT_EQ(back->lines[0].color.index, 1);
        EXPECT_EQ(back->lines[1].offset, -0.25);
        EXPECT_EQ(back->lines[1].color.index, 256);
        for (const MLineStyleLine& line : back->lines) EXPECT_EQ(line.linetypeIndex, kLinetypeIndexByLayer);
    }
}

TEST(DwgMLineStyle, style_is_written_as_the_dxf_record_of_its_values) {
    const MLineStyleRecord s = SampleStyle();
    EXPECT_EQ(Record(Decoded(EncodeMLineStyle(s, {Version::kR2004, 1252}), Version::kR2004)),
              "0\nMLINESTYLE\n5\n18\n102\n{ACAD_REACTORS\n330\n17\n102\n}\n330\n17\n100\nAcDbMlineStyle\n"
              "2\nWALL\n70\n16\n3\ntwo lines\n62\n256\n51\n90.0\n52\n135.0\n71\n2\n"
              "49\n0.5\n62\n1\n6\nBYLAYER\n49\n-0.25\n62\n256\n6\nBYLAYER\n");
}

// From 2018 a line refers to its linetype: named by the table, by layer and by block in capitals.
TEST(DwgMLineStyle, line_of_2018_names_its_linetype) {
    NameIndex names;
    names.linetypes = {{0x14, "ByLayer"}, {0x15, "ByBlock"}, {kDashed, "DASHED"}};
    DecodedObject decoded = MLineStyleRecord{};
    auto& s = std::get<MLineStyleRecord>(decoded);
    s.common.handle = 0x18;
    for (std::uint64_t linetype : {0x14u, 0x15u, 0x16u}) {
        MLineStyleLine& line = s.lines.emplace_back();
        line.color.index = 256;
        line.linetype = linetype;
    }
    ASSERT_TRUE(MLineStyleInDxfTerms(s));
    const std::string record = Record(decoded, names);
    EXPECT_NE(record.find("6\nBYLAYER\n49\n0.0\n62\n256\n6\nBYBLOCK\n49\n0.0\n62\n256\n6\nDASHED\n"), std::string::npos)
        << record;
}

struct KeptCase {
    const char* behaviour;
    void (*change)(MLineStyleRecord&);
};

class DwgMLineStyleKept : public ::testing::TestWithParam<KeptCase> {};

// What the DXF record would not say (another linetype index, a true colour, a colour's name)
// keeps the style whole, with its bytes.
TEST_P(DwgMLineStyleKept, style_the_record_cannot_say_is_kept_whole) {
    MLineStyleRecord s = SampleStyle();
    GetParam().change(s);
    ASSERT_FALSE(MLineStyleInDxfTerms(s));
    const auto bytes = EncodeMLineStyle(s, {Version::kR2004, 1252});
    const DecodedObject decoded = Decoded(bytes, Version::kR2004);
    const auto* kept = std::get_if<KeptObject>(&decoded);
    ASSERT_NE(kept, nullptr);
    EXPECT_FALSE(kept->entity);
    EXPECT_EQ(kept->common.handle, 0x18u);
    EXPECT_FALSE(kept->bytes.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Styles, DwgMLineStyleKept,
    ::testing::Values(KeptCase{"linetype by another index", [](MLineStyleRecord& s) { s.lines[1].linetypeIndex = 3; }},
                      KeptCase{"linetype by block", [](MLineStyleRecord& s) { s.lines[0].linetypeIndex = 0x7FFE; }},
                      KeptCase{"fill of a true colour", [](MLineStyleRecord& s) { s.fill.rgb = 0xC2102030u; }},
                      KeptCase{"line of a true colour",
                               [](MLineStyleRecord& s) { s.lines[0].color.rgb = 0xC2102030u; }},
                      KeptCase{"line colour with a name",
                               [](MLineStyleRecord& s) {
                                   s.lines[1].color.flags = 1;
                                   s.lines[1].color.name = "ocean";
                               }}),
    [](const auto& info) {
        std::string name = info.param.behaviour;
        for (char& c : name) c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
        return name;
    });

TEST(DwgMLineStyle, linetype_names_match_without_case) {
    EXPECT_TRUE(SameAsciiNoCase("ByLayer", "BYLAYER"));
    EXPECT_TRUE(SameAsciiNoCase("bylayer", "BYLAYER"));
    EXPECT_FALSE(SameAsciiNoCase("ByLayer", "ByBlock"));
    EXPECT_FALSE(SameAsciiNoCase("ByLayer", "ByLayer2"));
    EXPECT_FALSE(SameAsciiNoCase("", "ByLayer"));
}

}  // namespace
