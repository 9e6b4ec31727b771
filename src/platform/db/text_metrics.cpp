#include "platform/db/text_metrics.hpp"

namespace tavrik::text_metrics {

bool isFullWidth(wchar_t c) {
    const auto u = static_cast<unsigned long>(c);
    return (u >= 0x1100 && u <= 0x115F) || (u >= 0x2E80 && u <= 0xA4CF) ||
           (u >= 0xAC00 && u <= 0xD7A3) || (u >= 0xF900 && u <= 0xFAFF) ||
           (u >= 0xFE30 && u <= 0xFE4F) || (u >= 0xFF00 && u <= 0xFF60) ||
           (u >= 0xFFE0 && u <= 0xFFE6) || (u >= 0x20000 && u <= 0x3FFFD);
}

double lineWidth(const std::wstring& text, double height, double widthFactor) {
    double cells = 0.0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == L'%' && i + 2 < text.size() && text[i + 1] == L'%') i += 2;
        cells += isFullWidth(text[i]) ? 1.0 : kCellWidthRatio;
    }
    return cells * height * widthFactor;
}

}  // namespace tavrik::text_metrics
