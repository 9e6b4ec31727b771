// The host: opens the prefix and a first document, loads the modules, runs the message loop,
// then takes commands from the script or the terminal until QUIT, the end of the input, or a
// WM_CLOSE from a module ends it.
#include <unistd.h>

#include <poll.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "platform/db/database.hpp"
#include "platform/ed/ads.hpp"
#include "platform/ed/commands.hpp"
#include "platform/ed/documents.hpp"
#include "platform/ed/editor_state.hpp"
#include "platform/ed/host_commands.hpp"
#include "platform/ed/input.hpp"
#include "platform/ed/lisp.hpp"
#include "platform/ed/modules.hpp"
#include "platform/ed/resbuf.hpp"
#include "platform/ed/sysvars.hpp"
#include "platform/win/codepage.hpp"
#include "platform/win/host_state.hpp"
#include "platform/win/messages.hpp"
#include "platform/win/paths.hpp"
#include "platform/win/prefix.hpp"
#include "platform/win/temporaries.hpp"
#include "platform/win/text.hpp"
#include "platform/win/whole_file.hpp"
#include "drawing_commands.hpp"
#include "line_input.hpp"
#include "run_guard.hpp"
#include "run_report.hpp"
#include "subcommands.hpp"

namespace {

struct HostOptions {
    std::string prefix;
    std::vector<std::string> modules;
    std::string script;
    std::string drawing;          // opened at the start when given
    unsigned timeoutSeconds = 0;  // 0: no deadline
};

// The lines of the command line: a script read at the start, or standard input.
struct LineSource {
    bool fromScript = false;
    std::vector<std::wstring> script;
    size_t next = 0;
    bool terminal = false;
};

// Tavrik.arx beside the program: the module the host loads when no --module is given.
std::string DefaultModulePath() {
    std::error_code error;
    std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    return (program.parent_path() / kDefaultModuleName).string();
}

bool ParseSeconds(const char* text, unsigned& seconds) {
    char* end = nullptr;
    unsigned long value = std::strtoul(text, &end, 10);
    if (end == text || *end != '\0' || value == 0 || value > 86400u * 365) return false;
    seconds = static_cast<unsigned>(value);
    return true;
}

bool ParseOptions(int argc, char** argv, HostOptions& options) {
    for (int i = 1; i < argc; ++i) {
        std::string_view arg = argv[i];
        bool hasValue = i + 1 < argc;
        if (arg == "--prefix" && hasValue) options.prefix = argv[++i];
        else if (arg == "--module" && hasValue) options.modules.push_back(argv[++i]);
        else if (arg == "--script" && hasValue) options.script = argv[++i];
        else if (arg == "--timeout" && hasValue && ParseSeconds(argv[i + 1], options.timeoutSeconds)) ++i;
        else if (!arg.starts_with("-") && options.drawing.empty()) options.drawing = argv[i];
        else {
            std::fprintf(stderr, "tavrik: unknown or incomplete option %s (see tavrik --help)\n", argv[i]);
            return false;
        }
    }
    if (options.modules.empty()) options.modules.push_back(DefaultModulePath());
    if (options.prefix.empty()) {
        const char* fromEnvironment = std::getenv(kPrefixEnvironmentVariable);
        options.prefix = fromEnvironment ? fromEnvironment : "";
    }
    if (options.prefix.empty()) {
        std::fprintf(stderr, "tavrik: no prefix; give --prefix DIR or set %s (tavrik prefix init DIR makes one)\n",
                     kPrefixEnvironmentVariable);
        return false;
    }
    return true;
}

bool ReadScript(const std::string& path, LineSource& source, std::string& error) {
    std::string bytes;
    if (!ReadWholeFile(path, bytes, error)) return false;
    std::wstringstream lines{DecodeTextBytes(bytes)};
    std::wstring line;
    while (std::getline(lines, line)) source.script.push_back(TrimBlanks(line));
    source.fromScript = true;
    return true;
}

// The next line, waiting at most `timeoutMs` for the terminal (-1: without limit).
ReadResult NextLine(LineSource& source, const std::wstring& prompt, long long timeoutMs, std::wstring& line) {
    if (source.fromScript) {
        if (source.next >= source.script.size()) return ReadResult::kEnd;
        line = source.script[source.next++];
        return ReadResult::kLine;
    }
    if (source.terminal) return ReadTerminalLine(prompt, timeoutMs, line);
    pollfd input{STDIN_FILENO, POLLIN, 0};
    int ready = ::poll(&input, 1, static_cast<int>(timeoutMs));
    if (ready == 0) return ReadResult::kTimeout;
    std::string bytes;
    if (!std::getline(std::cin, bytes)) return ReadResult::kEnd;
    line = TrimBlanks(WideFromUtf8(bytes));
    return ReadResult::kLine;
}

// The host's own document drawing; a module that fails inside a drawing of its own leaves that
// drawing as the working database.
// " while processing FILE" when the working database is a drawing other than the host's own.
std::wstring DrawingInProcess() {
    const AcDbDatabase* working = acdbHostApplicationServices()->workingDatabase();
    if (!working || working == HostDrawing() || working->filename().empty()) return L"";
    return L" while processing " + working->filename();
}

void ReportFailure(const std::wstring& what, const char* reason) {
    WriteConsoleText(stderr, L"tavrik: " + what + L" failed" + DrawingInProcess() + L": " + WideFromUtf8(reason) + L"\n");
}

// Runs `body`, reporting an exception that escapes it; false when one did.
template <typename Body>
bool Guarded(const std::wstring& what, Body body) {
    try {
        body();
        return true;
    } catch (const std::exception& error) {
        ReportFailure(what, error.what());
    } catch (...) {
        ReportFailure(what, "an unknown exception");
    }
    return false;
}

// A typed LISP call: the function runs with the arguments read from the line, and the value it
// returns is shown as the host's LISP would show it.
bool RunLisp(const std::wstring& line) {
    std::wstring name, error, result;
    resbuf* arguments = nullptr;
    if (!ParseLispCall(line, name, arguments, error)) {
        WriteConsoleText(stderr, L"tavrik: cannot read " + line + L": " + error + L"\n");
        return false;
    }
    int status = RTNORM;
    bool ok = Guarded(L"function " + name, [&] { status = InvokeLispFunction(name.c_str(), arguments, result); });
    acutRelRb(arguments);
    if (status != RTNORM) WriteConsoleText(stderr, L"tavrik: unknown function \"" + name + L"\"\n");
    else if (ok && !result.empty()) WriteConsoleText(stdout, result + L"\n");
    return ok && status == RTNORM;
}

// A typed name: a module's command first (a module may redefine one of the host's, which "."
// in front still reaches), then the host's own, then a system variable.
bool RunCommand(const std::wstring& name) {
    if (const AcEdCommandRecord* command = name.starts_with(L".") ? nullptr : acedRegCmds->lookupCmd(name.c_str())) {
        AcRxFunctionPtr function = command->function;
        return Guarded(L"command " + name, function);
    }
    if (const HostCommand* command = LookupHostCommand(name)) {
        bool ok = Guarded(L"command " + name, command->function);
        return !TakeHostCommandFailure() && ok;
    }
    if (IsSystemVariable(name)) {
        EditSystemVariable(name);
        return !TakeHostCommandFailure();
    }
    WriteConsoleText(stderr, L"tavrik: unknown command \"" + name + L"\" (HELP lists the commands)\n");
    return false;
}

bool IsQuit(const std::wstring& line) {
    return EqualNoCase(line, L"QUIT") || EqualNoCase(line, L"_QUIT") || EqualNoCase(line, L"EXIT");
}

bool PumpTimers() { return Guarded(L"timer procedure", [] { RunDueTimers(); }); }

// The command line. Returns false when some command or timer failed.
bool RunCommandLine(LineSource& source) {
    bool ok = true;
    SetHostInputSource([&source](const std::wstring& prompt, std::wstring& line) {
        return NextLine(source, prompt, -1, line) == ReadResult::kLine;
    });
    while (!HostCloseRequested()) {
        ok = PumpTimers() && ok;
        if (HostCloseRequested()) break;
        std::wstring line;
        ReadResult read = NextLine(source, L"Command: ", MillisecondsToNextTimer(), line);
        if (read == ReadResult::kTimeout) continue;
        if (read == ReadResult::kEnd) {
            // Armed timers still run, as the host's loop would before it ends.
            ok = Guarded(L"timer procedure", [] { RunMessageLoop(); }) && ok;
            break;
        }
        if (line.empty() || line == L"^C") continue;
        if (IsQuit(line)) break;
        ok = (line.front() == L'(' ? RunLisp(line) : RunCommand(line)) && ok;
    }
    SetHostInputSource(nullptr);
    return ok;
}

// False when a module cannot be loaded at all; `ok` turns false when one threw on load.
bool LoadModules(const std::vector<std::string>& modules, bool& ok) {
    for (const std::string& path : modules) {
        std::string error;
        bool loaded = false;
        ok = Guarded(L"loading " + WideFromUtf8(path), [&] { loaded = LoadHostModule(path, error); }) && ok;
        if (!loaded && !error.empty()) {
            std::fprintf(stderr, "tavrik: cannot load module %s: %s\n", path.c_str(), error.c_str());
            return false;
        }
    }
    return true;
}

}  // namespace

