#include "dimension/view_analysis.hpp"

#include <cmath>
#include <memory>

#include "dimension/ordinate_dimensions.hpp"
#include "host/module_state.hpp"
#include "pipeline/logs.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/line.hpp"
#include "platform/win/text.hpp"
#include "standard/db_helpers.hpp"

namespace {

void LogTrace(const std::wstring& text) { AppendLogText(text, kCgLogPath); }

const wchar_t* ViewName(int viewKind) {
    static const wchar_t* const kNames[] = {L"主视图", L"左视图", L"附视图"};
    return viewKind >= 0 && viewKind < 3 ? kNames[viewKind] : L"";
}

bool InBoxInclusive(const AcGePoint3d& p, const AcDbExtents& box) {
    return box.minPoint().x <= p.x && p.x <= box.maxPoint().x && box.minPoint().y <= p.y &&
           p.y <= box.maxPoint().y;
}

bool InBoxStrictly(const AcGePoint3d& p, const AcDbExtents& box) {
    return box.minPoint().x < p.x && p.x < box.maxPoint().x && box.minPoint().y < p.y &&
           p.y < box.maxPoint().y;
}

// Walks the model space with each entity open in `mode`; `visit` sees it before it is closed.
template <typename Visit>
int WalkModelSpace(AcDbDatabase* db, AcDb::OpenMode mode, Visit visit) {
    AcDbBlockTableRecordIterator* iterator = nullptr;
    int status = OpenModelSpaceIterator(iterator, db);
    if (status != 0) return status;
    std::unique_ptr<AcDbBlockTableRecordIterator> walk(iterator);
    for (walk->start(true, true); !walk->done(); walk->step(true, true)) {
        AcDbEntity* entity = nullptr;
        if (walk->getEntity(entity, mode) != Acad::eOk) return 16;
        visit(entity);
        entity->close();
    }
    return 0;
}

// Corners of the view's box, less OFFSET on every side, kept in the state's corner records.
void SetViewBox(DimensionState& state, const AcDbExtents& lines, double offset) {
    state.x0 = lines.minPoint().x + offset;
    state.y0 = lines.minPoint().y + offset;
    state.x1 = lines.maxPoint().x - offset;
    state.y1 = lines.maxPoint().y - offset;
    state.z = lines.minPoint().z;
    state.lowerLeft = PointRecord(AcGePoint3d(state.x0, state.y0, state.z));
    state.lowerRight = PointRecord(AcGePoint3d(state.x1, state.y0, state.z));
    state.upperLeft = PointRecord(AcGePoint3d(state.x0, state.y1, state.z));
    state.upperRight = PointRecord(AcGePoint3d(state.x1, state.y1, state.z));
}

void SetViewCentre(DimensionState& state) {
    state.midX = (state.x1 + state.x0) * 0.5;
    state.midY = (state.y1 + state.y0) * 0.5;
    state.boxWidth = std::fabs(state.x0 - state.x1);
    state.boxHeight = std::fabs(state.y0 - state.y1);
}

// Runs the outline branch that the raw circle count and the box's size call for; false
// when the view stays in ordinate mode.
bool DimensionOutlineWhenDue(ModuleState& module, size_t count, const OutlinePoints& points) {
    DimensionState& state = module.dimensionState;
    const SundryKeys& sundry = module.cadStandardIni.sundry;
    if (count < 1) {
        LogTrace(L"无圆,开始外形标注\n");
        state.ordinateMode = false;
        DimensionOutlineWithoutCircles(points);
        return true;
    }
    if (sundry.XMAX < state.boxWidth || sundry.YMAX < state.boxHeight ||
        static_cast<long long>(count) >= sundry.CIRCOUNT) {
        LogTrace(L"有圆,外形标注\n");
        state.ordinateMode = false;
        DimensionOutlineWithCircles();
        return true;
    }
    return false;
}

// The origin corner and the one opposite to it, then the datum when there is one.
void AppendSeeds(const DimensionState& state, std::vector<circle>& circles) {
    if (state.viewKind == 1) {
        circles.push_back(state.lowerRight);
        circles.push_back(state.upperLeft);
    } else {
        circles.push_back(state.lowerLeft);
        circles.push_back(state.upperRight);
    }
    if (state.haveDatum) circles.push_back(state.datum);
}

double Coordinate(const AcGePoint3d& p, int axis) { return axis == 0 ? p.x : p.y; }

// Takes out of `work` the group of its first record: every record within 0.001 of it on the
// axis, met from the end of `work`.
std::vector<circle> TakeGroup(std::vector<circle>& work, int axis) {
    circle seed = work.front();
    work.erase(work.begin());
    std::vector<circle> group = {seed};
    for (size_t i = work.size(); i-- > 0;) {
        if (std::fabs(Coordinate(work[i].textPos, axis) - Coordinate(seed.textPos, axis)) <= 0.001) {
            group.push_back(work[i]);
            work.erase(work.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
    return group;
}

// The ends of each group on the other axis go to the low or high side of `middle`.
void SelectEnds(const std::vector<circle>& circles, int groupAxis, double middle,
                std::vector<circle>& high, std::vector<circle>& low) {
    const int endAxis = 1 - groupAxis;
    std::vector<circle> work = circles;
    while (!work.empty()) {
        std::vector<circle> group = TakeGroup(work, groupAxis);
        if (group.size() > 1) {
            if (endAxis == 1) SortCirclesByY(group);
            else SortCirclesByX(group);
            const circle lo = group.front(), hi = group.back();
            const double loValue = Coordinate(lo.textPos, endAxis);
            const double hiValue = Coordinate(hi.textPos, endAxis);
            if (middle <= loValue) high.push_back(hi);
            if (hiValue <= middle) low.push_back(lo);
            if (loValue <= middle && hiValue >= middle) {
                high.push_back(hi);
                low.push_back(lo);
            }
        } else if (Coordinate(group.front().textPos, endAxis) < middle) {
            low.push_back(group.front());
        } else {
            high.push_back(group.front());
        }
    }
}

template <typename Key>
void BubbleSort(std::vector<circle>& circles, Key key) {
    for (size_t length = circles.size(); length > 1; --length) {
        bool exchanged = false;
        for (size_t i = 0; i + 1 < length; ++i) {
            if (!(key(circles[i]) < key(circles[i + 1]))) {
                std::swap(circles[i], circles[i + 1]);
                exchanged = true;
            }
        }
        if (!exchanged) break;
    }
}

}  // namespace

int CollectViewFrame(const std::wstring& viewLayer, AcDbObjectIdArray& frameLines, AcDbDatabase* db) {
    DimensionState& state = Module().dimensionState;
    state.haveDatum = false;
    const AcDbExtents& frameBox = state.frameBox;
    return WalkModelSpace(db, AcDb::kForWrite, [&](AcDbEntity* entity) {
        if (auto* line = AcDbLine::cast(entity)) {
            if (EqualNoCase(line->layer(), viewLayer) && InBoxInclusive(line->startPoint(), frameBox) &&
                InBoxInclusive(line->endPoint(), frameBox))
                frameLines.append(line->objectId());
        } else if (auto* marker = AcDbCircle::cast(entity)) {
            if (!EqualNoCase(marker->layer(), viewLayer) || !InBoxStrictly(marker->center(), frameBox))
                return;
            state.haveDatum = true;
            state.datumPoint = marker->center();
            state.datum = PointRecord(marker->center());
            marker->erase();
        }
    });
}

int CollectViewCircles(const AcDbObjectIdArray& frameLines, std::vector<circle>& circles,
                       AcDbExtents& box, AcDbDatabase* db) {
    for (const AcDbObjectId& id : frameLines) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) continue;
        if (auto* line = AcDbLine::cast(entity)) {
            box.addPoint(line->startPoint());
            box.addPoint(line->endPoint());
        }
        entity->close();
    }
    LogTrace(L"遍历圆心\n");
    std::vector<circle> red, plain;
    int status = WalkModelSpace(db, AcDb::kForRead, [&](AcDbEntity* entity) {
        auto* hole = AcDbCircle::cast(entity);
        if (hole == nullptr || !InBoxInclusive(hole->center(), box)) return;
        circle record{hole->center(), hole->colorIndex(), hole->center()};
        (record.color == 1 ? red : plain).push_back(record);
    });
    // A plain circle on a red one's centre takes the red class, so that it survives merging
    // with the right class.
    for (size_t r = red.size(); r-- > 0;)
        for (size_t p = plain.size(); p-- > 0;)
            if (red[r].center.distanceTo(plain[p].center) <= 0.001) plain[p].color = 1;
    circles.insert(circles.end(), plain.begin(), plain.end());
    circles.insert(circles.end(), red.begin(), red.end());
    return status;
}

void MergeCircles(std::vector<circle>& circles, double tolerance) {
    if (circles.size() < 2) return;
    std::vector<circle> kept = {circles.front()};
    for (size_t i = 1; i < circles.size(); ++i) {
        bool near = false;
        for (const circle& k : kept)
            if (k.center.distanceTo(circles[i].center) <= tolerance) near = true;
        if (!near) kept.push_back(circles[i]);
    }
    circles = kept;
}

void SelectXCircles(const std::vector<circle>& circles, std::vector<circle>& top,
                    std::vector<circle>& bottom, const AcDbExtents&) {
    SelectEnds(circles, 0, Module().dimensionState.midY, top, bottom);
}

void SelectYCircles(const std::vector<circle>& circles, std::vector<circle>& left,
                    std::vector<circle>& right, const AcDbExtents&) {
    SelectEnds(circles, 1, Module().dimensionState.midX, right, left);
}

void SortCirclesByX(std::vector<circle>& circles) {
    BubbleSort(circles, [](const circle& c) { return c.textPos.x; });
}

void SortCirclesByY(std::vector<circle>& circles) {
    BubbleSort(circles, [](const circle& c) { return c.textPos.y; });
}

void DimensionView(const std::wstring& viewLayer) {
    ModuleState& module = Module();
    DimensionState& state = module.dimensionState;
    AcDbDatabase* db = module.CurrentDatabase;
    LogTrace(std::wstring(ViewName(state.viewKind)) + L" 准备标注");
    LogTrace(L"取视图外框\n");
    AcDbObjectIdArray frameLines;
    CollectViewFrame(viewLayer, frameLines, db);
    if (frameLines.isEmpty()) return;
    LogTrace(L"视图框内查找圆\n");
    std::vector<circle> circles;
    AcDbExtents box;
    CollectViewCircles(frameLines, circles, box, db);
    SetViewBox(state, box, module.cadStandardIni.sundry.OFFSET);
    const OutlinePoints points = ComputeOutlinePoints(state);
    SetViewCentre(state);
    state.ordinateMode = true;
    LogTrace(L"\n圆总数量：");
    AppendLogInt(static_cast<int>(circles.size()), kCgLogPath);
    DimensionOutlineWhenDue(module, circles.size(), points);
    AppendSeeds(state, circles);
    if (!state.ordinateMode) return;
    MergeCircles(circles, 0.001);
    std::vector<circle> top, bottom, left, right;
    LogTrace(L"坐标注,取x标注圆\n");
    SelectXCircles(circles, top, bottom, box);
    LogTrace(L"开始x坐标标注\n");
    WriteXOrdinates(top, bottom, box);
    LogTrace(L"坐标注,取Y标注圆\n");
    SelectYCircles(circles, left, right, box);
    LogTrace(L"开始Y坐标标注\n");
    WriteYOrdinates(left, right, box);
}
