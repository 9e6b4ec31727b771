// Decodes every object of an uncompressed DWG (R13 to 2000) REPEAT times and prints the wall
// time of one pass and the peak memory: dwg_bench FILE.dwg VERSION(14|2000) [REPEAT]
// Until the file container lands, the sections are found through the file header's locators,
// as the DWG tests find them.
#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/dwg/classes.hpp"
#include "platform/dwg/corpus_files.hpp"
#include "platform/dwg/decode.hpp"

namespace {
double PeakMb() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}
}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: dwg_bench FILE.dwg 14|2000 [REPEAT]\n");
        return 2;
    }
    const auto version = std::string(argv[2]) == "14" ? dwg::Version::kR14 : dwg::Version::kR2000;
    const int repeat = argc > 3 ? std::atoi(argv[3]) : 20;
    using Clock = std::chrono::steady_clock;
    const auto t0 = Clock::now();
    std::size_t objects = 0;
    for (int i = 0; i < repeat; ++i) {
        const auto file = dwg_test::ReadFileBytes(argv[1]);
        std::vector<dwg::ClassRecord> classes;
        std::vector<dwg::ObjectLocation> map;
        dwg::MapError error;
        if (!dwg::ParseClasses(dwg_test::FileSection(file, dwg::kClassesSection), version, 0, 1252, classes, error) ||
            !dwg::ParseObjectMap(dwg_test::FileSection(file, dwg::kHandlesSection), map, error)) {
            std::fprintf(stderr, "%s at %zu\n", error.reason.c_str(), error.offset);
            return 1;
        }
        std::vector<dwg::DecodedObject> decoded(map.size());
        for (std::size_t k = 0; k < map.size(); ++k) {
            dwg::ObjectStreams o;
            if (dwg::OpenObject(file, map[k].offset, version, 1252, o, error)) {
                dwg::DecodeObject(o, classes, decoded[k]);
            }
        }
        objects = decoded.size();
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - t0).count() / repeat;
    std::printf("tavrik read %.4f s objects %zu peak %.1f MB\n", seconds, objects, PeakMb());
    return 0;
}
