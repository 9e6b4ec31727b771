#pragma once
// The cluster walk of the merge operations: the first remaining record starts a cluster; each
// member, in the order the cluster grows, takes in every remaining record that it joins, in
// record order; a cluster ends when it has been walked to its end.
//
// The plain walk compares each member with every remaining record, which is quadratic. The
// indexed walk asks a grid for the records that can join at all (a superset) and then visits
// those in record order, so that it builds the same clusters in the same member order.
#include <functional>
#include <vector>

#include "platform/ge/point3d.hpp"

enum class ClusterWalk { Plain, Indexed };
// The walk the merge operations use; the indexed one unless a comparison asks for the other.
extern ClusterWalk MergeClusterWalk;

// An axis-aligned box in the plane, the bound of where a record can join another.
struct PlaneBox {
    double minX = 0.0, minY = 0.0, maxX = 0.0, maxY = 0.0;
};

// `joins(c, w)`: whether remaining record w joins member c. `reach[i]`: a box such that record
// w can join member c only if reach[c] and reach[w] overlap (boxes that touch overlap).
// The clusters hold record indices in member order.
std::vector<std::vector<int>> WalkClusters(int count, const std::function<bool(int, int)>& joins,
                                           const std::vector<PlaneBox>& reach, ClusterWalk walk);
