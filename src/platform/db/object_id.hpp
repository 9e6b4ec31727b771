#pragma once
#include <cstdint>
#include <functional>
#include <string>

#include "platform/ge/array.hpp"

class AcDbDatabase;
class AcDbObject;
class AcRxClass;
struct AcDbStub;

// A drawing object's handle: its permanent 64-bit name inside one database.
class AcDbHandle {
public:
    constexpr AcDbHandle() = default;
    constexpr AcDbHandle(std::uint64_t value) : m_value(value) {}  // NOLINT: host shape
    std::uint64_t value() const { return m_value; }
    bool isNull() const { return m_value == 0; }
    void setNull() { m_value = 0; }
    // Upper-case hexadecimal, as drawing files write handles.
    std::wstring toString() const;
    bool operator==(const AcDbHandle& h) const { return m_value == h.m_value; }
    auto operator<=>(const AcDbHandle& h) const = default;
    AcDbHandle& operator++() { ++m_value; return *this; }

private:
    std::uint64_t m_value = 0;
};

// A session-long reference to a database object. Ids stay valid while their database lives;
// an id of an erased object still compares equal to itself and reports isErased().
class AcDbObjectId {
public:
    constexpr AcDbObjectId() = default;
    explicit AcDbObjectId(AcDbStub* stub) : m_stub(stub) {}

    static const AcDbObjectId kNull;

    bool isNull() const { return m_stub == nullptr; }
    void setNull() { m_stub = nullptr; }
    bool isValid() const;
    bool isErased() const;
    AcDbHandle handle() const;
    AcDbDatabase* database() const;
    // The class of the object behind the id, or null when there is none.
    AcRxClass* objectClass() const;
    AcDbStub* stub() const { return m_stub; }

    bool operator==(const AcDbObjectId& other) const { return m_stub == other.m_stub; }
    bool operator!=(const AcDbObjectId& other) const { return m_stub != other.m_stub; }
    bool operator<(const AcDbObjectId& other) const { return std::less<>{}(m_stub, other.m_stub); }

private:
    AcDbStub* m_stub = nullptr;
};

// Equality of two ids, as the host's helper spells it.
inline bool c5ObjIdIsEqualTo(const AcDbObjectId& a, const AcDbObjectId& b) { return a == b; }

using AcDbObjectIdArray = AcArray<AcDbObjectId>;

template <>
struct std::hash<AcDbObjectId> {
    std::size_t operator()(const AcDbObjectId& id) const noexcept {
        return std::hash<const void*>{}(id.stub());
    }
};
