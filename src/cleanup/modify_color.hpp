#pragma once
// The recolouring by position of section ModifyColor: lines and arcs on a rule's layer form
// chains, and every other entity whose box lies inside a chain's box takes the rule's colour
// for solid or for other entities, unless its colour is one the rule keeps.
#include <string>

#include "cleanup/cleanup_settings.hpp"
#include "platform/db/database.hpp"

// The whole operation on the given ids, with its start and end lines in the clean-up log.
void ModifyColorRun(ModifyColorSettings& settings, AcDbObjectIdArray ids, AcDbDatabase* db);
// The rules of StrJson and the linetype names of section public; see the scanner for the marks.
void ReadModifyColorSettings(ModifyColorSettings& settings);
// The colours of a ColorExclude list ("r g b","r g b"), each as its nearest palette index.
void ParseExcludeColors(const std::string& token, AcArray<int>& colors);
// The lines and curves of `ids` grouped by ends that are SamePoint within the tolerance.
AcArray<AcDbObjectIdArray> GroupConnectedCurves(const AcDbObjectIdArray& ids, double tolerance);
// X and Y of p from the box's minimum minus t to its maximum plus t, bounds included.
bool PointInBox(const AcGePoint3d& p, const AcGePoint3d& boxMin, const AcGePoint3d& boxMax,
                double tolerance);
