#pragma once
#include "platform/ge/bulge.hpp"

class AcDbPolyline;
class AcDb2dPolyline;

// The planar polylines as bulge paths in their object coordinates (the drawn vertices only).
namespace tavrik::polyline_bulges {
ge::BulgePath bulgePathOf(const AcDbPolyline& polyline);
ge::BulgePath bulgePathOf(const AcDb2dPolyline& polyline);
}  // namespace tavrik::polyline_bulges
