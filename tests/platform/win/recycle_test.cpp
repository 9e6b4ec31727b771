#include <gtest/gtest.h>

#include <chrono>
#include <fstream>

#include "platform/win/codepage.hpp"
#include "platform/win/files.hpp"
#include "platform/win/paths.hpp"
#include "platform/win/recycle.hpp"
#include "platform/win/whole_file.hpp"
#include "prefix_fixture.hpp"

namespace {

namespace fs = std::filesystem;
using Recycle = PrefixTest;

TEST_F(Recycle, deleted_file_goes_to_the_recycle_folder_and_comes_back) {
    WriteBytes("drives/d/x/a.dxf", "sheet");
    ASSERT_TRUE(DeleteFileW(L"D:\\x\\a.dxf"));
    EXPECT_FALSE(fs::exists(prefix_ / "drives/d/x/a.dxf"));
    std::vector<RecycledFile> files = ListRecycle(prefix_);
    ASSERT_EQ(files.size(), 1u);
    EXPECT_EQ(files[0].original, "drives/d/x/a.dxf");
    std::string error;
    ASSERT_TRUE(RestoreRecycled(prefix_, files[0].item, error)) << error;
    EXPECT_EQ(ReadBytes(prefix_ / "drives/d/x/a.dxf"), "sheet");
}

TEST_F(Recycle, copy_over_a_file_keeps_the_old_one_and_leaves_no_temporary) {
    WriteBytes("drives/d/a.dxf", "old");
    WriteBytes("drives/d/b.dxf", "new");
    ASSERT_TRUE(CopyFileW(L"D:\\b.dxf", L"D:\\a.dxf", FALSE));
    EXPECT_EQ(ReadBytes(prefix_ / "drives/d/a.dxf"), "new");
    std::vector<RecycledFile> files = ListRecycle(prefix_);
    ASSERT_EQ(files.size(), 1u);
    EXPECT_EQ(ReadBytes(prefix_ / kRecycleFolderName / files[0].item), "old");
    size_t entries = 0;
    for (const auto& entry : fs::directory_iterator(prefix_ / "drives/d")) entries += entry.is_regular_file();
    EXPECT_EQ(entries, 2u);
}

TEST_F(Recycle, second_version_of_one_path_is_kept_beside_the_first) {
    WriteBytes("drives/d/a.dxf", "1");
    ASSERT_TRUE(DeleteFileW(L"D:\\a.dxf"));
    WriteBytes("drives/d/a.dxf", "2");
    ASSERT_TRUE(DeleteFileW(L"D:\\a.dxf"));
    std::vector<RecycledFile> files = ListRecycle(prefix_);
    ASSERT_EQ(files.size(), 2u);
    EXPECT_EQ(files[0].original, files[1].original);
}

TEST_F(Recycle, copy_onto_a_folder_fails_and_keeps_the_folder) {
    WriteBytes("drives/d/b.dxf", "new");
    fs::create_directories(prefix_ / "drives/d/a.dxf");
    EXPECT_FALSE(CopyFileW(L"D:\\b.dxf", L"D:\\a.dxf", FALSE));
    EXPECT_TRUE(fs::is_directory(prefix_ / "drives/d/a.dxf"));
}

TEST_F(Recycle, dot_dot_stops_at_the_drive_root) {
    EXPECT_EQ(ResolvePath(L"D:\\..\\..\\..\\etc\\x"), prefix_ / "drives/d/etc/x");
    EXPECT_EQ(ResolvePath(L"D:\\a\\..\\..\\b"), prefix_ / "drives/d/b");
    EXPECT_EQ(ResolvePath(L"..\\..\\..\\..\\z"), prefix_ / "drives/c/z");
}

TEST_F(Recycle, whole_file_read_refuses_a_folder_and_a_device_naming_the_file) {
    std::string bytes, error;
    EXPECT_FALSE(ReadWholeFile(prefix_ / "drives", bytes, error));
    EXPECT_NE(error.find("drives: is a folder"), std::string::npos) << error;
    EXPECT_FALSE(ReadWholeFile("/dev/zero", bytes, error, 1 << 20));
    EXPECT_NE(error.find("/dev/zero: is larger than"), std::string::npos) << error;
    EXPECT_TRUE(ReadWholeFile("/dev/null", bytes, error));
}

TEST_F(Recycle, host_ini_that_is_a_folder_fails_to_open_the_prefix) {
    fs::remove(prefix_ / kHostSettingsFileName);
    fs::create_directories(prefix_ / kHostSettingsFileName);
    std::string error;
    EXPECT_FALSE(OpenPrefix(prefix_, error));
    EXPECT_NE(error.find("host.ini: is a folder"), std::string::npos) << error;
}

TEST_F(Recycle, deleted_file_with_the_bytes_of_a_kept_one_shares_its_storage) {
    WriteBytes("drives/d/x/a.dxf", "converted");
    ASSERT_TRUE(DeleteFileW(L"D:\\x\\a.dxf"));
    WriteBytes("drives/d/temp/temp.dwg", "converted");
    ASSERT_TRUE(DeleteFileW(L"D:\\temp\\temp.dwg"));
    WriteBytes("drives/d/temp/other.dwg", "converted, then changed");
    ASSERT_TRUE(DeleteFileW(L"D:\\temp\\other.dwg"));
    EXPECT_FALSE(fs::exists(prefix_ / "drives/d/temp/temp.dwg"));
    std::vector<RecycledFile> files = ListRecycle(prefix_);
    ASSERT_EQ(files.size(), 3u);
    fs::path root = prefix_ / kRecycleFolderName;
    EXPECT_EQ(files[0].original, "drives/d/temp/other.dwg");
    EXPECT_EQ(fs::hard_link_count(root / files[0].item), 1u);
    EXPECT_EQ(files[1].original, "drives/d/temp/temp.dwg");
    EXPECT_TRUE(fs::equivalent(root / files[1].item, root / files[2].item));
    EXPECT_EQ(ReadBytes(root / files[1].item), "converted");
}

TEST_F(Recycle, overwritten_file_with_the_bytes_of_a_kept_one_shares_its_storage) {
    WriteBytes("drives/d/a.dxf", "same");
    ASSERT_TRUE(DeleteFileW(L"D:\\a.dxf"));
    WriteBytes("drives/d/b.dxf", "same");
    WriteBytes("drives/d/c.dxf", "new");
    ASSERT_TRUE(CopyFileW(L"D:\\c.dxf", L"D:\\b.dxf", FALSE));
    std::vector<RecycledFile> files = ListRecycle(prefix_);
    ASSERT_EQ(files.size(), 2u);
    fs::path root = prefix_ / kRecycleFolderName;
    EXPECT_TRUE(fs::equivalent(root / files[0].item, root / files[1].item));
    EXPECT_EQ(ReadBytes(prefix_ / "drives/d/b.dxf"), "new");
}

// A file with the bytes of one kept `between` files earlier: the last 32 kept files are looked
// at, so that a batch does not hold an entry for every file that it kept.
struct KeptDistance {
    int between;
    bool shared;
};

class RecycleWindow : public Recycle, public ::testing::WithParamInterface<KeptDistance> {};

TEST_P(RecycleWindow, equal_bytes_share_storage_with_the_last_32_kept_files_only) {
    WriteBytes("drives/d/first.dxf", "same");
    ASSERT_TRUE(DeleteFileW(L"D:\\first.dxf"));
    for (int i = 0; i < GetParam().between; ++i) {
        std::string name = "other" + std::to_string(i) + ".dxf";
        WriteBytes("drives/d/" + name, "bytes " + std::to_string(i));
        ASSERT_TRUE(DeleteFileW(WideFromUtf8("D:\\" + name).c_str()));
    }
    WriteBytes("drives/d/last.dxf", "same");
    ASSERT_TRUE(DeleteFileW(L"D:\\last.dxf"));
    fs::path root = prefix_ / kRecycleFolderName;
    fs::path first, last;
    for (const RecycledFile& file : ListRecycle(prefix_)) {
        if (file.original == "drives/d/first.dxf") first = root / file.item;
        if (file.original == "drives/d/last.dxf") last = root / file.item;
    }
    ASSERT_FALSE(first.empty() || last.empty());
    EXPECT_EQ(fs::equivalent(first, last), GetParam().shared);
    EXPECT_EQ(ReadBytes(last), "same");
}

INSTANTIATE_TEST_SUITE_P(Distances, RecycleWindow,
                         ::testing::Values(KeptDistance{0, true}, KeptDistance{31, true}, KeptDistance{32, false}));

// Entry folders of earlier runs, dated `days` days back.
void MakeEntry(const fs::path& prefix, const std::string& name, int days) {
    fs::path entry = prefix / kRecycleFolderName / name;
    fs::create_directories(entry / "drives/d");
    std::ofstream(entry / "drives/d/a.dxf") << name;
    fs::last_write_time(entry, fs::file_time_type::clock::now() - std::chrono::hours(24) * days);
}

struct Expiry {
    const char* setting;  // the [Host] line of host.ini, empty for none
    int days;             // the age of the entry
    bool kept;
};

class RecycleExpiry : public Recycle, public ::testing::WithParamInterface<Expiry> {};

TEST_P(RecycleExpiry, entries_older_than_recycle_days_go_when_a_prefix_opens) {
    const Expiry& expiry = GetParam();
    std::string settings = std::string("[Host]\r\nCodePage=936\r\n") + expiry.setting + "\r\n";
    WriteBytes(kHostSettingsFileName, settings);
    MakeEntry(prefix_, "20200101-000000-1", expiry.days);
    std::string error;
    ASSERT_TRUE(OpenPrefix(prefix_, error)) << error;
    EXPECT_EQ(ListRecycle(prefix_).size(), expiry.kept ? 1u : 0u);
}

INSTANTIATE_TEST_SUITE_P(Days, RecycleExpiry,
                         ::testing::Values(Expiry{"", 13, true}, Expiry{"", 15, false},  // 14 by default
                                           Expiry{"RecycleDays=3", 2, true}, Expiry{"RecycleDays=3", 4, false},
                                           Expiry{"RecycleDays=0", 1, false}, Expiry{"RecycleDays=30", 29, true}));

TEST_F(Recycle, recycle_days_that_is_not_a_number_fails_to_open_the_prefix) {
    WriteBytes(kHostSettingsFileName, "[Host]\r\nRecycleDays=two weeks\r\n");
    std::string error;
    EXPECT_FALSE(OpenPrefix(prefix_, error));
    EXPECT_NE(error.find("RecycleDays must be a number of days"), std::string::npos) << error;
}

TEST_F(Recycle, file_outside_the_prefix_needs_no_copy_before_it_is_overwritten) {
    fs::path outside = prefix_.string() + "-outside.txt";
    { std::ofstream(outside, std::ios::binary) << "not ours"; }
    std::string error;
    EXPECT_TRUE(RecycleCopy(outside, error)) << error;
    EXPECT_TRUE(ListRecycle(prefix_).empty());
    fs::remove(outside);
}

TEST_F(Recycle, copy_over_a_file_fails_when_the_old_one_cannot_be_kept) {
    WriteBytes("drives/d/a.dxf", "old");
    WriteBytes("drives/d/b.dxf", "new");
    fs::remove_all(prefix_ / kRecycleFolderName);
    WriteBytes(kRecycleFolderName, "a file where the recycle folder goes");
    EXPECT_FALSE(CopyFileW(L"D:\\b.dxf", L"D:\\a.dxf", FALSE));
    EXPECT_EQ(ReadBytes(prefix_ / "drives/d/a.dxf"), "old");
}

TEST_F(Recycle, restore_onto_a_folder_fails_and_keeps_the_folder) {
    WriteBytes("drives/d/a.dxf", "kept");
    ASSERT_TRUE(DeleteFileW(L"D:\\a.dxf"));
    fs::create_directories(prefix_ / "drives/d/a.dxf");
    std::vector<RecycledFile> files = ListRecycle(prefix_);
    ASSERT_EQ(files.size(), 1u);
    std::string error;
    EXPECT_FALSE(RestoreRecycled(prefix_, files[0].item, error));
    EXPECT_NE(error.find("a.dxf: cannot restore"), std::string::npos) << error;
    EXPECT_TRUE(fs::is_directory(prefix_ / "drives/d/a.dxf"));
}

TEST_F(Recycle, deleted_file_of_the_same_size_with_other_bytes_keeps_its_own) {
    WriteBytes("drives/d/a.dxf", "sheet one");
    ASSERT_TRUE(DeleteFileW(L"D:\\a.dxf"));
    WriteBytes("drives/d/b.dxf", "sheet two");
    ASSERT_TRUE(DeleteFileW(L"D:\\b.dxf"));
    std::vector<RecycledFile> files = ListRecycle(prefix_);
    ASSERT_EQ(files.size(), 2u);
    for (const RecycledFile& file : files)
        EXPECT_EQ(ReadBytes(prefix_ / kRecycleFolderName / file.item),
                  file.original == "drives/d/a.dxf" ? "sheet one" : "sheet two") << file.original;
}

TEST_F(Recycle, whole_file_read_replaces_what_the_string_held) {
    WriteBytes("drives/d/a.txt", "text");
    std::string bytes = "left over", error;
    ASSERT_TRUE(ReadWholeFile(prefix_ / "drives/d/a.txt", bytes, error)) << error;
    EXPECT_EQ(bytes, "text");
}

}  // namespace
