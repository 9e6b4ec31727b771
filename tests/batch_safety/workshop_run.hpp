#pragma once
// Copies of the example workshop for runs of the tavrik program with the real module: each test
// gets its own prefixes, runs the batch on them (whole, killed, under a fault switch) and then
// looks at where the part's exported drawings ended up.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fcntl.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace workshop {

namespace fs = std::filesystem;

inline const fs::path kHandOff = "drives/c/Users/cad/AppData/Local/Convert";
inline const fs::path kMerged = fs::path("drives/d") / fs::u8path("成品图") / "MP2305.dxf";
inline const fs::path kTraceLog = "drives/d/Mytool/cad/Cg.log";

// An exported sheet of the part and the drawing numbers that its frames carry after the batch.
struct Export {
    std::string name;
    std::vector<std::string> numbers;
};
inline const std::vector<Export> kExports = {{"MP2305-1.dxf", {"MP2305-01"}},
                                             {"MP2305-2.dxf", {"MP2305-02", "MP2305-03"}}};

inline std::string ReadBytes(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// A fresh prefix with the workshop and its conversion library where the module loads it.
inline void MakeWorkshop(const fs::path& prefix) {
    fs::remove_all(prefix);
    fs::create_directories(prefix);
    fs::copy(TAVRIK_WORKSHOP, prefix, fs::copy_options::recursive);
    fs::copy_file(TAVRIK_DWGVER_LIBRARY, prefix / "drives/d/Mytool/application/dwgver.dll",
                  fs::copy_options::overwrite_existing);
}

// Starts tavrik on `prefix` with its input closed, output to `log`, and `environment` (NAME=VALUE
// entries) added to its own.
inline pid_t Launch(const fs::path& prefix, const fs::path& log, const std::vector<std::string>& arguments = {},
                    const std::vector<std::string>& environment = {}) {
    pid_t child = ::fork();
    if (child != 0) return child;
    int in = ::open("/dev/null", O_RDONLY);
    int out = ::open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    ::dup2(in, STDIN_FILENO);
    ::dup2(out, STDOUT_FILENO);
    ::dup2(out, STDERR_FILENO);
    for (const std::string& entry : environment) ::putenv(const_cast<char*>(entry.c_str()));
    std::vector<std::string> words = {TAVRIK_EXE, "--prefix", prefix.string()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    ::execv(TAVRIK_EXE, argv.data());
    ::_exit(127);
}

// The exit status of a launched run; -1 when a signal ended it.
inline int Wait(pid_t child) {
    int raw = 0;
    ::waitpid(child, &raw, 0);
    return WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
}

struct Outcome {
    int status = -1;
    std::string output;
};

inline Outcome RunToEnd(const fs::path& prefix, const std::vector<std::string>& arguments = {},
                        const std::vector<std::string>& environment = {}) {
    fs::path log = prefix.string() + ".out";
    Outcome run;
    run.status = Wait(Launch(prefix, log, arguments, environment));
    run.output = ReadBytes(log);
    return run;
}

// The merged drawing holds the sheet when every drawing number of its frames is in it.
inline bool InMergedDrawing(const fs::path& prefix, const Export& sheet) {
    std::string merged = ReadBytes(prefix / kMerged);
    for (const std::string& number : sheet.numbers)
        if (merged.find(number) == std::string::npos) return false;
    return true;
}

// The recycle folder holds the export as it was handed off, byte for byte.
inline bool InRecycleFolder(const fs::path& prefix, const Export& sheet, const std::string& original) {
    std::error_code error;
    for (auto it = fs::recursive_directory_iterator(prefix / "recycle", error); !error && it != fs::end(it);
         it.increment(error)) {
        std::string name = it->path().filename().string();
        if (!it->is_regular_file() || name.rfind(sheet.name, 0) != 0) continue;
        if (it->path().parent_path().string().find(kHandOff.string()) == std::string::npos) continue;
        if (ReadBytes(it->path()) == original) return true;
    }
    return false;
}

// Files below the prefix's drives named as the temporaries of saves ("NAME.tmpPID").
inline std::vector<fs::path> Temporaries(const fs::path& prefix) {
    std::vector<fs::path> found;
    for (const auto& entry : fs::recursive_directory_iterator(prefix / "drives")) {
        std::string name = entry.path().filename().string();
        size_t at = name.rfind(".tmp");
        if (at != std::string::npos && at + 4 < name.size() &&
            name.find_first_not_of("0123456789", at + 4) == std::string::npos)
            found.push_back(entry.path());
    }
    return found;
}

}  // namespace workshop

class WorkshopRun : public ::testing::Test {
protected:
    void SetUp() override {
        auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        work_ = std::filesystem::temp_directory_path() / (std::string("tavrik-safety-") + info->name());
        std::filesystem::remove_all(work_);
        std::filesystem::create_directories(work_);
        prefix_ = work_ / "prefix";
        workshop::MakeWorkshop(prefix_);
        for (const workshop::Export& sheet : workshop::kExports)
            originals_.push_back(workshop::ReadBytes(prefix_ / workshop::kHandOff / sheet.name));
    }
    void TearDown() override {
        if (!HasFailure()) std::filesystem::remove_all(work_);
    }

    std::filesystem::path work_;
    std::filesystem::path prefix_;
    std::vector<std::string> originals_;  // the exports as handed off, in the order of kExports
};
