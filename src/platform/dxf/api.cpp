// The host's entry points for drawing files, over the codec.
#include <fstream>

#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"

namespace dxf {
namespace {
int g_hostCodePage = 936;
}
void SetSaveCodePage(int codePage) { g_hostCodePage = codePage; }
int SaveCodePage() { return g_hostCodePage; }
}  // namespace dxf

Acad::ErrorStatus AcDbDatabase::readDwgFile(const ACHAR* fileName, int, bool, const wchar_t*) {
    if (fileName == nullptr) return Acad::eNoFileName;
    std::string path = dxf::Utf8(fileName);
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
    return dxf::ReadDxfFile(*this, path);
}

Acad::ErrorStatus AcDbDatabase::saveAs(const ACHAR* fileName) {
    if (fileName == nullptr) return Acad::eNoFileName;
    dxf::WriteOptions options;
    options.codePage = dxf::SaveCodePage();
    return dxf::WriteDxfFile(*this, dxf::Utf8(fileName), options);
}

Acad::ErrorStatus acdbSaveAs2004(AcDbDatabase* db, const ACHAR* fileName) {
    if (db == nullptr) return Acad::eNullObjectPointer;
    return db->saveAs(fileName);
}
