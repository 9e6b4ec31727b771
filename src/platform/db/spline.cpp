#include "platform/db/spline.hpp"

ACRX_DEFINE_MEMBERS(AcDbSpline, AcDbCurve, L"SPLINE")

Acad::ErrorStatus AcDbSpline::getControlPointAt(int index, AcGePoint3d& point) const {
    if (index < 0 || index >= numControlPoints()) return Acad::eInvalidIndex;
    point = m_controlPoints[static_cast<std::size_t>(index)];
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setControlPointAt(int index, const AcGePoint3d& point) {
    if (index < 0 || index >= numControlPoints()) return Acad::eInvalidIndex;
    m_controlPoints[static_cast<std::size_t>(index)] = point;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getFitPointAt(int index, AcGePoint3d& point) const {
    if (index < 0 || index >= numFitPoints()) return Acad::eInvalidIndex;
    point = fitPoints()[static_cast<std::size_t>(index)];
    return Acad::eOk;
}

double AcDbSpline::weightAt(int index) const {
    if (m_weights.empty() || index < 0 || index >= static_cast<int>(m_weights.size())) return 1.0;
    return m_weights[static_cast<std::size_t>(index)];
}

Acad::ErrorStatus AcDbSpline::setWeightAt(int index, double weight) {
    if (index < 0 || index >= numControlPoints() || weight <= 0.0) return Acad::eInvalidInput;
    if (m_weights.empty()) m_weights.assign(m_controlPoints.size(), 1.0);
    m_weights[static_cast<std::size_t>(index)] = weight;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setNurbsData(int degree, bool rational, bool closed, bool periodic,
                                           const std::vector<AcGePoint3d>& controlPoints,
                                           const std::vector<double>& knots,
                                           const std::vector<double>& weights) {
    if (degree < 1 || controlPoints.size() < static_cast<std::size_t>(degree) + 1 ||
        knots.size() != controlPoints.size() + static_cast<std::size_t>(degree) + 1 ||
        (rational && weights.size() != controlPoints.size()))
        return Acad::eInvalidInput;
    m_degree = degree;
    m_closed = closed;
    m_periodic = periodic;
    m_controlPoints = controlPoints;
    m_knots = knots;
    m_weights = rational ? weights : std::vector<double>{};
    if (hasFitData()) fitPoints().clear();
    return Acad::eOk;
}
