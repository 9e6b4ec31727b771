#pragma once
// The one home of the Windows side's process state: the prefix, the host code page, the
// registry, the environment of the prefix, open registry keys, timers, the clock and the main
// window. Tests rebuild it fresh with ResetHostState().
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/win/registry_file.hpp"
#include "platform/win/wintypes.hpp"

// Milliseconds on a monotonic clock, and a sleep on the same clock. Tests replace both with a
// virtual clock so that Sleep and timers take no real time.
struct HostClock {
    std::function<std::uint64_t()> nowMs;
    std::function<void(std::uint64_t)> sleepMs;
};
HostClock RealClock();

struct HostTimer {
    HWND window = nullptr;
    UINT_PTR id = 0;
    UINT elapseMs = 0;
    TIMERPROC proc = nullptr;
    std::uint64_t dueMs = 0;
};

struct HostState {
    std::filesystem::path prefix;          // empty: no prefix, drives resolve below the cwd
    UINT codePage = 936;                   // the host's ANSI code page: 936 or 65001
    std::wstring currentDirectory = L"C:\\";
    std::map<std::wstring, std::wstring> environment;  // from the prefix; upper-case names
    RegistryData registry;
    std::map<std::uintptr_t, std::wstring> openKeys;   // handle -> key path
    std::uintptr_t nextKeyHandle = 0x1000;
    bool crtUserLocale = false;            // setlocale(LC_ALL, "") has been called
    std::string crtLocaleName;             // storage of setlocale's result
    std::map<std::string, std::string> crtEnvironment;  // storage of getenv's results
    std::vector<HostTimer> timers;
    UINT_PTR nextTimerId = 1;
    HostClock clock = RealClock();
    bool closeRequested = false;           // WM_CLOSE reached the main window
    bool mainWindowEnabled = true;
    bool interactive = false;              // message boxes wait for Enter only when true
    int recycleDays = 14;                  // how long the recycle folder keeps what it holds
    std::string recycleEntry;              // this run's folder in the recycle folder, once made
    // The last files this run put there, with their sizes, newest last: a file kept again with
    // equal bytes shares their storage. Only the last few are looked at, so that a batch of many
    // drawings does not hold one entry per file it kept.
    std::deque<std::pair<std::uintmax_t, std::filesystem::path>> recycleKept;
};

HostState& Host();
// Replaces the state by a fresh one: no prefix, code page 936, empty registry, no timers.
void ResetHostState();
