#pragma once
// The picture of a dimension, as the host draws it into the anonymous "*D" block that the
// dimension names: extension lines, dimension line and arrowheads (ordinates: a leader with
// its bend), and the measurement as multi-line text with its tolerance stacked after it. The
// dimension's effective variables decide sizes, placement, rounding and colours.
#include <string>
#include <vector>

#include "platform/db/dimension.hpp"

namespace tavrik::dimension_graphics {

// One element of a dimension's picture, in world coordinates.
struct Element {
    enum Kind { kLine, kArrow, kText };
    Kind kind = kLine;
    AcGePoint3d from, to;  // line ends; arrow tip (from) and the middle of its base (to); text point
    int color = 0;         // colour index: DIMCLRD, DIMCLRE or DIMCLRT
    double width = 0.0;    // arrowhead base width
    std::wstring text;     // multi-line text contents
    double height = 0.0;   // text height
    double rotation = 0.0; // text direction, radians
    int attachment = 5;    // where the text point lies on the text: 4 middle left, 5 middle
                           // centre, 6 middle right, 2 top centre, 8 bottom centre
};

// A value rounded to `decimals` places with the decimal separator `separator`; `zin` bit 4
// suppresses the leading zero, bit 8 the trailing zeros (and a separator left bare).
std::wstring FormatValue(double value, int decimals, int zin, wchar_t separator);
// What the dimension shows: the user's text with "<>" for the measurement (the measurement
// alone when there is no text), then the tolerance by DIMTOL: "%%p" and the value when
// symmetric, else upper over lower deviation in the format's stacking codes, at DIMTFAC.
std::wstring MeasurementText(const AcDbDimension& dim);
// The elements that draw the dimension.
std::vector<Element> BuildGraphics(const AcDbDimension& dim);

}  // namespace tavrik::dimension_graphics
