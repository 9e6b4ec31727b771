#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>

#include "platform/win/faults.hpp"
#include "platform/win/files.hpp"
#include "platform/win/library.hpp"
#include "prefix_fixture.hpp"

namespace {

using FileServices = PrefixTest;

TEST_F(FileServices, DeleteFileRemovesAFileButNotAFolder) {
    auto file = WriteBytes("drives/d/a/x.dwg", "1");
    EXPECT_TRUE(DeleteFileW(L"D:\\A\\X.DWG"));
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_FALSE(DeleteFileW(L"D:\\A\\X.DWG"));
    EXPECT_FALSE(DeleteFileW(L"D:\\a"));
}

TEST_F(FileServices, CopyFileOverwritesUnlessToldToFail) {
    WriteBytes("drives/d/src.dwg", "new");
    auto target = WriteBytes("drives/d/dst.dwg", "old");
    EXPECT_FALSE(CopyFileW(L"D:\\src.dwg", L"D:\\dst.dwg", TRUE));
    EXPECT_EQ(ReadBytes(target), "old");
    EXPECT_TRUE(CopyFileW(L"D:\\src.dwg", L"D:\\dst.dwg", FALSE));
    EXPECT_EQ(ReadBytes(target), "new");
    EXPECT_FALSE(CopyFileW(L"D:\\none.dwg", L"D:\\x.dwg", FALSE));
}

TEST_F(FileServices, CreateDirectoryNeedsTheParentAndFailsWhenPresent) {
    EXPECT_FALSE(CreateDirectoryW(L"D:\\a\\b", nullptr));
    EXPECT_TRUE(CreateDirectoryW(L"D:\\a", nullptr));
    EXPECT_FALSE(CreateDirectoryW(L"d:\\A", nullptr));
    EXPECT_TRUE(CreateDirectoryW(L"D:\\A\\b", nullptr));
    EXPECT_TRUE(std::filesystem::is_directory(prefix_ / "drives/d/a/b"));
}

TEST_F(FileServices, WmkdirReportsMinusOneWhenTheFolderExists) {
    EXPECT_EQ(_wmkdir(L"D:\\MYTOOL"), 0);
    EXPECT_EQ(_wmkdir(L"D:\\mytool"), -1);
    EXPECT_EQ(_wmkdir(L"D:\\MYTOOL\\application"), 0);
}

TEST_F(FileServices, ExistenceTestsTellFilesFromFolders) {
    WriteBytes("drives/d/dir/f.txt", "");
    EXPECT_TRUE(PathIsDirectoryW(L"D:\\DIR"));
    EXPECT_FALSE(PathIsDirectoryW(L"D:\\dir\\f.txt"));
    EXPECT_TRUE(PathFileExistsW(L"D:\\dir\\F.TXT"));
    EXPECT_TRUE(PathFileExistsW(L"D:\\dir"));
    EXPECT_FALSE(PathFileExistsW(L"D:\\dir\\g.txt"));
    EXPECT_EQ(GetFileAttributesW(L"D:\\dir") & FILE_ATTRIBUTE_DIRECTORY, FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(GetFileAttributesW(L"D:\\nothing"), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(GetFileAttributesW(L"D:\\dir\\f.txt"), FILE_ATTRIBUTE_NORMAL);  // written by its owner
}

TEST_F(FileServices, AccessTakesANarrowPathInTheHostCodePage) {
    WriteBytes("drives/d/配置/standard.csv", "");
    EXPECT_EQ(_access("D:\\\xC5\xE4\xD6\xC3\\standard.csv", 0), 0);  // "配置" in GBK
    EXPECT_EQ(_access("D:\\\xC5\xE4\xD6\xC3\\other.csv", 0), -1);
}

TEST_F(FileServices, LoadLibraryFailsOnAMissingFileAndFindsExportsOfALoadedOne) {
    EXPECT_EQ(LoadLibraryW(L"D:\\MYTOOL\\application\\dwgver.dll"), nullptr);
    HMODULE c = LoadLibraryW(L"/lib/x86_64-linux-gnu/libc.so.6");
    if (!c) GTEST_SKIP() << "libc not at the Debian path";
    EXPECT_NE(GetProcAddress(c, "strlen"), nullptr);
    EXPECT_EQ(GetProcAddress(c, "no_such_export"), nullptr);
    EXPECT_TRUE(FreeLibrary(c));
}

TEST_F(FileServices, CopyFileOntoAFullDriveFailsAndKeepsTheTarget) {
    WriteBytes("drives/d/a.dxf", "the export");
    WriteBytes("drives/d/b.dxf", "converted");
    ::setenv(kFullDriveVariable, "D", 1);
    errno = 0;
    BOOL copied = CopyFileW(L"D:\\b.dxf", L"D:\\a.dxf", FALSE);
    int reason = errno;
    ::unsetenv(kFullDriveVariable);
    EXPECT_FALSE(copied);
    EXPECT_EQ(reason, ENOSPC);
    EXPECT_EQ(ReadBytes(prefix_ / "drives/d/a.dxf"), "the export");
}

}  // namespace
