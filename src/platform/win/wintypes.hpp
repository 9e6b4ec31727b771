#pragma once
// The Windows base types and constants that the module's code is written with, at their
// Windows sizes where the module depends on them. Wide characters are the platform's wchar_t.
#include <cstdint>

using ACHAR = wchar_t;

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = unsigned int;
using LONG = std::int32_t;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using BOOL = int;
using WCHAR = wchar_t;
using LPSTR = char*;
using LPCSTR = const char*;
using LPWSTR = wchar_t*;
using LPCWSTR = const wchar_t*;
using LPTSTR = ACHAR*;
using LPCTSTR = const ACHAR*;
using LPBYTE = BYTE*;
using LPDWORD = DWORD*;
using LPBOOL = BOOL*;
using UINT_PTR = std::uintptr_t;
using LONG_PTR = std::intptr_t;
using WPARAM = UINT_PTR;
using LPARAM = LONG_PTR;
using LRESULT = LONG_PTR;
using REGSAM = DWORD;
using COLORREF = DWORD;

struct HWND__;
struct HKEY__;
struct HINSTANCE__;
using HWND = HWND__*;
using HKEY = HKEY__*;
using PHKEY = HKEY*;
using HINSTANCE = HINSTANCE__*;
using HMODULE = HINSTANCE;
using FARPROC = void (*)();
using TIMERPROC = void (*)(HWND, UINT, UINT_PTR, DWORD);

inline constexpr BOOL TRUE = 1;
inline constexpr BOOL FALSE = 0;

// Error codes of the Win32 API that these services return.
inline constexpr LONG ERROR_SUCCESS = 0;
inline constexpr LONG ERROR_FILE_NOT_FOUND = 2;
inline constexpr LONG ERROR_PATH_NOT_FOUND = 3;
inline constexpr LONG ERROR_ACCESS_DENIED = 5;
inline constexpr LONG ERROR_INVALID_HANDLE = 6;
inline constexpr LONG ERROR_FILE_EXISTS = 80;
inline constexpr LONG ERROR_INVALID_PARAMETER = 87;
inline constexpr LONG ERROR_INSUFFICIENT_BUFFER = 122;
inline constexpr LONG ERROR_ALREADY_EXISTS = 183;
inline constexpr LONG ERROR_MORE_DATA = 234;
inline constexpr LONG ERROR_NO_MORE_FILES = 18;

inline constexpr DWORD FILE_ATTRIBUTE_READONLY = 0x01;
inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;

// Window messages and message-box flags.
inline constexpr UINT WM_CLOSE = 0x0010;
inline constexpr UINT WM_TIMER = 0x0113;
inline constexpr UINT MB_OK = 0x00;
inline constexpr UINT MB_ICONERROR = 0x10;
inline constexpr int IDOK = 1;

// Code pages.
inline constexpr UINT CP_ACP = 0;
inline constexpr UINT CP_UTF8 = 65001;

#define MAX_PATH 260
