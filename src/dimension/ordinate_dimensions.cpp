#include "dimension/ordinate_dimensions.hpp"

#include "dimension/view_analysis.hpp"
#include "host/module_state.hpp"
#include "pipeline/logs.hpp"
#include "platform/db/dimension.hpp"
#include "standard/db_helpers.hpp"

namespace {

void LogTrace(const std::wstring& text) { AppendLogText(text, kCgLogPath); }

// The dimension scale of every dimension of the view.
double ViewDimScale(const ModuleState& module) {
    return module.dimensionState.sheetScale * module.cadStandardIni.dimStyle.DIMSCALE;
}

void SetColors(AcDbDimension* dim, const DimStyleKeys& keys, AcCmColor& color) {
    color.setColorIndex(static_cast<std::uint16_t>(keys.DIMCLRD));
    dim->setDimclrd(color);
    color.setColorIndex(static_cast<std::uint16_t>(keys.DIMCLRE));
    dim->setDimclre(color);
    color.setColorIndex(static_cast<std::uint16_t>(keys.DIMCLRT));
    dim->setDimclrt(color);
}

void SetTolerance(AcDbDimension* dim, const ToleranceSpec& tol) {
    if (tol.off != 0) return;
    dim->setDimtol(true);
    dim->setDimtm(tol.first);
    dim->setDimtp(tol.second);
}

void AppendAndClose(AcDbEntity* entity, AcDbObjectId& id) {
    AppendToModelSpace(Module().CurrentDatabase, entity, id);
    entity->close();
}

// The corner opposite the ordinates' origin: upper right, or upper left in the left view.
AcGePoint3d OppositeCorner(const DimensionState& state) {
    return state.viewKind == 1 ? state.upperLeft.center : state.upperRight.center;
}

// Red for red holes, Other for the rest, Coner for a record on the opposite corner.
void ClassOf(const circle& record, const ModuleState& module, int& decimals, ToleranceSpec& tol) {
    const SundryKeys& sundry = module.cadStandardIni.sundry;
    if (record.color == 1) {
        decimals = sundry.Reddec;
        tol = sundry.RedToler;
    } else {
        decimals = sundry.Otherdec;
        tol = sundry.OtherToler;
    }
    if (record.center.distanceTo(OppositeCorner(module.dimensionState)) <= 1e-05) {
        decimals = sundry.Conerdec;
        tol = sundry.ConerToler;
    }
}

// The ordinates' origin: the lower right corner in the left view, the lower left elsewhere.
AcGePoint3d OrdinateOrigin(const DimensionState& state, const AcDbExtents& box) {
    if (state.viewKind == 1) return AcGePoint3d(state.x1, state.y0, box.maxPoint().z);
    return AcGePoint3d(state.x0, state.y0, state.z);
}

// One ordinate per record, its leader ending where `leaderEnd` puts the record's text.
template <typename LeaderEnd>
void WriteOrdinates(const std::vector<circle>& records, int useY, const AcGePoint3d& origin,
                    LeaderEnd leaderEnd) {
    const ModuleState& module = Module();
    for (const circle& record : records) {
        int decimals = 0;
        ToleranceSpec tol;
        ClassOf(record, module, decimals, tol);
        AcDbObjectId id;
        MakeOrdinate(id, useY, origin, record.center, leaderEnd(record), ViewDimScale(module),
                     decimals, tol);
    }
}

double& Coordinate(AcGePoint3d& p, int axis) { return axis == 0 ? p.x : p.y; }

}  // namespace

void MakeOrdinate(AcDbObjectId& outId, int useY, const AcGePoint3d& origin,
                  const AcGePoint3d& definingPoint, const AcGePoint3d& leaderEnd, double dimScale,
                  double decimals, const ToleranceSpec& tol) {
    ModuleState& module = Module();
    DimensionState& state = module.dimensionState;
    const DimStyleKeys& keys = module.cadStandardIni.dimStyle;
    const SundryKeys& sundry = module.cadStandardIni.sundry;
    auto* dim = new AcDbOrdinateDimension;
    if (useY == 0) dim->useXAxis();
    else dim->useYAxis();
    dim->setDimtxt(keys.DIMTXT);
    SetColors(dim, keys, state.color);
    const AcGePoint3d originInForce = state.haveDatum ? state.datumPoint : origin;
    dim->setOrigin(originInForce);
    dim->setDefiningPoint(definingPoint);
    dim->setDimtzin(keys.DIMTZIN);
    dim->setDimtdec(keys.DIMTDEC);
    dim->setDimtfac(keys.DIMTFAC);
    dim->setDimtolj(keys.DIMTOLJ);
    ToleranceSpec tolerance = tol;
    double places = decimals;
    if (originInForce.distanceTo(definingPoint) <= 1e-05) {
        tolerance = sundry.BaseToler;
        places = sundry.Basedec;
    }
    SetTolerance(dim, tolerance);
    dim->setDimdec(static_cast<int>(places));
    dim->setLeaderEndPoint(leaderEnd);
    dim->setDimscale(dimScale);
    AppendAndClose(dim, outId);
}

