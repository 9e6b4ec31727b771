// Writes one drawing as DXF and as AC1018 DWG with the codec, REPEAT times each in the same
// run, and prints the wall and processor time of one write and the DWG's time as a multiple
// of the DXF's: dwg_write_bench IN.dxf OUT_DIR [REPEAT]
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "platform/dwg/write.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"

namespace {

struct Times {
    double wall = 0, processor = 0;
};

template <typename Write>
Times Measure(int repeat, Write write) {
    using Clock = std::chrono::steady_clock;
    const auto t0 = Clock::now();
    const std::clock_t c0 = std::clock();
    for (int i = 0; i < repeat; ++i) {
        if (!write()) std::exit(1);
    }
    return {std::chrono::duration<double>(Clock::now() - t0).count() / repeat,
            static_cast<double>(std::clock() - c0) / CLOCKS_PER_SEC / repeat};
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: dwg_write_bench IN.dxf OUT_DIR [REPEAT]\n");
        return 2;
    }
    const int repeat = argc > 3 ? std::atoi(argv[3]) : 3;
    const std::string dir = argv[2];
    AcDbDatabase db(false, true);
    if (dxf::ReadDxfFile(db, argv[1]) != Acad::eOk) {
        std::fprintf(stderr, "%s\n", dxf::Utf8(db.lastError()).c_str());
        return 1;
    }
    const Times dxfTimes = Measure(repeat, [&] {
        return dxf::WriteDxfFile(db, dir + "/tavrik.dxf", {}) == Acad::eOk;
    });
    dwg::DwgWriteReport report;
    const Times dwgTimes = Measure(repeat, [&] {
        return dwg::WriteDwgFile(db, dir + "/tavrik.dwg", 936, report) == Acad::eOk;
    });
    std::printf("tavrik dxf write %.3f s (processor %.3f s)\n", dxfTimes.wall, dxfTimes.processor);
    std::printf("tavrik dwg write %.3f s (processor %.3f s)\n", dwgTimes.wall, dwgTimes.processor);
    std::printf("dwg / dxf write: %.2fx (processor %.2fx)\n", dwgTimes.wall / dxfTimes.wall,
                dwgTimes.processor / dxfTimes.processor);
    return 0;
}
