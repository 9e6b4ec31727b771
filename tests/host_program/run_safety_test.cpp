// The host program around a run: a deadline, host files that cannot be read, relative paths of
// the user, and the recycle folder's subcommands.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

namespace fs = std::filesystem;

struct Outcome {
    int status = -1;
    std::string output;  // stdout and stderr together
};

Outcome Shell(const std::string& command) {
    Outcome run;
    FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
    if (!pipe) return run;
    char buffer[4096];
    for (size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) run.output.append(buffer, n);
    int raw = ::pclose(pipe);
    run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    return run;
}

std::string Tavrik(const std::string& arguments) { return std::string(TAVRIK_EXE) + " " + arguments; }

std::string ReadBytes(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void WriteBytes(const fs::path& file, const std::string& bytes) {
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
}

bool Says(const Outcome& run, const std::string& text) { return run.output.find(text) != std::string::npos; }

class RunSafety : public ::testing::Test {
protected:
    void SetUp() override {
        auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        work_ = fs::temp_directory_path() / (std::string("tavrik-run-safety-") + info->name());
        fs::remove_all(work_);
        fs::create_directories(work_);
        prefix_ = work_ / "prefix";
        ASSERT_EQ(Shell(Tavrik("prefix init " + prefix_.string())).status, 0);
    }
    void TearDown() override { fs::remove_all(work_); }

    std::string Host(const std::string& options) {
        return Tavrik("--prefix " + prefix_.string() + " --module " + TAVRIK_TEST_MODULE + " " + options);
    }

    fs::path work_;
    fs::path prefix_;
};

TEST_F(RunSafety, timeout_ends_a_run_and_prints_the_last_line_of_the_trace) {
    WriteBytes(prefix_ / "drives/d/Mytool/cad/Cg.log", "20191115\nstarted D:\\out\\P-1.dwg\n");
    // The input stays open for longer: only the deadline can end the run.
    Outcome run = Shell("bash -c 'exec " + Host("--timeout 1") + " < <(sleep 30 2>/dev/null)'");
    EXPECT_EQ(run.status, 1) << run.output;
    EXPECT_TRUE(Says(run, "the run took longer than 1 s and was ended; last line of Cg.log: started D:\\out\\P-1.dwg"))
        << run.output;
}

TEST_F(RunSafety, timeout_that_is_not_a_number_of_seconds_is_a_usage_error) {
    for (const char* value : {"0", "ten", "-3", "5s"}) {
        Outcome run = Shell(Host(std::string("--timeout ") + value + " --script /dev/null"));
        EXPECT_EQ(run.status, 2) << value;
        EXPECT_TRUE(Says(run, "unknown or incomplete option --timeout")) << run.output;
    }
}

TEST_F(RunSafety, registry_that_is_a_folder_is_named_with_exit_status_two) {
    fs::remove(prefix_ / "registry.reg");
    fs::create_directories(prefix_ / "registry.reg");
    Outcome run = Shell(Host("--script /dev/null"));
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(Says(run, "registry.reg: is a folder")) << run.output;
}

TEST_F(RunSafety, endless_script_is_refused_with_its_name) {
    Outcome run = Shell(Host("--script /dev/zero"));
    EXPECT_EQ(run.status, 2);
    EXPECT_TRUE(Says(run, "cannot read the script /dev/zero: is larger than")) << run.output;
}

TEST_F(RunSafety, relative_paths_of_convert_hang_from_the_working_directory) {
    WriteBytes(work_ / "in/plate.dxf", "  0\nSECTION\n  2\nENTITIES\n  0\nLINE\n  8\n0\n 10\n1\n 20\n2\n 30\n0\n"
                                       " 11\n3\n 21\n4\n 31\n0\n  0\nENDSEC\n  0\nEOF\n");
    Outcome run = Shell("cd " + work_.string() + " && " + Tavrik("convert in/plate.dxf out.dxf"));
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_NE(ReadBytes(work_ / "out.dxf").find("LINE"), std::string::npos);
}

// The process id of a child that has ended: no running process has it.
pid_t EndedProcessId() {
    pid_t ended = ::fork();
    if (ended == 0) ::_exit(0);
    ::waitpid(ended, nullptr, 0);
    return ended;
}

TEST_F(RunSafety, stale_temporary_of_a_killed_save_goes_when_a_run_starts) {
    pid_t ended = EndedProcessId();
    fs::path stale = prefix_ / ("drives/d/out/P.dwg.tmp" + std::to_string(ended));
    fs::path live = prefix_ / ("drives/d/out/Q.dwg.tmp" + std::to_string(::getpid()));
    fs::path other = prefix_ / "drives/d/out/notes.tmpfile";
    for (const fs::path& file : {stale, live, other}) WriteBytes(file, "half a drawing");
    EXPECT_EQ(Shell(Host("--script /dev/null")).status, 0);
    EXPECT_FALSE(fs::exists(stale));
    EXPECT_TRUE(fs::exists(live));
    EXPECT_TRUE(fs::exists(other));
}

TEST_F(RunSafety, run_after_a_killed_one_brings_back_the_hand_off_files_that_it_recycled) {
    // The hand-off folder of the user that a new prefix sets up.
    fs::path handOff = prefix_ / "drives/c/Users/tavrik/AppData/Local/Convert";
    WriteBytes(handOff / "ugm.log", "D:\\out\\\r\nC:\\Users\\tavrik\\AppData\\Local\\Convert\\P-.dxf\r\n");
    WriteBytes(handOff / "P-2.dxf", "second sheet as it stands");
    // The lock file still names the killed run, whose recycle entry holds the first sheet.
    pid_t killed = EndedProcessId();
    WriteBytes(prefix_ / "tavrik.lock", std::to_string(killed));
    fs::path kept = "drives/c/Users/tavrik/AppData/Local/Convert";
    fs::path entry = prefix_ / "recycle" / ("20260101-120000-" + std::to_string(killed));
    WriteBytes(entry / kept / "P-1.dxf", "first sheet");
    WriteBytes(entry / kept / "P-2.dxf", "second sheet before");
    WriteBytes(entry / "drives/d/out/P.dxf", "not of the hand-off");
    WriteBytes(prefix_ / "recycle/20260101-130000-1" / kept / "P-3.dxf", "of another run");
    Outcome run = Shell(Host("--script /dev/null"));
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_EQ(ReadBytes(handOff / "P-1.dxf"), "first sheet");
    EXPECT_EQ(ReadBytes(handOff / "P-2.dxf"), "second sheet as it stands");
    EXPECT_FALSE(fs::exists(handOff / "P-3.dxf"));
    EXPECT_FALSE(fs::exists(prefix_ / "drives/d/out/P.dxf"));
    EXPECT_TRUE(Says(run, "was ended inside the batch; " + (kept / "P-1.dxf").string() + " is back from the recycle folder"))
        << run.output;
    // A run that ended normally names nobody: the next one restores nothing.
    fs::remove(handOff / "P-1.dxf");
    Outcome next = Shell(Host("--script /dev/null"));
    EXPECT_FALSE(fs::exists(handOff / "P-1.dxf")) << next.output;
}

TEST_F(RunSafety, lock_that_cannot_be_opened_refuses_the_run_with_its_name) {
    fs::create_directories(prefix_ / "tavrik.lock");
    Outcome run = Shell(Host("--script /dev/null"));
    EXPECT_EQ(run.status, 1) << run.output;
    EXPECT_TRUE(Says(run, (prefix_ / "tavrik.lock").string() + ": cannot open the lock")) << run.output;
}

// The recycle folder as a run of the batch leaves it: two versions of one drawing, one other file.
class RecycleCommand : public RunSafety {
protected:
    void SetUp() override {
        RunSafety::SetUp();
        fs::path entry = prefix_ / "recycle/20260101-120000-42";
        WriteBytes(entry / "drives/d/out/P-1.dwg", "exported");
        WriteBytes(entry / "drives/d/out/P-1.dwg~2", "processed");
        WriteBytes(entry / "drives/d/Mytool/cad/msg.txt", "steps");
    }
    std::string Recycle(const std::string& arguments) { return Tavrik("recycle " + arguments + " --prefix " + prefix_.string()); }
};

TEST_F(RecycleCommand, list_names_each_item_with_its_size_and_origin) {
    Outcome run = Shell(Recycle("list"));
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_TRUE(Says(run, "20260101-120000-42/drives/d/out/P-1.dwg\t8 bytes\tfrom drives/d/out/P-1.dwg\n")) << run.output;
    EXPECT_TRUE(Says(run, "20260101-120000-42/drives/d/out/P-1.dwg~2\t9 bytes\tfrom drives/d/out/P-1.dwg\n"))
        << run.output;
    EXPECT_TRUE(Says(run, "from drives/d/Mytool/cad/msg.txt")) << run.output;
}

TEST_F(RecycleCommand, list_of_an_empty_recycle_folder_says_so) {
    fs::remove_all(prefix_ / "recycle");
    Outcome run = Shell(Recycle("list"));
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(Says(run, "is empty")) << run.output;
}

TEST_F(RecycleCommand, restore_puts_the_named_version_back_and_keeps_what_stood_there) {
    WriteBytes(prefix_ / "drives/d/out/P-1.dwg", "standing there");
    Outcome run = Shell(Recycle("restore 20260101-120000-42/drives/d/out/P-1.dwg"));
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_TRUE(Says(run, "restored 20260101-120000-42/drives/d/out/P-1.dwg")) << run.output;
    EXPECT_EQ(ReadBytes(prefix_ / "drives/d/out/P-1.dwg"), "exported");
    Outcome after = Shell(Recycle("list"));
    EXPECT_TRUE(Says(after, "14 bytes\tfrom drives/d/out/P-1.dwg")) << after.output;  // what stood there is kept
}

TEST_F(RecycleCommand, restore_all_takes_the_latest_version_of_each_file) {
    Outcome run = Shell(Recycle("restore --all"));
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_EQ(ReadBytes(prefix_ / "drives/d/out/P-1.dwg"), "processed");
    EXPECT_EQ(ReadBytes(prefix_ / "drives/d/Mytool/cad/msg.txt"), "steps");
}

TEST_F(RecycleCommand, restore_of_an_unknown_item_fails_with_its_name) {
    Outcome run = Shell(Recycle("restore 20260101-120000-42/drives/d/out/nothing.dwg"));
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(Says(run, "20260101-120000-42/drives/d/out/nothing.dwg: no such file in the recycle folder")) << run.output;
}

TEST_F(RecycleCommand, list_takes_the_prefix_from_the_environment) {
    Outcome run = Shell("TAVRIK_PREFIX=" + prefix_.string() + " " + Tavrik("recycle list"));
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_TRUE(Says(run, "from drives/d/out/P-1.dwg")) << run.output;
}

TEST_F(RecycleCommand, wrong_use_is_a_usage_error) {
    EXPECT_EQ(Shell(Tavrik("recycle list --prefix")).status, 2);  // --prefix without its folder
    EXPECT_EQ(Shell(Recycle("")).status, 2);
    EXPECT_EQ(Shell(Recycle("restore")).status, 2);
    EXPECT_EQ(Shell(Recycle("restore --all 20260101-120000-42/drives/d/out/P-1.dwg")).status, 2);
    EXPECT_EQ(Shell(Recycle("empty")).status, 2);
}

}  // namespace
