// Times the curve clean-ups on generated drawings of growing size and prints one row per
// operation and size: the time, its ratio to a reference pass over the same drawing (opening
// every entity of the model space for read once), and the growth against the size before
// (time ratio over size ratio; 1 is linear), with the lines (merge) or splines (conversions)
// counted before and after. FunLineAndArcMerged runs with the indexed walk
// and, up to 10k pieces, with the plain walk it replaces. The process's CPU time of the
// operation is printed beside its wall time, since the machine is shared.
//   curves_bench [MAX_SIZE [OPERATION]]   (sizes 1000, 10000, 100000 up to MAX_SIZE, default
//                                          100000; only the operations named OPERATION)
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <random>
#include <ctime>
#include <string>

#include "cleanup/class_interface_data.hpp"
#include "curves/random_drawings.hpp"
#include "curves/spline_builders.hpp"
#include "curves/touch_clusters.hpp"
#include "platform/win/paths.hpp"
#include "platform/win/prefix.hpp"

namespace {

constexpr const wchar_t* kUserPath = L"D:\\bench";

using Clock = std::chrono::steady_clock;

double CpuSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// Wall seconds of the work; its CPU seconds into `cpu` when given.
double Seconds(const std::function<void()>& work, double* cpu = nullptr) {
    auto t0 = Clock::now();
    double c0 = CpuSeconds();
    work();
    if (cpu != nullptr) *cpu = CpuSeconds() - c0;
    return std::chrono::duration<double>(Clock::now() - t0).count();
}

void WriteIni() {
    std::filesystem::path file = ResolvePath(std::wstring(kUserPath) + L"\\CAD_line.ini");
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << "[public]\nStrDottedLineType=DASHED\nStrSolidLineType=Continuous\n"
                           "[SplineToLineAndArc]\nBolOpen=1\nToleranceLine=0.05\nToleranceArc=0.05\n"
                           "[SplineToPline]\nTolerance=0.02\n[LineAndArcMerged]\nTolerance=0.05\n";
}

// Opens every entity of the model space for read once: the reference pass.
void OpenEverything(AcDbDatabase* db) {
    for (const AcDbObjectId& id : GetModelSpaceIds(db)) {
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead, false) == Acad::eOk) entity->close();
    }
}

std::unique_ptr<AcDbDatabase> NewDrawing() {
    auto db = std::make_unique<AcDbDatabase>(true, false);
    acdbHostApplicationServices()->setWorkingDatabase(db.get());
    random_drawings::AddLayersAndLinetypes(*db);
    return db;
}

// Line and arc pieces at a constant density: 70% lines, 30% arcs.
void FillPieces(AcDbDatabase& db, int size) {
    std::mt19937 rng(static_cast<unsigned>(size));
    double extent = 150.0 * std::sqrt(size / 600.0);
    random_drawings::AddBrokenLines(db, rng, size * 7 / 10, extent);
    random_drawings::AddArcPieces(db, rng, size * 3 / 10, extent);
}

// Splines: a third nearly straight, a third exact arcs, a third free form, on a grid.
void FillSplines(AcDbDatabase& db, int size) {
    std::mt19937 rng(static_cast<unsigned>(size));
    std::vector<AcDbEntity*> entities;
    int side = static_cast<int>(std::ceil(std::sqrt(size)));
    for (int i = 0; i < size; ++i) {
        double x = 50.0 * (i % side), y = 50.0 * (i / side);
        if (i % 3 == 0)
            entities.push_back(ClampedSpline({AcGePoint3d(x, y, 0), AcGePoint3d(x + 10, y + 5.001, 0),
                                              AcGePoint3d(x + 20, y + 10, 0), AcGePoint3d(x + 30, y + 15, 0)}));
        else if (i % 3 == 1)
            entities.push_back(ArcSpline(AcGePoint3d(x, y, 0), random_drawings::Uniform(rng, 3, 20),
                                         random_drawings::Uniform(rng, 0, 360), random_drawings::Uniform(rng, 20, 300)));
        else
            entities.push_back(random_drawings::RandomSpline(rng, x, y, random_drawings::Uniform(rng, 5, 20)));
    }
    random_drawings::AppendShuffled(db, rng, entities);
}

