#include "platform/dxf/entity_records.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <string>
#include <tuple>
#include <type_traits>

#include "platform/db/arc.hpp"
#include "platform/db/block_reference.hpp"
#include "platform/db/carried.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/dimension.hpp"
#include "platform/db/ellipse.hpp"
#include "platform/db/line.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/db/polyline.hpp"
#include "platform/db/polyline_classic.hpp"
#include "platform/db/spline.hpp"
#include "platform/db/text.hpp"
#include "platform/dxf/angle_text.hpp"
#include "platform/dxf/field_values.hpp"
#include "platform/dxf/model.hpp"
#include "platform/dxf/plain_entity.hpp"

namespace dxf {

namespace {

// The room for the count a record gives of its values, so that the database holds no spare
// capacity: no more than the record can hold, each value taking a tag of at least three bytes.
std::size_t CountedRoom(std::string_view count, const AcDbRawTags& tags) {
    const long long n = Integer(count);
    return n > 0 ? std::min<std::size_t>(static_cast<std::size_t>(n), tags.byteSize() / 3) : 0;
}

template <typename Vector>
void ReserveCounted(Vector& values, std::string_view count, const AcDbRawTags& tags) {
    values.reserve(CountedRoom(count, tags));
}

// The common properties of an entity; those of its look are gathered in `look`, which the
// entity takes at once (one look kept for the process, not one for each property read).
void ReadCommon(AcDbEntity& e, AcDbEntityLook& look, std::string_view marker, const AcDbRawTag& t) {
    if (!marker.empty() && marker != "AcDbEntity") return;
    std::string_view v = t.value;
    switch (t.code) {
        case 8: look.layer = Wide(v); break;
        case 6: look.linetype = Wide(v); break;
        case 62: {
            const AcCmColor& c = look.color;
            long long i = std::llabs(Integer(v));
            AcCmColor n;
            n.setColorIndex(static_cast<std::uint16_t>(i > 257 ? 256 : i));
            if (c.hasTrueColor()) n.setTrueColor(c.trueColor());
            n.setColorName(c.colorName());
            look.color = n;
            break;
        }
        case 420: look.color.setTrueColor(static_cast<std::uint32_t>(Integer(v))); break;
        case 430: look.color.setColorName(Wide(v)); break;
        case 370: look.lineWeight = static_cast<AcDb::LineWeight>(Integer(v)); break;
        case 48: {
            // As setLinetypeScale takes it: a negative scale is refused.
            const double scale = Real(v);
            if (!(scale < 0.0)) look.linetypeScale = scale;
            break;
        }
        case 60: e.setVisibility(Integer(v) ? AcDb::kInvisible : AcDb::kVisible); break;
        case 67: e.setInPaperSpace(Integer(v) != 0); break;
        default: break;
    }
}

void ReadLine(AcDbLine& e, const AcDbRawTags& tags) {
    AcGePoint3d s, t;
    AcGeVector3d n = AcGeVector3d::kZAxis;
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        double v = Real(tag.value);
        if (tag.code == 10 || tag.code == 20 || tag.code == 30) SetAxis(s, tag.code, 10, v);
        else if (tag.code == 11 || tag.code == 21 || tag.code == 31) SetAxis(t, tag.code, 11, v);
        else if (tag.code >= 210 && tag.code <= 230 && tag.code % 10 == 0) SetAxis(n, tag.code, 210, v);
        else if (tag.code == 39) e.setThickness(v);
    });
    e.setStartPoint(s);
    e.setEndPoint(t);
    e.setNormal(n);
}

// Circle and arc share their centre, radius, thickness and normal.
template <typename T>
void ReadRound(T& e, const AcDbRawTags& tags, double* start, double* end) {
    AcGePoint3d c;
    AcGeVector3d n = AcGeVector3d::kZAxis;
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        double v = Real(tag.value);
        switch (tag.code) {
            case 10: case 20: case 30: SetAxis(c, tag.code, 10, v); break;
            case 210: case 220: case 230: SetAxis(n, tag.code, 210, v); break;
            case 40: e.setRadius(v); break;
            case 39: e.setThickness(v); break;
            case 50: if (start) *start = Radians(tag.value); break;
            case 51: if (end) *end = Radians(tag.value); break;
            default: break;
        }
    });
    // The file gives the centre in the object coordinates of the normal; the database keeps it
    // in world coordinates, as the host does.
    e.setNormal(n);
    e.setCenter(AcGeMatrix3d::planeToWorld(e.normal()) * c);
}

