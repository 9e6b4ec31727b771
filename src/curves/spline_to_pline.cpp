// Splines and partial ellipses become polylines of arcs and straight pieces.
#include "curves/spline_to_pline.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

#include "cleanup/class_interface_data.hpp"
#include "curves/curve_edit.hpp"
#include "curves/geometry.hpp"
#include "platform/db/ellipse.hpp"
#include "platform/db/polyline.hpp"

namespace {

// Every key is read; the switch is forced on, and division, layer filter and colours are not
// used by any decision.
void ReadSplineToPlineSettings(SplineToPlineSettings& settings, AcDbDatabase* database) {
    std::wstring file = CadLineIniPath(CleanupGlobals->UserPath);
    IniReadString(file, L"public", L"StrDottedLineType", settings.dottedLinetype);
    IniReadString(file, L"public", L"StrSolidLineType", settings.solidLinetype);
    IniReadBool(file, L"SplineToPline", L"BolOpen", settings.BolOpen);
    settings.BolOpen = true;
    IniReadInt(file, L"SplineToPline", L"EqualDivision", settings.EqualDivision);
    IniReadDouble(file, L"SplineToPline", L"Tolerance", settings.Tolerance);
    IniReadString(file, L"SplineToPline", L"StrFilterLayer", settings.StrFilterLayer);
    std::wstring colors;
    IniReadString(file, L"SplineToPline", L"ColorInspect", colors);
    ColorListFromAnsiText(colors, settings.colors);
    settings.database = database;
}

// A complete ellipse: its end angles differ by less than t degrees from 0 or 360, strictly.
bool IsCompleteEllipse(AcDbObjectId id, double t, bool& opened) {
    AcDbEntity* entity = nullptr;
    opened = acdbOpenAcDbEntity(entity, id, AcDb::kForWrite, false) == Acad::eOk;
    if (!opened) return false;
    bool complete = false;
    if (const auto* ellipse = AcDbEllipse::cast(entity)) {
        double v = std::fabs(ellipse->startAngle() * 57.29577951308232 -
                             ellipse->endAngle() * 57.29577951308232);
        complete = (v > -t && v < t) || (v > 360 - t && v < 360 + t);
    } else {
        opened = false;  // no ellipse: passed over like an entity that does not open
    }
    entity->close();
    return complete;
}

void ReplaceBySegments(AcDbObjectId id, double tolerance) {
    AcDbObjectId polyline = SegmentCurve(id, tolerance);
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, polyline, AcDb::kForRead, false) != Acad::eOk) return;
    entity->close();
    EraseById(id);
}

// The points of one curve by parameter. Each try halves the span from its start, so that half
// of its samples and its end were read by the try before (the parameters come out equal to the
// last bit). Readings are kept under their exact parameter values, each in the slot that its
// value hashes to, so that a look-up costs one comparison; a newer reading takes the slot of an
// older one. Reading a point again would give the same point. A reading that fails is not
// kept, and is tried again each time.
struct CurvePoints {
    static constexpr size_t kSlots = 128;  // a power of two, some four tries' worth of readings
    const AcDbCurve* curve = nullptr;
    bool thrifty = true;  // keeps its readings; false for the plain walk
    std::array<std::uint64_t, kSlots> params{};
    std::array<AcGePoint3d, kSlots> points{};
    std::array<bool, kSlots> filled{};
};

size_t SlotOf(std::uint64_t key) {
    key ^= key >> 31;
    key *= 0x9E3779B97F4A7C15ull;
    return static_cast<size_t>(key >> 57) & (CurvePoints::kSlots - 1);
}

Acad::ErrorStatus PointAt(CurvePoints& points, double param, AcGePoint3d& point) {
    if (!points.thrifty) return points.curve->getPointAtParam(param, point);
    const std::uint64_t key = std::bit_cast<std::uint64_t>(param);
    const size_t slot = SlotOf(key);
    if (points.filled[slot] && points.params[slot] == key) {
        point = points.points[slot];
        return Acad::eOk;
    }
    Acad::ErrorStatus status = points.curve->getPointAtParam(param, point);
    if (status == Acad::eOk) {
        points.params[slot] = key;
        points.points[slot] = point;
        points.filled[slot] = true;
    }
    return status;
}

