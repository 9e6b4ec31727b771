#pragma once
// The sheet and view in work, shared by the pipeline and the dimensioning. One module-level
// record; nothing resets it between drawings unless the dimensioning says so.
#include <cstdint>

#include "platform/db/color.hpp"
#include "platform/db/extents.hpp"
#include "platform/ge/point3d.hpp"

// A hole (or a corner, or the datum) that may get ordinates. `center` is what an ordinate
// measures; `textPos` is where its text stands, moved only by spreading.
struct circle {
    AcGePoint3d center;
    std::int32_t color = 256;  // 1 (red) selects the red tolerance class
    AcGePoint3d textPos;
};

// A synthetic record at a point: a corner of the view or the datum.
inline circle PointRecord(const AcGePoint3d& p) { return {p, 256, p}; }

struct DimensionState {
    int viewKind = 0;           // 0 main view, 1 left view, 2 top view
    AcDbExtents frameBox;       // the sheet frame's box
    double sheetScale = 0.0;    // frame width / 297.0
    double textPitch = 0.0;     // DIMTXT x DIMSCALE (x sheetScale per sheet)
    double ordinateOffset = 0.0;
    double offset = 0.0;        // OFFSET: margin taken off a view's rectangle
    double dimTxt = 0.0;        // DIMTXT as last read
    double dimScale = 0.0;      // DIMSCALE as last read
    bool haveDatum = false;
    AcGePoint3d datumPoint;
    bool ordinateMode = false;
    double x0 = 0.0, y0 = 0.0, x1 = 0.0, y1 = 0.0, z = 0.0;  // the view's box
    double midX = 0.0, midY = 0.0;
    double boxWidth = 0.0, boxHeight = 0.0;
    // The corners of the view's box and the datum, as records that seed the ordinates.
    circle lowerLeft, lowerRight, upperLeft, upperRight, datum;
    // The one colour object through which the dimensions get their colours.
    AcCmColor color;
};
