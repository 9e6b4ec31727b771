#include "standard/hole_substitution.hpp"

#include <algorithm>
#include <cmath>
#include <unordered_set>

#include "curves/box_grid.hpp"

#include "pipeline/logs.hpp"
#include "pipeline/sheet_merge.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/ed/utilities.hpp"
#include "platform/win/files.hpp"
#include "platform/win/text.hpp"
#include "standard/db_helpers.hpp"
#include "standard/model_space_walk.hpp"

namespace {

void LogCg(const std::wstring& text) { AppendLogText(text, kCgLogPath); }

bool OnDashList(const std::vector<std::wstring>& dashList, const std::wstring& linetype) {
    return std::any_of(dashList.begin(), dashList.end(),
                       [&](const std::wstring& dash) { return EqualNoCase(dash, linetype); });
}

tCir CircleRecord(AcDbCircle* circle, const std::vector<std::wstring>& dashList) {
    tCir record;
    record.id = circle->objectId();
    record.diameter = 2 * circle->radius();
    record.center = circle->center();
    record.linetype = UpperCase(circle->linetype());
    record.dashed = OnDashList(dashList, record.linetype) ? 1 : 0;
    record.colorIndex = circle->colorIndex();
    record.layer = circle->layer();
    return record;
}

// Ascending by diameter; equal neighbours are exchanged too.
void SortByDiameter(std::vector<tCir>& group) {
    for (size_t length = group.size(); length > 1; --length) {
        bool exchanged = false;
        for (size_t i = 0; i + 1 < length; ++i) {
            if (!(group[i].diameter < group[i + 1].diameter)) {
                std::swap(group[i], group[i + 1]);
                exchanged = true;
            }
        }
        if (!exchanged) break;
    }
}

// Removes, walking from the end, the records for which `drop` holds.
template <typename Drop>
void RemoveFromEnd(std::vector<tCir>& group, Drop drop) {
    for (size_t i = group.size(); i-- > 0;)
        if (drop(group[i])) group.erase(group.begin() + static_cast<std::ptrdiff_t>(i));
}

// The symbol of a hole of `count` circles (1 or 2) by which of the smallest and the largest are
// dashed.
const std::wstring& SymbolName(const tHole& hole, int count, const tCir& first, const tCir& last) {
    if (count == 1) return first.dashed ? hole.blockDashOne : hole.blockSolidOne;
    if (first.dashed) return last.dashed ? hole.blockBothDash : hole.blockDashSolid;
    return last.dashed ? hole.blockSolidDash : hole.blockBothSolid;
}

// A centre as a box for the grid; one with a coordinate that is not finite is filed everywhere,
// since a distance from it is undefined and then does not exceed the limit.
FlatBox CentreBox(const AcGePoint3d& c) {
    if (!std::isfinite(c.z)) return {NAN, NAN, NAN, NAN};
    return {c.x, c.y, c.x, c.y};
}

BoxGrid CentreGrid(const std::vector<tCir>& all) {
    std::vector<FlatBox> boxes;
    boxes.reserve(all.size());
    for (const tCir& c : all) boxes.push_back(CentreBox(c.center));
    return BuildBoxGrid(boxes);
}

BoxGrid PointGrid(const AcArray<tPt>& points) {
    std::vector<FlatBox> boxes;
    boxes.reserve(static_cast<size_t>(points.length()));
    for (const tPt& p : points) boxes.push_back(CentreBox(p.point));
    return BuildBoxGrid(boxes);
}

// The records 0 .. i whose centre lies not farther than 0.001 from that of record i, in record
// order: what is left of a copy of those records after the far ones are removed. The grid only
// narrows which records are measured.
std::vector<tCir> CirclesAtCentre(const std::vector<tCir>& all, size_t i, const BoxGrid* grid) {
    const AcGePoint3d& centre = all[i].center;
    std::vector<size_t> candidates;
    if (grid) {
        candidates = BoxGridCandidates(*grid, CentreBox(centre), 0.001);
    } else {
        for (size_t k = 0; k <= i; ++k) candidates.push_back(k);
    }
    std::vector<tCir> group;
    for (size_t k : candidates) {
        if (k > i) break;
        if (!(all[k].center.distanceTo(centre) > 0.001)) group.push_back(all[k]);
    }
    return group;
}

}  // namespace

ClusterWalk HoleCentreWalk = ClusterWalk::Indexed;

int CollectPoints(AcDbDatabase* db, AcArray<tPt>& points) {
    return WalkModelSpace(db, AcDb::kForRead, kEndAtFailedOpen, [&](AcDbEntity* entity) {
        if (auto* point = AcDbPoint::cast(entity)) points.append(tPt{entity->layer(), point->position()});
    });
}

HoleSubstitution::HoleSubstitution(const AcArray<tPt>& drawingPoints, std::wstring path)
    : points(drawingPoints), configPath(std::move(path)) {}

