// Feeds whole files to the DWG reader: the container, the sections, the objects and the
// database they fill. A drawing that reads is written as DXF and that DXF read again, as a
// converted hand-off would be. The bytes are handed over as the host hands a file's (a 2004 one
// is given back once its sections are decoded). Fuzzing builds let mutated bytes past the CRCs
// (kCrcRefuses).
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "platform/dwg/read.hpp"
#include "platform/dxf/dxf.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    AcDbDatabase db(false, true);
    std::vector<std::uint8_t> file(data, data + size);
    if (dwg::ReadDwgBytes(db, std::move(file), "fuzz.dwg") != Acad::eOk) return 0;
    std::string text;
    dxf::WriteDxfText(db, {}, text);
    AcDbDatabase again(false, true);
    dxf::ReadDxfBytes(again, text, "fuzz-again.dxf");
    return 0;
}
