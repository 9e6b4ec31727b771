#pragma once
// Coordinate systems of the editor: 0 the world, 1 the user's (the world, on this host),
// 2 the display system of the current view (origin TARGET, Z along VIEWDIR, turned by
// VIEWTWIST), 3 the paper-space display system (the display system of the paper-space view,
// taken as the world).
#include "platform/ed/resbuf.hpp"

// Turns a point (a displacement when `displacement` is not 0) from one system to another,
// each given as an RTSHORT code. RTNORM, or RTERROR for a system the host does not have.
int acedTrans(const ads_point point, const resbuf* from, const resbuf* to, int displacement, ads_point result);
