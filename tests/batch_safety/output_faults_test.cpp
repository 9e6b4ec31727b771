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

namespace {

using namespace workshop;

TEST_F(WorkshopRun, dot_dot_in_the_hand_off_stays_inside_the_prefix) {
    // Four steps up from D:\ would reach the folder above this test's own without the stop at
    // the drive root. The lines end in LF alone, which the check of the merged drawing reads too.
    std::ofstream(prefix_ / kHandOff / "ugm.log", std::ios::binary)
        << "D:\\..\\..\\..\\..\\escaped-by-dot-dot\\\nC:\\Users\\cad\\AppData\\Local\\Convert\\MP2305-.dxf\n";
    Outcome run = RunToEnd(prefix_);
    EXPECT_EQ(run.status, 0) << run.output;
    fs::path inside = prefix_ / "drives/d/escaped-by-dot-dot/MP2305.dxf";
    for (const Export& sheet : kExports) {
        std::string merged = ReadBytes(inside);
        for (const std::string& number : sheet.numbers) EXPECT_NE(merged.find(number), std::string::npos) << number;
    }
    for (fs::path up = prefix_; up != up.root_path(); up = up.parent_path())
        EXPECT_FALSE(fs::exists(up.parent_path() / "escaped-by-dot-dot")) << up.parent_path();
}

}  // namespace
