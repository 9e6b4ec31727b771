#pragma once
// The view of the host's drawing window. Without a screen the host only keeps what was asked for:
// the centre, size, target, direction, camera and clipping of the current view, which tests and
// `tavrik` can read (VIEWCTR, VIEWSIZE).
#include "platform/db/status.hpp"
#include "platform/ge/point2d.hpp"
#include "platform/ge/point3d.hpp"
#include "platform/ge/vector3d.hpp"

class AcDbViewTableRecord;
class AcDbViewport;

struct CurrentViewRecord {
    bool set = false;
    AcGePoint2d center;
    double width = 0.0;
    double height = 0.0;
    AcGePoint3d target;
    AcGeVector3d direction;
    bool paperSpace = false;
    double frontClip = 0.0, backClip = 0.0;
    double lensLength = 50.0, twist = 0.0;
    bool perspective = false, frontClipOn = false, backClipOn = false, frontClipAtEye = true;
};

// Makes the view current in the drawing window; eNullObjectPointer without a view.
Acad::ErrorStatus acedSetCurrentView(AcDbViewTableRecord* view, AcDbViewport* viewport);
const CurrentViewRecord& CurrentView();
