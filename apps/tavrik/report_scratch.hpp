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

// The scratch folder of a run's report and its files.
struct ReportScratch {
    std::filesystem::path folder;
    std::filesystem::path List() const { return folder / "drawings"; }
    std::filesystem::path Record(int index) const { return folder / ("drawing-" + std::to_string(index)); }
    std::filesystem::path Log(int index) const { return folder / ("log-" + std::to_string(index) + ".txt"); }
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

// The index of the last listed drawing whose file `matches`, or -1.
int LastListed(const ReportScratch& scratch, const std::function<bool(const std::filesystem::path&)>& matches);

// Cg.log's lines from byte `start` on, each drawing's from its "开始处理" line on, into the
// drawing's log file; lines before the first drawing's are not the report's.
void SplitLogLines(const ReportScratch& scratch, const std::filesystem::path& cgLog, std::uintmax_t start);
// The drawings of the report, one at a time with their log lines and the sheets and frames they
// name; a drawing whose record cannot be read shows its name only.
std::function<bool(DrawingReport&)> ScratchDrawings(const ReportScratch& scratch, int count);

std::string AsciiLower(std::string text);

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
