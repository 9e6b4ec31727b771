// The surface by the target's extension, the view, and the walk over the model space.
#include <cairo-pdf.h>
#include <cairo-svg.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <filesystem>

#include "platform/db/block_table_record.hpp"
#include "platform/db/database.hpp"
#include "platform/db/entity.hpp"
#include "platform/render/canvas.hpp"

namespace tavrik::render {

namespace {

constexpr double kMarginFraction = 0.02;

enum class Format { kPng, kSvg, kPdf, kUnknown };

Format FormatOf(const std::string& path) {
    std::string ext = std::filesystem::path(path).extension().string();
    for (auto& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (ext == ".png") return Format::kPng;
    if (ext == ".svg") return Format::kSvg;
    if (ext == ".pdf") return Format::kPdf;
    return Format::kUnknown;
}

cairo_surface_t* CreateSurface(Format format, const std::string& path, int width, int height) {
    switch (format) {
        case Format::kPng: return cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
        case Format::kSvg: return cairo_svg_surface_create(path.c_str(), width, height);
        case Format::kPdf: return cairo_pdf_surface_create(path.c_str(), width, height);
        case Format::kUnknown: break;
    }
    return nullptr;
}

// Fits the window into the picture with a small margin, centred.
void FitView(Canvas& canvas, const Window& window, int width, int height) {
    double w = std::max(window.x1 - window.x0, 1e-9);
    double h = std::max(window.y1 - window.y0, 1e-9);
    double usableW = width * (1.0 - 2 * kMarginFraction);
    double usableH = height * (1.0 - 2 * kMarginFraction);
    canvas.scale = std::min(usableW / w, usableH / h);
    double cx = (window.x0 + window.x1) / 2, cy = (window.y0 + window.y1) / 2;
    canvas.originX = width / 2.0 - cx * canvas.scale;
    canvas.originY = height / 2.0 + cy * canvas.scale;
}

void PaintBackground(const Canvas& canvas) {
    if (canvas.dark) cairo_set_source_rgb(canvas.cr, 0.13, 0.16, 0.19);
    else cairo_set_source_rgb(canvas.cr, 1, 1, 1);
    cairo_paint(canvas.cr);
}

void DrawModelSpace(Canvas& canvas) {
    cairo_set_line_cap(canvas.cr, CAIRO_LINE_CAP_BUTT);
    cairo_set_line_join(canvas.cr, CAIRO_LINE_JOIN_ROUND);
    SelectTextFont(canvas);
    BlockContext world;
    world.color = ForegroundColor(canvas);
    DrawBlockContents(canvas, canvas.db->modelSpaceId(), world);
}

bool Finish(Format format, cairo_surface_t* surface, const std::string& path, std::string& error) {
    cairo_surface_flush(surface);
    cairo_status_t status = format == Format::kPng ? cairo_surface_write_to_png(surface, path.c_str())
                                                    : cairo_surface_status(surface);
    cairo_surface_finish(surface);
    if (status == CAIRO_STATUS_SUCCESS) status = cairo_surface_status(surface);
    if (status != CAIRO_STATUS_SUCCESS) error = path + ": " + cairo_status_to_string(status);
    return status == CAIRO_STATUS_SUCCESS;
}

}  // namespace

int RenderDrawing(const AcDbDatabase& db, const std::string& path, const Options& options,
                  std::string& error) {
    Format format = FormatOf(path);
    if (format == Format::kUnknown) {
        error = path + ": the picture's name must end in .png, .svg or .pdf";
        return 16;
    }
    if (options.width < 1 || options.height < 1) {
        error = "the picture's size must be at least 1x1";
        return 16;
    }
    std::string temporary = path + ".part";
    cairo_surface_t* surface = CreateSurface(format, temporary, options.width, options.height);
    Canvas canvas;
    canvas.db = &db;
    canvas.dark = options.background == Background::kDark;
    canvas.cr = cairo_create(surface);
    LoadTables(canvas);
    Window window = options.window ? *options.window : ModelExtents(db).value_or(Window{0, 0, 1, 1});
    FitView(canvas, window, options.width, options.height);
    PaintBackground(canvas);
    DrawModelSpace(canvas);
    cairo_destroy(canvas.cr);
    bool ok = Finish(format, surface, temporary, error);
    cairo_surface_destroy(surface);
    std::error_code failure;
    if (ok) std::filesystem::rename(temporary, path, failure);
    if (ok && failure) error = path + ": " + failure.message();
    if (!ok || failure) {
        std::filesystem::remove(temporary, failure);
        return 16;
    }
    return 0;
}

bool ParseSize(const std::string& text, int& width, int& height) {
    char x = 0, rest = 0;
    return std::sscanf(text.c_str(), "%d%c%d%c", &width, &x, &height, &rest) == 3 &&
           (x == 'x' || x == 'X') && width > 0 && height > 0 && width <= 20000 && height <= 20000;
}

bool ParseWindow(const std::string& text, Window& window) {
    char rest = 0;
    double a, b, c, d;
    if (std::sscanf(text.c_str(), "%lf,%lf,%lf,%lf%c", &a, &b, &c, &d, &rest) != 4) return false;
    window = {std::min(a, c), std::min(b, d), std::max(a, c), std::max(b, d)};
    return window.x1 > window.x0 && window.y1 > window.y0;
}

}  // namespace tavrik::render
