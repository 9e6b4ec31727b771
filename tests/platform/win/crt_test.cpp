#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/win/crt.hpp"
#include "prefix_fixture.hpp"

namespace {

using Crt = PrefixTest;

TEST_F(Crt, GetenvTakesTheProcessEnvironmentBeforeThePrefix) {
    ::unsetenv("LOCALAPPDATA");
    ASSERT_NE(crt::getenv("LOCALAPPDATA"), nullptr);
    EXPECT_STREQ(crt::getenv("LOCALAPPDATA"), "C:\\Users\\tavrik\\AppData\\Local");
    ::setenv("LOCALAPPDATA", "E:\\Local", 1);
    EXPECT_STREQ(crt::getenv("LOCALAPPDATA"), "E:\\Local");
    ::unsetenv("LOCALAPPDATA");
    EXPECT_EQ(crt::getenv("TAVRIK_SURELY_UNSET_VARIABLE"), nullptr);
}

TEST_F(Crt, FopenInTextModeWritesCrLfAndAppends) {
    auto log = WriteBytes("drives/d/MYTOOL/CAD/Log.log", "a\r\n");
    FILE* file = crt::fopen("d:\\mytool\\cad\\log.log", "a+");
    ASSERT_NE(file, nullptr);
    std::fwrite("b\n", 1, 2, file);
    std::fclose(file);
    EXPECT_EQ(ReadBytes(log), "a\r\nb\r\n");
}

TEST_F(Crt, FopenInBinaryModeKeepsBytesAndTextModeReadsCrLfAsLf) {
    FILE* file = crt::fopen("D:\\bin.dat", "wb");
    ASSERT_NE(file, nullptr);
    std::fwrite("x\ny\r\n", 1, 5, file);
    std::fclose(file);
    EXPECT_EQ(ReadBytes(prefix_ / "drives/d/bin.dat"), "x\ny\r\n");
    file = crt::fopen("D:\\bin.dat", "r");
    char buffer[8] = {};
    size_t read = std::fread(buffer, 1, sizeof buffer, file);
    std::fclose(file);
    EXPECT_EQ(std::string(buffer, read), "x\ny\n");
}

TEST_F(Crt, RemoveDeletesAFileByItsWindowsPath) {
    auto file = WriteBytes("drives/c/Users/tavrik/AppData/Local/Convert/ugm.log", "");
    EXPECT_EQ(crt::remove("C:\\Users\\tavrik\\AppData\\Local\\Convert\\\\ugm.log"), 0);
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_EQ(crt::remove("C:\\nothing"), -1);
}

}  // namespace
