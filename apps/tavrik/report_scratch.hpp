#pragma once
// The run report's per-drawing data on disk: a batch of many drawings keeps in memory only the
// drawing being saved. Each drawing has a record file (its summaries, counts and the positions
// compared before and after) and, once the batch has ended, a file of its lines of Cg.log; the
// part's drawing files are listed in one file, in the report's order.
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/ge/point3d.hpp"
#include "platform/render/render.hpp"
#include "run_report.hpp"

// Positions and boxes the report compares between a drawing before and after the batch.
struct DrawingFacts {
    std::vector<AcGePoint3d> points;
    std::vector<AcGePoint3d> insertPositions;
    std::vector<AcGePoint3d> dimensionCentres;  // where their texts stand
    std::map<std::string, tavrik::render::Window> viewBoxes;
};

// A drawing's record (its report without the log lines, and the facts of the export); false
// when the file cannot be written or read whole.
bool StoreDrawingRecord(const std::filesystem::path& file, const DrawingReport& drawing, const DrawingFacts& facts);
bool LoadDrawingRecord(const std::filesystem::path& file, DrawingReport& drawing, DrawingFacts& facts);

// The list of the part's drawing files: appended one at a time, searched without holding it.
bool AppendListedFile(const std::filesystem::path& list, const std::filesystem::path& file);
// Calls `visit` with the index and the path of each listed file, in their order.
void VisitListedFiles(const std::filesystem::path& list,
                      const std::function<void(int, const std::filesystem::path&)>& visit);

// Lines of a text file from byte `start` on, one at a time, without their CR LF; a UTF-8 mark at
// `start` is taken off and makes the lines UTF-8, otherwise they are in the ANSI code page.
class TextLines {
public:
    TextLines(const std::filesystem::path& file, std::uintmax_t start);
    bool Next(std::wstring& line);

private:
    std::ifstream in_;
    bool utf8_ = false;
};
