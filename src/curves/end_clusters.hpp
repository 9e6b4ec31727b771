#pragma once
// Curves grouped by meeting ends, as the chain searches of the clean-ups need them. The walk is
// the plain one (take the first curve left, then for each member in order every curve left
// that touches it, in list order), made fast by a grid of the ends: a curve is only tested
// against the curves whose ends stand in the cells around the member's ends, and these are
// tested in list order, so the groups and their order are those of the plain walk.
#include <vector>

#include "platform/db/object_id.hpp"
#include "platform/ge/point3d.hpp"

struct CurveEnds {
    AcDbObjectId id;
    AcGePoint3d start;
    AcGePoint3d end;
};

// Two curves touch when one end of the one is SamePoint with one end of the other. Each group
// lists indices into `curves`, in the order they joined; every curve is in exactly one group.
std::vector<std::vector<size_t>> ClusterByTouchingEnds(const std::vector<CurveEnds>& curves,
                                                       double tolerance);
