#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;

struct Outcome {
    int status = -1;
    std::string output;  // stdout and stderr together
};

// Runs a shell command line and collects its output and exit status.
Outcome Shell(const std::string& command) {
    Outcome run;
    FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
    if (!pipe) return run;
    char buffer[4096];
    size_t n = 0;
    while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) run.output.append(buffer, n);
    int raw = ::pclose(pipe);
    run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    return run;
}

class HostProgram : public ::testing::Test {
protected:
    void SetUp() override {
        auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        work_ = fs::temp_directory_path() / (std::string("tavrik-host-") + info->name());
        fs::remove_all(work_);
        fs::create_directories(work_);
        prefix_ = work_ / "prefix";
        ASSERT_EQ(Shell(Tavrik("prefix init " + prefix_.string())).status, 0);
    }
    void TearDown() override { fs::remove_all(work_); }

    static std::string Tavrik(const std::string& arguments) { return std::string(TAVRIK_EXE) + " " + arguments; }

    // The host with the test module and a script of the given lines; stdin closed.
    Outcome RunScript(const std::string& lines, const std::string& environment = "") {
        fs::path script = work_ / "script.scr";
        std::ofstream(script, std::ios::binary) << lines;
        return Shell(environment + Tavrik("--prefix " + prefix_.string() + " --module " + TAVRIK_TEST_MODULE +
                                          " --script " + script.string() + " < /dev/null"));
    }

    fs::path work_;
    fs::path prefix_;
};

TEST_F(HostProgram, HelpAndVersionExitZero) {
    Outcome help = Shell(Tavrik("--help"));
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.output.find("--script"), std::string::npos);
    EXPECT_NE(help.output.find("prefix init"), std::string::npos);
    Outcome version = Shell(Tavrik("--version"));
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.output.rfind("tavrik ", 0), 0u);
}

TEST_F(HostProgram, ScriptRunsTheModulesCommandWithItsAnswerAndExitsZero) {
    Outcome run = RunScript("HELLO\r\nWorld\r\nQUIT\r\nHELLO\r\n");
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_NE(run.output.find("你好 hello World"), std::string::npos) << run.output;
    EXPECT_EQ(run.output.find("Name"), std::string::npos);  // no prompts echoed in a script
    EXPECT_NE(run.output.find("unloaded"), std::string::npos);  // the unload message was sent
    EXPECT_EQ(run.output.find("hello \n"), std::string::npos);  // nothing ran after QUIT
}

TEST_F(HostProgram, GlobalNameWithUnderscoreAndLispFunctionsRun) {
    Outcome run = RunScript("_hello\nA\n(tm-code)\n");
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_NE(run.output.find("hello A"), std::string::npos);
    EXPECT_NE(run.output.find("lisp 0"), std::string::npos);
}

TEST_F(HostProgram, UnknownCommandPrintsAClearMessageAndTheRunFails) {
    Outcome run = RunScript("NOSUCHCOMMAND\nHELLO\nB\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.output.find("unknown command \"NOSUCHCOMMAND\""), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("hello B"), std::string::npos);  // the host went on
}

TEST_F(HostProgram, ExceptionEscapingACommandIsReportedWithItsNameAndTheHostGoesOn) {
    Outcome run = RunScript("THROW\nHELLO\nC\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.output.find("command THROW failed: boom"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("hello C"), std::string::npos);
}

TEST_F(HostProgram, ExceptionInsideAModulesDrawingNamesTheDrawingAndTheRunFails) {
    Outcome run = RunScript("THROWINDRAWING\nHELLO\nC\n");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.output.find("command THROWINDRAWING failed while processing D:\\WORK\\PLATE.dwg: Invalid argument"),
              std::string::npos)
        << run.output;
    EXPECT_NE(run.output.find("hello C"), std::string::npos);
}

TEST_F(HostProgram, TimerArmedByACommandClosesTheHostBeforeLaterInputIsRead) {
    // The pipe stays open for a while and then offers a command that would fail: the host
    // must have been closed by the timer before that line arrives.
    Outcome armed = Shell("(echo ARMQUIT; sleep 2; echo NOSUCHCOMMAND) | " +
                      Tavrik("--prefix " + prefix_.string() + " --module " + TAVRIK_TEST_MODULE));
    EXPECT_EQ(armed.status, 0) << armed.output;
    EXPECT_NE(armed.output.find("closing"), std::string::npos);
    EXPECT_EQ(armed.output.find("unknown command"), std::string::npos) << armed.output;
}

