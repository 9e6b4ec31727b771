#pragma once
// Shared helpers of the codec's tests: temporary folders, files, and running the oracles.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace dxftest {

inline std::filesystem::path TempDir(const std::string& name) {
    auto dir = std::filesystem::temp_directory_path() /
               ("tavrik_dxf_" + name + "_" + std::to_string(::getpid()));
    std::filesystem::create_directories(dir);
    return dir;
}

inline std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline void WriteFile(const std::filesystem::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

struct CommandResult {
    int status = -1;
    std::string output;
};

// Runs a shell command, capturing standard output and error together.
inline CommandResult Run(const std::string& command) {
    CommandResult result;
    FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
    if (!pipe) return result;
    char buffer[4096];
    size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) result.output.append(buffer, n);
    int raw = ::pclose(pipe);
    result.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    return result;
}

inline std::string Quote(const std::filesystem::path& p) { return "'" + p.string() + "'"; }

inline std::string Script(const std::string& name) {
    return std::string(TAVRIK_SOURCE_DIR) + "/tests/platform/dxf/" + name;
}

// ezdxf's tools run with a fixed hash seed, so that what they add themselves gets the same
// handles in every run.
inline std::string Python() { return "PYTHONHASHSEED=0 /usr/bin/python3"; }

}  // namespace dxftest
