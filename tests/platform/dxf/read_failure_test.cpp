#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/db/database.hpp"
#include "platform/dxf/dxf.hpp"
#include "platform/dxf/model.hpp"

namespace {

namespace fs = std::filesystem;

std::string ReadError(const fs::path& file) {
    AcDbDatabase db(false, true);
    EXPECT_NE(db.readDwgFile(dxf::Wide(file.string()).c_str()), Acad::eOk);
    return dxf::Utf8(db.lastError());
}

TEST(ReadFailure, cannot_open_names_the_cause) {
    fs::path folder = fs::temp_directory_path() / ("tavrik-read-failure-" + std::to_string(::getpid()));
    fs::create_directories(folder);
    std::ofstream(folder / "empty.dxf").close();
    EXPECT_NE(ReadError(folder / "missing.dxf").find("DXF001 cannot open the file: the file does not exist"), std::string::npos);
    EXPECT_NE(ReadError(folder).find("DXF001 cannot open the file: it is a folder"), std::string::npos);
    EXPECT_NE(ReadError(folder / "empty.dxf").find("DXF001 cannot open the file: the file is empty"), std::string::npos);
    fs::remove_all(folder);
}

}  // namespace
