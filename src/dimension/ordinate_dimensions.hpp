#pragma once
// The dimension entities of a view: ordinates per hole with their tolerance classes, and the
// outline dimensions of views that get no ordinates.
#include <vector>

#include "config/cad_standard_ini.hpp"
#include "dimension/dimension_state.hpp"
#include "platform/db/database.hpp"

// An ordinate measuring x (`useY` 0) or y of `definingPoint` from `origin` (the datum when
// there is one), its text at `leaderEnd`. The tolerance class falls to the base class when the
// point is the origin. `decimals` is truncated.
void MakeOrdinate(AcDbObjectId& outId, int useY, const AcGePoint3d& origin,
                  const AcGePoint3d& definingPoint, const AcGePoint3d& leaderEnd, double dimScale,
                  double decimals, const ToleranceSpec& tol);
// A rotated dimension between two points with the configured style and the Evel class.
void MakeOutlineDimension(const AcGePoint3d& xLine1, const AcGePoint3d& xLine2,
                          const AcGePoint3d& dimLine, double rotation, double dimScale);

// Where the outline dimensions' lines stand, computed from the view's box and the centre that
// the previous view left.
struct OutlinePoints {
    AcGePoint3d left, right, bottom, top;
};
OutlinePoints ComputeOutlinePoints(const DimensionState& state);
// The outline of a view without circles: rotated dimensions by view kind.
void DimensionOutlineWithoutCircles(const OutlinePoints& points);
// The outline of a view with circles: its corners (and the datum) as ordinates.
void DimensionOutlineWithCircles();

// The ordinates of the chosen circles; the lists are sorted and their texts spread in place.
void WriteXOrdinates(std::vector<circle>& top, std::vector<circle>& bottom, const AcDbExtents& box);
void WriteYOrdinates(std::vector<circle>& left, std::vector<circle>& right, const AcDbExtents& box);
// Moves the texts of a sorted list apart along one axis (0 x, 1 y) until neighbours stand at
// least the text pitch apart.
void SpreadTextPositions(std::vector<circle>& list, int axis);
