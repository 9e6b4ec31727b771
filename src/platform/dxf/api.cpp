// The host's entry points for drawing files, over the codec.
#include <sys/stat.h>

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

// Why a drawing that could not be read is not there to read: missing, a folder, empty, or
// what the operating system says.
std::wstring WhyUnreadable(const std::string& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0)
        return errno == ENOENT ? L"the file does not exist" : dxf::Wide(std::strerror(errno));
    if (S_ISDIR(info.st_mode)) return L"it is a folder, not a file";
    if (::access(path.c_str(), R_OK) != 0) return L"permission denied";
    if (info.st_size == 0) return L"the file is empty";
    return L"the file cannot be read";
}

}  // namespace

Acad::ErrorStatus AcDbDatabase::readDwgFile(const ACHAR* fileName, int, bool, const wchar_t*) {
    if (fileName == nullptr) return Acad::eNoFileName;
    // Drawings are named by Windows paths, resolved through the prefix.
    std::string path = ResolvePath(fileName).string();
    std::ifstream in(path, std::ios::binary);
    char head[32] = {};
    in.read(head, sizeof head);
    std::string_view start(head, static_cast<size_t>(in.gcount()));
    if (!in && in.gcount() == 0) {
        setLastError(std::wstring(fileName) + L":0: DXF001 cannot open the file: " + WhyUnreadable(path));
        return Acad::eFileNotFound;
    }
    if (start.substr(0, 4) == "AC10" || start.substr(0, 4) == "AC20") {
        setLastError(std::wstring(fileName) +
                     L":0: DXF002 a DWG drawing; only DXF drawings can be read");
        return Acad::eUnknownDxfFileFormat;
    }
    discardContents();
    return dxf::ReadDxfFile(*this, path);
}

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
    if (es == Acad::eOk && savedObserver) savedObserver(*this, path);
    return es;
}

Acad::ErrorStatus acdbSaveAs2004(AcDbDatabase* db, const ACHAR* fileName) {
    if (db == nullptr) return Acad::eNullObjectPointer;
    return db->saveAs(fileName);
}
