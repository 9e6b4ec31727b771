// Records as 2004 to 2018 lay them out: table records without the external reference index
// from 2007, multi-line attributes and proxy entities kept whole, and the DXF text the decoded
// records are handed on in.
#include <gtest/gtest.h>

#include "platform/dwg/classes.hpp"
#include "platform/dwg/decode.hpp"
#include "platform/dwg/dxf_records.hpp"
#include "platform/dwg/entities.hpp"
#include "platform/dwg/layout.hpp"
#include "platform/dwg/object_builder.hpp"
#include "platform/dwg/tables.hpp"

using dwg::Version;
using dwg_test::ObjectParts;

namespace {

bool Open(const std::vector<std::uint8_t>& bytes, Version version, dwg::ObjectStreams& o) {
    dwg::MapError error;
    return dwg::OpenObject(bytes, 0, version, 1252, o, error);
}

void WriteName(ObjectParts& p, const std::string& name) {
    if (p.version >= Version::kR2007) {
        p.strings.TU(std::u16string(name.begin(), name.end()));
    } else {
        p.values.TV(name);
    }
}

ObjectParts LayerParts(Version version) {
    ObjectParts p;
    p.version = version;
    p.type = dwg::kLayer;
    p.handle = 0x10;
    auto& w = p.values;
    w.BS(0);  // no extended data
    w.BL(0);  // reactors
    w.B(true);  // no extension dictionary
    if (version >= Version::kR2013) w.B(false);
    WriteName(p, "Walls");
    w.B(true);  // referenced
    if (version < Version::kR2007) w.BS(0);  // external reference index
    w.B(false);  // not from an external reference
    w.BS(1 | 4 | 16);  // frozen, frozen in new viewports, plotted
    w.BS(0);
    w.BL(static_cast<std::int32_t>(0xC3000005));
    w.RC(0);
    auto& h = p.handles;
    h.H(4, 2);     // owner: the layer table
    h.H(5, 0);     // external reference block
    h.H(5, 0xF);   // plot style
    if (version >= Version::kR2007) h.H(5, 0x20);  // material
    h.H(5, 0x14);  // linetype
    if (version >= Version::kR2013) h.H(5, 0);  // visual style
    return p;
}

class DwgLayerRecord : public ::testing::TestWithParam<Version> {};

TEST_P(DwgLayerRecord, external_reference_index_only_before_2007) {
    const auto bytes = dwg_test::BuildObject(LayerParts(GetParam()));
    dwg::ObjectStreams o;
    ASSERT_TRUE(Open(bytes, GetParam(), o));
    dwg::LayerRecord r;
    ASSERT_TRUE(dwg::ReadLayer(o, r));
    EXPECT_EQ(r.entry.name, "Walls");
    EXPECT_TRUE(r.entry.referenced);
    EXPECT_FALSE(r.entry.xrefDependent);
    EXPECT_EQ(r.flags, 1 | 4);
    EXPECT_TRUE(r.plotted);
    EXPECT_EQ(r.color.rgb, 0xC3000005u);
    EXPECT_EQ(r.entry.common.owner, 2u);
    EXPECT_EQ(r.plotStyle, 0xFu);
    EXPECT_EQ(r.linetype, 0x14u);
    EXPECT_EQ(o.data.bitPosition(), o.data.bitEnd());
}

INSTANTIATE_TEST_SUITE_P(Versions, DwgLayerRecord,
                         ::testing::Values(Version::kR2004, Version::kR2007, Version::kR2010,
                                           Version::kR2013, Version::kR2018));

// An attribute of 2018 with an MTEXT inside (kind 2) is kept whole, as an entity.
TEST(DwgAttribute2018, multi_line_attribute_is_kept_whole) {
    ObjectParts p;
    p.version = Version::kR2018;
    p.type = dwg::kAttrib;
    p.handle = 0x2A;
    dwg_test::WriteEntityCommon(p, 0x10);
    auto& w = p.values;
    w.RC(0xFF);  // only the required text values
    w.RD(5.0);
    w.RD(6.0);
    w.B(true);
    w.B(true);
    w.RD(2.5);
    p.strings.TU(u"value");
    w.RC(0);  // attribute version
    w.RC(2);  // multi-line
    w.BD3(1, 2, 3);  // the embedded MTEXT, not decoded
    const auto bytes = dwg_test::BuildObject(p);
    dwg::ObjectStreams o;
    ASSERT_TRUE(Open(bytes, Version::kR2018, o));
    dwg::DecodedObject decoded;
    ASSERT_TRUE(dwg::DecodeObject(o, {}, decoded));
    const auto* kept = std::get_if<dwg::KeptObject>(&decoded);
    ASSERT_NE(kept, nullptr);
    EXPECT_TRUE(kept->entity);
    EXPECT_EQ(kept->common.layer, 0x10u);
    EXPECT_EQ(kept->bytes.size(), o.size);
}

TEST(DwgProxyEntity, proxy_entity_is_kept_as_an_entity_with_its_name) {
    ObjectParts p;
    p.version = Version::kR2018;
    p.type = dwg::kProxyEntity;
    p.handle = 0x2B;
    dwg_test::WriteEntityCommon(p, 0x11);
    const auto bytes = dwg_test::BuildObject(p);
    dwg::ObjectStreams o;
    ASSERT_TRUE(Open(bytes, Version::kR2018, o));
    dwg::DecodedObject decoded;
    ASSERT_TRUE(dwg::DecodeObject(o, {}, decoded));
    const auto* kept = std::get_if<dwg::KeptObject>(&decoded);
    ASSERT_NE(kept, nullptr);
    EXPECT_TRUE(kept->entity);
    EXPECT_EQ(kept->common.layer, 0x11u);
    EXPECT_EQ(dwg::TypeName(dwg::kProxyEntity, {}), "ACAD_PROXY_ENTITY");
    EXPECT_EQ(dwg::TypeName(499, {}), "ACAD_PROXY_OBJECT");
}

TEST(DwgDxfText, line_break_in_a_value_is_written_as_caret_j) {
    dwg::DxfText out;
    out.tag(1, "first\nsecond\ttab");
    EXPECT_EQ(out.text(), "1\nfirst^Jsecond\ttab\n");
}

TEST(DwgDxfText, xrecord_groups_past_the_last_dxf_code_are_left_out) {
    dwg::XRecordRecord x;
    x.common.owner = 0x7;
    x.groups = {{1, "kept"}, {1071, "12"}, {1072, "dropped"}, {5005, "dropped"}};
    dwg::DxfText out;
    dwg::WriteObject(out, x, "XRECORD", 0x8, {});
    EXPECT_NE(out.text().find("\n1\nkept\n"), std::string::npos);
    EXPECT_NE(out.text().find("\n1071\n12\n"), std::string::npos);
    EXPECT_EQ(out.text().find("dropped"), std::string::npos);
}

}  // namespace

namespace {

// The DXF gives a layout's scale factor (147) after the scale type and, from 2004, the shade
// plot values after it, zeros included.
TEST(DwgDxfText, layout_shade_plot_values_follow_the_scale_factor_from_2004) {
    for (const bool shadeStored : {false, true}) {
        dwg::LayoutRecord layout;
        layout.plot.shadeStored = shadeStored;
        layout.plot.shadeResolution = 2;
        layout.plot.scaleFactor = 0.5;
        dwg::DxfText out;
        dwg::WriteObject(out, layout, "LAYOUT", 0x22, {});
        const std::string& t = out.text();
        const auto scale = t.find("\n147\n0.5\n");
        ASSERT_NE(scale, std::string::npos);
        EXPECT_LT(t.find("\n75\n"), scale);
        if (shadeStored) {
            EXPECT_NE(t.find("\n147\n0.5\n76\n0\n77\n2\n78\n0\n148\n"), std::string::npos) << t;
        } else {
            EXPECT_EQ(t.find("\n77\n"), std::string::npos);
        }
    }
}

}  // namespace
