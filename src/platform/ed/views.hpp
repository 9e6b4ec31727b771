#pragma once
// The view of the host's drawing window. Without a screen the host only keeps what was asked for:
// the centre, width and height of the current view, which tests and `tavrik` can read.
#include "platform/db/status.hpp"
#include "platform/ge/point2d.hpp"

class AcDbViewTableRecord;
class AcDbViewport;

struct CurrentViewRecord {
    bool set = false;
    AcGePoint2d center;
    double width = 0.0;
    double height = 0.0;
};

// Makes the view current in the drawing window; eNullObjectPointer without a view.
Acad::ErrorStatus acedSetCurrentView(AcDbViewTableRecord* view, AcDbViewport* viewport);
const CurrentViewRecord& CurrentView();
