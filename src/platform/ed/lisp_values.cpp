// Values of LISP calls: the arguments a call receives, the value it returns, and the reader of
// calls typed at the command line.
#include <algorithm>
#include <cwchar>
#include <cwctype>
#include <vector>

#include "platform/ed/editor_state.hpp"
#include "platform/ed/lisp.hpp"
#include "platform/ed/resbuf.hpp"

namespace {

void SetResult(resbuf* value) {
    acutRelRb(Editor().lispResult);
    Editor().lispResult = value;
}

std::wstring Number(double value) {
    wchar_t text[64];
    std::swprintf(text, 64, L"%.6g", value);
    std::wstring s = text;
    return s.find_first_of(L".e") == std::wstring::npos ? s + L".0" : s;
}

std::wstring FormatValue(const resbuf* rb) {
    if (!rb) return L"nil";
    switch (rb->restype) {
        case RTT: return L"T";
        case RTNIL: return L"nil";
        case RTVOID: return L"";
        case RTSHORT: return std::to_wstring(rb->resval.rint);
        case RTLONG: return std::to_wstring(rb->resval.rlong);
        case RTREAL: return Number(rb->resval.rreal);
        case RTSTR: return L"\"" + std::wstring(rb->resval.rstring) + L"\"";
        case RTPOINT: return L"(" + Number(rb->resval.rpoint[0]) + L" " + Number(rb->resval.rpoint[1]) + L")";
        case RT3DPOINT:
            return L"(" + Number(rb->resval.rpoint[0]) + L" " + Number(rb->resval.rpoint[1]) + L" " +
                   Number(rb->resval.rpoint[2]) + L")";
        default: return L"nil";
    }
}

// The reader: a cursor over the typed line.
struct Reader {
    const std::wstring& text;
    size_t at = 0;
    std::wstring error;

    void Blanks() {
        while (at < text.size() && std::iswspace(text[at])) ++at;
    }
    bool Done() {
        Blanks();
        return at >= text.size();
    }
    std::wstring Token() {
        Blanks();
        size_t start = at;
        while (at < text.size() && !std::iswspace(text[at]) && text[at] != L'(' && text[at] != L')' && text[at] != L'\'')
            ++at;
        return text.substr(start, at - start);
    }
};

void Append(resbuf**& tail, resbuf* rb) {
    *tail = rb;
    while (*tail) tail = &(*tail)->rbnext;
}

resbuf* Atom(Reader& r) {
    r.Blanks();
    if (r.at < r.text.size() && r.text[r.at] == L'"') {
        size_t end = r.text.find(L'"', r.at + 1);
        if (end == std::wstring::npos) {
            r.error = L"a string is not closed";
            return nullptr;
        }
        resbuf* rb = acutNewRb(RTSTR);
        SetResbufString(rb, r.text.substr(r.at + 1, end - r.at - 1).c_str());
        r.at = end + 1;
        return rb;
    }
    std::wstring token = r.Token();
    if (token == L"T" || token == L"t") return acutNewRb(RTT);
    if (token == L"nil" || token == L"NIL") return acutNewRb(RTNIL);
    wchar_t* end = nullptr;
    double value = std::wcstod(token.c_str(), &end);
    if (token.empty() || !end || *end != L'\0') {
        r.error = token.empty() ? L"an argument is missing" : L"\"" + token + L"\" is not a value the host reads";
        return nullptr;
    }
    bool integral = token.find_first_of(L".eE") == std::wstring::npos;
    if (integral && value >= -32768 && value <= 32767) {
        resbuf* rb = acutNewRb(RTSHORT);
        rb->resval.rint = static_cast<short>(value);
        return rb;
    }
    resbuf* rb = acutNewRb(integral ? RTLONG : RTREAL);
    if (integral) rb->resval.rlong = static_cast<std::int32_t>(value);
    else rb->resval.rreal = value;
    return rb;
}

bool IsNumber(const resbuf* rb) { return rb->restype == RTSHORT || rb->restype == RTLONG || rb->restype == RTREAL; }
double NumberOf(const resbuf* rb) {
    return rb->restype == RTREAL ? rb->resval.rreal : rb->restype == RTLONG ? rb->resval.rlong : rb->resval.rint;
}

resbuf* Value(Reader& r);

// A quoted list: two or three numbers make a point, anything else a list in RTLB ... RTLE.
resbuf* List(Reader& r) {
    ++r.at;  // '('
    std::vector<resbuf*> members;
    while (!r.Done() && r.text[r.at] != L')') {
        resbuf* member = Value(r);
        if (!member) {
            for (resbuf* m : members) acutRelRb(m);
            return nullptr;
        }
        members.push_back(member);
    }
    if (r.Done()) {
        for (resbuf* m : members) acutRelRb(m);
        r.error = L"a list is not closed";
        return nullptr;
    }
    ++r.at;  // ')'
    bool point = (members.size() == 2 || members.size() == 3) &&
                 std::all_of(members.begin(), members.end(), [](const resbuf* m) { return !m->rbnext && IsNumber(m); });
    if (point) {
        resbuf* rb = acutNewRb(members.size() == 2 ? RTPOINT : RT3DPOINT);
        for (size_t i = 0; i < members.size(); ++i) rb->resval.rpoint[i] = NumberOf(members[i]);
        for (resbuf* m : members) acutRelRb(m);
        return rb;
    }
    resbuf* head = acutNewRb(RTLB);
    resbuf** tail = &head->rbnext;
    for (resbuf* m : members) Append(tail, m);
    Append(tail, acutNewRb(RTLE));
    return head;
}

resbuf* Value(Reader& r) {
    r.Blanks();
    if (r.at < r.text.size() && r.text[r.at] == L'\'') {
        ++r.at;
        r.Blanks();
        if (r.at < r.text.size() && r.text[r.at] == L'(') return List(r);
        r.error = L"only quoted lists are read";
        return nullptr;
    }
    if (r.at < r.text.size() && r.text[r.at] == L'(') {
        r.error = L"a call inside a call is not evaluated by the host; quote lists: '(0 0 0)";
        return nullptr;
    }
    return Atom(r);
}

}  // namespace

