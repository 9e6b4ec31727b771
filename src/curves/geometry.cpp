// The pure point and circle functions of the kit. The comparisons are written out one by one
// with the strictness the clean-ups rely on; an undefined value (NaN) falls on the side each
// function documents, which is why some tests are written as "fail when above" and not as
// "pass when below".
#include <cmath>
#include <utility>

#include "curves/geometry.hpp"

namespace {

AcGePoint3d Midpoint(const AcGePoint3d& a, const AcGePoint3d& b) {
    return AcGePoint3d((a.x + b.x) * 0.5, (a.y + b.y) * 0.5, (a.z + b.z) * 0.5);
}

// The bisectors y = m1.y + k1 (x - m1.x) and y = m2.y + k2 (x - m2.x) cross at the centre.
AcGePoint3d BisectorCrossing(const AcGePoint3d& m1, const AcGePoint3d& m2, double k1, double k2,
                             double d) {
    double e = (m2.y - m1.y) - k2 * m2.x;
    return AcGePoint3d((k1 * m1.x + e) / d, m1.y + k1 * (e + k2 * m1.x) / d, 0.0);
}

// The radius from p1 to the centre in the plane, squared and rooted in single precision.
double SinglePrecisionRadius(const AcGePoint3d& p1, const AcGePoint3d& center) {
    double dx = p1.x - center.x;
    double dy = p1.y - center.y;
    float squared = static_cast<float>(dx * dx + dy * dy);
    return static_cast<double>(static_cast<float>(std::sqrt(static_cast<double>(squared))));
}

bool AllWithinRadius(const AcGePoint3d& center, double radius, const AcGePoint3dArray& points,
                     double tolerance) {
    for (const AcGePoint3d& p : points)
        if (!PointWithinRadius(center, radius, p, tolerance)) return false;
    return true;
}

using CircleMaker = bool (*)(const AcGePoint3d&, const AcGePoint3d&, const AcGePoint3d&,
                             AcGePoint3d&, double&);

// The arc test shared by the fine and the coarse form once the ends have been looked at.
bool OnArcCircle(const AcGePoint3d& p, const AcGePoint3d& a, const AcGePoint3d& m,
                 const AcGePoint3d& b, double tolerance, CircleMaker makeCircle) {
    AcGePoint3d center;
    double radius = 0.0;
    if (!makeCircle(a, m, b, center, radius)) return false;
    if (std::fabs(PointDistance(p, center) - radius) >= tolerance) return false;
    return TurnNotLeft(a, p, b) == TurnNotLeft(a, m, b);
}

}  // namespace

bool SamePoint(const AcGePoint3d& a, const AcGePoint3d& b, double tolerance) {
    return a.x > b.x - tolerance && a.x < b.x + tolerance && a.y > b.y - tolerance &&
           a.y < b.y + tolerance && a.z > b.z - tolerance && a.z < b.z + tolerance;
}

bool PointOnSegment(const AcGePoint3d& p, const AcGePoint3d& a, const AcGePoint3d& b,
                    double tolerance) {
    if (p.x > a.x + tolerance && p.x > b.x + tolerance) return false;
    if (p.x < a.x - tolerance && p.x < b.x - tolerance) return false;
    if (p.y > a.y + tolerance && p.y > b.y + tolerance) return false;
    if (p.y < a.y - tolerance && p.y < b.y - tolerance) return false;
    double A = a.x - b.x;
    double B = b.y - a.y;
    double C = b.x * a.y - a.x * b.y;
    double d = std::fabs(p.y * A + p.x * B + C) / std::sqrt(A * A + B * B);
    return d < tolerance;
}

bool TurnNotLeft(const AcGePoint3d& p, const AcGePoint3d& q, const AcGePoint3d& r) {
    return (q.x - p.x) * (r.y - q.y) - (q.y - p.y) * (r.x - q.x) <= 0.0;
}

bool CircleFromThreePoints(const AcGePoint3d& p1, const AcGePoint3d& p2, const AcGePoint3d& p3,
                           AcGePoint3d& center, double& radius) {
    AcGePoint3d m1 = Midpoint(p1, p2);
    AcGePoint3d m2 = Midpoint(p1, p3);
    double k1 = 0.0, k2 = 0.0;
    // One test on the first chord stands for both slopes.
    if (std::fabs(p2.y - p1.y) >= 0.001) {
        k1 = -(p2.x - p1.x) / (p2.y - p1.y);
        k2 = -(p3.x - p1.x) / (p3.y - p1.y);
    }
    double d = k1 - k2;
    if (std::fabs(d) < 0.01) return false;
    center = BisectorCrossing(m1, m2, k1, k2, d);
    radius = SinglePrecisionRadius(p1, center);
    return true;
}