void ReadPoint(AcDbPoint& e, const AcDbRawTags& tags) {
    AcGePoint3d p;
    AcGeVector3d n = AcGeVector3d::kZAxis;
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        double v = Real(tag.value);
        switch (tag.code) {
            case 10: case 20: case 30: SetAxis(p, tag.code, 10, v); break;
            case 210: case 220: case 230: SetAxis(n, tag.code, 210, v); break;
            case 39: e.setThickness(v); break;
            case 50: e.setEcsRotation(Radians(tag.value)); break;
            default: break;
        }
    });
    e.setPosition(p);
    e.setNormal(n);
}

// Texts, attribute definitions and attributes. Attributes keep the field length under 73 and
// the vertical alignment under 74; a text has its vertical alignment under 73.
template <typename T>
void ReadText(T& e, const AcDbRawTags& tags, AcDbDatabase& db, bool attribute) {
    AcGePoint3d p, a;
    AcGeVector3d n = AcGeVector3d::kZAxis;
    bool hasAlignment = false;
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        std::string_view s = tag.value;
        switch (tag.code) {
            case 10: case 20: case 30: SetAxis(p, tag.code, 10, Real(s)); break;
            case 11: case 21: case 31: SetAxis(a, tag.code, 11, Real(s)); hasAlignment = true; break;
            case 210: case 220: case 230: SetAxis(n, tag.code, 210, Real(s)); break;
            case 39: e.setThickness(Real(s)); break;
            case 40: e.setHeight(Real(s)); break;
            case 1: e.setTextString(Wide(s)); break;
            case 50: e.setRotation(Radians(s)); break;
            case 41: e.setWidthFactor(Real(s)); break;
            case 51: e.setOblique(Radians(s)); break;
            case 7: {
                AcDbTextStyleTable* table = nullptr;
                AcDbObjectId id;
                if (!db.textStyleTableId().isNull() && db.textStyleTableId().stub()->object &&
                    (table = AcDbTextStyleTable::cast(db.textStyleTableId().stub()->object.get())) &&
                    table->getAt(Wide(s), id) == Acad::eOk)
                    e.setTextStyle(id);
                break;
            }
            case 71: e.mirrorInX((Integer(s) & 2) != 0); e.mirrorInY((Integer(s) & 4) != 0); break;
            case 72: e.setHorizontalMode(Enumerated(s, 0, 5, AcDb::kTextLeft)); break;
            case 73:
                if (!attribute) e.setVerticalMode(Enumerated(s, 0, 3, AcDb::kTextBase));
                break;
            case 74:
                if (attribute) e.setVerticalMode(Enumerated(s, 0, 3, AcDb::kTextBase));
                break;
            default: break;
        }
    });
    e.setPosition(p);
    e.setAlignmentPoint(hasAlignment ? a : p);
    e.setNormal(n);
}

template <typename T>
void ReadAttributeFields(T& e, const AcDbRawTags& tags, bool definition) {
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (m == "AcDbText" || m == "AcDbEntity") return;
        switch (tag.code) {
            case 2: e.setTag(Wide(tag.value)); break;
            case 70: e.setAttributeFlags(static_cast<int>(Integer(tag.value))); break;
            case 73: e.setFieldLength(static_cast<int>(Integer(tag.value))); break;
            case 3:
                if constexpr (std::is_same_v<T, AcDbAttributeDefinition>)
                    if (definition) e.setPrompt(Wide(tag.value));
                break;
            default: break;
        }
    });
}

AcDbObjectId StyleId(AcDbDatabase& db, AcDbObjectId tableId, const std::wstring& name) {
    AcDbObjectId id;
    if (tableId.isNull() || !tableId.stub()->object) return id;
    if (auto* table = AcDbSymbolTable::cast(tableId.stub()->object.get())) table->getAt(name, id);
    return id;
}

