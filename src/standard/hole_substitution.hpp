#pragma once
// Hole substitution: the points that the exporter leaves at hole centres, gathered straight
// after the drawing is read and before any clean-up, so that they stand as exported.
#include <string>

#include "platform/db/database.hpp"
#include "platform/ge/array.hpp"
#include "platform/ge/point3d.hpp"

// One point entity of the model space: its layer tells the hole's type.
struct tPt {
    std::wstring layer;
    AcGePoint3d point;
};

// Appends a tPt for every AcDbPoint of the model space of `db`, in drawing order. 0, 16 when an
// entity does not open, or the status of OpenModelSpaceIterator.
int CollectPoints(AcDbDatabase* db, AcArray<tPt>& points);
