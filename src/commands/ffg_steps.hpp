#pragma once
// The steps of FFG on the drawing: the picked text, the sheet that holds it, the same texts on
// that sheet, their colour, the count text beside the picked one, and the change of a text.
#include <string>

#include "platform/db/object_id.hpp"
#include "platform/ed/resbuf.hpp"
#include "platform/ge/point3d.hpp"

struct PickedText {
    AcDbObjectId id;
    std::wstring search;   // the text trimmed, or its part before ":"
    long colon = -1;       // where ":" stands in the trimmed text (-1: nowhere)
    AcGePoint3d low, high; // the text's box in the user's coordinates
};

// Reads the text behind the entity name; false when it is no text or does not open.
bool ReadPickedText(const ads_name text, PickedText& picked);
// The first block reference with attributes whose box (in the user's coordinates, bounds
// included) holds `point` in x and y; its corners in the world go to low and high.
bool FindSheet(const AcGePoint3d& point, AcGePoint3d& low, AcGePoint3d& high);
// Every text and multi-line text whose value is `search` (or holds it behind format codes,
// "*;search*}") with its first point inside the sheet; false when there is none.
bool FindSameTexts(const std::wstring& search, const AcGePoint3d& low, const AcGePoint3d& high, ads_name set);
void SetEntityColor(AcDbObjectId id, int color);
// "共 n 个" on a copy of the picked text, one text height to its left; the copy's id.
AcDbObjectId AddCountText(const PickedText& picked, int n);
// Every occurrence of `search` in the text becomes `replacement`.
void ReplaceInText(AcDbObjectId id, const std::wstring& search, const std::wstring& replacement);
// A point between the world and the user's coordinates.
AcGePoint3d WorldToUcs(const AcGePoint3d& p);
AcGePoint3d UcsToWorld(const AcGePoint3d& p);
