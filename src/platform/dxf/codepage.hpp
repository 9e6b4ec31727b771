#pragma once
// Text of drawing files: the code page named by $DWGCODEPAGE (files before AC1021) or UTF-8
// (AC1021 on), with the format's escapes \U+XXXX (a Unicode character) and \M+nXXXX (a
// double-byte character of an Asian code page). Inside the codec every string is UTF-8.
#include <string>
#include <string_view>

namespace dxf {

// The Windows code page number of a $DWGCODEPAGE value ("ANSI_936" -> 936); 1252 when the
// name is missing or unknown.
// Appends the UTF-8 bytes of one code point.
void AppendUtf8(std::string& out, unsigned codePoint);

int CodePageFromName(std::string_view name);
// The $DWGCODEPAGE value of a code page number (936 -> "ANSI_936").
std::string CodePageName(int codePage);

// Bytes of a code page to UTF-8, with \U+ and \M+ escapes decoded. Bytes that do not decode
// become U+FFFD. codePage 65001 means the bytes already are UTF-8.
void DecodeText(std::string_view bytes, int codePage, std::string& out);
// The first step of DecodeText: the bytes to UTF-8, escapes left as they are (the text as the
// file spells it).
void DecodeCodePage(std::string_view bytes, int codePage, std::string& out);
// The second: UTF-8 text with its escapes decoded, into out. False when none decodes (out is
// then not the text).
bool DecodeEscapes(std::string_view utf8, std::string& out);
// True when DecodeText would give the bytes back as they are (ASCII without escapes, or UTF-8
// without escapes): the common case that needs no copy.
bool DecodesUnchanged(std::string_view bytes, int codePage);
// UTF-8 to the bytes of a code page; characters the code page lacks become \U+XXXX.
// codePage 65001 copies the UTF-8 as it is.
void EncodeText(std::string_view utf8, int codePage, std::string& out);

}  // namespace dxf
