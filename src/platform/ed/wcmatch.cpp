#include <algorithm>
#include <cwctype>
#include <string_view>
#include <vector>

#include "platform/ed/ads.hpp"
#include "platform/ed/utilities.hpp"

namespace {

bool IsLetter(wchar_t c) {
    // Letters of any script (Chinese among them) count as letters, as on the host.
    return (c < 0x80 && std::iswalpha(static_cast<wint_t>(c))) || c >= 0xC0;
}

bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

// A bracket at `p` (just past '['): does `c` match it? `p` moves past the closing ']'.
bool MatchBracket(std::wstring_view pattern, size_t& p, wchar_t c) {
    bool negate = p < pattern.size() && pattern[p] == L'~';
    if (negate) ++p;
    bool found = false;
    bool first = true;
    while (p < pattern.size() && (pattern[p] != L']' || first)) {
        first = false;
        wchar_t low = pattern[p];
        if (low == L'`' && p + 1 < pattern.size()) low = pattern[++p];
        ++p;
        wchar_t high = low;
        if (p + 1 < pattern.size() && pattern[p] == L'-' && pattern[p + 1] != L']') {
            high = pattern[p + 1];
            if (high == L'`' && p + 2 < pattern.size()) high = pattern[++p + 1];
            p += 2;
        }
        // A range matches the same either way round: "a-A" is "A-a", as the host's matcher
        // takes it (patterns such as "[a-A-z-Z]" rely on it to mean every letter).
        if (c >= std::min(low, high) && c <= std::max(low, high)) found = true;
    }
    ++p;  // the closing ']'
    return found != negate;
}

// One alternative, without the leading '~', against the text from the given positions.
bool MatchHere(std::wstring_view pattern, size_t p, std::wstring_view text, size_t t) {
    while (p < pattern.size()) {
        wchar_t token = pattern[p];
        if (token == L'*') {
            while (p < pattern.size() && pattern[p] == L'*') ++p;
            for (size_t rest = t; rest <= text.size(); ++rest)
                if (MatchHere(pattern, p, text, rest)) return true;
            return false;
        }
        if (t >= text.size()) return false;
        wchar_t c = text[t];
        ++p;
        bool ok = false;
        switch (token) {
        case L'?': ok = true; break;
        case L'#': ok = IsDigit(c); break;
        case L'@': ok = IsLetter(c); break;
        case L'.': ok = !IsLetter(c) && !IsDigit(c); break;
        case L'[': ok = MatchBracket(pattern, p, c); break;
        case L'`': ok = p < pattern.size() ? pattern[p++] == c : c == L'`'; break;
        default: ok = token == c;
        }
        if (!ok) return false;
        ++t;
    }
    return t == text.size();
}

// Splits at the commas that are not escaped and not inside brackets.
std::vector<std::wstring_view> Alternatives(std::wstring_view pattern) {
    std::vector<std::wstring_view> parts;
    size_t start = 0;
    bool inBracket = false;
    for (size_t i = 0; i < pattern.size(); ++i) {
        wchar_t c = pattern[i];
        if (c == L'`') ++i;
        else if (c == L'[' && !inBracket) inBracket = true;
        else if (c == L']' && inBracket) inBracket = false;
        else if (c == L',' && !inBracket) {
            parts.push_back(pattern.substr(start, i - start));
            start = i + 1;
        }
    }
    parts.push_back(pattern.substr(start));
    return parts;
}

}  // namespace

int acutWcMatch(const ACHAR* text, const ACHAR* pattern) {
    if (!text || !pattern) return RTERROR;
    std::wstring_view subject(text);
    for (std::wstring_view alternative : Alternatives(pattern)) {
        bool negate = alternative.starts_with(L'~');
        if (negate) alternative.remove_prefix(1);
        if (MatchHere(alternative, 0, subject, 0) != negate) return RTNORM;
    }
    return RTNONE;
}
