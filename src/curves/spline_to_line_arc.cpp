// Splines and ellipses that are whole lines, arcs or circles are replaced by those.
#include "curves/spline_to_line_arc.hpp"

#include <cmath>

#include "cleanup/class_interface_data.hpp"
#include "curves/curve_edit.hpp"
#include "curves/geometry.hpp"
#include "platform/db/circle.hpp"

namespace {

void ReadSplineToLineAndArcSettings(SplineToLineAndArcSettings& settings) {
    std::wstring file = CadLineIniPath(CleanupGlobals->UserPath);
    IniReadBool(file, L"SplineToLineAndArc", L"BolOpen", settings.BolOpen);
    IniReadString(file, L"public", L"StrDottedLineType", settings.dottedLinetype);
    IniReadString(file, L"public", L"StrSolidLineType", settings.solidLinetype);
    IniReadDouble(file, L"SplineToLineAndArc", L"ToleranceLine", settings.ToleranceLine);
    IniReadDouble(file, L"SplineToLineAndArc", L"ToleranceArc", settings.ToleranceArc);
}

int SampleCount(const AcDbCurve* curve) {
    AcGePoint3dArray stretch;
    curve->getStretchPoints(stretch);
    int count = stretch.length();
    if (count < 10) return 10;
    if (count > 30) return 30;
    return count;
}

AcGePoint3d PointAtParam(const AcDbCurve* curve, double param) {
    AcGePoint3d point;
    curve->getPointAtParam(param, point);
    return point;
}

// The replacement takes the place of the source: the source is erased, the new entity gets its
// layer, scale and colour, goes to the model space, and then gets its linetype by id.
void ReplaceCurve(AcDbCurve* source, AcDbEntity* replacement, AcDbDatabase* database) {
    EntityLook look = LookOf(source);
    int color = EffectiveColorIndex(source);
    source->erase(true);
    source->close();
    replacement->setLayer(look.layer, true);
    replacement->setLinetypeScale(look.linetypeScale, true);
    replacement->setColorIndex(static_cast<std::uint16_t>(color), true);
    AcDbObjectId id = AppendToModelOf(database, replacement);
    SetLinetypeOfId(id, look.linetype);
}

void ConvertOne(AcDbObjectId id, const SplineToLineAndArcSettings& settings) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForWrite, false) != Acad::eOk) return;
    auto* curve = AcDbCurve::cast(entity);
    AcDbEntity* replacement = nullptr;
    if (curve != nullptr) {
        replacement = FitLine(curve, settings.ToleranceLine);
        if (replacement == nullptr) replacement = FitArc(curve, settings.ToleranceArc);
    }
    if (replacement == nullptr) {
        entity->close();
        return;
    }
    ReplaceCurve(curve, replacement, settings.database);
}

}  // namespace

AcGePoint3dArray SampleCurve(const AcDbCurve* curve) {
    int n = SampleCount(curve);
    double sp = 0.0, ep = 0.0;
    curve->getStartParam(sp);
    curve->getEndParam(ep);
    AcGePoint3dArray samples;
    for (int i = 0; i < n; ++i) {
        AcGePoint3d point;
        if (i == n - 1 && curve->getEndPoint(point) == Acad::eOk) samples.append(point);
        if (curve->getPointAtParam((ep - sp) / (n - 1) * i + sp, point) == Acad::eOk) samples.append(point);
    }
    return samples;
}

AcDbEntity* FitLine(const AcDbCurve* curve, double tolerance) {
    AcGePoint3dArray samples = SampleCurve(curve);
    if (samples.isEmpty()) return nullptr;
    const AcGePoint3d& f = samples.first();
    const AcGePoint3d& l = samples.last();
    double A = l.y - f.y, B = f.x - l.x, C = l.x * f.y - f.x * l.y;
    double L = std::sqrt(A * A + B * B);
    for (const AcGePoint3d& p : samples)
        if (std::fabs(p.x * A + p.y * B + C) / L >= tolerance) return nullptr;
    AcDbLine* line = nullptr;
    MakeLine(f, l, line);
    if (CurveLength(line) < tolerance) {
        delete line;  // never appended
        return nullptr;
    }
    return line;
}

AcDbEntity* FitArc(const AcDbCurve* curve, double tolerance) {
    AcGePoint3dArray samples = SampleCurve(curve);
    if (!SamplesFitCircle(samples, tolerance)) return nullptr;
    double sp = 0.0, ep = 0.0;
    curve->getStartParam(sp);
    curve->getEndParam(ep);
    AcGePoint3d s = PointAtParam(curve, sp);
    AcGePoint3d e = PointAtParam(curve, ep);
    AcGePoint3d m = PointAtParam(curve, (ep - sp) * 0.5 + sp);
    bool closed = SamePoint(s, e, tolerance);
    if (closed) {
        int count = samples.length();
        s = samples[0];
        m = samples[count / 3];
        e = samples[2 * count / 3];
    }
    AcGePoint3d center;
    double radius = 0.0;
    if (!CircleFromThreePoints(s, m, e, center, radius)) return nullptr;
    AcDbEntity* fitted = nullptr;
    if (closed)
        fitted = new AcDbCircle(center, AcGeVector3d(0.0, 0.0, 1.0), radius);
    else
        MakeArcThroughPoints(s, m, e, fitted);
    double fittedLength = CurveLength(AcDbCurve::cast(fitted));
    double sourceLength = CurveLength(curve);
    if (!(0.9 * sourceLength <= fittedLength && fittedLength <= 1.1 * sourceLength)) {
        delete fitted;  // never appended
        return nullptr;
    }
    return fitted;
}

void ConvertSplinesToLinesAndArcs(AcDbObjectIdArray ids, AcDbDatabase* database) {
    AppendCleanupLog(L"样条曲线转直线和圆弧开始\n");
    SplineToLineAndArcSettings& settings = *CleanupGlobals->splineToLineAndArc;
    ReadSplineToLineAndArcSettings(settings);
    if (!settings.BolOpen) return;
    settings.database = database;
    AcDbObjectIdArray curves;
    for (const AcDbObjectId& id : ids) {
        int kind = EntityKindOfId(id);
        if (kind == 5 || kind == 16) curves.append(id);
    }
    for (const AcDbObjectId& id : curves) ConvertOne(id, settings);
    AppendCleanupLog(L"样条曲线转直线和圆弧结束\n");
}

void ClassInterfaceData::FunSplineToLineAndArc() {
    ConvertSplinesToLinesAndArcs(GetModelSpaceIds(acdbHostApplicationServices()->workingDatabase()),
                                 database);
}