void ReadMText(AcDbMText& e, const AcDbRawTags& tags, AcDbDatabase& db) {
    AcGePoint3d p;
    AcGeVector3d n = AcGeVector3d::kZAxis, d = AcGeVector3d::kXAxis;
    std::string contents, last;
    double rotation = 0.0;
    bool hasDirection = false;
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (m != "AcDbMText" && !m.empty()) return;
        std::string_view s = tag.value;
        switch (tag.code) {
            case 10: case 20: case 30: SetAxis(p, tag.code, 10, Real(s)); break;
            case 11: case 21: case 31:
                SetAxis(d, tag.code, 11, Real(s));
                hasDirection = true;
                e.setFileGave(AcDbMText::kFileDirection);
                break;
            case 210: case 220: case 230: SetAxis(n, tag.code, 210, Real(s)); break;
            case 40: e.setTextHeight(Real(s)); break;
            case 41: e.setWidth(Real(s)); break;
            case 71: e.setAttachment(Enumerated(s, 1, 9, AcDbMText::kTopLeft)); break;
            case 72: e.setFlowDirection(static_cast<int>(Integer(s))); break;
            case 3: contents += s; break;
            case 1: last = s; break;
            case 7: e.setTextStyle(StyleId(db, db.textStyleTableId(), Wide(s))); break;
            case 44:
                e.setLineSpacingFactor(Real(s));
                e.setFileGave(AcDbMText::kFileLineSpacingFactor);
                break;
            case 42:
                e.setActualWidth(Real(s));
                e.setFileGave(AcDbMText::kFileActualWidth);
                break;
            case 43:
                e.setActualHeight(Real(s));
                e.setFileGave(AcDbMText::kFileActualHeight);
                break;
            case 73:
                e.setLineSpacingStyle(static_cast<AcDb::LineSpacingStyle>(Integer(s)));
                e.setFileGave(AcDbMText::kFileLineSpacingStyle);
                break;
            case 50: rotation = Radians(s); break;  // degrees, as for every other angle
            default: break;
        }
    });
    e.setContents(Wide(contents + last));
    e.setLocation(p);
    e.setNormal(n);
    if (hasDirection) e.setDirection(d);
    else if (rotation != 0.0) e.setDirection({std::cos(rotation), std::sin(rotation), 0.0});
}

void ReadLwPolyline(AcDbPolyline& e, const AcDbRawTags& tags) {
    AcGeVector3d n = AcGeVector3d::kZAxis;
    // The tags after a vertex's 10 complete it (none before the first 10).
    const auto last = [&e] { return e.numVerts() - 1; };
    double start = 0.0, end = 0.0;
    double constantWidth = 0.0;
    bool constant = false;
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        double v = Real(tag.value);
        switch (tag.code) {
            case 70:
                e.setClosed((Integer(tag.value) & 1) != 0);
                e.setPlinegen((Integer(tag.value) & 128) != 0);
                break;
            case 43: constant = true; constantWidth = v; break;
            case 38: e.setElevation(v); break;
            case 39: e.setThickness(v); break;
            case 90: e.reserveVertices(static_cast<unsigned int>(CountedRoom(tag.value, tags))); break;
            case 10: e.appendVertex({{v, 0.0}}); break;
            case 20: {
                AcGePoint2d p;
                if (e.getPointAt(last(), p) == Acad::eOk) e.setPointAt(last(), {p.x, v});
                break;
            }
            case 40:
                if (e.getWidthsAt(last(), start, end) == Acad::eOk) e.setWidthsAt(last(), v, end);
                break;
            case 41:
                if (e.getWidthsAt(last(), start, end) == Acad::eOk) e.setWidthsAt(last(), start, v);
                break;
            case 42: e.setBulgeAt(last(), v); break;
            case 210: case 220: case 230: SetAxis(n, tag.code, 210, v); break;
            default: break;
        }
    });
    if (constant) {
        e.setConstantWidth(constantWidth);
        e.setConstantWidthTag(true);
    }
    e.setNormal(n);
}

void ReadSpline(AcDbSpline& e, const AcDbRawTags& tags) {
    AcGeVector3d n = AcGeVector3d::kZAxis, st, et;
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        double v = Real(tag.value);
        switch (tag.code) {
            case 210: case 220: case 230: SetAxis(n, tag.code, 210, v); break;
            case 70: {
                int f = static_cast<int>(Integer(tag.value));
                e.setSplineFlags(f);
                e.setClosed(f & 1);
                e.setPeriodic(f & 2);
                e.setPlanar(f & 8);
                break;
            }
            case 71: e.setDegree(static_cast<int>(Integer(tag.value))); break;
            case 72: ReserveCounted(e.knots(), tag.value, tags); break;
            case 73: ReserveCounted(e.controlPoints(), tag.value, tags); break;
            case 74: ReserveCounted(e.fitPoints(), tag.value, tags); break;
            case 42: e.setKnotTolerance(v); break;
            case 43: e.setControlPointTolerance(v); break;
            case 44: e.setFitTolerance(v); break;
            case 12: case 22: case 32: SetAxis(st, tag.code, 12, v); break;
            case 13: case 23: case 33: SetAxis(et, tag.code, 13, v); break;
            case 40: e.knots().push_back(v); break;
            case 41: e.weights().push_back(v); break;
            case 10: e.controlPoints().push_back({v, 0.0, 0.0}); break;
            case 20: if (!e.controlPoints().empty()) e.controlPoints().back().y = v; break;
            case 30: if (!e.controlPoints().empty()) e.controlPoints().back().z = v; break;
            case 11: e.fitPoints().push_back({v, 0.0, 0.0}); break;
            case 21: if (!e.fitPoints().empty()) e.fitPoints().back().y = v; break;
            case 31: if (!e.fitPoints().empty()) e.fitPoints().back().z = v; break;
            default: break;
        }
    });
    e.setNormal(n);
    e.setStartFitTangent(st);
    e.setEndFitTangent(et);
}

