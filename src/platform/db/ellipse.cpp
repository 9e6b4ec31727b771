#include "platform/db/ellipse.hpp"

#include <cmath>

#include "platform/ge/angle.hpp"

ACRX_DEFINE_MEMBERS(AcDbEllipse, AcDbCurve, L"ELLIPSE")

using tavrik::ge::kTwoPi;
using tavrik::ge::wrapTwoPi;

AcGeVector3d AcDbEllipse::minorAxis() const {
    return m_normal.crossProduct(m_majorAxis).normal() * (m_majorAxis.length() * m_ratio);
}

Acad::ErrorStatus AcDbEllipse::set(const AcGePoint3d& center, const AcGeVector3d& unitNormal,
                                   const AcGeVector3d& majorAxis, double radiusRatio,
                                   double startParam, double endParam) {
    if (majorAxis.isZeroLength() || unitNormal.isZeroLength() || radiusRatio <= 0.0 ||
        radiusRatio > 1.0)
        return Acad::eInvalidInput;
    m_center = center;
    // A normal of unit length is kept as given (a file's own may differ from ours in its last bit).
    m_normal = unitNormal.isUnitLength() ? unitNormal : unitNormal.normal();
    m_majorAxis = majorAxis;
    m_ratio = radiusRatio;
    m_startParam = startParam;
    m_endParam = endParam;
    return Acad::eOk;
}

// The polar angle of the point at eccentric angle t, measured from the major axis.
double AcDbEllipse::startAngle() const {
    return wrapTwoPi(std::atan2(m_ratio * std::sin(m_startParam), std::cos(m_startParam)));
}

double AcDbEllipse::endAngle() const {
    double angle = wrapTwoPi(std::atan2(m_ratio * std::sin(m_endParam), std::cos(m_endParam)));
    // A full ellipse ends where it starts, one turn on.
    return (isFull() && angle <= startAngle()) ? angle + kTwoPi : angle;
}

Acad::ErrorStatus AcDbEllipse::setStartAngle(double angle) {
    m_startParam = wrapTwoPi(std::atan2(std::sin(angle) / m_ratio, std::cos(angle)));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::setEndAngle(double angle) {
    m_endParam = wrapTwoPi(std::atan2(std::sin(angle) / m_ratio, std::cos(angle)));
    if (m_endParam <= m_startParam) m_endParam += kTwoPi;
    return Acad::eOk;
}

bool AcDbEllipse::isFull() const { return std::fabs(m_endParam - m_startParam - kTwoPi) < 1e-12; }
