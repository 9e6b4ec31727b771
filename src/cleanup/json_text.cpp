#include "cleanup/json_text.hpp"

#include <cwchar>

#include "platform/win/crt.hpp"

namespace {

bool IsNumberCharacter(wchar_t c) { return (c >= L'0' && c <= L'9') || c == L'-' || c == L'.'; }

// The value that begins at `at`: a number, a quoted text (without the quotes), an object or an
// array (with their brackets). Empty when the text ends before the value does. `kind` is set by
// the first character and stays set.
std::wstring ScanValue(const std::wstring& text, size_t at, int& kind) {
    kind = kJsonNone;
    if (at >= text.size()) return L"";
    wchar_t first = text[at];
    if (IsNumberCharacter(first)) {
        kind = kJsonNumber;
        for (size_t i = at; i < text.size(); ++i) {
            if (!IsNumberCharacter(text[i])) return text.substr(at, i - at);
            if (text[i] == L'.') kind = kJsonPointNumber;
        }
        return L"";
    }
    if (first == L'"') {
        kind = kJsonQuoted;
        size_t close = text.find(L'"', at + 1);
        return close == std::wstring::npos ? L"" : text.substr(at + 1, close - at - 1);
    }
    if (first != L'{' && first != L'[') return L"";
    kind = first == L'{' ? kJsonObject : kJsonArray;
    wchar_t close = first == L'{' ? L'}' : L']';
    int depth = 0;
    for (size_t i = at; i < text.size(); ++i) {
        if (text[i] == first) ++depth;
        else if (text[i] == close && --depth == 0) return text.substr(at, i - at + 1);
    }
    return L"";
}

// The walk over the top level of an object's text: `onKey` gets each completed key and the
// position behind its colon, and ends the walk by answering true.
template <typename OnKey>
void WalkTopLevelKeys(const std::wstring& text, OnKey onKey) {
    if (text.size() < 2) return;
    int braces = 0, brackets = 0;
    bool inKey = false;
    std::wstring name;
    for (size_t i = 0; i + 1 < text.size(); ++i) {
        wchar_t c = text[i];
        if (i == 0 && c == L'{') continue;
        bool top = braces == 0 && brackets == 0;
        if (c == L'"' && i > 0 && (text[i - 1] == L',' || text[i - 1] == L'{') && top && !inKey) {
            inKey = true;
            name.clear();
        } else if (c == L'"' && text[i + 1] == L':' && top && inKey) {
            inKey = false;
            if (onKey(name, i + 2)) return;
            name.clear();
        } else if (c == L'{') {
            ++braces;
        } else if (c == L'}') {
            --braces;
        } else if (c == L'[') {
            ++brackets;
        } else if (c == L']') {
            --brackets;
        } else if (top && inKey) {
            name += c;
        }
    }
}

// The text between the first two double quotes.
std::wstring FirstQuotedText(const std::wstring& text) {
    size_t open = text.find(L'"');
    if (open == std::wstring::npos) return L"";
    size_t close = text.find(L'"', open + 1);
    return close == std::wstring::npos ? text.substr(open + 1) : text.substr(open + 1, close - open - 1);
}

// The keys of an object's work text, without counting braces: keys of inner objects join, and
// a text value holding ,"  opens a false key.
std::vector<std::wstring> GatherKeys(const std::wstring& text) {
    std::vector<std::wstring> keys;
    bool inKey = false, outsideArrays = true;
    std::wstring name;
    for (size_t i = 0; i + 1 < text.size(); ++i) {
        wchar_t c = text[i];
        if ((c == L'{' || c == L',') && text[i + 1] == L'"' && !inKey && outsideArrays) {
            name.clear();
            inKey = true;
            ++i;
        } else if (c == L'"' && inKey && outsideArrays) {
            keys.push_back(name);
            inKey = false;
        } else if (c == L'[') {
            outsideArrays = false;
        } else if (c == L']') {
            outsideArrays = true;
        } else if (inKey && outsideArrays) {
            name += c;
        }
    }
    return keys;
}

// The items of an array's text, between its first "[" and the "]" that ends the walk.
std::vector<std::wstring> ListItems(const std::wstring& text) {
    std::vector<std::wstring> items;
    size_t open = text.find(L'[');
    if (open == std::wstring::npos) return items;
    std::wstring item;
    for (size_t i = open + 1; i < text.size(); ++i) {
        wchar_t c = text[i];
        if (c == L',' || c == L']') {
            if (!item.empty()) items.push_back(item);
            item.clear();
            if (c == L']') break;
        } else {
            item += c;
        }
    }
    return items;
}

void FillList(JsonValue& value, const std::wstring& arrayText) {
    if (arrayText.find(L'"', 1) != std::wstring::npos) value.type = kJsonTextList;
    else if (arrayText.find(L'.', 1) != std::wstring::npos) value.type = kJsonRealList;
    else value.type = kJsonIntList;
    for (const std::wstring& item : ListItems(arrayText)) {
        if (value.type == kJsonIntList) value.intList.push_back(_wtoi(item.c_str()));
        else if (value.type == kJsonRealList) value.realList.push_back(std::wcstod(item.c_str(), nullptr));
        else value.textList.push_back(FirstQuotedText(item));
    }
}

// Appends an object for every "{...}" of the text; braces are not counted, so an inner object
// ends the object text early.
void ParseObjectRun(const std::wstring& text, JsonDocument& document) {
    bool inObject = false;
    std::wstring objectText;
    for (wchar_t c : text) {
        if (!inObject) {
            if (c == L'{') {
                objectText = L"{";
                inObject = true;
            }
            continue;
        }
        objectText += c;
        if (c == L'}') {
            JsonObject object;
            JsonObjectParse(objectText, object);
            document.objects.push_back(object);
            inObject = false;
        }
    }
}

}  // namespace

