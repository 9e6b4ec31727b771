#include "curves/connect_pline.hpp"

#include <vector>

#include "cleanup/class_interface_data.hpp"
#include "curves/end_clusters.hpp"
#include "curves/geometry.hpp"
#include "platform/db/polyline.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/ge/point2d.hpp"

namespace {

// A polyline that was taken apart for a chain, and the pieces that stand for it.
struct ExplodedPline {
    AcDbObjectId id;
    AcDbObjectIdArray pieces;
};

AcDbDatabase* WorkingDatabase() { return acdbHostApplicationServices()->workingDatabase(); }

void ReadConnectPlineSettings(ConnectPlineSettings& settings) {
    std::wstring file = CadLineIniPath(CleanupGlobals->UserPath);
    std::wstring colorText;
    IniReadString(file, L"public", L"StrDottedLineType", settings.dottedLinetype);
    IniReadString(file, L"public", L"StrSolidLineType", settings.solidLinetype);
    IniReadBool(file, L"ConnectPline", L"BolOpen", settings.BolOpen);
    IniReadDouble(file, L"ConnectPline", L"Tolerance", settings.Tolerance);
    IniReadString(file, L"ConnectPline", L"ColorInspect", colorText);
    ColorListFromText(colorText, settings.colors);
}

// Lines, arcs and polylines that are not closed in the drawing's sense (ends apart by the
// tolerance or more).
AcDbObjectIdArray ChainCandidates(const AcDbObjectIdArray& ids, double tolerance) {
    AcDbObjectIdArray kept(0, 8);
    for (const AcDbObjectId& id : ids) {
        int kind = EntityKindOfId(id);
        bool closedPolyline = kind == 4 && CurvePointAt(id, 1.0).distanceTo(CurvePointAt(id, 0.0)) < tolerance;
        if ((kind == 1 || kind == 3 || kind == 4) && !closedPolyline) kept.append(id);
    }
    return kept;
}

// The candidates of each listed colour, in the order of the list; a colour listed twice finds
// nothing the second time, and unlisted colours take no part.
std::vector<AcDbObjectIdArray> ColorGroups(const AcDbObjectIdArray& candidates, const AcArray<int>& colors) {
    std::vector<int> colorOf;
    for (const AcDbObjectId& id : candidates) colorOf.push_back(EffectiveColorIndex(id));
    std::vector<bool> taken(candidates.length(), false);
    std::vector<AcDbObjectIdArray> groups;
    for (int color : colors) {
        AcDbObjectIdArray group(0, 8);
        for (int i = 0; i < candidates.length(); ++i) {
            if (taken[i] || colorOf[i] != color) continue;
            taken[i] = true;
            group.append(candidates[i]);
        }
        if (!group.isEmpty()) groups.push_back(group);
    }
    return groups;
}

bool EndsOf(AcDbObjectId id, AcGePoint3d& start, AcGePoint3d& end) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead, false) != Acad::eOk) return false;
    auto* curve = AcDbCurve::cast(entity);
    if (curve) {
        curve->getStartPoint(start);
        curve->getEndPoint(end);
    }
    entity->close();
    return curve != nullptr;
}

// The pieces of a polyline appended to the working database; empty when it does not open or
// does not explode. The polyline itself stays for now.
AcDbObjectIdArray ExplodeIntoModelSpace(AcDbObjectId id) {
    AcDbObjectIdArray pieces(0, 8);
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite, false) != Acad::eOk) return pieces;
    AcDbVoidPtrArray made;
    Acad::ErrorStatus es = entity->explode(made);
    entity->close();
    if (es != Acad::eOk) return pieces;
    for (void* piece : made) {
        AcDbObjectId pieceId = AppendToCleanupModelSpace(WorkingDatabase(), static_cast<AcDbEntity*>(piece));
        if (!pieceId.isNull()) pieces.append(pieceId);
    }
    return pieces;
}

// Polylines of the chain give way to their pieces, in place; the first piece of the start
// polyline becomes the start.
void ExplodePolylines(AcDbObjectIdArray& ids, AcDbObjectId& startId, std::vector<ExplodedPline>& exploded) {
    AcDbObjectIdArray flat(0, 8);
    for (const AcDbObjectId& id : ids) {
        if (EntityTypeOfId(id) != 2004) {
            flat.append(id);
            continue;
        }
        AcDbObjectIdArray pieces = ExplodeIntoModelSpace(id);
        if (id == startId && !pieces.isEmpty()) startId = pieces[0];
        exploded.push_back({id, pieces});
        flat.append(pieces);
    }
    ids = flat;
}

