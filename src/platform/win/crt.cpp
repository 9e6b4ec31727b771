#include "platform/win/crt.hpp"

#include <cerrno>
#include <climits>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string>

#include "platform/win/codepage.hpp"
#include "platform/win/files.hpp"
#include "platform/win/host_state.hpp"
#include "platform/win/paths.hpp"
#include "platform/win/text.hpp"

namespace {

std::string UserLocaleName() {
    return HostCodePage() == 936 ? "Chinese (Simplified)_People's Republic of China.936"
                                 : "English_United States.utf8";
}

// Text-mode streams: a cookie stream over a binary FILE that turns "\n" into "\r\n" on write
// and "\r\n" into "\n" on read.
ssize_t TextRead(void* cookie, char* buffer, size_t size) {
    FILE* file = static_cast<FILE*>(cookie);
    size_t count = 0;
    while (count < size) {
        int c = std::fgetc(file);
        if (c == EOF) break;
        if (c == '\r') {
            int next = std::fgetc(file);
            if (next == '\n') c = '\n';
            else if (next != EOF) std::ungetc(next, file);
        }
        buffer[count++] = static_cast<char>(c);
    }
    return static_cast<ssize_t>(count);
}

ssize_t TextWrite(void* cookie, const char* buffer, size_t size) {
    FILE* file = static_cast<FILE*>(cookie);
    for (size_t i = 0; i < size; ++i) {
        if (buffer[i] == '\n' && std::fputc('\r', file) == EOF) return -1;
        if (std::fputc(buffer[i], file) == EOF) return -1;
    }
    return static_cast<ssize_t>(size);
}

int TextSeek(void* cookie, off64_t* offset, int whence) {
    FILE* file = static_cast<FILE*>(cookie);
    if (fseeko(file, *offset, whence) != 0) return -1;
    *offset = ftello(file);
    return 0;
}

int TextClose(void* cookie) { return std::fclose(static_cast<FILE*>(cookie)); }

// A byte string as the current locale decodes it.
std::wstring DecodeInLocale(std::string_view bytes) {
    if (Host().crtUserLocale) return WideFromAnsi(bytes);
    std::wstring out;
    for (unsigned char c : bytes) out += static_cast<wchar_t>(c);
    return out;
}

// One character as the current locale encodes it; empty when it has no encoding.
std::string EncodeInLocale(wchar_t c) {
    if (!Host().crtUserLocale) return c <= 0xFF ? std::string(1, static_cast<char>(c)) : std::string();
    std::string bytes = AnsiFromWide(std::wstring_view(&c, 1));
    return WideFromAnsi(bytes) == std::wstring_view(&c, 1) ? bytes : std::string();
}

}  // namespace

namespace crt {

char* getenv(const char* name) {
    if (!name) return nullptr;
    std::wstring value;
    if (const char* process = std::getenv(name)) {
        value = WideFromUtf8(process);
    } else {
        auto found = Host().environment.find(UpperCase(WideFromAnsi(name)));
        if (found == Host().environment.end()) return nullptr;
        value = found->second;
    }
    std::string& slot = Host().crtEnvironment[name];
    slot = AnsiFromWide(value);
    return slot.data();
}

int remove(const char* path) {
    if (!path) return -1;
    return DeleteFileW(WideFromAnsi(path).c_str()) ? 0 : -1;
}

FILE* fopen(const char* path, const char* mode) {
    if (!path || !mode) return nullptr;
    std::string posixMode;
    bool binary = false;
    for (const char* m = mode; *m && *m != ','; ++m) {
        if (*m == 'b') binary = true;
        else if (*m == 'r' || *m == 'w' || *m == 'a' || *m == '+') posixMode += *m;
    }
    FILE* file = std::fopen(ResolvePathA(path).c_str(), (posixMode + "b").c_str());
    if (!file || binary) return file;
    FILE* text = fopencookie(file, posixMode.c_str(), {TextRead, TextWrite, TextSeek, TextClose});
    if (!text) std::fclose(file);
    return text;
}

char* setlocale(int category, const char* locale) {
    if (category < LC_CTYPE || category > LC_ALL) return nullptr;
    if (locale) {
        std::string wanted = locale;
        if (wanted.empty() || wanted == UserLocaleName()) Host().crtUserLocale = true;
        else if (wanted == "C") Host().crtUserLocale = false;
        else return nullptr;
    }
    std::string& name = Host().crtLocaleName;
    name = Host().crtUserLocale ? UserLocaleName() : "C";
    return name.data();
}

size_t mbstowcs(wchar_t* wide, const char* bytes, size_t capacity) {
    if (!bytes) return static_cast<size_t>(-1);
    std::string_view source(bytes);
    std::wstring text = DecodeInLocale(source);
    if (Host().crtUserLocale && AnsiFromWide(text) != source) {
        errno = EILSEQ;
        return static_cast<size_t>(-1);
    }
    if (!wide) return text.size();
    size_t count = std::min(capacity, text.size());
    std::wmemcpy(wide, text.data(), count);
    if (count < capacity) wide[count] = L'\0';
    return count;
}

size_t wcstombs(char* bytes, const wchar_t* wide, size_t capacity) {
    if (!wide) return static_cast<size_t>(-1);
    std::string out;
    for (const wchar_t* c = wide; *c; ++c) {
        std::string encoded = EncodeInLocale(*c);
        if (encoded.empty()) {
            errno = EILSEQ;
            return static_cast<size_t>(-1);
        }
        if (bytes && out.size() + encoded.size() > capacity) break;  // no half characters
        out += encoded;
    }
    if (!bytes) return out.size();
    std::memcpy(bytes, out.data(), out.size());
    if (out.size() < capacity) bytes[out.size()] = '\0';
    return out.size();
}

}  // namespace crt

int _wtoi(const wchar_t* text) {
    if (!text) return 0;
    errno = 0;
    long long value = std::wcstoll(text, nullptr, 10);
    if (value > INT_MAX) return INT_MAX;
    if (value < INT_MIN) return INT_MIN;
    return static_cast<int>(value);
}
