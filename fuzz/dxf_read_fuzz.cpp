// Feeds arbitrary bytes to the DXF reader; a readable input is written back and read again.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/dxf/dxf.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view bytes(reinterpret_cast<const char*>(data), size);
    AcDbDatabase db(false, true);
    if (dxf::ReadDxfBytes(db, bytes, "fuzz.dxf") != Acad::eOk) return 0;
    std::string text;
    dxf::WriteDxfText(db, {}, text);
    AcDbDatabase again(false, true);
    dxf::ReadDxfBytes(again, text, "fuzz-again.dxf");
    return 0;
}
