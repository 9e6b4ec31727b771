#pragma once
// Readers of CAD_line.ini. Each reads one key anew and always stores into its target: a missing
// key or file stores 0, 0.0, false or the empty string over whatever the target held. The text
// read is cut to the reader's capacity (terminator included): 69 characters for the switches and
// tolerances of the sections UpLineScale, DeleteSmallLineAndPoint, DeleteRepeatingLine,
// DeleteArcDownCurve and SplineToLineAndArc (and the tolerance of DeleteLineDownCurve), 1,024
// for everything else.
#include <string>

#include "platform/ge/array.hpp"

// The path of CAD_line.ini below a folder.
std::wstring CadLineIniPath(const std::wstring& userPath);

// The text is used as a printf-style format without arguments: "%%" reads as "%", and a value
// must hold no other "%" sequence.
void IniReadString(const std::wstring& file, const std::wstring& section, const std::wstring& key,
                   std::wstring& target);
// _wtoi of the text.
void IniReadInt(const std::wstring& file, const std::wstring& section, const std::wstring& key,
                int& target);
// wcstod of the text.
void IniReadDouble(const std::wstring& file, const std::wstring& section, const std::wstring& key,
                   double& target);
// _wtoi of the text, not equal to 0.
void IniReadBool(const std::wstring& file, const std::wstring& section, const std::wstring& key,
                 bool& target);

// A colour list "r g b;r g b;": the nearest palette index of each colour closed by a semicolon,
// in order, into a cleared list; a last colour without its semicolon is ignored.
// ColorListFromText reads each colour with ParseRgbText (section ConnectPline);
// ColorListFromAnsiText reads the text in the ANSI code page, at most 1,023 bytes of it and 127
// of one number, with atoi (section SplineToPline).
void ColorListFromText(const std::wstring& text, AcArray<int>& colors);
void ColorListFromAnsiText(const std::wstring& text, AcArray<int>& colors);
