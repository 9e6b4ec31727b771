#pragma once
// Angles as DXF texts: degrees in the file, radians in the database. The two conversions do
// not undo each other for every double, so a text that the plain conversion cannot bring back
// to its radians carries more digits, and the reader takes those at a higher precision: an
// angle read from a DWG, written to a DXF record and read again keeps its last bit.
#include <string>
#include <string_view>

namespace dxf {

// The radians of a degree text; 0 when the text is not a number.
double Radians(std::string_view degrees);
// Appends the degree text of an angle that Radians reads back to the same radians.
void FormatAngle(double radians, std::string& out);

}  // namespace dxf
