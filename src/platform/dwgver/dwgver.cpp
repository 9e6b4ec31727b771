// The version conversion library that the module loads by its fixed path. It writes a copy of a
// drawing in the version asked for: version 8 (and any other) gives the 2004 format (AC1018)
// that the module saves in, as DWG when the target's name ends in ".dwg" and as DXF otherwise.
#include <cstdio>

#include "platform/db/database.hpp"
#include "platform/dwg/write.hpp"
#include "platform/win/codepage.hpp"
#include "platform/win/paths.hpp"

extern "C" void openDWGVER() {}
extern "C" void closeDWGVER() {}

// 0 on success; otherwise the status of the read or the write.
extern "C" int toVersion(const wchar_t* source, int flags, const wchar_t* target, int version) {
    AcDbDatabase drawing(false, true);
    Acad::ErrorStatus es = drawing.readDwgFile(source, 0x40, false, nullptr);
    if (es != Acad::eOk) {
        std::fprintf(stderr, "dwgver: %s\n", Utf8FromWide(drawing.lastError()).c_str());
        return es;
    }
    const std::string path = ResolvePath(target).string();
    dwg::DwgWriteReport report;
    es = dwg::SaveDrawingFile(drawing, path, static_cast<int>(HostCodePage()), report);
    dwg::PrintLeftOut("dwgver", path, report);
    if (es != Acad::eOk) std::fprintf(stderr, "dwgver: %s\n", Utf8FromWide(drawing.lastError()).c_str());
    return es;
}
