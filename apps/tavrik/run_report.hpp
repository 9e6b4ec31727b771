#pragma once
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "drawing_summary.hpp"

// The run report of a batch: what the host saw of each drawing of the part (before the batch
// and when the batch saved it), the merged drawing, and the lines of Cg.log, written as
// report.html and report.json beside the logs when the batch has consumed its hand-off. The
// module knows nothing of it: the host watches files, saves and logs.

struct DrawingReport {
    std::string name;
    std::filesystem::path file;
    bool finished = false;           // the batch saved it
    double seconds = 0.0;            // from the previous drawing's save (or the start) to its save
    DrawingSummary before, after;
    // PNG files in the run's scratch folder (empty when none was drawn).
    std::filesystem::path previewBefore, previewAfter;
    int sheets = 0;
    std::vector<std::string> frames;
    std::map<std::string, int> dimensionsPerView;  // by view layer: FRONT, LEFT, TOP
    int holesReplaced = 0;
    std::vector<std::string> logLines;
};

// The report's own part; its drawings come one at a time (see report_scratch.hpp).
struct RunReport {
    std::string mergedPath;  // as the batch named it
    std::filesystem::path mergedPreview;
    DrawingSummary merged;
    bool mergedSeen = false;
};

// Called by the host before the modules load: notes the hand-off's drawings and starts watching
// saves. Without a hand-off it does nothing, and FinishRunReport writes nothing.
void BeginRunReport();
// Called when the host's loop has ended: writes the report when the hand-off is gone, and
// removes the previews' scratch folder.
void FinishRunReport();

// The report's two files, report.json and report.html, written as they go: the drawings are
// taken from `next`, one at a time, until it answers false.
void WriteReportStreams(std::ostream& json, std::ostream& html, const RunReport& report,
                        const std::function<bool(DrawingReport&)>& next);
std::string Base64(const std::string& bytes);
