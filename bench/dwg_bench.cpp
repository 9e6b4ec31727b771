// Reads a DWG file into a database REPEAT times, as the host reads a drawing (dwg::ReadDwgFile,
// the read of AcDbDatabase::readDwgFile: the file's bytes, its hash when a save may take objects
// from it again), and prints the wall time of one read, the model-space entities read, the file
// size and the peak memory, also counted from what the program held before reading:
// dwg_bench FILE.dwg [REPEAT]
#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "platform/db/block_table_record.hpp"
#include "platform/dwg/read.hpp"
#include "platform/dxf/model.hpp"

namespace {

double PeakMb() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

int ModelSpaceEntities(const AcDbDatabase& db) {
    const AcDbObjectId id = db.modelSpaceId();
    const auto* block = id.isNull() ? nullptr : AcDbBlockTableRecord::cast(id.stub()->object.get());
    return block != nullptr ? block->entityIds().length() : 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: dwg_bench FILE.dwg [REPEAT]\n");
        return 2;
    }
    const int repeat = argc > 2 ? std::atoi(argv[2]) : 5;
    const double before = PeakMb();
    using Clock = std::chrono::steady_clock;
    double total = 0;  // reading only: the file's bytes to the filled database
    int entities = 0;
    for (int i = 0; i < repeat; ++i) {
        const auto t0 = Clock::now();
        AcDbDatabase db(false, true);
        if (dwg::ReadDwgFile(db, argv[1]) != Acad::eOk) {
            std::fprintf(stderr, "%s\n", dxf::Utf8(db.lastError()).c_str());
            return 1;
        }
        total += std::chrono::duration<double>(Clock::now() - t0).count();
        entities = ModelSpaceEntities(db);
    }
    const std::uintmax_t size = std::filesystem::file_size(argv[1]);
    const double seconds = total / repeat;
    const double peak = PeakMb();
    std::printf("tavrik read %.4f s entities %d peak %.2f MB above-start %.2f MB file %.2f MB\n", seconds,
                entities, peak, peak - before, static_cast<double>(size) / (1024.0 * 1024.0));
    return 0;
}
