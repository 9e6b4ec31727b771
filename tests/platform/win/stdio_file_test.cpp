#include <filesystem>

#include <gtest/gtest.h>

#include "platform/win/codepage.hpp"
#include "platform/win/stdio_file.hpp"
#include "prefix_fixture.hpp"

namespace {

// "文件处理完成" and "合并" in GBK.
const std::string kGbkLine1 = "\xCE\xC4\xBC\xFE\xB4\xA6\xC0\xED\xCD\xEA\xB3\xC9";
const std::string kGbkLine2 = "\xBA\xCF\xB2\xA2";

using StdioFile = PrefixTest;

TEST_F(StdioFile, GbkFileReadsAsChineseUnderCodePage936AndWritesBackByteIdentical) {
    std::string original = kGbkLine1 + "\r\n" + kGbkLine2 + "\r\n";
    auto source = WriteBytes("drives/d/in.txt", original);
    CStdioFile in;
    ASSERT_TRUE(in.Open(L"D:\\in.txt", CFile::modeRead | CFile::shareDenyNone));
    std::wstring first, second, none;
    ASSERT_TRUE(in.ReadString(first));
    ASSERT_TRUE(in.ReadString(second));
    EXPECT_FALSE(in.ReadString(none));
    in.Close();
    EXPECT_EQ(first, L"文件处理完成");
    EXPECT_EQ(second, L"合并");

    CStdioFile out;
    ASSERT_TRUE(out.Open(L"D:\\out.txt", CFile::modeCreate | CFile::modeWrite));
    out.WriteString((first + L"\n" + second + L"\n").c_str());
    out.Close();
    EXPECT_EQ(ReadBytes(prefix_ / "drives/d/out.txt"), original);
}

TEST_F(StdioFile, Utf8ByteOrderMarkIsHonouredUnderCodePage936) {
    WriteBytes("drives/d/bom.txt", "\xEF\xBB\xBF" "合并\nx");
    CStdioFile in;
    ASSERT_TRUE(in.Open(L"D:\\bom.txt", CFile::modeRead));
    std::wstring line;
    ASSERT_TRUE(in.ReadString(line));
    EXPECT_EQ(line, L"合并");
    ASSERT_TRUE(in.ReadString(line));
    EXPECT_EQ(line, L"x");
}

TEST_F(StdioFile, AppendingToAFileWithAByteOrderMarkOpenedForWritingOnlyWritesUtf8) {
    WriteBytes("drives/d/log.txt", "\xEF\xBB\xBF" "a");
    CStdioFile out;
    ASSERT_TRUE(out.Open(L"D:\\log.txt", CFile::modeCreate | CFile::modeNoTruncate | CFile::modeWrite));
    out.SeekToEnd();
    out.WriteString(L"合并");
    out.Close();
    EXPECT_EQ(ReadBytes(prefix_ / "drives/d/log.txt"), "\xEF\xBB\xBF" "a合并");
}

TEST_F(StdioFile, CodePage65001ReadsUtf8WithoutMark) {
    SetHostCodePage(65001);
    WriteBytes("drives/d/u.txt", "合并\n");
    CStdioFile in;
    ASSERT_TRUE(in.Open(L"D:\\u.txt", CFile::modeRead));
    std::wstring line;
    ASSERT_TRUE(in.ReadString(line));
    EXPECT_EQ(line, L"合并");
}

TEST_F(StdioFile, ReadStringDropsLfAndCrLfAndKeepsALastLineWithoutEnd) {
    WriteBytes("drives/d/l.txt", "a\r\nb\nc");
    CStdioFile in;
    ASSERT_TRUE(in.Open(L"D:\\l.txt", CFile::modeRead));
    std::wstring a, b, c, end;
    EXPECT_TRUE(in.ReadString(a));
    EXPECT_TRUE(in.ReadString(b));
    EXPECT_TRUE(in.ReadString(c));
    EXPECT_FALSE(in.ReadString(end));
    EXPECT_EQ(a + b + c, L"abc");
}

TEST_F(StdioFile, AppendFlagsWithSeekToEndAddToAnExistingLog) {
    auto log = WriteBytes("drives/d/MYTOOL/cad/Cg.log", "old\r\n");
    CStdioFile file;
    ASSERT_TRUE(file.Open(L"d:\\Mytool\\cad\\Cg.log", 0x3001));  // create, no truncate, write
    file.Seek(0, CFile::end);
    file.WriteString(L"20191115\n");
    file.Close();
    EXPECT_EQ(ReadBytes(log), "old\r\n20191115\r\n");
}

TEST_F(StdioFile, CreatingOpenOfACaseVariantWritesTheExistingFileAndMakesNoSecond) {
    auto log = WriteBytes("drives/d/MYTOOL/cad/Cg.log", "old");
    CStdioFile file;
    ASSERT_TRUE(file.Open(L"d:\\mytool\\CAD\\cg.log", CFile::modeCreate | CFile::modeWrite));
    file.WriteString(L"new");
    file.Close();
    EXPECT_EQ(ReadBytes(log), "new");
    EXPECT_FALSE(std::filesystem::exists(prefix_ / "drives/d/mytool"));
}

TEST_F(StdioFile, CreatingOpenOfAMissingFileMakesItAsSpelt) {
    WriteBytes("drives/d/MYTOOL/keep", "");
    CStdioFile file;
    ASSERT_TRUE(file.Open(L"D:\\mytool\\New.txt", CFile::modeCreate | CFile::modeWrite));
    file.WriteString(L"a");
    file.Close();
    EXPECT_EQ(ReadBytes(prefix_ / "drives/d/MYTOOL/New.txt"), "a");
}

TEST_F(StdioFile, CreateWithoutNoTruncateEmptiesTheFile) {
    auto file = WriteBytes("drives/d/t.txt", "content");
    CStdioFile out;
    ASSERT_TRUE(out.Open(L"D:\\t.txt", CFile::modeCreate | CFile::modeWrite));
    out.Close();
    EXPECT_EQ(ReadBytes(file), "");
}

TEST_F(StdioFile, OpenWithoutCreateFailsOnAMissingFile) {
    CStdioFile file;
    EXPECT_FALSE(file.Open(L"D:\\missing.txt", CFile::modeRead));
    EXPECT_FALSE(file.Open(L"D:\\missing.txt", CFile::modeWrite));
}

TEST_F(StdioFile, CharactersOutsideTheCodePageAreWrittenAsQuestionMarks) {
    CStdioFile out;
    ASSERT_TRUE(out.Open(L"D:\\q.txt", CFile::modeCreate | CFile::modeWrite));
    out.WriteString(L"a\u0E01b");  // a Thai letter is not in GBK
    out.Close();
    EXPECT_EQ(ReadBytes(prefix_ / "drives/d/q.txt"), "a?b");
}

TEST_F(StdioFile, BinaryModeKeepsLineEndsAsWritten) {
    CStdioFile out;
    ASSERT_TRUE(out.Open(L"D:\\b.txt", CFile::modeCreate | CFile::modeWrite | CFile::typeBinary));
    out.WriteString(L"a\nb");
    out.Close();
    EXPECT_EQ(ReadBytes(prefix_ / "drives/d/b.txt"), "a\nb");
}

}  // namespace
