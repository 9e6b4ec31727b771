#pragma once
// The small JSON texts that some keys of CAD_line.ini hold on one line. A character scanner over
// a subset of JSON: no escapes, no true, false or null, no exponents, no blanks between tokens.
// Values stay texts until asked for. Texts that do not fit give fewer objects or values; there
// are no errors.
#include <string>
#include <vector>

// Value types of a member.
enum JsonType { kJsonInt = 2, kJsonReal = 3, kJsonText = 4, kJsonIntList = 5, kJsonRealList = 6, kJsonTextList = 7 };

// Kinds of a value text that JsonFindMember reports.
enum JsonKind {
    kJsonNone = 1,
    kJsonNumber = 101,
    kJsonPointNumber = 102,
    kJsonQuoted = 103,
    kJsonObject = 104,
    kJsonArray = 105
};

struct JsonValue {
    std::wstring key;
    int type = 0;
    int intValue = 0;
    double realValue = 0.0;
    std::wstring textValue;
    std::vector<int> intList;
    std::vector<double> realList;
    std::vector<std::wstring> textList;
};

struct JsonObject {
    std::vector<JsonValue> values;
    std::wstring name;  // empty unless the object stood under a key
};

struct JsonDocument {
    std::vector<JsonObject> objects;
    std::wstring name;
};

// Reads a document of the shapes [{..},{..}], {"name":[{..}]}, {"name":{"a":{..}}} or
// {"a":{..},"b":{..}}; any other text gives an empty document.
void JsonDocumentParse(const std::wstring& text, JsonDocument& document);
// Reads the members of one object; an object wrapped under one key ("{"n":{..}}") takes the key
// as its name.
void JsonObjectParse(const std::wstring& text, JsonObject& object);
// The value text of a top-level key, or the empty string.
std::wstring JsonGetMember(const std::wstring& text, const std::wstring& key);
// The value text after the first "key": anywhere in the text, and its kind.
std::wstring JsonFindMember(const std::wstring& text, const std::wstring& key, int& kind);
// The top-level keys of an object's text, in order.
std::vector<std::wstring> JsonTopLevelKeys(const std::wstring& text);
