// The batch killed at random points: whatever the moment, a normal run afterwards leaves every
// export of the part in the merged drawing or, byte for byte, in the recycle folder, and no
// temporary file of a save behind. Twenty runs are killed at a random time; then one run is
// killed at each point where the platform changes a file (the kill switch of the platform), since
// a moment in time rarely falls between a delete and the copy that follows it. Every sheet also
// ends up in the merged drawing of the normal run.
#include <algorithm>
#include <chrono>
#include <random>
#include <thread>

#include "platform/win/faults.hpp"
#include "workshop_run.hpp"

namespace {

namespace fs = std::filesystem;
using namespace workshop;
using Clock = std::chrono::steady_clock;

constexpr int kTimedRuns = 20;
constexpr size_t kAtOnce = 8;  // runs killed side by side, each on its own prefix

struct KilledRun {
    fs::path prefix;
    std::chrono::milliseconds killAfter{};  // killed from outside at this time, or
    long killPoint = 0;                     // by itself at this point when not 0
    pid_t process = 0;
};

// The points where the platform changes a file in a whole run of the batch.
long CountKillPoints(const fs::path& prefix) {
    MakeWorkshop(prefix);
    Outcome listed = RunToEnd(prefix, {}, {std::string(kKillAtVariable) + "=1000000000"});
    long points = 0;
    for (size_t at = listed.output.find("kill point "); at != std::string::npos;
         at = listed.output.find("kill point ", at + 1))
        ++points;
    return points;
}

// Starts the runs together and kills each at its own moment or point.
void StartAndKill(std::vector<KilledRun>& runs) {
    Clock::time_point start = Clock::now();
    for (KilledRun& run : runs) {
        std::vector<std::string> environment;
        if (run.killPoint) environment.push_back(std::string(kKillAtVariable) + "=" + std::to_string(run.killPoint));
        run.process = Launch(run.prefix, run.prefix.string() + ".killed", {}, environment);
    }
    std::vector<KilledRun*> order;
    for (KilledRun& run : runs) order.push_back(&run);
    std::sort(order.begin(), order.end(), [](auto* a, auto* b) { return a->killAfter < b->killAfter; });
    for (KilledRun* run : order) {
        if (run->killPoint) continue;
        std::this_thread::sleep_until(start + run->killAfter);
        ::kill(run->process, SIGKILL);
    }
    for (KilledRun& run : runs) Wait(run.process);
}

TEST_F(WorkshopRun, killed_batches_lose_no_export) {
    // A whole run first: how long the batch takes, and that it merges every sheet.
    Clock::time_point start = Clock::now();
    Outcome whole = RunToEnd(prefix_);
    auto duration = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
    ASSERT_EQ(whole.status, 0) << whole.output;
    for (const Export& sheet : kExports) ASSERT_TRUE(InMergedDrawing(prefix_, sheet)) << sheet.name;

    long points = CountKillPoints(work_ / "counted");
    ASSERT_GT(points, 10);

    std::mt19937 random(12);
    std::uniform_int_distribution<long> moment(0, duration.count());
    std::vector<KilledRun> all;
    for (int i = 0; i < kTimedRuns; ++i)
        all.push_back({work_ / ("timed" + std::to_string(i)), std::chrono::milliseconds(moment(random))});
    for (long point = 1; point <= points; ++point) all.push_back({work_ / ("point" + std::to_string(point)), {}, point});
    for (size_t first = 0; first < all.size(); first += kAtOnce) {
        std::vector<KilledRun> runs(all.begin() + first, all.begin() + std::min(all.size(), first + kAtOnce));
        for (KilledRun& run : runs) MakeWorkshop(run.prefix);
        StartAndKill(runs);
        std::vector<pid_t> normal;
        for (KilledRun& run : runs) normal.push_back(Launch(run.prefix, run.prefix.string() + ".out"));
        for (pid_t process : normal) Wait(process);
        for (KilledRun& run : runs) {
            SCOPED_TRACE(run.prefix.string() + (run.killPoint ? " killed at point " + std::to_string(run.killPoint)
                                                              : " killed after " + std::to_string(run.killAfter.count()) + " ms"));
            for (size_t s = 0; s < kExports.size(); ++s) {
                EXPECT_TRUE(InMergedDrawing(run.prefix, kExports[s]) ||
                            InRecycleFolder(run.prefix, kExports[s], originals_[s]))
                    << kExports[s].name << " is lost";
                // A sheet that the killed run deleted before its converted copy stood in its place
                // comes back for the normal run, which merges it.
                EXPECT_TRUE(InMergedDrawing(run.prefix, kExports[s])) << kExports[s].name << " is not merged";
            }
            EXPECT_EQ(Temporaries(run.prefix), std::vector<fs::path>{});
        }
    }
}

}  // namespace