bool CircleFromThreePointsFine(const AcGePoint3d& p1, const AcGePoint3d& p2,
                               const AcGePoint3d& p3, AcGePoint3d& center, double& radius) {
    AcGePoint3d m1 = Midpoint(p1, p2);
    AcGePoint3d m2 = Midpoint(p1, p3);
    float k1 = 0.0f, k2 = 0.0f;
    if (std::fabs(p2.y - p1.y) >= 5e-7) k1 = static_cast<float>(-(p2.x - p1.x) / (p2.y - p1.y));
    if (std::fabs(p3.y - p1.y) >= 5e-7) k2 = static_cast<float>(-(p3.x - p1.x) / (p3.y - p1.y));
    double d = static_cast<double>(k1) - static_cast<double>(k2);
    if (std::fabs(static_cast<double>(static_cast<float>(d))) < 5e-7) return false;
    center = BisectorCrossing(m1, m2, k1, k2, d);
    radius = SinglePrecisionRadius(p1, center);
    return true;
}

bool SamplesFitCircle(const AcGePoint3dArray& points, double tolerance) {
    int n = points.length();
    if (n < 3) return false;
    AcGePoint3d center;
    double radius = 0.0;
    if (!CircleFromThreePoints(points[0], points[n / 3], points[2 * n / 3], center, radius))
        return false;
    return AllWithinRadius(center, radius, points, tolerance);
}

bool PointsWithinRadius(const AcGePoint3d& center, double radius, const AcGePoint3dArray& points,
                        double tolerance) {
    if (points.isEmpty()) return false;
    return AllWithinRadius(center, radius, points, tolerance);
}

double PolarAngle(const AcGePoint3d& from, const AcGePoint3d& to, bool degrees) {
    double dx = to.x - from.x;
    double dy = to.y - from.y;
    if (dx == 0.0) {
        if (from.y <= to.y) return degrees ? 90.0 : 1.5707963267948966;
        return degrees ? 270.0 : 4.71238898038469;
    }
    double a = std::atan(dy / dx) * 57.29577951308232;
    double angle = a;
    if (dx < 0.0)
        angle = 180.0 + a;
    else if (dy < 0.0)
        angle = 360.0 + a;
    return degrees ? angle : angle * 0.017453292519943295;
}

AcGePoint3d RotateAboutPoint(const AcGePoint3d& p, const AcGePoint3d& c, double angle) {
    double w = angle * 0.017453292519943295;
    double x = (p.x - c.x) * std::cos(w) - (p.y - c.y) * std::sin(w) + c.x;
    double y = (p.y - c.y) * std::cos(w) + (p.x - c.x) * std::sin(w) + c.y;
    return AcGePoint3d(x, y, 0.0);
}

void BoundingCorners(const AcGePoint3dArray& points, AcGePoint3d& low, AcGePoint3d& high) {
    if (points.isEmpty()) return;
    low = high = points[0];
    for (const AcGePoint3d& p : points) {
        low.x = std::fmin(low.x, p.x);
        low.y = std::fmin(low.y, p.y);
        low.z = std::fmin(low.z, p.z);
        high.x = std::fmax(high.x, p.x);
        high.y = std::fmax(high.y, p.y);
        high.z = std::fmax(high.z, p.z);
    }
}

bool PointOnArc(const AcGePoint3d& p, const AcGePoint3d& a, const AcGePoint3d& m,
                const AcGePoint3d& b, double tolerance) {
    if (PointDistance(p, a) < tolerance || PointDistance(p, b) < tolerance) return true;
    return OnArcCircle(p, a, m, b, tolerance, CircleFromThreePointsFine);
}

bool PointOnArcCoarse(const AcGePoint3d& p, const AcGePoint3d& a, const AcGePoint3d& m,
                      const AcGePoint3d& b, double tolerance) {
    if (SamePoint(p, a, tolerance) || SamePoint(p, b, tolerance)) return true;
    return OnArcCircle(p, a, m, b, tolerance, CircleFromThreePoints);
}

double HeightOverChord(const AcGePoint3d& p, const AcGePoint3d& q, const AcGePoint3d& r) {
    double u = PointDistance(q, p);
    double v = PointDistance(q, r);
    double w = PointDistance(p, r);
    double cosine = (u * u + v * v - w * w) / (2.0 * u * v);
    return u * std::sqrt(1.0 - cosine * cosine);
}

double ChordBulge(const AcGePoint3d& a, const AcGePoint3d& m, const AcGePoint3d& b) {
    double value = HeightOverChord(m, a, b) / (PointDistance(a, b) * 0.5);
    double cross = (m.x - a.x) * (b.y - m.y) - (m.y - a.y) * (b.x - m.x);
    return cross > 0.0 ? value : -value;
}

void DropNearDuplicates(AcGePoint3dArray& points) {
    for (int i = 0; i < points.length() - 1; ++i) {
        int j = i + 1;
        while (j < points.length()) {
            if (NearDuplicate(points[i], points[j]))
                points.removeAt(j);
            else
                ++j;
        }
    }
}

void SortAscending(AcGeDoubleArray& values) {
    int n = values.length();
    for (int pass = 0; pass + 1 < n; ++pass)
        for (int k = 0; k + 1 < n - pass; ++k)
            if (values[k + 1] < values[k]) std::swap(values[k], values[k + 1]);
}