TEST_F(HostProgram, TimerArmedOnLoadClosesTheHostWithoutAnyInput) {
    Outcome run = Shell("(sleep 2; echo NOSUCHCOMMAND) | TAVRIK_TEST_QUIT_ON_LOAD=1 " +
                    Tavrik("--prefix " + prefix_.string() + " --module " + TAVRIK_TEST_MODULE));
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_NE(run.output.find("closing"), std::string::npos);
    EXPECT_EQ(run.output.find("unknown command"), std::string::npos) << run.output;
}

TEST_F(HostProgram, PrefixComesFromTheEnvironmentWhenNotGiven) {
    fs::path script = work_ / "s.scr";
    std::ofstream(script) << "HELLO\nE\n";
    Outcome run = Shell("TAVRIK_PREFIX=" + prefix_.string() + " " +
                    Tavrik(std::string("--module ") + TAVRIK_TEST_MODULE + " --script " + script.string()));
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_NE(run.output.find("hello E"), std::string::npos);
}

TEST_F(HostProgram, MissingPrefixIsAUsageError) {
    Outcome run = Shell("env -u TAVRIK_PREFIX " + Tavrik("--script /dev/null"));
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.output.find("no prefix"), std::string::npos);
    EXPECT_EQ(Shell(Tavrik("--bogus")).status, 2);
}

TEST_F(HostProgram, ModuleThatDoesNotLoadFailsWithItsName) {
    Outcome run = Shell(Tavrik("--prefix " + prefix_.string() + " --module /nonexistent/m.so --script /dev/null"));
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.output.find("/nonexistent/m.so"), std::string::npos);
}

TEST_F(HostProgram, PrefixInitMakesAValidPrefixAndRefusesAFullFolder) {
    EXPECT_TRUE(fs::is_directory(prefix_ / "drives" / "c"));
    EXPECT_TRUE(fs::is_directory(prefix_ / "drives" / "d"));
    EXPECT_TRUE(fs::exists(prefix_ / "registry.reg"));
    EXPECT_TRUE(fs::exists(prefix_ / "host.ini"));
    EXPECT_EQ(Shell(Tavrik("prefix init " + prefix_.string())).status, 1);
    EXPECT_EQ(Shell(Tavrik("prefix")).status, 2);
}

}  // namespace

namespace {

TEST_F(HostProgram, script_that_is_a_folder_is_named_with_exit_status_two) {
    Outcome run = Shell(Tavrik("--prefix " + prefix_.string() + " --script " + work_.string()));
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.output.find(work_.string() + ": is a folder"), std::string::npos) << run.output;
}

TEST_F(HostProgram, host_ini_that_is_a_folder_is_named_with_exit_status_two) {
    fs::remove(prefix_ / "host.ini");
    fs::create_directories(prefix_ / "host.ini");
    Outcome run = RunScript("QUIT\n");
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.output.find("host.ini: is a folder"), std::string::npos) << run.output;
}

TEST_F(HostProgram, second_run_on_a_prefix_in_use_is_refused) {
    // The first run holds the prefix while it waits on its open input.
    FILE* first = ::popen((Tavrik("--prefix " + prefix_.string() + " --module " + TAVRIK_TEST_MODULE) +
                           " > /dev/null 2>&1").c_str(), "w");
    ASSERT_NE(first, nullptr);
    for (int i = 0; i < 100 && !fs::exists(prefix_ / "tavrik.lock"); ++i) ::usleep(50000);
    ::usleep(300000);
    Outcome second = RunScript("QUIT\n");
    std::fputs("QUIT\n", first);
    ::pclose(first);
    EXPECT_EQ(second.status, 1);
    EXPECT_NE(second.output.find("another tavrik run"), std::string::npos) << second.output;
    EXPECT_EQ(RunScript("QUIT\n").status, 0);
}

}  // namespace
