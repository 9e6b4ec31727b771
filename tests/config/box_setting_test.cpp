#include "config/box_setting.hpp"

#include <gtest/gtest.h>

#include <string>

#include "module_fixture.hpp"

namespace {

constexpr const wchar_t* kPath = L"D:\\Tool\\config\\标准图框\\boxsetting.txt";

using Box = ModuleTest;

TEST_F(Box, RowsOfBothSectionsAreReadInFileOrder) {
    WriteText(kPath, L"[SHTWCH]\r\n*-A*, a3.dwg \r\n*,a4.dwg\r\n[ATTWCH]\r\n设计,张三\r\n");
    BoxSetting box(kPath);
    ASSERT_EQ(box.frameMatches.size(), 2u);
    EXPECT_EQ(box.frameMatches[0].pattern, L"*-A*");
    EXPECT_EQ(box.frameMatches[0].frameFile, L"A3.DWG");
    EXPECT_EQ(box.frameMatches[1].pattern, L"*");
    ASSERT_EQ(box.attributes.size(), 1u);
    EXPECT_EQ(box.attributes[0].tag, L"设计");
    EXPECT_EQ(box.attributes[0].value, L"张三");
    EXPECT_TRUE(box.attributes[0].source.isNull());
    EXPECT_EQ(box.missing, 0);
    EXPECT_EQ(box.path, kPath);
}

TEST_F(Box, ReadTwiceTheArraysHoldTheRowsOnce) {
    WriteText(kPath, L"[SHTWCH]\r\nP*,A3.DWG\r\n[ATTWCH]\r\nMAT,P20\r\n");
    BoxSetting box(kPath);
    box.Read();
    EXPECT_EQ(box.frameMatches.size(), 1u);
    EXPECT_EQ(box.attributes.size(), 1u);
}

TEST_F(Box, AReadDropsTheAttributesThatASheetAdded) {
    WriteText(kPath, L"[ATTWCH]\r\nMAT,P20\r\n");
    BoxSetting box(kPath);
    box.attributes.push_back({L"PART", L"P-1", AcDbObjectId::kNull});
    box.Read();
    ASSERT_EQ(box.attributes.size(), 1u);
    EXPECT_EQ(box.attributes[0].tag, L"MAT");
}

TEST_F(Box, ALineAheadOfTheFirstSectionGoesToShtwchOnTheFirstRead) {
    WriteText(kPath, L"P*,A3.DWG\r\n[ATTWCH]\r\nMAT,P20\r\n");
    BoxSetting box(kPath);
    ASSERT_EQ(box.frameMatches.size(), 1u);
    EXPECT_EQ(box.frameMatches[0].pattern, L"P*");
    EXPECT_EQ(box.attributes.size(), 1u);
}

TEST_F(Box, OnALaterReadItGoesToTheSectionTheFileEndedWith) {
    WriteText(kPath, L"P*,A3.DWG\r\n[ATTWCH]\r\nMAT,P20\r\n");
    BoxSetting box(kPath);
    box.Read();
    EXPECT_TRUE(box.frameMatches.empty());
    ASSERT_EQ(box.attributes.size(), 2u);
    EXPECT_EQ(box.attributes[0].tag, L"P*");
    EXPECT_EQ(box.section, 1);
}

TEST_F(Box, PatternsAreUpperCaseAfterTheRead) {
    WriteText(kPath, L"[shtwch]\r\nplate-?,frame_a3.dwg\r\n");
    BoxSetting box(kPath);
    ASSERT_EQ(box.frameMatches.size(), 1u);
    EXPECT_EQ(box.frameMatches[0].pattern, L"PLATE-?");
    EXPECT_EQ(box.frameMatches[0].frameFile, L"FRAME_A3.DWG");
}

TEST_F(Box, CommentsEmptyLinesAndLinesWithoutCommaAreSkipped) {
    WriteText(kPath, L"[SHTWCH]\r\n// P*,A2.DWG\r\n;Q*,A1.DWG\r\n\r\nR* A0.DWG\r\nS*,A4.DWG\r\n");
    BoxSetting box(kPath);
    ASSERT_EQ(box.frameMatches.size(), 1u);
    EXPECT_EQ(box.frameMatches[0].pattern, L"S*");
}

TEST_F(Box, AMissingFileLeavesBothArraysEmpty) {
    WriteText(kPath, L"[SHTWCH]\r\nP*,A3.DWG\r\n[ATTWCH]\r\nMAT,P20\r\n");
    BoxSetting box(kPath);
    std::filesystem::remove(ResolvePath(kPath));
    box.Read();
    EXPECT_EQ(box.missing, 1);
    EXPECT_TRUE(box.frameMatches.empty());
    EXPECT_TRUE(box.attributes.empty());
}

TEST_F(Box, AUtf8FileWithMarkIsRead) {
    WriteAt(kPath, "\xEF\xBB\xBF" + Encoded(L"[ATTWCH]\n材料,P20\n", 65001));
    BoxSetting box(kPath);
    ASSERT_EQ(box.attributes.size(), 1u);
    EXPECT_EQ(box.attributes[0].tag, L"材料");
}

}  // namespace
