#pragma once
#include <cstdint>
#include <string>

#include "platform/db/shared_name.hpp"

// An entity or layer colour: a colour index (0 ByBlock, 1-255, 256 ByLayer), optionally a true
// colour and a colour-book name, which the drawing file keeps beside the index.
class AcCmColor {
public:
    enum ColorMethod { kByLayer = 0xC0, kByBlock = 0xC1, kByColor = 0xC2, kByACI = 0xC3 };

    AcCmColor() = default;

    std::uint16_t colorIndex() const { return m_index; }
    // Sets an index and forgets any true colour.
    int setColorIndex(std::uint16_t index);
    ColorMethod colorMethod() const;
    bool isByLayer() const { return m_index == 256 && !m_hasTrueColor; }
    bool isByBlock() const { return m_index == 0 && !m_hasTrueColor; }
    void setByLayer() { setColorIndex(256); }
    void setByBlock() { setColorIndex(0); }

    bool hasTrueColor() const { return m_hasTrueColor; }
    // 0x00RRGGBB.
    std::uint32_t trueColor() const { return m_rgb; }
    void setTrueColor(std::uint32_t rgb) { m_rgb = rgb & 0xFFFFFF; m_hasTrueColor = true; }
    const std::wstring& colorName() const { return m_name.str(); }
    void setColorName(const std::wstring& name) { m_name = name; }

    bool operator==(const AcCmColor&) const = default;

private:
    AcDbSharedName m_name;  // colour-book names are few and repeat
    std::uint32_t m_rgb = 0;
    std::uint16_t m_index = 256;
    bool m_hasTrueColor = false;
};
