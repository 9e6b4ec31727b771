// The batch from the hand-off to the merged drawing and the armed quit timer.
#include <gtest/gtest.h>

#include "batch_fixture.hpp"
#include "pipeline/batch_driver.hpp"

namespace {

class Batch : public BatchTest {
protected:
    bool TimerArmed() const { return !Host().timers.empty(); }
};

TEST_F(Batch, WithoutUgmLogOnlyTheBuildStampIsLoggedAndNoTimerIsArmed) {
    SaveExport(HandOff(L"P-1.dxf"));
    RunBatch();
    EXPECT_EQ(CgLog(), L"20191115\n");
    EXPECT_FALSE(TimerArmed());
    EXPECT_TRUE(ExistsAt(HandOff(L"P-1.dxf")));
}

TEST_F(Batch, UgmLogWithOneLineFindsNoFileAndLeavesTheHandOffAlone) {
    WriteHandOff(L"D:\\out\\\r\n");
    SaveExport(HandOff(L"P-1.dxf"));
    RunBatch();
    EXPECT_EQ(CgLog(), L"20191115\n");
    EXPECT_FALSE(TimerArmed());
    EXPECT_TRUE(ExistsAt(HandOff(L"ugm.log")));
}

TEST_F(Batch, SecondLineWithoutAPointFindsNothing) {
    WriteHandOff(L"D:\\out\\\r\nP-1\r\n");
    SaveExport(HandOff(L"P-1.dxf"));
    RunBatch();
    EXPECT_EQ(CgLog(), L"20191115\n");
    EXPECT_FALSE(TimerArmed());
}

TEST_F(Batch, StemWithAHyphenTakesAllItsSheetsAndTheMergedNameDropsTheHyphen) {
    WriteHandOff(L"D:\\out\\\r\nP-.dxf\r\n");
    for (const wchar_t* name : {L"P-1.dxf", L"P-2.dxf", L"P-10.dxf"}) SaveExport(HandOff(name));
    RunBatch();
    auto merged = ReadDrawing(L"D:\\out\\P.dxf");
    ASSERT_TRUE(merged);
    EXPECT_EQ(CountOnLayer(*merged, L"PART"), 3);
    for (const wchar_t* name : {L"P-1.dxf", L"P-2.dxf", L"P-10.dxf"}) EXPECT_FALSE(ExistsAt(HandOff(name)));
    EXPECT_TRUE(TimerArmed());
    EXPECT_EQ(Module().MergedFileName, L"D:\\out\\P.dxf");
}

TEST_F(Batch, PartStemIsMatchedAsAPrefixOfTheFileStem) {
    WriteHandOff(L"D:\\out\\\r\nP.dxf\r\n");
    SaveExport(HandOff(L"P-1.dxf"));
    SaveExport(HandOff(L"PX-1.dxf"));
    SaveExport(HandOff(L"Q-1.dxf"));
    RunBatch();
    auto merged = ReadDrawing(L"D:\\out\\P.dxf");
    ASSERT_TRUE(merged);
    EXPECT_EQ(CountOnLayer(*merged, L"PART"), 2);
    EXPECT_FALSE(ExistsAt(HandOff(L"PX-1.dxf")));
    EXPECT_TRUE(ExistsAt(HandOff(L"Q-1.dxf")));
}

TEST_F(Batch, FilesOfAnotherExtensionAreLeftAlone) {
    WriteHandOff(L"D:\\out\\\r\nP-.dxf\r\n");
    SaveExport(HandOff(L"P-1.dxf"));
    WriteAt(HandOff(L"P-1.txt"), "note");
    RunBatch();
    EXPECT_TRUE(ExistsAt(L"D:\\out\\P.dxf"));
    EXPECT_TRUE(ExistsAt(HandOff(L"P-1.txt")));
}

TEST_F(Batch, BlanksOfTheTargetFolderAreRemoved) {
    WriteHandOff(L"D:\\my parts\\\r\nP-.dxf\r\n");
    SaveExport(HandOff(L"P-1.dxf"));
    RunBatch();
    EXPECT_TRUE(ExistsAt(L"D:\\myparts\\P.dxf"));
    EXPECT_FALSE(ExistsAt(L"D:\\my parts"));
}

TEST_F(Batch, TargetWithoutFinalBackslashGluesTheStemToTheFolderName) {
    WriteHandOff(L"D:\\out\r\nP-.dxf\r\n");
    SaveExport(HandOff(L"P-1.dxf"));
    RunBatch();
    EXPECT_TRUE(ExistsAt(L"D:\\outP.dxf"));
    EXPECT_EQ(Module().MergedFileName, L"D:\\outP.dxf");
}

TEST_F(Batch, UgmLogThirdLineIsIgnored) {
    WriteHandOff(L"D:\\out\\\r\nP-.dxf\r\nD:\\elsewhere\\\r\n");
    SaveExport(HandOff(L"P-1.dxf"));
    RunBatch();
    EXPECT_TRUE(ExistsAt(L"D:\\out\\P.dxf"));
}

TEST_F(Batch, OutLogListingEveryFileStopsBeforeTheMergeAndKeepsTheHandOff) {
    WriteHandOff(L"D:\\out\\\r\nP-.dxf\r\n");
    SaveExport(HandOff(L"P-1.dxf"));
    WriteText(kOutLogPath, HandOff(L"P-1.dxf") + L"\r\n");
    RunBatch();
    EXPECT_FALSE(ExistsAt(L"D:\\out\\P.dxf"));
    EXPECT_TRUE(ExistsAt(HandOff(L"P-1.dxf")));
    EXPECT_TRUE(ExistsAt(HandOff(L"ugm.log")));
    EXPECT_TRUE(ExistsAt(kOutLogPath));
    EXPECT_FALSE(TimerArmed());
}

TEST_F(Batch, FilesInTheOutLogInAnotherCaseAreNotProcessedButMerged) {
    WriteHandOff(L"D:\\out\\\r\nP-.dxf\r\n");
    SaveExport(HandOff(L"P-1.dxf"));
    SaveExport(HandOff(L"P-2.dxf"));
    std::wstring done = HandOff(L"p-1.DXF");
    WriteText(kOutLogPath, L"\r\n" + done + L"   \r\n");
    RunBatch();
    EXPECT_EQ(CgLog().find(L"开始处理 " + HandOff(L"P-1.dxf")), std::wstring::npos);
    EXPECT_NE(CgLog().find(L"开始处理 " + HandOff(L"P-2.dxf")), std::wstring::npos);
    auto merged = ReadDrawing(L"D:\\out\\P.dxf");
    ASSERT_TRUE(merged);
    EXPECT_EQ(CountOnLayer(*merged, L"PART"), 2);
    EXPECT_FALSE(ExistsAt(kOutLogPath));
}

TEST_F(Batch, CompletedBatchRemovesTheHandOffFilesAndArmsTheQuitTimer) {
    WriteHandOff(L"D:\\out\\\r\nP-.dxf\r\n");
    WriteText(HandOff(L"ugout.log"), L"done\r\n");
    SaveExport(HandOff(L"P-1.dxf"));
    RunBatch();
    EXPECT_FALSE(ExistsAt(HandOff(L"ugm.log")));
    EXPECT_FALSE(ExistsAt(HandOff(L"ugout.log")));
    EXPECT_FALSE(ExistsAt(kMsgTxtPath));
    ASSERT_EQ(Host().timers.size(), 1u);
    EXPECT_EQ(Host().timers[0].elapseMs, 2000u);
    EXPECT_EQ(Host().timers[0].window, nullptr);
}

TEST_F(Batch, WithoutCgLogTheBatchRunsAndLeavesNoTrace) {
    DeleteFileW(kCgLogPath);
    WriteHandOff(L"D:\\out\\\r\nP-.dxf\r\n");
    SaveExport(HandOff(L"P-1.dxf"));
    RunBatch();
    EXPECT_TRUE(ExistsAt(L"D:\\out\\P.dxf"));
    EXPECT_FALSE(ExistsAt(kCgLogPath));
}

TEST_F(Batch, SecondBatchAppendsToTheSameCgLog) {
    RunBatch();
    RunBatch();
    EXPECT_EQ(CgLog(), L"20191115\n20191115\n");
}

TEST_F(Batch, EveryDrawingOfThePartIsLoggedAsFinished) {
    WriteHandOff(L"D:\\out\\\r\nP-.dxf\r\n");
    SaveExport(HandOff(L"P-1.dxf"));
    RunBatch();
    std::wstring log = CgLog();
    std::wstring finished = L"\n文件 " + HandOff(L"P-1.dxf") + L"处理完成准备合并\n";
    EXPECT_NE(log.find(finished), std::wstring::npos) << std::string(log.begin(), log.end());
    EXPECT_NE(log.find(L"合并后的文件 D:\\out\\P.dxf ,正确合并\n"), std::wstring::npos);
}

TEST_F(Batch, MissingConfigurationRootRunsTheBatchWithEmptySettings) {
    SetRegistry(L"");
    BuildModuleState();
    WriteHandOff(L"D:\\out\\\r\nP-.dxf\r\n");
    SaveExport(HandOff(L"P-1.dxf"));
    RunBatch();
    EXPECT_EQ(Module().ConfigRoot, L"");
    EXPECT_TRUE(Module().cadStandardIni.missing);
    // No marker layer is named, so the drawing ends early, unsaved, and is merged as exported.
    auto merged = ReadDrawing(L"D:\\out\\P.dxf");
    ASSERT_TRUE(merged);
    EXPECT_EQ(CountOnLayer(*merged, L"BIGFRAM"), 4);
    EXPECT_EQ(Host().timers.size(), 1u);
}

TEST_F(Batch, UnreadableDrawingOfThePartIsLoggedFinishedAndLeftOutOfTheMerge) {
    WriteHandOff(L"D:\\out\\\r\nP-.dxf\r\n");
    SaveExport(HandOff(L"P-1.dxf"));
    WriteAt(HandOff(L"P-2.dxf"), "0\nSECTION\n2\nENTITIES\n");
    RunBatch();
    std::wstring log = CgLog();
    EXPECT_NE(log.find(L"\n文件 " + HandOff(L"P-2.dxf") + L"处理完成"), std::wstring::npos);
    size_t read = log.find(L"读入文件：" + HandOff(L"P-2.dxf") + L" \n");
    ASSERT_NE(read, std::wstring::npos);
    EXPECT_EQ(log.find(L"0读入成功\n", read), std::wstring::npos);  // a non-zero status, then the text
    EXPECT_NE(log.find(L"读入成功\n", read), std::wstring::npos);
    auto merged = ReadDrawing(L"D:\\out\\P.dxf");
    ASSERT_TRUE(merged);
    EXPECT_EQ(CountOnLayer(*merged, L"PART"), 1);
    EXPECT_TRUE(Host().timers.size() == 1);
    EXPECT_FALSE(ExistsAt(HandOff(L"P-2.dxf")));
}

}  // namespace
