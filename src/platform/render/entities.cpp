// The entities of a block, each drawn by its kind: curves as sampled paths, points, texts,
// block references (nested, with their attributes), dimensions through their graphics blocks,
// hatches and filled solids.
#include <algorithm>
#include <cmath>

#include "platform/db/arc.hpp"
#include "platform/db/block_reference.hpp"
#include "platform/db/block_table_record.hpp"
#include "platform/db/carried.hpp"
#include "platform/db/circle.hpp"
#include "platform/db/dimension.hpp"
#include "platform/db/ellipse.hpp"
#include "platform/db/line.hpp"
#include "platform/db/mtext.hpp"
#include "platform/db/point_entity.hpp"
#include "platform/db/polyline.hpp"
#include "platform/db/polyline_bulges.hpp"
#include "platform/db/polyline_classic.hpp"
#include "platform/db/spline.hpp"
#include "platform/db/text.hpp"
#include "platform/ge/path3d.hpp"
#include "platform/render/canvas.hpp"

namespace tavrik::render {

namespace {

// Blocks nest at most this deep; deeper (or self-referencing) references are not drawn.
constexpr int kMaxBlockDepth = 16;
constexpr double kPixelsPerSample = 3.0;

// Samples for a curve of the given size in pixels: about one every few pixels.
int SampleCount(double sizePx, int least, int most) {
    return std::clamp(static_cast<int>(sizePx / kPixelsPerSample), least, most);
}

double SizePx(const Canvas& canvas, const BlockContext& context, const AcDbEntity& entity) {
    AcDbExtents box;
    if (entity.getGeomExtents(box) != Acad::eOk) return 0.0;
    AcGeVector3d diagonal = box.maxPoint() - box.minPoint();
    return diagonal.length() * canvas.scale * context.scale;
}

// Points along a curve's parameter range, evenly spaced in parameter.
std::vector<AcGePoint3d> SampleCurve(const AcDbCurve& curve, int count) {
    std::vector<AcGePoint3d> points;
    double start = 0.0, end = 0.0;
    if (curve.getStartParam(start) != Acad::eOk || curve.getEndParam(end) != Acad::eOk) return points;
    for (int i = 0; i <= count; ++i) {
        AcGePoint3d p;
        if (curve.getPointAtParam(start + (end - start) * i / count, p) == Acad::eOk) points.push_back(p);
    }
    return points;
}

// A lightweight polyline's segments in world coordinates of its block, built once (asking the
// polyline for each point would rebuild its path every time).
tavrik::ge::Path3d PathOf(const AcDbPolyline& polyline) {
    return tavrik::ge::pathInPlane(tavrik::polyline_bulges::bulgePathOf(polyline), polyline.normal(),
                                   polyline.elevation());
}

// Points along one segment: its ends for a straight one, arcSamples steps along an arc.
void SampleSegment(const tavrik::ge::PathSegment3d& segment, int arcSamples, std::vector<AcGePoint3d>& points) {
    int steps = segment.arc ? arcSamples : 1;
    for (int k = points.empty() ? 0 : 1; k <= steps; ++k)
        points.push_back(tavrik::ge::pointAt(segment, static_cast<double>(k) / steps));
}

std::vector<AcGePoint3d> SamplePolyline(const AcDbPolyline& polyline, int arcSamples) {
    tavrik::ge::Path3d path = PathOf(polyline);
    std::vector<AcGePoint3d> points;
    for (const tavrik::ge::PathSegment3d& segment : path.segments) SampleSegment(segment, arcSamples, points);
    if (points.empty() && polyline.numVerts() > 0) points.push_back(path.first);
    return points;
}

// A polyline with widths: each segment filled as its band (a segment of no width is stroked).
void DrawWidePolyline(Canvas& canvas, const AcDbPolyline& polyline, const BlockContext& context,
                      const Pen& pen, int arcSamples) {
    tavrik::ge::Path3d path = PathOf(polyline);
    for (size_t i = 0; i < path.segments.size() && i < polyline.numVerts(); ++i) {
        const AcDbPolyline::Vertex vertex = polyline.vertexAt(static_cast<unsigned int>(i));
        std::vector<AcGePoint3d> points;
        SampleSegment(path.segments[i], arcSamples, points);
        if (vertex.startWidth == 0.0 && vertex.endWidth == 0.0) StrokePath(canvas, context, pen, points, false);
        else FillPath(canvas, context, pen.color, {BandOutline(points, vertex.startWidth, vertex.endWidth)});
    }
}

void DrawPolyline(Canvas& canvas, const AcDbPolyline& polyline, const BlockContext& context, const Pen& pen) {
    int arcSamples = SampleCount(SizePx(canvas, context, polyline), 4, 64);
    if (polyline.hasWidth()) {
        DrawWidePolyline(canvas, polyline, context, pen, arcSamples);
        return;
    }
    StrokePath(canvas, context, pen, SamplePolyline(polyline, arcSamples), polyline.isClosed());
}

void DrawCurve(Canvas& canvas, const AcDbCurve& curve, const BlockContext& context, const Pen& pen) {
    if (const AcDbLine* line = AcDbLine::cast(&curve)) {
        StrokePath(canvas, context, pen, {line->startPoint(), line->endPoint()}, false);
        return;
    }
    if (const AcDbPolyline* polyline = AcDbPolyline::cast(&curve)) {
        DrawPolyline(canvas, *polyline, context, pen);
        return;
    }
    int most = 720;
    int least = 8;
    if (const AcDbSpline* spline = AcDbSpline::cast(&curve)) least = std::max(16, 8 * spline->numControlPoints());
    if (AcDb2dPolyline::cast(&curve) || AcDb3dPolyline::cast(&curve)) least = 1;
    int count = SampleCount(SizePx(canvas, context, curve), least, std::max(most, least));
    if (AcDbCircle::cast(&curve)) count = std::max(count, 24);
    StrokePath(canvas, context, pen, SampleCurve(curve, count), curve.isClosed());
}

void DrawPoint(Canvas& canvas, const AcDbPoint& point, const BlockContext& context, const Pen& pen) {
    DevicePoint d = canvas.toDevice(context.xform * point.position());
    cairo_set_source_rgb(canvas.cr, pen.color.r, pen.color.g, pen.color.b);
    cairo_arc(canvas.cr, d.x, d.y, std::max(1.5, pen.widthPx), 0, 2 * M_PI);
    cairo_fill(canvas.cr);
}

void DrawAttributes(Canvas& canvas, const AcDbBlockReference& reference, const BlockContext& context) {
    for (AcDbObjectId id : reference.attributeIds()) {
        AcDbEntity* attribute = nullptr;
        if (acdbOpenAcDbEntity(attribute, id, AcDb::kForRead) != Acad::eOk) continue;
        DrawEntity(canvas, *attribute, context);
        attribute->close();
    }
}

// The block once per cell of a multiple insert (once for a plain reference), then the
// reference's own attributes, which stand in the reference's coordinates.
void DrawReference(Canvas& canvas, const AcDbBlockReference& reference, const BlockContext& context) {
    if (context.depth >= kMaxBlockDepth) return;
    int columns = 1, rows = 1;
    double columnSpacing = 0.0, rowSpacing = 0.0;
    if (const AcDbMInsertBlock* grid = AcDbMInsertBlock::cast(&reference)) {
        columns = std::max(1, grid->columns());
        rows = std::max(1, grid->rows());
        columnSpacing = grid->columnSpacing();
        rowSpacing = grid->rowSpacing();
    }
    AcGeMatrix3d block = reference.blockTransform();
    AcGeMatrix3d turn = AcGeMatrix3d::rotation(reference.rotation(), AcGeVector3d(0, 0, 1));
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < columns; ++c) {
            AcGeVector3d offset = turn * AcGeVector3d(c * columnSpacing, r * rowSpacing, 0);
            AcGeMatrix3d cell = AcGeMatrix3d::translation(offset) * block;
            BlockContext child = ChildContext(canvas, reference, context, cell);
            DrawBlockContents(canvas, reference.blockTableRecord(), child);
        }
    }
    DrawAttributes(canvas, reference, context);
}

