#include "platform/db/database.hpp"
#include "platform/db/dimension.hpp"

// The dimension variables and how a dimension resolves them: its own override, else its
// style's value (the database's current style when it names none), else the default.

namespace {
using K = AcDbDimVarValue::Kind;

AcDbObject* ObjectOfId(AcDbObjectId id) { return id.isValid() ? id.stub()->object.get() : nullptr; }
// The metric Standard style's values.
constexpr AcDbDimVarInfo kDimVars[] = {
    {3, "DIMPOST", K::kString, 0},      {4, "DIMAPOST", K::kString, 0},
    {40, "DIMSCALE", K::kReal, 1.0},    {41, "DIMASZ", K::kReal, 2.5},
    {42, "DIMEXO", K::kReal, 0.625},    {43, "DIMDLI", K::kReal, 3.75},
    {44, "DIMEXE", K::kReal, 1.25},     {45, "DIMRND", K::kReal, 0.0},
    {46, "DIMDLE", K::kReal, 0.0},      {47, "DIMTP", K::kReal, 0.0},
    {48, "DIMTM", K::kReal, 0.0},       {140, "DIMTXT", K::kReal, 2.5},
    {141, "DIMCEN", K::kReal, 2.5},     {142, "DIMTSZ", K::kReal, 0.0},
    {143, "DIMALTF", K::kReal, 0.03937007874}, {144, "DIMLFAC", K::kReal, 1.0},
    {145, "DIMTVP", K::kReal, 0.0},     {146, "DIMTFAC", K::kReal, 1.0},
    {147, "DIMGAP", K::kReal, 0.625},   {148, "DIMALTRND", K::kReal, 0.0},
    {71, "DIMTOL", K::kInt, 0},         {72, "DIMLIM", K::kInt, 0},
    {73, "DIMTIH", K::kInt, 0},         {74, "DIMTOH", K::kInt, 0},
    {75, "DIMSE1", K::kInt, 0},         {76, "DIMSE2", K::kInt, 0},
    {77, "DIMTAD", K::kInt, 1},         {78, "DIMZIN", K::kInt, 8},
    {79, "DIMAZIN", K::kInt, 0},        {170, "DIMALT", K::kInt, 0},
    {171, "DIMALTD", K::kInt, 3},       {172, "DIMTOFL", K::kInt, 1},
    {173, "DIMSAH", K::kInt, 0},        {174, "DIMTIX", K::kInt, 0},
    {175, "DIMSOXD", K::kInt, 0},       {176, "DIMCLRD", K::kInt, 0},
    {177, "DIMCLRE", K::kInt, 0},       {178, "DIMCLRT", K::kInt, 0},
    {179, "DIMADEC", K::kInt, 0},       {271, "DIMDEC", K::kInt, 2},
    {272, "DIMTDEC", K::kInt, 2},       {273, "DIMALTU", K::kInt, 2},
    {274, "DIMALTTD", K::kInt, 3},      {275, "DIMAUNIT", K::kInt, 0},
    {276, "DIMFRAC", K::kInt, 0},       {277, "DIMLUNIT", K::kInt, 2},
    {278, "DIMDSEP", K::kInt, 44},      {279, "DIMTMOVE", K::kInt, 0},
    {280, "DIMJUST", K::kInt, 0},       {281, "DIMSD1", K::kInt, 0},
    {282, "DIMSD2", K::kInt, 0},        {283, "DIMTOLJ", K::kInt, 0},
    {284, "DIMTZIN", K::kInt, 8},       {285, "DIMALTZ", K::kInt, 0},
    {286, "DIMALTTZ", K::kInt, 0},      {288, "DIMUPT", K::kInt, 0},
    {289, "DIMATFIT", K::kInt, 3},      {340, "DIMTXSTY", K::kHandle, 0},
    {341, "DIMLDRBLK", K::kHandle, 0},  {342, "DIMBLK", K::kHandle, 0},
    {343, "DIMBLK1", K::kHandle, 0},    {344, "DIMBLK2", K::kHandle, 0},
    {371, "DIMLWD", K::kInt, -2},       {372, "DIMLWE", K::kInt, -2},
};
}  // namespace

const AcDbDimVarInfo* acdbDimVarByCode(int code) {
    for (const AcDbDimVarInfo& info : kDimVars)
        if (info.code == code) return &info;
    return nullptr;
}

const AcDbDimVarInfo* acdbDimVarByName(const std::string& name) {
    for (const AcDbDimVarInfo& info : kDimVars)
        if (name == info.name) return &info;
    return nullptr;
}

// ---- Effective values: override, else style, else default ----

const AcDbDimVarValue* AcDbDimension::styleValue(int code) const {
    AcDbObjectId styleId = m_style;
    if (styleId.isNull() && database() != nullptr) styleId = database()->dimstyle();
    // No current style named: the drawing's Standard style is the current one.
    if (styleId.isNull() && database() != nullptr) {
        auto* table = AcDbDimStyleTable::cast(ObjectOfId(database()->dimStyleTableId()));
        if (table != nullptr) table->getAt(L"Standard", styleId);
    }
    if (!styleId.isValid()) return nullptr;
    auto* style = AcDbDimStyleTableRecord::cast(styleId.stub()->object.get());
    if (style == nullptr) return nullptr;
    auto found = style->dimVars().find(code);
    return found == style->dimVars().end() ? nullptr : &found->second;
}

double AcDbDimension::realVar(int code) const {
    auto found = m_overrides.find(code);
    if (found != m_overrides.end()) return found->second.real;
    if (const AcDbDimVarValue* v = styleValue(code)) return v->real;
    const AcDbDimVarInfo* info = acdbDimVarByCode(code);
    return info ? info->defaultValue : 0.0;
}

int AcDbDimension::intVar(int code) const {
    auto found = m_overrides.find(code);
    if (found != m_overrides.end()) return found->second.integer;
    if (const AcDbDimVarValue* v = styleValue(code)) return v->integer;
    const AcDbDimVarInfo* info = acdbDimVarByCode(code);
    return info ? static_cast<int>(info->defaultValue) : 0;
}

Acad::ErrorStatus AcDbDimension::setRealVar(int code, double v) {
    AcDbDimVarValue value;
    value.kind = AcDbDimVarValue::kReal;
    value.real = v;
    m_overrides[code] = value;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDimension::setIntVar(int code, int v) {
    AcDbDimVarValue value;
    value.kind = AcDbDimVarValue::kInt;
    value.integer = v;
    m_overrides[code] = value;
    return Acad::eOk;
}

AcCmColor AcDbDimension::colorVar(int code) const {
    AcCmColor color;
    color.setColorIndex(static_cast<std::uint16_t>(intVar(code)));
    return color;
}
