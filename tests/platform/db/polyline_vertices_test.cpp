// The light-weight polyline keeps its points apart from the bulges and widths, which most
// polylines lack: whatever is done to its vertices, each reads back bit for bit (a -0.0 and a NaN
// too) as a plain list of whole vertices given the same changes does.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "platform/db/polyline.hpp"

namespace {

using Vertex = AcDbPolyline::Vertex;

bool SameBits(double a, double b) { return std::memcmp(&a, &b, sizeof(double)) == 0; }

// The vertices as the polyline reads them back, every way it gives them.
void ExpectSame(const AcDbPolyline& polyline, const std::vector<Vertex>& plain) {
    ASSERT_EQ(polyline.numVerts(), plain.size());
    bool bulges = false, widths = false;
    for (unsigned int i = 0; i < polyline.numVerts(); ++i) {
        SCOPED_TRACE(i);
        const Vertex& want = plain[i];
        const Vertex got = polyline.vertexAt(i);
        EXPECT_TRUE(SameBits(got.point.x, want.point.x) && SameBits(got.point.y, want.point.y));
        EXPECT_TRUE(SameBits(got.bulge, want.bulge));
        EXPECT_TRUE(SameBits(got.startWidth, want.startWidth) && SameBits(got.endWidth, want.endWidth));
        AcGePoint2d point;
        double bulge = 1, start = 1, end = 1;
        ASSERT_EQ(polyline.getPointAt(i, point), Acad::eOk);
        ASSERT_EQ(polyline.getBulgeAt(i, bulge), Acad::eOk);
        ASSERT_EQ(polyline.getWidthsAt(i, start, end), Acad::eOk);
        EXPECT_TRUE(SameBits(point.x, want.point.x) && SameBits(point.y, want.point.y));
        EXPECT_TRUE(SameBits(bulge, want.bulge) && SameBits(start, want.startWidth) && SameBits(end, want.endWidth));
        bulges = bulges || want.bulge != 0.0;
        widths = widths || want.startWidth != 0.0 || want.endWidth != 0.0;
    }
    EXPECT_EQ(polyline.hasBulges(), bulges);
    EXPECT_EQ(polyline.hasWidth(), widths);
}

// Values a file may give: mostly none, some -0.0, some NaN, some numbers.
double Value(std::mt19937_64& random) {
    switch (random() % 6) {
        case 0: return -0.0;
        case 1: return std::numeric_limits<double>::quiet_NaN();
        case 2: return static_cast<double>(random() % 200) / 8.0 - 12.0;
        default: return 0.0;
    }
}

Vertex RandomVertex(std::mt19937_64& random) {
    return {{Value(random), Value(random)}, Value(random), Value(random), Value(random)};
}

TEST(PolylineVertices, every_change_reads_back_as_a_plain_list_of_vertices) {
    for (unsigned seed = 1; seed <= 6; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937_64 random(seed);
        AcDbPolyline polyline;
        std::vector<Vertex> plain;
        for (int step = 0; step < 400; ++step) {
            const unsigned int n = polyline.numVerts();
            const unsigned int at = n == 0 ? 0 : static_cast<unsigned int>(random() % n);
            const Vertex v = RandomVertex(random);
            switch (random() % 8) {
                case 0:
                    polyline.appendVertex(v);
                    plain.push_back(v);
                    break;
                case 1: {
                    const unsigned int before = static_cast<unsigned int>(random() % (n + 1));
                    polyline.addVertexAt(before, v.point, v.bulge, v.startWidth, v.endWidth);
                    // A negative width means none given.
                    plain.insert(plain.begin() + before, {v.point, v.bulge, v.startWidth < 0 ? 0.0 : v.startWidth,
                                                          v.endWidth < 0 ? 0.0 : v.endWidth});
                    break;
                }
                case 2:
                    if (n == 0) break;
                    polyline.removeVertexAt(at);
                    plain.erase(plain.begin() + at);
                    break;
                case 3:
                    if (n == 0) break;
                    polyline.setVertexAt(at, v);
                    plain[at] = v;
                    break;
                case 4:
                    if (n == 0) break;
                    polyline.setBulgeAt(at, v.bulge);
                    plain[at].bulge = v.bulge;
                    break;
                case 5:
                    if (n == 0) break;
                    polyline.setWidthsAt(at, v.startWidth, v.endWidth);
                    plain[at].startWidth = v.startWidth;
                    plain[at].endWidth = v.endWidth;
                    break;
                case 6:
                    if (n == 0) break;
                    polyline.setPointAt(at, v.point);
                    plain[at].point = v.point;
                    break;
                default:
                    if (random() % 8 != 0) break;  // now and then, all widths at once
                    polyline.setConstantWidth(v.startWidth);
                    for (Vertex& p : plain) p.startWidth = p.endWidth = v.startWidth;
                    break;
            }
            ExpectSame(polyline, plain);
            if (HasFatalFailure()) return;
        }
    }
}

// Every access by index stops at the last vertex.
TEST(PolylineVertices, an_index_past_the_last_vertex_is_refused) {
    AcDbPolyline polyline;
    polyline.appendVertex({{1, 2}, 0.5, 1.0, 2.0});
    AcGePoint2d point;
    AcGePoint3d world;
    double bulge = 0, start = 0, end = 0;
    EXPECT_EQ(polyline.getPointAt(1, point), Acad::eInvalidIndex);
    EXPECT_EQ(polyline.getPointAt(1, world), Acad::eInvalidIndex);
    EXPECT_EQ(polyline.setPointAt(1, point), Acad::eInvalidIndex);
    EXPECT_EQ(polyline.getBulgeAt(1, bulge), Acad::eInvalidIndex);
    EXPECT_EQ(polyline.setBulgeAt(1, 0.5), Acad::eInvalidIndex);
    EXPECT_EQ(polyline.getWidthsAt(1, start, end), Acad::eInvalidIndex);
    EXPECT_EQ(polyline.setWidthsAt(1, 1.0, 1.0), Acad::eInvalidIndex);
    EXPECT_EQ(polyline.removeVertexAt(1), Acad::eInvalidIndex);
    EXPECT_EQ(polyline.addVertexAt(2, point), Acad::eInvalidIndex);
    ExpectSame(polyline, {{{1, 2}, 0.5, 1.0, 2.0}});
}

// Widths given as negative (none given) take 0, as addVertexAt has it.
TEST(PolylineVertices, negative_widths_added_are_none) {
    AcDbPolyline polyline;
    polyline.addVertexAt(0, {1, 2}, -0.0);
    polyline.addVertexAt(1, {3, 4}, 0.5, 2.0, -1.0);
    ExpectSame(polyline, {{{1, 2}, -0.0, 0.0, 0.0}, {{3, 4}, 0.5, 2.0, 0.0}});
}

TEST(PolylineVertices, constant_width_is_answered_over_all_vertices) {
    AcDbPolyline polyline;
    double width = 7;
    EXPECT_EQ(polyline.getConstantWidth(width), Acad::eInvalidIndex);
    polyline.appendVertex({{0, 0}});
    polyline.appendVertex({{1, 0}});
    ASSERT_EQ(polyline.getConstantWidth(width), Acad::eOk);
    EXPECT_EQ(width, 0.0);
    polyline.setWidthsAt(1, 0.0, 0.5);
    EXPECT_EQ(polyline.getConstantWidth(width), Acad::eNotApplicable);
    polyline.setConstantWidth(0.5);
    ASSERT_EQ(polyline.getConstantWidth(width), Acad::eOk);
    EXPECT_EQ(width, 0.5);
}

// A mirror turns every bulge, a zero one into -0.0, and scales the widths, as on whole vertices.
TEST(PolylineVertices, a_mirror_turns_plain_bulges_to_negative_zero) {
    AcDbPolyline polyline;
    polyline.appendVertex({{1, 2}});
    polyline.appendVertex({{3, 5}});
    AcGeMatrix3d mirror;
    mirror.entry[0][0] = -1.0;
    ASSERT_EQ(polyline.transformBy(mirror), Acad::eOk);
    ExpectSame(polyline, {{{-1, 2}, -0.0, 0.0, 0.0}, {{-3, 5}, -0.0, 0.0, 0.0}});
    AcDbPolyline wide;
    wide.appendVertex({{1, 2}, 0.25, 1.0, 0.0});
    wide.appendVertex({{3, 5}});
    ASSERT_EQ(wide.transformBy(AcGeMatrix3d::scaling(2.0)), Acad::eOk);
    ExpectSame(wide, {{{2, 4}, 0.25, 2.0, 0.0}, {{6, 10}, 0.0, 0.0, 0.0}});
}

}  // namespace
