#include "platform/win/text.hpp"

#include <cwctype>

std::wstring UpperCase(std::wstring_view text) {
    std::wstring out(text);
    for (wchar_t& c : out) c = static_cast<wchar_t>(std::towupper(static_cast<wint_t>(c)));
    return out;
}

bool EqualNoCase(std::wstring_view a, std::wstring_view b) {
    return a.size() == b.size() && UpperCase(a) == UpperCase(b);
}

std::wstring TrimBlanks(std::wstring_view text) {
    const wchar_t* blanks = L" \t\r\n";
    size_t first = text.find_first_not_of(blanks);
    if (first == std::wstring_view::npos) return {};
    size_t last = text.find_last_not_of(blanks);
    return std::wstring(text.substr(first, last - first + 1));
}
