#pragma once
#include "platform/db/entity.hpp"
#include "platform/ge/vector3d.hpp"

// Base of the entities that run along a parameter. Each curve defines its parameter as the host
// does (a line from 0 to its length, an arc over its angles in radians, a polyline over vertex
// indices, a spline over its knots, an ellipse over its eccentric angle). A failing call returns
// a status and leaves its out value untouched. This base answers eNotImplementedYet.
class AcDbCurve : public AcDbEntity {
public:
    ACRX_DECLARE_ABSTRACT_MEMBERS(AcDbCurve)

    virtual bool isClosed() const { return false; }
    virtual bool isPeriodic() const { return false; }
    virtual Acad::ErrorStatus getStartParam(double& param) const;
    virtual Acad::ErrorStatus getEndParam(double& param) const;
    virtual Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const;
    virtual Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const;
    virtual Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& point) const;
    virtual Acad::ErrorStatus getParamAtPoint(const AcGePoint3d& point, double& param) const;
    virtual Acad::ErrorStatus getDistAtParam(double param, double& dist) const;
    virtual Acad::ErrorStatus getParamAtDist(double dist, double& param) const;
    virtual Acad::ErrorStatus getDistAtPoint(const AcGePoint3d& point, double& dist) const;
    virtual Acad::ErrorStatus getPointAtDist(double dist, AcGePoint3d& point) const;
    virtual Acad::ErrorStatus getFirstDeriv(double param, AcGeVector3d& deriv) const;
    virtual Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& closest,
                                                bool extend = false) const;
    // Curves at a distance; new, owned by the caller. The side a positive distance takes is
    // stated by each class.
    virtual Acad::ErrorStatus getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const;
    virtual Acad::ErrorStatus getArea(double& area) const;

protected:
    AcDbCurve() = default;
    AcDbCurve(const AcDbCurve&) = default;
};
