#pragma once
// The one place that fixes the order of the system's work on a drawing: convert the exported
// file, read it into a database of its own, clean it, standardise it, handle each sheet, and
// save it in place.
#include <string>

// Turns one exported drawing into a finished one, in place. Failures leave a trace in Cg.log
// only.
void ProcessDrawing(const std::wstring& path);

// Where the conversion library is loaded from, and the temporary copy it writes.
inline constexpr const wchar_t* kDwgVerLibraryPath = L"D:\\MYTOOL\\application\\dwgver.dll";
inline constexpr const wchar_t* kConvertedTempPath = L"D:\\MYTOOL\\application\\temp\\temp.dwg";

// Writes a copy of `source` at `target` in drawing version `version` through the conversion
// library. -1 when the library or its openDWGVER is missing; otherwise what toVersion answers.
int ConvertDwgVersion(const std::wstring& source, const std::wstring& target, int version, int flags);
