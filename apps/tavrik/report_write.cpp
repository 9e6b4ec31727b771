// The run report as files: report.json for scripts, report.html for people (one file, the
// previews inline as PNG data, no outside resources).
#include <cstdio>
#include <fstream>
#include <iterator>
#include <ostream>

#include "run_report.hpp"

namespace {

std::string Html(const std::string& text) {
    std::string out;
    for (char c : text) {
        if (c == '<') out += "&lt;";
        else if (c == '>') out += "&gt;";
        else if (c == '&') out += "&amp;";
        else if (c == '"') out += "&quot;";
        else out += c;
    }
    return out;
}

std::string Seconds(double seconds) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.3f", seconds);
    return buffer;
}

std::string JsonList(const std::vector<std::string>& items) {
    std::string out = "[";
    for (size_t i = 0; i < items.size(); ++i) out += (i ? ", " : "") + JsonString(items[i]);
    return out + "]";
}

std::string JsonCounts(const std::map<std::string, int>& counts) {
    std::string out = "{";
    for (const auto& [name, count] : counts) out += (out.size() > 1 ? ", " : "") + JsonString(name) + ": " + std::to_string(count);
    return out + "}";
}

std::string DrawingJson(const DrawingReport& d) {
    return "{\"name\": " + JsonString(d.name) + ", \"finished\": " + (d.finished ? "true" : "false") +
           ", \"seconds\": " + Seconds(d.seconds) + ", \"before\": " + SummaryJson(d.before) +
           ", \"after\": " + (d.finished ? SummaryJson(d.after) : "null") + ", \"sheets\": " + std::to_string(d.sheets) +
           ", \"frames\": " + JsonList(d.frames) + ", \"dimensionsPerView\": " + JsonCounts(d.dimensionsPerView) +
           ", \"holesReplaced\": " + std::to_string(d.holesReplaced) + ", \"log\": " + JsonList(d.logLines) + "}";
}

std::string Image(const std::filesystem::path& file, const std::string& alt) {
    std::ifstream in(file, std::ios::binary);
    std::string png{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (png.empty()) return "<p class=\"none\">no preview</p>";
    return "<img alt=\"" + Html(alt) + "\" src=\"data:image/png;base64," + Base64(png) + "\">";
}

// Counts before and after side by side, one row per name that either has.
std::string CountsTable(const char* title, const std::map<std::string, int>& before,
                        const std::map<std::string, int>& after) {
    std::map<std::string, std::pair<int, int>> rows;
    for (const auto& [name, n] : before) rows[name].first = n;
    for (const auto& [name, n] : after) rows[name].second = n;
    std::string out = "<table><tr><th>" + std::string(title) + "</th><th>before</th><th>after</th></tr>";
    for (const auto& [name, counts] : rows)
        out += "<tr><td>" + Html(name) + "</td><td>" + std::to_string(counts.first) + "</td><td>" +
               std::to_string(counts.second) + "</td></tr>";
    return out + "</table>";
}

std::string DrawingHtml(const DrawingReport& d) {
    std::string out = "<section><h2>" + Html(d.name) + "</h2><p>";
    out += d.finished ? "time " + Seconds(d.seconds) + " s" : "not saved by the batch";
    out += " &middot; sheets found " + std::to_string(d.sheets) + " &middot; holes replaced " + std::to_string(d.holesReplaced);
    out += "</p><p>frames: " + (d.frames.empty() ? std::string("none") : "");
    for (const std::string& frame : d.frames) out += Html(frame) + " ";
    out += "</p><p>dimensions per view: ";
    for (const auto& [view, n] : d.dimensionsPerView) out += Html(view) + " " + std::to_string(n) + " ";
    out += "</p><div class=\"pair\"><figure>" + Image(d.previewBefore, d.name + " before") +
           "<figcaption>as exported</figcaption></figure><figure>" + Image(d.previewAfter, d.name + " after") +
           "<figcaption>finished</figcaption></figure></div><div class=\"pair\">" +
           CountsTable("entity type", d.before.entitiesByType, d.after.entitiesByType) +
           CountsTable("layer", d.before.entitiesByLayer, d.after.entitiesByLayer) + "</div>";
    out += "<details><summary>Cg.log (" + std::to_string(d.logLines.size()) + " lines)</summary><pre>";
    for (const std::string& line : d.logLines) out += Html(line) + "\n";
    return out + "</pre></details></section>";
}

constexpr const char* kStyle =
    "body{font-family:sans-serif;margin:2em;background:#f4f5f7;color:#222}"
    "section{background:#fff;padding:1em;margin-bottom:1.5em;border-radius:6px}"
    ".pair{display:flex;gap:1em;flex-wrap:wrap;align-items:flex-start}"
    "img{max-width:560px;border:1px solid #ccc}table{border-collapse:collapse}"
    "td,th{border:1px solid #ddd;padding:2px 8px;text-align:left}pre{font-size:12px}";

}  // namespace

std::string Base64(const std::string& bytes) {
    static const char* kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    size_t i = 0;
    for (; i + 2 < bytes.size(); i += 3) {
        unsigned v = static_cast<unsigned char>(bytes[i]) << 16 | static_cast<unsigned char>(bytes[i + 1]) << 8 |
                     static_cast<unsigned char>(bytes[i + 2]);
        for (int shift = 18; shift >= 0; shift -= 6) out += kDigits[v >> shift & 63];
    }
    size_t rest = bytes.size() - i;
    if (rest > 0) {
        unsigned v = static_cast<unsigned char>(bytes[i]) << 16;
        if (rest == 2) v |= static_cast<unsigned char>(bytes[i + 1]) << 8;
        out += kDigits[v >> 18 & 63];
        out += kDigits[v >> 12 & 63];
        out += rest == 2 ? kDigits[v >> 6 & 63] : '=';
        out += '=';
    }
    return out;
}

void WriteReportStreams(std::ostream& json, std::ostream& html, const RunReport& report,
                        const std::function<bool(DrawingReport&)>& next) {
    json << "{\"drawings\": [";
    html << "<!DOCTYPE html><html lang=\"zh\"><head><meta charset=\"utf-8\"><link rel=\"icon\" href=\"data:,\">"
            "<title>Tavrik run report</title><style>"
         << kStyle << "</style></head><body><h1>Tavrik run report</h1>";
    DrawingReport d;
    for (bool first = true; next(d); first = false) {
        json << (first ? "" : ", ") << DrawingJson(d);
        html << DrawingHtml(d);
        d = DrawingReport{};
    }
    json << "], \"merged\": ";
    if (report.mergedSeen)
        json << "{\"path\": " << JsonString(report.mergedPath) << ", \"summary\": " << SummaryJson(report.merged) << "}";
    else
        json << "null";
    json << "}\n";
    html << "<section><h2>Merged drawing</h2>";
    if (report.mergedSeen)
        html << "<p>saved as " << Html(report.mergedPath) << "</p>" << Image(report.mergedPreview, "merged drawing");
    else
        html << "<p>the batch saved no merged drawing</p>";
    html << "</section></body></html>\n";
}
