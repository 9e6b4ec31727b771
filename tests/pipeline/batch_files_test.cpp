#include "pipeline/batch_files.hpp"

#include <gtest/gtest.h>

#include <clocale>
#include <string>
#include <vector>

#include "module_fixture.hpp"
#include "pipeline/logs.hpp"
#include "platform/win/crt.hpp"
#include "platform/win/files.hpp"

namespace {

using Lines = std::vector<std::wstring>;

class BatchFiles : public ModuleTest {
protected:
    // P-1.dwg, P-2.DWG, notes.dxf, a folder "old.dwg" and a.b.dwg in D:\in.
    void MakeFolder() {
        for (const wchar_t* name : {L"P-2.DWG", L"P-1.dwg", L"notes.dxf", L"a.b.dwg"})
            WriteAt(std::wstring(L"D:\\in\\") + name, "x");
        std::filesystem::create_directories(ResolvePath(L"D:\\in\\old.dwg"));
    }
};

TEST_F(BatchFiles, FileExtensionIsTheTextAfterTheLastPoint) {
    EXPECT_EQ(FileExtension(L"C:\\x\\plate.a.dwg"), L"dwg");
    EXPECT_EQ(FileExtension(L"P-.dwg"), L"dwg");
    EXPECT_EQ(FileExtension(L"plate."), L"");
}

TEST_F(BatchFiles, FileExtensionOfANameWithoutPointIsTheWholeName) {
    EXPECT_EQ(FileExtension(L"P-dwg"), L"P-dwg");
    EXPECT_EQ(FileExtension(L""), L"");
}

TEST_F(BatchFiles, FileExtensionRunsOnPastBackslashes) {
    // The recursion knows no folders: a point in a folder name with none in the file name
    // gives the rest of the path.
    EXPECT_EQ(FileExtension(L"C:\\a.b\\plate"), L"b\\plate");
}

TEST_F(BatchFiles, FileFolderKeepsTheLastBackslash) {
    EXPECT_EQ(FileFolder(L"D:\\out\\P-1.dwg"), L"D:\\out\\");
    EXPECT_EQ(FileFolder(L"D:\\out\\"), L"D:\\out\\");
    EXPECT_EQ(FileFolder(L"P-1.dwg"), L"");
}

TEST_F(BatchFiles, ListFilesByExtensionGivesFullPathsOfFilesInSearchOrder) {
    MakeFolder();
    Lines files{L"kept"};
    ListFilesByExtension(files, L"D:\\in\\", L"dwg");
    EXPECT_EQ(files, (Lines{L"kept", L"D:\\in\\a.b.dwg", L"D:\\in\\P-1.dwg", L"D:\\in\\P-2.DWG"}));
}

TEST_F(BatchFiles, ListFilesByExtensionTrimsAllFinalBackslashes) {
    MakeFolder();
    Lines files;
    ListFilesByExtension(files, L"D:\\in\\\\\\", L"dxf");
    EXPECT_EQ(files, (Lines{L"D:\\in\\notes.dxf"}));
}

TEST_F(BatchFiles, AFolderEndingInTheExtensionIsTakenAsTheSearchPattern) {
    MakeFolder();
    Lines files;
    ListFilesByExtension(files, L"D:\\in\\P-*.dwg", L"dwg");
    EXPECT_EQ(files, (Lines{L"D:\\in\\P-1.dwg", L"D:\\in\\P-2.DWG"}));
}

TEST_F(BatchFiles, AFolderWhoseNameEndsInTheExtensionFindsNothing) {
    WriteAt(L"D:\\olddwg\\P-1.dwg", "x");
    Lines files;
    ListFilesByExtension(files, L"D:\\olddwg", L"dwg");
    EXPECT_TRUE(files.empty());
}

TEST_F(BatchFiles, ASecondHandOffLineWithoutPointFindsNothing) {
    MakeFolder();
    WriteAt(L"D:\\in\\P-dwg", "x");
    std::wstring line = L"P-dwg";
    EXPECT_EQ(FileTitle(line), L"");
    Lines files;
    ListFilesByExtension(files, L"D:\\in", FileExtension(line));
    EXPECT_TRUE(files.empty());
}

TEST_F(BatchFiles, AnEmptySecondHandOffLineFindsNothing) {
    MakeFolder();
    EXPECT_EQ(FileTitle(L""), L"");
    Lines files;
    ListFilesByExtension(files, L"D:\\in", FileExtension(L""));
    EXPECT_TRUE(files.empty());
}

TEST_F(BatchFiles, AMissingFolderFindsNothing) {
    Lines files;
    ListFilesByExtension(files, L"D:\\nowhere", L"dwg");
    EXPECT_TRUE(files.empty());
}

TEST_F(BatchFiles, ChineseFileNamesAreListed) {
    WriteAt(L"D:\\in\\模板-1.dwg", "x");
    Lines files;
    ListFilesByExtension(files, L"D:\\in", L"dwg");
    EXPECT_EQ(files, (Lines{L"D:\\in\\模板-1.dwg"}));
}

TEST_F(BatchFiles, ContainsNoCaseIgnoresLetterCase) {
    Lines done{L"C:\\A\\P-1.DWG", L"C:\\a\\p-3.dwg"};
    EXPECT_EQ(ContainsNoCase(L"c:\\a\\p-1.dwg", done, -1), 1);
    EXPECT_EQ(ContainsNoCase(L"C:\\a\\P-2.dwg", done, -1), 0);
    EXPECT_EQ(ContainsNoCase(L"C:\\a\\P-3.dwg", done, 0), 1);
    EXPECT_EQ(ContainsNoCase(L"C:\\a\\P-1.dwg ", done, -1), 0);
}

TEST_F(BatchFiles, WideFromNarrowDecodesTheHostCodePage) {
    EXPECT_EQ(WideFromNarrow(Encoded(L"C:\\用户\\转换\\")), L"C:\\用户\\转换\\");
    EXPECT_EQ(WideFromNarrow(""), L"");
}

TEST_F(BatchFiles, WideFromNarrowUnderUtf8HostDecodesUtf8) {
    Host().codePage = 65001;
    EXPECT_EQ(WideFromNarrow(Encoded(L"标准图框", 65001)), L"标准图框");
}

TEST_F(BatchFiles, WideFromNarrowLeavesTheProcessInTheUserLocale) {
    ASSERT_STREQ(crt::setlocale(LC_ALL, nullptr), "C");
    WideFromNarrow("x");
    EXPECT_STRNE(crt::setlocale(LC_ALL, nullptr), "C");
    EXPECT_TRUE(Host().crtUserLocale);
}

TEST_F(BatchFiles, MakeDirectoriesMakesEveryMissingFolderOfThePath) {
    WriteAt(L"D:\\out\\keep.txt", "x");
    EXPECT_TRUE(MakeDirectories(L"D:\\out\\模具\\P"));
    EXPECT_TRUE(PathIsDirectoryW(L"D:\\out\\模具\\P"));
    EXPECT_TRUE(ExistsAt(L"D:\\out\\keep.txt"));
}

TEST_F(BatchFiles, MakeDirectoriesTakesAFinalBackslash) {
    EXPECT_TRUE(MakeDirectories(L"D:\\a\\b\\"));
    EXPECT_TRUE(PathIsDirectoryW(L"D:\\a\\b"));
}

TEST_F(BatchFiles, MakeDirectoriesReportsAPathThatCannotBeMade) {
    WriteAt(L"D:\\file", "x");
    EXPECT_FALSE(MakeDirectories(L"D:\\file\\sub"));
}

}  // namespace
