#include <gtest/gtest.h>

#include "platform/win/paths.hpp"
#include "prefix_fixture.hpp"

namespace {

using PathResolution = PrefixTest;

TEST_F(PathResolution, DriveLetterMapsToTheDriveFolderOfThePrefix) {
    EXPECT_EQ(ResolvePath(L"D:\\a.txt"), prefix_ / "drives" / "d" / "a.txt");
    EXPECT_EQ(ResolvePath(L"c:\\x"), prefix_ / "drives" / "c" / "x");
}

TEST_F(PathResolution, DifferentSpellingsOfOneFileResolveToTheSameFile) {
    auto file = WriteBytes("drives/d/MYTOOL/cad/Cg.log", "x");
    EXPECT_EQ(ResolvePath(L"D:\\MYTOOL\\cad\\Cg.log"), file);
    EXPECT_EQ(ResolvePath(L"d:\\Mytool\\CAD\\cg.LOG"), file);
    EXPECT_EQ(ResolvePath(L"d:/mytool/cad/CG.log"), file);
}

TEST_F(PathResolution, ExactSpellingWinsOverACaseVariant) {
    WriteBytes("drives/d/Data/a", "1");
    auto exact = WriteBytes("drives/d/DATA/a", "2");
    EXPECT_EQ(ResolvePath(L"D:\\DATA\\a"), exact);
}

TEST_F(PathResolution, SpelledPathIsTheResolvedPathOfAnExactSpellingAndEmptyWhereDotsFold) {
    auto file = WriteBytes("drives/d/MYTOOL/cad/Cg.log", "x");
    EXPECT_EQ(SpelledPath(L"D:\\MYTOOL\\cad\\Cg.log"), file);
    EXPECT_EQ(SpelledPath(L"D:\\MYTOOL\\cad\\Cg.log"), ResolvePath(L"D:\\MYTOOL\\cad\\Cg.log"));
    EXPECT_EQ(SpelledPath(L"d:\\mytool\\cad\\cg.log"), prefix_ / "drives/d/mytool/cad/cg.log");
    EXPECT_TRUE(SpelledPath(L"D:\\MYTOOL\\..\\MYTOOL\\cad\\Cg.log").empty());
    EXPECT_TRUE(SpelledPath(L"D:\\MYTOOL\\.\\cad\\Cg.log").empty());
}

TEST_F(PathResolution, MissingComponentsKeepTheirSpellingAfterTheExistingOnes) {
    WriteBytes("drives/d/MYTOOL/keep", "");
    EXPECT_EQ(ResolvePath(L"d:\\mytool\\New\\File.TXT"), prefix_ / "drives/d/MYTOOL/New/File.TXT");
}

TEST_F(PathResolution, RepeatedSeparatorsAndDotsFoldAsOnWindows) {
    EXPECT_EQ(ResolvePath(L"D:\\a\\\\b\\.\\..\\c"), prefix_ / "drives/d/a/c");
}

TEST_F(PathResolution, PosixAbsolutePathPassesThrough) {
    EXPECT_EQ(ResolvePath(L"/tmp"), std::filesystem::path("/tmp"));
}

TEST_F(PathResolution, PathsWithoutDriveHangFromTheCurrentDirectory) {
    EXPECT_EQ(ResolvePath(L"\\config\\a.ini"), prefix_ / "drives/c/config/a.ini");
    EXPECT_EQ(ResolvePath(L"rel.txt"), prefix_ / "drives/c/rel.txt");
}

TEST_F(PathResolution, ChinesePathsResolveToUtf8Names) {
    auto file = WriteBytes("drives/d/图纸/a.dxf", "");
    EXPECT_EQ(ResolvePath(L"D:\\图纸\\A.DXF"), file);
}

struct SpecCase {
    const wchar_t* pattern;
    const wchar_t* name;
    bool matches;
};

class FileSpecMatching : public ::testing::TestWithParam<SpecCase> {};

TEST_P(FileSpecMatching, MatchesAsAWindowsFileSearch) {
    const SpecCase& c = GetParam();
    EXPECT_EQ(MatchFileSpec(c.pattern, c.name), c.matches);
}

INSTANTIATE_TEST_SUITE_P(Cases, FileSpecMatching,
                         ::testing::Values(SpecCase{L"*.dwg", L"P-1.dwg", true},
                                           SpecCase{L"*.dwg", L"P-1.DWG", true},
                                           SpecCase{L"*.dwg", L"P-1.dxf", false},
                                           SpecCase{L"*.*", L"noext", true},
                                           SpecCase{L"*", L"a.b.c", true},
                                           SpecCase{L"P?.txt", L"P1.txt", true},
                                           SpecCase{L"P?.txt", L"P12.txt", false},
                                           SpecCase{L"*.", L"noext", true},
                                           SpecCase{L"*.", L"has.ext", false},
                                           SpecCase{L"a*b*c", L"aXXbYYc", true},
                                           SpecCase{L"Cg.log", L"CG.LOG", true}));

}  // namespace
