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

namespace {

struct LwFlagCase {
    const char* name;
    void (*set)(LwPolylineRecord&);
    std::int16_t flags;
};
class DwgEncodeLwFlags : public testing::TestWithParam<LwFlagCase> {};

// Each value away from its default sets its own flag and no other.
TEST_P(DwgEncodeLwFlags, one_value_sets_only_its_flag) {
    LwPolylineRecord p;
    p.common = Common(0x64);
    p.points = {{0, 0}, {1, 0}};
    GetParam().set(p);
    const auto bytes = EncodeLwPolyline(p, {});
    ObjectStreams o = Open(bytes, {});
    LwPolylineRecord back;
    ASSERT_TRUE(ReadLwPolyline(o, back));
    EXPECT_EQ(back.flags, GetParam().flags);
    EXPECT_EQ(back.constantWidth, p.constantWidth);
    EXPECT_EQ(back.elevation, p.elevation);
    EXPECT_EQ(back.thickness, p.thickness);
    EXPECT_EQ(back.normal.z, p.normal.z);
    EXPECT_EQ(back.bulges, p.bulges);
    EXPECT_EQ(back.widths.size(), p.widths.size());
    EXPECT_EQ(o.data.bitPosition(), o.dataEnd);
}
INSTANTIATE_TEST_SUITE_P(
    Values, DwgEncodeLwFlags,
    testing::Values(
        LwFlagCase{"normal", [](LwPolylineRecord& p) { p.normal = {0, 0, -1}; }, 1},
        LwFlagCase{"thickness", [](LwPolylineRecord& p) { p.thickness = 2; }, 2},
        LwFlagCase{"width", [](LwPolylineRecord& p) { p.constantWidth = 0.5; }, 4},
        LwFlagCase{"elevation", [](LwPolylineRecord& p) { p.elevation = 3; }, 8},
        LwFlagCase{"bulges", [](LwPolylineRecord& p) { p.bulges = {0.5, 0}; }, 16},
        LwFlagCase{"widths", [](LwPolylineRecord& p) { p.widths = {{1, 1}, {0, 0}}; }, 32},
        LwFlagCase{"closed", [](LwPolylineRecord& p) { p.flags = 512; }, 512}),
    [](const testing::TestParamInfo<LwFlagCase>& info) { return std::string(info.param.name); });

}  // namespace

