#include "config/cad_standard_ini.hpp"

#include <cmath>
#include <string_view>
#include <variant>
#include <vector>

#include "config/setting_lines.hpp"
#include "pipeline/logs.hpp"
#include "platform/ed/ads.hpp"
#include "platform/ed/utilities.hpp"
#include "platform/win/crt.hpp"
#include "platform/win/stdio_file.hpp"
#include "platform/win/text.hpp"

namespace {

enum Section { kLayer = 0, kDimStyle = 1, kSundry = 2, kScrSet = 3 };

// An integer taken from the number truncated towards zero, not from the integer reading.
struct TruncatedNumber {
    int* field;
};

using FieldRef = std::variant<std::wstring*, int*, double*, bool*, ToleranceSpec*, TruncatedNumber>;

struct KeyField {
    std::wstring_view key;
    FieldRef field;
};

std::vector<KeyField> LayerFields(LayerKeys& k) {
    return {{L"USTAND", &k.USTAND}, {L"URECT", &k.URECT},   {L"RECT", &k.RECT},
            {L"STAND", &k.STAND},   {L"BIGFRAM", &k.BIGFRAM}, {L"FRONT", &k.FRONT},
            {L"LEFT", &k.LEFT},     {L"TOP", &k.TOP},       {L"DIM", &k.DIM},
            {L"STRINGS", &k.STRINGS}};
}

std::vector<KeyField> DimStyleFields(DimStyleKeys& k) {
    return {{L"DIMSTYLE", &k.DIMSTYLE}, {L"DIMSCALE", &k.DIMSCALE},
            {L"DIMDEC", TruncatedNumber{&k.DIMDEC}}, {L"DIMTXT", &k.DIMTXT},
            {L"DIMCLRT", &k.DIMCLRT},   {L"DIMCLRE", &k.DIMCLRE}, {L"DIMCLRD", &k.DIMCLRD},
            {L"DIMASZ", &k.DIMASZ},     {L"DIMLWD", &k.DIMLWD},   {L"DIMLWE", &k.DIMLWE},
            {L"DIMEXE", &k.DIMEXE},     {L"DIMEXO", &k.DIMEXO},   {L"DIMGAP", &k.DIMGAP},
            {L"DIMTAD", &k.DIMTAD},     {L"DIMJUST", &k.DIMJUST}, {L"DIMTIH", &k.DIMTIH},
            {L"DIMTOH", &k.DIMTOH},     {L"DIMZIN", &k.DIMZIN},   {L"DIMTZIN", &k.DIMTZIN},
            {L"DIMTDEC", &k.DIMTDEC},   {L"DIMTFAC", &k.DIMTFAC}, {L"DIMTOLJ", &k.DIMTOLJ}};
}

std::vector<KeyField> SundryFields(SundryKeys& k) {
    return {{L"HOLECA", &k.HOLECA},       {L"OFFSET", &k.OFFSET},
            {L"Reddec", &k.Reddec},       {L"RedToler", &k.RedToler},
            {L"Eveldec", &k.Eveldec},     {L"EvelToler", &k.EvelToler},
            {L"Otherdec", &k.Otherdec},   {L"OtherToler", &k.OtherToler},
            {L"Basedec", &k.Basedec},     {L"BaseToler", &k.BaseToler},
            {L"Conerdec", &k.Conerdec},   {L"ConerToler", &k.ConerToler},
            {L"DIMOFF", &k.DIMOFF},       {L"ORDOFFSCL", &k.ORDOFFSCL},
            {L"XMAX", &k.XMAX},           {L"YMAX", &k.YMAX},
            {L"CIRCOUNT", &k.CIRCOUNT},   {L"LOGFILE", &k.LOGFILE},
            {L"TAVRIK", &k.TAVRIK},       {L"DIM", &k.DIM},
            {L"SUBCIR", &k.SUBCIR},       {L"STRSCV", &k.STRSCV},
            {L"SAVEQ", &k.SAVEQ},         {L"TIMELI", &k.TIMELI},
            {L"COMPANY", &k.COMPANY},     {L"ACWINDOWSTATE", &k.ACWINDOWSTATE}};
}

// Stores the value in the form that the field's type asks for.
void Store(const FieldRef& field, const std::wstring& value) {
    int integer = _wtoi(value.c_str());
    double number = ParseNumber(value);
    struct {
        const std::wstring& value;
        int integer;
        double number;
        void operator()(std::wstring* f) const { *f = value; }
        void operator()(int* f) const { *f = integer; }
        void operator()(double* f) const { *f = number; }
        void operator()(bool* f) const { *f = integer != 0; }
        void operator()(ToleranceSpec* f) const { *f = ParseToleranceSpec(value); }
        void operator()(TruncatedNumber f) const { *f.field = static_cast<int>(number); }
    } store{value, integer, number};
    std::visit(store, field);
}

// acdbDisToF in decimal mode; a text that is no number reads as 0.0.
double ReadDistance(const std::wstring& text) {
    double value = 0.0;
    if (acdbDisToF(text.c_str(), 2, &value) != RTNORM) return 0.0;
    return value;
}

}  // namespace

double ParseNumber(const std::wstring& text) {
    double value = ReadDistance(text);
    return std::fabs(value) <= 1e-05 ? 0.0 : value;
}

ToleranceSpec ParseToleranceSpec(const std::wstring& text) {
    std::vector<std::wstring> pieces;
    SplitString(text, L"^", pieces);
    if (pieces.size() < 2) return {0.0, 0.0, 1};
    double upper = ReadDistance(pieces[0]);
    double lower = ReadDistance(pieces[1]);
    bool off = std::fabs(upper) < 1e-05 && std::fabs(lower) < 1e-05;
    return {-lower, upper, off ? 1 : 0};
}

CadStandardIni::CadStandardIni(std::wstring path) : path(std::move(path)) { Read(); }

void CadStandardIni::Read() {
    auto onSetting = [&](const SettingLine& setting) {
        if (section == kScrSet) {
            colorLayers.push_back({_wtoi(setting.key.c_str()), setting.value});
        } else {
            std::vector<KeyField> fields = section == kLayer      ? LayerFields(layer)
                                           : section == kDimStyle ? DimStyleFields(dimStyle)
                                                                  : SundryFields(sundry);
            for (const KeyField& field : fields)
                if (EqualNoCase(field.key, setting.key)) Store(field.field, setting.value);
        }
        missing = false;
    };
    if (!ReadSettingLines(path, CFile::modeRead | CFile::shareDenyNone,
                          {L"[LAYER]", L"[DIMSTYLE]", L"[SUNDRY]", L"[SCRSET]"}, section, onSetting))
        missing = true;
}
