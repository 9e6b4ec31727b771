#pragma once
// The zoom LISP functions: (wzoom p1 p2) to the window of two points, (zoomall) to the
// extents of the model space.
#include "platform/ge/point3d.hpp"

// Makes the window of the two points (any two opposite corners, in the user's coordinates) the
// current view, with the camera settings of the current viewport.
void ZoomToWindow(const AcGePoint3d& first, const AcGePoint3d& second);
int WZoom();
int ZoomAll();
