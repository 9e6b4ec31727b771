#include "curves/box_grid.hpp"

#include <algorithm>
#include <cmath>

namespace {

bool FiniteBox(const FlatBox& b) {
    return std::isfinite(b.minX) && std::isfinite(b.minY) && std::isfinite(b.maxX) && std::isfinite(b.maxY);
}

// The cell of a coordinate, clamped to the grid: values off the grid fall into its edge cells.
long CellNumber(double value, double origin, double cell, long count) {
    double n = std::floor((value - origin) / cell);
    if (!(n >= 0.0)) return 0;
    return n >= static_cast<double>(count - 1) ? count - 1 : static_cast<long>(n);
}

}  // namespace

BoxGrid BuildBoxGrid(const std::vector<FlatBox>& boxes) {
    BoxGrid grid;
    grid.count = boxes.size();
    FlatBox all{INFINITY, INFINITY, -INFINITY, -INFINITY};
    for (const FlatBox& b : boxes) {
        if (!FiniteBox(b)) continue;
        all = {std::min(all.minX, b.minX), std::min(all.minY, b.minY), std::max(all.maxX, b.maxX),
               std::max(all.maxY, b.maxY)};
    }
    if (all.minX > all.maxX) all = {0.0, 0.0, 0.0, 0.0};
    grid.columns = grid.rows = std::max(1L, static_cast<long>(std::sqrt(static_cast<double>(boxes.size()))));
    grid.originX = all.minX;
    grid.originY = all.minY;
    grid.cellX = all.maxX > all.minX ? (all.maxX - all.minX) / static_cast<double>(grid.columns) : 1.0;
    grid.cellY = all.maxY > all.minY ? (all.maxY - all.minY) / static_cast<double>(grid.rows) : 1.0;
    grid.cells.resize(static_cast<size_t>(grid.columns * grid.rows));
    for (size_t i = 0; i < boxes.size(); ++i) {
        const FlatBox& b = boxes[i];
        if (!FiniteBox(b)) {
            grid.everywhere.push_back(i);
            continue;
        }
        long x0 = CellNumber(b.minX, grid.originX, grid.cellX, grid.columns);
        long x1 = CellNumber(b.maxX, grid.originX, grid.cellX, grid.columns);
        long y0 = CellNumber(b.minY, grid.originY, grid.cellY, grid.rows);
        long y1 = CellNumber(b.maxY, grid.originY, grid.cellY, grid.rows);
        for (long y = y0; y <= y1; ++y)
            for (long x = x0; x <= x1; ++x) grid.cells[static_cast<size_t>(y * grid.columns + x)].push_back(i);
    }
    return grid;
}

std::vector<size_t> BoxGridCandidates(const BoxGrid& grid, const FlatBox& query, double reach) {
    std::vector<size_t> found;
    if (!FiniteBox(query) || !std::isfinite(reach)) {
        for (size_t i = 0; i < grid.count; ++i) found.push_back(i);
        return found;
    }
    found = grid.everywhere;
    long x0 = std::max(0L, CellNumber(query.minX - reach, grid.originX, grid.cellX, grid.columns) - 1);
    long x1 = std::min(grid.columns - 1, CellNumber(query.maxX + reach, grid.originX, grid.cellX, grid.columns) + 1);
    long y0 = std::max(0L, CellNumber(query.minY - reach, grid.originY, grid.cellY, grid.rows) - 1);
    long y1 = std::min(grid.rows - 1, CellNumber(query.maxY + reach, grid.originY, grid.cellY, grid.rows) + 1);
    for (long y = y0; y <= y1; ++y) {
        for (long x = x0; x <= x1; ++x) {
            const std::vector<size_t>& cell = grid.cells[static_cast<size_t>(y * grid.columns + x)];
            found.insert(found.end(), cell.begin(), cell.end());
        }
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}