struct Row {
    double seconds = 0.0;
    double cpuSeconds = 0.0;
    double reference = 0.0;
    int entitiesBefore = 0;
    int entitiesAfter = 0;
};

void Print(const char* operation, int size, const Row& row, const Row* before, int sizeBefore) {
    std::printf("%-28s %7d  %9.4f s (cpu %8.4f s)  %8.1f x ref  counted %d -> %d", operation, size,
                row.seconds, row.cpuSeconds, row.seconds / row.reference, row.entitiesBefore,
                row.entitiesAfter);
    if (before != nullptr)
        std::printf("  growth %.2f", (row.seconds / before->seconds) / (static_cast<double>(size) / sizeBefore));
    std::printf("\n");
    std::fflush(stdout);
}

// `kind`: the small type code of the entities counted before and after.
Row Measure(int size, int kind, const std::function<void(AcDbDatabase&, int)>& fill,
            const std::function<void(ClassInterfaceData&)>& operation) {
    auto db = NewDrawing();
    fill(*db, size);
    Row row;
    row.reference = Seconds([&] { OpenEverything(db.get()); });
    ClassInterfaceData cleanup(db.get(), kUserPath);
    for (const AcDbObjectId& id : GetModelSpaceIds(db.get())) row.entitiesBefore += EntityKindOfId(id) == kind;
    row.seconds = Seconds([&] { operation(cleanup); }, &row.cpuSeconds);
    for (const AcDbObjectId& id : GetModelSpaceIds(db.get())) row.entitiesAfter += EntityKindOfId(id) == kind;
    acdbHostApplicationServices()->setWorkingDatabase(nullptr);
    return row;
}

}  // namespace

int main(int argc, char** argv) {
    int maxSize = argc > 1 ? std::atoi(argv[1]) : 100000;
    std::string only = argc > 2 ? argv[2] : "";
    std::filesystem::path prefix = std::filesystem::temp_directory_path() / "tavrik-curves-bench";
    std::filesystem::remove_all(prefix);
    std::string error;
    if (!InitPrefix(prefix, error) || !OpenPrefix(prefix, error)) {
        std::fprintf(stderr, "curves_bench: %s\n", error.c_str());
        return 1;
    }
    WriteIni();
    struct Operation {
        const char* name;
        std::function<void(AcDbDatabase&, int)> fill;
        std::function<void(ClassInterfaceData&)> run;
        int maxSize;
        int kind;  // lines or splines, counted before and after
    };
    const Operation operations[] = {
        {"FunLineAndArcMerged", FillPieces,
         [](ClassInterfaceData& c) { MergeClusterWalk = ClusterWalk::Indexed; c.FunLineAndArcMerged(); }, maxSize, 1},
        {"FunLineAndArcMerged (plain)", FillPieces,
         [](ClassInterfaceData& c) {
             MergeClusterWalk = ClusterWalk::Plain;
             c.FunLineAndArcMerged();
             MergeClusterWalk = ClusterWalk::Indexed;
         },
         std::min(maxSize, 10000), 1},
        {"FunSplineToLineAndArc", FillSplines, [](ClassInterfaceData& c) { c.FunSplineToLineAndArc(); }, maxSize, 5},
        {"FunSplineToPline", FillSplines, [](ClassInterfaceData& c) { c.FunSplineToPline(); }, maxSize, 5},
    };
    std::printf("%-28s %7s  %11s  %16s  %13s\n", "operation", "size", "time", "", "vs reference");
    for (const Operation& operation : operations) {
        if (!only.empty() && only != operation.name) continue;
        Row before;
        int sizeBefore = 0;
        for (int size = 1000; size <= operation.maxSize; size *= 10) {
            Row row = Measure(size, operation.kind, operation.fill, operation.run);
            Print(operation.name, size, row, sizeBefore ? &before : nullptr, sizeBefore);
            before = row;
            sizeBefore = size;
        }
    }
    std::filesystem::remove_all(prefix);
    return 0;
}
