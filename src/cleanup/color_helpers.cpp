#include "cleanup/color_helpers.hpp"

#include <climits>
#include <cstdlib>

#include "platform/db/database.hpp"
#include "platform/db/symbol_tables.hpp"
#include "platform/ed/utilities.hpp"
#include "platform/win/crt.hpp"

namespace {

int Pack(const int numbers[3]) {
    return (numbers[0] & 0xFF) + (numbers[1] & 0xFF) * 256 + (numbers[2] & 0xFF) * 65536;
}

int ByteDifference(int a, int b, int shift) {
    return std::abs(((a >> shift) & 0xFF) - ((b >> shift) & 0xFF));
}

int LayerColorIndex(const std::wstring& layerName) {
    AcDbLayerTable* layers = nullptr;
    AcDbDatabase* db = acdbHostApplicationServices()->workingDatabase();
    if (!db || db->getSymbolTable(layers, AcDb::kForRead) != Acad::eOk) return -1;
    int index = -1;
    AcDbLayerTableRecord* layer = nullptr;
    if (layers->has(layerName) && layers->getAt(layerName, layer, AcDb::kForRead) == Acad::eOk) {
        index = layer->color().colorIndex();
        layer->close();
    }
    layers->close();
    return index;
}

}  // namespace

int ParseRgbText(const std::wstring& text) {
    int numbers[3] = {0, 0, 0};
    int field = 0;
    std::wstring number;
    size_t start = !text.empty() && text[0] == L'"' ? 1 : 0;
    for (size_t i = start; i < text.size() && field < 3; ++i) {
        wchar_t c = text[i];
        bool ends = c == L' ' || c == L'"';
        if (!ends) {
            number += c;
            ends = i + 1 == text.size();
        }
        if (!ends) continue;
        numbers[field++] = _wtoi(number.c_str());
        number.clear();
    }
    return Pack(numbers);
}

int PackNarrowRgb(const std::string& text, size_t maxDigits) {
    int numbers[3] = {0, 0, 0};
    int field = 0;
    std::string number;
    for (size_t i = 0; i <= text.size() && field < 3; ++i) {
        if (i < text.size() && text[i] != ' ') {
            if (number.size() < maxDigits) number += text[i];
            continue;
        }
        numbers[field++] = std::atoi(number.c_str());
        number.clear();
    }
    return Pack(numbers);
}

int NearestColorIndex(int packedColor) {
    int best = INT_MAX;
    int bestIndex = 0;
    for (int index = 1; index < 255; ++index) {
        int rgb = static_cast<int>(acedGetRGB(index));
        int sum = ByteDifference(rgb, packedColor, 0) + ByteDifference(rgb, packedColor, 8) +
                  ByteDifference(rgb, packedColor, 16);
        if (sum < best) {
            best = sum;
            bestIndex = index;
        }
    }
    return bestIndex;
}

int RgbTextToColorIndex(const std::string& text) { return NearestColorIndex(PackNarrowRgb(text, 35)); }

int EffectiveColorIndex(const AcDbEntity* entity) {
    int index = entity->colorIndex();
    if (index != 256) return index;
    return LayerColorIndex(entity->layer());
}

int EffectiveColorIndex(AcDbObjectId id) {
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) return -1;
    int index = EffectiveColorIndex(entity);
    entity->close();
    return index;
}
