// The batch deletes an old merged drawing before the merge, so that a failed save of the new one
// falls back instead of leaving the old file in place as if it were the result.
#include <gtest/gtest.h>

#include <unistd.h>

#include "batch_fixture.hpp"
#include "pipeline/batch_driver.hpp"

namespace {

class BatchMergeTarget : public BatchTest {
protected:
    // The writer saves into a temporary file beside the target and renames it into place; a
    // folder in the temporary file's place makes that save fail.
    void MakeSaveFailAt(const std::wstring& target) {
        std::filesystem::create_directories(ResolvePath(target).string() + ".tmp" + std::to_string(::getpid()));
    }
};

TEST_F(BatchMergeTarget, old_merged_drawing_is_deleted_so_a_failed_save_falls_back) {
    WriteHandOff(L"D:\\out\\\r\nP-.dxf\r\n");
    SaveExport(HandOff(L"P-1.dxf"));
    WriteAt(L"D:\\out\\P.dxf", "an old merged drawing");
    std::filesystem::create_directories(ResolvePath(L"d:\\Mytool\\temp"));
    MakeSaveFailAt(L"D:\\out\\P.dxf");
    testing::internal::CaptureStderr();
    RunBatch();
    testing::internal::GetCapturedStderr();
    EXPECT_FALSE(ExistsAt(L"D:\\out\\P.dxf"));
    EXPECT_EQ(Module().MergedFileName, L"d:\\Mytool\\temp\\Dorvault.dwg");
    auto merged = ReadDrawing(L"d:\\Mytool\\temp\\Dorvault.dwg");
    ASSERT_TRUE(merged);
    EXPECT_EQ(CountOnLayer(*merged, L"PART"), 1);
}

TEST_F(BatchMergeTarget, old_merged_drawing_is_replaced_by_the_new_one) {
    WriteHandOff(L"D:\\out\\\r\nP-.dxf\r\n");
    SaveExport(HandOff(L"P-1.dxf"));
    WriteAt(L"D:\\out\\P.dxf", "an old merged drawing");
    RunBatch();
    auto merged = ReadDrawing(L"D:\\out\\P.dxf");
    ASSERT_TRUE(merged);
    EXPECT_EQ(CountOnLayer(*merged, L"PART"), 1);
}

}  // namespace
