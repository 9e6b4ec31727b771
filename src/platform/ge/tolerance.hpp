#pragma once
// Tolerances of the geometry library, as the host names them. The platform's own fixed
// tolerances (offset joins, intersections, quadrature) are collected in platform_tolerances.hpp.

class AcGeTol {
public:
    AcGeTol() = default;
    double equalPoint() const { return m_equalPoint; }
    double equalVector() const { return m_equalVector; }
    void setEqualPoint(double value) { m_equalPoint = value; }
    void setEqualVector(double value) { m_equalVector = value; }

private:
    double m_equalPoint = 1e-10;
    double m_equalVector = 1e-10;
};

struct AcGeContext {
    // The global tolerance every comparison uses when none is given.
    static AcGeTol gTol;
};
