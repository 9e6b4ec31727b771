#pragma once
// The subcommands of the tavrik program. Each takes the arguments that follow its name
// (argv[0] is the subcommand's name) and returns the process exit status:
// 0 success, 1 failure, 2 a usage error.

int RunHost(int argc, char** argv);    // [--prefix P] [--module M]... [--script S]
int RunPrefix(int argc, char** argv);  // prefix init DIR
// convert IN OUT, in convert.cpp. Declared weak so that the program links before that file
// exists; main reports the subcommand as unavailable while it is missing.
[[gnu::weak]] int RunConvert(int argc, char** argv);
int RunRender(int argc, char** argv);  // render IN OUT, in render_command.cpp
int RunInfo(int argc, char** argv);    // info IN [--json], in info_command.cpp

inline constexpr const char* kDefaultModuleName = "Tavrik.arx";
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;
