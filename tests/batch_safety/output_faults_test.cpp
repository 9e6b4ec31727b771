// The merged drawing cannot be saved: the module still deletes the exports as it always does,
// so the run must fail visibly and the exports must wait in the recycle folder.
#include "platform/win/faults.hpp"
#include "workshop_run.hpp"

namespace {

namespace fs = std::filesystem;
using namespace workshop;

bool Says(const Outcome& run, const std::string& text) { return run.output.find(text) != std::string::npos; }

TEST_F(WorkshopRun, folder_at_the_merged_path_fails_the_run_and_keeps_the_exports) {
    fs::create_directories(prefix_ / kMerged);
    Outcome run = RunToEnd(prefix_);
    EXPECT_EQ(run.status, 1) << run.output;
    EXPECT_TRUE(Says(run, "the merged drawing D:\\成品图\\MP2305.dxf does not read")) << run.output;
    EXPECT_TRUE(Says(run, "it is a folder")) << run.output;
    EXPECT_TRUE(fs::is_directory(prefix_ / kMerged));
    for (size_t s = 0; s < kExports.size(); ++s)
        EXPECT_TRUE(InRecycleFolder(prefix_, kExports[s], originals_[s])) << kExports[s].name;
}

TEST_F(WorkshopRun, full_output_drive_fails_the_run_and_keeps_the_exports) {
    Outcome run = RunToEnd(prefix_, {}, {std::string(kFullDriveVariable) + "=D"});
    EXPECT_EQ(run.status, 1) << run.output;
    EXPECT_TRUE(Says(run, "the merged drawing D:\\成品图\\MP2305.dxf does not exist")) << run.output;
    // The fallback drawing could not be saved either, and the host does not claim it was.
    EXPECT_FALSE(Says(run, "a drawing stands at")) << run.output;
    EXPECT_FALSE(fs::exists(prefix_ / kMerged));
    for (size_t s = 0; s < kExports.size(); ++s)
        EXPECT_TRUE(InRecycleFolder(prefix_, kExports[s], originals_[s])) << kExports[s].name;
}

TEST_F(WorkshopRun, whole_batch_passes_the_check_of_the_merged_drawing) {
    Outcome run = RunToEnd(prefix_);
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_FALSE(Says(run, "merged drawing")) << run.output;
    for (const Export& sheet : kExports) EXPECT_TRUE(InMergedDrawing(prefix_, sheet)) << sheet.name;
}

}  // namespace
