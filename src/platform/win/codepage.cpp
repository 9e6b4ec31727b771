#include "platform/win/codepage.hpp"

#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include "platform/win/host_state.hpp"

namespace {

const char* IconvName(UINT codePage) {
    if (codePage == CP_ACP) codePage = HostCodePage();
    switch (codePage) {
    case 936: return "CP936";
    case CP_UTF8: return "UTF-8";
    case 1252: return "CP1252";
    default: return nullptr;
    }
}

// One iconv pass that survives bad input: an undecodable unit is skipped and `replacement`
// written in its place.
std::string Convert(const char* to, const char* from, std::string_view in, size_t unit,
                    std::string_view replacement) {
    std::string out;
    if (in.empty() || !to || !from) return out;
    iconv_t cd = iconv_open(to, from);
    if (cd == reinterpret_cast<iconv_t>(-1)) return out;
    std::vector<char> buffer(in.size() * 4 + 16);
    char* src = const_cast<char*>(in.data());
    size_t srcLeft = in.size();
    while (srcLeft > 0) {
        char* dst = buffer.data();
        size_t dstLeft = buffer.size();
        size_t rc = iconv(cd, &src, &srcLeft, &dst, &dstLeft);
        out.append(buffer.data(), dst);
        if (rc != static_cast<size_t>(-1)) break;
        if (errno == E2BIG) continue;
        size_t skip = std::min(unit, srcLeft);  // EILSEQ or a truncated sequence at the end
        src += skip;
        srcLeft -= skip;
        out.append(replacement);
        iconv(cd, nullptr, nullptr, nullptr, nullptr);
    }
    iconv_close(cd);
    return out;
}

std::wstring FromWcharBytes(const std::string& bytes) {
    std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), bytes.data(), text.size() * sizeof(wchar_t));
    return text;
}

}  // namespace

UINT HostCodePage() { return Host().codePage; }
void SetHostCodePage(UINT codePage) { Host().codePage = codePage; }

std::wstring DecodeCodePage(std::string_view bytes, UINT codePage) {
    const wchar_t replacement = 0xFFFD;
    std::string_view rep(reinterpret_cast<const char*>(&replacement), sizeof replacement);
    return FromWcharBytes(Convert("WCHAR_T", IconvName(codePage), bytes, 1, rep));
}

std::string EncodeCodePage(std::wstring_view text, UINT codePage) {
    std::string_view in(reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t));
    return Convert(IconvName(codePage), "WCHAR_T", in, sizeof(wchar_t), "?");
}

std::wstring WideFromAnsi(std::string_view bytes) { return DecodeCodePage(bytes, CP_ACP); }
std::string AnsiFromWide(std::wstring_view text) { return EncodeCodePage(text, CP_ACP); }
std::wstring WideFromUtf8(std::string_view bytes) { return DecodeCodePage(bytes, CP_UTF8); }
std::string Utf8FromWide(std::wstring_view text) { return EncodeCodePage(text, CP_UTF8); }

int WideCharToMultiByte(UINT codePage, DWORD, LPCWSTR wide, int wideLength, LPSTR bytes,
                        int byteCapacity, LPCSTR, LPBOOL usedDefaultChar) {
    if (!wide || !IconvName(codePage)) return 0;
    size_t length = wideLength < 0 ? std::wcslen(wide) + 1 : static_cast<size_t>(wideLength);
    std::wstring_view text(wide, length);
    std::string out = EncodeCodePage(text, codePage);
    if (usedDefaultChar) *usedDefaultChar = DecodeCodePage(out, codePage) != text;
    if (byteCapacity == 0) return static_cast<int>(out.size());
    if (out.size() > static_cast<size_t>(byteCapacity)) return 0;
    std::memcpy(bytes, out.data(), out.size());
    return static_cast<int>(out.size());
}

int MultiByteToWideChar(UINT codePage, DWORD, LPCSTR bytes, int byteLength, LPWSTR wide,
                        int wideCapacity) {
    if (!bytes || !IconvName(codePage)) return 0;
    size_t length = byteLength < 0 ? std::strlen(bytes) + 1 : static_cast<size_t>(byteLength);
    std::wstring out = DecodeCodePage(std::string_view(bytes, length), codePage);
    if (wideCapacity == 0) return static_cast<int>(out.size());
    if (out.size() > static_cast<size_t>(wideCapacity)) return 0;
    std::wmemcpy(wide, out.data(), out.size());
    return static_cast<int>(out.size());
}

std::wstring DecodeTextBytes(std::string_view bytes) {
    if (bytes.starts_with("\xFF\xFE")) {
        const wchar_t replacement = 0xFFFD;
        std::string_view rep(reinterpret_cast<const char*>(&replacement), sizeof replacement);
        return FromWcharBytes(Convert("WCHAR_T", "UTF-16LE", bytes.substr(2), 2, rep));
    }
    if (bytes.starts_with("\xEF\xBB\xBF")) return WideFromUtf8(bytes.substr(3));
    return WideFromAnsi(bytes);
}
