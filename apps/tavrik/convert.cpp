// tavrik convert: reads any drawing the database can read and writes it in the format that the
// target's extension names.
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "platform/db/database.hpp"
#include "platform/dwg/write.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"
#include "platform/win/codepage.hpp"
#include "subcommands.hpp"

namespace {

int Usage() {
    std::fprintf(stderr,
                 "usage: tavrik convert [--keep-version] [--version AC10xx] [--codepage 936|65001] "
                 "IN OUT\n  OUT ends in .dxf (ASCII DXF) or .dwg (AC1018 DWG; --version and\n"
                 "  --keep-version apply to DXF only). What a target cannot hold is left out\n"
                 "  and said on standard error, a line per record type.\n");
    return kExitUsage;
}

bool EndsWith(const std::string& path, const char* extension) {
    if (path.size() < 4) return false;
    std::string ext = path.substr(path.size() - 4);
    for (auto& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return ext == extension;
}

// Says what a DXF save had to leave out: objects read from DWG of kinds that are not decoded.
void ReportLeftOutOfDxf(const AcDbDatabase& db, const std::string& out) {
    for (const auto& [type, count] : dxf::LeftOutOfDxf(db)) {
        std::fprintf(stderr, "tavrik convert: %s: %d %s record(s) not written (read from DWG, not decoded)\n",
                     out.c_str(), count, type.c_str());
    }
}

}  // namespace

int RunConvert(int argc, char** argv) {
    dxf::WriteOptions options;
    options.codePage = HostCodePage() == 65001 ? 65001 : 936;
    std::string in, out;
    for (int i = 1; i < argc; ++i) {
        std::string a = argv[i];
        if (a == "--help" || a == "-h") {
            Usage();
            return kExitOk;
        }
        if (a == "--keep-version") {
            options.keepVersion = true;
        } else if (a == "--version" && i + 1 < argc) {
            options.version = dxf::VersionFromName(argv[++i]);
            if (options.version == AcDb::kDHL_Unknown) return Usage();
        } else if (a == "--codepage" && i + 1 < argc) {
            options.codePage = std::atoi(argv[++i]);
        } else if (in.empty()) {
            in = a;
        } else if (out.empty()) {
            out = a;
        } else {
            return Usage();
        }
    }
    if (in.empty() || out.empty()) return Usage();
    const bool dwgTarget = dwg::NamesDwgFile(out);
    if (!EndsWith(out, ".dxf") && !dwgTarget) {
        std::fprintf(stderr, "tavrik convert: %s: only .dxf and .dwg targets can be written\n", out.c_str());
        return kExitFailure;
    }
    // Paths on the command line are the user's: relative ones hang from the working directory.
    std::error_code cwdError;
    in = std::filesystem::absolute(in, cwdError).string();
    out = std::filesystem::absolute(out, cwdError).string();
    AcDbDatabase db(false, true);
    Acad::ErrorStatus es = db.readDwgFile(dxf::Wide(in).c_str());
    if (es != Acad::eOk) {
        std::fprintf(stderr, "tavrik convert: %s (status %d)\n", dxf::Utf8(db.lastError()).c_str(), es);
        return kExitFailure;
    }
    dwg::DwgWriteReport report;
    es = dwgTarget ? dwg::WriteDwgFile(db, out, options.codePage, report)
                   : dxf::WriteDxfFile(db, out, options);
    dwg::PrintLeftOut("tavrik convert", out, report);
    if (es != Acad::eOk) {
        std::fprintf(stderr, "tavrik convert: %s (status %d)\n", dxf::Utf8(db.lastError()).c_str(), es);
        return kExitFailure;
    }
    if (!dwgTarget) ReportLeftOutOfDxf(db, out);
    return kExitOk;
}
