#pragma once
#include <optional>
#include <string>

class AcDbDatabase;

// Pictures of drawings: the model space drawn with cairo to PNG, SVG or PDF, as a CAD program
// shows it (colours, linetypes, lineweights, texts in a CJK font, blocks, dimensions through
// their graphics blocks, hatches).
namespace tavrik::render {

enum class Background { kDark, kLight };

// A rectangle of the drawing in drawing units.
struct Window {
    double x0 = 0.0, y0 = 0.0, x1 = 0.0, y1 = 0.0;
};

struct Options {
    int width = 1600;
    int height = 1200;
    Background background = Background::kDark;
    std::optional<Window> window;  // the drawing's extents when absent
};

// The box of the visible model space (layers neither off nor frozen); nullopt when it is empty.
std::optional<Window> ModelExtents(const AcDbDatabase& db);

// Draws the model space of db into path; the format follows the extension (.png, .svg, .pdf).
// The file is written beside its target first and renamed over it. Returns 0, or 16 with a
// message in error.
int RenderDrawing(const AcDbDatabase& db, const std::string& path, const Options& options,
                  std::string& error);

// Parses "WxH" and "x0,y0,x1,y1"; false when the text is not one.
bool ParseSize(const std::string& text, int& width, int& height);
bool ParseWindow(const std::string& text, Window& window);

}  // namespace tavrik::render