AcGePoint2d Flat(const AcGePoint3d& p) { return AcGePoint2d(p.x, p.y); }

// The ends of the growing polyline.
struct ChainEnds {
    AcGePoint3d head;
    AcGePoint3d tail;
};

// Adds the first piece of `ids` that meets the tail or, failing that, the head; the tail is
// tried first. False when no piece meets.
bool GrowOnce(AcDbPolyline& polyline, ChainEnds& ends, AcDbObjectIdArray& ids, AcDbObjectIdArray& usedIds,
              double t) {
    for (int i = 0; i < ids.length(); ++i) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, ids[i], AcDb::kForRead, false) != Acad::eOk) continue;
        auto* curve = AcDbCurve::cast(entity);
        if (!curve) {
            entity->close();
            continue;
        }
        AcGePoint3d s, e;
        curve->getStartPoint(s);
        curve->getEndPoint(e);
        bool sTail = s.distanceTo(ends.tail) < t, eTail = e.distanceTo(ends.tail) < t;
        bool sHead = s.distanceTo(ends.head) < t, eHead = e.distanceTo(ends.head) < t;
        double bulge = ArcBulge(entity);
        if (sTail || eTail) {
            polyline.setBulgeAt(polyline.numVerts() - 1, eTail ? -bulge : bulge);
            ends.tail = sTail ? e : s;
            polyline.addVertexAt(polyline.numVerts(), Flat(ends.tail), 0, 0, 0);
        } else if (sHead || eHead) {
            ends.head = sHead ? e : s;
            polyline.addVertexAt(0, Flat(ends.head), sHead ? -bulge : bulge, 0, 0);
        } else {
            entity->close();
            continue;
        }
        usedIds.append(ids[i]);
        ids.removeAt(i);
        entity->close();
        return true;
    }
    return false;
}

// A polyline of which some piece was used counts as used; all pieces leave the drawing and the
// used list, so the unused part of such a polyline is lost.
void SettleExploded(const std::vector<ExplodedPline>& exploded, AcDbObjectIdArray& usedIds) {
    for (const ExplodedPline& record : exploded) {
        bool used = false;
        for (const AcDbObjectId& piece : record.pieces) used = used || usedIds.contains(piece);
        if (used) usedIds.append(record.id);
    }
    for (const ExplodedPline& record : exploded) {
        for (const AcDbObjectId& piece : record.pieces) {
            AcDbEntity* entity = nullptr;
            if (acdbOpenAcDbEntity(entity, piece, AcDb::kForWrite, false) == Acad::eOk) {
                entity->erase(true);
                entity->close();
            }
            int at = usedIds.find(piece);
            for (; at >= 0; at = usedIds.find(piece)) usedIds.removeAt(at);
        }
    }
}

std::wstring LayerOf(AcDbObjectId id) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead, false) != Acad::eOk) return L"";
    std::wstring layer = entity->layer();
    entity->close();
    return layer;
}

// The layer's record id in the layer table of `db`, or null when the name is not there.
AcDbObjectId LayerRecordId(AcDbDatabase* db, const std::wstring& name) {
    AcDbObjectId id;
    AcDbLayerTable* layers = nullptr;
    if (db->getSymbolTable(layers, AcDb::kForRead) != Acad::eOk) return id;
    if (layers->has(name)) layers->getAt(name, id);
    layers->close();
    return id;
}

bool AnySolid(const AcDbObjectIdArray& ids, const std::wstring& solidLinetype) {
    for (const AcDbObjectId& id : ids) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead, false) != Acad::eOk) continue;
        bool solid = entity->linetype() == solidLinetype;
        entity->close();
        if (solid) return true;
    }
    return false;
}

