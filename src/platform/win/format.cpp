#include "platform/win/format.hpp"

#include <cwchar>
#include <vector>

namespace {

// Rewrites one format for the C library, where a plain "%s" in a wide format is narrow.
std::wstring ToCLibraryFormat(const wchar_t* format) {
    std::wstring out;
    for (const wchar_t* p = format; *p; ++p) {
        out += *p;
        if (*p != L'%') continue;
        if (p[1] == L'%') {
            out += *++p;
            continue;
        }
        while (p[1] && std::wcschr(L"-+ #0123456789.*", p[1])) out += *++p;
        bool narrow = false, wide = false;
        if (p[1] == L'h') {
            narrow = true;
            ++p;
        } else if (p[1] == L'l' && (p[2] == L's' || p[2] == L'c')) {
            wide = true;
            ++p;
        } else if (std::wcsncmp(p + 1, L"I64", 3) == 0) {
            out += L"ll";
            p += 3;
        }
        wchar_t conversion = p[1];
        if (!conversion) break;
        if (conversion == L's' || conversion == L'c' || conversion == L'S' || conversion == L'C') {
            bool argumentIsWide = wide || (!narrow && (conversion == L's' || conversion == L'c'));
            out += argumentIsWide ? L"l" : L"";
            out += static_cast<wchar_t>(conversion == L'S' ? L's' : conversion == L'C' ? L'c' : conversion);
            ++p;
        } else if (narrow) {
            out += L'h';
        }
    }
    return out;
}

}  // namespace

std::wstring FormatHostStringV(const wchar_t* format, va_list args) {
    if (!format) return {};
    std::wstring cFormat = ToCLibraryFormat(format);
    std::vector<wchar_t> buffer(256);
    for (;;) {
        va_list copy;
        va_copy(copy, args);
        int written = std::vswprintf(buffer.data(), buffer.size(), cFormat.c_str(), copy);
        va_end(copy);
        if (written >= 0) return std::wstring(buffer.data(), static_cast<size_t>(written));
        if (buffer.size() > (1u << 24)) return {};
        buffer.resize(buffer.size() * 4);
    }
}

std::wstring FormatHostString(const wchar_t* format, ...) {
    va_list args;
    va_start(args, format);
    std::wstring text = FormatHostStringV(format, args);
    va_end(args);
    return text;
}
