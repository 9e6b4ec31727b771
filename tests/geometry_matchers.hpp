#pragma once
// Matchers for comparing geometry in tests: points within a distance, and the owned entities
// that curve operations hand back.
#include <gmock/gmock.h>

#include <memory>
#include <vector>

#include "platform/db/entity.hpp"
#include "platform/ge/point2d.hpp"
#include "platform/ge/point3d.hpp"

MATCHER_P2(IsNearPoint, expected, tolerance,
           "is within " + testing::PrintToString(tolerance) + " of (" +
               testing::PrintToString(expected.x) + ", " + testing::PrintToString(expected.y) +
               ")") {
    double d = arg.distanceTo(expected);
    *result_listener << "at distance " << d;
    return d <= tolerance;
}

inline void PrintTo(const AcGePoint3d& p, std::ostream* os) {
    *os << "(" << p.x << ", " << p.y << ", " << p.z << ")";
}
inline void PrintTo(const AcGePoint2d& p, std::ostream* os) {
    *os << "(" << p.x << ", " << p.y << ")";
}

// Takes ownership of the entities a curve operation returned in a void-pointer array.
template <typename Array>
std::vector<std::unique_ptr<AcDbEntity>> takeEntities(Array& array) {
    std::vector<std::unique_ptr<AcDbEntity>> owned;
    for (void* p : array) owned.emplace_back(static_cast<AcDbEntity*>(p));
    array.removeAll();
    return owned;
}
