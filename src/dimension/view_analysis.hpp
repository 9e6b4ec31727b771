#pragma once
// The views of a sheet: each view's rectangle on its layer, the circles inside it, the choice
// between ordinates per hole and outline dimensions, and which circles get x and y ordinates.
#include <string>
#include <vector>

#include "dimension/dimension_state.hpp"
#include "platform/db/database.hpp"

// Dimensions one view of the sheet in work, in the pipeline's drawing.
void DimensionView(const std::wstring& viewLayer);
// The lines of the view's rectangle (layer `viewLayer`, both ends in the frame box) go to
// `frameLines`; a circle on that layer strictly inside the frame box is the datum marker and is
// erased. 0, the iterator's status, or 16 when an entity does not open.
int CollectViewFrame(const std::wstring& viewLayer, AcDbObjectIdArray& frameLines, AcDbDatabase* db);
// `box` becomes the extents of the frame lines; every circle whose centre lies in it becomes a
// record, the plain ones before the red ones. A plain circle on a red one's centre turns red.
int CollectViewCircles(const AcDbObjectIdArray& frameLines, std::vector<circle>& circles,
                       AcDbExtents& box, AcDbDatabase* db);
// Drops every record whose centre lies within `tolerance` of one kept before it.
void MergeCircles(std::vector<circle>& circles, double tolerance);
// At most one x ordinate per side for each column of records (grouped on textPos.x).
void SelectXCircles(const std::vector<circle>& circles, std::vector<circle>& top,
                    std::vector<circle>& bottom, const AcDbExtents& box);
// At most one y ordinate per side for each row of records (grouped on textPos.y).
void SelectYCircles(const std::vector<circle>& circles, std::vector<circle>& left,
                    std::vector<circle>& right, const AcDbExtents& box);
// Bubble sorts, ascending on textPos; equal neighbours are exchanged too.
void SortCirclesByX(std::vector<circle>& circles);
void SortCirclesByY(std::vector<circle>& circles);
