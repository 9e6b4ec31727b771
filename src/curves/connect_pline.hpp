#pragma once
// The stringing of lines, arcs and open polylines of the colours in ColorInspect into polylines.
#include "platform/db/database.hpp"

// The operation on the given ids, with the layer table of `db` for the new polylines' layers.
void ConnectPolylines(const AcDbObjectIdArray& ids, AcDbDatabase* db);
// The curves of `ids` grouped by meeting ends (SamePoint within t), each group in the order its
// members joined; ids that do not open or are no curve are left out.
AcArray<AcDbObjectIdArray> ClusterCurvesByEnds(const AcDbObjectIdArray& ids, double tolerance);
// One polyline through the pieces of `ids` that continue each other from `startId` (the first id
// when null), appended to the working database; the null id when nothing came of it. `usedIds`
// receives the ids it replaces, polylines that were taken apart included.
AcDbObjectId JoinChain(AcDbObjectIdArray ids, AcDbObjectId startId, AcDbObjectIdArray& usedIds,
                       double tolerance);
