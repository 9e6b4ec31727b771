#include "platform/db/polyline_classic.hpp"

ACRX_DEFINE_MEMBERS(AcDb2dPolyline, AcDbCurve, L"POLYLINE")
ACRX_DEFINE_MEMBERS(AcDb3dPolyline, AcDbCurve, L"POLYLINE")

AcGePoint3d AcDb2dPolyline::vertexPosition(const AcDb2dVertex& v) const {
    return AcGeMatrix3d::planeToWorld(m_normal)
        .apply(AcGePoint3d(v.position.x, v.position.y, m_elevation));
}