void ReadEllipse(AcDbEllipse& e, const AcDbRawTags& tags) {
    AcGePoint3d c;
    AcGeVector3d n = AcGeVector3d::kZAxis, major = AcGeVector3d::kXAxis;
    double ratio = 1.0, start = 0.0, end = 6.283185307179586;
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        double v = Real(tag.value);
        switch (tag.code) {
            case 10: case 20: case 30: SetAxis(c, tag.code, 10, v); break;
            case 11: case 21: case 31: SetAxis(major, tag.code, 11, v); break;
            case 210: case 220: case 230: SetAxis(n, tag.code, 210, v); break;
            case 40: ratio = v; break;
            case 41: start = v; break;
            case 42: end = v; break;
            default: break;
        }
    });
    e.set(c, n, major, ratio, start, end);
    e.setStartParam(start);
    e.setEndParam(end);
}

void ReadBlockReference(AcDbBlockReference& e, const AcDbRawTags& tags, std::wstring& blockName) {
    AcGePoint3d p;
    AcGeVector3d n = AcGeVector3d::kZAxis;
    AcGeScale3d s;
    auto* minsert = AcDbMInsertBlock::cast(&e);
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        double v = Real(tag.value);
        switch (tag.code) {
            case 2: blockName = Wide(tag.value); break;
            case 10: case 20: case 30: SetAxis(p, tag.code, 10, v); break;
            case 210: case 220: case 230: SetAxis(n, tag.code, 210, v); break;
            case 41: s.sx = v; break;
            case 42: s.sy = v; break;
            case 43: s.sz = v; break;
            case 50: e.setRotation(Radians(tag.value)); break;
            case 70: if (minsert) minsert->setColumns(static_cast<int>(Integer(tag.value))); break;
            case 71: if (minsert) minsert->setRows(static_cast<int>(Integer(tag.value))); break;
            case 44: if (minsert) minsert->setColumnSpacing(v); break;
            case 45: if (minsert) minsert->setRowSpacing(v); break;
            default: break;
        }
    });
    e.setPosition(p);
    e.setScaleFactors(s);
    e.setNormal(n);
}

struct DimensionPoints {
    AcGePoint3d p[7];  // group codes 10 to 16
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    double rotation = 0.0, oblique = 0.0, leader = 0.0;
};

void ReadDimension(AcDbDimension& e, const AcDbRawTags& tags, AcDbDatabase& db,
                   std::wstring& blockName) {
    DimensionPoints d;
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        std::string_view s = tag.value;
        int c = tag.code;
        if (c >= 10 && c <= 36 && c % 10 <= 6) {
            d.p[c % 10][c / 10 - 1] = Real(s);
            return;
        }
        switch (c) {
            case 2: blockName = Wide(s); break;
            case 3: e.setDimensionStyle(StyleId(db, db.dimStyleTableId(), Wide(s))); break;
            case 1: e.setDimensionText(Wide(s)); break;
            case 42: e.setStoredMeasurement(Real(s)); break;
            case 53: e.setTextRotation(Radians(s)); break;
            case 50: d.rotation = Radians(s); break;
            case 52: d.oblique = Radians(s); break;
            case 40: d.leader = Real(s); break;
            case 210: case 220: case 230: SetAxis(d.normal, c, 210, Real(s)); break;
            case 70: {
                int f = static_cast<int>(Integer(s));
                e.setDimFlags(f & ~(7 | 64));
                if (f & 128) e.useSetTextPosition();
                if (auto* o = AcDbOrdinateDimension::cast(&e)) (f & 64) ? o->useXAxis() : o->useYAxis();
                break;
            }
            default: break;
        }
    });
    e.setTextPosition(d.p[1]);
    e.setNormal(d.normal);
    if (auto* x = AcDbRotatedDimension::cast(&e)) {
        x->setDimLinePoint(d.p[0]);
        x->setXLine1Point(d.p[3]);
        x->setXLine2Point(d.p[4]);
        x->setRotation(d.rotation);
        x->setOblique(d.oblique);
    } else if (auto* x = AcDbAlignedDimension::cast(&e)) {
        x->setDimLinePoint(d.p[0]);
        x->setXLine1Point(d.p[3]);
        x->setXLine2Point(d.p[4]);
        x->setOblique(d.oblique);
    } else if (auto* x = AcDb2LineAngularDimension::cast(&e)) {
        x->setXLine1Start(d.p[3]);
        x->setXLine1End(d.p[4]);
        x->setXLine2Start(d.p[5]);
        x->setXLine2End(d.p[0]);
        x->setArcPoint(d.p[6]);
    } else if (auto* x = AcDbDiametricDimension::cast(&e)) {
        x->setFarChordPoint(d.p[0]);
        x->setChordPoint(d.p[5]);
        x->setLeaderLength(d.leader);
    } else if (auto* x = AcDbRadialDimension::cast(&e)) {
        x->setCenter(d.p[0]);
        x->setChordPoint(d.p[5]);
        x->setLeaderLength(d.leader);
    } else if (auto* x = AcDbOrdinateDimension::cast(&e)) {
        x->setOrigin(d.p[0]);
        x->setDefiningPoint(d.p[3]);
        x->setLeaderEndPoint(d.p[4]);
    } else {
        e.setDimBlockPosition(d.p[0]);
    }
}