namespace {

class DwgEncodePolyline : public testing::TestWithParam<Version> {};

TEST_P(DwgEncodePolyline, polyline_2d_round_trips_with_its_vertices) {
    const EncodeOptions options{GetParam(), 1252};
    PolylineRecord p;
    p.common = Common(0x70);
    p.kind = kPolyline2d;
    p.flags = 1;
    p.curveType = 5;
    p.startWidth = 0.5;
    p.endWidth = 0.25;
    p.thickness = 2;
    p.elevation = 3;
    p.vertices.first = 0x71;
    p.vertices.last = 0x73;
    p.vertices.handles = {0x71, 0x72, 0x73};
    p.vertices.seqend = 0x74;
    const auto bytes = EncodePolyline(p, options);
    ObjectStreams o = Open(bytes, options);
    EXPECT_EQ(o.type, kPolyline2d);
    PolylineRecord back;
    ASSERT_TRUE(ReadPolyline(o, back));
    EXPECT_EQ(back.flags, 1);
    EXPECT_EQ(back.curveType, 5);
    EXPECT_EQ(back.startWidth, 0.5);
    EXPECT_EQ(back.endWidth, 0.25);
    EXPECT_EQ(back.thickness, 2);
    EXPECT_EQ(back.elevation, 3);
    EXPECT_EQ(back.vertices.seqend, 0x74u);
    if (GetParam() >= Version::kR2004) {
        EXPECT_EQ(back.vertices.handles, p.vertices.handles);
    } else {
        EXPECT_EQ(back.vertices.first, 0x71u);
        EXPECT_EQ(back.vertices.last, 0x73u);
    }
}
INSTANTIATE_TEST_SUITE_P(Versions, DwgEncodePolyline,
                         testing::Values(Version::kR2000, Version::kR2004));

TEST(DwgEncodeCurves, polyline_3d_and_polyface_keep_their_own_values) {
    PolylineRecord p3;
    p3.common = Common(0x75);
    p3.kind = kPolyline3d;
    p3.flags = 8;
    p3.curveType = 6;
    const auto bytes3 = EncodePolyline(p3, {});
    ObjectStreams o3 = Open(bytes3, {});
    PolylineRecord back3;
    ASSERT_TRUE(ReadPolyline(o3, back3));
    EXPECT_EQ(back3.kind, kPolyline3d);
    EXPECT_EQ(back3.flags, 8);
    EXPECT_EQ(back3.curveType, 6);

    PolylineRecord mesh;
    mesh.common = Common(0x76);
    mesh.kind = kPolylinePface;
    mesh.vertexCount = 8;
    mesh.faceCount = 6;
    const auto bytesMesh = EncodePolyline(mesh, {});
    ObjectStreams om = Open(bytesMesh, {});
    PolylineRecord backMesh;
    ASSERT_TRUE(ReadPolyline(om, backMesh));
    EXPECT_EQ(backMesh.vertexCount, 8);
    EXPECT_EQ(backMesh.faceCount, 6);
}

struct WidthCase {
    double start, end;
    bool oneWidth;  // equal positive widths are stored once, negated
};
class DwgEncodeVertexWidths : public testing::TestWithParam<WidthCase> {};

TEST_P(DwgEncodeVertexWidths, vertex_2d_widths_round_trip) {
    VertexRecord v;
    v.common = Common(0x77);
    v.kind = kVertex2d;
    v.flags = 32;
    v.position = {1, 2, 0};
    v.startWidth = GetParam().start;
    v.endWidth = GetParam().end;
    v.bulge = 0.5;
    v.tangent = 1.5;
    const auto bytes = EncodeVertex(v, {});
    ObjectStreams o = Open(bytes, {});
    VertexRecord back;
    ASSERT_TRUE(ReadVertex(o, back));
    EXPECT_EQ(back.flags, 32);
    EXPECT_EQ(back.position.y, 2);
    EXPECT_EQ(back.startWidth, v.startWidth);
    EXPECT_EQ(back.endWidth, v.endWidth);
    EXPECT_EQ(back.bulge, 0.5);
    EXPECT_EQ(back.tangent, 1.5);
    ObjectStreams raw = Open(bytes, {});
    EntityCommon common;
    ReadEntityCommon(raw, common);
    raw.data.RC();
    raw.data.BD3();
    EXPECT_EQ(raw.data.BD() < 0, GetParam().oneWidth);
}
INSTANTIATE_TEST_SUITE_P(Widths, DwgEncodeVertexWidths,
                         testing::Values(WidthCase{0, 0, false}, WidthCase{2, 2, true},
                                         WidthCase{2, 3, false}, WidthCase{0, 1, false}));

TEST(DwgEncodeCurves, polyface_face_stores_its_four_indexes) {
    VertexRecord face;
    face.common = Common(0x78);
    face.kind = kVertexPfaceFace;
    face.faceIndex[0] = 1;
    face.faceIndex[1] = -2;
    face.faceIndex[2] = 3;
    face.faceIndex[3] = 4;
    const auto bytes = EncodeVertex(face, {});
    ObjectStreams o = Open(bytes, {});
    VertexRecord back;
    ASSERT_TRUE(ReadVertex(o, back));
    EXPECT_EQ(back.faceIndex[1], -2);
    EXPECT_EQ(back.faceIndex[3], 4);
    EXPECT_EQ(o.data.bitPosition(), o.dataEnd);

    VertexRecord vertex3d;
    vertex3d.common = Common(0x79);
    vertex3d.kind = kVertex3d;
    vertex3d.position = {4, 5, 6};
    const auto bytes3 = EncodeVertex(vertex3d, {});
    ObjectStreams o3 = Open(bytes3, {});
    VertexRecord back3;
    ASSERT_TRUE(ReadVertex(o3, back3));
    EXPECT_EQ(back3.position.z, 6);
    EXPECT_EQ(o3.data.bitPosition(), o3.dataEnd);
}

}  // namespace
