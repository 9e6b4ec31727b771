// The host's entry point for saving drawing files, over the DXF codec (reading, which tells
// DWG from DXF, is in the DWG codec's api.cpp).
#include <cerrno>
#include <cstring>
#include <fstream>

#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"
#include "platform/win/codepage.hpp"
#include "platform/win/faults.hpp"
#include "platform/win/paths.hpp"
#include "platform/win/recycle.hpp"

namespace {
dxf::DrawingSavedObserver savedObserver = nullptr;
}  // namespace

void dxf::SetDrawingSavedObserver(DrawingSavedObserver observer) { savedObserver = observer; }

Acad::ErrorStatus AcDbDatabase::saveAs(const ACHAR* fileName) {
    if (fileName == nullptr) return Acad::eNoFileName;
    dxf::WriteOptions options;
    options.codePage = static_cast<int>(HostCodePage());  // the host writes in its ANSI code page
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
    Acad::ErrorStatus es = dxf::WriteDxfFile(*this, path, options);
    if (es == Acad::eOk) setFilename(fileName);  // the host's name of the file, as given
    if (es == Acad::eOk && savedObserver) savedObserver(*this, path);
    return es;
}

Acad::ErrorStatus acdbSaveAs2004(AcDbDatabase* db, const ACHAR* fileName) {
    if (db == nullptr) return Acad::eNullObjectPointer;
    return db->saveAs(fileName);
}
