#pragma once
// The C run-time functions whose Windows behaviour differs from the C library's: paths are
// Windows paths in the host code page, the user's default locale is the host code page, and
// the prefix adds to the environment. They keep their C names inside namespace crt; code
// written for the host brings them in by using-declarations in its own namespace or function
// (`using crt::fopen;`), which hide the C library's functions of the same name there.
// atoi, wcstod, fwrite and fclose behave as the C library's and need nothing here.
#include <cstdio>

namespace crt {

// The process environment first (converted to the host code page), then the prefix's
// [Environment]. The pointer stays valid until the next call with the same name.
char* getenv(const char* name);
int remove(const char* path);
// Without 'b' in the mode the stream is in text mode: "\n" is written as "\r\n", and "\r\n"
// reads as "\n".
FILE* fopen(const char* path, const char* mode);
// "" selects the user's default locale, whose multibyte code page is the host's; "C" the C
// locale, in which a byte is the character of the same number. Returns the locale's name.
char* setlocale(int category, const char* locale);
size_t mbstowcs(wchar_t* wide, const char* bytes, size_t capacity);
size_t wcstombs(char* bytes, const wchar_t* wide, size_t capacity);

}  // namespace crt

// Windows' reading of a decimal integer: leading blanks, a sign, digits; 0 when there are
// none; the int range's limit on overflow.
int _wtoi(const wchar_t* text);
