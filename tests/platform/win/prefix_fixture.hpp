#pragma once
// A fresh host state over a fresh prefix in a temporary folder, for each test.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/win/host_state.hpp"
#include "platform/win/prefix.hpp"

class PrefixTest : public ::testing::Test {
protected:
    void SetUp() override {
        ResetHostState();
        auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        prefix_ = std::filesystem::temp_directory_path() /
                  (std::string("tavrik-win-") + info->test_suite_name() + "-" + info->name());
        std::filesystem::remove_all(prefix_);
        std::string error;
        ASSERT_TRUE(InitPrefix(prefix_, error)) << error;
        ASSERT_TRUE(OpenPrefix(prefix_, error)) << error;
    }
    void TearDown() override {
        std::filesystem::remove_all(prefix_);
        ResetHostState();
    }

    // Writes raw bytes at a path below the prefix ("drives/d/x.txt").
    std::filesystem::path WriteBytes(const std::string& relative, const std::string& bytes) {
        std::filesystem::path file = prefix_ / relative;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << bytes;
        return file;
    }
    std::string ReadBytes(const std::filesystem::path& file) {
        std::ifstream in(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

    std::filesystem::path prefix_;
};
