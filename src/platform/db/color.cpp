#include "platform/db/color.hpp"

#include "platform/db/status.hpp"

int AcCmColor::setColorIndex(std::uint16_t index) {
    if (index > 257) return Acad::eBadColorIndex;
    m_index = index;
    m_hasTrueColor = false;
    m_rgb = 0;
    m_name = std::wstring_view();
    return Acad::eOk;
}

AcCmColor::ColorMethod AcCmColor::colorMethod() const {
    if (m_hasTrueColor) return kByColor;
    if (m_index == 256) return kByLayer;
    if (m_index == 0) return kByBlock;
    return kByACI;
}
