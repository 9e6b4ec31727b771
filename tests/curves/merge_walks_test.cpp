// The indexed cluster walk of FunLineAndArcMerged against the plain one on random drawings:
// the same entities, in the same order, with the same geometry and looks.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "curves/box_grid.hpp"
#include "curves/touch_clusters.hpp"
#include "curves_fixture.hpp"
#include "platform/db/arc.hpp"
#include "platform/db/circle.hpp"
#include "random_drawings.hpp"

namespace {

std::string Number(double v) {
    char text[40];
    std::snprintf(text, sizeof text, "%a", v);
    return text;
}

std::string PointText(const AcGePoint3d& p) {
    return Number(p.x) + "," + Number(p.y) + "," + Number(p.z);
}

class MergeWalks : public CurvesTest {
protected:
    void TearDown() override {
        MergeClusterWalk = ClusterWalk::Indexed;
        CurvesTest::TearDown();
    }
    // Each entity of the model space as a text of its class, geometry and looks.
    std::vector<std::string> Snapshot() {
        std::vector<std::string> entities;
        for (const AcDbObjectId& id : ModelSpaceIds(Drawing())) {
            Inspect(id, [&](AcDbEntity* e) {
                std::string text = std::to_string(EntityTypeOf(e)) + " " + std::to_string(e->colorIndex()) +
                                   " " + std::string(e->layer().begin(), e->layer().end()) + " " +
                                   std::string(e->linetype().begin(), e->linetype().end()) + " " +
                                   Number(e->linetypeScale());
                if (auto* line = AcDbLine::cast(e))
                    text += " " + PointText(line->startPoint()) + " " + PointText(line->endPoint());
                if (auto* arc = AcDbArc::cast(e))
                    text += " " + PointText(arc->center()) + " " + Number(arc->radius()) + " " +
                            Number(arc->startAngle()) + " " + Number(arc->endAngle());
                if (auto* circle = AcDbCircle::cast(e))
                    text += " " + PointText(circle->center()) + " " + Number(circle->radius());
                entities.push_back(text);
            });
        }
        return entities;
    }
    void EraseAll() {
        for (const AcDbObjectId& id : ModelSpaceIds(Drawing())) {
            AcDbEntity* e = nullptr;
            acdbOpenAcDbEntity(e, id, AcDb::kForWrite);
            e->erase();
            e->close();
        }
    }
    std::vector<std::string> MergeRandomDrawing(ClusterWalk walk, unsigned seed, size_t& before) {
        EraseAll();
        random_drawings::AddLayersAndLinetypes(Drawing());
        std::mt19937 rng(seed);
        random_drawings::AddBrokenLines(Drawing(), rng, 400, 150.0);
        random_drawings::AddArcPieces(Drawing(), rng, 200, 150.0);
        before = ModelSpaceIds(Drawing()).length();
        MergeClusterWalk = walk;
        Cleanup().FunLineAndArcMerged();
        return Snapshot();
    }
};

TEST_F(MergeWalks, indexed_walk_merges_random_drawings_entity_by_entity_as_the_plain_walk) {
    size_t merged = 0;
    for (unsigned seed = 1; seed <= 12; ++seed) {
        size_t before = 0;
        std::vector<std::string> plain = MergeRandomDrawing(ClusterWalk::Plain, seed, before);
        std::vector<std::string> indexed = MergeRandomDrawing(ClusterWalk::Indexed, seed, before);
        ASSERT_EQ(plain.size(), indexed.size()) << "seed " << seed;
        for (size_t i = 0; i < plain.size(); ++i)
            ASSERT_EQ(plain[i], indexed[i]) << "seed " << seed << ", entity " << i;
        merged += before - plain.size();
    }
    EXPECT_GT(merged, 500u);  // the drawings do merge: the comparison is not of untouched pieces
}

TEST_F(MergeWalks, walks_build_the_same_clusters_of_arbitrary_records) {
    std::mt19937 rng(7);
    std::vector<PlaneBox> reach;
    std::vector<AcGePoint3d> centres;
    for (int i = 0; i < 500; ++i) {
        AcGePoint3d c(random_drawings::Uniform(rng, 0, 50), random_drawings::Uniform(rng, 0, 50), 0);
        double r = random_drawings::Pick(rng, 20) == 0 ? 30.0 : random_drawings::Uniform(rng, 0.1, 2.0);
        centres.push_back(c);
        reach.push_back({c.x - r, c.y - r, c.x + r, c.y + r});
    }
    auto joins = [&](int c, int w) {
        return reach[c].minX <= reach[w].maxX && reach[w].minX <= reach[c].maxX &&
               reach[c].minY <= reach[w].maxY && reach[w].minY <= reach[c].maxY &&
               centres[c].distanceTo(centres[w]) < 2.5;
    };
    auto plain = WalkClusters(500, joins, reach, ClusterWalk::Plain);
    auto indexed = WalkClusters(500, joins, reach, ClusterWalk::Indexed);
    EXPECT_EQ(plain, indexed);
    EXPECT_LT(plain.size(), 500u);
}

TEST_F(MergeWalks, record_reaching_beyond_the_grid_is_found_by_its_neighbours_far_from_the_origin) {
    // Unit boxes set the cell size to 1. Record 0 reaches from far below the grid's range to
    // x = 5, so it covers the cells of records 1 (at x = -50) and 2 (at x = 3).
    std::vector<PlaneBox> reach{{-1e30, 0, 5, 1}, {-50, 0, -49, 1}, {3, 0, 4, 1}};
    for (int i = 0; i < 20; ++i) reach.push_back({100.0 + 3 * i, 0, 101.0 + 3 * i, 1});
    auto joins = [&](int c, int w) {
        return reach[c].minX <= reach[w].maxX && reach[w].minX <= reach[c].maxX &&
               reach[c].minY <= reach[w].maxY && reach[w].minY <= reach[c].maxY;
    };
    auto plain = WalkClusters(static_cast<int>(reach.size()), joins, reach, ClusterWalk::Plain);
    auto indexed = WalkClusters(static_cast<int>(reach.size()), joins, reach, ClusterWalk::Indexed);
    ASSERT_EQ(plain.front(), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(plain, indexed);
}

TEST(BoxGrid, query_not_finite_gives_every_index_once_and_boxes_not_finite_are_everywhere) {
    std::vector<FlatBox> boxes{{0, 0, 1, 1}, {5, 5, 6, 6}, {NAN, 0, 1, 1}, {100, 100, 101, 101}};
    BoxGrid grid = BuildBoxGrid(boxes);
    EXPECT_EQ(BoxGridCandidates(grid, {NAN, 0, 0, 0}, 0.1), (std::vector<size_t>{0, 1, 2, 3}));
    std::vector<size_t> near = BoxGridCandidates(grid, {100, 100, 100.5, 100.5}, 0.1);
    EXPECT_NE(std::find(near.begin(), near.end(), 2u), near.end());
    EXPECT_NE(std::find(near.begin(), near.end(), 3u), near.end());
}

// Unit boxes 10 apart in rows and columns of six: a grid of six by six cells, one box a cell.
std::vector<FlatBox> BoxesInRows() {
    std::vector<FlatBox> boxes;
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 6; ++x) boxes.push_back({x * 10.0, y * 10.0, x * 10.0 + 1, y * 10.0 + 1});
    return boxes;
}

TEST(BoxGrid, query_of_a_box_finds_it_in_its_own_cell_and_passes_over_far_cells) {
    std::vector<FlatBox> boxes = BoxesInRows();
    BoxGrid grid = BuildBoxGrid(boxes);
    for (size_t i = 0; i < boxes.size(); ++i) {
        std::vector<size_t> found = BoxGridCandidates(grid, boxes[i], 0.0);
        EXPECT_NE(std::find(found.begin(), found.end(), i), found.end()) << "box " << i;
        EXPECT_LE(found.size(), 9u) << "box " << i;  // its cell and the ring round it, at most
    }
}

TEST(BoxGrid, reach_of_several_cells_widens_the_query_on_every_side) {
    // Cells of about 8.5 units; a reach of 25 spans about three of them.
    std::vector<FlatBox> boxes = BoxesInRows();
    BoxGrid grid = BuildBoxGrid(boxes);
    const double reach = 25.0;
    for (size_t q = 0; q < boxes.size(); ++q) {
        std::vector<size_t> found = BoxGridCandidates(grid, boxes[q], reach);
        for (size_t i = 0; i < boxes.size(); ++i) {
            double gapX = std::max(boxes[i].minX - boxes[q].maxX, boxes[q].minX - boxes[i].maxX);
            double gapY = std::max(boxes[i].minY - boxes[q].maxY, boxes[q].minY - boxes[i].maxY);
            if (gapX > reach || gapY > reach) continue;
            EXPECT_NE(std::find(found.begin(), found.end(), i), found.end()) << "box " << i << " from " << q;
        }
    }
}

TEST(BoxGrid, query_over_everything_gives_every_index_once_in_order) {
    std::vector<FlatBox> boxes = BoxesInRows();
    BoxGrid grid = BuildBoxGrid(boxes);
    std::vector<size_t> all(boxes.size());
    for (size_t i = 0; i < all.size(); ++i) all[i] = i;
    EXPECT_EQ(BoxGridCandidates(grid, {0, 0, 51, 51}, 0.0), all);
    EXPECT_EQ(BoxGridCandidates(grid, {-1000, -1000, 1000, 1000}, 5.0), all);
}

}  // namespace