// The samples of a span: 30 points from sp on, the point at ep left out, near duplicates
// dropped.
AcGePoint3dArray SpanSamples(CurvePoints& curve, double sp, double ep) {
    AcGePoint3dArray samples;
    for (int i = 0; i < 30; ++i) {
        AcGePoint3d point;
        if (PointAt(curve, sp + (ep - sp) / 30 * i, point) == Acad::eOk) samples.append(point);
    }
    DropNearDuplicates(samples);
    return samples;
}

// How a span from a over m to p is taken: straight, as an arc with its bulge, or not at all
// (too long: halve it).
enum class Span { Straight, Arc, TooLong };

Span FitSpanPlain(CurvePoints& curve, double sp, double ep, const AcGePoint3d& a, const AcGePoint3d& m,
                  const AcGePoint3d& p, double tolerance) {
    AcGePoint3dArray samples = SpanSamples(curve, sp, ep);
    if (samples.length() <= 2) return Span::Straight;
    AcGePoint3d center;
    double radius = 0.0;
    if (!CircleFromThreePointsFine(a, m, p, center, radius)) return Span::Straight;
    // The fixed 0.01 first: the effective tolerance is the smaller of the two.
    if (PointsWithinRadius(center, radius, samples, 0.01) &&
        PointsWithinRadius(center, radius, samples, tolerance))
        return Span::Arc;
    return Span::TooLong;
}

// The same decision, reading no more samples than it needs. Without a circle the span is
// straight however many samples it has. Otherwise the samples are read in order and thinned as
// they come: a sample outlives the dropping of near duplicates exactly when no earlier survivor
// lies near it, so the survivors of the first samples are final. Once three survivors stand and
// one of them lies outside either band, the span is too long whatever the rest would be.
Span FitSpanThrifty(CurvePoints& curve, double sp, double ep, const AcGePoint3d& a, const AcGePoint3d& m,
                    const AcGePoint3d& p, double tolerance) {
    AcGePoint3d center;
    double radius = 0.0;
    if (!CircleFromThreePointsFine(a, m, p, center, radius)) return Span::Straight;
    std::array<AcGePoint3d, 30> kept;
    size_t count = 0;
    bool outside = false;
    for (int i = 0; i < 30; ++i) {
        AcGePoint3d point;
        if (PointAt(curve, sp + (ep - sp) / 30 * i, point) != Acad::eOk) continue;
        auto near = [&](const AcGePoint3d& k) { return NearDuplicate(k, point); };
        if (std::any_of(kept.begin(), kept.begin() + count, near)) continue;
        kept[count++] = point;
        outside = outside || !PointWithinRadius(center, radius, point, 0.01) ||
                  !PointWithinRadius(center, radius, point, tolerance);
        if (outside && count > 2) return Span::TooLong;
    }
    if (count <= 2) return Span::Straight;
    return outside ? Span::TooLong : Span::Arc;
}

Span FitSpan(CurvePoints& curve, double sp, double ep, const AcGePoint3d& a, const AcGePoint3d& m,
             const AcGePoint3d& p, double tolerance) {
    if (curve.thrifty) return FitSpanThrifty(curve, sp, ep, a, m, p, tolerance);
    return FitSpanPlain(curve, sp, ep, a, m, p, tolerance);
}

