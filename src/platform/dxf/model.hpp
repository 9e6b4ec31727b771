#pragma once
// The middle layer of the codec: what the database models of one object, as the tags of its
// drawing-file record, grouped by subclass. The writer lays this over the record as read.
#include <string>
#include <string_view>
#include <vector>

#include "platform/db/database.hpp"

namespace dxf {

struct Field {
    int code = 0;
    std::string text;  // UTF-8, numbers in file form
    int run = 0;       // 0: a single value; otherwise the repeating block it belongs to
    // A value at its default: it replaces a tag of the template, but is not added where the
    // template has none (nor in a new record).
    bool optional = false;
};

struct Subclass {
    std::string marker;  // the subclass marker (group code 100); empty for the record's head
    std::vector<Field> fields;
    std::vector<int> owned;  // codes this subclass models, including those left out at default
    bool owns(int code) const;
};

// The modelled record of an object: its type name and subclasses in the format's order.
struct Model {
    std::string type;
    std::vector<Subclass> subclasses;
};

// Fills the model of an object. hasTemplate tells whether the object keeps a record as read
// (values that only a new record needs are then left to the template).
void BuildModel(const AcDbObject& object, bool hasTemplate, Model& model);

// Text conversions between the database's wide strings and the codec's UTF-8.
std::string Utf8(std::wstring_view text);
std::wstring Wide(std::string_view utf8);
std::string HandleText(AcDbHandle handle);
// Name of the symbol-table record behind an id, empty when there is none.
std::wstring RecordName(AcDbObjectId id);
// The dimension style overrides as the ACAD application's DSTYLE extension data.
void DimVarsToXData(const AcDbDimVars& vars, AcDbRawTags& tags);

inline constexpr double kDegrees = 57.29577951308232;

}  // namespace dxf