resbuf* acedGetArgs() { return Editor().lispArguments; }
int acedRetT() { SetResult(acutNewRb(RTT)); return RTNORM; }
int acedRetNil() { SetResult(acutNewRb(RTNIL)); return RTNORM; }
int acedRetVoid() { SetResult(acutNewRb(RTVOID)); return RTNORM; }
int acedRetReal(double value) { SetResult(acutBuildList(RTREAL, value, 0)); return RTNORM; }
int acedRetInt(int value) { SetResult(acutBuildList(RTLONG, static_cast<std::int32_t>(value), 0)); return RTNORM; }
int acedRetStr(const ACHAR* value) { SetResult(acutBuildList(RTSTR, value ? value : L"", 0)); return RTNORM; }
int acedRetPoint(const double* point) { SetResult(acutBuildList(RT3DPOINT, point, 0)); return RTNORM; }

int InvokeLispFunction(const ACHAR* name, const resbuf* arguments, std::wstring& result) {
    resbuf* savedArguments = Editor().lispArguments;
    resbuf* savedResult = Editor().lispResult;
    Editor().lispArguments = const_cast<resbuf*>(arguments);
    Editor().lispResult = nullptr;
    int status = InvokeLispFunction(name);
    result = FormatValue(Editor().lispResult);
    acutRelRb(Editor().lispResult);
    Editor().lispArguments = savedArguments;
    Editor().lispResult = savedResult;
    return status;
}

bool ParseLispCall(const std::wstring& line, std::wstring& name, resbuf*& arguments, std::wstring& error) {
    arguments = nullptr;
    Reader r{line, 0, L""};
    r.Blanks();
    if (r.at >= line.size() || line[r.at] != L'(') {
        error = L"a call begins with \"(\"";
        return false;
    }
    ++r.at;
    name = r.Token();
    if (name.empty()) {
        error = L"the call names no function";
        return false;
    }
    resbuf** tail = &arguments;
    while (!r.Done() && line[r.at] != L')') {
        resbuf* value = Value(r);
        if (!value) break;
        Append(tail, value);
    }
    if (r.error.empty() && r.Done()) r.error = L"the call is not closed by \")\"";
    if (r.error.empty() && (++r.at, !r.Done())) r.error = L"text after the closing \")\"";
    if (!r.error.empty()) {
        error = r.error;
        acutRelRb(arguments);
        arguments = nullptr;
        return false;
    }
    return true;
}
