#include "pipeline/logs.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "module_fixture.hpp"
#include "platform/win/host_state.hpp"
#include "platform/win/paths.hpp"

namespace {

using Lines = std::vector<std::wstring>;

// Where the hand-off of a fresh prefix lies: its LOCALAPPDATA, then "\Convert\".
constexpr const wchar_t* kUgmLog = L"C:\\Users\\tavrik\\AppData\\Local\\Convert\\ugm.log";

class Logs : public ModuleTest {};

TEST_F(Logs, WithoutCgLogAMessageLeavesNoTrace) {
    AppendLogText(L"20191115\n", kCgLogPath);
    AppendLogInt(7, kCgLogPath);
    AppendLogDouble(1.5, kCgLogPath);
    EXPECT_FALSE(ExistsAt(kCgLogPath));
}

TEST_F(Logs, TextIsAppendedAsGivenWithLineBreaksOnlyWhereItSaysSo) {
    WriteAt(kCgLogPath, "");
    AppendLogText(L"20191115\n", kCgLogPath);
    AppendLogText(L"abc", kCgLogPath);
    AppendLogText(L"def\n", kCgLogPath);
    EXPECT_EQ(ReadAt(kCgLogPath), "20191115\r\nabcdef\r\n");
}

TEST_F(Logs, ASecondBatchAppendsToTheSameLog) {
    WriteAt(kCgLogPath, "first run\r\n");
    AppendLogText(L"second run\n", kCgLogPath);
    EXPECT_EQ(ReadAt(kCgLogPath), "first run\r\nsecond run\r\n");
}

TEST_F(Logs, StringObjectFormActsAlike) {
    WriteAt(kMsgTxtPath, "");
    AppendLogText(std::wstring(L"取所有圆"), kMsgTxtPath);
    AppendLogText(L"设置图层", kMsgTxtPath);
    EXPECT_EQ(ReadAt(kMsgTxtPath), Encoded(L"取所有圆设置图层"));
}

TEST_F(Logs, ChineseMessagesAreWrittenInTheHostCodePage) {
    WriteAt(kCgLogPath, "");
    AppendLogText(L"准备合并\n", kCgLogPath);
    EXPECT_EQ(ReadAt(kCgLogPath), Encoded(L"准备合并") + "\r\n");
}

TEST_F(Logs, IntegersAreDecimalAndDoublesHaveSixDecimals) {
    WriteAt(kCgLogPath, "");
    AppendLogInt(-42, kCgLogPath);
    AppendLogText(L" ", kCgLogPath);
    AppendLogDouble(2.5, kCgLogPath);
    EXPECT_EQ(ReadAt(kCgLogPath), "-42 2.500000");
}

TEST_F(Logs, FixedLogPathsMeetInOneFolderWhateverTheirCase) {
    WriteAt(L"D:\\Mytool\\cad\\Log.log", "");
    AppendLogText(L"x", kLogLogPath);
    EXPECT_EQ(ReadBytes(prefix_ / "drives/d/Mytool/cad/Log.log"), "x");
}

TEST_F(Logs, HandOffFolderIsLocalAppDataAndConvert) {
    EXPECT_EQ(HandOffFolderA(), "C:\\Users\\tavrik\\AppData\\Local\\Convert\\");
    EXPECT_EQ(HandOffFolder(), L"C:\\Users\\tavrik\\AppData\\Local\\Convert\\");
    EXPECT_EQ(HandOffFileA(kUgmLogName), "C:\\Users\\tavrik\\AppData\\Local\\Convert\\\\ugm.log");
}

TEST_F(Logs, WithoutUgmLogReadHandOffGivesZeroAndLeavesTheStrings) {
    std::wstring first = L"old 1", second = L"old 2";
    EXPECT_EQ(ReadHandOff(first, second), 0);
    EXPECT_EQ(first, L"old 1");
    EXPECT_EQ(second, L"old 2");
}

TEST_F(Logs, UgmLogGivesItsFirstTwoLinesAndIgnoresAThird) {
    WriteAt(kUgmLog, "D:\\out\\\r\nP-.dwg\r\nthird line\r\n");
    std::wstring first, second;
    EXPECT_EQ(ReadHandOff(first, second), 1);
    EXPECT_EQ(first, L"D:\\out\\");
    EXPECT_EQ(second, L"P-.dwg");
}

TEST_F(Logs, UgmLogWithOneLineLeavesTheSecondEmpty) {
    WriteAt(kUgmLog, "D:\\out\\\r\n");
    std::wstring first, second = L"old";
    EXPECT_EQ(ReadHandOff(first, second), 1);
    EXPECT_EQ(first, L"D:\\out\\");
    EXPECT_EQ(second, L"");
}

TEST_F(Logs, ChinesePathsInUgmLogAreDecodedFromTheHostCodePage) {
    WriteAt(kUgmLog, Encoded(L"D:\\模具\\出图\\\r\n板-.dwg"));
    std::wstring first, second;
    ASSERT_EQ(ReadHandOff(first, second), 1);
    EXPECT_EQ(first, L"D:\\模具\\出图\\");
    EXPECT_EQ(second, L"板-.dwg");
}

TEST_F(Logs, UgmLogInUtf8WithMarkIsDecodedAsUtf8) {
    WriteAt(kUgmLog, "\xEF\xBB\xBF" + Encoded(L"D:\\模具\\\nP-.dwg\n", 65001));
    std::wstring first, second;
    ASSERT_EQ(ReadHandOff(first, second), 1);
    EXPECT_EQ(first, L"D:\\模具\\");
    EXPECT_EQ(second, L"P-.dwg");
}

TEST_F(Logs, MissingOutLogGivesZeroAndNoLines) {
    Lines lines;
    EXPECT_EQ(ReadLines(lines, kOutLogPath), 0);
    EXPECT_TRUE(lines.empty());
}

TEST_F(Logs, BlankLinesOfTheOutLogAreDroppedAndPathsTrimmed) {
    WriteAt(kOutLogPath, "  C:\\a\\P-1.dwg  \r\n\r\n   \r\n\tC:\\a\\P-2.dwg\r\n");
    Lines lines{L"kept"};
    EXPECT_EQ(ReadLines(lines, kOutLogPath), 1);
    EXPECT_EQ(lines, (Lines{L"kept", L"C:\\a\\P-1.dwg", L"C:\\a\\P-2.dwg"}));
}

TEST_F(Logs, SplittingADoubleDelimiterKeepsTheEmptyToken) {
    Lines tokens;
    SplitString(L"a,,b", L",", tokens);
    EXPECT_EQ(tokens, (Lines{L"A", L"", L"B"}));
}

TEST_F(Logs, ATrailingDelimiterYieldsNoEmptyToken) {
    Lines tokens;
    SplitString(L"a,", L",", tokens);
    EXPECT_EQ(tokens, (Lines{L"A"}));
}

TEST_F(Logs, ALeadingDelimiterYieldsAnEmptyFirstToken) {
    Lines tokens;
    SplitString(L",b", L",", tokens);
    EXPECT_EQ(tokens, (Lines{L"", L"B"}));
}

TEST_F(Logs, SplittingAnEmptyTextGivesNoTokensAndTokensAreAppended) {
    Lines tokens{L"old"};
    SplitString(L"", L",", tokens);
    EXPECT_EQ(tokens, (Lines{L"old"}));
    SplitString(L"x^y", L"^", tokens);
    EXPECT_EQ(tokens, (Lines{L"old", L"X", L"Y"}));
}

TEST_F(Logs, FileTitleKeepsTheNameUpToItsFirstPoint) {
    EXPECT_EQ(FileTitle(L"C:\\x\\plate.a.dwg"), L"plate");
    EXPECT_EQ(FileTitle(L"P-.dwg"), L"P-");
    EXPECT_EQ(FileTitle(L"C:\\x.y\\plate"), L"");
    EXPECT_EQ(FileTitle(L""), L"");
}

TEST_F(Logs, FileExistsFindsFilesAndFoldersAndTakesWildCards) {
    WriteAt(L"D:\\in\\P-1.dwg", "x");
    EXPECT_TRUE(FileExists(L"D:\\in\\P-1.dwg"));
    EXPECT_TRUE(FileExists(L"d:\\IN\\p-1.DWG"));
    EXPECT_TRUE(FileExists(L"D:\\in"));
    EXPECT_TRUE(FileExists(L"D:\\in\\*.dwg"));
    EXPECT_FALSE(FileExists(L"D:\\in\\*.dxf"));
    EXPECT_FALSE(FileExists(L"D:\\in\\P-2.dwg"));
}

TEST_F(Logs, LogDeletedBetweenTwoTextsTakesNoMoreAndIsNotMadeAgain) {
    WriteAt(kCgLogPath, "");
    AppendLogText(L"a", kCgLogPath);
    std::filesystem::remove(ResolvePath(kCgLogPath));
    AppendLogText(L"b", kCgLogPath);
    EXPECT_FALSE(ExistsAt(kCgLogPath));
}

TEST_F(Logs, LogReplacedBetweenTwoTextsTakesTheSecondInTheNewFile) {
    WriteAt(kCgLogPath, "");
    AppendLogText(L"a", kCgLogPath);
    std::filesystem::path file = ResolvePath(kCgLogPath);
    std::filesystem::path old = file.parent_path() / "old.log";
    std::filesystem::rename(file, old);
    WriteAt(kCgLogPath, "new\r\n");
    AppendLogText(L"b", kCgLogPath);
    EXPECT_EQ(ReadAt(kCgLogPath), "new\r\nb");
    EXPECT_EQ(ReadBytes(old), "a");
}

TEST_F(Logs, LogEmptiedByAnotherWriterTakesTheNextTextAtItsStart) {
    WriteAt(kCgLogPath, "");
    AppendLogText(L"abc", kCgLogPath);
    WriteAt(kCgLogPath, "");
    AppendLogText(L"d", kCgLogPath);
    EXPECT_EQ(ReadAt(kCgLogPath), "d");
}

TEST_F(Logs, LogRewrittenWithAUtf8MarkBetweenTwoTextsTakesTheSecondAsUtf8) {
    WriteAt(kCgLogPath, "");
    AppendLogText(L"换孔", kCgLogPath);
    EXPECT_EQ(ReadAt(kCgLogPath), Encoded(L"换孔"));
    WriteAt(kCgLogPath, "\xEF\xBB\xBF");
    AppendLogText(L"换孔", kCgLogPath);
    EXPECT_EQ(ReadAt(kCgLogPath), "\xEF\xBB\xBF" + Encoded(L"换孔", 65001));
}

TEST_F(Logs, LogOfAnotherPrefixTakesTheTextsWrittenUnderIt) {
    WriteAt(kCgLogPath, "");
    AppendLogText(L"a", kCgLogPath);
    std::filesystem::path first = Host().prefix;
    std::filesystem::path second = first.string() + "-second";
    std::filesystem::remove_all(second);
    std::filesystem::create_directories(second);
    Host().prefix = second;
    WriteAt(kCgLogPath, "");
    AppendLogText(L"b", kCgLogPath);
    EXPECT_EQ(ReadAt(kCgLogPath), "b");
    Host().prefix = first;
    AppendLogText(L"c", kCgLogPath);
    EXPECT_EQ(ReadAt(kCgLogPath), "ac");
    std::filesystem::remove_all(second);
}

TEST_F(Logs, TwoLogsWrittenInTurnsKeepTheirTextsWhenOneIsReplaced) {
    WriteAt(kCgLogPath, "");
    WriteAt(kMsgTxtPath, "");
    AppendLogText(L"a", kCgLogPath);
    AppendLogText(L"b", kMsgTxtPath);
    std::filesystem::remove(ResolvePath(kMsgTxtPath));
    WriteAt(kMsgTxtPath, "new");
    AppendLogText(L"c", kMsgTxtPath);
    AppendLogText(L"d", kCgLogPath);
    EXPECT_EQ(ReadAt(kCgLogPath), "ad");
    EXPECT_EQ(ReadAt(kMsgTxtPath), "newc");
}

}  // namespace
