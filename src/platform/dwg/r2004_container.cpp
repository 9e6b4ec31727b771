#include "platform/dwg/container_pages.hpp"

namespace dwg {

bool ReadR2004Container(std::span<const std::uint8_t>, DwgContainer&, MapError& error) {
    error = {0x80, "the page container of 2004 and later files is not read yet"};
    return false;
}

bool ReadR2007Container(std::span<const std::uint8_t>, DwgContainer&, MapError& error) {
    error = {0x80, "the page container of 2007 files is not read yet"};
    return false;
}

}  // namespace dwg
