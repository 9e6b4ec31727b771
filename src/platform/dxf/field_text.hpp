#pragma once
// The text of a value as the writer compares and formats it: a value of the database is written
// with the text of the record as read when both stand for the same value.
#include <string>
#include <string_view>

#include "platform/dxf/model.hpp"

namespace dxf {

// True when two texts of a group code's value stand for the same value.
bool SameText(int code, std::string_view a, std::string_view b);
// Appends the text of a field's value.
void AppendField(const Field& f, std::string& out);
// True when the template's text stands for the field's value, so that the text is kept as read.
bool SameValue(const Field& f, std::string_view text);

}  // namespace dxf
