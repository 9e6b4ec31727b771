#pragma once
#include <optional>

#include "platform/ge/bulge.hpp"

// Offsetting a bulge path in its plane. Each segment moves to the distance (straight segments
// shift, arcs keep their centre and change radius), neighbours are joined at the intersection
// of their extensions (a straight connector where they do not meet), segments that the offset
// turns backwards are dropped, and arcs stay arcs (bulges).
namespace tavrik::ge {

// The path at the distance to the right of its direction of travel (to the left when the
// distance is negative): outward for a counter-clockwise closed path and for a
// counter-clockwise arc. Empty when nothing valid remains: every segment collapses, or the
// result would come closer to the path than the distance (it would have to be cut apart).
std::optional<BulgePath> offsetPath(const BulgePath& path, double distance);

}  // namespace tavrik::ge
