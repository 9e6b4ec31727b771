#pragma once
#include <vector>

#include "platform/db/curve.hpp"

// Vertices of the classic polylines. They are owned by their polyline and stored in it as
// values; each keeps its drawing-file handle and record for a lossless write, and the
// persistent reactors it has of its own (a dimension associated with the vertex), apart from
// its polyline's.
class AcDb2dVertex {
public:
    AcGePoint3d position;  // in the polyline's plane (x, y, elevation)
    double bulge = 0.0;
    double startWidth = 0.0;
    double endWidth = 0.0;
    double tangent = 0.0;
    AcDb::Vertex2dType vertexType = AcDb::k2dVertex;
    int flags = 0;  // group code 70
    AcDbHandle handle;
    AcDbRawTags fileTags;
    AcDbRawTags commonTags;  // layer, colour... of the VERTEX record as read
    AcDbObjectIdArray reactors;
    bool operator==(const AcDb2dVertex&) const = default;
};

class AcDb3dPolylineVertex {
public:
    AcGePoint3d position;
    AcDb::Vertex3dType vertexType = AcDb::k3dSimpleVertex;
    int flags = 32;
    AcDbHandle handle;
    AcDbRawTags fileTags;
    AcDbRawTags commonTags;
    AcDbObjectIdArray reactors;
    bool operator==(const AcDb3dPolylineVertex&) const = default;
};

// The classic 2D polyline (POLYLINE with VERTEX records): vertices in the plane of the normal at
// the elevation, bulges and widths like the lightweight polyline, plus curve-fit and spline-fit
// forms. Its parameter runs over vertex indices.
class AcDb2dPolyline : public AcDbCurve {
public:
    ACRX_DECLARE_MEMBERS(AcDb2dPolyline)
    AcDb2dPolyline() = default;

    AcDb::Poly2dType polyType() const { return m_type; }
    void setPolyType(AcDb::Poly2dType t) { m_type = t; }
    bool isClosed() const override { return m_closed; }
    void makeClosed() { m_closed = true; }
    void makeOpen() { m_closed = false; }
    void setClosed(bool closed) { m_closed = closed; }
    double elevation() const { return m_elevation; }
    void setElevation(double z) { m_elevation = z; }
    AcGeVector3d normal() const { return m_normal; }
    void setNormal(const AcGeVector3d& n) { m_normal = n.normal(); }
    double thickness() const { return m_thickness; }
    void setThickness(double t) { m_thickness = t; }
    double defaultStartWidth() const { return m_startWidth; }
    void setDefaultStartWidth(double w) { m_startWidth = w; }
    double defaultEndWidth() const { return m_endWidth; }
    void setDefaultEndWidth(double w) { m_endWidth = w; }
    // Group code 70 as read (closed bit and others).
    int polylineFlags() const { return m_flags; }
    void setPolylineFlags(int flags) { m_flags = flags; }
    const std::vector<AcDb2dVertex>& vertices() const { return m_vertices; }
    std::vector<AcDb2dVertex>& vertices() { return m_vertices; }
    // The vertex in world coordinates.
    AcGePoint3d vertexPosition(const AcDb2dVertex& v) const;
    AcDbHandle seqEndHandle() const { return m_seqEnd; }
    void setSeqEndHandle(AcDbHandle h) { m_seqEnd = h; }
    AcDbRawTags& seqEndTags() { return m_seqEndTags; }
    const AcDbRawTags& seqEndTags() const { return m_seqEndTags; }

    // Curve operations over the vertices the curve passes through (spline frame vertices are
    // skipped): parameter i at the i-th of them.
    Acad::ErrorStatus getStartParam(double& param) const override;
    Acad::ErrorStatus getEndParam(double& param) const override;
    Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const override;
    Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const override;
    Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& point) const override;
    Acad::ErrorStatus getParamAtPoint(const AcGePoint3d& point, double& param) const override;
    Acad::ErrorStatus getDistAtParam(double param, double& dist) const override;
    Acad::ErrorStatus getFirstDeriv(double param, AcGeVector3d& deriv) const override;
    Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& closest,
                                        bool extend = false) const override;
    // As the lightweight polyline's: positive to the right of the direction of travel.
    Acad::ErrorStatus getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const override;
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus transformBy(const AcGeMatrix3d& xform) override;
    Acad::ErrorStatus getStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus explode(AcDbVoidPtrArray& entitySet) const override;

private:
    std::vector<AcDb2dVertex> m_vertices;
    AcDb::Poly2dType m_type = AcDb::k2dSimplePoly;
    bool m_closed = false;
    int m_flags = 0;
    double m_elevation = 0.0;
    double m_thickness = 0.0;
    double m_startWidth = 0.0;
    double m_endWidth = 0.0;
    AcGeVector3d m_normal = AcGeVector3d::kZAxis;
    AcDbHandle m_seqEnd;
    AcDbRawTags m_seqEndTags;
};

// The 3D polyline: straight segments through world points.
class AcDb3dPolyline : public AcDbCurve {
public:
    ACRX_DECLARE_MEMBERS(AcDb3dPolyline)
    AcDb3dPolyline() = default;

    AcDb::Poly3dType polyType() const { return m_type; }
    void setPolyType(AcDb::Poly3dType t) { m_type = t; }
    bool isClosed() const override { return m_closed; }
    void makeClosed() { m_closed = true; }
    void makeOpen() { m_closed = false; }
    void setClosed(bool closed) { m_closed = closed; }
    int polylineFlags() const { return m_flags; }
    void setPolylineFlags(int flags) { m_flags = flags; }
    const std::vector<AcDb3dPolylineVertex>& vertices() const { return m_vertices; }
    std::vector<AcDb3dPolylineVertex>& vertices() { return m_vertices; }
    AcDbHandle seqEndHandle() const { return m_seqEnd; }
    void setSeqEndHandle(AcDbHandle h) { m_seqEnd = h; }
    AcDbRawTags& seqEndTags() { return m_seqEndTags; }
    const AcDbRawTags& seqEndTags() const { return m_seqEndTags; }

    // Curve operations over the vertices the curve passes through (spline frame vertices are
    // skipped): parameter i at the i-th of them.
    Acad::ErrorStatus getStartParam(double& param) const override;
    Acad::ErrorStatus getEndParam(double& param) const override;
    Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const override;
    Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const override;
    Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d& point) const override;
    Acad::ErrorStatus getParamAtPoint(const AcGePoint3d& point, double& param) const override;
    Acad::ErrorStatus getDistAtParam(double param, double& dist) const override;
    Acad::ErrorStatus getFirstDeriv(double param, AcGeVector3d& deriv) const override;
    Acad::ErrorStatus getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& closest,
                                        bool extend = false) const override;
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus transformBy(const AcGeMatrix3d& xform) override;
    Acad::ErrorStatus getStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus explode(AcDbVoidPtrArray& entitySet) const override;

private:
    std::vector<AcDb3dPolylineVertex> m_vertices;
    AcDb::Poly3dType m_type = AcDb::k3dSimplePoly;
    bool m_closed = false;
    int m_flags = 8;
    AcDbHandle m_seqEnd;
    AcDbRawTags m_seqEndTags;
};
