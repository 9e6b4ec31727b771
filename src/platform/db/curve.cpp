#include "platform/db/curve.hpp"

ACRX_DEFINE_MEMBERS(AcDbCurve, AcDbEntity, L"")

Acad::ErrorStatus AcDbCurve::getStartParam(double&) const { return Acad::eNotImplementedYet; }
Acad::ErrorStatus AcDbCurve::getEndParam(double&) const { return Acad::eNotImplementedYet; }
Acad::ErrorStatus AcDbCurve::getStartPoint(AcGePoint3d&) const { return Acad::eNotImplementedYet; }
Acad::ErrorStatus AcDbCurve::getEndPoint(AcGePoint3d&) const { return Acad::eNotImplementedYet; }
Acad::ErrorStatus AcDbCurve::getPointAtParam(double, AcGePoint3d&) const {
    return Acad::eNotImplementedYet;
}
Acad::ErrorStatus AcDbCurve::getParamAtPoint(const AcGePoint3d&, double&) const {
    return Acad::eNotImplementedYet;
}
Acad::ErrorStatus AcDbCurve::getDistAtParam(double, double&) const {
    return Acad::eNotImplementedYet;
}
Acad::ErrorStatus AcDbCurve::getParamAtDist(double, double&) const {
    return Acad::eNotImplementedYet;
}
Acad::ErrorStatus AcDbCurve::getDistAtPoint(const AcGePoint3d&, double&) const {
    return Acad::eNotImplementedYet;
}
Acad::ErrorStatus AcDbCurve::getPointAtDist(double, AcGePoint3d&) const {
    return Acad::eNotImplementedYet;
}
Acad::ErrorStatus AcDbCurve::getFirstDeriv(double, AcGeVector3d&) const {
    return Acad::eNotImplementedYet;
}
Acad::ErrorStatus AcDbCurve::getClosestPointTo(const AcGePoint3d&, AcGePoint3d&, bool) const {
    return Acad::eNotImplementedYet;
}
Acad::ErrorStatus AcDbCurve::getOffsetCurves(double, AcDbVoidPtrArray&) const {
    return Acad::eNotImplementedYet;
}
Acad::ErrorStatus AcDbCurve::getArea(double&) const { return Acad::eNotImplementedYet; }
