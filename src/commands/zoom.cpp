#include "commands/zoom.hpp"

#include <algorithm>
#include <cmath>

#include "host/tavrik_app.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/ed/lisp.hpp"
#include "platform/ed/sysvars.hpp"
#include "platform/ed/trans.hpp"
#include "platform/ed/utilities.hpp"
#include "platform/ed/views.hpp"

namespace {

constexpr short kWorld = 0;
constexpr short kUcs = 1;
constexpr short kDisplay = 2;

resbuf SystemCode(short code) {
    resbuf rb{};
    rb.restype = RTSHORT;
    rb.resval.rint = code;
    return rb;
}

AcGePoint3d Turn(const AcGePoint3d& p, short from, short to, int displacement = 0) {
    resbuf source = SystemCode(from), target = SystemCode(to);
    ads_point in = {p.x, p.y, p.z}, out = {p.x, p.y, p.z};
    acedTrans(in, &source, &target, displacement, out);
    return AcGePoint3d(out[0], out[1], out[2]);
}

resbuf Variable(const ACHAR* name) {
    resbuf value{};
    acedGetVar(name, &value);
    return value;
}

AcGePoint3d VariablePoint(const ACHAR* name) {
    resbuf value = Variable(name);
    return AcGePoint3d(value.resval.rpoint[0], value.resval.rpoint[1], value.resval.rpoint[2]);
}

// The camera of the current viewport: lens, twist, clipping and perspective from VIEWMODE.
void SetCamera(AcDbViewTableRecord& view) {
    view.setLensLength(Variable(L"LENSLENGTH").resval.rreal);
    view.setViewTwist(Variable(L"VIEWTWIST").resval.rreal);
    double front = Variable(L"FRONTZ").resval.rreal;
    double back = Variable(L"BACKZ").resval.rreal;
    short mode = Variable(L"VIEWMODE").resval.rint;
    view.setPerspectiveEnabled((mode & 1) != 0);
    view.setFrontClipEnabled((mode & 2) != 0);
    view.setBackClipEnabled((mode & 4) != 0);
    view.setFrontClipAtEye((mode & 16) == 0);
    bool paperSpace = Variable(L"TILEMODE").resval.rint == 0 && Variable(L"CVPORT").resval.rint == 1;
    if (paperSpace) {
        view.setIsPaperspaceView(true);
        view.setFrontClipDistance(0.0);
        view.setBackClipDistance(0.0);
    } else {
        view.setFrontClipDistance(front);
        view.setBackClipDistance(back);
    }
}

bool IsPoint3d(const resbuf* rb) { return rb && rb->restype == RT3DPOINT; }

AcGePoint3d PointOf(const resbuf* rb) { return AcGePoint3d(rb->resval.rpoint[0], rb->resval.rpoint[1], rb->resval.rpoint[2]); }

}  // namespace

void ZoomToWindow(const AcGePoint3d& first, const AcGePoint3d& second) {
    AcGePoint3d low(std::min(first.x, second.x), std::min(first.y, second.y), first.z);
    AcGePoint3d high(std::max(first.x, second.x), std::max(first.y, second.y), second.z);
    AcDbViewTableRecord view;
    AcGePoint3d direction = Turn(VariablePoint(L"VIEWDIR"), kUcs, kWorld, 1);
    low = Turn(low, kUcs, kDisplay);
    high = Turn(high, kUcs, kDisplay);
    view.setCenterPoint(AcGePoint2d(low.x + (high.x - low.x) * 0.5, low.y + (high.y - low.y) * 0.5));
    view.setHeight(std::abs(high.y - low.y));
    view.setWidth(std::abs(high.x - low.x));
    view.setViewDirection(AcGeVector3d(direction.x, direction.y, direction.z));
    SetCamera(view);
    view.setTarget(Turn(VariablePoint(L"TARGET"), kUcs, kWorld));
    acedSetCurrentView(&view, nullptr);
}

int WZoom() {
    const resbuf* arguments = acedGetArgs();
    if (!arguments) {
        acutPrintf(L"\n参数类型错误,需要两个点参数!");
        return RTERROR;
    }
    const resbuf* second = arguments->rbnext;
    if (!IsPoint3d(arguments) || !IsPoint3d(second) || second->rbnext) return RTERROR;
    ZoomToWindow(PointOf(arguments), PointOf(second));
    acedRetT();
    return 1;
}

int ZoomAll() {
    if (acedGetArgs()) return RTERROR;
    AcDbDatabase* db = acdbHostApplicationServices()->workingDatabase();
    AcDbBlockTable* table = nullptr;
    if (!db || db->getSymbolTable(table, AcDb::kForRead) != Acad::eOk) return RTERROR;
    AcDbBlockTableRecord* model = nullptr;
    Acad::ErrorStatus es = table->getAt(ACDB_MODEL_SPACE, model, AcDb::kForRead);
    table->close();
    if (es != Acad::eOk) return RTERROR;
    AcDbExtents box;
    box.addBlockExt(model);
    model->close();
    ZoomToWindow(box.minPoint(), box.maxPoint());
    acedRetT();
    acedRetVoid();
    return 1;
}

namespace {

AdsSymbolEntry wzoomRow = {L"wzoom", WZoom, false, -1};
AdsSymbolEntry zoomallRow = {L"zoomall", ZoomAll, false, -1};
// One array, so that the rows keep their order: wzoom has the function code 0, zoomall 1.
__attribute__((used, section("ADSSYMBO"))) AdsSymbolEntry* zoomRows[] = {&wzoomRow, &zoomallRow};

}  // namespace
