#include "platform/dxf/codepage.hpp"

#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <map>
#include <memory>

namespace dxf {
namespace {

const char* IconvName(int codePage) {
    switch (codePage) {
        case 936: return "GBK";
        case 932: return "CP932";
        case 949: return "CP949";
        case 950: return "BIG5";
        case 874: return "CP874";
        case 437: return "CP437";
        case 850: return "CP850";
        case 20127: return "ASCII";
        default: break;
    }
    if (codePage >= 1250 && codePage <= 1258) {
        static const char* names[] = {"CP1250", "CP1251", "CP1252", "CP1253", "CP1254",
                                      "CP1255", "CP1256", "CP1257", "CP1258"};
        return names[codePage - 1250];
    }
    return "CP1252";
}

struct IconvCloser {
    void operator()(void* cd) const { iconv_close(static_cast<iconv_t>(cd)); }
};
using IconvHandle = std::unique_ptr<void, IconvCloser>;

// One converter per direction and code page, made on first use.
iconv_t Converter(int codePage, bool toUtf8) {
    thread_local std::map<std::pair<int, bool>, IconvHandle> cache;
    auto& slot = cache[{codePage, toUtf8}];
    if (!slot) {
        const char* cp = IconvName(codePage);
        iconv_t cd = toUtf8 ? iconv_open("UTF-8", cp) : iconv_open(cp, "UTF-8");
        if (cd == reinterpret_cast<iconv_t>(-1)) return cd;
        slot.reset(cd);
    }
    return static_cast<iconv_t>(slot.get());
}

bool IsAscii(std::string_view s) {
    for (unsigned char c : s)
        if (c >= 0x80) return false;
    return true;
}

// Runs iconv over bytes; a byte that does not convert becomes U+FFFD (to UTF-8) or is left
// to the caller through the callback position (from UTF-8).
void IconvToUtf8(std::string_view bytes, int codePage, std::string& out) {
    iconv_t cd = Converter(codePage, true);
    if (cd == reinterpret_cast<iconv_t>(-1)) {
        for (unsigned char c : bytes) AppendUtf8(out, c);
        return;
    }
    iconv(cd, nullptr, nullptr, nullptr, nullptr);
    char buffer[1024];
    char* in = const_cast<char*>(bytes.data());
    size_t inLeft = bytes.size();
    while (inLeft > 0) {
        char* o = buffer;
        size_t oLeft = sizeof buffer;
        size_t r = iconv(cd, &in, &inLeft, &o, &oLeft);
        out.append(buffer, static_cast<size_t>(o - buffer));
        if (r == static_cast<size_t>(-1) && errno != E2BIG) {
            AppendUtf8(out, 0xFFFD);
            ++in;
            --inLeft;
            iconv(cd, nullptr, nullptr, nullptr, nullptr);
        }
    }
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

bool ParseHex(std::string_view s, unsigned& value) {
    value = 0;
    for (char c : s) {
        int d = HexDigit(c);
        if (d < 0) return false;
        value = value * 16 + static_cast<unsigned>(d);
    }
    return true;
}

// \M+nXXXX: n names an Asian code page, XXXX the two bytes of the character.
int MifCodePage(char n) {
    switch (n) {
        case '1': return 932;
        case '2': return 950;
        case '3': return 949;
        case '5': return 936;
        default: return 0;
    }
}

bool HasEscape(std::string_view s) {
    return s.find("\\U+") != std::string_view::npos || s.find("\\M+") != std::string_view::npos ||
           s.find("\\u+") != std::string_view::npos || s.find("\\m+") != std::string_view::npos;
}

// Length of the UTF-8 sequence that starts with c (1 for a stray byte).
size_t Utf8Length(unsigned char c) {
    if (c >= 0xF0) return 4;
    if (c >= 0xE0) return 3;
    if (c >= 0xC0) return 2;
    return 1;
}

unsigned Utf8CodePoint(std::string_view s) {
    unsigned char c = static_cast<unsigned char>(s[0]);
    if (s.size() == 1) return c;
    unsigned cp = c & (0x7F >> s.size());
    for (size_t i = 1; i < s.size(); ++i) cp = (cp << 6) | (static_cast<unsigned char>(s[i]) & 0x3F);
    return cp;
}

// The length of the well-formed UTF-8 sequence at the start of `s`, 0 when it is not one.
// Overlong forms, surrogates and values above U+10FFFF are not well formed.
size_t WellFormedLength(std::string_view s) {
    unsigned char c = static_cast<unsigned char>(s[0]);
    if (c < 0x80) return 1;
    size_t n = c >= 0xC2 && c <= 0xDF ? 2 : c >= 0xE0 && c <= 0xEF ? 3 : c >= 0xF0 && c <= 0xF4 ? 4 : 0;
    if (n == 0 || s.size() < n) return 0;
    for (size_t i = 1; i < n; ++i)
        if ((static_cast<unsigned char>(s[i]) & 0xC0) != 0x80) return 0;
    unsigned cp = Utf8CodePoint(s.substr(0, n));
    bool overlong = (n == 3 && cp < 0x800) || (n == 4 && cp < 0x10000);
    if (overlong || (cp >= 0xD800 && cp <= 0xDFFF) || cp > 0x10FFFF) return 0;
    return n;
}

// The length of the longest start of `s` that some well-formed sequence begins with (at least
// one byte): the part that one U+FFFD stands for, so that a bad sequence never takes the
// characters after it.
size_t IllFormedLength(std::string_view s) {
    unsigned char c = static_cast<unsigned char>(s[0]);
    size_t n = c >= 0xC2 && c <= 0xDF ? 2 : c >= 0xE0 && c <= 0xEF ? 3 : c >= 0xF0 && c <= 0xF4 ? 4 : 1;
    size_t taken = 1;
    for (; taken < n && taken < s.size(); ++taken) {
        unsigned char b = static_cast<unsigned char>(s[taken]);
        unsigned char low = 0x80, high = 0xBF;
        if (taken == 1 && c == 0xE0) low = 0xA0;
        if (taken == 1 && c == 0xED) high = 0x9F;
        if (taken == 1 && c == 0xF0) low = 0x90;
        if (taken == 1 && c == 0xF4) high = 0x8F;
        if (b < low || b > high) break;
    }
    return taken;
}

// UTF-8 text with each ill-formed sequence replaced by U+FFFD.
void RepairUtf8(std::string_view bytes, std::string& out) {
    for (size_t i = 0; i < bytes.size();) {
        size_t n = WellFormedLength(bytes.substr(i));
        if (n > 0) {
            out.append(bytes.substr(i, n));
            i += n;
        } else {
            AppendUtf8(out, 0xFFFD);
            i += IllFormedLength(bytes.substr(i));
        }
    }
}

}  // namespace

void AppendUtf8(std::string& out, unsigned cp) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

int CodePageFromName(std::string_view name) {
    std::string upper;
    for (char c : name) upper += static_cast<char>(c >= 'a' && c <= 'z' ? c - 32 : c);
    if (upper.rfind("ANSI_", 0) == 0) {
        int cp = 0;
        for (char c : upper.substr(5)) {
            if (c < '0' || c > '9' || cp > 99999) return 1252;
            cp = cp * 10 + (c - '0');
        }
        return cp == 0 ? 1252 : cp;
    }
    if (upper.rfind("DOS", 0) == 0) return upper == "DOS932" ? 932 : 437;
    if (upper == "UTF-8" || upper == "UTF8") return 65001;
    if (upper == "GB2312" || upper == "GBK") return 936;
    if (upper == "BIG5") return 950;
    return 1252;
}

std::string CodePageName(int codePage) {
    return "ANSI_" + std::to_string(codePage == 65001 ? 1252 : codePage);
}

bool DecodesUnchanged(std::string_view bytes, int codePage) {
    bool ascii = true;
    for (char c : bytes) {
        if (c == '\\') return false;
        ascii = ascii && (static_cast<unsigned char>(c) & 0x80) == 0;
    }
    if (ascii) return true;
    if (codePage != 65001) return false;
    for (size_t i = 0, n = 0; i < bytes.size(); i += n)
        if ((n = WellFormedLength(bytes.substr(i))) == 0) return false;
    return true;
}

void DecodeCodePage(std::string_view bytes, int codePage, std::string& out) {
    out.clear();
    if (IsAscii(bytes)) out.assign(bytes);
    else if (codePage == 65001) RepairUtf8(bytes, out);
    else IconvToUtf8(bytes, codePage, out);
}

bool DecodeEscapes(std::string_view s, std::string& out) {
    if (!HasEscape(s)) return false;
    out.clear();
    bool decoded = false;
    for (size_t i = 0; i < s.size(); ++i) {
        if (s[i] == '\\' && i + 2 < s.size() && s[i + 2] == '+') {
            unsigned v = 0;
            if ((s[i + 1] == 'U' || s[i + 1] == 'u') && i + 7 <= s.size() &&
                ParseHex(s.substr(i + 3, 4), v)) {
                AppendUtf8(out, v);
                i += 6;
                decoded = true;
                continue;
            }
            if ((s[i + 1] == 'M' || s[i + 1] == 'm') && i + 8 <= s.size() &&
                MifCodePage(s[i + 3]) != 0 && ParseHex(s.substr(i + 4, 4), v)) {
                char pair[2] = {static_cast<char>(v >> 8), static_cast<char>(v & 0xFF)};
                IconvToUtf8(std::string_view(pair, 2), MifCodePage(s[i + 3]), out);
                i += 7;
                decoded = true;
                continue;
            }
        }
        out += s[i];
    }
    return decoded;
}

void DecodeText(std::string_view bytes, int codePage, std::string& out) {
    if (IsAscii(bytes)) {
        if (!DecodeEscapes(bytes, out)) out.assign(bytes);
        return;
    }
    std::string text;
    DecodeCodePage(bytes, codePage, text);
    if (!DecodeEscapes(text, out)) out = std::move(text);
}

void EncodeText(std::string_view utf8, int codePage, std::string& out) {
    if (codePage == 65001 || IsAscii(utf8)) {
        out.append(utf8);
        return;
    }
    iconv_t cd = Converter(codePage, false);
    for (size_t i = 0; i < utf8.size();) {
        unsigned char c = static_cast<unsigned char>(utf8[i]);
        size_t n = std::min(Utf8Length(c), utf8.size() - i);
        if (n == 1) {
            out += static_cast<char>(c);
            ++i;
            continue;
        }
        char buffer[8];
        char* in = const_cast<char*>(utf8.data() + i);
        size_t inLeft = n;
        char* o = buffer;
        size_t oLeft = sizeof buffer;
        bool ok = cd != reinterpret_cast<iconv_t>(-1) &&
                  iconv(cd, &in, &inLeft, &o, &oLeft) != static_cast<size_t>(-1);
        if (ok) {
            out.append(buffer, static_cast<size_t>(o - buffer));
        } else {
            if (cd != reinterpret_cast<iconv_t>(-1)) iconv(cd, nullptr, nullptr, nullptr, nullptr);
            char escape[16];
            std::snprintf(escape, sizeof escape, "\\U+%04X", Utf8CodePoint(utf8.substr(i, n)));
            out += escape;
        }
        i += n;
    }
}

}  // namespace dxf
