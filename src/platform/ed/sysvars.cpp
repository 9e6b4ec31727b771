#include "platform/ed/sysvars.hpp"

#include <algorithm>
#include <cwchar>

#include "platform/ed/editor_state.hpp"
#include "platform/win/text.hpp"

namespace {

struct VariableDefault {
    const wchar_t* name;
    short type;
    double x, y, z;  // a real in x, a short in x, a point in x, y, z
    bool readOnly;
};

// The host's values at start: a plan view of the world from above, model space in tiles.
constexpr VariableDefault kDefaults[] = {
    {L"USERI1", RTSHORT, 0, 0, 0, false}, {L"USERI2", RTSHORT, 0, 0, 0, false},
    {L"USERI3", RTSHORT, 0, 0, 0, false}, {L"USERI4", RTSHORT, 0, 0, 0, false},
    {L"USERI5", RTSHORT, 0, 0, 0, false}, {L"PICKBOX", RTSHORT, 3, 0, 0, false},
    {L"TILEMODE", RTSHORT, 1, 0, 0, false}, {L"CVPORT", RTSHORT, 2, 0, 0, false},
    {L"VIEWMODE", RTSHORT, 0, 0, 0, true}, {L"VIEWDIR", RT3DPOINT, 0, 0, 1, true},
    {L"TARGET", RT3DPOINT, 0, 0, 0, true}, {L"LENSLENGTH", RTREAL, 50, 0, 0, true},
    {L"VIEWTWIST", RTREAL, 0, 0, 0, true}, {L"FRONTZ", RTREAL, 0, 0, 0, true},
    {L"BACKZ", RTREAL, 0, 0, 0, true},
};

// Derived from the current view.
constexpr const wchar_t* kViewVariables[] = {L"VIEWCTR", L"VIEWSIZE"};

std::wstring Key(const std::wstring& name) { return UpperCase(name); }

std::map<std::wstring, resbuf>& Variables() {
    auto& variables = Editor().systemVariables;
    if (variables.empty())
        for (const VariableDefault& d : kDefaults) {
            resbuf rb{};
            rb.restype = d.type;
            if (d.type == RTSHORT) rb.resval.rint = static_cast<short>(d.x);
            else if (d.type == RTREAL) rb.resval.rreal = d.x;
            else rb.resval.rpoint[0] = d.x, rb.resval.rpoint[1] = d.y, rb.resval.rpoint[2] = d.z;
            variables[d.name] = rb;
        }
    return variables;
}

bool IsViewVariable(const std::wstring& key) {
    return std::any_of(std::begin(kViewVariables), std::end(kViewVariables),
                       [&](const wchar_t* v) { return key == v; });
}

void ViewVariable(const std::wstring& key, resbuf* result) {
    const CurrentViewRecord& view = Editor().currentView;
    if (key == L"VIEWSIZE") {
        result->restype = RTREAL;
        result->resval.rreal = view.height;
        return;
    }
    result->restype = RT3DPOINT;
    result->resval.rpoint[0] = view.center.x;
    result->resval.rpoint[1] = view.center.y;
    result->resval.rpoint[2] = 0.0;
}

// A short may be given as a long or a real with an integral value; a point of 2D as RTPOINT.
bool Convert(const resbuf& from, short type, resbuf& to) {
    to.restype = type;
    if (type == RTSHORT && (from.restype == RTSHORT || from.restype == RTLONG)) {
        long value = from.restype == RTSHORT ? from.resval.rint : from.resval.rlong;
        if (value < -32768 || value > 32767) return false;
        to.resval.rint = static_cast<short>(value);
        return true;
    }
    if (type == RTREAL && (from.restype == RTREAL || from.restype == RTSHORT)) {
        to.resval.rreal = from.restype == RTREAL ? from.resval.rreal : from.resval.rint;
        return true;
    }
    if (type == RT3DPOINT && (from.restype == RT3DPOINT || from.restype == RTPOINT)) {
        std::copy(from.resval.rpoint, from.resval.rpoint + 3, to.resval.rpoint);
        if (from.restype == RTPOINT) to.resval.rpoint[2] = 0.0;
        return true;
    }
    return false;
}

std::wstring Number(double value) {
    wchar_t text[64];
    std::swprintf(text, 64, L"%.4f", value);
    return text;
}

}  // namespace

bool IsSystemVariable(const std::wstring& name) {
    std::wstring key = Key(name);
    return Variables().count(key) || IsViewVariable(key);
}

bool IsReadOnlySystemVariable(const std::wstring& name) {
    std::wstring key = Key(name);
    if (IsViewVariable(key)) return true;
    return std::any_of(std::begin(kDefaults), std::end(kDefaults),
                       [&](const VariableDefault& d) { return key == d.name && d.readOnly; });
}

std::vector<std::wstring> SystemVariableNames() {
    std::vector<std::wstring> names;
    for (const auto& [name, value] : Variables()) names.push_back(name);
    names.insert(names.end(), std::begin(kViewVariables), std::end(kViewVariables));
    std::sort(names.begin(), names.end());
    return names;
}

int acedGetVar(const ACHAR* name, resbuf* result) {
    if (!name || !result) return RTERROR;
    std::wstring key = Key(name);
    if (IsViewVariable(key)) {
        ViewVariable(key, result);
        return RTNORM;
    }
    auto found = Variables().find(key);
    if (found == Variables().end()) return RTERROR;
    result->restype = found->second.restype;
    result->resval = found->second.resval;
    return RTNORM;
}

int SetSystemVariable(const ACHAR* name, const resbuf* value) {
    if (!name || !value) return RTERROR;
    auto found = Variables().find(Key(name));
    if (found == Variables().end()) return RTERROR;
    resbuf converted{};
    if (!Convert(*value, found->second.restype, converted)) return RTERROR;
    found->second = converted;
    return RTNORM;
}

int acedSetVar(const ACHAR* name, const resbuf* value) {
    if (!name || IsReadOnlySystemVariable(name)) return RTERROR;
    return SetSystemVariable(name, value);
}

std::wstring FormatSystemVariable(const std::wstring& name) {
    resbuf value{};
    if (acedGetVar(name.c_str(), &value) != RTNORM) return L"";
    if (value.restype == RTSHORT) return std::to_wstring(value.resval.rint);
    if (value.restype == RTREAL) return Number(value.resval.rreal);
    return Number(value.resval.rpoint[0]) + L"," + Number(value.resval.rpoint[1]) + L"," + Number(value.resval.rpoint[2]);
}