int HoleSubstitution::SubstituteHoles(AcDbDatabase* db, const std::wstring& path, const std::wstring& layer) {
    database = db;
    drawingPath = path;
    layerName = layer;
    if (!FileExists(path)) {
        acutPrintf(L"\n未指到文件 %s", path.c_str());
        return 0;
    }
    std::vector<tCir> all;
    if (int status = ScanCircles(all); status != 0) return status;
    // Walking from the end, each circle is taken with the circles before it that share its
    // centre; the records after it have had their turn.
    BoxGrid grid;
    if (HoleCentreWalk == ClusterWalk::Indexed) {
        grid = CentreGrid(all);
        pointGrid = PointGrid(points);
    }
    std::unordered_set<AcDbObjectId> done;
    for (size_t i = all.size(); i-- > 0;) {
        std::vector<tCir> group =
            CirclesAtCentre(all, i, HoleCentreWalk == ClusterWalk::Indexed ? &grid : nullptr);
        SortByDiameter(group);
        RemoveFromEnd(group, [&](const tCir& c) { return done.contains(c.id); });
        if (group.empty()) continue;
        for (const tCir& c : group) done.insert(c.id);
        SubstituteGroup(group);
    }
    return 0;
}

// Every circle of the model space in drawing order, its diameter logged.
int HoleSubstitution::ScanCircles(std::vector<tCir>& all) {
    AcDbBlockTable* table = nullptr;
    if (database->getBlockTable(table, AcDb::kForRead) != Acad::eOk) return 100;
    AcDbBlockTableRecord* model = nullptr;
    Acad::ErrorStatus status = table->getAt(L"*Model_Space", model, AcDb::kForRead);
    table->close();
    if (status != Acad::eOk) return 16;
    AcDbBlockTableRecordIterator* walk = nullptr;
    model->newIterator(walk);
    model->close();
    if (walk == nullptr) return 16;
    for (walk->start(); !walk->done(); walk->step()) {
        AcDbEntity* entity = nullptr;
        if (walk->getEntity(entity, AcDb::kForRead) != Acad::eOk) continue;
        if (auto* circle = AcDbCircle::cast(entity)) {
            all.push_back(CircleRecord(circle, dashList));
            AppendLogDouble(all.back().diameter, kCgLogPath);
        }
        entity->close();
    }
    delete walk;
    return 0;
}

// The points that may lie within 0.001 of `centre`, in drawing order: all of them for the plain
// walk. The grid only narrows which points are measured.
std::vector<size_t> HoleSubstitution::PointsNear(const AcGePoint3d& centre) const {
    if (HoleCentreWalk == ClusterWalk::Indexed) return BoxGridCandidates(pointGrid, CentreBox(centre), 0.001);
    std::vector<size_t> all(static_cast<size_t>(points.length()));
    for (size_t k = 0; k < all.size(); ++k) all[k] = k;
    return all;
}

// Finds the symbol of one hole (its circles sorted, smallest first) and puts it in place of the
// smallest circle. A later matching row overwrites the name of an earlier one.
void HoleSubstitution::SubstituteGroup(std::vector<tCir>& group) {
    const tCir& first = group.front();
    int count = group.size() >= 2 ? 2 : 1;
    const tCir& last = group.back();
    std::wstring name;
    bool matched = false;
    std::vector<size_t> near = PointsNear(first.center);
    for (const tHole& hole : holes) {
        if (std::abs(first.diameter - hole.diameter) > 1e-05) continue;
        for (size_t k : near) {
            const tPt& point = points[static_cast<int>(k)];
            if (point.point.distanceTo(first.center) <= 0.001 && EqualNoCase(point.layer, hole.layer)) {
                matched = true;
                name = SymbolName(hole, count, first, last);
                break;
            }
        }
    }
    if (!matched) return;
    std::wstring file = blockPath + name + L".dwg";
    if (!FileExists(file)) {
        LogCg(L"换孔文件未找到\n");
        acutPrintf(L"\n找不到换孔文件 %s", file.c_str());
        return;
    }
    LogCg(L"换孔文件已找到,开始插入\n");
    if (InsertSymbol(first.layer, name, first.center) != 1) return;
    AcDbEntity* circle = nullptr;
    if (acdbOpenAcDbEntity(circle, first.id, AcDb::kForWrite) != Acad::eOk) return;
    circle->erase();
    circle->close();
}

// Copies the entities of the symbol drawing to the model space at `center`, each on `layer` with
// its own colour. 1, or 0 when there is no file.
int HoleSubstitution::InsertSymbol(const std::wstring& layer, const std::wstring& name, const AcGePoint3d& center) {
    LogCg(L"开始插入块\n");
    std::wstring file = blockPath + name + L".dwg";
    LogCg(file);
    if (!FileExists(file)) {
        LogCg(L"找不到换孔文件: " + file + L"\n");
        acutPrintf(L"找不到换孔文件: %s", file.c_str());
        return 0;
    }
    LogCg(L"插入dwg " + file + L"\n");
    AcDbVoidPtrArray entities;
    InsertDrawingEntities(database, file, entities, center, 1.0);
    LogCg(L"孔文件正确插入\n");
    AppendLogInt(entities.length(), kCgLogPath);
    LogCg(L"\n");
    for (int i = 0; i < entities.length(); ++i) {
        auto* entity = static_cast<AcDbEntity*>(entities[i]);
        AppendLogInt(i, kCgLogPath);
        entity->colorIndex();
        LogCg(L"取颜色正确\n");
        AcDbObjectId id;
        AppendToModelSpace(database, entity, id);
        inserted.append(id);
        entity->setLayer(layer, true);
        entity->close();
    }
    LogCg(L"清除pary\n");
    entities.setLogicalLength(0);
    return 1;
}
