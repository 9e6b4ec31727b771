#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/db/database.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"
#include "platform/win/faults.hpp"
#include "platform/win/temporaries.hpp"

namespace {

namespace fs = std::filesystem;

TEST(WriteFailure, save_into_a_missing_folder_names_the_reason_of_the_system) {
    fs::path target = fs::temp_directory_path() / ("tavrik-no-folder-" + std::to_string(::getpid())) / "x.dxf";
    AcDbDatabase db(true, false);
    EXPECT_NE(dxf::WriteDxfFile(db, target.string(), {}), Acad::eOk);
    std::string error = dxf::Utf8(db.lastError());
    EXPECT_NE(error.find("DXF008 cannot create"), std::string::npos) << error;
    EXPECT_NE(error.find(std::string(": ") + std::strerror(ENOENT)), std::string::npos) << error;
}

TEST(WriteFailure, save_onto_a_full_device_names_the_reason_of_the_system) {
    if (!fs::exists("/dev/full")) GTEST_SKIP() << "no /dev/full";
    fs::path folder = fs::temp_directory_path() / ("tavrik-full-" + std::to_string(::getpid()));
    fs::create_directories(folder);
    // The temporary of the save is a link to the device that is always full.
    fs::path target = folder / "x.dxf";
    fs::create_symlink("/dev/full", target.string() + ".tmp" + std::to_string(::getpid()));
    AcDbDatabase db(true, false);
    EXPECT_NE(dxf::WriteDxfFile(db, target.string(), {}), Acad::eOk);
    std::string error = dxf::Utf8(db.lastError());
    EXPECT_NE(error.find(std::string("cannot write")), std::string::npos) << error;
    EXPECT_NE(error.find(std::strerror(ENOSPC)), std::string::npos) << error;
    fs::remove_all(folder);
}

}  // namespace

namespace {

// Saves an empty drawing at `target` in a child killed between writing the temporary and
// renaming it; the child's id.
pid_t SaveKilledBeforeRename(const fs::path& target) {
    pid_t child = ::fork();
    if (child == 0) {
        ::setenv(kKillAtVariable, "2", 1);  // 1: the temporary is created, 2: it is written
        AcDbDatabase db(true, false);
        dxf::WriteDxfFile(db, target.string(), {});
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status)) << status;
    return child;
}

TEST(WriteFailure, killed_save_keeps_the_old_drawing_and_the_next_save_removes_its_temporary) {
    fs::path folder = fs::temp_directory_path() / ("tavrik-killed-save-" + std::to_string(::getpid()));
    fs::create_directories(folder);
    fs::path target = folder / "x.dxf";
    std::ofstream(target) << "old";
    pid_t child = SaveKilledBeforeRename(target);
    fs::path left = TemporaryName(target.string(), child);
    EXPECT_TRUE(fs::exists(left));
    EXPECT_EQ(fs::file_size(target), 3u);
    AcDbDatabase db(true, false);
    ASSERT_EQ(dxf::WriteDxfFile(db, target.string(), {}), Acad::eOk);
    EXPECT_FALSE(fs::exists(left));
    EXPECT_GT(fs::file_size(target), 3u);
    fs::remove_all(folder);
}

}  // namespace
