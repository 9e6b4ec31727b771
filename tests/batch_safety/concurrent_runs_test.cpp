// Two runs started together on one prefix: the batch runs once, the other run is refused and
// says why, and the merged drawing holds every sheet of the part.
#include <algorithm>

#include "workshop_run.hpp"

namespace {

namespace fs = std::filesystem;
using namespace workshop;

TEST_F(WorkshopRun, two_runs_at_once_on_one_prefix_merge_every_sheet_once) {
    pid_t first = Launch(prefix_, work_ / "first.out");
    pid_t second = Launch(prefix_, work_ / "second.out");
    int statuses[] = {Wait(first), Wait(second)};
    std::string outputs[] = {ReadBytes(work_ / "first.out"), ReadBytes(work_ / "second.out")};
    int refused = 0;
    for (int run = 0; run < 2; ++run) {
        bool said = outputs[run].find("another tavrik run") != std::string::npos;
        refused += said;
        EXPECT_EQ(statuses[run], said ? 1 : 0) << outputs[run];
    }
    EXPECT_EQ(refused, 1) << outputs[0] << "\n---\n" << outputs[1];
    for (const Export& sheet : kExports) EXPECT_TRUE(InMergedDrawing(prefix_, sheet)) << sheet.name;
    EXPECT_FALSE(fs::exists(prefix_ / kHandOff / "ugm.log"));
}

}  // namespace