void MakeOutlineDimension(const AcGePoint3d& xLine1, const AcGePoint3d& xLine2,
                          const AcGePoint3d& dimLine, double rotation, double dimScale) {
    ModuleState& module = Module();
    const DimStyleKeys& keys = module.cadStandardIni.dimStyle;
    const SundryKeys& sundry = module.cadStandardIni.sundry;
    auto* dim = new AcDbRotatedDimension;
    dim->setDatabaseDefaults(module.CurrentDatabase);
    dim->setXLine1Point(xLine1);
    dim->setXLine2Point(xLine2);
    dim->setRotation(rotation);
    dim->setDimLinePoint(dimLine);
    dim->setDimtxt(keys.DIMTXT);
    SetColors(dim, keys, module.dimensionState.color);
    dim->setDimasz(keys.DIMASZ);
    dim->setDimzin(keys.DIMZIN);
    dim->setDimscale(dimScale);
    dim->setDimlwd(static_cast<AcDb::LineWeight>(keys.DIMLWD));
    dim->setDimlwe(static_cast<AcDb::LineWeight>(keys.DIMLWE));
    dim->setDimexe(keys.DIMEXE);
    dim->setDimexo(keys.DIMEXO);
    dim->setDimgap(keys.DIMGAP);
    dim->setDimtad(keys.DIMTAD);
    dim->setDimjust(keys.DIMJUST);
    dim->setDimjust(keys.DIMJUST);
    dim->setDimtih(keys.DIMTIH);
    dim->setDimtoh(keys.DIMTOH);
    dim->setDimtzin(keys.DIMTZIN);
    dim->setDimtdec(keys.DIMTDEC);
    dim->setDimtfac(keys.DIMTFAC);
    dim->setDimtolj(keys.DIMTOLJ);
    dim->setDimdec(sundry.Eveldec);
    SetTolerance(dim, sundry.EvelToler);
    AcDbObjectId id;
    AppendAndClose(dim, id);
}

OutlinePoints ComputeOutlinePoints(const DimensionState& state) {
    return {AcGePoint3d(state.x0 - 10.0, state.midY, state.z),
            AcGePoint3d(state.x1 + 10.0, state.midY, state.z),
            AcGePoint3d(state.midX, state.y0 - 10.0, state.z),
            AcGePoint3d(state.midX, state.y1 + 10.0, state.z)};
}

void DimensionOutlineWithoutCircles(const OutlinePoints& points) {
    const ModuleState& module = Module();
    const DimensionState& state = module.dimensionState;
    const double scale = ViewDimScale(module);
    const double quarter = 1.5707963267948966;
    const AcGePoint3d ll = state.lowerLeft.center, lr = state.lowerRight.center;
    const AcGePoint3d ul = state.upperLeft.center, ur = state.upperRight.center;
    if (state.viewKind == 0) {
        LogTrace(L"无圆 主视图\n");
        MakeOutlineDimension(ll, ul, points.left, quarter, scale);
        MakeOutlineDimension(ul, ur, points.top, 0.0, scale);
    } else if (state.viewKind == 1) {
        LogTrace(L"无圆 左视图\n");
        MakeOutlineDimension(lr, ll, points.bottom, 0.0, scale);
    } else if (state.viewKind == 2) {
        LogTrace(L"无圆 附视图\n");
        MakeOutlineDimension(lr, ur, points.right, quarter, scale);
    }
}