int RunHost(int argc, char** argv) {
    HostOptions options;
    if (!ParseOptions(argc, argv, options)) return kExitUsage;
    std::string error;
    if (!OpenPrefix(options.prefix, error)) {
        std::fprintf(stderr, "tavrik: %s\n", error.c_str());
        return kExitUsage;
    }
    LineSource source;
    if (!options.script.empty() && !ReadScript(options.script, source, error)) {
        std::fprintf(stderr, "tavrik: cannot read the script %s\n", error.c_str());
        return kExitUsage;
    }
    long interruptedRun = 0;
    if (!LockPrefix(options.prefix, error, interruptedRun)) {
        std::fprintf(stderr, "tavrik: %s\n", error.c_str());
        return kExitFailure;
    }
    // Holding the lock, no other run saves in the prefix: a temporary of a save is a killed run's.
    RemoveStaleTemporariesBelow(DriveFolder(L'C').parent_path());
    RestoreInterruptedHandOff(options.prefix, interruptedRun);
    if (options.timeoutSeconds) StartDeadline(options.timeoutSeconds);
    HandOffTarget handOff = ReadHandOffTarget();
    source.terminal = !source.fromScript && ::isatty(STDIN_FILENO);
    Host().interactive = source.terminal;
    Editor().drawProgress = ::isatty(STDERR_FILENO);

    RegisterEditingCommands();
    RegisterDrawingCommands();
    bool ok = true;
    NewHostDrawing();
    if (!options.drawing.empty()) {
        std::error_code cwdError;
        std::string path = std::filesystem::absolute(options.drawing, cwdError).string();
        ok = OpenHostDrawing(WideFromUtf8(path));
    }

    BeginRunReport();
    if (LoadModules(options.modules, ok)) ok = RunCommandLine(source) && ok;
    else ok = false;
    FinishRunReport();
    UnloadHostModules();
    CloseHostDrawing();
    ok = CheckMergedDrawing(handOff) && ok;
    ReleasePrefix();
    return ok ? kExitOk : kExitFailure;
}