AcDbDimension* NewDimension(const AcDbRawTags& tags) {
    int type = 0;
    ForEachBodyTag(tags, [&](std::string_view, const AcDbRawTag& t) {
        if (t.code == 70) type = static_cast<int>(Integer(t.value)) & 7;
    });
    switch (type) {
        case 0: return new AcDbRotatedDimension();
        case 1: return new AcDbAlignedDimension();
        case 2: return new AcDb2LineAngularDimension();
        case 3: return new AcDbDiametricDimension();
        case 4: return new AcDbRadialDimension();
        case 6: return new AcDbOrdinateDimension();
        default: {
            auto* d = new AcDbCarriedDimension();
            d->setDimType(type);
            return d;
        }
    }
}

void ReadPolyline2d(AcDb2dPolyline& e, const AcDbRawTags& tags) {
    AcGeVector3d n = AcGeVector3d::kZAxis;
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        double v = Real(tag.value);
        switch (tag.code) {
            case 30: e.setElevation(v); break;
            case 39: e.setThickness(v); break;
            case 70: e.setPolylineFlags(static_cast<int>(Integer(tag.value))); e.setClosed(static_cast<int>(Integer(tag.value)) & 1); break;
            case 40: e.setDefaultStartWidth(v); break;
            case 41: e.setDefaultEndWidth(v); break;
            case 75: {
                int t = static_cast<int>(Integer(tag.value));
                e.setPolyType(t == 5 ? AcDb::k2dQuadSplinePoly : t == 6 ? AcDb::k2dCubicSplinePoly
                              : t == 8 ? AcDb::k2dFitCurvePoly : AcDb::k2dSimplePoly);
                break;
            }
            case 210: case 220: case 230: SetAxis(n, tag.code, 210, v); break;
            default: break;
        }
    });
    e.setNormal(n);
}

void ReadPolyline3d(AcDb3dPolyline& e, const AcDbRawTags& tags) {
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        int v = static_cast<int>(Integer(tag.value));
        if (tag.code == 70) {
            e.setPolylineFlags(v);
            e.setClosed(v & 1);
        } else if (tag.code == 75) {
            e.setPolyType(v == 5 ? AcDb::k3dQuadSplinePoly : v == 6 ? AcDb::k3dCubicSplinePoly
                                                                    : AcDb::k3dSimplePoly);
        }
    });
}

template <typename V>
void ReadVertex(V& v, const AcDbRawTags& tags) {
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& tag) {
        if (!InEntityPart(m)) return;
        double d = Real(tag.value);
        switch (tag.code) {
            case 10: case 20: case 30: SetAxis(v.position, tag.code, 10, d); break;
            case 70: v.flags = static_cast<int>(Integer(tag.value)); break;
            default:
                if constexpr (std::is_same_v<V, AcDb2dVertex>) {
                    if (tag.code == 40) v.startWidth = d;
                    else if (tag.code == 41) v.endWidth = d;
                    else if (tag.code == 42) v.bulge = d;
                    else if (tag.code == 50) v.tangent = Radians(tag.value);
                }
                break;
        }
    });
}

int PolylineFlags(const AcDbRawTags& tags) {
    int flags = 0;
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& t) {
        if (t.code == 70 && InEntityPart(m)) flags = static_cast<int>(Integer(t.value));
    });
    return flags;
}