// A dimension draws as the block of graphics it names; one without a block shows nothing.
void DrawDimension(Canvas& canvas, const AcDbDimension& dimension, const BlockContext& context) {
    if (context.depth >= kMaxBlockDepth || dimension.dimBlockId().isNull()) return;
    BlockContext child = ChildContext(canvas, dimension, context, AcGeMatrix3d::kIdentity);
    DrawBlockContents(canvas, dimension.dimBlockId(), child);
}

}  // namespace

// The band a polyline segment with widths covers: the width runs from startWidth at the first
// centre point to endWidth at the last, across the direction of travel there (from the point
// before to the point after; a point whose neighbours coincide has no direction and is left
// out). Left edge forward, then right edge back.
std::vector<AcGePoint3d> BandOutline(const std::vector<AcGePoint3d>& centre, double startWidth, double endWidth) {
    if (centre.empty()) return {};
    std::vector<AcGePoint3d> left, right;
    size_t last = centre.size() - 1;
    for (size_t k = 0; k <= last; ++k) {
        AcGeVector3d along = centre[std::min(k + 1, last)] - centre[k > 0 ? k - 1 : 0];
        if (along.length() < 1e-12) continue;
        AcGeVector3d across = AcGeVector3d(-along.y, along.x, 0.0) / along.length();
        double half = (startWidth + (endWidth - startWidth) * k / last) / 2;
        left.push_back(centre[k] + across * half);
        right.push_back(centre[k] - across * half);
    }
    left.insert(left.end(), right.rbegin(), right.rend());
    return left;
}

