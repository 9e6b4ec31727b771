#pragma once
// A name that many objects repeat (the layer or linetype of every entity): each distinct text is
// kept once for the whole process, and an object holds a pointer to it. A drawing of a hundred
// thousand entities on a dozen layers then keeps a dozen layer names, not a hundred thousand.
#include <string>
#include <string_view>

class AcDbSharedName {
public:
    AcDbSharedName() : m_text(&Empty()) {}
    explicit AcDbSharedName(std::wstring_view text) : m_text(&Intern(text)) {}
    AcDbSharedName& operator=(std::wstring_view text) {
        m_text = &Intern(text);
        return *this;
    }
    const std::wstring& str() const { return *m_text; }
    bool operator==(const AcDbSharedName& other) const { return m_text == other.m_text; }

private:
    // The one kept copy of a text; it lives as long as the process. Safe to call from any thread.
    static const std::wstring& Intern(std::wstring_view text);
    static const std::wstring& Empty();
    const std::wstring* m_text;
};
