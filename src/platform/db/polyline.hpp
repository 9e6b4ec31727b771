#pragma once
#include <vector>

#include "platform/db/curve.hpp"
#include "platform/db/extrusion.hpp"
#include "platform/db/vertex_column.hpp"
#include "platform/ge/point2d.hpp"

// The lightweight polyline: 2D vertices in the plane of its normal at an elevation, each with a
// bulge (tan of a quarter of the arc's sweep; positive counter-clockwise) and start and end
// widths for the segment that follows it. Its parameter runs over vertex indices.
class AcDbPolyline : public AcDbCurve {
public:
    ACRX_DECLARE_MEMBERS(AcDbPolyline)
    AcDbPolyline() = default;
    explicit AcDbPolyline(unsigned int numVerts) { reserveVertices(numVerts); }

    struct Vertex {
        AcGePoint2d point;
        double bulge = 0.0;
        double startWidth = 0.0;
        double endWidth = 0.0;
        bool operator==(const Vertex&) const = default;
    };

    unsigned int numVerts() const { return static_cast<unsigned int>(m_points.size()); }
    // Inserts a vertex before index (index == numVerts appends).
    Acad::ErrorStatus addVertexAt(unsigned int index, const AcGePoint2d& point, double bulge = 0.0,
                                  double startWidth = -1.0, double endWidth = -1.0);
    Acad::ErrorStatus removeVertexAt(unsigned int index);
    Acad::ErrorStatus getPointAt(unsigned int index, AcGePoint2d& point) const;
    // The vertex in world coordinates (elevation and normal applied).
    Acad::ErrorStatus getPointAt(unsigned int index, AcGePoint3d& point) const;
    Acad::ErrorStatus setPointAt(unsigned int index, const AcGePoint2d& point);
    Acad::ErrorStatus getBulgeAt(unsigned int index, double& bulge) const;
    Acad::ErrorStatus setBulgeAt(unsigned int index, double bulge);
    Acad::ErrorStatus getWidthsAt(unsigned int index, double& startWidth, double& endWidth) const;
    Acad::ErrorStatus setWidthsAt(unsigned int index, double startWidth, double endWidth);
    Acad::ErrorStatus getConstantWidth(double& width) const;
    Acad::ErrorStatus setConstantWidth(double width);
    bool isClosed() const override { return m_closed; }
    void setClosed(bool closed) { m_closed = closed; }
    double elevation() const { return m_elevation; }
    void setElevation(double z) { m_elevation = z; }
    AcGeVector3d normal() const { return m_extrusion.normal(); }
    void setNormal(const AcGeVector3d& n) { m_extrusion.setNormal(n.normal()); }
    double thickness() const { return m_extrusion.thickness(); }
    void setThickness(double t) { m_extrusion.setThickness(t); }
    // Linetype generation across vertices (flag 128).
    bool hasPlinegen() const { return m_plinegen; }
    void setPlinegen(bool on) { m_plinegen = on; }
    // A polyline with any non-zero bulge has arc segments.
    bool hasBulges() const;
    bool hasWidth() const;
    // Vertex `index` (< numVerts) whole, and its replacement; appending one at the end.
    Vertex vertexAt(unsigned int index) const;
    void setVertexAt(unsigned int index, const Vertex& vertex);
    void appendVertex(const Vertex& vertex);
    void reserveVertices(unsigned int count);
    // The vertices the storage holds before it grows.
    std::size_t vertexRoom() const { return m_points.capacity(); }
    // The constant width of group code 43, when the file gave one.
    bool hasConstantWidthTag() const { return m_constantWidthTag; }
    void setConstantWidthTag(bool on) { m_constantWidthTag = on; }

    // Curve operations, with the parameter as the class comment defines it.
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
    // A positive distance offsets to the right of the direction of travel (outward for a
    // counter-clockwise closed polyline); the result is one polyline, or eInvalidOffset.
    Acad::ErrorStatus getOffsetCurves(double distance, AcDbVoidPtrArray& curves) const override;
    Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
    Acad::ErrorStatus transformBy(const AcGeMatrix3d& xform) override;
    Acad::ErrorStatus getStretchPoints(AcGePoint3dArray& points) const override;
    Acad::ErrorStatus explode(AcDbVoidPtrArray& entitySet) const override;

private:
    // The widths of the segment that follows a vertex.
    struct Widths {
        double start = 0.0;
        double end = 0.0;
    };
    void putBulge(unsigned int index, double bulge) {
        m_bulges.set(index, bulge, m_points.size(), m_points.capacity());
    }
    void putWidths(unsigned int index, const Widths& widths) {
        m_widths.set(index, widths, m_points.size(), m_points.capacity());
    }

    // The points apart from their bulges and widths, which take no room while no vertex has any:
    // 16 bytes a vertex without them, 24 with bulges, 40 with both.
    std::vector<AcGePoint2d> m_points;
    AcDbVertexColumn<double> m_bulges;
    AcDbVertexColumn<Widths> m_widths;
    bool m_closed = false;
    bool m_plinegen = false;
    bool m_constantWidthTag = false;
    double m_elevation = 0.0;
    AcDbExtrusion m_extrusion;
};