std::wstring JsonFindMember(const std::wstring& text, const std::wstring& key, int& kind) {
    std::wstring search = L"\"" + key + L"\":";
    size_t at = text.find(search);
    if (at == std::wstring::npos) {
        kind = kJsonNone;
        return L"";
    }
    return ScanValue(text, at + search.size(), kind);
}

std::wstring JsonGetMember(const std::wstring& text, const std::wstring& key) {
    std::wstring result;
    WalkTopLevelKeys(text, [&](const std::wstring& name, size_t valueAt) {
        if (name != key) return false;
        int kind = kJsonNone;
        result = ScanValue(text, valueAt, kind);
        return true;
    });
    return result;
}

std::vector<std::wstring> JsonTopLevelKeys(const std::wstring& text) {
    std::vector<std::wstring> keys;
    WalkTopLevelKeys(text, [&](const std::wstring& name, size_t) {
        keys.push_back(name);
        return false;
    });
    return keys;
}

void JsonObjectParse(const std::wstring& text, JsonObject& object) {
    object.values.clear();
    object.name.clear();
    if (text.size() < 2) return;
    std::wstring work = text;
    if (text.ends_with(L"}}")) {
        object.name = FirstQuotedText(text);
        work = JsonGetMember(text, object.name);
    }
    for (const std::wstring& key : GatherKeys(work)) {
        int kind = kJsonNone;
        std::wstring valueText = JsonFindMember(work, key, kind);
        JsonValue value;
        value.key = key;
        if (kind == kJsonNumber) {
            value.type = kJsonInt;
            value.intValue = _wtoi(valueText.c_str());
        } else if (kind == kJsonPointNumber) {
            value.type = kJsonReal;
            value.realValue = std::wcstod(valueText.c_str(), nullptr);
        } else if (kind == kJsonQuoted) {
            value.type = kJsonText;
            value.textValue = valueText;
        } else if (kind == kJsonArray) {
            FillList(value, valueText);
        } else {
            continue;
        }
        object.values.push_back(value);
    }
}

void JsonDocumentParse(const std::wstring& text, JsonDocument& document) {
    document.objects.clear();
    document.name.clear();
    if (text.size() < 4) return;
    int kind = kJsonNone;
    if (text.starts_with(L"[{")) {
        ParseObjectRun(text, document);
    } else if (text.ends_with(L"}]}")) {
        document.name = FirstQuotedText(text);
        std::wstring arrayText = JsonFindMember(text, document.name, kind);
        if (kind == kJsonArray) ParseObjectRun(arrayText, document);
    } else if (text.ends_with(L"}}}")) {
        document.name = FirstQuotedText(text);
        std::wstring objectText = JsonFindMember(text, document.name, kind);
        if (kind != kJsonObject) return;
        for (const std::wstring& key : JsonTopLevelKeys(objectText)) {
            std::wstring valueText = JsonFindMember(objectText, key, kind);
            if (kind != kJsonObject) continue;
            JsonObject object;
            JsonObjectParse(valueText, object);
            object.name = key;
            document.objects.push_back(object);
        }
    } else if (text.ends_with(L"}}")) {
        for (const std::wstring& key : JsonTopLevelKeys(text)) {
            JsonObject object;
            JsonObjectParse(JsonGetMember(text, key), object);
            object.name = key;
            document.objects.push_back(object);
        }
    }
}
