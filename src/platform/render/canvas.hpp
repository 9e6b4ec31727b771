#pragma once
#include <cairo.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/db/color.hpp"
#include "platform/db/extents.hpp"
#include "platform/db/object_id.hpp"
#include "platform/ge/matrix3d.hpp"
#include "platform/render/render.hpp"

class AcDbDatabase;
class AcDbEntity;
class AcDbMText;

namespace tavrik::render {

struct DevicePoint {
    double x = 0.0, y = 0.0;
};

struct Rgb {
    double r = 0.0, g = 0.0, b = 0.0;
};

// How a stroke looks on the device: its colour, dash pattern in drawing units (on, off, ...;
// empty for a solid line) and width in pixels.
struct Pen {
    Rgb color;
    std::vector<double> dashes;
    double widthPx = 1.0;
};

// A layer as drawing sees it.
struct LayerLook {
    AcCmColor color;
    std::vector<double> dashes;
    int lineWeight = -3;
    bool hidden = false;  // off or frozen
};

// What entities inside a block take from the reference that draws them (ByBlock properties,
// the layer that stands in for layer 0) and the transformation into the world.
struct BlockContext {
    AcGeMatrix3d xform = AcGeMatrix3d::kIdentity;
    double scale = 1.0;  // how much xform stretches a length
    std::wstring layer = L"0";
    Rgb color;
    std::vector<double> dashes;
    int lineWeight = -3;
    int depth = 0;
};

// The cairo context and the mapping from world coordinates to pixels, with the drawing's
// tables read once.
struct Canvas {
    cairo_t* cr = nullptr;
    double scale = 1.0;  // pixels per drawing unit
    double originX = 0.0, originY = 0.0;  // pixel position of world (0, 0)
    bool dark = true;
    double ltscale = 1.0;
    std::map<std::wstring, LayerLook> layers;              // by upper-case name
    std::map<std::wstring, std::vector<double>> linetypes;  // by upper-case name
    const AcDbDatabase* db = nullptr;
    double capHeightPerEm = 0.7;  // of the text font, measured once

    DevicePoint toDevice(const AcGePoint3d& world) const {
        return {originX + world.x * scale, originY - world.y * scale};
    }
};

std::wstring Upper(std::wstring text);

// Styles: colours, linetypes and lineweights resolved through layer and block.
void LoadTables(Canvas& canvas);
Rgb IndexColor(const Canvas& canvas, int index);
Rgb ForegroundColor(const Canvas& canvas);
// The layer an entity draws on: layer 0 inside a block takes the reference's layer.
std::wstring EffectiveLayer(const AcDbEntity& entity, const BlockContext& context);
bool IsHidden(const Canvas& canvas, const std::wstring& layer);
Pen PenOf(const Canvas& canvas, const AcDbEntity& entity, const BlockContext& context);
// The context for the contents of a block drawn by `entity` under `parent`.
BlockContext ChildContext(const Canvas& canvas, const AcDbEntity& entity,
                          const BlockContext& parent, const AcGeMatrix3d& blockXform);

// Strokes: points in world coordinates of the block (context.xform applies).
void StrokePath(Canvas& canvas, const BlockContext& context, const Pen& pen,
                const std::vector<AcGePoint3d>& points, bool closed);
void FillPath(Canvas& canvas, const BlockContext& context, const Rgb& color,
              const std::vector<std::vector<AcGePoint3d>>& loops);
// The outline of the band that a polyline segment with widths covers, around its sampled centre
// line; empty for fewer than two distinct points.
std::vector<AcGePoint3d> BandOutline(const std::vector<AcGePoint3d>& centre, double startWidth, double endWidth);

// Entities: every kind the renderer knows, block contents recursively.
void DrawBlockContents(Canvas& canvas, const AcDbObjectId& blockId, const BlockContext& context);
void DrawEntity(Canvas& canvas, const AcDbEntity& entity, const BlockContext& context);
void DrawText(Canvas& canvas, const AcDbEntity& entity, const BlockContext& context);
void DrawHatch(Canvas& canvas, const AcDbEntity& entity, const BlockContext& context);
void DrawSolid(Canvas& canvas, const AcDbEntity& entity, const BlockContext& context);
void SelectTextFont(Canvas& canvas);
// The points of a hatch's loops or a solid's corners, in the block's coordinates.
std::vector<AcGePoint3d> OutlinePoints(const AcDbEntity& entity);
// The entity's box in its block's coordinates, also for the entities the database does not
// measure, texts measured with measure's font; false when it has none. depth counts nested
// blocks.
bool EntityExtents(Canvas& measure, const AcDbEntity& entity, AcDbExtents& box, int depth);
// The box of a multi-line text as drawn, its format codes applied.
bool MTextExtents(Canvas& measure, const AcDbMText& mtext, AcDbExtents& box);

}  // namespace tavrik::render
