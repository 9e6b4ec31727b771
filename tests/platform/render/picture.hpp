#pragma once
#include <cairo.h>

#include <cstdint>
#include <filesystem>
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

}  // namespace rendertest
