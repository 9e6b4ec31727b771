#include "curves/end_clusters.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <unordered_map>

#include "curves/geometry.hpp"

namespace {

bool EndsTouch(const CurveEnds& a, const CurveEnds& b, double tolerance) {
    return SamePoint(a.start, b.start, tolerance) || SamePoint(a.start, b.end, tolerance) ||
           SamePoint(a.end, b.start, tolerance) || SamePoint(a.end, b.end, tolerance);
}

// Cells twice the tolerance wide: two points within the tolerance on an axis lie in the same
// or a neighbouring cell, with room to spare for the rounding of the division.
struct EndGrid {
    double cell = 1.0;
    // Curves whose ends stand too far out for a cell number: tested against every member.
    std::vector<size_t> everywhere;
    std::unordered_map<std::uint64_t, std::vector<size_t>> cells;
};

constexpr double kLargestCellNumber = 1e15;

bool CellOf(const EndGrid& grid, const AcGePoint3d& p, std::int64_t& ix, std::int64_t& iy) {
    double x = std::floor(p.x / grid.cell), y = std::floor(p.y / grid.cell);
    if (!(std::fabs(x) < kLargestCellNumber) || !(std::fabs(y) < kLargestCellNumber)) return false;
    ix = static_cast<std::int64_t>(x);
    iy = static_cast<std::int64_t>(y);
    return true;
}

std::uint64_t CellKey(std::int64_t ix, std::int64_t iy) {
    return static_cast<std::uint64_t>(ix) * 0x9E3779B97F4A7C15ull ^ static_cast<std::uint64_t>(iy);
}

// A point with a coordinate that is not finite is SamePoint with nothing, so it is not filed.
bool Finite(const AcGePoint3d& p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

void FileEnd(EndGrid& grid, const AcGePoint3d& p, size_t index) {
    if (!Finite(p)) return;
    std::int64_t ix = 0, iy = 0;
    if (!CellOf(grid, p, ix, iy)) {
        if (grid.everywhere.empty() || grid.everywhere.back() != index) grid.everywhere.push_back(index);
        return;
    }
    std::vector<size_t>& bucket = grid.cells[CellKey(ix, iy)];
    if (bucket.empty() || bucket.back() != index) bucket.push_back(index);
}

EndGrid BuildGrid(const std::vector<CurveEnds>& curves, double tolerance) {
    EndGrid grid;
    grid.cell = 2.0 * tolerance;
    for (size_t i = 0; i < curves.size(); ++i) {
        FileEnd(grid, curves[i].start, i);
        FileEnd(grid, curves[i].end, i);
    }
    return grid;
}

void GatherAround(const EndGrid& grid, const AcGePoint3d& p, std::vector<size_t>& found) {
    std::int64_t ix = 0, iy = 0;
    if (!Finite(p) || !CellOf(grid, p, ix, iy)) return;
    for (std::int64_t dx = -1; dx <= 1; ++dx) {
        for (std::int64_t dy = -1; dy <= 1; ++dy) {
            auto it = grid.cells.find(CellKey(ix + dx, iy + dy));
            if (it != grid.cells.end()) found.insert(found.end(), it->second.begin(), it->second.end());
        }
    }
}

// The curves not yet grouped that may touch `member`, in list order.
std::vector<size_t> Candidates(const EndGrid& grid, const CurveEnds& member, const std::vector<bool>& grouped) {
    std::vector<size_t> found = grid.everywhere;
    GatherAround(grid, member.start, found);
    GatherAround(grid, member.end, found);
    std::erase_if(found, [&](size_t i) { return grouped[i]; });
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

// An endless tolerance lets every finite point meet every other: all curves are candidates.
std::vector<size_t> AllNotGrouped(const std::vector<bool>& grouped) {
    std::vector<size_t> found;
    for (size_t i = 0; i < grouped.size(); ++i)
        if (!grouped[i]) found.push_back(i);
    return found;
}

}  // namespace

std::vector<std::vector<size_t>> ClusterByTouchingEnds(const std::vector<CurveEnds>& curves,
                                                       double tolerance) {
    std::vector<std::vector<size_t>> groups;
    std::vector<bool> grouped(curves.size(), false);
    // A tolerance that is not above 0 (or not a number) lets no two points meet.
    bool canMeet = tolerance > 0.0;
    bool endless = std::isinf(tolerance);
    EndGrid grid = canMeet && !endless ? BuildGrid(curves, tolerance) : EndGrid{};
    for (size_t first = 0; first < curves.size(); ++first) {
        if (grouped[first]) continue;
        std::vector<size_t> group{first};
        grouped[first] = true;
        for (size_t k = 0; canMeet && k < group.size(); ++k) {
            const CurveEnds& member = curves[group[k]];
            for (size_t w : endless ? AllNotGrouped(grouped) : Candidates(grid, member, grouped)) {
                if (grouped[w] || !EndsTouch(member, curves[w], tolerance)) continue;
                grouped[w] = true;
                group.push_back(w);
            }
        }
        groups.push_back(std::move(group));
    }
    return groups;
}
