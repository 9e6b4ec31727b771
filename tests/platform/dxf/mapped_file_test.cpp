// A file that shrinks or changes while it is mapped neither stops the process nor passes for
// the file it was.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "platform/dxf/dxf.hpp"
#include "platform/dxf/mapped_file.hpp"
#include "support.hpp"

namespace {

namespace fs = std::filesystem;

// Adds up every byte, so that each page is read.
unsigned Touch(std::string_view bytes) {
    unsigned sum = 0;
    for (char c : bytes) sum += static_cast<unsigned char>(c);
    return sum;
}

TEST(MappedFile, FileUnchangedWhileMappedIsNotChanged) {
    fs::path path = dxftest::TempDir("mapped") / "same.bin";
    dxftest::WriteFile(path, std::string(64 * 1024, 'x'));
    dxf::MappedFile file;
    ASSERT_TRUE(file.open(path.string()));
    EXPECT_EQ(Touch(file.bytes()), 64u * 1024u * 'x');
    EXPECT_FALSE(file.changed());
}

TEST(MappedFile, FileCutShortWhileMappedReadsZerosPastItsEndAndIsChanged) {
    fs::path path = dxftest::TempDir("mapped") / "cut.bin";
    dxftest::WriteFile(path, std::string(64 * 1024, 'x'));
    dxf::MappedFile file;
    ASSERT_TRUE(file.open(path.string()));
    ASSERT_EQ(::truncate(path.c_str(), 8192), 0);
    // The first two pages are still the file's; the rest would fault without the guard.
    EXPECT_EQ(Touch(file.bytes()), 8192u * 'x');
    EXPECT_TRUE(file.changed());
}

TEST(MappedFile, FileWrittenToWhileMappedIsChanged) {
    fs::path path = dxftest::TempDir("mapped") / "written.bin";
    dxftest::WriteFile(path, std::string(4096, 'x'));
    dxf::MappedFile file;
    ASSERT_TRUE(file.open(path.string()));
    dxftest::WriteFile(path, std::string(8192, 'y'));
    EXPECT_TRUE(file.changed());
}

TEST(MappedFile, MissingFileDoesNotOpen) {
    dxf::MappedFile file;
    EXPECT_FALSE(file.open("/nonexistent/drawing.dxf"));
}

}  // namespace
