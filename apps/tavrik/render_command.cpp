// tavrik render: a picture of any drawing the database reads, as PNG, SVG or PDF.
#include <cstdio>
#include <filesystem>
#include <string>

#include "platform/db/database.hpp"
#include "platform/dxf/model.hpp"
#include "platform/render/render.hpp"
#include "subcommands.hpp"

namespace {

int Usage() {
    std::fprintf(stderr,
                 "usage: tavrik render [--size WxH] [--background dark|light] [--window x0,y0,x1,y1] IN OUT\n"
                 "  OUT ends in .png, .svg or .pdf; the view is the drawing's extents unless --window\n"
                 "  is given; the size defaults to 1600x1200 and the background to dark\n");
    return kExitUsage;
}

}  // namespace

int RunRender(int argc, char** argv) {
    namespace render = tavrik::render;
    render::Options options;
    std::string in, out;
    for (int i = 1; i < argc; ++i) {
        std::string a = argv[i];
        bool hasValue = i + 1 < argc;
        if (a == "--help" || a == "-h") {
            Usage();
            return kExitOk;
        }
        if (a == "--size" && hasValue) {
            if (!render::ParseSize(argv[++i], options.width, options.height)) return Usage();
        } else if (a == "--background" && hasValue) {
            std::string value = argv[++i];
            if (value == "dark") options.background = render::Background::kDark;
            else if (value == "light") options.background = render::Background::kLight;
            else return Usage();
        } else if (a == "--window" && hasValue) {
            render::Window window;
            if (!render::ParseWindow(argv[++i], window)) return Usage();
            options.window = window;
        } else if (!a.empty() && a[0] == '-') {
            return Usage();
        } else if (in.empty()) {
            in = a;
        } else if (out.empty()) {
            out = a;
        } else {
            return Usage();
        }
    }
    if (in.empty() || out.empty()) return Usage();
    AcDbDatabase db(false, true);
    Acad::ErrorStatus es = db.readDwgFile(dxf::Wide(std::filesystem::absolute(in).string()).c_str());
    if (es != Acad::eOk) {
        std::fprintf(stderr, "tavrik render: %s (status %d)\n", dxf::Utf8(db.lastError()).c_str(), es);
        return kExitFailure;
    }
    std::string error;
    if (render::RenderDrawing(db, out, options, error) != 0) {
        std::fprintf(stderr, "tavrik render: %s\n", error.c_str());
        return kExitFailure;
    }
    return kExitOk;
}
