#pragma once
// Hole substitution: the exporter draws a hole as concentric circles and leaves a point at its
// centre on a layer that tells the hole's type. Such a hole is replaced by a symbol drawing of a
// library folder, chosen by CAD_hole.ini from the type, the smallest diameter, the number of
// circles and which of them are dashed.
#include <string>
#include <vector>

#include "curves/box_grid.hpp"
#include "curves/touch_clusters.hpp"
#include "platform/db/database.hpp"
#include "platform/ge/array.hpp"
#include "platform/ge/point3d.hpp"

// How the scan finds the circles that share a centre, and the points at a hole's centre: through
// grids of the centres and of the points unless a comparison asks for the plain walks over all.
extern ClusterWalk HoleCentreWalk;

// One point entity of the model space: its layer tells the hole's type.
struct tPt {
    std::wstring layer;
    AcGePoint3d point;
};

// One circle of the model space.
struct tCir {
    AcDbObjectId id;
    double diameter = 0.0;
    AcGePoint3d center;
    std::wstring linetype;  // upper case
    int dashed = 0;         // 1 when the linetype is on the dash list
    std::uint16_t colorIndex = 0;
    std::wstring layer;
};

// One data row of a [TYPEn] section: the symbols of the holes of one smallest diameter.
struct tHole {
    double diameter = 0.0;
    std::wstring blockDashOne;
    std::wstring blockSolidOne;
    std::wstring blockBothDash;
    std::wstring blockBothSolid;
    std::wstring blockDashSolid;
    std::wstring blockSolidDash;
    std::wstring layer;  // the LAYER value in force at the row
    int typeNumber = 0;
};

// One row of [SCRSET]: kept as read, not consulted by the substitution.
struct tLayCon {
    std::wstring name;
    std::wstring value;
    int color = 0;
};

// Appends a tPt for every AcDbPoint of the model space of `db`, in drawing order. 0, 16 when an
// entity does not open, or the status of OpenModelSpaceIterator.
int CollectPoints(AcDbDatabase* db, AcArray<tPt>& points);

// The substitution of one drawing: built on the drawing's points, fed by ReadHoleConfig, run by
// SubstituteHoles.
class HoleSubstitution {
public:
    HoleSubstitution(const AcArray<tPt>& points, std::wstring configPath);

    // Reads CAD_hole.ini at `path` (hole_config.cpp). A missing file leaves the tables empty. A
    // symbol row of fewer than seven fields throws std::invalid_argument, which nothing catches.
    void ReadHoleConfig(const std::wstring& path);
    // Replaces the marked holes of `db` when a file exists at `drawingPath`; `layerName` is kept
    // and not read. 0, 100 when the block table does not open, 16 when the model space gives no
    // iterator.
    int SubstituteHoles(AcDbDatabase* db, const std::wstring& drawingPath, const std::wstring& layerName);

    AcArray<tPt> points;
    std::wstring configPath;
    std::wstring blockPath;
    std::vector<tLayCon> layerColors;
    std::wstring defaultLayer;  // the value of the "*" row of [SCRSET]
    std::vector<std::wstring> dashList;
    std::vector<tHole> holes;
    AcDbDatabase* database = nullptr;
    std::wstring drawingPath;
    std::wstring layerName;
    int section = -1;
    std::wstring currentLayer;
    int typeNumber = 0;
    AcDbObjectIdArray inserted;
    BoxGrid pointGrid;  // of `points`, for the indexed walk

private:
    void ReadHoleLine(const std::wstring& line);
    void AddHoleRow(const std::vector<std::wstring>& fields);
    int ScanCircles(std::vector<tCir>& all);
    void SubstituteGroup(std::vector<tCir>& group);
    std::vector<size_t> PointsNear(const AcGePoint3d& centre) const;
    int InsertSymbol(const std::wstring& layer, const std::wstring& name, const AcGePoint3d& center);
};