AcDbEntity* NewCarried(std::string_view type) {
    static const std::map<std::string_view, AcDbEntity* (*)()> carried = {
        {"LEADER", [] () -> AcDbEntity* { return new AcDbLeader(); }},
        {"MULTILEADER", [] () -> AcDbEntity* { return new AcDbMLeader(); }},
        {"MLEADER", [] () -> AcDbEntity* { return new AcDbMLeader(); }},
        {"REGION", [] () -> AcDbEntity* { return new AcDbRegion(); }},
        {"3DSOLID", [] () -> AcDbEntity* { return new AcDb3dSolid(); }},
        {"BODY", [] () -> AcDbEntity* { return new AcDbBody(); }},
        {"MESH", [] () -> AcDbEntity* { return new AcDbSubDMesh(); }},
        {"TOLERANCE", [] () -> AcDbEntity* { return new AcDbFcf(); }},
        {"HATCH", [] () -> AcDbEntity* { return new AcDbHatch(); }},
        {"SOLID", [] () -> AcDbEntity* { return new AcDbSolid(); }},
        {"3DFACE", [] () -> AcDbEntity* { return new AcDbFace(); }},
        {"TRACE", [] () -> AcDbEntity* { return new AcDbTrace(); }},
        {"VIEWPORT", [] () -> AcDbEntity* { return new AcDbViewport(); }},
        {"IMAGE", [] () -> AcDbEntity* { return new AcDbRasterImage(); }},
        {"WIPEOUT", [] () -> AcDbEntity* { return new AcDbWipeout(); }},
        {"RAY", [] () -> AcDbEntity* { return new AcDbRay(); }},
        {"XLINE", [] () -> AcDbEntity* { return new AcDbXline(); }},
        {"ACAD_TABLE", [] () -> AcDbEntity* { return new AcDbTable(); }},
    };
    auto it = carried.find(type);
    return it != carried.end() ? it->second() : new AcDbUnknownEntity(Wide(type));
}

}  // namespace

AcDbEntity* NewEntity(std::string_view type, const AcDbRawTags& tags) {
    if (type == "LINE") return new AcDbLine();
    if (type == "CIRCLE") return new AcDbCircle();
    if (type == "ARC") return new AcDbArc();
    if (type == "POINT") return new AcDbPoint();
    if (type == "TEXT") return new AcDbText();
    if (type == "ATTDEF") return new AcDbAttributeDefinition();
    if (type == "ATTRIB") return new AcDbAttribute();
    if (type == "MTEXT") return new AcDbMText();
    if (type == "LWPOLYLINE") return new AcDbPolyline();
    if (type == "SPLINE") return new AcDbSpline();
    if (type == "ELLIPSE") return new AcDbEllipse();
    if (type == "INSERT") {
        bool array = false;
        ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& t) {
            if (InEntityPart(m) && (t.code == 70 || t.code == 71) && Integer(t.value) > 1) array = true;
        });
        return array ? new AcDbMInsertBlock() : new AcDbBlockReference();
    }
    if (type == "DIMENSION") return NewDimension(tags);
    if (type == "POLYLINE") {
        int flags = PolylineFlags(tags);
        if (flags & 64) return new AcDbPolyFaceMesh();
        if (flags & 16) return new AcDbPolygonMesh();
        if (flags & 8) return new AcDb3dPolyline();
        return new AcDb2dPolyline();
    }
    return NewCarried(type);
}

std::wstring ReadEntityFields(AcDbEntity& e, AcDbDatabase& db) {
    std::wstring blockName;
    const AcDbRawTags& tags = e.fileTags();
    AcDbEntityLook look = e.look();
    ForEachBodyTag(tags, [&](std::string_view m, const AcDbRawTag& t) { ReadCommon(e, look, m, t); });
    e.setLook(look);
    if (auto* x = AcDbLine::cast(&e)) ReadLine(*x, tags);
    else if (auto* x = AcDbArc::cast(&e)) {
        double s = 0.0, t = 0.0;
        ReadRound(*x, tags, &s, &t);
        x->setStartAngle(s);
        x->setEndAngle(t);
    } else if (auto* x = AcDbCircle::cast(&e)) ReadRound(*x, tags, nullptr, nullptr);
    else if (auto* x = AcDbPoint::cast(&e)) ReadPoint(*x, tags);
    else if (auto* x = AcDbAttributeDefinition::cast(&e)) {
        ReadText(*x, tags, db, true);
        ReadAttributeFields(*x, tags, true);
    } else if (auto* x = AcDbAttribute::cast(&e)) {
        ReadText(*x, tags, db, true);
        ReadAttributeFields(*x, tags, false);
    } else if (auto* x = AcDbText::cast(&e)) ReadText(*x, tags, db, false);
    else if (auto* x = AcDbMText::cast(&e)) ReadMText(*x, tags, db);
    else if (auto* x = AcDbPolyline::cast(&e)) ReadLwPolyline(*x, tags);
    else if (auto* x = AcDbSpline::cast(&e)) ReadSpline(*x, tags);
    else if (auto* x = AcDbEllipse::cast(&e)) ReadEllipse(*x, tags);
    else if (auto* x = AcDbBlockReference::cast(&e)) ReadBlockReference(*x, tags, blockName);
    else if (auto* x = AcDbDimension::cast(&e)) ReadDimension(*x, tags, db, blockName);
    else if (auto* x = AcDb2dPolyline::cast(&e)) ReadPolyline2d(*x, tags);
    else if (auto* x = AcDb3dPolyline::cast(&e)) ReadPolyline3d(*x, tags);
    return blockName;
}

