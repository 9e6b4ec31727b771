#pragma once
// A grid over boxes in the plane, about one cell per box, for the walks that compare every item
// with every other: an item needs only be compared with the items filed in the cells that its
// own box (widened by the comparison's reach) covers. Candidates come back in list order, so a
// walk over them makes its choices in the order of the plain walk.
#include <cstddef>
#include <vector>

struct FlatBox {
    double minX, minY, maxX, maxY;
};

struct BoxGrid {
    double originX = 0.0, originY = 0.0, cellX = 1.0, cellY = 1.0;
    long columns = 1, rows = 1;
    std::vector<std::vector<size_t>> cells;
    // Boxes with a coordinate that is not finite: candidates of every query.
    std::vector<size_t> everywhere;
    size_t count = 0;
};

BoxGrid BuildBoxGrid(const std::vector<FlatBox>& boxes);
// The indices of the boxes that may come within `reach` of the query box, sorted and without
// repeats: those filed in the cells it covers widened by the reach and one cell more on each
// side, and those filed everywhere. A query box that is not finite gives every index.
std::vector<size_t> BoxGridCandidates(const BoxGrid& grid, const FlatBox& query, double reach);