void DimensionOutlineWithCircles() {
    ModuleState& module = Module();
    DimensionState& state = module.dimensionState;
    const SundryKeys& sundry = module.cadStandardIni.sundry;
    const double o = state.ordinateOffset;
    const double scale = ViewDimScale(module);
    const bool left = state.viewKind == 1;
    const AcGePoint3d origin = left ? state.lowerRight.center : state.lowerLeft.center;
    double d1 = -1.0, d2 = -1.0;
    if (!left) LogTrace(L"有圆 左视图和附视图\n");
    if (state.haveDatum) {
        d1 = state.datumPoint.distanceTo(left ? state.upperLeft.center : state.lowerLeft.center);
        d2 = state.datumPoint.distanceTo(left ? state.lowerRight.center : state.upperRight.center);
        // A datum on the origin corner is no datum.
        if ((left ? d2 : d1) < 0.001) state.haveDatum = false;
    }
    if (left) LogTrace(L"有圆 主视图\n");
    const double x0 = state.x0, y0 = state.y0, x1 = state.x1, y1 = state.y1, z = state.z;
    AcDbObjectId id;
    auto corner = [&](int useY, const AcGePoint3d& at, const AcGePoint3d& leaderEnd) {
        MakeOrdinate(id, useY, origin, at, leaderEnd, scale, sundry.Conerdec, sundry.ConerToler);
    };
    if (left) {
        corner(1, state.upperLeft.center, AcGePoint3d(x0 - o, y1, z));
        corner(0, state.upperLeft.center, AcGePoint3d(x0, y1 + o, z));
        corner(1, state.lowerRight.center, AcGePoint3d(x1 + o, y0, z));
        corner(0, state.lowerRight.center, AcGePoint3d(x1, y0 - o, z));
    } else {
        corner(1, state.lowerLeft.center, AcGePoint3d(x0 - o, y0, z));
        corner(0, state.lowerLeft.center, AcGePoint3d(x0, y0 - o, z));
        corner(1, state.upperRight.center, AcGePoint3d(x1 + o, y1, z));
        corner(0, state.upperRight.center, AcGePoint3d(x1, y1 + o, z));
    }
    if (1e-06 < d1 && 0.001 < d2) {
        const AcGePoint3d datum = state.datumPoint;
        MakeOrdinate(id, 1, datum, datum, AcGePoint3d(x0 - o, datum.y, datum.z), scale,
                     sundry.Conerdec, sundry.ConerToler);
        MakeOrdinate(id, 0, datum, datum, AcGePoint3d(datum.x, y0 - o, datum.z), scale,
                     sundry.Conerdec, sundry.ConerToler);
    }
}

void WriteXOrdinates(std::vector<circle>& top, std::vector<circle>& bottom, const AcDbExtents& box) {
    const DimensionState& state = Module().dimensionState;
    SortCirclesByX(top);
    SortCirclesByX(bottom);
    SpreadTextPositions(bottom, 0);
    SpreadTextPositions(top, 0);
    const AcGePoint3d origin = OrdinateOrigin(state, box);
    const double offset = state.ordinateOffset;
    WriteOrdinates(top, 0, origin, [&](const circle& c) {
        return AcGePoint3d(c.textPos.x, state.y1 + offset, 0.0);
    });
    WriteOrdinates(bottom, 0, origin, [&](const circle& c) {
        return AcGePoint3d(c.textPos.x, state.y0 - offset, 0.0);
    });
}

void WriteYOrdinates(std::vector<circle>& left, std::vector<circle>& right, const AcDbExtents& box) {
    const DimensionState& state = Module().dimensionState;
    SortCirclesByY(left);
    SortCirclesByY(right);
    SpreadTextPositions(left, 1);
    SpreadTextPositions(right, 1);
    const AcGePoint3d origin = OrdinateOrigin(state, box);
    const double offset = state.ordinateOffset;
    WriteOrdinates(left, 1, origin, [&](const circle& c) {
        return AcGePoint3d(state.x0 - offset, c.textPos.y, 0.0);
    });
    WriteOrdinates(right, 1, origin, [&](const circle& c) {
        return AcGePoint3d(state.x1 + offset, c.textPos.y, 0.0);
    });
}

void SpreadTextPositions(std::vector<circle>& list, int axis) {
    const double pitch = Module().dimensionState.textPitch;
    bool moved = true;
    while (moved) {
        moved = false;
        for (size_t i = 0; i + 1 < list.size(); ++i) {
            double& a = Coordinate(list[i].textPos, axis);
            double& b = Coordinate(list[i + 1].textPos, axis);
            if (b - a < pitch) {
                a = a - pitch * 0.5;
                b = b + pitch * 0.5;
                moved = true;
            }
        }
    }
}
