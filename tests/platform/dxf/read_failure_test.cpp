#include <gtest/gtest.h>
#include <sys/wait.h>
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
    EXPECT_NE(ReadError("/dev/zero").find("DXF001 cannot open the file: it is not a regular file"), std::string::npos);
    fs::remove_all(folder);
}

// The error of reading `file` as a user without rights on it would see it: a child process
// without root's rights when the tests run as root.
std::string ReadErrorWithoutRights(const fs::path& file) {
    int channel[2];
    if (::pipe(channel) != 0) return "no pipe";
    pid_t child = ::fork();
    if (child == 0) {
        ::close(channel[0]);
        if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) ::_exit(1);
        std::string error = ReadError(file);
        ssize_t written = ::write(channel[1], error.data(), error.size());
        ::_exit(written == static_cast<ssize_t>(error.size()) ? 0 : 1);
    }
    ::close(channel[1]);
    std::string error;
    char buffer[512];
    for (ssize_t n; (n = ::read(channel[0], buffer, sizeof buffer)) > 0;) error.append(buffer, static_cast<size_t>(n));
    ::close(channel[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    return error;
}

TEST(ReadFailure, file_without_read_permission_names_the_cause) {
    fs::path folder = fs::temp_directory_path() / ("tavrik-read-permission-" + std::to_string(::getpid()));
    fs::create_directories(folder);
    fs::permissions(folder, fs::perms::all);
    fs::path file = folder / "locked.dxf";
    std::ofstream(file) << "  0\nSECTION\n  2\nHEADER\n  0\nENDSEC\n  0\nEOF\n";
    fs::permissions(file, fs::perms::none);
    EXPECT_NE(ReadErrorWithoutRights(file).find("DXF001 cannot open the file: permission denied"), std::string::npos);
    fs::remove_all(folder);
}

}  // namespace
