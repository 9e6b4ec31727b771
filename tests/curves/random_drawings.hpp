#pragma once
// Random drawings for the curve clean-ups, from a seed: lines broken into collinear pieces,
// circles and arcs broken into pieces, nearly flat arcs and free-form splines. Gaps, overlaps,
// slopes and centres scatter around the thresholds of the merge, and pieces come in random
// order, some reversed, on a few layers with a few linetypes.
#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "platform/db/arc.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/line.hpp"
#include "platform/db/spline.hpp"
#include "platform/db/symbol_tables.hpp"

namespace random_drawings {

constexpr double kPi = 3.14159265358979323846;

inline double Uniform(std::mt19937& rng, double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(rng);
}
inline int Pick(std::mt19937& rng, int count) {
    return std::uniform_int_distribution<int>(0, count - 1)(rng);
}

// Layers A and B and the linetype DASHED, so that looks can be set on the pieces.
inline void AddLayersAndLinetypes(AcDbDatabase& db) {
    AcDbLayerTable* layers = nullptr;
    db.getSymbolTable(layers, AcDb::kForWrite);
    for (const wchar_t* name : {L"A", L"B"}) {
        if (layers->has(name)) continue;
        auto* record = new AcDbLayerTableRecord;
        record->setName(name);
        layers->add(record);
        record->close();
    }
    layers->close();
    AcDbLinetypeTable* linetypes = nullptr;
    db.getSymbolTable(linetypes, AcDb::kForWrite);
    if (!linetypes->has(L"DASHED")) {
        auto* record = new AcDbLinetypeTableRecord;
        record->setName(L"DASHED");
        AcDbObjectId id;
        linetypes->add(id, record);
        record->close();
    }
    linetypes->close();
}

// Layer, colour and linetype drawn at random for one piece.
inline void RandomLook(std::mt19937& rng, AcDbEntity* entity) {
    entity->setLayerName(Pick(rng, 2) == 0 ? L"A" : L"B");
    entity->setColorIndex(static_cast<std::uint16_t>(1 + Pick(rng, 7)));
    const wchar_t* linetypes[] = {L"Continuous", L"DASHED", L"ByLayer"};
    entity->setLinetypeName(linetypes[Pick(rng, 3)]);
}

// Appends the entities to the model space in random order.
inline void AppendShuffled(AcDbDatabase& db, std::mt19937& rng, std::vector<AcDbEntity*>& entities) {
    std::shuffle(entities.begin(), entities.end(), rng);
    AcDbBlockTable* blocks = nullptr;
    db.getSymbolTable(blocks, AcDb::kForRead);
    AcDbBlockTableRecord* model = nullptr;
    blocks->getAt(ACDB_MODEL_SPACE, model, AcDb::kForWrite);
    blocks->close();
    for (AcDbEntity* entity : entities) {
        entity->setDatabaseDefaults(&db);
        RandomLook(rng, entity);
        AcDbObjectId id;
        model->appendAcDbEntity(id, entity);
        entity->close();
    }
    model->close();
    entities.clear();
}

// A direction: horizontal, vertical, one of a few slopes, each jittered across the slope
// family width of 0.0005, or any.
inline double RandomDirection(std::mt19937& rng) {
    switch (Pick(rng, 5)) {
    case 0: return Uniform(rng, -0.0003, 0.0003);
    case 1: return kPi / 2 + Uniform(rng, -0.00005, 0.00005);
    case 2: return std::atan(0.5 + 0.0004 * Pick(rng, 3));
    case 3: return std::atan(-1.0 + Uniform(rng, -0.0006, 0.0006));
    default: return Uniform(rng, 0.0, kPi);
    }
}

// About `pieces` line pieces in runs of 1 to 6 along one line, with gaps and overlaps around
// the merge distance 0.02, over a square of side `extent`.
inline void AddBrokenLines(AcDbDatabase& db, std::mt19937& rng, int pieces, double extent) {
    std::vector<AcDbEntity*> entities;
    while (static_cast<int>(entities.size()) < pieces) {
        double a = RandomDirection(rng);
        double dx = std::cos(a), dy = std::sin(a);
        double x = Uniform(rng, 0, extent), y = Uniform(rng, 0, extent);
        int run = 1 + Pick(rng, 6);
        double along = 0.0;
        for (int k = 0; k < run; ++k) {
            double length = Pick(rng, 20) == 0 ? 0.0 : Uniform(rng, 0.5, 20.0);
            AcGePoint3d s(x + dx * along, y + dy * along, 0.0);
            along += length;
            AcGePoint3d e(x + dx * along, y + dy * along, 0.0);
            entities.push_back(Pick(rng, 3) == 0 ? new AcDbLine(e, s) : new AcDbLine(s, e));
            along += Uniform(rng, -0.5, 0.03);
        }
    }
    AppendShuffled(db, rng, entities);
}

// About `pieces` arcs: circles or arcs of a circle cut into 1 to 6 pieces, with overlaps and
// gaps around the tolerance, centres and radii scattered a little; some nearly flat arcs.
inline void AddArcPieces(AcDbDatabase& db, std::mt19937& rng, int pieces, double extent) {
    std::vector<AcDbEntity*> entities;
    while (static_cast<int>(entities.size()) < pieces) {
        AcGePoint3d center(Uniform(rng, 0, extent), Uniform(rng, 0, extent), 0.0);
        if (Pick(rng, 10) == 0) {
            double radius = Uniform(rng, 500.0, 3000.0), a = Uniform(rng, 0, 2 * kPi);
            entities.push_back(new AcDbArc(center, radius, a, a + Uniform(rng, 0.0001, 0.01)));
            continue;
        }
        double radius = Uniform(rng, 1.0, 30.0);
        int count = 1 + Pick(rng, 6);
        double sweep = Pick(rng, 3) == 0 ? 2 * kPi : Uniform(rng, 0.5, 5.5);
        double start = Uniform(rng, 0, 2 * kPi);
        for (int k = 0; k < count; ++k) {
            double a0 = start + sweep * k / count + Uniform(rng, -0.002, 0.002);
            double a1 = start + sweep * (k + 1) / count + Uniform(rng, -0.002, 0.002);
            AcGePoint3d c(center.x + Uniform(rng, -0.03, 0.03), center.y + Uniform(rng, -0.03, 0.03), 0);
            entities.push_back(new AcDbArc(c, radius + Uniform(rng, -0.03, 0.03), a0, a1));
        }
    }
    AppendShuffled(db, rng, entities);
}

// A clamped cubic spline through random control points in a box of side `size` at (x, y).
inline AcDbSpline* RandomSpline(std::mt19937& rng, double x, double y, double size) {
    int count = 4 + Pick(rng, 5);
    std::vector<AcGePoint3d> points;
    for (int i = 0; i < count; ++i)
        points.emplace_back(x + size * i / (count - 1), y + Uniform(rng, -size / 3, size / 3), 0.0);
    std::vector<double> knots(4, 0.0);
    for (int i = 1; i < count - 3; ++i) knots.push_back(i);
    for (int i = 0; i < 4; ++i) knots.push_back(count - 3);
    auto* spline = new AcDbSpline;
    spline->setNurbsData(3, false, false, false, points, knots, {});
    return spline;
}

}  // namespace random_drawings