void DrawEntity(Canvas& canvas, const AcDbEntity& entity, const BlockContext& context) {
    if (entity.visibility() != AcDb::kVisible) return;
    if (IsHidden(canvas, EffectiveLayer(entity, context))) return;
    if (const AcDbBlockReference* reference = AcDbBlockReference::cast(&entity)) {
        DrawReference(canvas, *reference, context);
    } else if (const AcDbDimension* dimension = AcDbDimension::cast(&entity)) {
        DrawDimension(canvas, *dimension, context);
    } else if (const AcDbCurve* curve = AcDbCurve::cast(&entity)) {
        DrawCurve(canvas, *curve, context, PenOf(canvas, entity, context));
    } else if (const AcDbPoint* point = AcDbPoint::cast(&entity)) {
        DrawPoint(canvas, *point, context, PenOf(canvas, entity, context));
    } else if (AcDbText::cast(&entity) || AcDbMText::cast(&entity)) {
        DrawText(canvas, entity, context);
    } else if (AcDbHatch::cast(&entity)) {
        DrawHatch(canvas, entity, context);
    } else if (AcDbSolid::cast(&entity) || AcDbTrace::cast(&entity)) {
        DrawSolid(canvas, entity, context);
    }
}

void DrawBlockContents(Canvas& canvas, const AcDbObjectId& blockId, const BlockContext& context) {
    AcDbBlockTableRecord* block = nullptr;
    if (acdbOpenObject(block, blockId, AcDb::kForRead) != Acad::eOk) return;
    AcDbObjectIdArray ids = block->entityIds();
    block->close();
    for (AcDbObjectId id : ids) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) continue;
        // Definitions of attributes show in the block's own drawing, not through references.
        bool definition = AcDbAttributeDefinition::cast(entity) != nullptr;
        if (!(definition && context.depth > 0)) DrawEntity(canvas, *entity, context);
        entity->close();
    }
}

}  // namespace tavrik::render