// The walk over the parameter range: vertices and the bulges of the spans between them.
void WalkSpans(const AcDbCurve* source, double tolerance, AcGePoint3dArray& vertices,
               AcGeDoubleArray& bulges) {
    CurvePoints curve;
    curve.curve = source;
    curve.thrifty = SegmentWalkReads == SegmentReads::Thrifty;
    double sp = 0.0, ep = 0.0;
    source->getStartParam(sp);
    source->getEndParam(ep);
    const double whole = ep;
    AcGePoint3d start, a, p, m;
    source->getStartPoint(start);
    vertices.append(start);
    bool closed = false;
    while (true) {
        double mid = (ep - sp) * 0.5 + sp;
        PointAt(curve, sp, a);
        PointAt(curve, ep, p);
        PointAt(curve, mid, m);
        if (PointDistance(a, p) < 0.00001) {
            if (closed) return;
            closed = true;  // the first span whose ends meet is halved once
            ep = mid;
            continue;
        }
        Span span = FitSpan(curve, sp, ep, a, m, p, tolerance);
        if (span == Span::TooLong) {
            ep = mid;
            continue;
        }
        vertices.append(p);
        bulges.append(span == Span::Arc ? ChordBulge(a, m, p) : 0.0);
        if (std::fabs(ep - whole) < 0.00001) {
            bulges.append(0.0);
            return;
        }
        sp = ep;
        ep = whole;
    }
}

// False when the polyline does not open.
bool CopyLook(AcDbObjectId id, const EntityLook& look) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite, false) != Acad::eOk) return false;
    entity->setLayer(look.layer, true);
    entity->setLinetype(look.linetype, true);
    entity->setColorIndex(static_cast<std::uint16_t>(look.colorIndex), true);
    entity->setLinetypeScale(look.linetypeScale, true);
    entity->close();
    return true;
}

}  // namespace

SegmentReads SegmentWalkReads = SegmentReads::Thrifty;

AcDbObjectId MakePolylineEntity(const AcGePoint3dArray& vertices, const AcGeDoubleArray& bulges) {
    int n = vertices.length();
    if (n < 2) return AcDbObjectId();
    double d = PointDistance(vertices[0], vertices[n - 1]);
    if (d < 0.02 && n == 2) return AcDbObjectId();
    auto* polyline = new AcDbPolyline(static_cast<unsigned int>(n));
    for (int i = 0; i < n; ++i) {
        double bulge = i == n - 1 ? 0.0 : bulges[i];
        polyline->addVertexAt(static_cast<unsigned int>(i), AcGePoint2d(vertices[i].x, vertices[i].y),
                              bulge, 0.0, 0.0);
    }
    if (d < 0.02) {
        polyline->removeVertexAt(static_cast<unsigned int>(n - 1));
        polyline->setClosed(true);
    }
    return AppendToModelOf(acdbHostApplicationServices()->workingDatabase(), polyline);
}

AcDbObjectId SegmentCurve(AcDbObjectId id, double tolerance) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite, false) != Acad::eOk) return AcDbObjectId();
    const auto* curve = AcDbCurve::cast(entity);
    if (curve == nullptr) {
        entity->close();
        return AcDbObjectId();
    }
    AcGePoint3dArray vertices;
    AcGeDoubleArray bulges;
    WalkSpans(curve, tolerance, vertices, bulges);
    AcDbObjectId polyline = MakePolylineEntity(vertices, bulges);
    if (!polyline.isNull() && !CopyLook(polyline, LookOf(entity))) polyline = AcDbObjectId();
    entity->close();
    return polyline;
}

void ConvertSplinesToPlines(AcDbObjectIdArray ids, AcDbDatabase* database) {
    AppendCleanupLog(L"样条曲线转多段线开始\n");
    SplineToPlineSettings& settings = *CleanupGlobals->splineToPline;
    ReadSplineToPlineSettings(settings, database);
    for (const AcDbObjectId& id : ids) {
        int kind = EntityKindOfId(id);
        if (kind == 16) {
            bool opened = false;
            if (IsCompleteEllipse(id, settings.Tolerance, opened) || !opened) continue;
            ReplaceBySegments(id, settings.Tolerance);
        } else if (kind == 5) {
            ReplaceBySegments(id, settings.Tolerance);
        }
    }
    AppendCleanupLog(L"样条曲线转多段线结束\n");
}

void ClassInterfaceData::FunSplineToPline() {
    ConvertSplinesToPlines(GetModelSpaceIds(acdbHostApplicationServices()->workingDatabase()),
                           database);
}
