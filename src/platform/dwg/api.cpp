// The host's entry point for reading drawing files: the kind of file is told by its content,
// so that a ".dwg" name may hold DXF and the other way round.

#include <fstream>

#include "platform/dwg/read.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/mapped_file.hpp"
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
    const auto got = static_cast<std::size_t>(in.gcount());
    if (!in && got == 0) {
        setLastError(std::wstring(fileName) + L":0: DXF001 cannot open the file: " + dxf::Wide(dxf::WhyUnreadable(path)));
        return Acad::eFileNotFound;
    }
    discardContents();
    Acad::ErrorStatus status;
    if (!dwg::LooksLikeDwg(std::span(reinterpret_cast<const std::uint8_t*>(head), got))) {
        status = dxf::ReadDxfFile(*this, path);
    } else {
        status = dwg::ReadDwgFile(*this, path);
    }
    // The drawing keeps the name it was read by, as the host does: the module cuts folder and
    // title out of it at backslashes.
    if (status == Acad::eOk) setFilename(fileName);
    return status;
}
