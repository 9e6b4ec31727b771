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
