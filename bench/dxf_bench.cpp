// Reads and writes one DXF file with the codec and prints the wall times, the processor time of
// the write (which formats large blocks on every core), and the peak memory after the read and
// after the write: dxf_bench IN.dxf OUT.dxf
#include <sys/resource.h>

#include <chrono>
#include <ctime>
#include <cstdio>
#include <filesystem>

#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"

namespace {
double PeakMb() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}
}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: dxf_bench IN.dxf OUT.dxf\n");
        return 2;
    }
    using Clock = std::chrono::steady_clock;
    auto seconds = [](Clock::duration d) { return std::chrono::duration<double>(d).count(); };
    AcDbDatabase db(false, true);
    auto t0 = Clock::now();
    if (dxf::ReadDxfFile(db, argv[1]) != Acad::eOk) {
        std::fprintf(stderr, "%s\n", dxf::Utf8(db.lastError()).c_str());
        return 1;
    }
    auto t1 = Clock::now();
    double readPeakMb = PeakMb();
    std::clock_t c1 = std::clock();
    if (dxf::WriteDxfFile(db, argv[2], {}) != Acad::eOk) {
        std::fprintf(stderr, "%s\n", dxf::Utf8(db.lastError()).c_str());
        return 1;
    }
    auto t2 = Clock::now();
    double writeCpu = static_cast<double>(std::clock() - c1) / CLOCKS_PER_SEC;
    double fileMb = static_cast<double>(std::filesystem::file_size(argv[1])) / 1048576.0;
    double peakMb = PeakMb();
    std::printf("tavrik read %.3f s write %.3f s (processor %.3f s) peak after read %.1f MB (%.2fx "
                "file), after write %.1f MB (%.2fx file), file %.1f MB\n",
                seconds(t1 - t0), seconds(t2 - t1), writeCpu, readPeakMb, readPeakMb / fileMb, peakMb,
                peakMb / fileMb, fileMb);
    return 0;
}
