#pragma once
#include <cairo.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/db/database.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/render/render.hpp"

// Pictures for the render tests: drawings given as DXF text are read and rendered to PNG, and
// the PNG is read back pixel by pixel.
namespace rendertest {

namespace fs = std::filesystem;

struct Pixel {
    int r = 0, g = 0, b = 0;
};

class Picture {
public:
    explicit Picture(const fs::path& png) : m_surface(cairo_image_surface_create_from_png(png.c_str())) {}
    ~Picture() { cairo_surface_destroy(m_surface); }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;
    bool ok() const { return cairo_surface_status(m_surface) == CAIRO_STATUS_SUCCESS; }
    int width() const { return cairo_image_surface_get_width(m_surface); }
    int height() const { return cairo_image_surface_get_height(m_surface); }
    Pixel at(int x, int y) const {
        const unsigned char* row = cairo_image_surface_get_data(m_surface) + y * cairo_image_surface_get_stride(m_surface);
        std::uint32_t v = reinterpret_cast<const std::uint32_t*>(row)[x];
        return {static_cast<int>(v >> 16 & 0xFF), static_cast<int>(v >> 8 & 0xFF), static_cast<int>(v & 0xFF)};
    }

private:
    cairo_surface_t* m_surface;
};

inline fs::path TempDir() {
    const char* base = std::getenv("TMPDIR");
    fs::path dir = fs::path(base ? base : "/tmp") / ("render_tests_" + std::to_string(::getpid()));
    fs::create_directories(dir);
    return dir;
}

// A drawing of R12 layout from the text of its sections.
inline std::string Dxf(const std::string& tables, const std::string& entities, const std::string& blocks = "") {
    std::string out = "0\nSECTION\n2\nTABLES\n" + tables + "0\nENDSEC\n";
    if (!blocks.empty()) out += "0\nSECTION\n2\nBLOCKS\n" + blocks + "0\nENDSEC\n";
    return out + "0\nSECTION\n2\nENTITIES\n" + entities + "0\nENDSEC\n0\nEOF\n";
}

inline int RenderFile(const fs::path& dxf, const fs::path& out, const tavrik::render::Options& options,
                      std::string& error) {
    AcDbDatabase db(false, true);
    if (dxf::ReadDxfFile(db, dxf.string()) != Acad::eOk) {
        error = "unreadable " + dxf.string();
        return 16;
    }
    return tavrik::render::RenderDrawing(db, out.string(), options, error);
}

namespace render = tavrik::render;

// A frame from (0,0) to (100,100) that fixes the view, so that drawings map 1:1 to the test's
// expectations: 100 units over the picture's 200 - 2 * 2% pixels.
inline const std::string kFrame = "0\nPOINT\n8\n0\n10\n0\n20\n0\n0\nPOINT\n8\n0\n10\n100\n20\n100\n";

struct Rendered {
    int status = 0;
    std::string error;
    fs::path png;
};

inline Rendered Render(const std::string& name, const std::string& text, render::Options options = {}) {
    fs::path dir = TempDir();
    fs::path dxf = dir / (name + ".dxf");
    std::ofstream(dxf) << text;
    Rendered r;
    r.png = dir / (name + ".png");
    if (options.width == 1600) {
        options.width = 200;
        options.height = 200;
    }
    r.status = RenderFile(dxf, r.png, options, r.error);
    return r;
}

// The pixel row of drawing height y, and the column of x, in the 200x200 picture of the frame.
inline int Row(double y) { return static_cast<int>(100 - (y - 50) * 1.92 + 0.5); }
inline int Column(double x) { return static_cast<int>(100 + (x - 50) * 1.92 + 0.5); }

inline bool IsBackgroundLight(Pixel p) { return p.r == 255 && p.g == 255 && p.b == 255; }

// The darkest pixel of the row band around y at column x: lines fall between pixel centres.
inline Pixel Ink(const Picture& picture, int x, double y) {
    Pixel best{255, 255, 255};
    for (int row = Row(y) - 1; row <= Row(y) + 1; ++row) {
        Pixel p = picture.at(x, row);
        if (p.r + p.g + p.b < best.r + best.g + best.b) best = p;
    }
    return best;
}

inline render::Options Light() {
    render::Options options;
    options.width = options.height = 200;
    options.background = render::Background::kLight;
    return options;
}

}  // namespace rendertest
