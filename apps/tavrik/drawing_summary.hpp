#pragma once
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/render/render.hpp"

class AcDbDatabase;

// What a drawing holds, in figures: for `tavrik info` and the run report.
struct DrawingSummary {
    std::string version;    // "AC1018"
    std::string codePage;   // "ANSI_936", as the file names it; empty when it names none
    std::optional<tavrik::render::Window> extents;
    std::map<std::string, int> entitiesByType;   // of the model space, by file name ("LINE")
    std::map<std::string, int> entitiesByLayer;  // of the model space
    std::map<std::string, int> blocks;           // entities per block, layouts left out
    std::vector<std::string> texts;              // texts, multi-line texts and attributes
};

DrawingSummary SummarizeDrawing(const AcDbDatabase& db);
std::string SummaryJson(const DrawingSummary& summary);
std::string SummaryText(const DrawingSummary& summary);
// A JSON string literal of UTF-8 text.
std::string JsonString(const std::string& text);
