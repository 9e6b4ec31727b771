#pragma once
// A watchdog for operations that are meant never to end: the operation runs in a child process,
// and the test learns whether it was still running when the time ran out (the child is then
// killed) or ended by itself.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <thread>

enum class WatchdogVerdict { kEnded, kStillRunning, kForkFailed };

inline WatchdogVerdict RunUnderWatchdog(const std::function<void()>& operation,
                                        std::chrono::milliseconds limit) {
    pid_t child = fork();
    if (child < 0) return WatchdogVerdict::kForkFailed;
    if (child == 0) {
        operation();
        _exit(0);
    }
    auto deadline = std::chrono::steady_clock::now() + limit;
    while (std::chrono::steady_clock::now() < deadline) {
        int status = 0;
        if (waitpid(child, &status, WNOHANG) == child) return WatchdogVerdict::kEnded;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    return WatchdogVerdict::kStillRunning;
}
