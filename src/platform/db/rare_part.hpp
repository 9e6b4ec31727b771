#pragma once
// A part of an object's values that nearly every object of its kind has at their defaults: a null
// pointer until one of them differs from its default, then held whole. A value is its default
// only when it is that value bit for bit, so that a -0.0 read from a file is kept as read. Copies
// hold their own part.
#include <cstring>
#include <memory>

template <typename Part>
class AcDbRarePart {
public:
    AcDbRarePart() = default;
    AcDbRarePart(const AcDbRarePart& other) : m_part(Copy(other)) {}
    AcDbRarePart& operator=(const AcDbRarePart& other) {
        if (this != &other) m_part = Copy(other);
        return *this;
    }
    AcDbRarePart(AcDbRarePart&&) noexcept = default;
    AcDbRarePart& operator=(AcDbRarePart&&) noexcept = default;

    // Whether the part takes memory: some value has been set otherwise than to its default.
    bool held() const { return m_part != nullptr; }
    // The values: the defaults while none is held.
    const Part& get() const { return m_part ? *m_part : Defaults(); }
    // The values to change, held from now on.
    Part& edit() {
        if (!m_part) m_part = std::make_unique<Part>();
        return *m_part;
    }
    // Sets one plain value (a number or a vector of numbers), held only when it or another
    // value is not the default.
    template <typename T>
    void set(T Part::*member, const T& value) {
        if (m_part || std::memcmp(&value, &(Defaults().*member), sizeof(T)) != 0) edit().*member = value;
    }

private:
    static const Part& Defaults() {
        static const Part defaults;
        return defaults;
    }
    static std::unique_ptr<Part> Copy(const AcDbRarePart& other) {
        return other.m_part ? std::make_unique<Part>(*other.m_part) : nullptr;
    }
    std::unique_ptr<Part> m_part;
};
