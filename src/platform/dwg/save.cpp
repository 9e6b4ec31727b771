// The host's entry point for saving drawing files: the target's extension chooses the format,
// AC1018 DWG for ".dwg" and DXF for any other name (reading, which tells DWG from DXF by the
// content, is in api.cpp).
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "platform/dwg/write.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"
#include "platform/win/codepage.hpp"
#include "platform/win/faults.hpp"
#include "platform/win/paths.hpp"
#include "platform/win/recycle.hpp"

bool dwg::NamesDwgFile(const std::string& path) {
    if (path.size() < 4) return false;
    std::string extension = path.substr(path.size() - 4);
    for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return extension == ".dwg";
}

void dwg::PrintLeftOut(const char* who, const std::string& path, const DwgWriteReport& report) {
    for (const auto& [type, count] : report.leftOut) {
        std::fprintf(stderr, "%s: %s: %d %s record(s) not written (no DWG encoder)\n", who,
                     path.c_str(), count, type.c_str());
    }
}

Acad::ErrorStatus dwg::SaveDrawingFile(AcDbDatabase& db, const std::string& path, int codePage,
                                       DwgWriteReport& report) {
    if (NamesDwgFile(path)) return WriteDwgFile(db, path, codePage, report);
    dxf::WriteOptions options;
    options.codePage = codePage;
    return dxf::WriteDxfFile(db, path, options);
}

Acad::ErrorStatus AcDbDatabase::saveAs(const ACHAR* fileName) {
    if (fileName == nullptr) return Acad::eNoFileName;
    std::filesystem::path target = ResolvePath(fileName);
    std::error_code code;
    if (std::filesystem::is_directory(target, code)) {
        setLastError(std::wstring(fileName) + L":0: DXF008 cannot save: a folder stands at that name");
        return Acad::eFileAccessErr;
    }
    if (DriveFullFault(target)) {
        setLastError(std::wstring(fileName) + L":0: DXF008 cannot write: " + dxf::Wide(std::strerror(ENOSPC)));
        return Acad::eFileAccessErr;
    }
    // The drawing that the save replaces is kept in the prefix's recycle folder.
    std::string reason;
    if (!RecycleCopy(target, reason)) {
        setLastError(std::wstring(fileName) + L":0: DXF008 " + dxf::Wide(reason));
        return Acad::eFileAccessErr;
    }
    std::string path = target.string();
    // The host writes in its ANSI code page.
    dwg::DwgWriteReport report;
    Acad::ErrorStatus es = dwg::SaveDrawingFile(*this, path, static_cast<int>(HostCodePage()), report);
    dwg::PrintLeftOut("saveAs", path, report);
    if (es != Acad::eOk) return es;
    setFilename(fileName);  // the host's name of the file, as given
    dxf::NotifyDrawingSaved(*this, path);
    return es;
}

Acad::ErrorStatus acdbSaveAs2004(AcDbDatabase* db, const ACHAR* fileName) {
    if (db == nullptr) return Acad::eNullObjectPointer;
    return db->saveAs(fileName);
}
