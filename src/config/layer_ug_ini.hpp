#pragma once
// CAD_layerug.ini: the layer translation table between the UG side and the drawing standard.
#include <string>
#include <vector>

// Layer `from` becomes layer `to`.
struct LConv {
    std::wstring from;
    std::wstring to;
};

// Drawing file number `number` (decimal text) selects layer `layer`.
struct fillay {
    std::wstring number;
    std::wstring layer;
};

class LayerUgIni {
public:
    // Keeps the path and reads the file.
    explicit LayerUgIni(std::wstring path);
    // Appends the rows of the file to the arrays, which are not emptied first.
    void Read();

    std::wstring special;               // the last setting line of [SPECIAL], whole
    std::vector<LConv> conversions;     // [CONVERT]
    std::vector<fillay> fillLayers;     // [FILLAY]
    std::wstring path;
    int missing = 0;                    // 1 when the file was not found
};