namespace {

// The look a new entity takes from the record's layer (8), colour index (62, when not 256) and
// lineweight (370, when not -1), as ReadCommon reads those tags into e's look. A drawing has few such looks:
// each is made once on a thread and kept for it, keyed by the three values.
using PlainLookKey = std::tuple<int, int, std::string>;  // colour index, lineweight, layer

// Orders the keys kept and the one looked for (its layer a view) alike.
struct PlainLookOrder {
    using is_transparent = void;
    template <typename Layer>
    static std::tuple<int, int, std::string_view> View(const std::tuple<int, int, Layer>& key) {
        return {std::get<0>(key), std::get<1>(key), std::get<2>(key)};
    }
    template <typename A, typename B>
    bool operator()(const A& a, const B& b) const {
        return View(a) < View(b);
    }
};

const AcDbEntityLook& PlainLook(AcDbEntity& e, const PlainEntity& p) {
    thread_local std::map<PlainLookKey, AcDbEntityLook, PlainLookOrder> looks;
    const auto key = std::make_tuple(p.colorIndex, p.lineweight, p.layer);
    if (const auto it = looks.find(key); it != looks.end()) return it->second;
    char digits[24];
    AcDbEntityLook look = e.look();
    auto integer = [&](int code, long long value) {
        ReadCommon(e, look, "AcDbEntity", {code, std::string_view(digits, std::to_chars(digits, digits + sizeof digits, value).ptr)});
    };
    ReadCommon(e, look, "AcDbEntity", {8, p.layer});
    if (p.colorIndex != 256) integer(62, p.colorIndex);
    if (p.lineweight != -1) integer(370, p.lineweight);
    return looks.emplace(PlainLookKey(p.colorIndex, p.lineweight, p.layer), look).first->second;
}

// The common properties read as ReadCommon reads the record's tags. The linetype scale is a real
// written as its shortest text, which reads back as the same number.
void ReadPlainCommon(AcDbEntity& e, const PlainEntity& p) {
    e.setLook(PlainLook(e, p));
    if (p.linetypeScale != 1.0) e.setLinetypeScale(p.linetypeScale);
}

// An angle as read from the degrees the record gives it in. Radians reads the degrees that
// FormatAngle makes of a finite angle back to the same radians (see angle_text.hpp), so only a
// zero (written "0.0", read as a positive zero) and the angles that are no numbers change.
double PlainAngle(double radians) {
    if (radians == 0.0) return 0.0;
    if (std::isfinite(radians)) return radians;
    thread_local std::string degrees;
    degrees.clear();
    FormatAngle(radians, degrees);
    return Radians(degrees);
}

// A circle's or an arc's values, in the order ReadRound sets them.
template <typename T>
T* NewPlainRound(const PlainEntity& p) {
    auto* e = new T();
    ReadPlainCommon(*e, p);
    if (p.thickness != 0.0) e->setThickness(p.thickness);
    e->setRadius(p.radius);
    e->setNormal(AcGeVector3d::kZAxis);
    e->setCenter(AcGeMatrix3d::planeToWorld(e->normal()) * p.first);
    return e;
}

// In the order ReadLwPolyline sets them, each value the record leaves out at its default; a
// constant width is every vertex's.
AcDbPolyline* NewPlainLwPolyline(const PlainEntity& p) {
    auto* e = new AcDbPolyline();
    ReadPlainCommon(*e, p);
    e->setClosed(p.closed);
    e->setPlinegen(p.plinegen);
    if (p.elevation != 0.0) e->setElevation(p.elevation);
    if (p.thickness != 0.0) e->setThickness(p.thickness);
    e->reserveVertices(static_cast<unsigned int>(p.vertices.size()));
    for (std::size_t k = 0; k < p.vertices.size(); ++k) {
        const AcDbPolyline::Vertex& given = p.vertices[k];
        AcDbPolyline::Vertex v;
        v.point = given.point;
        if (k < p.widthsGiven) {
            v.startWidth = given.startWidth;
            v.endWidth = given.endWidth;
        }
        if (given.bulge != 0.0) v.bulge = given.bulge;
        e->appendVertex(v);
    }
    if (p.constant) {
        e->setConstantWidth(p.constantWidth);
        e->setConstantWidthTag(true);
    }
    return e;  // its normal the z axis, as made
}

}  // namespace

