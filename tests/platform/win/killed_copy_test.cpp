// A copy killed before its temporary is renamed into place: the target keeps what it held, and
// the next copy onto the same target removes the temporary that the killed one left.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "platform/win/faults.hpp"
#include "platform/win/files.hpp"
#include "platform/win/temporaries.hpp"
#include "prefix_fixture.hpp"

namespace {

namespace fs = std::filesystem;
using KilledCopy = PrefixTest;

// Copies D:\b.dxf onto D:\a.dxf in a child killed at its `point`th file change; the child's id.
pid_t CopyKilledAt(const char* point) {
    pid_t child = ::fork();
    if (child == 0) {
        ::setenv(kKillAtVariable, point, 1);
        CopyFileW(L"D:\\b.dxf", L"D:\\a.dxf", FALSE);
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << status;
    return child;
}

TEST_F(KilledCopy, copy_killed_before_its_rename_leaves_the_target_as_it_was) {
    WriteBytes("drives/d/a.dxf", "the export as handed off");
    WriteBytes("drives/d/b.dxf", "converted");
    pid_t child = CopyKilledAt("2");  // 1: before the copy, 2: written, not yet renamed
    EXPECT_EQ(ReadBytes(prefix_ / "drives/d/a.dxf"), "the export as handed off");
    EXPECT_EQ(ReadBytes(TemporaryName((prefix_ / "drives/d/a.dxf").string(), child)), "converted");
}

TEST_F(KilledCopy, next_copy_onto_the_target_removes_the_killed_ones_temporary) {
    WriteBytes("drives/d/a.dxf", "the export as handed off");
    WriteBytes("drives/d/b.dxf", "converted");
    pid_t child = CopyKilledAt("2");
    fs::path left = TemporaryName((prefix_ / "drives/d/a.dxf").string(), child);
    ASSERT_TRUE(fs::exists(left));
    ASSERT_TRUE(CopyFileW(L"D:\\b.dxf", L"D:\\a.dxf", FALSE));
    EXPECT_FALSE(fs::exists(left));
    EXPECT_EQ(ReadBytes(prefix_ / "drives/d/a.dxf"), "converted");
}

TEST_F(KilledCopy, temporary_name_without_a_process_id_is_left_alone) {
    WriteBytes("drives/d/a.dxf", "the export as handed off");
    WriteBytes("drives/d/b.dxf", "converted");
    WriteBytes("drives/d/a.dxf.tmp", "somebody else's");
    ASSERT_TRUE(CopyFileW(L"D:\\b.dxf", L"D:\\a.dxf", FALSE));
    EXPECT_EQ(ReadBytes(prefix_ / "drives/d/a.dxf.tmp"), "somebody else's");
}

}  // namespace
