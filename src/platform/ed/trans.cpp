#include "platform/ed/trans.hpp"

#include <cmath>

#include "platform/ed/sysvars.hpp"
#include "platform/ge/matrix3d.hpp"

namespace {

AcGeVector3d Variable3d(const ACHAR* name) {
    resbuf value{};
    acedGetVar(name, &value);
    return AcGeVector3d(value.resval.rpoint[0], value.resval.rpoint[1], value.resval.rpoint[2]);
}

double VariableReal(const ACHAR* name) {
    resbuf value{};
    acedGetVar(name, &value);
    return value.resval.rreal;
}

// The display system's axes by the arbitrary axis rule on VIEWDIR, then the view's twist.
AcGeMatrix3d WorldToDisplay() {
    AcGeVector3d z = Variable3d(L"VIEWDIR");
    if (z.length() == 0.0) z = AcGeVector3d::kZAxis;
    z = z.normal();
    AcGeVector3d x = (std::abs(z.x) < 1.0 / 64 && std::abs(z.y) < 1.0 / 64) ? AcGeVector3d::kYAxis.crossProduct(z)
                                                                            : AcGeVector3d::kZAxis.crossProduct(z);
    x = x.normal();
    AcGeVector3d y = z.crossProduct(x);
    AcGeMatrix3d toPlane;
    AcGeVector3d target = Variable3d(L"TARGET");
    toPlane.setToAlignCoordSys(AcGePoint3d::kOrigin + target, x, y, z, AcGePoint3d::kOrigin, AcGeVector3d::kXAxis,
                               AcGeVector3d::kYAxis, AcGeVector3d::kZAxis);
    AcGeMatrix3d twist;
    twist.setToRotation(-VariableReal(L"VIEWTWIST"), AcGeVector3d::kZAxis);
    return twist * toPlane;
}

bool ToWorld(int system, AcGeMatrix3d& m) {
    if (system == 0 || system == 1 || system == 3) {
        m.setToIdentity();
        return true;
    }
    if (system == 2) {
        m = WorldToDisplay().inverse();
        return true;
    }
    return false;
}

bool SystemCode(const resbuf* rb, int& code) {
    if (!rb || rb->restype != RTSHORT) return false;
    code = rb->resval.rint;
    return true;
}

}  // namespace

int acedTrans(const ads_point point, const resbuf* from, const resbuf* to, int displacement, ads_point result) {
    int source = 0, target = 0;
    AcGeMatrix3d sourceToWorld, targetToWorld;
    if (!point || !result || !SystemCode(from, source) || !SystemCode(to, target) ||
        !ToWorld(source, sourceToWorld) || !ToWorld(target, targetToWorld))
        return RTERROR;
    AcGeMatrix3d m = targetToWorld.inverse() * sourceToWorld;
    AcGePoint3d p(point[0], point[1], point[2]);
    if (displacement) {
        AcGeVector3d v = AcGeVector3d(p.x, p.y, p.z).transformBy(m);
        p = AcGePoint3d(v.x, v.y, v.z);
    } else {
        p = p.transformBy(m);
    }
    result[0] = p.x;
    result[1] = p.y;
    result[2] = p.z;
    return RTNORM;
}
