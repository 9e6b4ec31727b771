#pragma once
// The thickness and normal of a planar entity (line, circle, arc, point, light-weight polyline,
// text). Nearly every entity of a drawing has the default ones, no thickness and the world Z
// axis: those cost a null pointer, not 32 bytes, and only an entity that differs holds them. A
// value is the default only when it is that value bit for bit, so that a -0.0 read from a file
// is kept as read.
#include <cstring>
#include <memory>

#include "platform/ge/vector3d.hpp"

class AcDbExtrusion {
public:
    AcDbExtrusion() = default;
    AcDbExtrusion(const AcDbExtrusion& other)
        : m_set(other.m_set ? std::make_unique<Set>(*other.m_set) : nullptr) {}
    AcDbExtrusion& operator=(const AcDbExtrusion& other) {
        if (this != &other) m_set = other.m_set ? std::make_unique<Set>(*other.m_set) : nullptr;
        return *this;
    }
    AcDbExtrusion(AcDbExtrusion&&) noexcept = default;
    AcDbExtrusion& operator=(AcDbExtrusion&&) noexcept = default;

    double thickness() const { return m_set ? m_set->thickness : 0.0; }
    AcGeVector3d normal() const { return m_set ? m_set->normal : AcGeVector3d::kZAxis; }
    void setThickness(double thickness) {
        if (m_set || !Same(thickness, 0.0)) set().thickness = thickness;
    }
    void setNormal(const AcGeVector3d& normal) {
        if (m_set || !Same(normal, AcGeVector3d::kZAxis)) set().normal = normal;
    }

private:
    struct Set {
        double thickness = 0.0;
        AcGeVector3d normal = AcGeVector3d::kZAxis;
    };
    template <typename T>
    static bool Same(const T& a, const T& b) {
        return std::memcmp(&a, &b, sizeof(T)) == 0;
    }
    Set& set() {
        if (!m_set) m_set = std::make_unique<Set>();
        return *m_set;
    }
    std::unique_ptr<Set> m_set;
};
