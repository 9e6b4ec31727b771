#pragma once
#include <string>

// Run-time classes as the host has them: each class has a descriptor with its exact name and
// its parent, reached through desc() on the class and isA() on an object.
class AcRxClass {
public:
    AcRxClass(const wchar_t* name, const AcRxClass* parent, const wchar_t* dxfName)
        : m_name(name), m_parent(parent), m_dxfName(dxfName) {}
    AcRxClass(const AcRxClass&) = delete;
    AcRxClass& operator=(const AcRxClass&) = delete;

    const wchar_t* name() const { return m_name; }
    // The entity or object name a drawing file uses ("LINE", "LWPOLYLINE"); empty for
    // abstract classes.
    const wchar_t* dxfName() const { return m_dxfName; }
    const AcRxClass* myParent() const { return m_parent; }
    bool isDerivedFrom(const AcRxClass* other) const {
        for (const AcRxClass* c = this; c; c = c->m_parent)
            if (c == other) return true;
        return false;
    }

private:
    const wchar_t* m_name;
    const AcRxClass* m_parent;
    const wchar_t* m_dxfName;
};

class AcRxObject {
public:
    virtual ~AcRxObject() = default;
    static AcRxClass* desc();
    virtual AcRxClass* isA() const { return desc(); }
    bool isKindOf(const AcRxClass* cls) const { return isA()->isDerivedFrom(cls); }
    // A new object of the same class with the same data; not database-resident.
    virtual AcRxObject* clone() const = 0;

protected:
    AcRxObject() = default;
    AcRxObject(const AcRxObject&) = default;
    AcRxObject& operator=(const AcRxObject&) = default;
};

// Declares desc(), isA() and cast() of an abstract class (no clone of its own).
#define ACRX_DECLARE_ABSTRACT_MEMBERS(CLASS)                               \
    static AcRxClass* desc();                                              \
    AcRxClass* isA() const override { return desc(); }                     \
    static CLASS* cast(const AcRxObject* obj) {                            \
        return obj && obj->isKindOf(desc()) ? const_cast<CLASS*>(          \
                                                  static_cast<const CLASS*>(obj)) \
                                            : nullptr;                     \
    }

// Declares the same and clone() of a concrete class.
#define ACRX_DECLARE_MEMBERS(CLASS)     \
    ACRX_DECLARE_ABSTRACT_MEMBERS(CLASS) \
    AcRxObject* clone() const override { return new CLASS(*this); }

// Defines the descriptor of CLASS, derived from PARENT, with its drawing-file name.
#define ACRX_DEFINE_MEMBERS(CLASS, PARENT, DXFNAME)                        \
    AcRxClass* CLASS::desc() {                                             \
        static AcRxClass cls(L## #CLASS, PARENT::desc(), DXFNAME);         \
        return &cls;                                                       \
    }
