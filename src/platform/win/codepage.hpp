#pragma once
// Text conversion between wide strings and the bytes of a Windows code page (936 is GBK,
// 65001 is UTF-8), over iconv. Code page 0 (CP_ACP) is the host's ANSI code page, a setting
// of the prefix. Bytes that do not decode become U+FFFD; characters that the code page lacks
// become '?', as Windows' default character.
#include <string>
#include <string_view>

#include "platform/win/wintypes.hpp"

UINT HostCodePage();
void SetHostCodePage(UINT codePage);

std::wstring DecodeCodePage(std::string_view bytes, UINT codePage);
std::string EncodeCodePage(std::wstring_view text, UINT codePage);

// The host's ANSI code page.
std::wstring WideFromAnsi(std::string_view bytes);
std::string AnsiFromWide(std::wstring_view text);

// UTF-8, the encoding of POSIX file names and of the terminal.
std::wstring WideFromUtf8(std::string_view bytes);
std::string Utf8FromWide(std::wstring_view text);

// Win32 conversions. A length of -1 means "up to and including the terminator"; an output
// size of 0 asks for the size needed. The result is the count written, or 0 on failure.
int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wide, int wideLength, LPSTR bytes,
                        int byteCapacity, LPCSTR defaultChar, LPBOOL usedDefaultChar);
int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR bytes, int byteLength, LPWSTR wide,
                        int wideCapacity);

// Text of a whole file: a UTF-16LE or UTF-8 byte-order mark decides the encoding and is
// dropped; without one the host code page applies.
std::wstring DecodeTextBytes(std::string_view bytes);
