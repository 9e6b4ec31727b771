#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>

#include "platform/db/database.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"

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
