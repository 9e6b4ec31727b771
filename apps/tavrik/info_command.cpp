// tavrik info: what a drawing holds, as text or as JSON for scripts.
#include <cstdio>
#include <filesystem>
#include <string>

#include "drawing_summary.hpp"
#include "platform/db/database.hpp"
#include "platform/dxf/model.hpp"
#include "subcommands.hpp"

namespace {

int Usage() {
    std::fprintf(stderr,
                 "usage: tavrik info IN [--json]\n"
                 "  version, code page, extents, entities per type and per layer (model space),\n"
                 "  blocks with their entity counts, and the texts\n");
    return kExitUsage;
}

}  // namespace

int RunInfo(int argc, char** argv) {
    std::string in;
    bool json = false;
    for (int i = 1; i < argc; ++i) {
        std::string a = argv[i];
        if (a == "--help" || a == "-h") {
            Usage();
            return kExitOk;
        }
        if (a == "--json") json = true;
        else if (in.empty() && !a.empty() && a[0] != '-') in = a;
        else return Usage();
    }
    if (in.empty()) return Usage();
    AcDbDatabase db(false, true);
    Acad::ErrorStatus es = db.readDwgFile(dxf::Wide(std::filesystem::absolute(in).string()).c_str());
    if (es != Acad::eOk) {
        std::fprintf(stderr, "tavrik info: %s (status %d)\n", dxf::Utf8(db.lastError()).c_str(), es);
        return kExitFailure;
    }
    DrawingSummary summary = SummarizeDrawing(db);
    std::string out = json ? SummaryJson(summary) + "\n" : SummaryText(summary);
    std::fwrite(out.data(), 1, out.size(), stdout);
    return kExitOk;
}
