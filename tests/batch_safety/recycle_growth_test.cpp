// The recycle folder of a batch does not grow by a copy of every converted drawing: the batch's
// scratch copy of each conversion is deleted before the next drawing, with the bytes of the
// converted drawing already kept, and both names share one file's storage.
#include "workshop_run.hpp"

namespace {

namespace fs = std::filesystem;
using namespace workshop;

TEST_F(WorkshopRun, recycled_files_with_equal_bytes_share_their_storage) {
    ASSERT_EQ(RunToEnd(prefix_).status, 0);
    std::vector<fs::path> kept;
    for (const auto& entry : fs::recursive_directory_iterator(prefix_ / "recycle"))
        if (entry.is_regular_file()) kept.push_back(entry.path());
    int equalPairs = 0;
    for (size_t i = 0; i < kept.size(); ++i)
        for (size_t j = i + 1; j < kept.size(); ++j) {
            if (ReadBytes(kept[i]) != ReadBytes(kept[j])) continue;
            ++equalPairs;
            EXPECT_TRUE(fs::equivalent(kept[i], kept[j])) << kept[i] << " and " << kept[j];
        }
    // The scratch copy of the first conversion equals the first converted drawing.
    EXPECT_GE(equalPairs, 1);
}

}  // namespace
