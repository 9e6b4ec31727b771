#pragma once
// CAD_standard.ini: the drawing standard. Settings are "KEY,value" lines in the sections
// [LAYER], [DIMSTYLE], [SUNDRY] and [SCRSET]; values are upper case once read.
#include <cstdint>
#include <string>
#include <vector>

// A row of [SCRSET]: a colour number and a layer name suffix.
struct collay {
    std::int32_t color = 0;
    std::wstring suffix;
};

// A tolerance written a^b: first = -b, second = a; off when both are nearly zero or the text
// has no "^".
struct ToleranceSpec {
    double first = 0.0;
    double second = 0.0;
    std::int32_t off = 0;
};

// Names of layers in the exported drawing.
struct LayerKeys {
    std::wstring USTAND, URECT, RECT, STAND, BIGFRAM, FRONT, LEFT, TOP, DIM, STRINGS;
};

// Dimension variables of the host, by their names.
struct DimStyleKeys {
    std::wstring DIMSTYLE;
    double DIMSCALE = 0.0;
    int DIMDEC = 0;
    double DIMTXT = 0.0;
    int DIMCLRT = 0, DIMCLRE = 0, DIMCLRD = 0;
    double DIMASZ = 0.0;
    int DIMLWD = 0, DIMLWE = 0;
    double DIMEXE = 0.0, DIMEXO = 0.0, DIMGAP = 0.0;
    int DIMTAD = 0, DIMJUST = 0;
    bool DIMTIH = false, DIMTOH = false;
    int DIMZIN = 0, DIMTZIN = 0, DIMTDEC = 0;
    double DIMTFAC = 0.0;
    int DIMTOLJ = 0;
};

// Switches, tolerances and thresholds of the pipeline.
struct SundryKeys {
    int HOLECA = 0;
    double OFFSET = 0.0;
    int Reddec = 0;
    ToleranceSpec RedToler;
    int Eveldec = 0;
    ToleranceSpec EvelToler;
    int Otherdec = 0;
    ToleranceSpec OtherToler;
    int Basedec = 0;
    ToleranceSpec BaseToler;
    int Conerdec = 0;
    ToleranceSpec ConerToler;
    double DIMOFF = 0.0, ORDOFFSCL = 0.0, XMAX = 0.0, YMAX = 0.0;
    int CIRCOUNT = 0;
    std::wstring LOGFILE;
    bool TAVRIK = false, DIM = false, SUBCIR = false, STRSCV = false, SAVEQ = false;
    int TIMELI = 0;
    std::wstring COMPANY;
    int ACWINDOWSTATE = 0;
};

class CadStandardIni {
public:
    // Keeps the path and reads the file.
    explicit CadStandardIni(std::wstring path);
    // Reads the file over the present values: absent keys keep theirs, [SCRSET] rows are
    // appended, and `section` goes on from where the last read left it.
    void Read();

    LayerKeys layer;        // [LAYER]
    DimStyleKeys dimStyle;  // [DIMSTYLE]
    SundryKeys sundry;      // [SUNDRY]
    std::vector<collay> colorLayers;  // [SCRSET]
    bool missing = false;   // the file was not found (and no setting line seen since)
    int section = 0;        // 0 [LAYER], 1 [DIMSTYLE], 2 [SUNDRY], 3 [SCRSET]
    std::wstring path;
};

// acdbDisToF in decimal mode; results within 1e-05 of zero become 0.0, unreadable text 0.0.
double ParseNumber(const std::wstring& text);
// "a^b" as a ToleranceSpec; text without "^" gives 0, 0 and off.
ToleranceSpec ParseToleranceSpec(const std::wstring& text);