std::string_view PlainTypeName(PlainEntity::Kind kind) {
    switch (kind) {
        case PlainEntity::Kind::kLine: return "LINE";
        case PlainEntity::Kind::kCircle: return "CIRCLE";
        case PlainEntity::Kind::kArc: return "ARC";
        case PlainEntity::Kind::kPoint: return "POINT";
        case PlainEntity::Kind::kLwPolyline: return "LWPOLYLINE";
    }
    return {};
}

// A polyline's tags after its marker: count, flags, the widths and heights given, the vertices.
int LwPolylineTags(const PlainEntity& p) {
    int tags = 2 + p.constant + (p.elevation != 0.0) + (p.thickness != 0.0);
    for (std::size_t k = 0; k < p.vertices.size(); ++k)
        tags += 2 + 2 * (k < p.widthsGiven) + (p.vertices[k].bulge != 0.0);
    return tags;
}

int PlainRecordTags(const PlainEntity& p) {
    // 0, 5, 330, 100 and 8; the common values given; the kind's marker, thickness and point.
    const int common = 5 + (p.colorIndex != 256) + (p.lineweight != -1) + (p.linetypeScale != 1.0);
    if (p.kind == PlainEntity::Kind::kLwPolyline) return common + 1 + LwPolylineTags(p);
    const int head = common + 4 + (p.thickness != 0.0);
    switch (p.kind) {
        case PlainEntity::Kind::kLine: return head + 3;  // the end point
        case PlainEntity::Kind::kCircle: return head + 1;  // the radius
        case PlainEntity::Kind::kArc: return head + 4;  // the radius, the arc's marker, two angles
        case PlainEntity::Kind::kPoint: return head + (p.startAngle != 0.0);
        case PlainEntity::Kind::kLwPolyline: break;
    }
    return head;
}

// The values the record's tags give, read as ReadEntityFields reads them: the reals are the
// decoder's numbers (each written as the shortest text that reads back as itself).
AcDbEntity* NewPlainEntity(const PlainEntity& p) {
    switch (p.kind) {
        case PlainEntity::Kind::kLine: {
            auto* e = new AcDbLine();
            ReadPlainCommon(*e, p);
            if (p.thickness != 0.0) e->setThickness(p.thickness);
            e->setStartPoint(p.first);
            e->setEndPoint(p.second);
            e->setNormal(AcGeVector3d::kZAxis);
            return e;
        }
        case PlainEntity::Kind::kCircle: return NewPlainRound<AcDbCircle>(p);
        case PlainEntity::Kind::kArc: {
            auto* e = NewPlainRound<AcDbArc>(p);
            e->setStartAngle(PlainAngle(p.startAngle));
            e->setEndAngle(PlainAngle(p.endAngle));
            return e;
        }
        case PlainEntity::Kind::kPoint: {
            auto* e = new AcDbPoint();
            ReadPlainCommon(*e, p);
            if (p.thickness != 0.0) e->setThickness(p.thickness);
            if (p.startAngle != 0.0) e->setEcsRotation(PlainAngle(p.startAngle));
            e->setPosition(p.first);
            e->setNormal(AcGeVector3d::kZAxis);
            return e;
        }
        case PlainEntity::Kind::kLwPolyline: return NewPlainLwPolyline(p);
    }
    return nullptr;
}

std::unique_ptr<AcDbEntity> BuildPlainEntity(const PlainEntity& plain) {
    std::unique_ptr<AcDbEntity> e(NewPlainEntity(plain));
    if (e && !ModelGivesPlainRecord(*e, plain)) e.reset();
    return e;
}

void ReadVertexFields(AcDb2dVertex& v, const AcDbRawTags& tags) { ReadVertex(v, tags); }
void ReadVertexFields(AcDb3dPolylineVertex& v, const AcDbRawTags& tags) { ReadVertex(v, tags); }

}  // namespace dxf
