#pragma once
#include <cstddef>
#include <vector>

#include "platform/db/curve.hpp"
#include "platform/db/rare_part.hpp"

// A NURBS curve: degree, knots, control points, optional weights (rational), optional fit
// points with their tolerance and end tangents. Its parameter runs over the knot range
// [knot[degree], knot[numControlPoints]].
class AcDbSpline : public AcDbCurve {
public:
    ACRX_DECLARE_MEMBERS(AcDbSpline)
    AcDbSpline() = default;

    int degree() const { return m_degree; }
    void setDegree(int d) { m_degree = d; }
    bool isRational() const { return !m_weights.empty(); }
    bool isPeriodic() const override { return m_periodic; }
    void setPeriodic(bool on) { m_periodic = on; }
    bool isClosed() const override { return m_closed; }
    void setClosed(bool on) { m_closed = on; }
    bool isPlanar() const { return m_planar; }
    void setPlanar(bool on) { m_planar = on; }
    int numControlPoints() const { return static_cast<int>(m_controlPoints.size()); }
    int numKnots() const { return static_cast<int>(m_knots.size()); }
    int numFitPoints() const { return static_cast<int>(fitPoints().size()); }
    bool hasFitData() const { return !fitPoints().empty(); }
    Acad::ErrorStatus getControlPointAt(int index, AcGePoint3d& point) const;
    Acad::ErrorStatus setControlPointAt(int index, const AcGePoint3d& point);
    Acad::ErrorStatus getFitPointAt(int index, AcGePoint3d& point) const;
    double weightAt(int index) const;
    Acad::ErrorStatus setWeightAt(int index, double weight);

    // NURBS data as stored.
    const std::vector<double>& knots() const { return m_knots; }
    std::vector<double>& knots() { return m_knots; }
    const std::vector<AcGePoint3d>& controlPoints() const { return m_controlPoints; }
    std::vector<AcGePoint3d>& controlPoints() { return m_controlPoints; }
    // Empty for a non-rational spline.
    const std::vector<double>& weights() const { return m_weights; }
    std::vector<double>& weights() { return m_weights; }
    const std::vector<AcGePoint3d>& fitPoints() const { return m_rare.get().fitPoints; }
    std::vector<AcGePoint3d>& fitPoints() { return m_rare.edit().fitPoints; }
    // Room for `count` fit points; none taken while there are none to come.
    void reserveFitPoints(std::size_t count) {
        if (count > 0) fitPoints().reserve(count);
    }
    double fitTolerance() const { return m_rare.get().fitTolerance; }
    void setFitTolerance(double t) { m_rare.set(&Rare::fitTolerance, t); }
    double knotTolerance() const { return m_rare.get().knotTolerance; }
    void setKnotTolerance(double t) { m_rare.set(&Rare::knotTolerance, t); }
    double controlPointTolerance() const { return m_rare.get().cpTolerance; }
    void setControlPointTolerance(double t) { m_rare.set(&Rare::cpTolerance, t); }
    AcGeVector3d startFitTangent() const { return m_rare.get().startTangent; }
    void setStartFitTangent(const AcGeVector3d& v) { m_rare.set(&Rare::startTangent, v); }
    AcGeVector3d endFitTangent() const { return m_rare.get().endTangent; }
    void setEndFitTangent(const AcGeVector3d& v) { m_rare.set(&Rare::endTangent, v); }
    AcGeVector3d normal() const { return m_rare.get().normal; }
    void setNormal(const AcGeVector3d& n) { m_rare.set(&Rare::normal, n); }
    // Group code 70 as read.
    int splineFlags() const { return m_flags; }
    void setSplineFlags(int flags) { m_flags = flags; }

    // Curve operations, with the parameter as the class comment defines it.
    Acad::ErrorStatus getStartParam(double& param) const override;
    Acad::ErrorStatus getEndParam(double& param) const override;
    Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const override;
    Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const override;
    Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& point) const override;
    Acad::ErrorStatus getParamAtPoint(const AcGePoint3d& point, double& param) const override;
    Acad::ErrorStatus getDistAtParam(double param, double& dist) const override;
    Acad::ErrorStatus getFirstDeriv(double param, AcGeVector3d& deriv) const override;
    Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& closest,
                                        bool extend = false) const override;
    // Not offered: eNotImplementedYet (the host answers with approximating splines).
    Acad::ErrorStatus getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const override;
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus transformBy(const AcGeMatrix3d& xform) override;
    Acad::ErrorStatus getStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus explode(AcDbVoidPtrArray& entitySet) const override;

    // Replaces the whole NURBS definition.
    Acad::ErrorStatus setNurbsData(int degree, bool rational, bool closed, bool periodic,
                                   const std::vector<AcGePoint3d>& controlPoints,
                                   const std::vector<double>& knots,
                                   const std::vector<double>& weights);

private:
    int m_degree = 3;
    bool m_periodic = false;
    bool m_closed = false;
    bool m_planar = true;
    int m_flags = 8;
    std::vector<double> m_knots;
    std::vector<AcGePoint3d> m_controlPoints;
    std::vector<double> m_weights;
    // What most splines have at the defaults: no fit data, the default tolerances, the world Z
    // axis (a spline built from control points, as drawings mostly hold them).
    struct Rare {
        std::vector<AcGePoint3d> fitPoints;
        double fitTolerance = 0.0;
        double knotTolerance = 1e-10;
        double cpTolerance = 1e-10;
        AcGeVector3d startTangent;
        AcGeVector3d endTangent;
        AcGeVector3d normal = AcGeVector3d::kZAxis;
    };
    AcDbRarePart<Rare> m_rare;
};
