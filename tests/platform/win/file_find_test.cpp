#include <gtest/gtest.h>

#include <vector>

#include "platform/win/file_find.hpp"
#include "prefix_fixture.hpp"

namespace {

class FileFind : public PrefixTest {
protected:
    struct Found {
        std::wstring name, path;
        bool dots, directory;
    };
    std::vector<Found> Search(const wchar_t* pattern) {
        std::vector<Found> found;
        CFileFind finder;
        BOOL more = finder.FindFile(pattern);
        while (more) {
            more = finder.FindNextFileW();
            found.push_back({finder.GetFileName(), finder.GetFilePath(), finder.IsDots() != FALSE,
                             finder.MatchesMask(FILE_ATTRIBUTE_DIRECTORY) != FALSE});
        }
        return found;
    }
};

TEST_F(FileFind, WildcardSearchListsMatchingNamesInNameOrderWithDots) {
    WriteBytes("drives/d/Convert/P-2.dwg", "");
    WriteBytes("drives/d/Convert/p-1.DWG", "");
    WriteBytes("drives/d/Convert/P-1.dxf", "");
    WriteBytes("drives/d/Convert/sub.dwg/x", "");
    auto found = Search(L"d:\\convert\\*.dwg");
    ASSERT_EQ(found.size(), 3u);
    EXPECT_EQ(found[0].name, L"p-1.DWG");
    EXPECT_EQ(found[0].path, L"d:\\convert\\p-1.DWG");
    EXPECT_EQ(found[1].name, L"P-2.dwg");
    EXPECT_FALSE(found[1].directory);
    EXPECT_EQ(found[2].name, L"sub.dwg");
    EXPECT_TRUE(found[2].directory);

    auto all = Search(L"D:\\Convert\\*.*");
    ASSERT_EQ(all.size(), 6u);
    EXPECT_TRUE(all[0].dots);
    EXPECT_TRUE(all[1].dots);
    EXPECT_EQ(all[1].name, L"..");
}

TEST_F(FileFind, DriveRootHasNoDotEntries) {
    WriteBytes("drives/d/a.txt", "");
    auto found = Search(L"D:\\*");
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].name, L"a.txt");
}

TEST_F(FileFind, PlainPathFindsTheFileUnderAnySpellingAndReportsItsOwnName) {
    WriteBytes("drives/d/MYTOOL/cad/Cg.log", "");
    auto found = Search(L"d:\\Mytool\\CAD\\cg.LOG");
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].name, L"Cg.log");
    EXPECT_EQ(found[0].path, L"d:\\Mytool\\CAD\\Cg.log");
}

TEST_F(FileFind, NothingFoundGivesFalse) {
    CFileFind finder;
    EXPECT_FALSE(finder.FindFile(L"D:\\nowhere\\*.dwg"));
    EXPECT_FALSE(finder.FindFile(L"D:\\missing.log"));
}

TEST_F(FileFind, LastHitIsReadableAfterFindNextReturnsFalse) {
    WriteBytes("drives/d/one.txt", "");
    CFileFind finder;
    ASSERT_TRUE(finder.FindFile(L"D:\\one.txt"));
    EXPECT_FALSE(finder.FindNextFileW());
    EXPECT_EQ(finder.GetFileName(), L"one.txt");
    EXPECT_EQ(finder.GetFileTitle(), L"one");
}

}  // namespace
