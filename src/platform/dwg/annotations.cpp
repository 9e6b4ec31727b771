#include "platform/dwg/annotations.hpp"

#include "platform/dwg/entities.hpp"

namespace dwg {
namespace {

bool Ok(const ObjectStreams& o) {
    return !o.data.failed() && !o.handles.failed() && !o.strings.failed();
}

// A count of values that cannot exceed the bits the object holds.
std::int32_t Count(ObjectStreams& o) {
    const std::int32_t count = o.data.BL();
    if (count < 0 || static_cast<std::size_t>(count) > o.size * 8) {
        o.data.seekBit(o.data.bitEnd() + 1);
        return 0;
    }
    return count;
}

// The part every kind of dimension shares, before the points of its kind.
void ReadDimensionCommon(ObjectStreams& o, DimensionRecord& out) {
    BitReader& d = o.data;
    const Version v = d.version();
    if (v >= Version::kR2010) out.version = d.RC();
    out.normal = d.BD3();
    out.textMidpoint = d.RD2();
    out.elevation = d.BD();
    out.flags = d.RC();
    out.text = o.text().T();
    out.textRotation = d.BD();
    out.horizontalDirection = d.BD();
    out.insertScale = d.BD3();
    out.insertRotation = d.BD();
    if (v >= Version::kR2000) {
        out.attachment = d.BS();
        out.lineSpacingStyle = d.BS();
        out.lineSpacingFactor = d.BD();
        out.measurement = d.BD();
    }
    if (v >= Version::kR2007) {
        d.B();
        out.flipArrow1 = d.B();
        out.flipArrow2 = d.B();
    }
    out.clonePoint = d.RD2();
}

void ReadDimensionPoints(BitReader& d, DimensionRecord& out) {
    Point3* p = out.points;
    switch (out.kind) {
        case 20:  // ordinate
            p[0] = d.BD3();
            p[3] = d.BD3();
            p[4] = d.BD3();
            out.ordinateX = (d.RC() & 1) != 0;
            break;
        case 21:  // linear
        case 22:  // aligned
            p[3] = d.BD3();
            p[4] = d.BD3();
            p[0] = d.BD3();
            out.obliqueAngle = d.BD();
            if (out.kind == 21) out.rotation = d.BD();
            break;
        case 23:  // angular by three points
            p[0] = d.BD3();
            p[3] = d.BD3();
            p[4] = d.BD3();
            p[5] = d.BD3();
            break;
        case 24: {  // angular by two lines
            const Point2 arc = d.RD2();
            p[6] = {arc.x, arc.y, out.elevation};
            p[3] = d.BD3();
            p[4] = d.BD3();
            p[5] = d.BD3();
            p[0] = d.BD3();
            break;
        }
        default:  // radius and diameter
            p[0] = d.BD3();
            p[5] = d.BD3();
            out.leaderLength = d.BD();
            break;
    }
}

void ReadSplineByControlPoints(ObjectStreams& o, SplineRecord& out) {
    BitReader& d = o.data;
    out.rational = d.B();
    out.closed = d.B();
    out.periodic = d.B();
    out.knotTolerance = d.BD();
    out.controlTolerance = d.BD();
    const std::int32_t knots = Count(o);
    const std::int32_t points = Count(o);
    out.weighted = d.B();
    for (std::int32_t i = 0; i < knots && !d.failed(); ++i) out.knots.push_back(d.BD());
    for (std::int32_t i = 0; i < points && !d.failed(); ++i) {
        out.controlPoints.push_back(d.BD3());
        if (out.weighted) out.weights.push_back(d.BD());
    }
}

}  // namespace

int DimensionRecord::dxfType() const {
    switch (kind) {
        case 20: return 6;
        case 21: return 0;
        case 22: return 1;
        case 23: return 5;
        case 24: return 2;
        case 25: return 4;
        default: return 3;
    }
}

bool ReadDimension(ObjectStreams& o, DimensionRecord& out) {
    ReadEntityCommon(o, out.common);
    out.kind = o.type;
    ReadDimensionCommon(o, out);
    ReadDimensionPoints(o.data, out);
    out.style = ReadHandle(o);
    out.block = ReadHandle(o);
    return Ok(o);
}

bool ReadSpline(ObjectStreams& o, SplineRecord& out) {
    ReadEntityCommon(o, out.common);
    BitReader& d = o.data;
    out.scenario = d.BL();
    if (d.version() >= Version::kR2013) {
        // The spline's own flags, and how its knots were parameterized: a spline made from fit
        // points says so in bit 0 of the flags.
        const std::int32_t flags = d.BL();
        d.BL();
        if (flags & 1) out.scenario = 2;
    }
    out.degree = d.BL();
    if (out.scenario == 2) {
        out.fitTolerance = d.BD();
        out.startTangent = d.BD3();
        out.endTangent = d.BD3();
        const std::int32_t fits = Count(o);
        for (std::int32_t i = 0; i < fits && !d.failed(); ++i) out.fitPoints.push_back(d.BD3());
    } else {
        ReadSplineByControlPoints(o, out);
    }
    return Ok(o);
}

}  // namespace dwg
