#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <fstream>

#include "editor_fixture.hpp"
#include "platform/ed/ads.hpp"
#include "platform/ed/lisp.hpp"
#include "platform/ed/status_bar.hpp"
#include "platform/ed/utilities.hpp"
#include "platform/win/prefix.hpp"

namespace {

int seenCode = -1;
int RegisteredFunction() {
    seenCode = acedGetFunCode();
    return RTNORM;
}

using Lisp = EditorTest;

TEST_F(Lisp, DefinedFunctionWithARegisteredBodyRunsWithItsCode) {
    EXPECT_EQ(acedGetFunCode(), RTERROR);
    EXPECT_EQ(acedDefun(L"wzoom", 0), RTNORM);
    EXPECT_EQ(acedDefun(L"zoomall", 1), RTNORM);
    EXPECT_EQ(acedRegFunc(RegisteredFunction, 1), RTNORM);
    seenCode = -1;
    EXPECT_EQ(InvokeLispFunction(L"ZOOMALL"), RTNORM);
    EXPECT_EQ(seenCode, 1);
    EXPECT_EQ(acedGetFunCode(), RTERROR);
}

TEST_F(Lisp, UndefinedNameIsAnErrorAndUndefTakesTheFunctionAway) {
    acedDefun(L"wzoom", 0);
    EXPECT_EQ(acedUndef(L"wzoom", 0), RTNORM);
    EXPECT_EQ(acedUndef(L"wzoom", 0), RTERROR);
    EXPECT_EQ(InvokeLispFunction(L"wzoom"), RTERROR);
}

using ProgressMeterTest = EditorTest;

TEST_F(ProgressMeterTest, MeterKeepsLabelRangeAndPositionUntilRestored) {
    EXPECT_EQ(acedSetStatusBarProgressMeterPos(1), -1);
    EXPECT_EQ(acedSetStatusBarProgressMeter(L"正在处理 P-1.dwg ,请稍等", 0, 4), 0);
    EXPECT_EQ(acedSetStatusBarProgressMeterPos(2), 0);
    const ProgressMeter& meter = CurrentProgressMeter();
    EXPECT_TRUE(meter.shown);
    EXPECT_EQ(meter.position, 2);
    EXPECT_EQ(RenderProgressMeter(meter, 10), L"正在处理 P-1.dwg ,请稍等 [#####.....]  50%");
    acedRestoreStatusBar();
    EXPECT_FALSE(CurrentProgressMeter().shown);
}

TEST_F(ProgressMeterTest, MeterIsDrawnOnStderrOnlyWhenItIsATerminal) {
    testing::internal::CaptureStderr();
    acedSetStatusBarProgressMeter(L"x", 0, 2);
    acedSetStatusBarProgressMeterPos(2);
    acedRestoreStatusBar();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    Editor().drawProgress = true;
    testing::internal::CaptureStderr();
    acedSetStatusBarProgressMeter(L"x", 0, 2);
    acedSetStatusBarProgressMeterPos(2);
    acedRestoreStatusBar();
    std::string drawn = testing::internal::GetCapturedStderr();
    EXPECT_NE(drawn.find("\rx [" + std::string(30, '#') + "] 100%"), std::string::npos);
    EXPECT_TRUE(drawn.ends_with("\n"));
}

using Console = EditorTest;

TEST_F(Console, PrintfTakesWideStringsForPercentSAsTheHostDoes) {
    testing::internal::CaptureStdout();
    acutPrintf(L"\n保存 %s 成功! %d %.1f %hs%%", L"D:\\out\\P.dwg", 3, 2.5, "n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\n保存 D:\\out\\P.dwg 成功! 3 2.5 n%");
}

TEST_F(Console, AlertGoesToStderrWithoutWaitingInABatch) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(acedAlert(L"合并失败"), RTNORM);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "合并失败\n");
}

class FindFile : public EditorTest {
protected:
    void SetUp() override {
        EditorTest::SetUp();
        // One folder per test: CTest runs the tests of this suite side by side.
        prefix_ = std::filesystem::temp_directory_path() /
                  (std::string("tavrik-ed-findfile-") +
                   ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::remove_all(prefix_);
        std::string error;
        ASSERT_TRUE(InitPrefix(prefix_, error) && OpenPrefix(prefix_, error)) << error;
        std::filesystem::create_directories(prefix_ / "drives/d/cfg/CAD");
        std::ofstream(prefix_ / "drives/d/cfg/CAD/CAD_layerug.ini") << "[x]\n";
    }
    void TearDown() override {
        std::filesystem::remove_all(prefix_);
        EditorTest::TearDown();
    }
    std::filesystem::path prefix_;
};

TEST_F(FindFile, AbsolutePathIsFoundUnderAnySpellingAndAMissingOneIsNot) {
    wchar_t found[260];
    EXPECT_EQ(acedFindFile(L"D:\\cfg\\cad\\cad_layerug.ini", found, 260), RTNORM);
    EXPECT_STREQ(found, L"D:\\cfg\\cad\\cad_layerug.ini");
    EXPECT_EQ(acedFindFile(L"D:\\cfg\\CAD\\none.ini", found, 260), RTERROR);
    EXPECT_EQ(acedFindFile(L"D:\\cfg\\CAD", found, 260), RTERROR);  // a folder is no file
}

TEST_F(FindFile, RelativeNameIsLookedForInTheCurrentDirectory) {
    Host().currentDirectory = L"D:\\cfg\\CAD";
    wchar_t found[260];
    EXPECT_EQ(acedFindFile(L"CAD_layerug.ini", found, 260), RTNORM);
    EXPECT_STREQ(found, L"D:\\cfg\\CAD\\CAD_layerug.ini");
}

}  // namespace
