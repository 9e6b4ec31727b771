// tavrik convert: reads any drawing the database can read and writes it in the format that the
// target's extension names.
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "platform/db/database.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"
#include "platform/win/codepage.hpp"
#include "subcommands.hpp"

namespace {

int Usage() {
    std::fprintf(stderr,
                 "usage: tavrik convert [--keep-version] [--version AC10xx] [--codepage 936|65001] "
                 "IN OUT\n  OUT must end in .dxf\n"
                 "  Objects of a DWG whose kind is not decoded cannot be written as DXF: they are\n"
                 "  left out, and their kinds and counts are said on standard error.\n");
    return kExitUsage;
}

bool EndsWithDxf(const std::string& path) {
    if (path.size() < 4) return false;
    std::string ext = path.substr(path.size() - 4);
    for (auto& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return ext == ".dxf";
}

// The objects read from DWG that the DXF could not hold, one line for all: "3DSOLID 1, REGION 2".
void SayLeftOut(const AcDbDatabase& db, const std::string& out) {
    const auto left = dxf::LeftOutOfDxf(db);
    if (left.empty()) return;
    std::string list;
    for (const auto& [type, count] : left) list += (list.empty() ? "" : ", ") + type + " " + std::to_string(count);
    std::fprintf(stderr, "tavrik convert: %s: left out, kinds read from DWG that are not decoded: %s\n",
                 out.c_str(), list.c_str());
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
    if (!EndsWithDxf(out)) {
        std::fprintf(stderr, "tavrik convert: %s: only .dxf targets can be written\n", out.c_str());
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
    es = dxf::WriteDxfFile(db, out, options);
    if (es != Acad::eOk) {
        std::fprintf(stderr, "tavrik convert: %s (status %d)\n", dxf::Utf8(db.lastError()).c_str(), es);
        return kExitFailure;
    }
    SayLeftOut(db, out);
    return kExitOk;
}