// The new polyline takes the colour and layer of the first piece it replaces and the solid
// linetype when any piece had it; then the pieces go.
void FinishChain(const ConnectPlineSettings& settings, AcDbObjectId polylineId, const AcDbObjectIdArray& usedIds) {
    int color = EffectiveColorIndex(usedIds[0]);
    AcDbObjectId layerId = LayerRecordId(settings.database, LayerOf(usedIds[0]));
    bool solid = AnySolid(usedIds, settings.solidLinetype);
    AcDbEntity* polyline = nullptr;
    if (acdbOpenAcDbEntity(polyline, polylineId, AcDb::kForWrite, false) == Acad::eOk) {
        polyline->setColorIndex(static_cast<std::uint16_t>(color), true);
        if (!layerId.isNull()) polyline->setLayer(layerId, true);
        polyline->setLinetype(solid ? settings.solidLinetype : settings.dottedLinetype, true);
        polyline->close();
    }
    for (const AcDbObjectId& id : usedIds) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite, false) != Acad::eOk) continue;
        entity->erase(true);
        entity->close();
    }
}

}  // namespace

AcArray<AcDbObjectIdArray> ClusterCurvesByEnds(const AcDbObjectIdArray& ids, double tolerance) {
    std::vector<CurveEnds> curves;
    for (const AcDbObjectId& id : ids) {
        CurveEnds ends{id, {}, {}};
        if (EndsOf(id, ends.start, ends.end)) curves.push_back(ends);
    }
    AcArray<AcDbObjectIdArray> clusters;
    for (const std::vector<size_t>& cluster : ClusterByTouchingEnds(curves, tolerance)) {
        AcDbObjectIdArray group(0, 8);
        for (size_t index : cluster) group.append(curves[index].id);
        clusters.append(group);
    }
    return clusters;
}

AcDbObjectId JoinChain(AcDbObjectIdArray ids, AcDbObjectId startId, AcDbObjectIdArray& usedIds, double tolerance) {
    if (startId.isNull() && !ids.isEmpty()) startId = ids[0];
    usedIds.append(startId);
    std::vector<ExplodedPline> exploded;
    ExplodePolylines(ids, startId, exploded);
    for (int at = ids.find(startId); at >= 0; at = ids.find(startId)) ids.removeAt(at);
    auto* polyline = new AcDbPolyline;
    polyline->setDatabaseDefaults();
    ChainEnds ends;
    AcDbEntity* start = nullptr;
    if (acdbOpenAcDbEntity(start, startId, AcDb::kForRead, false) == Acad::eOk) {
        if (auto* curve = AcDbCurve::cast(start)) {
            curve->getStartPoint(ends.head);
            curve->getEndPoint(ends.tail);
            polyline->addVertexAt(0, Flat(ends.head), ArcBulge(start), 0, 0);
            polyline->addVertexAt(1, Flat(ends.tail), 0, 0, 0);
        }
        start->close();
    }
    while (!ids.isEmpty() && GrowOnce(*polyline, ends, ids, usedIds, tolerance)) {
    }
    SettleExploded(exploded, usedIds);
    if (polyline->numVerts() == 0) {
        delete polyline;
        return AcDbObjectId::kNull;
    }
    AcGePoint3d first, last;
    polyline->getStartPoint(first);
    polyline->getEndPoint(last);
    // A closed chain keeps its last vertex on top of the first.
    if (first.distanceTo(last) < tolerance) polyline->setClosed(true);
    return AppendToCleanupModelSpace(WorkingDatabase(), polyline);
}

void ConnectPolylines(const AcDbObjectIdArray& ids, AcDbDatabase* db) {
    AppendCleanupLog(L"串线开始\n");
    ConnectPlineSettings& settings = *CleanupGlobals->connectPline;
    ReadConnectPlineSettings(settings);
    settings.BolOpen = true;
    settings.database = db;
    std::vector<AcDbObjectIdArray> groups = ColorGroups(ChainCandidates(ids, settings.Tolerance), settings.colors);
    std::vector<AcDbObjectIdArray> chains;
    for (const AcDbObjectIdArray& group : groups)
        for (const AcDbObjectIdArray& cluster : ClusterCurvesByEnds(group, settings.Tolerance))
            if (cluster.length() > 1) chains.push_back(cluster);
    for (const AcDbObjectIdArray& chain : chains) {
        AcDbObjectIdArray usedIds(0, 8);
        AcDbObjectId polyline = JoinChain(chain, chain[0], usedIds, settings.Tolerance);
        if (!polyline.isNull()) FinishChain(settings, polyline, usedIds);
    }
}

void ClassInterfaceData::FunConnectPline() {
    ConnectPolylines(GetModelSpaceIds(acdbHostApplicationServices()->workingDatabase()), database);
}
