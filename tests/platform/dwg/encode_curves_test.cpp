#include "platform/dwg/encode_curves.hpp"

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
    c.color.index = 1;
    return c;
}

void ExpectPoint(const Point3& got, const Point3& want) {
    EXPECT_EQ(got.x, want.x);
    EXPECT_EQ(got.y, want.y);
    EXPECT_EQ(got.z, want.z);
}

TEST(DwgEncodeCurves, ellipse_round_trips) {
    EllipseRecord e;
    e.common = Common(0x60);
    e.center = {1, 2, 3};
    e.majorAxis = {10, 0, 0};
    e.ratio = 0.5;
    e.startParam = 0.25;
    e.endParam = 6;
    const auto bytes = EncodeEllipse(e, {});
    ObjectStreams o = Open(bytes, {});
    EXPECT_EQ(o.type, kEllipse);
    EllipseRecord back;
    ASSERT_TRUE(ReadEllipse(o, back));
    EXPECT_EQ(back.common.layer, 0x10u);
    ExpectPoint(back.center, e.center);
    ExpectPoint(back.majorAxis, e.majorAxis);
    ExpectPoint(back.normal, e.normal);
    EXPECT_EQ(back.ratio, 0.5);
    EXPECT_EQ(back.startParam, 0.25);
    EXPECT_EQ(back.endParam, 6);
    EXPECT_EQ(o.data.bitPosition(), o.dataEnd);
}

TEST(DwgEncodeCurves, closed_lwpolyline_with_bulges_and_widths_round_trips) {
    LwPolylineRecord p;
    p.common = Common(0x61);
    p.flags = 512;
    p.constantWidth = 0.5;
    p.elevation = 2;
    p.thickness = 1;
    p.normal = {0, 0, -1};
    p.points = {{0, 0}, {10, 0}, {10, 5.5}, {0, 5.5}};
    p.bulges = {0, 0.5, 0, -1};
    p.widths = {{1, 2}, {0, 0}, {3, 3}, {0, 1}};
    const auto bytes = EncodeLwPolyline(p, {});
    ObjectStreams o = Open(bytes, {});
    EXPECT_EQ(o.type, kLwPolyline);
    LwPolylineRecord back;
    ASSERT_TRUE(ReadLwPolyline(o, back));
    EXPECT_TRUE(back.closed());
    EXPECT_EQ(back.flags, 512 | 1 | 2 | 4 | 8 | 16 | 32);
    EXPECT_EQ(back.constantWidth, 0.5);
    EXPECT_EQ(back.elevation, 2);
    EXPECT_EQ(back.thickness, 1);
    ExpectPoint(back.normal, p.normal);
    ASSERT_EQ(back.points.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(back.points[i].x, p.points[i].x);
        EXPECT_EQ(back.points[i].y, p.points[i].y);
        EXPECT_EQ(back.widths[i].x, p.widths[i].x);
        EXPECT_EQ(back.widths[i].y, p.widths[i].y);
    }
    EXPECT_EQ(back.bulges, p.bulges);
    EXPECT_EQ(o.data.bitPosition(), o.dataEnd);
}

// Values at their defaults are not stored: their flags stay clear.
TEST(DwgEncodeCurves, plain_lwpolyline_stores_only_its_points) {
    LwPolylineRecord p;
    p.common = Common(0x62);
    p.flags = 0x3F;  // presence flags that the values do not back are cleared
    p.points = {{1, 1}, {2, 1}};
    const auto bytes = EncodeLwPolyline(p, {});
    ObjectStreams o = Open(bytes, {});
    LwPolylineRecord back;
    ASSERT_TRUE(ReadLwPolyline(o, back));
    EXPECT_EQ(back.flags, 0);
    ASSERT_EQ(back.points.size(), 2u);
    EXPECT_EQ(back.points[1].x, 2);
    EXPECT_TRUE(back.bulges.empty());
    EXPECT_TRUE(back.widths.empty());
    ExpectPoint(back.normal, {0, 0, 1});
}

TEST(DwgEncodeCurves, solid_and_trace_share_their_layout) {
    SolidRecord s;
    s.common = Common(0x63);
    s.thickness = 0.5;
    s.elevation = 3;
    s.corners[0] = {0, 0};
    s.corners[1] = {1, 0};
    s.corners[2] = {0, 1};
    s.corners[3] = {1, 1};
    for (std::int32_t type : {std::int32_t{kSolid}, std::int32_t{kTrace}}) {
        const auto bytes = EncodeSolid(s, type, {});
        ObjectStreams o = Open(bytes, {});
        EXPECT_EQ(o.type, type);
        SolidRecord back;
        ASSERT_TRUE(ReadSolid(o, back));
        EXPECT_EQ(back.thickness, 0.5);
        EXPECT_EQ(back.elevation, 3);
        EXPECT_EQ(back.corners[3].x, 1);
        EXPECT_EQ(back.corners[2].y, 1);
        EXPECT_EQ(back.corners[1].x, 1);
    }
}

}  // namespace
