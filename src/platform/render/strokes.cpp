// Paths on the device: world points through the block's transformation and the view.
#include <algorithm>

#include "platform/render/canvas.hpp"

namespace tavrik::render {

namespace {

void TracePath(Canvas& canvas, const BlockContext& context, const std::vector<AcGePoint3d>& points,
               bool closed) {
    bool first = true;
    for (const AcGePoint3d& p : points) {
        DevicePoint d = canvas.toDevice(context.xform * p);
        if (first) cairo_move_to(canvas.cr, d.x, d.y);
        else cairo_line_to(canvas.cr, d.x, d.y);
        first = false;
    }
    if (closed) cairo_close_path(canvas.cr);
}

// Dash lengths in pixels; a pattern finer than two pixels a repeat is drawn solid, as it
// would read as a solid line anyway.
std::vector<double> DeviceDashes(const Canvas& canvas, const BlockContext& context, const Pen& pen) {
    std::vector<double> px;
    double total = 0.0;
    for (double d : pen.dashes) {
        px.push_back(d * canvas.scale * context.scale);
        total += px.back();
    }
    if (total < 2.0) return {};
    for (size_t i = 0; i < px.size(); i += 2) px[i] = std::max(px[i], 1.0);
    return px;
}

}  // namespace

void StrokePath(Canvas& canvas, const BlockContext& context, const Pen& pen,
                const std::vector<AcGePoint3d>& points, bool closed) {
    if (points.empty()) return;
    TracePath(canvas, context, points, closed);
    if (points.size() == 1) {
        DevicePoint d = canvas.toDevice(context.xform * points.front());
        cairo_line_to(canvas.cr, d.x + 0.01, d.y);
    }
    cairo_set_source_rgb(canvas.cr, pen.color.r, pen.color.g, pen.color.b);
    cairo_set_line_width(canvas.cr, pen.widthPx);
    std::vector<double> dashes = DeviceDashes(canvas, context, pen);
    cairo_set_dash(canvas.cr, dashes.data(), static_cast<int>(dashes.size()), 0.0);
    cairo_stroke(canvas.cr);
}

void FillPath(Canvas& canvas, const BlockContext& context, const Rgb& color,
              const std::vector<std::vector<AcGePoint3d>>& loops) {
    for (const auto& loop : loops) TracePath(canvas, context, loop, true);
    cairo_set_fill_rule(canvas.cr, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_set_source_rgb(canvas.cr, color.r, color.g, color.b);
    cairo_fill(canvas.cr);
}

}  // namespace tavrik::render
