// The format codes of multi-line texts, read left to right with a stack of looks for the
// { } groups. Codes with a value run up to their ';'.
#include "platform/render/mtext_format.hpp"

#include <cwchar>
#include <sstream>

namespace tavrik::render {

namespace {

struct Reader {
    const std::wstring& s;
    size_t i = 0;
    double textHeight = 1.0;
    std::vector<RunLook> looks{RunLook{}};
    std::vector<Paragraph> paragraphs{Paragraph{}};

    RunLook& look() { return looks.back(); }

    // The value of a code: the text up to the next ';' (or the end), which is passed over.
    std::wstring value() {
        size_t end = s.find(L';', i);
        if (end == std::wstring::npos) end = s.size();
        std::wstring text = s.substr(i, end - i);
        i = end < s.size() ? end + 1 : end;
        return text;
    }

    // Appends a character to the last run when it has this look, else to a new run.
    void put(wchar_t c) {
        Paragraph& runs = paragraphs.back();
        if (runs.empty() || runs.back().stack != StackKind::kNone || !SameLook(runs.back().look, look()))
            runs.push_back(TextRun{{}, StackKind::kNone, {}, {}, look()});
        runs.back().text += c;
    }

    static bool SameLook(const RunLook& a, const RunLook& b) {
        return a.height == b.height && a.widthFactor == b.widthFactor && a.obliqueDegrees == b.obliqueDegrees &&
               a.tracking == b.tracking && a.colorIndex == b.colorIndex && a.hasTrueColor == b.hasTrueColor &&
               a.trueColor == b.trueColor && a.bold == b.bold && a.italic == b.italic &&
               a.underline == b.underline && a.overline == b.overline && a.strike == b.strike;
    }
};

double Number(const std::wstring& text, double fallback) {
    wchar_t* end = nullptr;
    double v = std::wcstod(text.c_str(), &end);
    return end == text.c_str() ? fallback : v;
}

// \H: "0.7x" multiplies the current height; a plain number is a height in drawing units.
void SetHeight(Reader& r, const std::wstring& text) {
    bool relative = !text.empty() && (text.back() == L'x' || text.back() == L'X');
    double v = Number(relative ? text.substr(0, text.size() - 1) : text, 0.0);
    if (v <= 0) return;
    if (relative) r.look().height *= v;
    else if (r.textHeight > 0) r.look().height = v / r.textHeight;
}

// \W: "0.8x" multiplies the current width factor; a plain number replaces it.
void SetWidth(Reader& r, const std::wstring& text) {
    bool relative = !text.empty() && (text.back() == L'x' || text.back() == L'X');
    double v = Number(relative ? text.substr(0, text.size() - 1) : text, 0.0);
    if (v <= 0) return;
    r.look().widthFactor = relative ? r.look().widthFactor * v : v;
}

// \f family|b1|i0|c134|p34: bold and italic, each on only for the field "b1" or "i1" (a field
// "b0" or a bare "b", wherever it stands, is off); the family name and the other fields do not
// change the look.
void SetFontFlags(Reader& r, const std::wstring& text) {
    r.look().bold = false;
    r.look().italic = false;
    std::wistringstream fields(text);
    std::wstring field;
    std::getline(fields, field, L'|');  // the family name
    while (std::getline(fields, field, L'|')) {
        if (field.starts_with(L'b')) r.look().bold = field == L"b1";
        else if (field.starts_with(L'i')) r.look().italic = field == L"i1";
    }
}

// \S upper^lower; (or / or #): the first separator that is not escaped splits the parts.
void ReadStack(Reader& r) {
    TextRun run{{}, StackKind::kTolerance, {}, {}, r.look()};
    std::wstring* part = &run.upper;
    bool split = false;
    for (; r.i < r.s.size() && r.s[r.i] != L';'; ++r.i) {
        wchar_t c = r.s[r.i];
        if (c == L'\\' && r.i + 1 < r.s.size()) {
            *part += r.s[++r.i];
        } else if (!split && (c == L'^' || c == L'/' || c == L'#')) {
            run.stack = c == L'^' ? StackKind::kTolerance : c == L'/' ? StackKind::kFraction : StackKind::kDiagonal;
            part = &run.lower;
            split = true;
        } else {
            *part += c;
        }
    }
    if (r.i < r.s.size()) ++r.i;  // the ';'
    if (!split) {
        for (wchar_t c : run.upper) r.put(c);  // no separator: plain text
        return;
    }
    r.paragraphs.back().push_back(run);
}

// One code after a backslash; i stands on the code letter.
void ReadCode(Reader& r) {
    wchar_t code = r.s[r.i++];
    switch (code) {
        case L'P': case L'N': case L'X': r.paragraphs.emplace_back(); break;
        case L'~': r.put(L'\u00A0'); break;
        case L'\\': case L'{': case L'}': r.put(code); break;
        case L'H': SetHeight(r, r.value()); break;
        case L'W': SetWidth(r, r.value()); break;
        case L'Q': r.look().obliqueDegrees = Number(r.value(), 0.0); break;
        case L'T': r.look().tracking = Number(r.value(), 1.0); break;
        case L'C': r.look().colorIndex = static_cast<int>(Number(r.value(), -1.0)); r.look().hasTrueColor = false; break;
        case L'c':
            r.look().trueColor = static_cast<std::uint32_t>(Number(r.value(), 0.0));
            r.look().hasTrueColor = true;
            break;
        case L'f': SetFontFlags(r, r.value()); break;
        case L'F': r.value(); break;
        case L'L': r.look().underline = true; break;
        case L'l': r.look().underline = false; break;
        case L'O': r.look().overline = true; break;
        case L'o': r.look().overline = false; break;
        case L'K': r.look().strike = true; break;
        case L'k': r.look().strike = false; break;
        case L'S': ReadStack(r); break;
        case L'A': case L'p': r.value(); break;
        default: break;  // an unknown switch shows nothing
    }
}

}  // namespace

std::vector<Paragraph> ParseMText(const std::wstring& contents, double textHeight) {
    Reader r{contents};
    r.textHeight = textHeight;
    while (r.i < contents.size()) {
        wchar_t c = contents[r.i];
        if (c == L'\\' && r.i + 1 < contents.size()) {
            ++r.i;
            ReadCode(r);
            continue;
        }
        ++r.i;
        if (c == L'{') r.looks.push_back(r.look());
        else if (c == L'}') {
            if (r.looks.size() > 1) r.looks.pop_back();
        } else if (c != L'\n' && c != L'\r') r.put(c);
    }
    return r.paragraphs;
}

}  // namespace tavrik::render
