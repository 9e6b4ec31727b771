#include "curves/touch_clusters.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <unordered_map>

ClusterWalk MergeClusterWalk = ClusterWalk::Indexed;

namespace {

// A record whose box covers more cells than this is kept in a list that every query sees.
constexpr double kMaxCellsPerRecord = 64;

// A uniform grid over the reach boxes; the cell edge is the median box size, so that most
// records stand in one to four cells.
class ReachGrid {
public:
    explicit ReachGrid(const std::vector<PlaneBox>& reach) : reach_(reach) {
        cell_ = MedianExtent();
        for (int i = 0; i < static_cast<int>(reach.size()); ++i) Insert(i);
    }

    // Calls visit(w) for every record whose box may overlap that of record c, some twice.
    template <typename Visit>
    void ForCandidates(int c, Visit visit) const {
        for (int w : wide_) visit(w);
        CellRange range = RangeOf(reach_[c]);
        if (!Defined(reach_[c]) || range.Count() > kMaxCellsPerRecord * 16) {
            for (int w = 0; w < static_cast<int>(reach_.size()); ++w) visit(w);
            return;
        }
        for (std::int64_t x = range.x0; x <= range.x1; ++x)
            for (std::int64_t y = range.y0; y <= range.y1; ++y) {
                auto found = cells_.find(Key(x, y));
                if (found == cells_.end()) continue;
                for (int w : found->second) visit(w);
            }
    }

private:
    struct CellRange {
        std::int64_t x0, y0, x1, y1;
        double Count() const {
            return (static_cast<double>(x1 - x0) + 1.0) * (static_cast<double>(y1 - y0) + 1.0);
        }
    };

    double MedianExtent() const {
        std::vector<double> sizes;
        for (const PlaneBox& b : reach_) sizes.push_back(std::max(b.maxX - b.minX, b.maxY - b.minY));
        if (sizes.empty()) return 1.0;
        std::nth_element(sizes.begin(), sizes.begin() + sizes.size() / 2, sizes.end());
        double median = sizes[sizes.size() / 2];
        return std::isfinite(median) && median > 1e-6 ? median : 1e-6;
    }

    // Cells are clamped to a range that stays far from the integer limits; records beyond it
    // (or with undefined coordinates) share the edge cells or the wide list.
    std::int64_t CellOf(double v) const {
        double c = std::floor(v / cell_);
        if (!(c > -1e15)) return -1000000000000000;
        if (c > 1e15) return 1000000000000000;
        return static_cast<std::int64_t>(c);
    }
    CellRange RangeOf(const PlaneBox& b) const {
        return {CellOf(b.minX), CellOf(b.minY), CellOf(b.maxX), CellOf(b.maxY)};
    }
    static std::uint64_t Key(std::int64_t x, std::int64_t y) {
        return static_cast<std::uint64_t>(x) * 0x9E3779B97F4A7C15ull ^ static_cast<std::uint64_t>(y);
    }

    static bool Defined(const PlaneBox& b) {
        return std::isfinite(b.minX) && std::isfinite(b.minY) && std::isfinite(b.maxX) &&
               std::isfinite(b.maxY);
    }

    void Insert(int i) {
        const PlaneBox& b = reach_[i];
        CellRange range = RangeOf(b);
        if (!Defined(b) || range.Count() > kMaxCellsPerRecord || range.Count() <= 0) {
            wide_.push_back(i);
            return;
        }
        for (std::int64_t x = range.x0; x <= range.x1; ++x)
            for (std::int64_t y = range.y0; y <= range.y1; ++y) cells_[Key(x, y)].push_back(i);
    }

    const std::vector<PlaneBox>& reach_;
    double cell_ = 1.0;
    std::unordered_map<std::uint64_t, std::vector<int>> cells_;
    std::vector<int> wide_;
};

}  // namespace

std::vector<std::vector<int>> WalkClusters(int count, const std::function<bool(int, int)>& joins,
                                           const std::vector<PlaneBox>& reach, ClusterWalk walk) {
    std::vector<std::vector<int>> clusters;
    std::vector<bool> taken(static_cast<size_t>(count), false);
    std::unique_ptr<ReachGrid> grid;
    if (walk == ClusterWalk::Indexed) grid = std::make_unique<ReachGrid>(reach);
    std::vector<int> joined;
    for (int first = 0; first < count; ++first) {
        if (taken[first]) continue;
        std::vector<int> cluster{first};
        taken[first] = true;
        for (size_t k = 0; k < cluster.size(); ++k) {
            int c = cluster[k];
            joined.clear();
            auto consider = [&](int w) {
                if (taken[w] || !joins(c, w)) return;
                taken[w] = true;
                joined.push_back(w);
            };
            if (grid) {
                grid->ForCandidates(c, consider);
                std::sort(joined.begin(), joined.end());
            } else {
                for (int w = 0; w < count; ++w) consider(w);
            }
            cluster.insert(cluster.end(), joined.begin(), joined.end());
        }
        clusters.push_back(std::move(cluster));
    }
    return clusters;
}
