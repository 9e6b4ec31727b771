#pragma once
// The sheets of an exported drawing: each is marked by a circle on one of the marker layers.
#include <string>
#include <vector>

#include "config/box_setting.hpp"
#include "platform/db/database.hpp"
#include "platform/db/extents.hpp"
#include "platform/ge/point3d.hpp"

// Appends to `markers` the circles of the model space whose layer is one of `layerNames`
// (without regard to case). 0 when at least one was found, 16 when none was or a walk failed.
int FindSheetMarkers(const std::vector<std::wstring>& layerNames, AcDbDatabase* db,
                     AcDbObjectIdArray& markers);
// Appends the exporter's construction entities: those on the frame, marker and view layers.
int CollectSheetEntities(AcDbObjectIdArray& ids, AcDbDatabase* db);
// The box of the frame lines (BIGFRAM) that start or end at the marker's centre, within 1e-05.
// The marker stands on a corner of the sheet's rectangle, so the two lines through it give the
// frame's size. No such line leaves the box empty.
int MeasureSheetFrame(const AcGePoint3d& marker, AcDbExtents& frameBox, AcDbDatabase* db);
// The frame file for a drawing: its name (the path after the last backslash, up to the first
// point; empty without a point) against the patterns in order. Empty when none matches.
std::wstring MatchFrameName(const std::vector<dwgmatch>& matches, const std::wstring& drawingName);
// Appends to the attribute rows every KEY:VALUE text (or multi-line text) inside the sheet's
// frame box, with the text as its source. A key must have at least one character.
int CollectAttributeTexts(AcDbDatabase* db);
// Puts the sheet frame drawing `folder` + frameName on the sheet: scaled to the frame box's
// width, base point on `position`, exploded into loose entities whose nested references get
// the attribute values. The ids of the entities go to `ids`.
int InsertSheetFrame(const std::wstring& folder, const AcGePoint3d& position, AcDbObjectIdArray& ids);
