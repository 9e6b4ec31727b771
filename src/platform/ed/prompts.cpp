#include "platform/ed/prompts.hpp"

#include <algorithm>
#include <cmath>
#include <cwchar>
#include <cwctype>
#include <sstream>
#include <vector>

#include "platform/ed/editor_state.hpp"
#include "platform/ed/input.hpp"
#include "platform/win/messages.hpp"
#include "platform/win/text.hpp"

namespace {

constexpr const wchar_t* kCancelLine = L"^C";

int CopyOut(const std::wstring& text, ACHAR* result, size_t capacity) {
    if (!result || capacity == 0) return RTERROR;
    size_t n = std::min(text.size(), capacity - 1);
    std::wmemcpy(result, text.data(), n);
    result[n] = L'\0';
    return RTNORM;
}

std::vector<std::wstring> Keywords(const std::wstring& list) {
    std::vector<std::wstring> words;
    std::wistringstream stream(list);
    std::wstring word;
    // A "_" starts the global names, which the console does not offer.
    while (stream >> word && word != L"_") words.push_back(word);
    return words;
}

// The capital letters that open a keyword: what the user must type at least.
size_t ShortcutLength(const std::wstring& keyword) {
    size_t n = 0;
    while (n < keyword.size() && !std::iswlower(keyword[n])) ++n;
    return n == 0 ? keyword.size() : n;
}

bool ParseNumber(const std::wstring& text, double& value) {
    std::wstring trimmed = TrimBlanks(text);
    if (trimmed.empty()) return false;
    wchar_t* end = nullptr;
    value = std::wcstod(trimmed.c_str(), &end);
    return end && *end == L'\0' && std::isfinite(value);
}

}  // namespace

void HostMessage(const std::wstring& text) { WriteConsoleText(stdout, text + L"\n"); }

void TakeInitGet(int& bits, std::wstring& keywords) {
    bits = Editor().initGetBits;
    keywords = Editor().initGetKeywords;
    Editor().initGetBits = 0;
    Editor().initGetKeywords.clear();
}

Answer ReadAnswer(const std::wstring& prompt, std::wstring& line, AcDbObjectIdArray* selection) {
    auto& pending = Editor().pendingAnswers;
    while (!pending.empty()) {
        PendingAnswer next = pending.front();
        pending.pop_front();
        if (next.pause) break;
        if (next.isSelection && selection) {
            *selection = next.selection;
            return Answer::kSelection;
        }
        if (next.isSelection) continue;  // a selection where none is asked for: dropped
        line = next.text;
        return line == kCancelLine ? Answer::kCancel : Answer::kText;
    }
    if (!ReadHostInputLine(prompt, line)) return Answer::kCancel;
    return line == kCancelLine ? Answer::kCancel : Answer::kText;
}

std::wstring MatchKeyword(const std::wstring& answer, const std::wstring& keywords) {
    if (answer.empty()) return L"";
    for (const std::wstring& keyword : Keywords(keywords)) {
        if (answer.size() > keyword.size() || answer.size() < ShortcutLength(keyword)) continue;
        if (EqualNoCase(answer, keyword.substr(0, answer.size()))) return keyword;
    }
    return L"";
}

bool ParsePoint(const std::wstring& text, const ads_real* base, ads_point point) {
    std::wstring body = TrimBlanks(text);
    bool relative = !body.empty() && body.front() == L'@';
    if (relative) body.erase(0, 1);
    std::vector<std::wstring> parts;
    std::wistringstream stream(body);
    std::wstring part;
    while (std::getline(stream, part, L',')) parts.push_back(part);
    if (parts.size() < 2 || parts.size() > 3 || body.ends_with(L',')) return false;
    double values[3] = {0.0, 0.0, 0.0};
    for (size_t i = 0; i < parts.size(); ++i)
        if (!ParseNumber(parts[i], values[i])) return false;
    for (int i = 0; i < 3; ++i) point[i] = values[i] + (relative && base ? base[i] : 0.0);
    return !relative || base != nullptr;
}

int acedInitGet(int bits, const ACHAR* keywords) {
    Editor().initGetBits = bits;
    Editor().initGetKeywords = keywords ? keywords : L"";
    return RTNORM;
}

int acedGetInput(ACHAR* result, size_t capacity) { return CopyOut(Editor().lastKeyword, result, capacity); }

int acedGetKword(const ACHAR* prompt, ACHAR* result, size_t capacity) {
    int bits = 0;
    std::wstring keywords;
    TakeInitGet(bits, keywords);
    for (;;) {
        std::wstring line;
        if (ReadAnswer(prompt ? prompt : L"", line) == Answer::kCancel) return RTCAN;
        if (line.empty() && !(bits & RSG_NONULL)) return CopyOut(L"", result, capacity) == RTNORM ? RTNONE : RTERROR;
        std::wstring keyword = MatchKeyword(line, keywords);
        if (!keyword.empty()) return CopyOut(keyword, result, capacity);
        HostMessage(L"Invalid option keyword.");
    }
}

int acedGetString(int cronly, const ACHAR* prompt, ACHAR* result, size_t capacity) {
    Editor().initGetBits = 0;
    Editor().initGetKeywords.clear();
    std::wstring line;
    if (ReadAnswer(prompt ? prompt : L"", line) == Answer::kCancel) return RTCAN;
    if (!cronly) line = line.substr(0, line.find(L' '));
    return CopyOut(line, result, capacity);
}

int acedGetPoint(const ads_point base, const ACHAR* prompt, ads_point result) {
    int bits = 0;
    std::wstring keywords;
    TakeInitGet(bits, keywords);
    for (;;) {
        std::wstring line;
        if (ReadAnswer(prompt ? prompt : L"", line) == Answer::kCancel) return RTCAN;
        if (line.empty() && !(bits & RSG_NONULL)) return RTNONE;
        if (ParsePoint(line, base, result)) return RTNORM;
        std::wstring keyword = MatchKeyword(line, keywords);
        if (!keyword.empty()) {
            Editor().lastKeyword = keyword;
            return RTKWORD;
        }
        HostMessage(keywords.empty() ? L"Invalid point." : L"Point or option keyword required.");
    }
}

bool acedSetColorDialog(int& color, bool allowMetaColor, int) {
    int low = allowMetaColor ? 0 : 1, high = allowMetaColor ? 256 : 255;
    std::wstring prompt = L"\nEnter a colour index (" + std::to_wstring(low) + L"-" + std::to_wstring(high) +
                          L") <" + std::to_wstring(color) + L">: ";
    for (;;) {
        std::wstring line;
        if (ReadAnswer(prompt, line) == Answer::kCancel) return false;
        if (line.empty()) return true;
        double value = 0.0;
        if (ParseNumber(line, value) && value == static_cast<int>(value) && value >= low && value <= high) {
            color = static_cast<int>(value);
            return true;
        }
        HostMessage(L"Requires an integer between " + std::to_wstring(low) + L" and " + std::to_wstring(high) + L".");
    }
}
