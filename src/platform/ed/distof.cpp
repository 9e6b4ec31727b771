#include <cmath>
#include <cwchar>
#include <cwctype>
#include <optional>
#include <string>

#include "platform/ed/ads.hpp"
#include "platform/ed/utilities.hpp"
#include "platform/win/text.hpp"

namespace {

// A decimal number, with an exponent, that fills the whole text.
std::optional<double> ReadDecimal(const std::wstring& text) {
    if (text.empty() || std::iswspace(static_cast<wint_t>(text.front()))) return std::nullopt;
    wchar_t* end = nullptr;
    double value = std::wcstod(text.c_str(), &end);
    if (end != text.c_str() + text.size() || !std::isfinite(value)) return std::nullopt;
    return value;
}

// "3", "3/4" or "1 3/4" (also "1-3/4"): a whole number and a fraction.
std::optional<double> ReadFraction(std::wstring text) {
    size_t slash = text.find(L'/');
    if (slash == std::wstring::npos) return ReadDecimal(text);
    size_t gap = text.find_last_of(L" -", slash);
    double whole = 0.0;
    if (gap != std::wstring::npos && gap > 0) {
        auto w = ReadDecimal(text.substr(0, gap));
        if (!w) return std::nullopt;
        whole = *w;
        text = text.substr(gap + 1);
        slash = text.find(L'/');
    }
    auto numerator = ReadDecimal(text.substr(0, slash));
    auto denominator = ReadDecimal(text.substr(slash + 1));
    if (!numerator || !denominator || *denominator == 0.0) return std::nullopt;
    double fraction = *numerator / *denominator;
    return whole < 0 ? whole - fraction : whole + fraction;
}

// Feet and inches: 2'6", 2'-6.5", 2', 30" or a bare number of inches.
std::optional<double> ReadFeetInches(const std::wstring& text) {
    size_t foot = text.find(L'\'');
    double feet = 0.0;
    std::wstring inches = text;
    if (foot != std::wstring::npos) {
        auto f = ReadDecimal(text.substr(0, foot));
        if (!f) return std::nullopt;
        feet = *f;
        inches = text.substr(foot + 1);
        if (inches.starts_with(L'-')) inches.erase(0, 1);
        if (inches.empty()) return feet * 12.0;
    }
    if (inches.ends_with(L'"')) inches.pop_back();
    auto i = ReadFraction(inches);
    if (!i) return std::nullopt;
    return feet * 12.0 + (feet < 0 ? -*i : *i);
}

}  // namespace

int acdbDisToF(const ACHAR* text, int unitMode, double* value) {
    if (!text || !value) return RTERROR;
    std::wstring trimmed = TrimBlanks(text);
    std::optional<double> result;
    switch (unitMode) {
    case -1:  // the drawing's units; decimal on this host
    case 1:
    case 2: result = ReadDecimal(trimmed); break;
    case 3:
    case 4: result = ReadFeetInches(trimmed); break;
    case 5: result = ReadFraction(trimmed); break;
    default: return RTERROR;
    }
    if (!result) return RTERROR;
    *value = *result;
    return RTNORM;
}
