// The host's entry points for drawing files, over the codec.
#include <fstream>

#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"
#include "platform/win/codepage.hpp"
#include "platform/win/paths.hpp"


Acad::ErrorStatus AcDbDatabase::readDwgFile(const ACHAR* fileName, int, bool, const wchar_t*) {
    if (fileName == nullptr) return Acad::eNoFileName;
    // Drawings are named by Windows paths, resolved through the prefix.
    std::string path = ResolvePath(fileName).string();
    std::ifstream in(path, std::ios::binary);
    char head[32] = {};
    in.read(head, sizeof head);
    std::string_view start(head, static_cast<size_t>(in.gcount()));
    if (!in && in.gcount() == 0) {
        setLastError(std::wstring(fileName) + L":0: DXF001 cannot open the file");
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
    std::string path = ResolvePath(fileName).string();
    Acad::ErrorStatus es = dxf::WriteDxfFile(*this, path, options);
    if (es == Acad::eOk && savedObserver) savedObserver(*this, path);
    return es;
}

Acad::ErrorStatus acdbSaveAs2004(AcDbDatabase* db, const ACHAR* fileName) {
    if (db == nullptr) return Acad::eNullObjectPointer;
    return db->saveAs(fileName);
}
