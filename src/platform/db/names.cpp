#include "platform/db/names.hpp"

#include <cwctype>

std::wstring acdbNameUpper(const std::wstring& name) {
    std::wstring upper = name;
    for (wchar_t& c : upper) c = static_cast<wchar_t>(std::towupper(static_cast<wint_t>(c)));
    return upper;
}

bool acdbNamesEqual(const std::wstring& a, const std::wstring& b) {
    if (a.size() != b.size()) return false;
    // Names are looked up by their own spelling mostly: equal characters need no case mapping.
    for (std::size_t i = 0; i < a.size(); ++i)
        if (a[i] != b[i] &&
            std::towupper(static_cast<wint_t>(a[i])) != std::towupper(static_cast<wint_t>(b[i])))
            return false;
    return true;
}

std::size_t acdbNameHash(const std::wstring& name) {
    std::size_t hash = 14695981039346656037ull;
    for (wchar_t c : name) {
        // ASCII letters fold here without the library call: most names are ASCII.
        const wint_t code = static_cast<wint_t>(c);
        const wint_t upper = code >= 0x80 ? std::towupper(code) : code >= L'a' && code <= L'z' ? code - 32 : code;
        hash = (hash ^ upper) * 1099511628211ull;
    }
    return hash;
}
